#include "dayclose/reunion.h"

#include <algorithm>

#include "dayclose/base_terminal.h"
#include "foundation/transaccion.h"
#include "foundation/valores.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

using foundation::ClsAdo;
using foundation::Fila;

namespace {

constexpr char16_t kConciliacion[] = u"#Tmp_Conciliacion";
constexpr char16_t kMontos[] = u"#Tmp_Conciliacion_Montos";

ResultadoCierre<void> Mandar(ClsAdo& ado, const QString& sentencia) {
    const foundation::RespuestaSql respuesta = ado.Conexion().Ejecutar(sentencia);
    if (respuesta.fallo) return DeFallo(*respuesta.fallo);
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
              LeerFilas(ado,
                        u"SELECT ID_Terminal,Nombre_Terminal FROM Terminal WHERE "
                        u"Estado_Terminal='A'"_s));
    QVector<Terminal> terminales;
    for (const Fila& fila : filas)
        terminales.append({fila[0].toInt(), fila[1].toString()});
    return terminales;
}

ResultadoCierre<void> InsertarConciliacion(ClsAdo& ado, const Terminal& terminal,
                                           const ValoresCifras& cifras) {
    const QString llave = QString::number(terminal.id) + u",'"_s +
                          foundation::DuplicaApostrofes(terminal.nombre) + u'\'';
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

/// Fetches a remote file into the archive and makes the local copy from there. Its digest.
ResultadoArchivo<QString> Traer(ContextoCierre& contexto, const QString& fecha,
                                const QString& terminal) {
    QUIMO_TRY(const Archivado archivado,
              contexto.archivo.Recibir(contexto.share, contexto.Remoto(terminal), fecha, terminal));
    QUIMO_TRY(const Copiado copiado, CopiarEntero(archivado.ruta, contexto.CopiaLocal(terminal)));
    return copiado.sha256;
}

/// True when there is a file to count: fetched now, or still lying there from before because the
/// terminal did not let go of it.
ResultadoCierre<bool> TraerTerminal(ContextoCierre& contexto, const QString& fecha,
                                    const Terminal& terminal) {
    ManejadorFallas& fallas = contexto.fallas;
    fallas.Empezar();
    QUIMO_TRY(const bool con_carpeta,
              fallas.Ejecutar(terminal.nombre, [&]() -> ResultadoArchivo<void> {
                  if (!EsNombreDeEquipo(terminal.nombre)) {
                      return FalloDeNumero(FalloArchivo::kNombreIncorrecto, terminal.nombre);
                  }
                  return CrearCarpeta(contexto.CarpetaLocal(terminal.nombre));
              }));
    if (!con_carpeta) return false;
    bool existe = false;
    QUIMO_TRY(const bool mirado, fallas.Ejecutar(terminal.nombre, [&]() -> ResultadoArchivo<void> {
        QUIMO_TRY(existe, contexto.share.Existe(contexto.Remoto(terminal.nombre)));
        return {};
    }));
    if (!mirado || !existe) return false;
    QUIMO_TRY(const bool traido, fallas.Ejecutar(terminal.nombre, [&] {
        return Traer(contexto, fecha, terminal.nombre);
    }));
    static_cast<void>(traido);
    return !fallas.Omitida();
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

ResultadoCierre<void> AnotarTablas(ContextoCierre& contexto, CierrePendiente& cierre,
                                   const Terminal& terminal, const QStringList& tablas) {
    QUIMO_INTENTAR(const QString sha256, Sha256DeArchivo(contexto.CopiaLocal(terminal.nombre)));
    foundation::SqlConnection& conexion = contexto.ado.Conexion();
    QUIMO_INTENTAR_VOID(cierre.Anotar(conexion, terminal.id, terminal.nombre,
                                      QString::fromUtf16(CierrePendiente::kArchivo),
                                      {CierrePendiente::kHecho, sha256}));
    for (const QString& tabla : tablas) {
        QUIMO_INTENTAR_VOID(cierre.Anotar(conexion, terminal.id, terminal.nombre, tabla,
                                          {CierrePendiente::kPorHacer, u"0"_s}));
    }
    return {};
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

ResultadoCierre<ValoresCifras> CifrasCentrales(ClsAdo& ado, const QString& fecha) {
    ValoresCifras valores;
    for (const DefCifra& cifra : Cifras()) {
        QUIMO_TRY(const QVector<Fila> filas,
                  LeerFilas(ado, QString::fromUtf16(cifra.consulta_central).arg(fecha)));
        const auto lugar = static_cast<std::size_t>(cifra.cifra);
        if (filas.isEmpty()) continue;
        valores.registros[lugar] = filas.first().value(0).toLongLong();
        const QVariant total = filas.first().value(1);
        if (total.isValid()) valores.totales[lugar] = total.value<base::Dinero>();
    }
    return valores;
}

ResultadoCierre<void> ReunirTerminales(ContextoCierre& contexto, CierrePendiente& cierre) {
    ClsAdo& ado = contexto.ado;
    QUIMO_TRY(const QVector<Terminal> terminales, TerminalesActivas(ado));
    QUIMO_TRY_VOID(CrearTemporales(ado));
    contexto.fallas.Entrar(ManejadorFallas::Fase::Reunir);
    for (const Terminal& terminal : terminales) {
        contexto.Progreso(u"Leyendo la terminal "_s + terminal.nombre);
        QUIMO_TRY(const bool hay_copia, TraerTerminal(contexto, cierre.Fecha(), terminal));
        if (!hay_copia) {
            contexto.resumen.avisos
                << u"La terminal "_s + terminal.nombre + u" no se contó en este cierre."_s;
            continue;
        }
        QUIMO_TRY(const BaseTerminal base,
                  BaseTerminal::Abrir(contexto.CopiaLocal(terminal.nombre), terminal.nombre));
        QUIMO_TRY_VOID(base.Verificar());
        QUIMO_TRY(const ValoresCifras cifras, base.Contar());
        QUIMO_TRY_VOID(InsertarConciliacion(ado, terminal, cifras));
        contexto.resumen.contadas.append({terminal, cifras});
    }
    QUIMO_TRY(const ValoresCifras central, CifrasCentrales(ado, cierre.Fecha()));
    // What is to be copied is settled before the first row is: the central figures change with
    // every terminal, and a close that goes on later must copy the same tables.
    QUIMO_INTENTAR(auto transaccion, foundation::Transaccion::Iniciar(ado.Conexion()));
    for (const TerminalContada& contada : contexto.resumen.contadas) {
        QUIMO_TRY_VOID(AnotarTablas(contexto, cierre, contada.terminal,
                                    TablasQueDifieren(contada.cifras, central)));
    }
    QUIMO_INTENTAR_VOID(cierre.Avanzar(ado.Conexion(), Paso::Transferir));
    QUIMO_INTENTAR_VOID(transaccion.Confirmar());
    return {};
}

ResultadoCierre<void> RevisarCopias(ContextoCierre& contexto, CierrePendiente& cierre) {
    const QHash<QString, int> terminales = cierre.Terminales();
    for (auto it = terminales.cbegin(); it != terminales.cend(); ++it) {
        const QString& nombre = it.key();
        const auto contada = cierre.De(nombre, QString::fromUtf16(CierrePendiente::kArchivo));
        if (!contada) continue;
        const QString local = contexto.CopiaLocal(nombre);
        auto recibido = contexto.archivo.Recibir(contexto.share, contexto.Remoto(nombre),
                                                 cierre.Fecha(), nombre);
        if (recibido && recibido->nuevo) {
            contexto.resumen.avisos
                << u"La terminal "_s + nombre + u" siguió vendiendo: se copia otra vez."_s;
            QUIMO_INTENTAR(const Copiado copiado, CopiarEntero(recibido->ruta, local));
            static_cast<void>(copiado);
            QStringList todas;
            for (const DefCopia& copia : Copias())
                todas << QString::fromUtf16(copia.tabla);
            QUIMO_INTENTAR(auto transaccion,
                           foundation::Transaccion::Iniciar(contexto.ado.Conexion()));
            QUIMO_TRY_VOID(AnotarTablas(contexto, cierre, {it.value(), nombre}, todas));
            QUIMO_INTENTAR_VOID(transaccion.Confirmar());
            continue;
        }
        const auto presente = Sha256DeArchivo(local);
        if (presente && *presente == contada->detalle) continue;
        QUIMO_INTENTAR(const QString archivada,
                       contexto.archivo.Buscar(cierre.Fecha(), nombre, contada->detalle));
        if (archivada.isEmpty()) {
            return Interrupcion{Interrupcion::Motivo::Error, FalloArchivo::kNoEncontrado,
                                u"Ya no está la copia de la terminal "_s + nombre +
                                    u" que se contó en este cierre."_s};
        }
        QUIMO_INTENTAR(const Copiado copiado, CopiarEntero(archivada, local));
        static_cast<void>(copiado);
    }
    return {};
}

}  // namespace quimo::dayclose
