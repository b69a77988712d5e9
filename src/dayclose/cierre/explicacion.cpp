#include "dayclose/cierre/explicacion.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include <QDateTime>
#include <QRegularExpression>
#include <QStringList>

#include "base/decimal.h"
#include "data/consultar.h"
#include "data/numeros_nativos.h"
#include "data/valores.h"
#include "data/valores_escritos.h"
#include "dayclose/terminales/nombres_ventas.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

using data::Columna;
using data::Conjunto;
using data::SqlConnection;
using data::TipoSql;
namespace nativo = data::nativo;

namespace {

constexpr int kDiferenciasMostradas = 3;
constexpr qsizetype kCifrasMostradas = 40;

bool EsFecha(TipoSql tipo) { return data::ClaseDe(tipo) == data::ClaseValor::Fecha; }

/// The smallest and largest number that a column holds. Other columns have no such ends.
struct Extremos {
    TipoSql tipo;
    const char16_t* minimo = nullptr;
    const char16_t* maximo = nullptr;
};

constexpr Extremos kExtremos[] = {
    {TipoSql::TinyInt, u"0", u"255"},
    {TipoSql::SmallInt, u"-32768", u"32767"},
    {TipoSql::Int, u"-2147483648", u"2147483647"},
    {TipoSql::BigInt, u"-9223372036854775808", u"9223372036854775807"},
    {TipoSql::Money, u"-922337203685477.5808", u"922337203685477.5807"},
    {TipoSql::SmallMoney, u"-214748.3648", u"214748.3647"},
};

QString ProblemaDeTexto(const Columna& columna, const QString& texto) {
    // Counted as the database does: a pair of surrogates is one character.
    const qsizetype largo = texto.toUcs4().size();
    if (columna.longitud <= 0 || largo <= columna.longitud) return {};
    return u"El texto de la columna %1 es demasiado largo: tiene %2 caracteres y caben %3.\n  %4"_s
        .arg(columna.nombre, QString::number(largo), QString::number(columna.longitud),
             TextoVisible(texto));
}

QString ProblemaDeFecha(const Columna& columna, const QString& texto) {
    const auto dia = data::FechaDeTexto(texto);
    if (!dia) {
        return u"La columna %1 tiene %2, que no se entiende como fecha."_s.arg(columna.nombre,
                                                                               TextoVisible(texto));
    }
    const auto [desde, hasta] = data::FechasDe(columna.tipo);
    if (*dia >= desde && *dia <= hasta) return {};
    return u"La fecha de la columna %1 es %2, y la base central admite del %3 al %4."_s.arg(
        columna.nombre, texto.left(10), data::TextoDeFecha(desde), data::TextoDeFecha(hasta));
}

QString ProblemaDeNumero(const Columna& columna, const QString& texto) {
    bool es_numero = false;
    const double aproximado = texto.toDouble(&es_numero);
    if (!es_numero || !std::isfinite(aproximado)) {
        return u"La columna %1 tiene %2 donde va un número."_s.arg(columna.nombre,
                                                                   TextoVisible(texto));
    }
    const auto* extremos = std::find_if(std::begin(kExtremos), std::end(kExtremos),
                                        [&](const Extremos& e) { return e.tipo == columna.tipo; });
    if (extremos == std::end(kExtremos)) return {};
    const QString minimo = QString::fromUtf16(extremos->minimo);
    const QString maximo = QString::fromUtf16(extremos->maximo);
    const bool dentro = aproximado > minimo.toDouble() && aproximado < maximo.toDouble();
    if (dentro || texto == minimo || texto == maximo) return {};
    return u"El número de la columna %1 es %2, y la base central admite de %3 a %4."_s.arg(
        columna.nombre, texto.left(kCifrasMostradas), minimo, maximo);
}

/// What the central column cannot hold of a value; empty when it can.
QString Problema(const Columna& columna, const LiteralLeido& leido) {
    if (leido.nulo) return {};
    if (EsTexto(columna.tipo)) return ProblemaDeTexto(columna, leido.texto);
    if (EsFecha(columna.tipo)) return ProblemaDeFecha(columna, leido.texto);
    if (columna.tipo == TipoSql::UniqueIdentifier || columna.tipo == TipoSql::Binary ||
        columna.tipo == TipoSql::VarBinary || columna.tipo == TipoSql::Image) {
        return {};
    }
    return ProblemaDeNumero(columna, leido.texto);
}

bool EsRepetida(const data::FalloSql& fallo) {
    return fallo.Nativo() == nativo::kIndiceRepetido || fallo.Nativo() == nativo::kLlaveRepetida;
}

/// What stands between quotes in the server's description: it names things in a fixed order.
QStringList Nombrados(const QString& descripcion) {
    static const QRegularExpression kEntreComillas(u"['\"]([^'\"]*)['\"]"_s);
    QStringList nombres;
    auto hallados = kEntreComillas.globalMatch(descripcion);
    while (hallados.hasNext())
        nombres << hallados.next().captured(1);
    return nombres;
}

/// The words for one refused row.
class Explicacion {
public:
    Explicacion(SqlConnection& conexion, const RenglonRechazado& renglon)
        : conexion_(conexion),
          renglon_(renglon),
          se_puede_leer_(conexion.Abierta() && !conexion.EnTransaccion()) {}

    QStringList Lineas() {
        if (EsRepetida(renglon_.fallo)) return Repetida();
        switch (renglon_.fallo.Nativo()) {
            case nativo::kNuloNoAdmitido:
                return SinValor();
            case nativo::kReferencia:
                return Referencia();
            default:
                return NoCabe();
        }
    }

private:
    std::optional<Conjunto> Consultar(const QString& consulta,
                                      const QVector<QVariant>& parametros = {}) {
        if (!se_puede_leer_) return std::nullopt;
        auto conjunto = data::ConjuntoDe(conexion_.Ejecutar(consulta, parametros));
        if (!conjunto || conjunto->filas.isEmpty()) return std::nullopt;
        return std::move(conjunto).value();
    }

    /// The row's literal for a column; nothing when the statement did not write it.
    std::optional<QString> Literal(const QString& columna) const {
        for (const auto& [nombre, literal] : renglon_.valores) {
            if (nombre.compare(columna, Qt::CaseInsensitive) == 0) return literal;
        }
        return std::nullopt;
    }

    /// The day of an order, as the central database has it.
    QString DiaDeOrden(const QString& orden) {
        bool es_numero = false;
        const int numero = orden.toInt(&es_numero);
        if (!es_numero || !se_puede_leer_) return {};
        const auto filas =
            Consultar(u"SELECT Fecha_Trabajo FROM Comanda WHERE ID_Comanda=?"_s, {numero});
        if (!filas) return u" (no está en la base central)"_s;
        return u" (del %1)"_s.arg(FechaTrabajoMostrada(filas->filas[0].value(0).toString()));
    }

    QString Resumen(const QVector<QPair<QString, QString>>& mostrados) {
        QStringList partes;
        for (const auto& [etiqueta, valor] : mostrados) {
            partes << etiqueta + u' ' + valor +
                          (etiqueta == u"orden"_s ? DiaDeOrden(valor) : u""_s);
        }
        return partes.join(u", "_s);
    }

    QStringList Repetida();
    QStringList Comparar(const Conjunto& central);
    QStringList SinValor() const;
    QStringList Referencia();
    QStringList NoCabe();

    SqlConnection& conexion_;
    const RenglonRechazado& renglon_;
    bool se_puede_leer_;
};

struct Etiqueta {
    const char16_t* columna = nullptr;
    const char16_t* texto = nullptr;
};

/// What a row is recognized by, in the order in which it is told.
constexpr Etiqueta kEtiquetas[] = {
    {u"ID_Comanda", u"orden"},
    {u"Num_Cuenta", u"cuenta"},
    {u"ID_Producto", u"producto"},
    {u"Num_Mesa", u"mesa"},
    {u"Fecha_Apertura", u"abierta el"},
    {u"ID_Tipo_Pago", u"forma de pago"},
    {u"Precio_Venta", u"precio"},
    {u"Total", u"total"},
    {u"Monto", u"monto"},
    {u"Monto_Pago", u"monto"},
    {u"Propina", u"propina"},
    {u"Precio_Modificador", u"precio"},
    {u"Monto_ImpuestosXCuenta", u"impuesto"},
};

/// Whether the central column holds what the statement would have written. An update writes some
/// times as midnight and an insert some seconds as minutes: times are compared by what is left.
bool EsIgual(const QString& literal, const QString& central, TipoSql tipo) {
    const LiteralLeido uno = LeerLiteral(literal);
    const LiteralLeido otro = LeerLiteral(central);
    if (uno.nulo || otro.nulo) return uno.nulo == otro.nulo;
    if (EsFecha(tipo)) {
        const bool con_hora = uno.texto.size() > 10 && otro.texto.size() > 10;
        const qsizetype hasta = con_hora ? 16 : 10;
        return uno.texto.left(hasta) == otro.texto.left(hasta);
    }
    if (EsTexto(tipo)) return uno.texto == otro.texto;
    const auto numero = base::Decimal::DeTexto(uno.texto.toStdString());
    const auto guardado = base::Decimal::DeTexto(otro.texto.toStdString());
    return numero && guardado && *numero == *guardado;
}

QStringList Explicacion::Repetida() {
    QStringList lineas = {
        u"La base central ya tiene %1 con esa clave."_s.arg(UnRenglon(renglon_.tabla))};
    const auto central =
        Consultar(u"SELECT * FROM "_s + renglon_.tabla + u" WHERE "_s + renglon_.condicion);
    if (!central) return lineas;
    return lineas + Comparar(*central);
}

QStringList Explicacion::Comparar(const Conjunto& central) {
    QVector<QPair<QString, QString>> en_central;
    QVector<QPair<QString, QString>> en_terminal;
    QStringList diferencias;
    bool misma_orden = false;
    for (qsizetype i = 0; i < central.columnas.size(); ++i) {
        const Columna& columna = central.columnas[i];
        const auto propio = Literal(columna.nombre);
        const QString ajeno = data::LiteralSql(central.filas[0].value(i));
        const QString guardado = LiteralVisible(ajeno);
        if (propio && columna.nombre.compare(u"ID_Comanda"_s, Qt::CaseInsensitive) == 0) {
            misma_orden = EsIgual(*propio, ajeno, columna.tipo);
        }
        for (const Etiqueta& etiqueta : kEtiquetas) {
            if (columna.nombre.compare(QString::fromUtf16(etiqueta.columna), Qt::CaseInsensitive) !=
                0) {
                continue;
            }
            const QString nombre = QString::fromUtf16(etiqueta.texto);
            en_central.append({nombre, guardado});
            if (propio) en_terminal.append({nombre, LiteralVisible(*propio)});
        }
        if (!propio || EsIgual(*propio, ajeno, columna.tipo)) continue;
        diferencias << u"  %1: %2 en la central, %3 en %4"_s.arg(
            columna.nombre, guardado, LiteralVisible(*propio), renglon_.terminal);
    }
    QStringList lineas = {u"  central: "_s + Resumen(en_central),
                          u"  "_s + renglon_.terminal + u": "_s + Resumen(en_terminal)};
    if (diferencias.isEmpty()) {
        return lineas << u"Los dos renglones son iguales: esta venta ya estaba copiada."_s
                      << u"Parece que %1 no recibió su base de datos nueva y conserva ventas "
                         u"de otro día."_s.arg(renglon_.terminal);
    }
    lineas << u"No son iguales:"_s << diferencias.mid(0, kDiferenciasMostradas);
    const qsizetype mas = diferencias.size() - kDiferenciasMostradas;
    if (mas > 0) lineas << u"  y %1 más"_s.arg(mas);
    if (!misma_orden) {
        return lineas << u"Son dos ventas con el mismo número. Avise a soporte."_s;
    }
    return lineas << u"Es la misma orden: parece que %1 no recibió su base de datos nueva."_s.arg(
                         renglon_.terminal)
                  << u"Vea con soporte cuál de los dos renglones vale."_s;
}

QStringList Explicacion::SinValor() const {
    const QStringList nombres = Nombrados(renglon_.fallo.Descripcion());
    const QString columna = nombres.isEmpty() ? u"Una columna"_s : u"La columna "_s + nombres[0];
    return {columna + u" no tiene valor, y en la base central es obligatoria."_s};
}

QStringList Explicacion::Referencia() {
    const QString descripcion = renglon_.fallo.Descripcion();
    const QStringList nombres = Nombrados(descripcion);
    if (nombres.size() < 3) return NoCabe();
    const QString tabla = nombres[2].section(u'.', -1);
    if (descripcion.contains(u"CHECK"_s)) {
        const auto literal = Literal(nombres.value(3));
        if (!literal)
            return {u"El renglón no cumple la regla %1 de la base central."_s.arg(nombres[0])};
        return {u"La columna %1 tiene %2, y la regla %3 de la base central no lo admite."_s.arg(
            nombres[3], LiteralVisible(*literal), nombres[0])};
    }
    if (!descripcion.contains(u"FOREIGN KEY"_s)) {
        return {u"Renglones de la tabla %1 dependen de este y no dejan cambiarlo."_s.arg(tabla)};
    }
    QStringList columnas = {nombres.value(3)};
    if (nombres.size() < 4 && se_puede_leer_) {
        const auto definicion = conexion_.Describir(tabla);
        columnas = definicion ? definicion->clave : QStringList();
    }
    QStringList nombrado;
    for (const QString& columna : columnas) {
        const auto literal = Literal(columna);
        if (literal && *literal != u"NULL"_s)
            nombrado << columna + u'=' + LeerLiteral(*literal).texto;
    }
    const QString cual = nombrado.isEmpty() ? nombres.value(3) : nombrado.join(u", "_s);
    return {u"El renglón se refiere a otro que no existe en la base central:"_s,
            u"  tabla %1, %2"_s.arg(tabla, cual),
            u"Quizá se borró del catálogo, o el archivo es de otro restaurante."_s};
}

QStringList Explicacion::NoCabe() {
    QStringList lineas;
    const auto definicion =
        se_puede_leer_ ? conexion_.Describir(renglon_.tabla)
                       : base::Result<data::DefinicionTabla, data::FalloSql>(data::FalloSql{});
    if (definicion) {
        for (const Columna& columna : definicion->columnas) {
            const auto literal = Literal(columna.nombre);
            if (!literal) continue;
            const QString problema = Problema(columna, LeerLiteral(*literal));
            if (!problema.isEmpty()) lineas << problema;
        }
    }
    if (!lineas.isEmpty()) return lineas;
    switch (renglon_.fallo.Nativo()) {
        case nativo::kTextoCortado:
        case nativo::kTextoCortadoConColumna:
            return {u"Un texto del renglón es demasiado largo para la base central."_s};
        case nativo::kFechaIlegible:
        case nativo::kFechaFueraDeRango:
        case nativo::kFechaCortaIlegible:
        case nativo::kFechaCortaFueraDeRango:
            return {u"Una fecha del renglón no cabe en la base central o no se entiende."_s};
        case nativo::kDesbordeDeEntero:
        case nativo::kDesbordeDeReal:
        case nativo::kDesbordeDeTextoCorto:
        case nativo::kDesbordeDeTexto:
        case nativo::kDesbordeAlConvertir:
            return {u"Un número del renglón no cabe en la base central."_s};
        default:
            return {u"El servidor no aceptó el renglón."_s};
    }
}

/// A terminal's name as a word of a command line.
QString Palabra(const QString& nombre) {
    static const QRegularExpression kSencillo(u"^[A-Za-z0-9_.-]+$"_s);
    return kSencillo.match(nombre).hasMatch() ? nombre : u'"' + nombre + u'"';
}

}  // namespace

QString SalidaSinTerminal(const QString& terminal) {
    return u"Para cerrar sin esta terminal: quimoctl cerrar ... --continuar --omitir %1\n"
           u"(sus ventas quedan en el archivo y se traen después con --traer)."_s.arg(
               Palabra(terminal));
}

QString ExplicarRechazo(SqlConnection& conexion, const RenglonRechazado& renglon) {
    QStringList lineas = {u"Terminal %1, tabla %2 (%3), clave %4."_s.arg(
        renglon.terminal, renglon.tabla, NombreDeRenglones(renglon.tabla),
        ClaveVisible(renglon.condicion))};
    lineas += Explicacion(conexion, renglon).Lineas();
    if (!EsRepetida(renglon.fallo)) {
        lineas << u"Corregido el renglón en %1, siga con: quimoctl cerrar ... --continuar"_s.arg(
            renglon.terminal);
    }
    lineas << SalidaSinTerminal(renglon.terminal);
    return lineas.join(u'\n');
}

}  // namespace quimo::dayclose
