#include "dayclose/cierre/distribucion.h"

#include <QFile>

#include "data/transaccion.h"
#include "dayclose/cierre/base_nueva.h"
#include "dayclose/cierre/folios.h"
#include "dayclose/cierre/traspaso.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

using data::Fila;
using data::Transaccion;

namespace {

/// A terminal that sells while its database is to be replaced is asked so many times.
constexpr int kVueltasMax = 20;

QString EnvioMarca() { return QString::fromUtf16(CierrePendiente::kEnvio); }

/// Sends one terminal's new database.
class Envio {
public:
    Envio(ContextoCierre& contexto, CierrePendiente& cierre, Terminal terminal)
        : contexto_(contexto),
          cierre_(cierre),
          terminal_(std::move(terminal)),
          remoto_(contexto.Remoto(terminal_.nombre)) {}

    /// True when the terminal has its new database, from now or from before.
    ResultadoCierre<bool> Hacer(BaseNueva& nueva) {
        QUIMO_TRY(const bool ya_entregada, YaEntregada());
        if (ya_entregada) return true;
        contexto_.Progreso(u"Enviando catálogos a "_s + terminal_.nombre);
        for (int vuelta = 0; vuelta < kVueltasMax; ++vuelta) {
            QUIMO_TRY(const bool seguro, AsegurarPresente());
            if (!seguro) return false;
            QUIMO_TRY_VOID(nueva.Adaptar(terminal_, minimos_));
            QUIMO_TRY(const Resultado resultado, Llevar(nueva.Archivo()));
            if (resultado != Resultado::Cambio) return resultado == Resultado::Llevado;
        }
        return DeTerminal(SinReemplazo(terminal_.nombre, remoto_, presente_), terminal_.nombre);
    }

    /// SHA-256 of what lies there, as it is in the archive; empty without a file.
    const QString& Presente() const { return presente_; }

private:
    enum class Resultado { Llevado, NoSePudo, Cambio };

    template <typename Operacion>
    ResultadoCierre<bool> Intentar(Operacion operacion) {
        return contexto_.fallas.Ejecutar(terminal_.nombre, operacion);
    }

    /// Whether an earlier run of this close already put it there: what was sent is known by its
    /// digest. A file that is neither that one nor one whose sales were copied was sold on.
    ResultadoCierre<bool> YaEntregada() {
        const auto envio = cierre_.De(terminal_.nombre, EnvioMarca());
        if (!envio) return false;
        if (envio->estado == CierrePendiente::kHecho) return true;
        QString presente;
        QUIMO_TRY(const bool visto, Intentar([&]() -> ResultadoArchivo<void> {
                      QUIMO_TRY(const bool existe, contexto_.share.Existe(remoto_));
                      if (!existe) return {};
                      QUIMO_TRY_VOID(CrearCarpeta(contexto_.CarpetaLocal(terminal_.nombre)));
                      const QString prueba =
                          contexto_.CarpetaLocal(terminal_.nombre) + u"/revision.tmp"_s;
                      auto traido = contexto_.share.Traer(remoto_, prueba);
                      QFile::remove(prueba);
                      if (!traido) return std::move(traido).error();
                      presente = traido->sha256;
                      return {};
                  }));
        if (!visto || presente != envio->detalle) return false;
        QUIMO_TRY_VOID(Anotar(CierrePendiente::kHecho, envio->detalle));
        return true;
    }

    /// What is about to be replaced must be in the archive, and its sales in the central tables.
    /// False: it cannot be looked at.
    ResultadoCierre<bool> AsegurarPresente() {
        presente_.clear();
        Archivado archivado;
        QUIMO_TRY(const bool visto, Intentar([&]() -> ResultadoArchivo<void> {
                      if (!EsNombreDeEquipo(terminal_.nombre)) {
                          return FalloDeNumero(FalloArchivo::kNombreIncorrecto, terminal_.nombre);
                      }
                      QUIMO_TRY(const bool existe, contexto_.share.Existe(remoto_));
                      if (!existe) {
                          archivado = {};
                          return {};
                      }
                      QUIMO_TRY(archivado,
                                contexto_.archivo.Recibir(contexto_.share, remoto_, cierre_.Fecha(),
                                                          terminal_.nombre));
                      return {};
                  }));
        if (!visto) return false;
        presente_ = archivado.sha256;
        if (presente_.isEmpty() || cierre_.Conoce(terminal_.nombre, presente_)) return true;
        if (cierre_.EstaApartada(terminal_.nombre) == Apartada::SinComunicacion) {
            // It stays uncounted in this close, also when it can be reached again.
            QUIMO_TRY_VOID(
                Apartar(contexto_.ado, cierre_, terminal_, Apartada::SinComunicacion, presente_));
            return true;
        }
        QUIMO_TRY_VOID(CopiarVersionNueva(contexto_, cierre_, terminal_, archivado.ruta));
        contexto_.resumen.avisos
            << u"La terminal "_s + terminal_.nombre +
                   u" siguió vendiendo después de que se leyó: sus ventas nuevas se copiaron antes "
                   u"de cambiar su base de datos."_s;
        return SubirContadores(archivado.ruta);
    }

    /// A terminal that sold from its new database already has given out numbers of the new day.
    ResultadoCierre<bool> SubirContadores(const QString& ruta) {
        const auto base = jet::BaseDatos::Abrir(ruta.toStdString());
        if (!base) return DeTerminal(DeFallo(base.error(), terminal_.nombre), terminal_.nombre);
        const auto suyos = LeerParametrosTerminal(*base);
        if (!suyos) return DeTerminal(DeFallo(suyos.error(), terminal_.nombre), terminal_.nombre);
        if (suyos->fecha_trabajo == cierre_.Fecha()) return true;
        minimos_.comanda = std::max(minimos_.comanda, suyos->folio_comanda);
        minimos_.pago = std::max(minimos_.pago, suyos->folio_pago);
        return true;
    }

    ResultadoCierre<Resultado> Llevar(const QString& archivo) {
        QUIMO_TRY(const QString sha256, Sha256DeArchivo(archivo));
        QUIMO_TRY_VOID(Anotar(CierrePendiente::kEnviando, sha256));
        bool cambio = false;
        QUIMO_TRY(const bool llevado, Intentar([&]() -> ResultadoArchivo<void> {
                      auto hecho = contexto_.share.Llevar(archivo, remoto_, presente_);
                      cambio = !hecho && hecho.error().numero == FalloArchivo::kCambiado;
                      if (cambio) return {};
                      return hecho;
                  }));
        if (cambio) return Resultado::Cambio;
        if (!llevado) return Resultado::NoSePudo;
        QUIMO_TRY_VOID(Anotar(CierrePendiente::kHecho, sha256));
        return Resultado::Llevado;
    }

    ResultadoCierre<void> Anotar(int estado, const QString& sha256) {
        QUIMO_TRY(auto transaccion, Transaccion::Iniciar(contexto_.ado.Conexion()));
        QUIMO_TRY_VOID(cierre_.Anotar(transaccion, terminal_.id, terminal_.nombre, EnvioMarca(),
                                      {estado, sha256}));
        QUIMO_TRY_VOID(transaccion.Confirmar());
        return {};
    }

    ContextoCierre& contexto_;
    CierrePendiente& cierre_;
    Terminal terminal_;
    QString remoto_;
    QString presente_;
    ContadoresMinimos minimos_;
};

ResultadoCierre<void> EnviarTodas(ContextoCierre& contexto, CierrePendiente& cierre,
                                  BaseNueva& nueva, const QVector<Terminal>& terminales) {
    for (const Terminal& terminal : terminales) {
        QUIMO_TRY_VOID(contexto.PuntoSeguro());
        if (cierre.EstaApartada(terminal.nombre) == Apartada::Omitida) {
            contexto.resumen.sin_entregar << terminal.nombre;
            continue;
        }
        Envio envio(contexto, cierre, terminal);
        auto enviada = envio.Hacer(nueva);
        if (!enviada) {
            Interrupcion fallo = std::move(enviada).error();
            if (!OfrecerApartar(contexto.ado, fallo)) return fallo;
            QUIMO_TRY_VOID(RecordarOtraVez(contexto.ado, cierre));
            QUIMO_TRY_VOID(
                Apartar(contexto.ado, cierre, terminal, Apartada::Omitida, envio.Presente()));
            enviada = false;
        }
        (*enviada ? contexto.resumen.entregadas : contexto.resumen.sin_entregar) << terminal.nombre;
    }
    return {};
}

}  // namespace

Interrupcion SinReemplazo(const QString& terminal, const QString& remoto, const QString& presente) {
    // Nothing that can be read, and yet something lies there: a folder, a link to nowhere.
    if (presente.isEmpty()) {
        return FalloDeNumero(FalloArchivo::kAccesoRuta, remoto,
                             u"lo que hay ahí no es un archivo"_s);
    }
    return {Interrupcion::Motivo::Error, FalloArchivo::kPermisoDenegado,
            u"La terminal "_s + terminal +
                u" sigue vendiendo mientras se quiere cambiar su base de datos."_s};
}

ResultadoCierre<void> TerminarCierre(ContextoCierre& contexto, CierrePendiente& cierre) {
    QUIMO_TRY(Transaccion transaccion, Transaccion::Iniciar(contexto.ado.Conexion()));
    QUIMO_TRY_VOID(PonerFolios(contexto.ado, Folios::AlSiguiente));
    // At once with the counters: a close that goes on later must not send the new ones to the
    // terminals that are still missing.
    QUIMO_TRY_VOID(cierre.Olvidar(transaccion));
    const auto confirmado = transaccion.Confirmar();
    if (confirmado) return {};
    if (confirmado.error().numero == data::FalloSql::kConexionPerdida) {
        // The answer was lost, perhaps not the work: what the tables remember tells.
        const auto quedo = CierrePendiente::Leer(contexto.ado.Conexion());
        if (quedo && (!*quedo || (*quedo)->Inicio() != cierre.Inicio())) return {};
    }
    return confirmado.error();
}

ResultadoCierre<void> DistribuirCatalogos(ContextoCierre& contexto, CierrePendiente& cierre) {
    contexto.fallas.Entrar(ManejadorFallas::Fase::Distribuir);
    contexto.Progreso(u"Preparando la base de datos de las terminales"_s);
    QUIMO_TRY(BaseNueva nueva, BaseNueva::Preparar(contexto.ado, contexto.carpeta));
    QUIMO_TRY(const QVector<Terminal> terminales, TerminalesPorMenu(contexto.ado));
    QUIMO_TRY_VOID(EnviarTodas(contexto, cierre, nueva, terminales));
    contexto.resumen.avisos += nueva.Avisos();
    contexto.resumen.fallas_envio = contexto.fallas.Lista();
    if (!contexto.fallas.Lista().isEmpty()) {
        contexto.ado.Dialogo().Avisar(
            u"Error de comunicación con terminales:\n"_s + contexto.fallas.Lista().join(u'\n'),
            foundation::Icono::Critico, u"Error fin día"_s);
    }
    return {};
}

}  // namespace quimo::dayclose
