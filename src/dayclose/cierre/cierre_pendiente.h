#pragma once

#include <optional>

#include <QDateTime>
#include <QHash>
#include <QString>
#include <QVector>

#include "data/sql_connection.h"
#include "data/transaccion.h"

namespace quimo::dayclose {

/// How far a close that did not reach its end had come.
enum class Paso {
    Reunir = 1,      ///< the date was advanced; the terminals' files are being fetched and counted
    Transferir = 2,  ///< what differs is known; sales are being copied
    Distribuir = 3,  ///< all sales are copied; the terminals are getting their new databases
};

/// What the close remembers under one mark of one terminal.
struct Avance {
    int estado = 0;
    QString detalle;
};

/// A file of a terminal whose rows a close has copied.
struct VersionCopiada {
    QString sha256;
    QStringList tablas;  ///< in the order of Copias()
};

/// Why a terminal's sales are not among those that a close copies.
enum class Apartada {
    No = 0,
    SinComunicacion = 1,  ///< it could not be reached while sales were fetched: it stays uncounted
    Omitida = 2,          ///< set aside by the manager: nothing of it is copied or sent
    Abierta = 3,          ///< it never let go of its file
    SinArchivo = 4,       ///< it had no database
};

/// The memory of a close that is under way, kept in the central database so that it changes
/// together with what it speaks of. Whoever writes into it holds the transaction of the work that
/// it records: it goes with that work, or not at all.
class CierrePendiente {
public:
    using Hecho = base::Result<void, data::FalloSql>;
    using Transaccion = data::Transaccion;

    /// States of a table (detail: rows "inserted;updated;passed over") and of a sending (detail:
    /// SHA-256 of the file sent).
    enum Estado : int { kPorHacer = 0, kHecho = 1, kEnviando = 2 };
    /// Marks beside the tables' names: the sending; the counted file (detail: its SHA-256) and the
    /// file it was made from when that one was damaged; why the terminal is set aside (state:
    /// Apartada, detail: SHA-256 of its archived file, if any).
    static constexpr char16_t kEnvio[] = u"*envio";
    static constexpr char16_t kArchivo[] = u"*archivo";
    static constexpr char16_t kRecibido[] = u"*recibido";
    /// State 1: rows of this terminal take the place of another one's with the same key.
    static constexpr char16_t kChoque[] = u"*choque";
    static constexpr char16_t kApartada[] = u"*apartada";

    /// The close that did not end, if there is one.
    static base::Result<std::optional<CierrePendiente>, data::FalloSql> Leer(
        data::SqlConnection& conexion);
    /// Begins to remember a new close and forgets any other.
    static base::Result<CierrePendiente, data::FalloSql> Iniciar(Transaccion& transaccion,
                                                                 const QString& fecha,
                                                                 const QDateTime& ahora);

    const QString& Fecha() const { return fecha_; }
    const QDateTime& Inicio() const { return inicio_; }
    dayclose::Paso PasoActual() const { return paso_; }

    Hecho Avanzar(Transaccion& transaccion, dayclose::Paso paso);
    Hecho Anotar(Transaccion& transaccion, int id_terminal, const QString& terminal,
                 const QString& marca, const Avance& avance);
    /// Adds a file to those whose rows this close has copied, with the tables it copied of it.
    Hecho AnotarVersion(Transaccion& transaccion, int id_terminal, const QString& terminal,
                        const VersionCopiada& version);
    std::optional<Avance> De(const QString& terminal, const QString& marca) const;
    /// The files of a terminal whose rows this close has copied, oldest first.
    QVector<VersionCopiada> Versiones(const QString& terminal) const;
    /// Whether the rows of this file were copied in this close.
    bool SeCopio(const QString& terminal, const QString& sha256) const;
    /// Whether this file of a terminal was counted or copied in this close.
    bool Conoce(const QString& terminal, const QString& sha256) const;
    Apartada EstaApartada(const QString& terminal) const;
    /// Terminals that something is remembered of, with their numbers.
    QHash<QString, int> Terminales() const { return terminales_; }
    /// The close reached its end, or is left behind: forgets it. What was remembered can still be
    /// asked of this object.
    Hecho Olvidar(Transaccion& transaccion);

private:
    QString fecha_;
    QDateTime inicio_;
    dayclose::Paso paso_ = dayclose::Paso::Reunir;
    QHash<QString, QHash<QString, Avance>> avances_;
    QHash<QString, int> terminales_;
};

}  // namespace quimo::dayclose
