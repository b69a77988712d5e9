#pragma once

#include <QByteArray>
#include <QString>

namespace quimo::security {

/// A text as bytes of the code page Windows-1252, one byte per character. A character that the page
/// does not have becomes "?". The five bytes that the page leaves undefined are the control
/// characters of the same number, so that every byte has its character and back.
QByteArray APagina(const QString& texto);
/// The characters of the bytes; the inverse of APagina for all 256.
QString DePagina(const QByteArray& bytes);
/// Whether APagina keeps every character of the text.
bool CabeEnPagina(const QString& texto);

}  // namespace quimo::security
