#include "dayclose/cierre/busqueda_central.h"

#include <algorithm>

#include <QHash>
#include <QSet>

#include "data/consultar.h"
#include "data/valores.h"
#include "dayclose/cierre/clave_entera.h"
#include "dayclose/cierre/contexto_cierre.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

using data::Fila;

namespace {

using Renglon = BaseTerminal::Renglon;

/// How many numbers may lie between those that are asked for, for each of them.
constexpr qint64 kHolgura = 4;

QString ConComas(QString lista, const QString& parte) {
    if (!lista.isEmpty()) lista += u',';
    return lista + parte;
}

}  // namespace

BusquedaCentral::BusquedaCentral(foundation::ClsAdo& ado, const DefCopia& copia,
                                 const QString& fecha)
    : ado_(ado), copia_(copia), tabla_(QString::fromUtf16(copia.tabla)), fecha_(fecha) {
    QUIMO_CHECK(!copia.clave.empty() && copia.clave.size() <= 2);
    for (const char16_t* columna : copia.clave)
        columnas_clave_ = ConComas(columnas_clave_, QString::fromUtf16(columna));
    for (const CampoCopia& campo : copia.al_insertar)
        columnas_insertar_ = ConComas(columnas_insertar_, QString::fromUtf16(campo.columna));
}

std::optional<quint64> BusquedaCentral::Clave(const Renglon& renglon) const {
    std::array<qint64, 2> partes = {};
    for (std::size_t i = 0; i < copia_.clave.size(); ++i) {
        const auto* parte = std::get_if<std::int32_t>(&renglon.Clave(i));
        if (parte == nullptr) return std::nullopt;
        partes[i] = *parte;
    }
    return UnirClave(partes[0], partes[1]);
}

std::vector<BusquedaCentral::Grupo> BusquedaCentral::EnGrupos(
    std::span<const Renglon> renglones) const {
    std::vector<Grupo> grupos;
    QSet<quint64> claves;
    bool abierto = false;
    for (const Renglon& renglon : renglones) {
        const auto clave = Clave(renglon);
        if (!clave || !abierto || claves.contains(*clave)) {
            grupos.emplace_back();
            claves.clear();
        }
        grupos.back().push_back(&renglon);
        abierto = clave.has_value();
        if (clave) claves.insert(*clave);
    }
    return grupos;
}

ResultadoCierre<QString> BusquedaCentral::Condicion(const Renglon& renglon) const {
    QString condicion;
    for (std::size_t i = 0; i < copia_.clave.size(); ++i) {
        QUIMO_TRY(const QString valor, renglon.LiteralDeClave(i));
        if (!condicion.isEmpty()) condicion += u" AND "_s;
        condicion += QString::fromUtf16(copia_.clave[i]) + u'=' + valor;
    }
    return condicion;
}

/// By the leading column alone, which an index serves on any engine: few rows share it. Numbers
/// that stand close together are asked as what lies between the first and the last of them.
ResultadoCierre<QString> BusquedaCentral::DeVarios(const Grupo& grupo) const {
    const QString columna = QString::fromUtf16(copia_.clave[0]);
    const auto numero = [](const Renglon* renglon) {
        return qint64{std::get<std::int32_t>(renglon->Clave(0))};  // a row without one stands alone
    };
    const auto [menor, mayor] = std::minmax_element(
        grupo.begin(), grupo.end(),
        [&](const Renglon* uno, const Renglon* otro) { return numero(uno) < numero(otro); });
    if (numero(*mayor) - numero(*menor) < kHolgura * static_cast<qint64>(grupo.size())) {
        return columna + u" BETWEEN %1 AND %2"_s.arg(numero(*menor)).arg(numero(*mayor));
    }
    QString lista;
    QString anterior;
    for (const Renglon* renglon : grupo) {
        QUIMO_TRY(const QString valor, renglon->LiteralDeClave(0));
        if (valor != anterior) lista = ConComas(std::move(lista), valor);
        anterior = valor;
    }
    return columna + u" IN ("_s + lista + u')';
}

ResultadoCierre<QString> BusquedaCentral::Donde(const Grupo& grupo, Alcance alcance) const {
    QString condicion;
    if (grupo.size() == 1) {
        QUIMO_TRY(condicion, Condicion(*grupo.front()));
    } else {
        QUIMO_TRY(condicion, DeVarios(grupo));
    }
    if (alcance == Alcance::Todas || !copia_.limitada_al_dia) {
        return u" FROM "_s + tabla_ + u" WHERE "_s + condicion;
    }
    return u" FROM "_s + tabla_ + u",Comanda WHERE "_s + tabla_ +
           u".ID_Comanda=Comanda.ID_Comanda AND Fecha_Trabajo='"_s +
           data::DuplicaApostrofes(fecha_) + u"' AND "_s + condicion;
}

ResultadoCierre<quint64> BusquedaCentral::ClaveCentral(const Fila& fila) const {
    std::array<qint64, 2> partes = {};
    for (std::size_t i = 0; i < copia_.clave.size(); ++i) {
        bool entera = false;
        partes[i] = data::TextoDeValor(fila.value(static_cast<qsizetype>(i))).toLongLong(&entera);
        if (!entera) {
            return Interrupcion{Interrupcion::Motivo::Error, kDatoNoCabe,
                                u"La columna "_s + QString::fromUtf16(copia_.clave[i]) +
                                    u" de la tabla central "_s + tabla_ +
                                    u" no es de números enteros."_s};
        }
    }
    return UnirClave(partes[0], partes[1]);
}

ResultadoCierre<std::vector<bool>> BusquedaCentral::Presentes(const Grupo& grupo, Alcance alcance) {
    QUIMO_TRY(std::vector<bool> presentes, DelAlcance(grupo, Alcance::Todas));
    if (alcance == Alcance::Todas || !copia_.limitada_al_dia) return presentes;
    // Usually none is there, and a key alone is looked up at once, where an engine may begin with
    // all orders of the day.
    Grupo halladas;
    for (std::size_t i = 0; i < grupo.size(); ++i) {
        if (presentes[i]) halladas.push_back(grupo[i]);
    }
    if (halladas.empty()) return presentes;
    QUIMO_TRY(const std::vector<bool> del_dia, DelAlcance(halladas, alcance));
    std::size_t hallada = 0;
    for (std::size_t i = 0; i < grupo.size(); ++i) {
        if (presentes[i]) presentes[i] = del_dia[hallada++];
    }
    return presentes;
}

/// Which rows of the group one statement finds.
ResultadoCierre<std::vector<bool>> BusquedaCentral::DelAlcance(const Grupo& grupo,
                                                               Alcance alcance) {
    QUIMO_TRY(const QString donde, Donde(grupo, alcance));
    QUIMO_TRY(const QVector<Fila> filas,
              data::Consultar(ado_.Conexion(), u"SELECT "_s + columnas_clave_ + donde));
    if (grupo.size() == 1) return std::vector<bool>{!filas.isEmpty()};
    QSet<quint64> halladas;
    halladas.reserve(filas.size());
    for (const Fila& fila : filas) {
        QUIMO_TRY(const quint64 clave, ClaveCentral(fila));
        halladas.insert(clave);
    }
    std::vector<bool> presentes;
    presentes.reserve(grupo.size());
    for (const Renglon* renglon : grupo)
        presentes.push_back(halladas.contains(*Clave(*renglon)));
    return presentes;
}

ResultadoCierre<std::vector<std::optional<Fila>>> BusquedaCentral::Filas(const Grupo& grupo) {
    QUIMO_TRY(const QString donde, Donde(grupo, Alcance::Todas));
    QUIMO_TRY(const QVector<Fila> filas,
              data::Consultar(ado_.Conexion(),
                              u"SELECT "_s + columnas_clave_ + u',' + columnas_insertar_ + donde));
    const auto de_insertar = static_cast<qsizetype>(copia_.clave.size());
    if (grupo.size() == 1) {
        if (filas.isEmpty()) return std::vector<std::optional<Fila>>(1);
        return std::vector<std::optional<Fila>>{filas.first().mid(de_insertar)};
    }
    QHash<quint64, Fila> halladas;
    halladas.reserve(filas.size());
    for (const Fila& fila : filas) {
        QUIMO_TRY(const quint64 clave, ClaveCentral(fila));
        halladas.insert(clave, fila.mid(de_insertar));
    }
    std::vector<std::optional<Fila>> centrales;
    centrales.reserve(grupo.size());
    for (const Renglon* renglon : grupo) {
        const auto hallada = halladas.constFind(*Clave(*renglon));
        centrales.emplace_back(hallada == halladas.cend() ? std::nullopt
                                                          : std::optional<Fila>(*hallada));
    }
    return centrales;
}

}  // namespace quimo::dayclose
