#pragma once

#include <variant>

#include <QDateTime>
#include <QString>

#include "data/sql_connection.h"

namespace quimo::data {

/// Who holds a lock, as it is told to the others. Empty and not valid while the holder has not
/// said it yet.
struct DuenoCandado {
    QString quien;  ///< "usuario en EQUIPO (programa, proceso N)"
    QDateTime desde;
};

class Candado;

/// The lock, or who has it.
using CandadoODueno = std::variant<Candado, DuenoCandado>;

/// A named lock in the central database: one holder at a time among all programs and machines that
/// use it. It lives as long as its connection's session, whatever the session ends by, and is given
/// back by its destructor. To be taken and given back outside of a transaction. The connection must
/// outlive it.
///
/// Where the embedded database lies on a file system without locks, the row that tells the holder
/// is a lease: it counts for two minutes after the last Renovar().
class Candado {
public:
    /// Does not wait. `nombre` has up to 50 characters, `quien` is cut to 200. Fails when the
    /// database fails.
    static base::Result<CandadoODueno, FalloSql> Tomar(SqlConnection& conexion,
                                                       const QString& nombre, const QString& quien,
                                                       const QDateTime& ahora);
    Candado(Candado&& otro) noexcept;
    Candado& operator=(Candado&& otro) = delete;
    Candado(const Candado&) = delete;
    Candado& operator=(const Candado&) = delete;
    ~Candado();

    /// Asks the database whether it is still ours: a connection that was lost and mended has lost
    /// it, and so has one that cannot be asked.
    bool Vigente();
    /// Tells the others that the holder is alive. False when it is no longer ours.
    bool Renovar(const QDateTime& ahora);

private:
    enum class Clase { DeSesion, Arriendo };
    Candado(SqlConnection& conexion, Clase clase, QString nombre, QString quien, QDateTime desde);
    static base::Result<CandadoODueno, FalloSql> Arrendar(Candado candado);
    base::Result<void, FalloSql> Anotar();
    base::Result<bool, FalloSql> Renovado(const QDateTime& ahora);

    SqlConnection* conexion_;
    Clase clase_;
    QString nombre_;
    QString quien_;
    QDateTime desde_;
};

}  // namespace quimo::data
