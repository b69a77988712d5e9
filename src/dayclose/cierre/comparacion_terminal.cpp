#include "dayclose/cierre/comparacion_terminal.h"

#include <string_view>

#include <QDateTime>

#include "data/valores.h"
#include "dayclose/cierre/busqueda_central.h"
#include "dayclose/terminales/valor_terminal.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

using data::Fila;

namespace {

using Renglon = BaseTerminal::Renglon;

constexpr std::size_t kFilasPorPregunta = 250;

/// SQL compares texts without the blanks at their end.
std::u16string_view SinBlancosAlFinal(std::u16string_view texto) {
    while (texto.ends_with(u' '))
        texto.remove_suffix(1);
    return texto;
}

bool MismoValor(const jet::Valor& uno, const jet::Valor& otro) {
    const auto* texto = std::get_if<std::u16string>(&uno);
    const auto* otro_texto = std::get_if<std::u16string>(&otro);
    if (texto == nullptr || otro_texto == nullptr) return uno == otro;
    return SinBlancosAlFinal(*texto) == SinBlancosAlFinal(*otro_texto);
}

}  // namespace

ComparadorDeFilas::ComparadorDeFilas(const DefCopia& copia) {
    for (const CampoCopia& insertado : copia.al_insertar) {
        std::optional<Forma> forma;
        for (const CampoCopia& modificado : copia.al_modificar) {
            if (std::u16string_view(modificado.columna) == insertado.columna) {
                forma = modificado.forma;
            }
        }
        al_modificar_.push_back(forma);
    }
}

ResultadoCierre<bool> ComparadorDeFilas::Igual(const Renglon& renglon, std::size_t i,
                                               const QVariant& central) const {
    const jet::Valor& valor = renglon.AlInsertar(i);
    // What the first copy left empty and no update fills says nothing of the row.
    if (!central.isValid() && !al_modificar_[i]) return true;
    if (jet::EsNulo(valor) || !central.isValid()) return jet::EsNulo(valor) && !central.isValid();
    if (!std::holds_alternative<jet::Fecha>(valor)) {
        const auto convertida = AValorTerminal(central, renglon.TipoAlInsertar(i));
        return convertida && MismoValor(valor, *convertida);
    }
    const QString escrita =
        u'\'' +
        (central.typeId() == QMetaType::QDateTime ? data::FechaHoraSql(central.toDateTime())
                                                  : data::TextoDeValor(central)) +
        u'\'';
    QUIMO_TRY(const QString al_insertar, renglon.LiteralAlInsertar(i));
    if (escrita == al_insertar || !al_modificar_[i]) return escrita == al_insertar;
    QUIMO_TRY(const QString al_modificar, renglon.LiteralAlInsertar(i, *al_modificar_[i]));
    return escrita == al_modificar;
}

ResultadoCierre<std::optional<std::size_t>> ComparadorDeFilas::PrimeraDistinta(
    const Renglon& renglon, const Fila& central) const {
    for (std::size_t i = 0; i < al_modificar_.size(); ++i) {
        QUIMO_TRY(const bool igual, Igual(renglon, i, central.value(static_cast<qsizetype>(i))));
        if (!igual) return std::optional(i);
    }
    return std::optional<std::size_t>();
}

namespace {

/// Compares one table.
class ComparacionDeTabla {
public:
    ComparacionDeTabla(foundation::ClsAdo& ado, const DefCopia& copia, QStringList& ejemplos)
        : copia_(copia), busqueda_(ado, copia, {}), comparador_(copia), ejemplos_(ejemplos) {}

    ResultadoCierre<ComparacionTabla> Comparar(const BaseTerminal& base) {
        cuenta_.tabla = QString::fromUtf16(copia_.tabla);
        QUIMO_TRY_VOID(
            base.Recorrer(copia_, kFilasPorPregunta,
                          [this](std::span<const Renglon> renglones) { return Tanda(renglones); }));
        return cuenta_;
    }

private:
    ResultadoCierre<void> Tanda(std::span<const Renglon> renglones) {
        for (const auto& grupo : busqueda_.EnGrupos(renglones))
            QUIMO_TRY_VOID(Grupo(grupo));
        return {};
    }

    ResultadoCierre<void> Grupo(const BusquedaCentral::Grupo& grupo) {
        QUIMO_TRY(const auto centrales, busqueda_.Filas(grupo));
        for (std::size_t i = 0; i < grupo.size(); ++i) {
            if (!centrales[i]) {
                ++cuenta_.nuevas;
                continue;
            }
            QUIMO_TRY(const auto distinta, comparador_.PrimeraDistinta(*grupo[i], *centrales[i]));
            if (!distinta) {
                ++cuenta_.iguales;
                continue;
            }
            ++cuenta_.distintas;
            if (ejemplos_.size() >= Comparacion::kEjemplosMax) continue;
            QUIMO_TRY(const QString ejemplo, Ejemplo(*grupo[i], *centrales[i], *distinta));
            ejemplos_ << ejemplo;
        }
        return {};
    }

    ResultadoCierre<QString> Ejemplo(const Renglon& renglon, const Fila& central,
                                     std::size_t columna) const {
        QUIMO_TRY(const QString clave, busqueda_.Condicion(renglon));
        QUIMO_TRY(const QString valor, renglon.LiteralAlInsertar(columna));
        return cuenta_.tabla + u" ("_s + clave + u"): "_s +
               QString::fromUtf16(copia_.al_insertar[columna].columna) + u" es "_s + valor +
               u" en la terminal y "_s +
               data::LiteralSql(central.value(static_cast<qsizetype>(columna))) +
               u" en la base central"_s;
    }

    const DefCopia& copia_;
    BusquedaCentral busqueda_;
    ComparadorDeFilas comparador_;
    QStringList& ejemplos_;
    ComparacionTabla cuenta_;
};

}  // namespace

ResultadoCierre<Comparacion> CompararTerminal(foundation::ClsAdo& ado, const BaseTerminal& base) {
    Comparacion comparacion;
    for (const DefCopia& copia : Copias()) {
        ComparacionDeTabla tabla(ado, copia, comparacion.ejemplos);
        QUIMO_TRY(const ComparacionTabla cuenta, tabla.Comparar(base));
        comparacion.tablas.append(cuenta);
    }
    return comparacion;
}

}  // namespace quimo::dayclose
