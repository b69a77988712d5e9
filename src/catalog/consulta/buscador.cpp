#include "catalog/consulta/buscador.h"

#include <algorithm>

#include <QRegularExpression>

#include "data/valores.h"
#include "data/valores_escritos.h"

using namespace Qt::StringLiterals;

namespace quimo::catalog {

namespace {

bool CompararTextos(const QString& texto, const QString& buscado, ModoBusqueda modo) {
    switch (modo) {
        case ModoBusqueda::Contiene:
            return texto.contains(buscado);
        case ModoBusqueda::Empieza:
            return texto.startsWith(buscado);
        case ModoBusqueda::Igual:
            return texto == buscado;
    }
    return false;
}

/// A shown number without its signs: "$1,234.50" is "1234.50".
QString SoloCifras(QString numero) { return numero.remove(u'$').remove(u',').remove(u' '); }

}  // namespace

/// What is looked for, in the form in which each kind of column compares it.
struct Buscador::Patron {
    explicit Patron(const CriterioBusqueda& criterio)
        : modo(criterio.modo),
          texto(data::Plegar(criterio.texto.trimmed())),
          numero(data::LeerNumero(criterio.texto)),
          cifras(numero ? QString::fromStdString(numero->ATexto()) : SoloCifras(texto)),
          es_cifras(cifras.contains(QRegularExpression(u"^[-.0-9]+$"_s))),
          dia(data::LeerFecha(criterio.texto)),
          fecha(dia ? data::TextoDeFecha(*dia) : texto),
          logico(data::LeerLogico(criterio.texto)) {}

    ModoBusqueda modo;
    QString texto;
    std::optional<base::Decimal> numero;
    QString cifras;
    bool es_cifras = false;
    std::optional<QDate> dia;
    QString fecha;
    std::optional<bool> logico;
};

Buscador::Buscador(data::RecordsetPtr filas, QVector<CampoBusqueda> campos)
    : filas_(std::move(filas)), campos_(std::move(campos)) {
    campos_.removeIf(
        [this](const CampoBusqueda& campo) { return filas_->IndiceDe(campo.columna) < 0; });
}

QVector<Buscador::Lugar> Buscador::LugaresDe(qsizetype campo) const {
    QVector<Lugar> lugares;
    for (qsizetype i = 0; i < campos_.size(); ++i) {
        const qsizetype columna = filas_->IndiceDe(campos_[i].columna);
        const bool bandera =
            data::ClaseDe(filas_->Columnas()[columna].tipo) == data::ClaseValor::Logico;
        // Every flag says "Sí" or "No": looked for everywhere, "no" would stop at each row.
        if (campo == i || (campo == CriterioBusqueda::kTodos && !bandera))
            lugares.append({i, columna});
    }
    return lugares;
}

QString Buscador::Visible(const QVariant& valor, qsizetype campo) const {
    return campos_[campo].visible ? campos_[campo].visible(valor) : data::TextoVisible(valor);
}

bool Buscador::Coincide(const QVariant& valor, const Lugar& lugar, const Patron& patron) const {
    if (!valor.isValid()) return false;
    if (campos_[lugar.campo].visible)
        return CompararTextos(data::Plegar(campos_[lugar.campo].visible(valor)), patron.texto,
                              patron.modo);
    switch (data::ClaseDe(filas_->Columnas()[lugar.columna].tipo)) {
        case data::ClaseValor::Numero: {
            if (!patron.es_cifras) return false;
            const QString visible = SoloCifras(data::TextoVisible(valor));
            if (patron.modo != ModoBusqueda::Igual)
                return CompararTextos(visible, patron.cifras, patron.modo);
            const auto numero = data::LeerNumero(visible);
            return patron.numero && numero && data::Comparar(*numero, *patron.numero) == 0;
        }
        case data::ClaseValor::Fecha:
            if (patron.modo == ModoBusqueda::Igual && patron.dia)
                return valor.toDateTime().date() == *patron.dia;
            return CompararTextos(data::TextoVisible(valor), patron.fecha, patron.modo);
        case data::ClaseValor::Logico:
            return patron.logico && *patron.logico == valor.toBool();
        case data::ClaseValor::Texto:
        case data::ClaseValor::Otro:
            return CompararTextos(data::Plegar(data::TextoVisible(valor)), patron.texto,
                                  patron.modo);
    }
    return false;
}

bool Buscador::Coincide(const data::Fila& fila, const QVector<Lugar>& lugares,
                        const Patron& patron) const {
    return std::any_of(lugares.begin(), lugares.end(), [&](const Lugar& lugar) {
        return Coincide(fila[lugar.columna], lugar, patron);
    });
}

Hallazgo Buscador::Recorrer(const CriterioBusqueda& criterio, qsizetype desde) {
    const Patron patron(criterio);
    if (patron.texto.isEmpty()) return Hallazgo::SinTexto;
    const QVector<Lugar> lugares = LugaresDe(criterio.campo);
    const qsizetype cuantas = filas_->RecordCount();
    for (qsizetype paso = 0; paso < cuantas; ++paso) {
        const qsizetype fila = (desde + paso) % cuantas;
        if (!Coincide(filas_->Filas()[fila], lugares, patron)) continue;
        const auto ido = filas_->IrA(fila + 1);
        QUIMO_CHECK(ido.has_value());
        if (desde > 0 && paso == cuantas - 1) return Hallazgo::Unico;
        return fila < desde ? Hallazgo::DesdePrincipio : Hallazgo::Hallado;
    }
    return Hallazgo::Nada;
}

Hallazgo Buscador::Primero(const CriterioBusqueda& criterio) { return Recorrer(criterio, 0); }

Hallazgo Buscador::Siguiente(const CriterioBusqueda& criterio) {
    const auto actual = filas_->Bookmark();
    return Recorrer(criterio, actual ? *actual : 0);
}

QString Buscador::Mensaje(Hallazgo hallazgo, const CriterioBusqueda& criterio) const {
    if (hallazgo == Hallazgo::SinTexto) return u"Escriba lo que desea buscar."_s;
    if (hallazgo == Hallazgo::Nada) return u"No se encontró «%1»."_s.arg(criterio.texto.trimmed());
    QStringList partes;
    for (qsizetype i = 0; i < campos_.size() && partes.size() < 2; ++i) {
        const auto valor = filas_->Campo(campos_[i].columna);
        if (valor) partes << campos_[i].titulo + u": "_s + Visible(*valor, i);
    }
    const QString fila = partes.join(u"   "_s);
    if (hallazgo == Hallazgo::Unico) return u"Es la única coincidencia.\n"_s + fila;
    if (hallazgo == Hallazgo::DesdePrincipio) return u"Se siguió desde el principio.\n"_s + fila;
    return fila;
}

}  // namespace quimo::catalog
