#pragma once

#include <functional>
#include <optional>

#include <QString>
#include <QVector>

#include "data/reloj.h"
#include "dayclose/cierre/cierre_pendiente.h"
#include "dayclose/cierre/manejador_fallas.h"
#include "dayclose/cierre/transferencia.h"
#include "dayclose/cierre/turno_cierre.h"
#include "dayclose/terminales/archivo_ventas.h"
#include "dayclose/terminales/interrupcion.h"
#include "dayclose/terminales/tablas_ventas.h"
#include "dayclose/terminales/terminal_share.h"
#include "foundation/cls_ado.h"

namespace quimo::dayclose {

/// A terminal of the restaurant.
struct Terminal {
    int id = 0;
    QString nombre;
    int menu = 0;
};

/// What one terminal's file held when it was counted.
struct TerminalContada {
    Terminal terminal;
    ValoresCifras cifras;
};

/// A terminal whose sales this close did not copy.
struct TerminalSinCopiar {
    QString terminal;
    Apartada motivo = Apartada::No;
    QString archivo;                      ///< where its file was kept; empty: nobody has read it
    std::optional<ValoresCifras> cifras;  ///< what that file holds, when it can be read
};

/// What a close did, for whoever reports it.
struct ResumenCierre {
    QString fecha;
    QVector<TerminalContada> contadas;
    QVector<TablaCopiada> copiadas;
    QVector<TerminalSinCopiar> sin_copiar;
    QStringList entregadas;     ///< terminals that have their new database
    QStringList sin_entregar;   ///< active terminals that did not get it
    QStringList fallas_envio;   ///< one line for each that could not be reached
    QStringList avisos;         ///< what the manager should know but need not answer
    bool hay_perdidas = false;  ///< a terminal's row stands in another one's place

    /// Whether everything that a close is to do was done.
    bool Completo() const {
        return sin_copiar.isEmpty() && sin_entregar.isEmpty() && !hay_perdidas;
    }
};

/// How a close is run.
struct OpcionesCierre {
    enum class Pendiente {
        Preguntar,  ///< a close that did not end is asked about: go on with it, or begin a new one
        Continuar,  ///< only a close that did not end is gone on with
        Rechazar,   ///< a close that did not end is told, and nothing is done
    };
    Pendiente pendiente = Pendiente::Preguntar;
    QStringList omitir = {};  ///< terminals to be set aside
    QString quien = {};       ///< who runs it, as others are told while it runs
    /// Asked at every point at which the close can be left without harm; true ends it there.
    std::function<bool()> detener = {};
    int pausa_ms = 10;  ///< between two tries at a file that somebody holds open
};

/// What the steps of one close share. The ports must outlive it.
struct ContextoCierre {
    foundation::ClsAdo& ado;
    TerminalShare& share;
    const data::Reloj& reloj;
    QString carpeta;  ///< the program's folder: template, working file, a folder per terminal
    OpcionesCierre opciones;
    ArchivoVentas archivo;
    ManejadorFallas fallas;
    QString directorio = {};  ///< DIRTERMBD
    ResumenCierre resumen = {};
    TurnoCierre* turno = nullptr;  ///< while it is ours

    /// What a close in the program's folder `carpeta` begins with.
    static ContextoCierre De(foundation::ClsAdo& ado, TerminalShare& share,
                             const data::Reloj& reloj, const QString& carpeta,
                             const OpcionesCierre& opciones);

    QString Remoto(const QString& terminal) const;
    QString CarpetaLocal(const QString& terminal) const { return carpeta + u'/' + terminal; }
    QString CopiaLocal(const QString& terminal) const;
    void Progreso(const QString& texto) { ado.Dialogo().Progreso(texto); }
    /// Ends the close here when the program was told to end, or when it has lost its turn.
    ResultadoCierre<void> PuntoSeguro() const;
};

/// The order in which terminals are copied and told.
bool PorNumero(const Terminal& una, const Terminal& otra);

/// The terminals that a close knows, by number.
QVector<Terminal> TerminalesDe(const CierrePendiente& cierre);

/// True for a computer name that can be a folder's name too.
bool EsNombreDeEquipo(const QString& nombre);

/// Tells a failure that is about one terminal and asks whether the close goes on without it. True:
/// the terminal is to be set aside. No transaction may be open while the user reads.
bool OfrecerApartar(foundation::ClsAdo& ado, Interrupcion& fallo);

/// The failure of the data-access object's last operation.
Interrupcion FalloPendiente(const foundation::ClsAdo& ado);

/// Every terminal of the restaurant, active or not, by number.
ResultadoCierre<QVector<Terminal>> TodasLasTerminales(foundation::ClsAdo& ado);

/// Reads again what is remembered of a close: notes that were undone with a failed copy are gone.
ResultadoCierre<void> RecordarOtraVez(foundation::ClsAdo& ado, CierrePendiente& cierre);

/// Terminals set aside from now on, in a transaction of its own.
ResultadoCierre<void> Apartar(foundation::ClsAdo& ado, CierrePendiente& cierre,
                              const Terminal& terminal, Apartada motivo, const QString& sha256);

}  // namespace quimo::dayclose
