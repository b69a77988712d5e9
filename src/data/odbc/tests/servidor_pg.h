#pragma once

#include <QProcess>
#include <QTemporaryDir>

namespace quimo::data::odbc {

/// A PostgreSQL server of the test's own, on loopback in a temporary folder, run without
/// privileges. It ends with the object, and with the test program if that is killed.
class ServidorPg {
public:
    ServidorPg();
    ~ServidorPg();
    ServidorPg(const ServidorPg&) = delete;
    ServidorPg& operator=(const ServidorPg&) = delete;

    /// Why it could not be prepared; empty when it could.
    const QString& Motivo() const { return motivo_; }
    /// Starts it and waits until it answers.
    bool Arrancar();
    /// Ends it and its sessions at once, as a power cut would.
    void Matar();
    qint64 Id() const { return proceso_.processId(); }
    int Puerto() const { return puerto_; }

private:
    void Preparar();

    QTemporaryDir carpeta_;
    QProcess proceso_;
    QString motivo_;
    QString programas_;
    int puerto_ = 0;
};

}  // namespace quimo::data::odbc
