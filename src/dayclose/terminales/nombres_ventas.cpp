#include "dayclose/terminales/nombres_ventas.h"

#include <QRegularExpression>

#include "foundation/parametros.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

namespace {

struct Nombre {
    const char16_t* tabla = nullptr;
    const char16_t* articulo = nullptr;
    const char16_t* uno = nullptr;
    const char16_t* varios = nullptr;
};

constexpr Nombre kNombres[] = {
    {u"Comanda", u"una", u"orden", u"órdenes"},
    {u"Cuenta", u"una", u"cuenta", u"cuentas"},
    {u"ProductosXCuenta", u"un", u"artículo", u"artículos"},
    {u"Cortesia", u"una", u"cortesía", u"cortesías"},
    {u"ImpuestosXCuenta", u"un", u"impuesto", u"impuestos"},
    {u"Modificador", u"un", u"modificador", u"modificadores"},
    {u"Pago", u"un", u"pago", u"pagos"},
};

constexpr Nombre kOtro = {u"", u"un", u"renglón", u"renglones"};

constexpr qsizetype kCaracteresVisibles = 30;

const Nombre& Buscar(const QString& tabla) {
    for (const Nombre& nombre : kNombres) {
        if (tabla.compare(QString::fromUtf16(nombre.tabla), Qt::CaseInsensitive) == 0)
            return nombre;
    }
    return kOtro;
}

}  // namespace

QString UnRenglon(const QString& tabla) {
    const Nombre& nombre = Buscar(tabla);
    return QString::fromUtf16(nombre.articulo) + u' ' + QString::fromUtf16(nombre.uno);
}

QString RenglonesContados(qint64 cuantos, const QString& tabla) {
    const Nombre& nombre = Buscar(tabla);
    return QString::number(cuantos) + u' ' +
           QString::fromUtf16(cuantos == 1 ? nombre.uno : nombre.varios);
}

QString NombreDeRenglones(const QString& tabla) { return QString::fromUtf16(Buscar(tabla).varios); }

QString ClaveVisible(const QString& condicion) {
    QString clave = condicion;
    return clave.replace(u" AND "_s, u", "_s).replace(u"=NULL"_s, u" sin valor"_s);
}

QString FechaTrabajoMostrada(const QString& fecha) {
    if (foundation::EsFechaTrabajo(fecha)) return foundation::FechaTrabajoVisible(fecha);
    return TextoVisible(fecha);
}

QString ImporteVisible(base::Dinero importe) {
    if (importe.Diezmilesimas() % 100 == 0) return QString::fromStdString(importe.AMoneda());
    return u'$' + QString::fromStdString(importe.ATexto());
}

QString TextoVisible(const QString& texto) {
    QString visible = texto.left(kCaracteresVisibles);
    if (!visible.isEmpty() && visible.back().isHighSurrogate()) visible.chop(1);
    for (QChar& caracter : visible) {
        if (caracter.category() == QChar::Other_Control) caracter = u'·';
    }
    if (visible.size() < texto.size()) visible += u'…';
    return u'«' + visible + u'»';
}

LiteralLeido LeerLiteral(const QString& literal) {
    if (literal == u"NULL"_s) return {.nulo = true};
    if (literal.size() < 2 || !literal.startsWith(u'\'')) return {.texto = literal};
    QString texto = literal.mid(1, literal.size() - 2);
    return {.texto = texto.replace(u"''"_s, u"'"_s)};
}

QString LiteralVisible(const QString& literal) {
    // Money is all that sales rows write with decimals, and always four of them.
    static const QRegularExpression kImporte(u"^-?[0-9]+\\.[0-9]{4}$"_s);
    static const QRegularExpression kFecha(
        u"^[0-9]{2}/[0-9]{2}/[0-9]{4}( [0-9]{2}:[0-9]{2}:[0-9]{2})?$"_s);
    const LiteralLeido leido = LeerLiteral(literal);
    if (leido.nulo) return u"sin valor"_s;
    if (literal.startsWith(u'\'')) {
        return kFecha.match(leido.texto).hasMatch() ? leido.texto : TextoVisible(leido.texto);
    }
    if (!kImporte.match(literal).hasMatch()) return literal;
    const auto importe = base::Dinero::DeTexto(literal.toStdString());
    return importe ? ImporteVisible(*importe) : literal;
}

}  // namespace quimo::dayclose
