#include "catalog/sesion/valor_columna.h"

#include <algorithm>
#include <limits>

#include "base/decimal.h"
#include "base/dinero.h"
#include "base/letras_terminal.h"
#include "data/valores.h"
#include "data/valores_escritos.h"
#include "security/pagina_codigos.h"

using namespace Qt::StringLiterals;

namespace quimo::catalog {

using data::TipoSql;

namespace {

using Valor = base::Result<QVariant, Objecion>;

struct RangoEntero {
    TipoSql tipo;
    qint64 minimo = 0;
    qint64 maximo = 0;
};
// Keys and counts are never wider than an INT.
constexpr RangoEntero kEnteros[] = {
    {TipoSql::TinyInt, 0, std::numeric_limits<quint8>::max()},
    {TipoSql::SmallInt, std::numeric_limits<qint16>::min(), std::numeric_limits<qint16>::max()},
    {TipoSql::Int, std::numeric_limits<qint32>::min(), std::numeric_limits<qint32>::max()},
    {TipoSql::BigInt, std::numeric_limits<qint32>::min(), std::numeric_limits<qint32>::max()},
};

Valor FueraDeRango(const QString& campo, const QString& texto) {
    return Objecion{u"El campo "_s + campo + u" está fuera de rango: "_s + texto};
}

Valor Entero(const QString& campo, const QString& texto, qint64 minimo, qint64 maximo) {
    bool es_numero = false;
    const qint64 numero = texto.toLongLong(&es_numero);
    if (!es_numero)
        return Objecion{u"El campo "_s + campo + u" no es un número entero: "_s + texto};
    if (numero < minimo || numero > maximo) return FueraDeRango(campo, texto);
    return QVariant(static_cast<int>(numero));
}

Valor Exacto(const data::Columna& columna, const QString& campo, const QString& texto) {
    const auto leido = base::Decimal::DeTexto(texto.toStdString());
    if (!leido) return Objecion{u"El campo "_s + campo + u" no es un número: "_s + texto};
    if (columna.tipo == TipoSql::Money || columna.tipo == TipoSql::SmallMoney) {
        const auto dinero = base::Dinero::DeTexto(texto.toStdString());
        if (!dinero) return FueraDeRango(campo, texto);
        return QVariant::fromValue(*dinero);
    }
    if (columna.tipo != TipoSql::Numeric) return QVariant(texto.toDouble());
    const auto ajustado = leido->ConEscala(columna.escala);
    if (!ajustado) return FueraDeRango(campo, texto);
    const base::Decimal entero{ajustado->digitos < 0 ? -ajustado->digitos : ajustado->digitos, 0};
    if (static_cast<int>(entero.ATexto().size()) > columna.precision) {
        return FueraDeRango(campo, texto);
    }
    return QVariant::fromValue(*ajustado);
}

/// What the central database keeps and every terminal can hold in an index, so that nothing that
/// was saved by day stops the close at night.
bool SeGuarda(QChar letra) {
    return letra >= u' ' && security::CabeEnPagina(letra) &&
           base::EsLetraDeTerminal(letra.unicode());
}

Valor Letras(const data::Columna& columna, const QString& campo, const QString& texto) {
    if (columna.longitud > 0 && texto.size() > columna.longitud) {
        return Objecion{u"El campo %1 admite %2 letras y tiene %3"_s.arg(campo)
                            .arg(columna.longitud)
                            .arg(texto.size())};
    }
    const auto ajena = std::find_if_not(texto.begin(), texto.end(), SeGuarda);
    if (ajena == texto.end()) return QVariant(texto);
    const QString letra = texto.mid(ajena - texto.begin(), ajena->isHighSurrogate() ? 2 : 1);
    return Objecion{
        u"El campo %1 lleva una letra que no guardan la base de datos ni las terminales: %2"_s.arg(
            campo, *ajena >= u' ' ? letra : u"un salto de línea o tabulador"_s)};
}

}  // namespace

QString Compuesto(const QString& texto) { return texto.normalized(QString::NormalizationForm_C); }

Valor ValorParaColumna(const data::Columna& columna, const QString& campo, const QString& texto) {
    const QString numero = texto.trimmed();
    if (columna.tipo == TipoSql::Bit) return QVariant(numero == u"1"_s);
    for (const auto& [tipo, minimo, maximo] : kEnteros) {
        if (columna.tipo != tipo) continue;
        if (numero.isEmpty()) return QVariant();
        return Entero(campo, numero, minimo, maximo);
    }
    for (const TipoSql tipo :
         {TipoSql::Money, TipoSql::SmallMoney, TipoSql::Numeric, TipoSql::Float, TipoSql::Real}) {
        if (columna.tipo != tipo) continue;
        if (numero.isEmpty()) return QVariant();
        return Exacto(columna, campo, numero);
    }
    return Letras(columna, campo, texto);
}

base::Result<QString, Objecion> FechaEscrita(const QString& texto) {
    const auto fecha = data::LeerFecha(texto);
    if (!fecha) {
        return Objecion{u"La fecha "_s + texto +
                        u" no existe. Se escribe día/mes/año, como 31/12/2026"_s};
    }
    return data::TextoDeFecha(*fecha);
}

}  // namespace quimo::catalog
