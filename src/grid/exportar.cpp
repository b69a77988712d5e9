#include "grid/exportar.h"

#include <QRegularExpression>
#include <QSaveFile>

#include "grid/libro_interno.h"

using namespace Qt::StringLiterals;

namespace quimo::grid {

namespace {

using base::Error;

/// A text that no spreadsheet takes for a formula. The wide signs count too: some programs of the
/// East read them alike.
QString SinFormula(const QString& texto) {
    static const QString kSignos = u"=+-@\t\r\n\uFF1D\uFF0B\uFF0D\uFF20"_s;
    return !texto.isEmpty() && kSignos.contains(texto[0]) ? u'\'' + texto : texto;
}

QString CampoCsv(const QString& texto) {
    static const QRegularExpression kConComillas(u"[\",\\r\\n]|^\\s|\\s$"_s);
    if (!texto.contains(kConComillas)) return texto;
    QString doblado = texto;
    return u'"' + doblado.replace(u'"', u"\"\""_s) + u'"';
}

/// Whether the cell's text is somebody's own words, which may be anything.
bool EsTexto(TipoCelda tipo) {
    return tipo == TipoCelda::Texto || tipo == TipoCelda::Estatico || tipo == TipoCelda::Lista;
}

base::Result<void> Escribir(const QByteArray& contenido, const QString& archivo) {
    QSaveFile salida(archivo);
    if (salida.open(QIODevice::WriteOnly) && salida.write(contenido) == contenido.size() &&
        salida.commit()) {
        return {};
    }
    return Error{Error::Codigo::Archivo,
                 u"No se pudo escribir el archivo %1: %2"_s.arg(archivo, salida.errorString())
                     .toStdString()};
}

}  // namespace

QByteArray TextoCsv(const Rejilla& rejilla) {
    QString texto(QChar::ByteOrderMark);
    QStringList campos;
    for (qsizetype f = 0; f < rejilla.Filas(); ++f) {
        campos.clear();
        for (qsizetype c = 0; c < rejilla.Columnas(); ++c) {
            const Celda celda = rejilla.En(f, c);
            campos << CampoCsv(EsTexto(celda.tipo) ? SinFormula(celda.plano) : celda.plano);
        }
        texto += campos.join(u',') + u"\r\n"_s;
    }
    return texto.toUtf8();
}

base::Result<void> ExportarCsv(const Rejilla& rejilla, const QString& archivo) {
    return Escribir(TextoCsv(rejilla), archivo);
}

base::Result<void> ExportarXlsx(const Rejilla& rejilla, const QString& archivo) {
    // Made apart and written at once: a file of that name is either the old or the new one.
    QUIMO_TRY(const QByteArray libro, LibroDe(rejilla));
    return Escribir(libro, archivo);
}

}  // namespace quimo::grid
