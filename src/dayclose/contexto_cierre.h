#pragma once

#include <QString>
#include <QVector>

#include "dayclose/archivo_ventas.h"
#include "dayclose/cierre_pendiente.h"
#include "dayclose/interrupcion.h"
#include "dayclose/tablas_ventas.h"
#include "dayclose/terminal_share.h"
#include "dayclose/transferencia.h"
#include "foundation/cls_ado.h"
#include "foundation/reloj.h"

namespace quimo::dayclose {

/// An active terminal.
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

/// What a close did, for whoever reports it.
struct ResumenCierre {
    QString fecha;
    QVector<TerminalContada> contadas;
    QVector<TablaCopiada> copiadas;
    QStringList entregadas;    ///< terminals that got their new database
    QStringList fallas_envio;  ///< one line for each that could not be reached
    QStringList avisos;        ///< what the manager should know but need not answer
};

/// Decides what a failed file operation means: error 70 is tried again, up to a limit for each
/// terminal; a share that cannot be reached is asked about while sales are fetched, and collected
/// in a list while catalogues are sent; anything else ends the close.
class ManejadorFallas {
public:
    enum class Fase { Reunir, Distribuir };
    static constexpr int kReintentosMax = 2000;

    explicit ManejadorFallas(foundation::Dialogos& dialogos) : dialogos_(dialogos) {}

    /// A terminal's file is about to be fetched: its retries begin at 0.
    void Empezar() {
        reintentos_ = 0;
        omitida_ = false;
    }
    void Entrar(Fase fase) { fase_ = fase; }
    /// Whether the terminal at hand was marked as skipped: it stays so even when a retry succeeds.
    bool Omitida() const { return omitida_; }
    /// One line for each terminal that could not be reached while catalogues were sent.
    const QStringList& Lista() const { return lista_; }

    /// Runs a file operation until it succeeds (true), is given up (false: the run goes on with
    /// what comes next) or interrupts the close.
    template <typename Operacion>
    ResultadoCierre<bool> Ejecutar(const QString& terminal, Operacion operacion) {
        while (true) {
            auto hecho = operacion();
            if (hecho) return true;
            QUIMO_TRY(const bool reintentar, Decidir(terminal, hecho.error()));
            if (!reintentar) return false;
        }
    }

private:
    /// True to try again, false to go on without.
    ResultadoCierre<bool> Decidir(const QString& terminal, const FalloArchivo& fallo);

    foundation::Dialogos& dialogos_;
    Fase fase_ = Fase::Reunir;
    int reintentos_ = 0;
    bool omitida_ = false;
    QStringList lista_;
};

/// What the steps of one close share. The ports must outlive it.
struct ContextoCierre {
    foundation::ClsAdo& ado;
    TerminalShare& share;
    const foundation::Reloj& reloj;
    QString carpeta;  ///< the program's folder: template, working file, a folder per terminal
    ArchivoVentas archivo;
    ManejadorFallas fallas;
    QString directorio = {};  ///< DIRTERMBD
    ResumenCierre resumen = {};

    QString Remoto(const QString& terminal) const;
    QString CarpetaLocal(const QString& terminal) const { return carpeta + u'/' + terminal; }
    QString CopiaLocal(const QString& terminal) const;
    void Progreso(const QString& texto) { ado.Dialogo().Progreso(texto); }
};

/// True for a computer name that can be a folder's name too.
bool EsNombreDeEquipo(const QString& nombre);

/// The failure of the data-access object's last operation.
Interrupcion FalloPendiente(const foundation::ClsAdo& ado);

/// Runs a query; its rows, or why not.
ResultadoCierre<QVector<foundation::Fila>> LeerFilas(foundation::ClsAdo& ado,
                                                     const QString& consulta);

}  // namespace quimo::dayclose
