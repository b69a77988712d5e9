#pragma once

#include <optional>

#include <QDateTime>
#include <QHash>
#include <QString>

#include "foundation/sql_connection.h"

namespace quimo::dayclose {

/// How far a close that did not reach its end had come.
enum class Paso {
    Reunir = 1,      ///< the date was advanced; the terminals' files are being fetched and counted
    Transferir = 2,  ///< what differs is known; sales are being copied
    Distribuir = 3,  ///< all sales are copied; the terminals are getting their new databases
};

/// What the close remembers of one terminal's table, or of the sending of its new database.
struct Avance {
    int estado = 0;
    QString detalle;
};

/// The memory of a close that is under way, kept in the central database so that it changes
/// together with what it speaks of. Every write must stand in the transaction of the work that it
/// records; Iniciar, Avanzar and Anotar do not open one of their own.
class CierrePendiente {
public:
    using Hecho = base::Result<void, foundation::FalloSql>;

    /// States of a table to be copied (detail: rows already copied) and of a sending (detail:
    /// SHA-256 of the file sent).
    enum Estado : int { kPorHacer = 0, kHecho = 1, kEnviando = 2 };
    /// Key of the sending and of the fetched file (detail: its SHA-256) among the tables' names.
    static constexpr char16_t kEnvio[] = u"*envio";
    static constexpr char16_t kArchivo[] = u"*archivo";

    /// The close that did not end, if there is one.
    static base::Result<std::optional<CierrePendiente>, foundation::FalloSql> Leer(
        foundation::SqlConnection& conexion);
    /// Begins to remember a new close and forgets any other.
    static base::Result<CierrePendiente, foundation::FalloSql> Iniciar(
        foundation::SqlConnection& conexion, const QString& fecha, const QDateTime& ahora);

    const QString& Fecha() const { return fecha_; }
    dayclose::Paso PasoActual() const { return paso_; }

    Hecho Avanzar(foundation::SqlConnection& conexion, dayclose::Paso paso);
    Hecho Anotar(foundation::SqlConnection& conexion, int id_terminal, const QString& terminal,
                 const QString& tabla, const Avance& avance);
    std::optional<Avance> De(const QString& terminal, const QString& tabla) const;
    /// Terminals that something is remembered of, with their numbers.
    QHash<QString, int> Terminales() const { return terminales_; }
    /// The close reached its end: forgets it.
    Hecho Olvidar(foundation::SqlConnection& conexion);

private:
    QString fecha_;
    dayclose::Paso paso_ = dayclose::Paso::Reunir;
    QHash<QString, QHash<QString, Avance>> avances_;
    QHash<QString, int> terminales_;
};

}  // namespace quimo::dayclose
