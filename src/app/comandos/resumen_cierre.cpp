#include "app/comandos/resumen_cierre.h"

#include <optional>

#include "app/comandos/consola.h"
#include "dayclose/cierre/resumen_cierre.h"
#include "dayclose/cierre/reunion.h"
#include "foundation/parametros.h"

using namespace Qt::StringLiterals;

namespace quimo::app {

using dayclose::Cifra;
using dayclose::ResumenCierre;
using dayclose::TerminalContada;
using dayclose::ValoresCifras;

namespace {

struct Concepto {
    Cifra cifra;
    const char16_t* nombre = nullptr;
    bool con_total = false;
};

constexpr Concepto kConceptos[] = {
    {Cifra::Cmd, u"Órdenes", false},    {Cifra::Cta, u"Cuentas", true},
    {Cifra::PXC, u"Artículos", true},   {Cifra::A, u"Anulados", false},
    {Cifra::M, u"Modificadores", true}, {Cifra::Ct, u"Cortesías", true},
    {Cifra::IXC, u"Impuestos", true},   {Cifra::P, u"Pagos", true},
};

QString Importe(const base::Dinero& dinero) { return QString::fromStdString(dinero.AMoneda()); }

/// Number and, where the figure has one, amount, as two cells.
QStringList Celdas(const ValoresCifras& valores, const Concepto& concepto) {
    const auto lugar = static_cast<std::size_t>(concepto.cifra);
    return {QString::number(valores.registros[lugar]),
            concepto.con_total ? Importe(valores.totales[lugar]) : QString()};
}

/// What all counted terminals hold together; nothing when a total does not fit.
std::optional<ValoresCifras> Suma(const QVector<TerminalContada>& contadas) {
    ValoresCifras suma;
    for (const TerminalContada& contada : contadas) {
        for (std::size_t i = 0; i < dayclose::kCifras; ++i) {
            suma.registros[i] += contada.cifras.registros[i];
            const auto total = suma.totales[i].Mas(contada.cifras.totales[i]);
            if (!total) return std::nullopt;
            suma.totales[i] = *total;
        }
    }
    return suma;
}

void EscribirTerminales(const QVector<TerminalContada>& contadas) {
    QStringList titulos = {u"En las terminales"_s};
    QVector<bool> derecha = {false};
    QVector<QStringList> filas;
    for (const TerminalContada& contada : contadas) {
        titulos << contada.terminal.nombre << QString();
        derecha << true << true;
    }
    for (const Concepto& concepto : kConceptos) {
        QStringList fila = {QString::fromUtf16(concepto.nombre)};
        for (const TerminalContada& contada : contadas) {
            fila << Celdas(contada.cifras, concepto);
        }
        filas << fila;
    }
    Escribir(QString());
    Escribir(TablaDeTexto(titulos, filas, derecha));
}

void EscribirCopiadas(const QVector<dayclose::TablaCopiada>& copiadas) {
    QVector<QStringList> filas;
    for (const dayclose::TablaCopiada& copiada : copiadas) {
        filas << QStringList{copiada.terminal, copiada.tabla, QString::number(copiada.insertadas),
                             QString::number(copiada.modificadas),
                             QString::number(copiada.iguales)};
    }
    Escribir(QString());
    Escribir(
        TablaDeTexto({u"Copiado de"_s, u"Tabla"_s, u"Nuevas"_s, u"Actualizadas"_s, u"Ya estaban"_s},
                     filas, {false, false, true, true, true}));
}

/// The central figures beside those of the terminals; without these, alone.
void EscribirTotales(const QString& titulo, const ValoresCifras& central,
                     const std::optional<ValoresCifras>& terminales, const QString& de_terminales) {
    QStringList titulos = {titulo, u"Central"_s, QString()};
    const QVector<bool> derecha = {false, true, true, true, true, false};
    if (terminales) titulos << de_terminales << QString() << QString();
    QVector<QStringList> filas;
    for (const Concepto& concepto : kConceptos) {
        const QStringList en_central = Celdas(central, concepto);
        QStringList fila = QStringList{QString::fromUtf16(concepto.nombre)} + en_central;
        if (terminales) {
            const QStringList en_terminales = Celdas(*terminales, concepto);
            fila += en_terminales;
            fila << (en_central == en_terminales ? u"coinciden"_s : u"difieren"_s);
        }
        filas << fila;
    }
    Escribir(QString());
    Escribir(TablaDeTexto(titulos, filas, derecha));
}

void EscribirCentral(foundation::ClsAdo& ado, const QString& titulo, const QString& fecha,
                     const QVector<TerminalContada>& contadas = {},
                     const QString& de_terminales = {}) {
    const auto central = dayclose::CifrasDelDia(ado, fecha);
    if (!central) {
        EscribirError(u"No se pudieron leer los totales del día: "_s + central.error().descripcion);
        return;
    }
    const auto terminales = Suma(contadas);
    if (!terminales) {
        EscribirError(
            u"Los importes de las terminales suman más de lo que se puede guardar: revíselos uno "
            u"por "
            u"uno."_s);
    }
    EscribirTotales(titulo, *central, contadas.isEmpty() || !terminales ? std::nullopt : terminales,
                    de_terminales);
}

void EscribirLineas(const QStringList& lineas) {
    if (lineas.isEmpty()) return;
    Escribir(QString());
    for (const QString& linea : lineas)
        Escribir(linea);
}

}  // namespace

void EscribirResumen(foundation::ClsAdo& ado, const ResumenCierre& resumen) {
    if (resumen.fecha.isEmpty()) return;
    const dayclose::TextoResumen texto = dayclose::RedactarResumen(resumen);
    Escribir(QString());
    Escribir(texto.titulo);
    if (!resumen.contadas.isEmpty()) EscribirTerminales(resumen.contadas);
    if (!resumen.copiadas.isEmpty()) EscribirCopiadas(resumen.copiadas);
    EscribirCentral(ado, u"Totales del día"_s, resumen.fecha, resumen.contadas,
                    resumen.sin_copiar.isEmpty() ? u"Terminales"_s : u"Terminales leídas"_s);
    EscribirLineas(texto.sin_copiar);
    if (!resumen.entregadas.isEmpty()) {
        EscribirLineas({u"Recibieron su base nueva: "_s + resumen.entregadas.join(u", "_s)});
    }
    EscribirLineas(texto.sin_entregar);
    QStringList avisos;
    for (const QString& aviso : resumen.avisos)
        avisos << u"Aviso: "_s + aviso;
    EscribirLineas(avisos);
    EscribirLineas(texto.faltantes);
}

void EscribirTraida(foundation::ClsAdo& ado, const dayclose::ResumenTraida& traida) {
    QVector<QStringList> filas;
    for (const dayclose::ComparacionTabla& tabla : traida.comparacion.tablas) {
        filas << QStringList{tabla.tabla, QString::number(tabla.nuevas),
                             QString::number(tabla.iguales), QString::number(tabla.distintas)};
    }
    Escribir(QString());
    Escribir(u"Ventas traídas de %1, del archivo %2"_s.arg(traida.terminal, traida.archivo));
    Escribir(TablaDeTexto({u"Tabla"_s, u"Nuevas"_s, u"Ya estaban"_s, u"Distintas"_s}, filas,
                          {false, true, true, true}));
    if (traida.quedan_distintas) {
        EscribirLineas(QStringList{u"Renglones que ya estaban con otros datos y se dejaron como "
                                   u"estaban:"_s} +
                       traida.comparacion.ejemplos);
    }
    EscribirTerminales({{{0, traida.terminal}, traida.cifras}});
    for (const QString& fecha : traida.fechas) {
        EscribirCentral(ado, u"Totales del "_s + foundation::FechaTrabajoVisible(fecha), fecha);
    }
}

}  // namespace quimo::app
