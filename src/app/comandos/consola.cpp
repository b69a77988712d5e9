#include "app/comandos/consola.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>

#include <QFile>

using namespace Qt::StringLiterals;

namespace quimo::app {

using foundation::Botones;
using foundation::Icono;
using foundation::Respuesta;

namespace {

constexpr int kServidorNoHallado = 6;

bool salida_cerrada = false;

bool EscribirEn(FILE* flujo, const QString& linea) {
    const QByteArray bytes = (linea + u'\n').toUtf8();
    const auto cuantos = static_cast<std::size_t>(bytes.size());
    return std::fwrite(bytes.constData(), 1, cuantos, flujo) == cuantos && std::fflush(flujo) == 0;
}

}  // namespace

void Escribir(const QString& linea) {
    if (!EscribirEn(stdout, linea) && errno == EPIPE) salida_cerrada = true;
}
bool SalidaCerrada() { return salida_cerrada; }
void EscribirError(const QString& linea) { static_cast<void>(EscribirEn(stderr, linea)); }

Estado Fallar(const base::Error& error) {
    EscribirError(QString::fromStdString(error.mensaje));
    return kFallo;
}

std::optional<QString> LeerTexto(const QString& archivo) {
    QFile texto(archivo);
    if (texto.open(QIODevice::ReadOnly)) return QString::fromUtf8(texto.readAll());
    EscribirError(u"No se puede leer el archivo "_s + archivo + u": "_s + texto.errorString());
    return std::nullopt;
}

QString TablaDeTexto(const QStringList& titulos, const QVector<QStringList>& filas,
                     const QVector<bool>& a_la_derecha) {
    QVector<qsizetype> anchos;
    for (qsizetype c = 0; c < titulos.size(); ++c) {
        qsizetype ancho = titulos[c].size();
        for (const QStringList& fila : filas)
            ancho = std::max(ancho, fila.value(c).size());
        anchos << ancho;
    }
    const auto linea = [&](const QStringList& celdas) {
        QString texto;
        for (qsizetype c = 0; c < anchos.size(); ++c) {
            if (c > 0) texto += u"  "_s;
            texto += a_la_derecha.value(c) ? celdas.value(c).rightJustified(anchos[c])
                                           : celdas.value(c).leftJustified(anchos[c]);
        }
        while (texto.endsWith(u' '))
            texto.chop(1);
        return texto;
    };
    QStringList rayas;
    for (const qsizetype ancho : anchos)
        rayas << QString(ancho, u'-');
    QStringList lineas = {linea(titulos), linea(rayas)};
    for (const QStringList& fila : filas)
        lineas << linea(fila);
    return lineas.join(u'\n');
}

void DialogosConsola::Avisar(const QString& texto, Icono icono, const QString& titulo) {
    const QString linea = titulo.isEmpty() ? texto : titulo + u": "_s + texto;
    if (icono == Icono::Informacion) {
        Escribir(linea);
    } else {
        EscribirError(linea);
    }
}

Respuesta DialogosConsola::Preguntar(const QString& texto, Botones botones, Icono /*icono*/,
                                     const QString& titulo) {
    Respuesta respuesta = Respuesta::Cancelar;
    switch (botones) {
        case Botones::AbortarReintentarIgnorar:
            respuesta = respuestas_.ante_falla;
            break;
        case Botones::SiNo:
        case Botones::SiNoCancelar:
            respuesta = respuestas_.si_no;
            break;
        case Botones::AceptarCancelar:
            respuesta = respuestas_.aceptar;
            break;
        case Botones::TerminarApartar:
            respuesta = Respuesta::Terminar;
            break;
        case Botones::Aceptar:
            break;
    }
    EscribirError((titulo.isEmpty() ? QString() : titulo + u": "_s) + texto + u" ["_s +
                  foundation::NombreDeRespuesta(respuesta) + u']');
    return respuesta;
}

std::optional<QString> DialogosConsola::PedirTexto(const QString& /*texto*/,
                                                   const QString& /*titulo*/) {
    return std::nullopt;
}

void DialogosConsola::Progreso(const QString& texto) { Escribir(texto); }

std::unique_ptr<Sesion> AbrirSesion(const Argumentos& argumentos, const Entorno& entorno,
                                    foundation::SiFalta si_falta, const QString& bitacora,
                                    Respuestas respuestas) {
    auto sesion = std::make_unique<Sesion>();
    sesion->dialogos = std::make_unique<DialogosConsola>(respuestas);
    foundation::OpcionesBitacora opciones;
    opciones.PArchivoLog = bitacora;
    opciones.PPrograma = u"quimoctl"_s;
    opciones.Parchivo = !bitacora.isEmpty();
    opciones.PMsgBox = false;
    sesion->bitacora =
        std::make_unique<foundation::ClsBitacora>(opciones, *sesion->dialogos, entorno.reloj);
    auto motivo = std::make_shared<QString>();
    const data::Conector conector = foundation::CrearConector(entorno.reloj, si_falta);
    sesion->ado = std::make_unique<foundation::ClsAdo>(
        [conector, motivo](const data::DatosConexion& datos) {
            auto abierta = conector(datos);
            // Of a missing server only a fixed text is shown, of a refused login nothing: the
            // reason is added.
            const bool con_texto_fijo =
                !abierta &&
                (abierta.error().Nativo() == kServidorNoHallado || abierta.error().Nativo() == 0 ||
                 abierta.error().numero == data::FalloSql::kAccesoNegado);
            *motivo = con_texto_fijo ? abierta.error().Descripcion() : QString();
            return abierta;
        },
        *sesion->dialogos, *sesion->bitacora);
    sesion->ado->CpsTitulo = u"QUIMO"_s;
    auto [servidor, base, usuario, clave] =
        foundation::AccesoDelPrograma(argumentos.palabras[0], argumentos.palabras[1]);
    if (sesion->ado->Conectar(servidor, base, usuario, clave)) return sesion;
    if (!motivo->isEmpty()) EscribirError(*motivo);
    return nullptr;
}

QString TextoDeFallo(const data::FalloSql& fallo) {
    QString texto = fallo.Descripcion();
    const int nativo = fallo.Nativo();
    if (nativo != 0) texto += u" ("_s + QString::number(nativo) + u')';
    return texto;
}

}  // namespace quimo::app
