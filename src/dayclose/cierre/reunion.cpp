#include "dayclose/cierre/reunion.h"

#include <algorithm>

#include "data/consultar.h"
#include "data/transaccion.h"
#include "data/valores.h"
#include "dayclose/cierre/colisiones.h"
#include "dayclose/cierre/lectura_terminal.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

using data::Fila;
using data::Transaccion;
using foundation::Botones;
using foundation::ClsAdo;
using foundation::Icono;
using foundation::Respuesta;

namespace {

constexpr char16_t kConciliacion[] = u"#Tmp_Conciliacion";
constexpr char16_t kMontos[] = u"#Tmp_Conciliacion_Montos";

ResultadoCierre<void> Mandar(ClsAdo& ado, const QString& sentencia) {
    QUIMO_TRY_VOID(data::Correr(ado.Conexion(), sentencia));
    return {};
}

ResultadoCierre<void> CrearTemporales(ClsAdo& ado) {
    // A run that an error ended leaves them behind on its connection.
    QUIMO_TRY_VOID(BorrarTemporales(ado));
    QString registros;
    QString totales;
    for (const DefCifra& cifra : Cifras()) {
        registros += u","_s + QString::fromUtf16(cifra.registros) + u" Int"_s;
    }
    for (const char16_t* total :
         {u"TotalPXC", u"TotalCta", u"TotalPago", u"TotalCtesia", u"TotalMod", u"TotalIXC"}) {
        totales += u","_s + QString::fromUtf16(total) + u" Money"_s;
    }
    const QString inicio = u" (ID_Terminal Int,Nombre_Term VARCHAR(25)"_s;
    QUIMO_TRY_VOID(Mandar(
        ado, u"CREATE TABLE "_s + QString::fromUtf16(kConciliacion) + inicio + registros + u")"_s));
    return Mandar(ado,
                  u"CREATE TABLE "_s + QString::fromUtf16(kMontos) + inicio + totales + u")"_s);
}

ResultadoCierre<QVector<Terminal>> TerminalesActivas(ClsAdo& ado) {
    QUIMO_TRY(const QVector<Fila> filas,
              data::Consultar(ado.Conexion(),
                              u"SELECT ID_Terminal,Nombre_Terminal FROM Terminal WHERE "
                              u"Estado_Terminal='A'"_s));
    QVector<Terminal> terminales;
    for (const Fila& fila : filas)
        terminales.append({fila[0].toInt(), fila[1].toString()});
    return terminales;
}

ResultadoCierre<void> InsertarConciliacion(ClsAdo& ado, const Terminal& terminal,
                                           const ValoresCifras& cifras) {
    const QString llave =
        QString::number(terminal.id) + u",'"_s + data::DuplicaApostrofes(terminal.nombre) + u'\'';
    QString columnas = u"ID_Terminal,Nombre_Term"_s;
    QString valores = llave;
    QString columnas_montos = columnas;
    QString montos = llave;
    for (const DefCifra& cifra : Cifras()) {
        const auto lugar = static_cast<std::size_t>(cifra.cifra);
        columnas += u',' + QString::fromUtf16(cifra.registros);
        valores += u',' + QString::number(cifras.registros[lugar]);
        if (cifra.total == nullptr) continue;
        columnas_montos += u',' + QString::fromUtf16(cifra.total);
        montos += u',' + QString::fromStdString(cifras.totales[lugar].ATexto());
    }
    if (!ado.Insertar(QString::fromUtf16(kConciliacion), columnas, valores) ||
        !ado.Insertar(QString::fromUtf16(kMontos), columnas_montos, montos)) {
        return FalloPendiente(ado);
    }
    return {};
}

/// The tables to be copied of a terminal: those with a figure that differs from the central one.
QStringList TablasQueDifieren(const ValoresCifras& terminal, const ValoresCifras& central) {
    QStringList tablas;
    for (const DefCopia& copia : Copias()) {
        const bool difiere =
            std::any_of(copia.marcas.begin(), copia.marcas.end(), [&](Cifra marca) {
                const auto lugar = static_cast<std::size_t>(marca);
                return terminal.registros[lugar] != central.registros[lugar] ||
                       terminal.totales[lugar] != central.totales[lugar];
            });
        if (difiere) tablas << QString::fromUtf16(copia.tabla);
    }
    return tablas;
}

ResultadoCierre<void> AnotarTablas(Transaccion& transaccion, CierrePendiente& cierre,
                                   const Terminal& terminal, const ArchivoContado& contado,
                                   const QStringList& tablas) {
    QUIMO_TRY_VOID(cierre.Anotar(transaccion, terminal.id, terminal.nombre,
                                 QString::fromUtf16(CierrePendiente::kArchivo),
                                 {CierrePendiente::kHecho, contado.sha256}));
    QUIMO_TRY_VOID(cierre.Anotar(transaccion, terminal.id, terminal.nombre,
                                 QString::fromUtf16(CierrePendiente::kRecibido),
                                 {CierrePendiente::kHecho, contado.recibido}));
    for (const QString& tabla : tablas) {
        // What an earlier copy of this close did is counted on.
        const auto antes = cierre.De(terminal.nombre, tabla);
        QUIMO_TRY_VOID(
            cierre.Anotar(transaccion, terminal.id, terminal.nombre, tabla,
                          {CierrePendiente::kPorHacer, antes ? antes->detalle : QString()}));
    }
    return {};
}

/// The file of a terminal that is set aside is kept as it is, if it can be had at all.
ResultadoCierre<void> ArchivarApartada(ContextoCierre& contexto, CierrePendiente& cierre,
                                       const Terminal& terminal, Apartada motivo) {
    const auto recibido = contexto.archivo.Recibir(contexto.share, contexto.Remoto(terminal.nombre),
                                                   cierre.Fecha(), terminal.nombre);
    if (!recibido) {
        contexto.resumen.avisos << u"No se pudo guardar el archivo de la terminal "_s +
                                       terminal.nombre + u": "_s + recibido.error().descripcion;
    }
    return Apartar(contexto.ado, cierre, terminal, motivo, recibido ? recibido->sha256 : QString());
}

/// One terminal while sales are gathered: fetched and counted, or set aside.
ResultadoCierre<std::optional<ArchivoContado>> ReunirTerminal(ContextoCierre& contexto,
                                                              CierrePendiente& cierre,
                                                              const Terminal& terminal) {
    contexto.Progreso(u"Leyendo la terminal "_s + terminal.nombre);
    QUIMO_TRY(const Traida traida, TraerTerminal(contexto, cierre.Fecha(), terminal.nombre));
    if (traida.apartada != Apartada::No) {
        QUIMO_TRY_VOID(Apartar(contexto.ado, cierre, terminal, traida.apartada, traida.sha256));
        return std::optional<ArchivoContado>();
    }
    QUIMO_TRY(ArchivoContado contado,
              ContarArchivo(contexto.ado, contexto.archivo, contexto.CopiaLocal(terminal.nombre),
                            cierre.Fecha(), terminal.nombre, traida.copia));
    if (contado.reparada) {
        contexto.resumen.avisos << u"El archivo de la terminal "_s + terminal.nombre +
                                       u" estaba dañado; se usó una copia reparada con todos sus "
                                       u"renglones."_s;
    }
    QUIMO_TRY_VOID(InsertarConciliacion(contexto.ado, terminal, contado.cifras));
    return std::optional(std::move(contado));
}

/// Tells what the terminals' files have against each other. The close goes on unless the user wants
/// to look first. The terminals whose rows take another one's place.
ResultadoCierre<QStringList> AvisarColisiones(ContextoCierre& contexto,
                                              const CierrePendiente& cierre,
                                              const QVector<ArchivoContado>& contados) {
    QVector<ArchivoPorCotejar> archivos;
    for (qsizetype i = 0; i < contados.size(); ++i) {
        const Terminal& terminal = contexto.resumen.contadas[i].terminal;
        archivos.append({terminal.nombre, terminal.id, contexto.CopiaLocal(terminal.nombre),
                         contados[i].sha256});
    }
    QUIMO_TRY(const QVector<HallazgoPrevio> hallazgos, BuscarColisiones(archivos, cierre.Fecha()));
    QStringList choques;
    if (hallazgos.isEmpty()) return choques;
    QStringList lineas;
    for (const HallazgoPrevio& hallazgo : hallazgos) {
        lineas << hallazgo.texto;
        contexto.resumen.avisos << hallazgo.texto;
        if (hallazgo.se_pierde) choques << hallazgo.terminal;
    }
    const Respuesta respuesta = contexto.ado.Dialogo().Preguntar(
        u"Los archivos de las terminales tienen algo que conviene revisar antes de copiar sus "
        u"ventas:\n\n"_s +
            lineas.join(u"\n\n"_s) +
            u"\n\nAceptar sigue con el cierre; Cancelar lo deja pendiente para continuarlo después."_s,
        Botones::AceptarCancelar, Icono::Exclamacion);
    if (respuesta == Respuesta::Aceptar) return choques;
    return Interrupcion{Interrupcion::Motivo::Abortado};
}

QStringList NombresDe(const QVector<Terminal>& terminales) {
    QStringList nombres;
    for (const Terminal& terminal : terminales)
        nombres << terminal.nombre;
    return nombres;
}

/// A terminal that is to be left out, however its name was written.
bool EsOmitida(const ContextoCierre& contexto, const QString& nombre) {
    return contexto.opciones.omitir.contains(nombre, Qt::CaseInsensitive);
}

}  // namespace

ResultadoCierre<void> BorrarTemporales(ClsAdo& ado) {
    for (const char16_t* tabla : {kConciliacion, kMontos}) {
        const QString nombre = QString::fromUtf16(tabla);
        QUIMO_TRY_VOID(Mandar(
            ado, u"IF OBJECT_ID('tempdb.."_s + nombre + u"') IS NOT NULL DROP TABLE "_s + nombre));
    }
    return {};
}

namespace {

ResultadoCierre<void> LeerCifra(ClsAdo& ado, ValoresCifras& valores, Cifra cifra,
                                const QString& consulta) {
    QUIMO_TRY(const QVector<Fila> filas, data::Consultar(ado.Conexion(), consulta));
    const auto lugar = static_cast<std::size_t>(cifra);
    if (filas.isEmpty()) return {};
    valores.registros[lugar] = filas.first().value(0).toLongLong();
    const QVariant total = filas.first().value(1);
    if (total.isValid()) valores.totales[lugar] = total.value<base::Dinero>();
    return {};
}

}  // namespace

ResultadoCierre<ValoresCifras> CifrasCentrales(ClsAdo& ado, const QString& fecha) {
    ValoresCifras valores;
    for (const DefCifra& cifra : Cifras()) {
        QUIMO_TRY_VOID(LeerCifra(ado, valores, cifra.cifra,
                                 QString::fromUtf16(cifra.consulta_central).arg(fecha)));
    }
    return valores;
}

ResultadoCierre<ValoresCifras> CifrasDelDia(ClsAdo& ado, const QString& fecha) {
    ValoresCifras valores;
    for (const DefCifra& cifra : Cifras()) {
        const QString consulta =
            cifra.cifra == Cifra::Cta
                ? u"SELECT COUNT(*),SUM(Total) FROM Cuenta,Comanda WHERE "
                  u"Cuenta.ID_Comanda=Comanda.ID_Comanda AND Fecha_Trabajo='%1'"_s
                : QString::fromUtf16(cifra.consulta_central);
        QUIMO_TRY_VOID(LeerCifra(ado, valores, cifra.cifra, consulta.arg(fecha)));
    }
    return valores;
}

ResultadoCierre<void> ReunirTerminales(ContextoCierre& contexto, CierrePendiente& cierre) {
    ClsAdo& ado = contexto.ado;
    QUIMO_TRY(const QVector<Terminal> terminales, TerminalesActivas(ado));
    QUIMO_TRY_VOID(CrearTemporales(ado));
    contexto.fallas.Entrar(ManejadorFallas::Fase::Reunir);
    QVector<ArchivoContado> contados;
    for (const Terminal& terminal : terminales) {
        QUIMO_TRY_VOID(contexto.PuntoSeguro());
        if (cierre.EstaApartada(terminal.nombre) == Apartada::Omitida) continue;
        auto reunida = ReunirTerminal(contexto, cierre, terminal);
        if (!reunida) {
            Interrupcion fallo = std::move(reunida).error();
            if (!OfrecerApartar(ado, fallo)) return fallo;
            QUIMO_TRY_VOID(ArchivarApartada(contexto, cierre, terminal, Apartada::Omitida));
            continue;
        }
        if (!*reunida) continue;
        contexto.resumen.contadas.append({terminal, (*reunida)->cifras});
        contados.append(**std::move(reunida));
    }
    QUIMO_TRY(const QStringList choques, AvisarColisiones(contexto, cierre, contados));
    QUIMO_TRY(const ValoresCifras central, CifrasCentrales(ado, cierre.Fecha()));
    // What is to be copied is settled before the first row is: the central figures change with
    // every terminal, and a close that goes on later must copy the same tables.
    QUIMO_TRY(auto transaccion, Transaccion::Iniciar(ado.Conexion()));
    for (qsizetype i = 0; i < contados.size(); ++i) {
        const Terminal& terminal = contexto.resumen.contadas[i].terminal;
        QUIMO_TRY_VOID(AnotarTablas(transaccion, cierre, terminal, contados[i],
                                    TablasQueDifieren(contados[i].cifras, central)));
        // It was counted after all: what an earlier attempt met no longer counts.
        QUIMO_TRY_VOID(cierre.Anotar(transaccion, terminal.id, terminal.nombre,
                                     QString::fromUtf16(CierrePendiente::kApartada),
                                     {static_cast<int>(Apartada::No), QString()}));
        QUIMO_TRY_VOID(cierre.Anotar(transaccion, terminal.id, terminal.nombre,
                                     QString::fromUtf16(CierrePendiente::kChoque),
                                     {choques.contains(terminal.nombre) ? 1 : 0, QString()}));
    }
    QUIMO_TRY_VOID(cierre.Avanzar(transaccion, Paso::Transferir));
    QUIMO_TRY_VOID(transaccion.Confirmar());
    return {};
}

ResultadoCierre<void> RevisarOmitidas(const ContextoCierre& contexto) {
    if (contexto.opciones.omitir.isEmpty()) return {};
    QUIMO_TRY(const QVector<Terminal> todas, TodasLasTerminales(contexto.ado));
    const QStringList nombres = NombresDe(todas);
    for (const QString& pedida : contexto.opciones.omitir) {
        if (nombres.contains(pedida, Qt::CaseInsensitive)) continue;
        return Interrupcion{
            Interrupcion::Motivo::SinEmpezar, 0,
            u"No hay ninguna terminal que se llame '%1'. Las terminales son: %2."_s.arg(
                pedida, nombres.join(u", "_s))};
    }
    return {};
}

ResultadoCierre<void> ApartarOmitidas(ContextoCierre& contexto, CierrePendiente& cierre) {
    QUIMO_TRY(const QVector<Terminal> todas, TodasLasTerminales(contexto.ado));
    QUIMO_TRY(const QVector<Terminal> activas, TerminalesActivas(contexto.ado));
    const QStringList nombres_activas = NombresDe(activas);
    for (const Terminal& terminal : todas) {
        const bool conocida = cierre.Terminales().contains(terminal.nombre);
        const bool fuera = conocida && !nombres_activas.contains(terminal.nombre);
        if (!fuera && !EsOmitida(contexto, terminal.nombre)) continue;
        if (cierre.EstaApartada(terminal.nombre) == Apartada::Omitida) continue;
        // What was copied of it already stays counted; nothing more of it is.
        if (!cierre.Versiones(terminal.nombre).isEmpty()) continue;
        QUIMO_TRY_VOID(ArchivarApartada(contexto, cierre, terminal, Apartada::Omitida));
    }
    return {};
}

namespace {

/// The local copy of a terminal whose sales are still to be copied: the one that was counted, or a
/// newer one when the terminal sold on.
ResultadoCierre<void> RevisarCopia(ContextoCierre& contexto, CierrePendiente& cierre,
                                   const Terminal& terminal, const QString& sha256) {
    const QString local = contexto.CopiaLocal(terminal.nombre);
    const auto recibido = contexto.archivo.Recibir(contexto.share, contexto.Remoto(terminal.nombre),
                                                   cierre.Fecha(), terminal.nombre);
    if (recibido && !cierre.Conoce(terminal.nombre, recibido->sha256)) {
        contexto.resumen.avisos << u"La terminal "_s + terminal.nombre +
                                       u" siguió vendiendo: se copia también lo nuevo."_s;
        QUIMO_TRY(const Copiado copiado, CopiarEntero(recibido->ruta, local));
        QUIMO_TRY(const ArchivoContado contado,
                  ContarArchivo(contexto.ado, contexto.archivo, local, cierre.Fecha(),
                                terminal.nombre, copiado.sha256));
        QUIMO_TRY(auto transaccion, Transaccion::Iniciar(contexto.ado.Conexion()));
        QUIMO_TRY_VOID(AnotarTablas(transaccion, cierre, terminal, contado, TablasDeVentas()));
        QUIMO_TRY_VOID(transaccion.Confirmar());
        return {};
    }
    const auto presente = Sha256DeArchivo(local);
    if (presente && *presente == sha256) return {};
    QUIMO_TRY(const QString archivada,
              contexto.archivo.Buscar(cierre.Fecha(), terminal.nombre, sha256));
    if (archivada.isEmpty()) {
        return DeTerminal({Interrupcion::Motivo::Error, FalloArchivo::kNoEncontrado,
                           u"Ya no está la copia de la terminal "_s + terminal.nombre +
                               u" que se contó en este cierre."_s},
                          terminal.nombre);
    }
    QUIMO_TRY_VOID(CrearCarpeta(contexto.CarpetaLocal(terminal.nombre)));
    QUIMO_TRY(const Copiado repuesta, CopiarEntero(archivada, local));
    static_cast<void>(repuesta);
    return {};
}

}  // namespace

ResultadoCierre<void> RevisarCopias(ContextoCierre& contexto, CierrePendiente& cierre) {
    for (const Terminal& terminal : TerminalesDe(cierre)) {
        QUIMO_TRY_VOID(contexto.PuntoSeguro());
        const auto contada =
            cierre.De(terminal.nombre, QString::fromUtf16(CierrePendiente::kArchivo));
        if (!contada || cierre.EstaApartada(terminal.nombre) != Apartada::No) continue;
        auto revisada = RevisarCopia(contexto, cierre, terminal, contada->detalle);
        if (revisada) continue;
        Interrupcion fallo = std::move(revisada).error();
        if (!OfrecerApartar(contexto.ado, fallo)) return fallo;
        QUIMO_TRY_VOID(ArchivarApartada(contexto, cierre, terminal, Apartada::Omitida));
    }
    return {};
}

}  // namespace quimo::dayclose
