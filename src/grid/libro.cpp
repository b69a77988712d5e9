#include <algorithm>
#include <memory>
#include <tuple>

#include <xlsxwriter.h>

#include <QDateTime>
#include <QFile>
#include <QMap>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QVector>

#include "base/decimal.h"
#include "base/dinero.h"
#include "grid/formato.h"
#include "grid/libro_interno.h"

using namespace Qt::StringLiterals;

namespace quimo::grid {

namespace {

using base::Error;

constexpr qsizetype kFilasMax = 1048575;  // and the captions
constexpr qsizetype kTextoMax = 32767;
constexpr qsizetype kCifrasExactas = 15;  // what Excel keeps of a number
constexpr qsizetype kAnchoMin = 8;
constexpr qsizetype kAnchoMax = 60;
// Before March 1900 Excel counts a day that there was not.
constexpr QDate kDesde = QDate::fromJulianDay(2415080);

/// What XML cannot hold is replaced; what Excel would take for an escaped sign is escaped.
QByteArray TextoXml(QString texto) {
    for (QChar& letra : texto) {
        if (letra.isNull() || letra.unicode() >= 0xFFFE) letra = QChar::ReplacementCharacter;
    }
    static const QRegularExpression kEscape(u"_(?=x[0-9A-Fa-f]{4}_)"_s);
    return texto.replace(kEscape, u"_x005F_"_s).toUtf8();
}

bool CabeExacto(const QString& numero) {
    static const QRegularExpression kForma(u"^-?[0-9]+(\\.[0-9]+)?$"_s);
    QString cifras = numero;
    cifras.remove(u'-').remove(u'.');
    return numero.contains(kForma) && cifras.size() <= kCifrasExactas;
}

QByteArray FormatoDeNumero(const Celda& celda) {
    if (celda.tipo == TipoCelda::Moneda) return "$#,##0.00";
    if (celda.valor.typeId() != qMetaTypeId<base::Decimal>()) return {};
    const int decimales = celda.valor.value<base::Decimal>().escala;
    return decimales == 0 ? "0" : "0." + QByteArray(decimales, '0');
}

/// The workbook and its formats, until it is closed.
class Libro {
public:
    Libro(const QString& archivo, const Rejilla& rejilla)
        : rejilla_(rejilla),
          anchos_(rejilla.Columnas(), kAnchoMin),
          libro_(workbook_new(archivo.toLocal8Bit().constData())) {
        if (libro_ == nullptr) return;
        hoja_ = workbook_add_worksheet(libro_.get(), rejilla.Nombre().toUtf8().constData());
    }

    base::Result<void> Llenar() {
        if (hoja_ == nullptr) return Fallo();
        const qsizetype titulos = rejilla_.FilasDeTitulos();
        worksheet_freeze_panes(hoja_, static_cast<lxw_row_t>(titulos), 0);
        for (qsizetype f = 0; f < rejilla_.Filas(); ++f) {
            for (qsizetype c = 0; c < rejilla_.Columnas(); ++c) {
                const Celda celda = rejilla_.En(f, c);
                if (f >= titulos && celda.valor.typeId() == QMetaType::QString &&
                    celda.texto.size() > kTextoMax) {
                    return DemasiadoLargo(f, c);
                }
                if (Escribir(static_cast<lxw_row_t>(f), static_cast<lxw_col_t>(c), celda) !=
                    LXW_NO_ERROR) {
                    return Fallo();
                }
                anchos_[c] = std::max(anchos_[c], celda.texto.size() + 2);
            }
        }
        for (qsizetype c = 0; c < rejilla_.Columnas(); ++c) {
            const auto columna = static_cast<lxw_col_t>(c);
            const auto ancho = static_cast<double>(std::min(anchos_[c], kAnchoMax));
            worksheet_set_column(hoja_, columna, columna, ancho, nullptr);
        }
        return {};
    }

    lxw_error Cerrar() { return workbook_close(libro_.release()); }

    static Error Fallo() {
        return {Error::Codigo::Archivo, "No se pudo preparar el libro de Excel."};
    }

private:
    lxw_error Escribir(lxw_row_t fila, lxw_col_t columna, const Celda& celda) {
        const QVariant& valor = celda.valor;
        if (!valor.isValid()) return LXW_NO_ERROR;
        if (celda.tipo == TipoCelda::Casilla)
            return worksheet_write_boolean(hoja_, fila, columna, valor.toBool() ? 1 : 0,
                                           Formato(celda, {}));
        if (celda.tipo == TipoCelda::Fecha && valor.typeId() == QMetaType::QDateTime &&
            valor.toDateTime().date() >= kDesde) {
            return Fecha(fila, columna, celda);
        }
        const QString numero = Cifras(valor);
        if (EsNumerica(celda.tipo) && CabeExacto(numero))
            return worksheet_write_number(hoja_, fila, columna, numero.toDouble(),
                                          Formato(celda, FormatoDeNumero(celda)));
        return worksheet_write_string(hoja_, fila, columna, TextoXml(celda.texto).constData(),
                                      Formato(celda, {}));
    }

    lxw_error Fecha(lxw_row_t fila, lxw_col_t columna, const Celda& celda) {
        const QDate dia = celda.valor.toDateTime().date();
        const QTime hora = celda.valor.toDateTime().time();
        lxw_datetime partes = {dia.year(),  dia.month(),   dia.day(),
                               hora.hour(), hora.minute(), hora.second() + hora.msec() / 1000.0};
        const bool solo_dia = hora == QTime(0, 0);
        return worksheet_write_datetime(
            hoja_, fila, columna, &partes,
            Formato(celda, solo_dia ? "dd/mm/yyyy" : "dd/mm/yyyy hh:mm:ss"));
    }

    /// None for the general one.
    lxw_format* Formato(const Celda& celda, const QByteArray& numero) {
        if (numero.isEmpty() && !celda.negrita && celda.puntos == 0) return nullptr;
        lxw_format*& hecho = formatos_[{numero, celda.negrita, celda.puntos}];
        if (hecho != nullptr) return hecho;
        hecho = workbook_add_format(libro_.get());
        if (!numero.isEmpty()) format_set_num_format(hecho, numero.constData());
        if (celda.negrita) format_set_bold(hecho);
        if (celda.puntos > 0) format_set_font_size(hecho, celda.puntos);
        return hecho;
    }

    Error DemasiadoLargo(qsizetype fila, qsizetype columna) const {
        const qsizetype titulos = rejilla_.FilasDeTitulos();
        return {Error::Codigo::Datos,
                u"El texto de «%1» en el renglón %2 es demasiado largo para Excel. Exporte a CSV."_s
                    .arg(rejilla_.En(titulos - 1, columna).texto)
                    .arg(fila - titulos + 1)
                    .toStdString()};
    }

    struct Soltar {
        void operator()(lxw_workbook* libro) const { lxw_workbook_free(libro); }
    };
    const Rejilla& rejilla_;
    QVector<qsizetype> anchos_;
    std::unique_ptr<lxw_workbook, Soltar> libro_;
    lxw_worksheet* hoja_ = nullptr;
    QMap<std::tuple<QByteArray, bool, int>, lxw_format*> formatos_;
};

}  // namespace

base::Result<QByteArray> LibroDe(const Rejilla& rejilla) {
    if (rejilla.Filas() - rejilla.FilasDeTitulos() > kFilasMax)
        return Error{Error::Codigo::Datos,
                     "Una hoja de Excel no admite tantos renglones. Exporte a CSV."};
    const QTemporaryDir carpeta;
    const QString borrador = carpeta.filePath(u"libro.xlsx"_s);
    Libro libro(borrador, rejilla);
    QUIMO_TRY_VOID(libro.Llenar());
    QFile hecho(borrador);
    if (libro.Cerrar() != LXW_NO_ERROR || !hecho.open(QIODevice::ReadOnly)) return Libro::Fallo();
    return hecho.readAll();
}

}  // namespace quimo::grid
