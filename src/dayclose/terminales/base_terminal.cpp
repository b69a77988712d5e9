#include "dayclose/terminales/base_terminal.h"

#include <array>

#include "data/valores.h"
#include "jet/verificador.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

namespace {

std::string Nombre(const char16_t* nombre) { return QString::fromUtf16(nombre).toStdString(); }

Interrupcion ValorInservible(const QString& cual) {
    return {Interrupcion::Motivo::Error, kDatoNoCabe, cual};
}

ResultadoCierre<void> AgregarFecha(QString& literal, const jet::Fecha& fecha, Forma forma) {
    const auto civil = fecha.ACivil();
    if (!civil) return ValorInservible(u"La terminal guarda una fecha imposible."_s);
    const bool sin_hora = forma == Forma::FechaMedianoche;
    const int segundo = forma == Forma::FechaMinutosDoble ? civil->minuto : civil->segundo;
    std::array<char16_t, 21> texto{};  // 'dd/mm/yyyy hh:mm:ss'
    std::size_t lugar = 0;
    const auto cifras = [&](char16_t antes, int numero, int cuantas) {
        texto[lugar] = antes;
        lugar += static_cast<std::size_t>(cuantas);
        for (std::size_t i = lugar; cuantas > 0; --cuantas, --i, numero /= 10)
            texto[i] = static_cast<char16_t>(u'0' + numero % 10);
        ++lugar;
    };
    cifras(u'\'', civil->dia, 2);
    cifras(u'/', civil->mes, 2);
    cifras(u'/', civil->ano, 4);
    cifras(u' ', sin_hora ? 0 : civil->hora, 2);
    cifras(u':', sin_hora ? 0 : civil->minuto, 2);
    cifras(u':', sin_hora ? 0 : segundo, 2);
    texto[lugar] = u'\'';
    literal += QStringView(texto.data(), texto.size());
    return {};
}

void AgregarTexto(QString& literal, QStringView texto) {
    literal += u'\'';
    if (texto.contains(u'\'')) {
        literal += data::DuplicaApostrofes(texto.toString());
    } else {
        literal += texto;
    }
    literal += u'\'';
}

/// The number as text, with a point; nothing for what is no number that a statement can carry.
std::optional<std::string> Cifras(const jet::Valor& valor) {
    if (const auto* entero = std::get_if<std::int32_t>(&valor)) return std::to_string(*entero);
    if (const auto* logico = std::get_if<bool>(&valor)) return *logico ? "1" : "0";
    if (const auto* dinero = std::get_if<base::Dinero>(&valor)) return dinero->ATexto();
    if (const auto* doble = std::get_if<double>(&valor)) {
        return QString::number(*doble, 'g', 17).toStdString();
    }
    if (const auto* simple = std::get_if<float>(&valor)) {
        return QString::number(static_cast<double>(*simple), 'g', 9).toStdString();
    }
    if (const auto* exacto = std::get_if<base::Decimal>(&valor)) return exacto->ATexto();
    return std::nullopt;
}

bool EsFinito(const jet::Valor& valor) {
    const auto* doble = std::get_if<double>(&valor);
    const auto* simple = std::get_if<float>(&valor);
    return (doble == nullptr || std::isfinite(*doble)) &&
           (simple == nullptr || std::isfinite(*simple));
}

/// A value as it stands in a statement, behind what is there already.
ResultadoCierre<void> AgregarLiteral(QString& literal, const jet::Valor& valor, Forma forma) {
    if (jet::EsNulo(valor)) {
        literal += "NULL"_L1;
        return {};
    }
    if (const auto* fecha = std::get_if<jet::Fecha>(&valor)) {
        return AgregarFecha(literal, *fecha, forma);
    }
    if (const auto* texto = std::get_if<std::u16string>(&valor)) {
        AgregarTexto(literal, *texto);
        return {};
    }
    const auto cifras = Cifras(valor);
    if (!cifras) {
        return ValorInservible(
            u"Una columna de ventas de la terminal no es de texto ni de número."_s);
    }
    const QLatin1StringView numero(cifras->data(), static_cast<qsizetype>(cifras->size()));
    if (!EsFinito(valor)) {
        return ValorInservible(u"La terminal guarda un número imposible ("_s + numero + u")."_s);
    }
    if (forma == Forma::Numero) {
        literal += numero;
    } else {
        AgregarTexto(literal, QString(numero));
    }
    return {};
}

std::uint64_t Magnitud(base::Dinero monto) {
    const auto bits = static_cast<std::uint64_t>(monto.Diezmilesimas());
    return monto.Diezmilesimas() < 0 ? 0 - bits : bits;
}

}  // namespace

ResultadoCierre<QString> LiteralDeTerminal(const jet::Valor& valor, Forma forma) {
    QString literal;
    QUIMO_TRY_VOID(AgregarLiteral(literal, valor, forma));
    return literal;
}

ResultadoCierre<BaseTerminal> BaseTerminal::Abrir(const QString& archivo, const QString& terminal) {
    auto abierta = jet::BaseDatos::Abrir(archivo.toStdString());
    if (!abierta) {
        return DeFallo(abierta.error(), u"Base de datos de la terminal "_s + terminal,
                       Buscado::Archivo);
    }
    return BaseTerminal(std::move(abierta).value(), terminal);
}

QString BaseTerminal::Sobre() const { return u"Base de datos de la terminal "_s + terminal_; }

ResultadoCierre<jet::Tabla> BaseTerminal::Tabla(const char16_t* nombre) const {
    auto tabla = base_.AbrirTabla(Nombre(nombre));
    if (!tabla) return DeFallo(tabla.error(), Sobre());
    return std::move(tabla).value();
}

ResultadoCierre<std::size_t> BaseTerminal::Columna(const jet::Tabla& tabla,
                                                   const char16_t* nombre) const {
    auto columna = tabla.Columna(Nombre(nombre));
    if (!columna) return DeFallo(columna.error(), Sobre(), Buscado::Columna);
    return *columna;
}

ResultadoCierre<void> BaseTerminal::Verificar() const {
    const auto hallazgos = jet::Verificador::Verificar(base_);
    if (!hallazgos) return DeFallo(hallazgos.error(), Sobre());
    for (const jet::Hallazgo& hallazgo : *hallazgos) {
        if (hallazgo.gravedad != jet::Hallazgo::Gravedad::Falla) continue;
        const QString cual = QString::fromStdString(hallazgo.mensaje);
        const QString danado =
            cual.contains(u"dañado"_s) ? QString() : u"el archivo está dañado. "_s;
        return Interrupcion{Interrupcion::Motivo::Error, kBaseDanada,
                            Sobre() + u": "_s + danado + cual};
    }
    return {};
}

Interrupcion BaseTerminal::SumaInservible(const DefCifra& cifra, base::Dinero mayor) const {
    return ValorInservible(
        u"%1: la suma de la columna %2 de la tabla %3 no cabe. Tiene un monto imposible: %4"_s.arg(
            Sobre(), QString::fromUtf16(cifra.columna_total), QString::fromUtf16(cifra.tabla),
            QString::fromStdString(mayor.ATexto())));
}

ResultadoCierre<ValoresCifras> BaseTerminal::Contar() const {
    ValoresCifras valores;
    for (const DefCifra& cifra : Cifras()) {
        QUIMO_TRY(const jet::Tabla tabla, Tabla(cifra.tabla));
        std::size_t sumada = 0;
        std::size_t anulacion = 0;
        if (cifra.columna_total != nullptr) {
            QUIMO_TRY(const std::size_t lugar, Columna(tabla, cifra.columna_total));
            sumada = lugar;
        }
        if (cifra.solo_anulados) {
            QUIMO_TRY(const std::size_t lugar, Columna(tabla, u"ID_Tipo_Anulacion"));
            anulacion = lugar;
        }
        auto cursor = tabla.Recorrer();
        if (!cursor) return DeFallo(cursor.error(), Sobre());
        const auto lugar = static_cast<std::size_t>(cifra.cifra);
        base::Dinero mayor;
        while (true) {
            auto siguiente = cursor->Siguiente();
            if (!siguiente) return DeFallo(siguiente.error(), Sobre());
            if (!*siguiente) break;
            const jet::Fila& fila = cursor->Valores();
            if (cifra.solo_anulados && jet::EsNulo(fila[anulacion])) continue;
            ++valores.registros[lugar];
            if (cifra.columna_total == nullptr) continue;
            if (jet::EsNulo(fila[sumada])) continue;
            const auto* monto = std::get_if<base::Dinero>(&fila[sumada]);
            if (monto == nullptr) {
                return ValorInservible(
                    Sobre() + u": la columna "_s + QString::fromUtf16(cifra.columna_total) +
                    u" de la tabla "_s + QString::fromUtf16(cifra.tabla) + u" no es de moneda."_s);
            }
            if (Magnitud(*monto) > Magnitud(mayor)) mayor = *monto;
            const auto suma = valores.totales[lugar].Mas(*monto);
            if (!suma) return SumaInservible(cifra, mayor);
            valores.totales[lugar] = *suma;
        }
    }
    return valores;
}

/// Where the columns of a declared table stand in the terminal's rows, list by list.
struct BaseTerminal::Renglon::Lugares {
    const DefCopia* copia = nullptr;
    QString sobre;
    std::vector<std::size_t> clave = {};
    std::vector<std::size_t> modificar = {};
    std::vector<std::size_t> insertar = {};
    std::vector<jet::TipoColumna> tipos = {};

    ResultadoCierre<void> Agregar(QString& literal, const jet::Fila& fila, std::size_t lugar,
                                  const char16_t* columna, Forma forma) const {
        const auto agregado = AgregarLiteral(literal, fila[lugar], forma);
        if (agregado) return {};
        return ValorInservible(sobre + u": tabla "_s + QString::fromUtf16(copia->tabla) +
                               Llave(fila) + u", columna "_s + QString::fromUtf16(columna) +
                               u": "_s + agregado.error().descripcion);
    }

    ResultadoCierre<QString> Literal(const jet::Fila& fila, std::size_t lugar,
                                     const char16_t* columna, Forma forma) const {
        QString literal;
        QUIMO_TRY_VOID(Agregar(literal, fila, lugar, columna, forma));
        return literal;
    }

    /// Which row it is, as far as its key can be told.
    QString Llave(const jet::Fila& fila) const {
        QStringList partes;
        for (std::size_t i = 0; i < clave.size(); ++i) {
            const auto valor = LiteralDeTerminal(fila[clave[i]], Forma::Numero);
            if (valor) partes << QString::fromUtf16(copia->clave[i]) + u'=' + *valor;
        }
        return partes.isEmpty() ? QString() : u", renglón "_s + partes.join(u", "_s);
    }
};

const jet::Valor& BaseTerminal::Renglon::Clave(std::size_t i) const {
    return (*fila_)[lugares_->clave[i]];
}

const jet::Valor& BaseTerminal::Renglon::AlInsertar(std::size_t i) const {
    return (*fila_)[lugares_->insertar[i]];
}

jet::TipoColumna BaseTerminal::Renglon::TipoAlInsertar(std::size_t i) const {
    return lugares_->tipos[i];
}

ResultadoCierre<QString> BaseTerminal::Renglon::LiteralDeClave(std::size_t i) const {
    return lugares_->Literal(*fila_, lugares_->clave[i], lugares_->copia->clave[i], Forma::Numero);
}

ResultadoCierre<QString> BaseTerminal::Renglon::LiteralAlModificar(std::size_t i) const {
    const CampoCopia& campo = lugares_->copia->al_modificar[i];
    return lugares_->Literal(*fila_, lugares_->modificar[i], campo.columna, campo.forma);
}

ResultadoCierre<void> BaseTerminal::Renglon::AgregarAlInsertar(QString& valores,
                                                               std::size_t i) const {
    const CampoCopia& campo = lugares_->copia->al_insertar[i];
    return lugares_->Agregar(valores, *fila_, lugares_->insertar[i], campo.columna, campo.forma);
}

ResultadoCierre<QString> BaseTerminal::Renglon::LiteralAlInsertar(std::size_t i) const {
    return LiteralAlInsertar(i, lugares_->copia->al_insertar[i].forma);
}

ResultadoCierre<QString> BaseTerminal::Renglon::LiteralAlInsertar(std::size_t i,
                                                                  Forma forma) const {
    return lugares_->Literal(*fila_, lugares_->insertar[i], lugares_->copia->al_insertar[i].columna,
                             forma);
}

ResultadoCierre<BaseTerminal::Renglon::Lugares> BaseTerminal::LugaresDe(
    const DefCopia& copia, const jet::Tabla& tabla) const {
    Renglon::Lugares lugares{&copia, Sobre()};
    for (const char16_t* columna : copia.clave) {
        QUIMO_TRY(const std::size_t lugar, Columna(tabla, columna));
        lugares.clave.push_back(lugar);
    }
    for (const CampoCopia& campo : copia.al_modificar) {
        QUIMO_TRY(const std::size_t lugar, Columna(tabla, campo.columna));
        lugares.modificar.push_back(lugar);
    }
    for (const CampoCopia& campo : copia.al_insertar) {
        QUIMO_TRY(const std::size_t lugar, Columna(tabla, campo.columna));
        lugares.insertar.push_back(lugar);
        lugares.tipos.push_back(tabla.Definicion().columnas[lugar].tipo);
    }
    return lugares;
}

ResultadoCierre<void> BaseTerminal::Recorrer(const DefCopia& copia, std::size_t tanda,
                                             const Visita& visitar) const {
    QUIMO_TRY(const jet::Tabla tabla, Tabla(copia.tabla));
    QUIMO_TRY(const Renglon::Lugares lugares, LugaresDe(copia, tabla));
    auto cursor = tabla.Recorrer();
    if (!cursor) return DeFallo(cursor.error(), Sobre());
    std::vector<jet::Fila> filas(tanda);
    std::vector<Renglon> renglones(tanda);
    for (std::size_t i = 0; i < tanda; ++i) {
        renglones[i].fila_ = &filas[i];
        renglones[i].lugares_ = &lugares;
    }
    std::size_t cuantas = 0;
    while (true) {
        auto siguiente = cursor->Siguiente();
        if (!siguiente) return DeFallo(siguiente.error(), Sobre());
        if (*siguiente) filas[cuantas++] = cursor->Valores();
        if (cuantas == tanda || (!*siguiente && cuantas > 0)) {
            QUIMO_TRY_VOID(visitar(std::span(renglones).first(cuantas)));
            cuantas = 0;
        }
        if (!*siguiente) return {};
    }
}

}  // namespace quimo::dayclose
