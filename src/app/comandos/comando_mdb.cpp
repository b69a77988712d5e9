#include <iostream>

#include <QFileInfo>

#include "app/comandos/consola.h"
#include "dayclose/terminales/plantilla.h"
#include "jet/base_datos.h"
#include "jet/reparacion.h"
#include "jet/verificador.h"
#include "jet/volcado.h"

using namespace Qt::StringLiterals;

namespace quimo::app {

namespace {

Estado Tablas(const jet::BaseDatos& base) {
    const auto nombres = base.Tablas();
    if (!nombres) return Fallar(nombres.error());
    for (const std::string& nombre : *nombres) {
        const auto tabla = base.AbrirTabla(nombre);
        if (!tabla) return Fallar(tabla.error());
        const auto filas = tabla->Cuantas();
        if (!filas) return Fallar(filas.error());
        Escribir(QString::fromStdString(nombre) + u'\t' + QString::number(*filas));
    }
    return kHecho;
}

Estado Volcar(const jet::BaseDatos& base, const Argumentos& argumentos) {
    const jet::Receptor salida = jet::HaciaFlujo(std::cout);
    const auto volcada = argumentos.palabras.size() > 2
                             ? jet::VolcarTabla(base, argumentos.palabras[2].toStdString(), salida)
                             : jet::VolcarBase(base, salida);
    std::cout.flush();
    return volcada ? kHecho : Fallar(volcada.error());
}

Estado Verificar(const jet::BaseDatos& base) {
    const auto hallazgos = jet::Verificador::Verificar(base);
    if (!hallazgos) return Fallar(hallazgos.error());
    int fallas = 0;
    for (const jet::Hallazgo& hallazgo : *hallazgos) {
        const bool es_falla = hallazgo.gravedad == jet::Hallazgo::Gravedad::Falla;
        fallas += es_falla ? 1 : 0;
        const QString linea = QString::fromStdString(hallazgo.mensaje);
        if (es_falla) {
            EscribirError(u"Falla: "_s + linea);
        } else {
            Escribir(u"Rareza: "_s + linea);
        }
    }
    if (fallas > 0) {
        EscribirError(u"El archivo tiene %1 fallas."_s.arg(fallas));
        return kFallo;
    }
    Escribir(u"El archivo está bien."_s);
    return kHecho;
}

QString Lineas(const jet::TablaReparada& tabla) {
    const QString nombre = QString::fromStdString(tabla.nombre);
    if (tabla.leidas == tabla.declaradas) return u"%1: %2 filas"_s.arg(nombre).arg(tabla.leidas);
    return u"%1: %2 filas; el archivo dañado decía %3"_s.arg(nombre)
        .arg(tabla.leidas)
        .arg(tabla.declaradas);
}

Estado Reparar(const QString& origen, const QString& destino) {
    if (jet::MirarLdb(origen.toStdString()) == jet::EstadoLdb::EnUso) {
        EscribirError(u"El archivo está en uso: "_s + origen +
                      u". Cierre el programa que lo tiene abierto y repita el comando."_s);
        return kFallo;
    }
    const auto informe = jet::Reparar(origen.toStdString(), destino.toStdString());
    if (!informe) return Fallar(informe.error());
    for (const jet::TablaReparada& tabla : informe->tablas) {
        Escribir(Lineas(tabla));
        for (const std::string& queja : tabla.ilegibles)
            EscribirError(u"Perdido en %1: %2"_s.arg(QString::fromStdString(tabla.nombre),
                                                     QString::fromStdString(queja)));
    }
    for (const std::string& falta : informe->faltas)
        EscribirError(QString::fromStdString(falta));
    Escribir(u"Copia reparada: %1, con %2 filas."_s.arg(QFileInfo(destino).absoluteFilePath())
                 .arg(informe->Renglones()));
    if (informe->Completa()) {
        Escribir(u"No falta nada."_s);
        return kHecho;
    }
    EscribirError(u"La copia está sana, pero no está completa: arriba dice qué le falta."_s);
    return kIncompleto;
}

}  // namespace

Estado ComandoMdb(const Argumentos& argumentos, const Entorno& /*entorno*/) {
    const QString& accion = argumentos.palabras[0];
    const bool una_tabla = argumentos.palabras.size() > 2;
    if (accion == u"reparar"_s && una_tabla) {
        return Reparar(argumentos.palabras[1], argumentos.palabras[2]);
    }
    if ((accion != u"tablas"_s && accion != u"volcar"_s && accion != u"verificar"_s) ||
        (una_tabla && accion != u"volcar"_s)) {
        EscribirError(
            u"Uso: quimoctl mdb tablas|volcar|verificar ARCHIVO [TABLA]\n"
            u"     quimoctl mdb reparar ARCHIVO DESTINO"_s);
        return kMalUso;
    }
    const auto base = jet::BaseDatos::Abrir(argumentos.palabras[1].toStdString());
    if (!base) return Fallar(base.error());
    if (accion == u"tablas"_s) return Tablas(*base);
    if (accion == u"volcar"_s) return Volcar(*base, argumentos);
    return Verificar(*base);
}

Estado ComandoPlantilla(const Argumentos& argumentos, const Entorno& /*entorno*/) {
    const QString& archivo = argumentos.palabras[0];
    const auto escrita = dayclose::EscribirPlantilla(archivo.toStdString());
    if (!escrita) return Fallar(escrita.error());
    Escribir(u"Plantilla escrita: "_s + QFileInfo(archivo).absoluteFilePath());
    return kHecho;
}

}  // namespace quimo::app
