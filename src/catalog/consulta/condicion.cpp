#include "catalog/consulta/condicion.h"

#include <algorithm>

#include "data/valores.h"

using namespace Qt::StringLiterals;

namespace quimo::catalog {

namespace {

using data::TipoSql;

constexpr QChar kUltimoLatino(0xFF);

/// Why a value cannot be sent.
struct Motivo {
    QString texto;
};

/// What the user wrote, as the statement compares it.
struct Literal {
    QString desde;  ///< the value; of a day, its beginning
    QString antes;  ///< of a day, the beginning of the next one; empty when there is none
    std::optional<base::Decimal> numero = {};
    std::optional<QDate> dia = {};
};

QString Entrecomillar(const QString& texto, TipoSql tipo) {
    // A narrow literal would lose what its code page lacks, and then "☕" would match "?".
    const bool ancho =
        data::EsTextoAncho(tipo) ||
        std::any_of(texto.begin(), texto.end(), [](QChar c) { return c > kUltimoLatino; });
    return (ancho ? u"N'"_s : u"'"_s) + data::DuplicaApostrofes(texto) + u'\'';
}

QString EscaparLike(const QString& texto) {
    QString escapado;
    for (const QChar letra : texto) {
        if (letra == u'%' || letra == u'_' || letra == u'[') {
            escapado += u'[';
            escapado += letra;
            escapado += u']';
        } else {
            escapado += letra;
        }
    }
    return escapado;
}

base::Result<Literal, Motivo> LeerDia(TipoSql tipo, const QString& valor) {
    const auto dia = data::LeerFecha(valor);
    if (!dia)
        return Motivo{
            u"«%1» no es una fecha que exista. Escríbala como día/mes/año: 31/12/2026."_s.arg(
                valor)};
    const auto [primero, ultimo] = data::FechasDe(tipo);
    if (*dia < primero || *dia > ultimo)
        return Motivo{u"La fecha %1 está fuera de lo que se puede guardar."_s.arg(valor)};
    const auto literal = [](const QDate& fecha) {
        return u'\'' + data::TextoDeFecha(fecha) + u'\'';
    };
    Literal leido{literal(*dia), *dia < ultimo ? literal(dia->addDays(1)) : QString()};
    leido.dia = dia;
    return leido;
}

base::Result<Literal, Motivo> LeerLiteral(const ColumnaFiltrable& columna, const QString& valor) {
    switch (data::ClaseDe(columna.tipo)) {
        case data::ClaseValor::Numero: {
            const auto numero = data::LeerNumero(valor);
            if (!numero) return Motivo{u"«%1» no es un número."_s.arg(valor)};
            Literal leido{QString::fromStdString(numero->ATexto()), {}};
            leido.numero = numero;
            return leido;
        }
        case data::ClaseValor::Fecha:
            return LeerDia(columna.tipo, valor);
        case data::ClaseValor::Logico: {
            const auto logico = data::LeerLogico(valor);
            if (!logico) return Motivo{u"Escriba Sí o No en vez de «%1»."_s.arg(valor)};
            return Literal{*logico ? u"1"_s : u"0"_s, {}};
        }
        case data::ClaseValor::Texto:
        case data::ClaseValor::Otro:
            break;
    }
    return Literal{Entrecomillar(valor, columna.tipo), {}};
}

/// The condition on a code, when what was written is the text that is shown for one.
std::optional<QString> PorCodigo(const ColumnaFiltrable& columna, Operador operador,
                                 const QString& valor) {
    QStringList conocidos;
    for (const CodigoMostrado& uno : columna.codigos) {
        const bool buscado = data::Plegar(uno.texto) == data::Plegar(valor);
        const QString literal = Entrecomillar(uno.codigo, columna.tipo);
        if (buscado && !uno.codigo.isEmpty()) {
            const QString& c = columna.columna;
            if (operador == Operador::Igual) return c + u'=' + literal;
            return u"(%1<>%2 OR %1 IS NULL)"_s.arg(c, literal);
        }
        if (buscado) {
            const QString lista = conocidos.join(u',');
            if (operador == Operador::Distinto) return u"%1 IN (%2)"_s.arg(columna.columna, lista);
            return u"(%1 NOT IN (%2) OR %1 IS NULL)"_s.arg(columna.columna, lista);
        }
        conocidos << literal;
    }
    return std::nullopt;
}

QString HastaElDia(const QString& columna, const Literal& fin) {
    return fin.antes.isEmpty() ? columna + u" IS NOT NULL"_s : columna + u'<' + fin.antes;
}

QString Comparacion(const QString& c, Operador operador, const Literal& literal) {
    const QString& v = literal.desde;
    const bool dia = literal.dia.has_value();
    switch (operador) {
        case Operador::Igual:
            return dia ? u"(%1>=%2 AND %3)"_s.arg(c, v, HastaElDia(c, literal)) : c + u'=' + v;
        case Operador::Distinto:
            if (!dia) return u"(%1<>%2 OR %1 IS NULL)"_s.arg(c, v);
            if (literal.antes.isEmpty()) return u"(%1<%2 OR %1 IS NULL)"_s.arg(c, v);
            return u"(%1<%2 OR %1>=%3 OR %1 IS NULL)"_s.arg(c, v, literal.antes);
        case Operador::MayorIgual:
            return c + u">="_s + v;
        case Operador::MenorIgual:
            return dia ? HastaElDia(c, literal) : c + u"<="_s + v;
        case Operador::Contiene:
        case Operador::Empieza:
        case Operador::Entre:
        case Operador::Vacio:
            break;
    }
    return {};
}

base::Result<QString, Motivo> TextoDeEntre(const ColumnaFiltrable& columna, const QString& desde,
                                           const QString& hasta) {
    if (desde.isEmpty() && hasta.isEmpty()) return QString();
    if (hasta.isEmpty()) {
        QUIMO_TRY(const Literal uno, LeerLiteral(columna, desde));
        return Comparacion(columna.columna, Operador::MayorIgual, uno);
    }
    QUIMO_TRY(const Literal otro, LeerLiteral(columna, hasta));
    const QString hasta_aqui = Comparacion(columna.columna, Operador::MenorIgual, otro);
    if (desde.isEmpty()) return hasta_aqui;
    QUIMO_TRY(const Literal uno, LeerLiteral(columna, desde));
    if ((uno.dia && *uno.dia > *otro.dia) ||
        (uno.numero && data::Comparar(*uno.numero, *otro.numero) > 0))
        return Motivo{u"El segundo valor de «entre» es menor que el primero."_s};
    return QString(u'(' + Comparacion(columna.columna, Operador::MayorIgual, uno) + u" AND "_s +
                   hasta_aqui + u')');
}

QString TextoDeVacio(const ColumnaFiltrable& columna) {
    if (data::ClaseDe(columna.tipo) != data::ClaseValor::Texto)
        return columna.columna + u" IS NULL"_s;
    return u"(%1 IS NULL OR %1='')"_s.arg(columna.columna);
}

base::Result<QString, Motivo> Construir(const ColumnaFiltrable& columna,
                                        const Condicion& condicion) {
    const QString valor = condicion.valor.trimmed();
    if (condicion.operador == Operador::Vacio) return TextoDeVacio(columna);
    if (condicion.operador == Operador::Entre)
        return TextoDeEntre(columna, valor, condicion.hasta.trimmed());
    if (valor.isEmpty()) return QString();
    const QString comodines = EscaparLike(valor);
    if (condicion.operador == Operador::Contiene)
        return QString(columna.columna + u" LIKE "_s +
                       Entrecomillar(u'%' + comodines + u'%', columna.tipo));
    if (condicion.operador == Operador::Empieza)
        return QString(columna.columna + u" LIKE "_s +
                       Entrecomillar(comodines + u'%', columna.tipo));
    if (condicion.operador == Operador::Igual || condicion.operador == Operador::Distinto) {
        const auto codigo = PorCodigo(columna, condicion.operador, valor);
        if (codigo) return *codigo;
    }
    QUIMO_TRY(const Literal literal, LeerLiteral(columna, valor));
    return Comparacion(columna.columna, condicion.operador, literal);
}

}  // namespace

QString NombreDe(Operador operador) {
    switch (operador) {
        case Operador::Contiene:
            return u"contiene"_s;
        case Operador::Empieza:
            return u"empieza con"_s;
        case Operador::Igual:
            return u"igual"_s;
        case Operador::Distinto:
            return u"distinto"_s;
        case Operador::MayorIgual:
            return u"mayor o igual"_s;
        case Operador::MenorIgual:
            return u"menor o igual"_s;
        case Operador::Entre:
            return u"entre"_s;
        case Operador::Vacio:
            return u"vacío"_s;
    }
    return {};
}

QVector<CodigoMostrado> CodigosDe(const ColumnaFiltro& columna) {
    QVector<CodigoMostrado> codigos;
    for (const ItemCodigo& item : columna.codigos)
        codigos.append({item.codigo.toString(), item.texto.toString()});
    if (columna.otro == OtroCodigo::ElUltimo) codigos.last().codigo.clear();
    return codigos;
}

QString ExpresionDe(const ColumnaFiltro& columna) {
    if (columna.codigos.empty()) return columna.expresion.toString();
    const auto entre_comillas = [](const QString& texto) {
        return u'\'' + data::DuplicaApostrofes(texto) + u'\'';
    };
    QString caso = u"CASE "_s + columna.columna.toString();
    for (const CodigoMostrado& uno : CodigosDe(columna)) {
        caso += uno.codigo.isEmpty() ? u" ELSE "_s
                                     : u" WHEN "_s + entre_comillas(uno.codigo) + u" THEN "_s;
        caso += entre_comillas(uno.texto);
    }
    return caso + u" END AS "_s + columna.expresion.toString();
}

QVector<Operador> ColumnaFiltrable::Operadores() const {
    using enum Operador;
    if (!codigos.isEmpty()) return {Igual, Distinto, Vacio};
    switch (data::ClaseDe(tipo)) {
        case data::ClaseValor::Texto:
            return {Contiene, Empieza, Igual, Distinto, MayorIgual, MenorIgual, Entre, Vacio};
        case data::ClaseValor::Numero:
        case data::ClaseValor::Fecha:
            return {Igual, Distinto, MayorIgual, MenorIgual, Entre, Vacio};
        case data::ClaseValor::Logico:
            return {Igual, Distinto, Vacio};
        case data::ClaseValor::Otro:
            break;
    }
    if (data::EsTexto(tipo)) return {Contiene, Empieza, Vacio};
    return {Vacio};
}

base::Result<QString, CondicionMalEscrita> TextoDeCondicion(const ColumnaFiltrable& columna,
                                                            const Condicion& condicion) {
    QUIMO_CHECK(columna.Operadores().contains(condicion.operador));
    auto texto = Construir(columna, condicion);
    if (!texto)
        return CondicionMalEscrita{condicion.columna,
                                   columna.titulo + u": "_s + texto.error().texto};
    return *std::move(texto);
}

}  // namespace quimo::catalog
