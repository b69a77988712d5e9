#pragma once

#include <QByteArray>

#include "data/sql_connection.h"

namespace quimo::data::odbc {

/// Reads little-endian values of a message. What is not there reads as zeros.
class LectorTds {
public:
    explicit LectorTds(QByteArray bytes) : bytes_(std::move(bytes)) {}
    quint64 Entero(int largo);
    QByteArray Bytes(qint64 largo);
    QString Utf16(qint64 caracteres);
    bool Fin() const { return lugar_ >= bytes_.size(); }
    void Saltar(qint64 largo) { lugar_ += largo; }
    qint64 Lugar() const { return lugar_; }

private:
    QByteArray bytes_;
    qint64 lugar_ = 0;
};

/// A parameter of a procedure call: its type and its value.
QVariant LeerParametro(LectorTds& lector);

/// An answer as the tokens of the protocol: messages, sets and counts, errors, done.
QByteArray TokensDeRespuesta(const RespuestaSql& respuesta);

/// The tokens of a login that was taken.
QByteArray TokensDeAcceso(const QString& base);

}  // namespace quimo::data::odbc
