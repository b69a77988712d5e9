#include "dayclose/base_terminal.h"

#include "foundation/valores.h"
#include "jet/verificador.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

namespace {

std::string Nombre(const char16_t* nombre) { return QString::fromUtf16(nombre).toStdString(); }

Interrupcion ValorInservible(const QString& cual) {
    return {Interrupcion::Motivo::Error, kDatoNoCabe, cual};
}

ResultadoCierre<QString> LiteralDeFecha(const jet::Fecha& fecha, Forma forma) {
    const auto civil = fecha.ACivil();
    if (!civil) return ValorInservible(u"La terminal guarda una fecha imposible."_s);
    const bool sin_hora = forma == Forma::FechaMedianoche;
    const int segundo = forma == Forma::FechaMinutosDoble ? civil->minuto : civil->segundo;
    return QString::asprintf("'%02d/%02d/%04d %02d:%02d:%02d'", civil->dia, civil->mes, civil->ano,
                             sin_hora ? 0 : civil->hora, sin_hora ? 0 : civil->minuto,
                             sin_hora ? 0 : segundo);
}

QString Crudo(const jet::Valor& valor) {
    if (const auto* logico = std::get_if<bool>(&valor)) return *logico ? u"1"_s : u"0"_s;
    if (const auto* entero = std::get_if<std::int32_t>(&valor)) return QString::number(*entero);
    if (const auto* dinero = std::get_if<base::Dinero>(&valor)) {
        return QString::fromStdString(dinero->ATexto());
    }
    if (const auto* doble = std::get_if<double>(&valor)) return QString::number(*doble, 'g', 17);
    if (const auto* simple = std::get_if<float>(&valor)) {
        return QString::number(static_cast<double>(*simple), 'g', 9);
    }
    if (const auto* exacto = std::get_if<base::Decimal>(&valor)) {
        return QString::fromStdString(exacto->ATexto());
    }
    if (const auto* texto = std::get_if<std::u16string>(&valor)) {
        return QString::fromStdU16String(*texto);
    }
    return {};
}

std::uint64_t Magnitud(base::Dinero monto) {
    const auto bits = static_cast<std::uint64_t>(monto.Diezmilesimas());
    return monto.Diezmilesimas() < 0 ? 0 - bits : bits;
}

}  // namespace

ResultadoCierre<QString> LiteralDeTerminal(const jet::Valor& valor, Forma forma) {
    if (jet::EsNulo(valor)) return u"NULL"_s;
    if (const auto* fecha = std::get_if<jet::Fecha>(&valor)) return LiteralDeFecha(*fecha, forma);
    if (std::holds_alternative<jet::Binario>(valor) || std::holds_alternative<jet::Guid>(valor)) {
        return ValorInservible(
            u"Una columna de ventas de la terminal no es de texto ni de número."_s);
    }
    const QString crudo = Crudo(valor);
    const auto* doble = std::get_if<double>(&valor);
    const auto* simple = std::get_if<float>(&valor);
    if ((doble != nullptr && !std::isfinite(*doble)) ||
        (simple != nullptr && !std::isfinite(*simple))) {
        return ValorInservible(u"La terminal guarda un número imposible ("_s + crudo + u")."_s);
    }
    const bool es_texto = std::holds_alternative<std::u16string>(valor);
    if (forma == Forma::Numero && !es_texto) return crudo;
    return u'\'' + foundation::DuplicaApostrofes(crudo) + u'\'';
}

ResultadoCierre<BaseTerminal> BaseTerminal::Abrir(const QString& archivo, const QString& terminal) {
    auto abierta = jet::BaseDatos::Abrir(archivo.toStdString());
    if (!abierta) {
        Interrupcion fallo =
            DeFallo(abierta.error(), u"Base de datos de la terminal "_s + terminal);
        if (abierta.error().codigo == base::Error::Codigo::NoEncontrado) {
            fallo.numero = FalloArchivo::kNoEncontrado;
        }
        return fallo;
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
    if (columna) return *columna;
    Interrupcion fallo = DeFallo(columna.error(), Sobre());
    fallo.numero = kColumnaAusente;
    return fallo;
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

    ResultadoCierre<QString> Literal(const jet::Fila& fila, std::size_t lugar,
                                     const char16_t* columna, Forma forma) const {
        auto literal = LiteralDeTerminal(fila[lugar], forma);
        if (literal) return literal;
        Interrupcion fallo = std::move(literal).error();
        fallo.descripcion = sobre + u": tabla "_s + QString::fromUtf16(copia->tabla) + Llave(fila) +
                            u", columna "_s + QString::fromUtf16(columna) + u": "_s +
                            fallo.descripcion;
        return fallo;
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
