#include "data/valores_escritos.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <QRegularExpression>

#include "data/valores.h"

using namespace Qt::StringLiterals;

namespace quimo::data {

namespace {

constexpr QChar kTilde(0x0303);

/// Folds any text, by taking its letters and their accents apart.
QString PlegarDespacio(const QString& texto) {
    QString plegado;
    for (const QChar letra : texto.normalized(QString::NormalizationForm_D)) {
        if (letra.category() != QChar::Mark_NonSpacing) {
            plegado += letra;
        } else if (letra == kTilde && (plegado.endsWith(u'n') || plegado.endsWith(u'N'))) {
            plegado.back() = u'ñ';
        }
    }
    return plegado.toCaseFolded();
}

constexpr int kLatinas = 256;
/// What each Latin letter folds to, so that long lists are searched at once; 0 for those that need
/// the slow way.
std::array<char16_t, kLatinas> TablaLatina() {
    std::array<char16_t, kLatinas> tabla{};
    for (int i = 0; i < kLatinas; ++i) {
        const QString plegada = PlegarDespacio(QChar(i));
        if (plegada.size() == 1) tabla[static_cast<size_t>(i)] = plegada[0].unicode();
    }
    return tabla;
}

/// The text with its thousands' signs taken away and a point for the decimals. Nothing when the
/// thousands are not groups of three.
std::optional<QString> SinMillares(QString numero, QChar millares, QChar decimales) {
    const QString m = QRegularExpression::escape(millares);
    const QRegularExpression forma(u"^-?[0-9]{1,3}(%1[0-9]{3})*(%2[0-9]+)?$"_s.arg(
        m, QRegularExpression::escape(QString(decimales))));
    if (!forma.match(numero).hasMatch()) return std::nullopt;
    return numero.remove(millares).replace(decimales, u'.');
}

}  // namespace

ClaseValor ClaseDe(TipoSql tipo) {
    switch (tipo) {
        case TipoSql::Bit:
            return ClaseValor::Logico;
        case TipoSql::TinyInt:
        case TipoSql::SmallInt:
        case TipoSql::Int:
        case TipoSql::BigInt:
        case TipoSql::Money:
        case TipoSql::SmallMoney:
        case TipoSql::Numeric:
        case TipoSql::Float:
        case TipoSql::Real:
            return ClaseValor::Numero;
        case TipoSql::DateTime:
        case TipoSql::SmallDateTime:
            return ClaseValor::Fecha;
        case TipoSql::Char:
        case TipoSql::VarChar:
        case TipoSql::NChar:
        case TipoSql::NVarChar:
            return ClaseValor::Texto;
        case TipoSql::Text:
        case TipoSql::NText:
        case TipoSql::UniqueIdentifier:
        case TipoSql::Binary:
        case TipoSql::VarBinary:
        case TipoSql::Image:
            return ClaseValor::Otro;
    }
    return ClaseValor::Otro;
}

bool EsTexto(TipoSql tipo) {
    return ClaseDe(tipo) == ClaseValor::Texto || tipo == TipoSql::Text || tipo == TipoSql::NText;
}

bool EsTextoAncho(TipoSql tipo) {
    return tipo == TipoSql::NChar || tipo == TipoSql::NVarChar || tipo == TipoSql::NText;
}

RangoDeFechas FechasDe(TipoSql tipo) {
    if (tipo == TipoSql::SmallDateTime) return {QDate(1900, 1, 1), QDate(2079, 6, 6)};
    return {QDate(1753, 1, 1), QDate(9999, 12, 31)};
}

std::optional<base::Decimal> LeerNumero(const QString& escrito) {
    QString numero = escrito.simplified().remove(u' ').remove(u'$');
    if (numero.startsWith(u'+')) numero.remove(0, 1);
    const qsizetype coma = numero.lastIndexOf(u',');
    const qsizetype punto = numero.lastIndexOf(u'.');
    if (coma >= 0) {
        const QChar decimal = coma > punto && punto >= 0 ? u',' : u'.';
        const auto limpio = SinMillares(numero, decimal == u',' ? u'.' : u',', decimal);
        // "0,125" is less than one: nobody writes thousands behind a zero.
        static const QRegularExpression kTrasCero(u"^-?0,"_s);
        if (limpio && !numero.contains(kTrasCero)) {
            numero = *limpio;
        } else if (punto < 0 && numero.count(u',') == 1) {
            numero.replace(u',', u'.');
        } else {
            return std::nullopt;
        }
    }
    static const QRegularExpression kNumero(u"^-?([0-9]+\\.?[0-9]*|\\.[0-9]+)$"_s);
    if (!kNumero.match(numero).hasMatch()) return std::nullopt;
    if (numero.endsWith(u'.')) numero.chop(1);
    numero.replace(QRegularExpression(u"^(-?)\\."_s), u"\\10."_s);
    return base::Decimal::DeTexto(numero.toStdString());
}

std::optional<QString> NumeroEscrito(const QString& escrito) {
    const auto numero = LeerNumero(escrito);
    if (!numero) return std::nullopt;
    return QString::fromStdString(numero->ATexto());
}

std::optional<QDate> LeerFecha(const QString& escrito) {
    static const QRegularExpression kFecha(u"^([0-9]{1,2})([/.-])([0-9]{1,2})\\2([0-9]{4})$"_s);
    const QRegularExpressionMatch partes = kFecha.match(escrito.trimmed());
    if (!partes.hasMatch()) return std::nullopt;
    const QDate fecha(partes.captured(4).toInt(), partes.captured(3).toInt(),
                      partes.captured(1).toInt());
    if (!fecha.isValid() || fecha < FechasDe(TipoSql::DateTime).desde) return std::nullopt;
    return fecha;
}

std::optional<bool> LeerLogico(const QString& escrito) {
    const QString valor = Plegar(escrito.trimmed());
    for (const QString& si : {u"si"_s, u"s"_s, u"1"_s, u"verdadero"_s}) {
        if (valor == si) return true;
    }
    for (const QString& no : {u"no"_s, u"n"_s, u"0"_s, u"falso"_s}) {
        if (valor == no) return false;
    }
    return std::nullopt;
}

QString TextoVisible(const QVariant& valor) {
    if (valor.typeId() == QMetaType::Bool) return valor.toBool() ? u"Sí"_s : u"No"_s;
    if (valor.typeId() == qMetaTypeId<base::Dinero>()) {
        return QString::fromStdString(valor.value<base::Dinero>().AMoneda());
    }
    return TextoDeValor(valor);
}

QString TextoPlano(const QVariant& valor) {
    if (valor.typeId() != qMetaTypeId<base::Dinero>()) return TextoVisible(valor);
    QString texto = TextoDeValor(valor);
    for (int i = 0; i < 2 && texto.endsWith(u'0'); ++i)
        texto.chop(1);
    return texto;
}

QString Plegar(const QString& texto) {
    static const std::array<char16_t, kLatinas> kTabla = TablaLatina();
    QString plegado(texto.size(), Qt::Uninitialized);
    QChar* destino = plegado.data();
    for (const QChar letra : texto) {
        const char16_t letra_plegada = letra.unicode() < kLatinas ? kTabla[letra.unicode()] : u'\0';
        if (letra_plegada == u'\0') return PlegarDespacio(texto);
        *destino++ = letra_plegada;
    }
    return plegado;
}

int Comparar(const base::Decimal& uno, const base::Decimal& otro) {
    const int escala = std::max(uno.escala, otro.escala);
    const auto a = uno.ConEscala(escala);
    const auto b = otro.ConEscala(escala);
    if (a && b) return a->digitos < b->digitos ? -1 : (a->digitos > b->digitos ? 1 : 0);
    // Together they do not fit 38 digits: they are so far apart that a binary fraction tells.
    const auto real = [](const base::Decimal& d) {
        return static_cast<long double>(d.digitos) / std::pow(10.0L, d.escala);
    };
    return real(uno) < real(otro) ? -1 : 1;
}

}  // namespace quimo::data
