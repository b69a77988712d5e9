#include "app/resumen_cierre.h"

#include <optional>

#include "app/consola.h"
#include "dayclose/reunion.h"
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
    const char16_t* nombre;
    bool con_total;
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

/// The terminals' figures together; nothing when an amount does not fit.
std::optional<ValoresCifras> Suma(const ResumenCierre& resumen) {
    ValoresCifras suma;
    for (const TerminalContada& contada : resumen.contadas) {
        for (std::size_t i = 0; i < dayclose::kCifras; ++i) {
            suma.registros[i] += contada.cifras.registros[i];
            const auto total = suma.totales[i].Mas(contada.cifras.totales[i]);
            if (!total) return std::nullopt;
            suma.totales[i] = *total;
        }
    }
    return suma;
}

void EscribirTerminales(const ResumenCierre& resumen) {
    QStringList titulos = {u"En las terminales"_s};
    QVector<bool> derecha = {false};
    QVector<QStringList> filas;
    for (const TerminalContada& contada : resumen.contadas) {
        titulos << contada.terminal.nombre << QString();
        derecha << true << true;
    }
    for (const Concepto& concepto : kConceptos) {
        QStringList fila = {QString::fromUtf16(concepto.nombre)};
        for (const TerminalContada& contada : resumen.contadas) {
            fila << Celdas(contada.cifras, concepto);
        }
        filas << fila;
    }
    Escribir(QString());
    Escribir(TablaDeTexto(titulos, filas, derecha));
}

void EscribirCopiadas(const ResumenCierre& resumen) {
    QVector<QStringList> filas;
    for (const dayclose::TablaCopiada& copiada : resumen.copiadas) {
        filas << QStringList{copiada.terminal, copiada.tabla, QString::number(copiada.insertadas),
                             QString::number(copiada.modificadas)};
    }
    Escribir(QString());
    Escribir(TablaDeTexto({u"Copiado de"_s, u"Tabla"_s, u"Nuevas"_s, u"Actualizadas"_s}, filas,
                          {false, false, true, true}));
}

/// The day's figures in the central database. Its checks are counted by their own orders here, not
/// by the comparison that the close decides with.
dayclose::ResultadoCierre<ValoresCifras> TotalesDelDia(foundation::ClsAdo& ado,
                                                       const QString& fecha) {
    QUIMO_TRY(ValoresCifras central, dayclose::CifrasCentrales(ado, fecha));
    QUIMO_TRY(const QVector<foundation::Fila> cuentas,
              dayclose::LeerFilas(
                  ado,
                  u"SELECT COUNT(*),SUM(Total) FROM Cuenta,Comanda WHERE "
                  u"Cuenta.ID_Comanda=Comanda.ID_Comanda AND Fecha_Trabajo='%1'"_s.arg(fecha)));
    const auto lugar = static_cast<std::size_t>(Cifra::Cta);
    central.registros[lugar] = cuentas.first().value(0).toLongLong();
    const QVariant total = cuentas.first().value(1);
    central.totales[lugar] = total.isValid() ? total.value<base::Dinero>() : base::Dinero();
    return central;
}

void EscribirTotales(const ResumenCierre& resumen, const ValoresCifras& central) {
    const std::optional<ValoresCifras> terminales = Suma(resumen);
    if (!terminales) {
        EscribirError(u"Los importes de las terminales no caben juntos en una suma."_s);
    }
    const bool se_comparan = terminales && !resumen.contadas.isEmpty();
    QStringList titulos = {u"Totales del día"_s, u"Central"_s, QString()};
    QVector<bool> derecha = {false, true, true, true, true, false};
    if (se_comparan) titulos << u"Terminales"_s << QString() << QString();
    QVector<QStringList> filas;
    for (const Concepto& concepto : kConceptos) {
        const QStringList en_central = Celdas(central, concepto);
        QStringList fila = QStringList{QString::fromUtf16(concepto.nombre)} + en_central;
        if (se_comparan) {
            const QStringList en_terminales = Celdas(*terminales, concepto);
            fila += en_terminales;
            fila << (en_central == en_terminales ? u"coinciden"_s : u"difieren"_s);
        }
        filas << fila;
    }
    Escribir(QString());
    Escribir(TablaDeTexto(titulos, filas, derecha));
}

}  // namespace

void EscribirResumen(foundation::ClsAdo& ado, const ResumenCierre& resumen) {
    if (resumen.fecha.isEmpty()) return;
    Escribir(QString());
    Escribir(u"Cierre del "_s + foundation::FechaTrabajoVisible(resumen.fecha));
    if (!resumen.contadas.isEmpty()) EscribirTerminales(resumen);
    if (!resumen.copiadas.isEmpty()) EscribirCopiadas(resumen);
    const auto central = TotalesDelDia(ado, resumen.fecha);
    if (central) {
        EscribirTotales(resumen, *central);
    } else {
        EscribirError(u"No se pudieron leer los totales del día: "_s + central.error().descripcion);
    }
    Escribir(QString());
    if (!resumen.entregadas.isEmpty()) {
        Escribir(u"Recibieron su base nueva: "_s + resumen.entregadas.join(u", "_s));
    }
    for (const QString& aviso : resumen.avisos)
        Escribir(u"Aviso: "_s + aviso);
}

}  // namespace quimo::app
