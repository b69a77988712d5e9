#include "dayclose/cierre/traspaso.h"

#include <algorithm>

#include "data/transaccion.h"
#include "dayclose/cierre/explicacion.h"
#include "dayclose/cierre/lectura_terminal.h"
#include "dayclose/terminales/base_terminal.h"
#include "dayclose/terminales/parametros_terminal.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

using data::Transaccion;

namespace {

/// The archived files of a terminal whose rows this close has copied already.
ResultadoCierre<QVector<CopiaAnterior>> Anteriores(const ContextoCierre& contexto,
                                                   const CierrePendiente& cierre,
                                                   const QString& terminal) {
    QVector<CopiaAnterior> anteriores;
    for (const VersionCopiada& version : cierre.Versiones(terminal)) {
        if (version.tablas.isEmpty()) continue;
        QUIMO_TRY(const QString ruta,
                  contexto.archivo.Buscar(cierre.Fecha(), terminal, version.sha256));
        if (!ruta.isEmpty()) anteriores.append({ruta, version.tablas});
    }
    return anteriores;
}

ResultadoCierre<void> AnotarCopias(Transaccion& transaccion, CierrePendiente& cierre,
                                   const Terminal& terminal, const QString& sha256,
                                   const QVector<TablaCopiada>& copiadas) {
    VersionCopiada version{sha256, {}};
    for (const TablaCopiada& copiada : copiadas) {
        const auto antes = cierre.De(terminal.nombre, copiada.tabla);
        TablaCopiada suma =
            CopiaDeDetalle(terminal.nombre, copiada.tabla, antes ? antes->detalle : QString());
        suma.insertadas += copiada.insertadas;
        suma.modificadas += copiada.modificadas;
        suma.iguales += copiada.iguales;
        QUIMO_TRY_VOID(cierre.Anotar(transaccion, terminal.id, terminal.nombre, copiada.tabla,
                                     {CierrePendiente::kHecho, DetalleDeCopia(suma)}));
        version.tablas << copiada.tabla;
    }
    QUIMO_TRY_VOID(cierre.AnotarVersion(transaccion, terminal.id, terminal.nombre, version));
    return {};
}

/// Copies tables of one file in one transaction. A failure leaves nothing of it.
ResultadoCierre<void> CopiarArchivo(ContextoCierre& contexto, CierrePendiente& cierre,
                                    const Terminal& terminal, const QString& ruta,
                                    const QString& sha256, const QStringList& tablas) {
    contexto.Progreso(u"Copiando las ventas de "_s + terminal.nombre);
    auto abierta = BaseTerminal::Abrir(ruta, terminal.nombre);
    if (!abierta) return DeTerminal(std::move(abierta).error(), terminal.nombre);
    OpcionesCopia opciones;
    opciones.fecha = cierre.Fecha();
    opciones.tablas = tablas;
    opciones.detener = contexto.opciones.detener;
    QUIMO_TRY(opciones.anteriores, Anteriores(contexto, cierre, terminal.nombre));
    FallaCopia falla;
    {
        QUIMO_TRY(auto transaccion, Transaccion::Iniciar(contexto.ado.Conexion()));
        auto copiadas = CopiarTerminal(contexto.ado, *abierta, opciones);
        if (copiadas) {
            QUIMO_TRY_VOID(AnotarCopias(transaccion, cierre, terminal, sha256, *copiadas));
            QUIMO_TRY_VOID(transaccion.Confirmar());
            return {};
        }
        falla = std::move(copiadas).error();
    }
    // The transaction is over before anybody reads: a question must not hold the tables locked.
    return ExplicarFalla(contexto.ado.Conexion(), std::move(falla), terminal.nombre);
}

/// Whether a statement was refused for the values it carried: SQLSTATE 22, data; 23, integrity.
bool EsDelRenglon(const data::FalloSql& fallo) {
    return std::any_of(
        fallo.errores.begin(), fallo.errores.end(), [](const data::ErrorProveedor& error) {
            return error.sqlstate.startsWith(u"22"_s) || error.sqlstate.startsWith(u"23"_s);
        });
}

/// Whether a failure is one of reading a terminal's file.
bool EsDelArchivo(qint64 numero) {
    switch (numero) {
        case kBaseDanada:
        case kBaseNoSoportada:
        case kTablaAusente:
        case kColumnaAusente:
        case kDatoNoCabe:
            return true;
        default:
            return false;
    }
}

QStringList PorCopiar(const CierrePendiente& cierre, const QString& terminal) {
    QStringList tablas;
    for (const DefCopia& copia : Copias()) {
        const QString tabla = QString::fromUtf16(copia.tabla);
        const auto avance = cierre.De(terminal, tabla);
        if (avance && avance->estado != CierrePendiente::kHecho) tablas << tabla;
    }
    return tablas;
}

/// Whether a file's orders are of a working date: then it is another state of that day's file.
ResultadoCierre<bool> EsDelDia(const QString& ruta, const QString& terminal, const QString& fecha) {
    const auto base = jet::BaseDatos::Abrir(ruta.toStdString());
    if (!base) return DeTerminal(DeFallo(base.error(), terminal), terminal);
    const auto fechas = FechasDeOrdenes(*base);
    if (!fechas) return DeTerminal(DeFallo(fechas.error(), terminal), terminal);
    return fechas->contains(fecha);
}

}  // namespace

QString DetalleDeCopia(const TablaCopiada& copiada) {
    return u"%1;%2;%3"_s.arg(copiada.insertadas).arg(copiada.modificadas).arg(copiada.iguales);
}

TablaCopiada CopiaDeDetalle(const QString& terminal, const QString& tabla, const QString& detalle) {
    TablaCopiada copiada;
    copiada.terminal = terminal;
    copiada.tabla = tabla;
    const QStringList numeros = detalle.split(u';');
    copiada.insertadas = numeros.value(0).toLongLong();
    copiada.modificadas = numeros.value(1).toLongLong();
    copiada.iguales = numeros.value(2).toLongLong();
    return copiada;
}

Interrupcion ExplicarFalla(data::SqlConnection& conexion, FallaCopia falla,
                           const QString& terminal) {
    Interrupcion fallo = std::move(falla.interrupcion);
    if (!falla.renglon) {
        // What its file cannot give is the terminal's; what the database did not do is nobody's.
        return EsDelArchivo(fallo.numero) ? DeTerminal(std::move(fallo), terminal) : fallo;
    }
    // A full disk or a lost connection is no row's fault: without that terminal it is the same.
    if (!EsDelRenglon(falla.renglon->fallo)) return fallo;
    falla.renglon->terminal = terminal;
    fallo.detalle = ExplicarRechazo(conexion, *falla.renglon);
    return DeTerminal(std::move(fallo), terminal);
}

ResultadoCierre<void> TransferirVentas(ContextoCierre& contexto, CierrePendiente& cierre) {
    for (const Terminal& terminal : TerminalesDe(cierre)) {
        QUIMO_TRY_VOID(contexto.PuntoSeguro());
        if (cierre.EstaApartada(terminal.nombre) != Apartada::No) continue;
        const auto contada =
            cierre.De(terminal.nombre, QString::fromUtf16(CierrePendiente::kArchivo));
        if (!contada || cierre.SeCopio(terminal.nombre, contada->detalle)) continue;
        const QStringList tablas = PorCopiar(cierre, terminal.nombre);
        auto hecho = CopiarArchivo(contexto, cierre, terminal, contexto.CopiaLocal(terminal.nombre),
                                   contada->detalle, tablas);
        if (hecho) continue;
        Interrupcion fallo = std::move(hecho).error();
        if (!OfrecerApartar(contexto.ado, fallo)) return fallo;
        QUIMO_TRY_VOID(RecordarOtraVez(contexto.ado, cierre));
        QUIMO_TRY_VOID(
            Apartar(contexto.ado, cierre, terminal, Apartada::Omitida, contada->detalle));
    }
    QUIMO_TRY(auto transaccion, Transaccion::Iniciar(contexto.ado.Conexion()));
    QUIMO_TRY_VOID(cierre.Avanzar(transaccion, Paso::Distribuir));
    QUIMO_TRY_VOID(transaccion.Confirmar());
    return {};
}

ResultadoCierre<void> CopiarVersionNueva(ContextoCierre& contexto, CierrePendiente& cierre,
                                         const Terminal& terminal, const QString& ruta) {
    const QString local = contexto.CopiaLocal(terminal.nombre);
    QUIMO_TRY_VOID(CrearCarpeta(contexto.CarpetaLocal(terminal.nombre)));
    QUIMO_TRY(const Copiado copiado, CopiarEntero(ruta, local));
    QUIMO_TRY(const ArchivoContado contado,
              ContarArchivo(contexto.ado, contexto.archivo, local, cierre.Fecha(), terminal.nombre,
                            copiado.sha256));
    QUIMO_TRY_VOID(
        CopiarArchivo(contexto, cierre, terminal, local, contado.sha256, TablasDeVentas()));
    QUIMO_TRY(const bool del_dia, EsDelDia(local, terminal.nombre, cierre.Fecha()));
    QUIMO_TRY(auto transaccion, Transaccion::Iniciar(contexto.ado.Conexion()));
    // A damaged original is known from now on, as well as the copy that was made of it.
    if (contado.reparada) {
        QUIMO_TRY_VOID(cierre.AnotarVersion(transaccion, terminal.id, terminal.nombre,
                                            {contado.recibido, {}}));
    }
    if (del_dia) {
        QUIMO_TRY_VOID(cierre.Anotar(transaccion, terminal.id, terminal.nombre,
                                     QString::fromUtf16(CierrePendiente::kArchivo),
                                     {CierrePendiente::kHecho, contado.sha256}));
    }
    QUIMO_TRY_VOID(cierre.Anotar(transaccion, terminal.id, terminal.nombre,
                                 QString::fromUtf16(CierrePendiente::kApartada),
                                 {static_cast<int>(Apartada::No), QString()}));
    QUIMO_TRY_VOID(transaccion.Confirmar());
    if (!del_dia) return {};
    auto& contadas = contexto.resumen.contadas;
    contadas.removeIf(
        [&](const TerminalContada& otra) { return otra.terminal.nombre == terminal.nombre; });
    contadas.append({terminal, contado.cifras});
    return {};
}

}  // namespace quimo::dayclose
