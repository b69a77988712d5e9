#include "catalog/consulta/exportar.h"

#include <algorithm>
#include <memory>

#include <xlsxwriter.h>

#include <QRegularExpression>
#include <QSaveFile>
#include <QTemporaryDir>

#include "data/valores.h"
#include "data/valores_escritos.h"

using namespace Qt::StringLiterals;

namespace quimo::catalog {

namespace {

using base::Error;

constexpr qsizetype kFilasMaxXlsx = 1048575;  // and the captions
constexpr qsizetype kTextoMaxXlsx = 32767;
constexpr qsizetype kCifrasExactas = 15;  // what Excel keeps of a number
constexpr qsizetype kAnchoMin = 8;
constexpr qsizetype kAnchoMax = 60;

bool EsTexto(const QVariant& valor) { return valor.typeId() == QMetaType::QString; }

/// A text that no spreadsheet takes for a formula. The wide signs count too: some programs of the
/// East read them alike.
QString SinFormula(const QString& texto) {
    static const QString kSignos = u"=+-@\t\r\n\uFF1D\uFF0B\uFF0D\uFF20"_s;
    return !texto.isEmpty() && kSignos.contains(texto[0]) ? u'\'' + texto : texto;
}

QString CeldaCsv(const QString& texto) {
    static const QRegularExpression kConComillas(u"[\",\\r\\n]|^\\s|\\s$"_s);
    if (!texto.contains(kConComillas)) return texto;
    QString doblado = texto;
    return u'"' + doblado.replace(u'"', u"\"\""_s) + u'"';
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

/// What XML cannot hold is replaced; what Excel would take for an escaped sign is escaped.
QByteArray TextoXml(QString texto) {
    for (QChar& letra : texto) {
        if (letra.isNull() || letra.unicode() >= 0xFFFE) letra = QChar::ReplacementCharacter;
    }
    static const QRegularExpression kEscape(u"_(?=x[0-9A-Fa-f]{4}_)"_s);
    return texto.replace(kEscape, u"_x005F_"_s).toUtf8();
}

/// The workbook and its formats, until it is closed.
class Libro {
public:
    explicit Libro(const QString& archivo)
        : libro_(workbook_new(archivo.toLocal8Bit().constData())) {
        if (libro_ != nullptr) hoja_ = workbook_add_worksheet(libro_.get(), "Consulta");
    }
    bool Abierto() const { return hoja_ != nullptr; }

    bool Titulos(const TablaConsulta& tabla) {
        lxw_format* const negrita = workbook_add_format(libro_.get());
        format_set_bold(negrita);
        worksheet_freeze_panes(hoja_, 1, 0);
        for (qsizetype c = 0; c < tabla.Columnas(); ++c) {
            const auto columna = static_cast<lxw_col_t>(c);
            if (worksheet_write_string(hoja_, 0, columna, TextoXml(tabla.Titulo(c)).constData(),
                                       negrita) != LXW_NO_ERROR)
                return false;
            qsizetype ancho = std::max(kAnchoMin, tabla.Titulo(c).size() + 2);
            for (qsizetype f = 0; f < tabla.Filas(); ++f)
                ancho = std::max(ancho, tabla.Texto(f, c).size() + 2);
            const auto medida = static_cast<double>(std::min(ancho, kAnchoMax));
            worksheet_set_column(hoja_, columna, columna, medida, nullptr);
        }
        return true;
    }

    bool Celda(qsizetype f, qsizetype c, const QVariant& valor) {
        if (!valor.isValid()) return true;
        const auto fila = static_cast<lxw_row_t>(f + 1);
        const auto columna = static_cast<lxw_col_t>(c);
        if (valor.typeId() == QMetaType::Bool)
            return worksheet_write_boolean(hoja_, fila, columna, valor.toBool() ? 1 : 0, nullptr) ==
                   LXW_NO_ERROR;
        if (valor.typeId() == QMetaType::QDateTime && valor.toDateTime().date() >= kDesde)
            return Fecha(fila, columna, valor.toDateTime());
        const QString numero = data::TextoDeValor(valor);
        if (!EsTexto(valor) && CabeExacto(numero))
            return worksheet_write_number(hoja_, fila, columna, numero.toDouble(),
                                          Formato(FormatoDe(valor))) == LXW_NO_ERROR;
        return worksheet_write_string(hoja_, fila, columna,
                                      TextoXml(data::TextoVisible(valor)).constData(),
                                      nullptr) == LXW_NO_ERROR;
    }

    lxw_error Cerrar() { return workbook_close(libro_.release()); }

private:
    // Before March 1900 Excel counts a day that there was not.
    static constexpr QDate kDesde = QDate::fromJulianDay(2415080);

    static bool CabeExacto(const QString& numero) {
        static const QRegularExpression kForma(u"^-?[0-9]+(\\.[0-9]+)?$"_s);
        QString cifras = numero;
        cifras.remove(u'-').remove(u'.');
        return numero.contains(kForma) && cifras.size() <= kCifrasExactas;
    }
    static QByteArray FormatoDe(const QVariant& valor) {
        if (valor.typeId() == qMetaTypeId<base::Dinero>()) return "$#,##0.00";
        if (valor.typeId() != qMetaTypeId<base::Decimal>()) return {};
        const int decimales = valor.value<base::Decimal>().escala;
        return decimales == 0 ? "0" : "0." + QByteArray(decimales, '0');
    }
    bool Fecha(lxw_row_t fila, lxw_col_t columna, const QDateTime& momento) {
        const QDate dia = momento.date();
        const QTime hora = momento.time();
        lxw_datetime partes = {dia.year(),  dia.month(),   dia.day(),
                               hora.hour(), hora.minute(), hora.second() + hora.msec() / 1000.0};
        return worksheet_write_datetime(
                   hoja_, fila, columna, &partes,
                   Formato(hora == QTime(0, 0) ? "dd/mm/yyyy" : "dd/mm/yyyy hh:mm:ss")) ==
               LXW_NO_ERROR;
    }
    /// None for the general one.
    lxw_format* Formato(const QByteArray& formato) {
        if (formato.isEmpty()) return nullptr;
        lxw_format*& hecho = formatos_[formato];
        if (hecho == nullptr) {
            hecho = workbook_add_format(libro_.get());
            format_set_num_format(hecho, formato.constData());
        }
        return hecho;
    }

    struct Soltar {
        void operator()(lxw_workbook* libro) const { lxw_workbook_free(libro); }
    };
    std::unique_ptr<lxw_workbook, Soltar> libro_;
    lxw_worksheet* hoja_ = nullptr;
    QHash<QByteArray, lxw_format*> formatos_;
};

Error FalloDeLibro() { return {Error::Codigo::Archivo, "No se pudo preparar el libro de Excel."}; }

base::Result<void> CabeEnLibro(const TablaConsulta& tabla) {
    if (tabla.Filas() > kFilasMaxXlsx)
        return Error{Error::Codigo::Datos,
                     "Una hoja de Excel no admite tantos renglones. Exporte a CSV."};
    for (qsizetype f = 0; f < tabla.Filas(); ++f) {
        for (qsizetype c = 0; c < tabla.Columnas(); ++c) {
            if (EsTexto(tabla.Valor(f, c)) && tabla.Texto(f, c).size() > kTextoMaxXlsx)
                return Error{Error::Codigo::Datos,
                             u"El texto de «%1» en el renglón %2 es demasiado largo para Excel. "
                             u"Exporte a CSV."_s.arg(tabla.Titulo(c))
                                 .arg(f + 1)
                                 .toStdString()};
        }
    }
    return {};
}

}  // namespace

QByteArray TextoCsv(const TablaConsulta& tabla) {
    QString texto(QChar::ByteOrderMark);
    QStringList celdas;
    for (qsizetype c = 0; c < tabla.Columnas(); ++c)
        celdas << CeldaCsv(SinFormula(tabla.Titulo(c)));
    texto += celdas.join(u',') + u"\r\n"_s;
    for (qsizetype f = 0; f < tabla.Filas(); ++f) {
        celdas.clear();
        for (qsizetype c = 0; c < tabla.Columnas(); ++c) {
            const QVariant& valor = tabla.Valor(f, c);
            celdas << CeldaCsv(EsTexto(valor) ? SinFormula(valor.toString())
                                              : data::TextoPlano(valor));
        }
        texto += celdas.join(u',') + u"\r\n"_s;
    }
    return texto.toUtf8();
}

base::Result<void> ExportarCsv(const TablaConsulta& tabla, const QString& archivo) {
    return Escribir(TextoCsv(tabla), archivo);
}

base::Result<void> ExportarXlsx(const TablaConsulta& tabla, const QString& archivo) {
    QUIMO_TRY_VOID(CabeEnLibro(tabla));
    // Made apart and written at once: a file of that name is either the old or the new one.
    const QTemporaryDir carpeta;
    const QString borrador = carpeta.filePath(u"consulta.xlsx"_s);
    Libro libro(borrador);
    if (!libro.Abierto() || !libro.Titulos(tabla)) return FalloDeLibro();
    for (qsizetype f = 0; f < tabla.Filas(); ++f) {
        for (qsizetype c = 0; c < tabla.Columnas(); ++c) {
            if (!libro.Celda(f, c, tabla.Valor(f, c))) return FalloDeLibro();
        }
    }
    QFile hecho(borrador);
    if (libro.Cerrar() != LXW_NO_ERROR || !hecho.open(QIODevice::ReadOnly)) return FalloDeLibro();
    return Escribir(hecho.readAll(), archivo);
}

QString TextoTabulado(const TablaConsulta& tabla, const QVector<qsizetype>& filas) {
    static const QRegularExpression kCortes(u"[\\t\\r\\n]"_s);
    QStringList lineas;
    for (const qsizetype fila : filas) {
        QStringList celdas;
        for (qsizetype c = 0; c < tabla.Columnas(); ++c)
            celdas << data::TextoPlano(tabla.Valor(fila, c)).replace(kCortes, u" "_s);
        lineas << celdas.join(u'\t');
    }
    return lineas.join(u'\n');
}

}  // namespace quimo::catalog
