#include "dayclose/cierre/transferencia.h"

#include <algorithm>

#include <QHash>

#include "data/transaccion.h"
#include "dayclose/cierre/busqueda_central.h"
#include "dayclose/cierre/comparacion_terminal.h"
#include "dayclose/cierre/manejador_fallas.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

using data::FalloSql;
using foundation::Cambio;
using foundation::ClsAdo;

namespace {

using Renglon = BaseTerminal::Renglon;
using Alcance = BusquedaCentral::Alcance;

/// Enough to make the way to a server cheap, few enough to be kept in memory and to ask in between
/// whether to stop.
constexpr std::size_t kFilasPorTanda = 250;

enum class Destino { Insertar, Modificar, Igual, Distinto };

/// What a row says, whatever form its values are written in.
ResultadoCierre<QString> Contenido(const DefCopia& copia, const Renglon& renglon) {
    QString contenido;
    for (std::size_t i = 0; i < copia.al_insertar.size(); ++i) {
        const Forma forma = copia.al_insertar[i].forma;
        const bool es_fecha = forma != Forma::Numero && forma != Forma::Texto;
        QUIMO_TRY(const QString valor,
                  renglon.LiteralAlInsertar(i, es_fecha ? Forma::FechaHora : forma));
        contenido += valor + u'\x1f';
    }
    return contenido;
}

/// Copies one table of one terminal.
class CopiaDeTabla {
public:
    CopiaDeTabla(ClsAdo& ado, const BaseTerminal& base, const OpcionesCopia& opciones,
                 const DefCopia& copia)
        : ado_(ado),
          base_(base),
          opciones_(opciones),
          copia_(copia),
          busqueda_(ado, copia, opciones.fecha),
          comparador_(copia),
          copiada_{base.Terminal(), QString::fromUtf16(copia.tabla)} {
        for (const CampoCopia& campo : copia.al_insertar) {
            if (!columnas_.isEmpty()) columnas_ += u',';
            columnas_ += QString::fromUtf16(campo.columna);
        }
    }

    ResultadoCierre<TablaCopiada> Copiar() {
        QUIMO_TRY_VOID(LeerAnteriores());
        QUIMO_TRY_VOID(base_.Recorrer(
            copia_, kFilasPorTanda,
            [this](std::span<const Renglon> renglones) { return Tanda(renglones); }));
        return copiada_;
    }

    /// The row that the database refused, after a failure that was that.
    std::optional<RenglonRechazado> Rechazado() { return std::move(rechazado_); }

private:
    ResultadoCierre<void> LeerAnteriores() {
        for (const CopiaAnterior& anterior : opciones_.anteriores) {
            if (!anterior.tablas.contains(copiada_.tabla, Qt::CaseInsensitive)) continue;
            QUIMO_TRY(const BaseTerminal base,
                      BaseTerminal::Abrir(anterior.archivo, base_.Terminal()));
            QUIMO_TRY_VOID(base.Recorrer(
                copia_, 1, [this](std::span<const Renglon> renglones) -> ResultadoCierre<void> {
                    const auto clave = busqueda_.Clave(renglones[0]);
                    if (!clave) return {};
                    QUIMO_TRY(const QString contenido, Contenido(copia_, renglones[0]));
                    anteriores_.insert(*clave, contenido);
                    return {};
                }));
        }
        return {};
    }

    ResultadoCierre<void> Tanda(std::span<const Renglon> renglones) {
        for (const auto& grupo : busqueda_.EnGrupos(renglones))
            QUIMO_TRY_VOID(Grupo(grupo));
        return {};
    }

    ResultadoCierre<void> Grupo(const BusquedaCentral::Grupo& grupo) {
        if (opciones_.detener && opciones_.detener()) {
            return Detenido();
        }
        const bool por_contenido = opciones_.presentes == OpcionesCopia::Presentes::PasarIguales;
        QUIMO_TRY(const std::vector<Destino> destinos,
                  por_contenido ? PorContenido(grupo) : ComoSiempre(grupo));
        QVector<Cambio> cambios;
        QVector<std::size_t> lugares;
        for (std::size_t i = 0; i < grupo.size(); ++i) {
            if (destinos[i] == Destino::Igual || destinos[i] == Destino::Distinto) continue;
            QUIMO_TRY(Cambio cambio, destinos[i] == Destino::Insertar ? Insercion(*grupo[i])
                                                                      : Modificacion(*grupo[i]));
            cambios.append(std::move(cambio));
            lugares.append(i);
        }
        const qsizetype hechos = ado_.CambiarVarios(cambios);
        if (hechos < cambios.size()) {
            return Rechazar(*grupo[lugares[hechos]], cambios[hechos].clase);
        }
        for (const Destino destino : destinos) {
            ++(destino == Destino::Insertar    ? copiada_.insertadas
               : destino == Destino::Modificar ? copiada_.modificadas
               : destino == Destino::Igual     ? copiada_.iguales
                                               : copiada_.distintas);
        }
        return {};
    }

    /// What is there is updated. What an earlier file of this close brought is known, whatever day
    /// it belongs to, and left alone when it says the same - as long as it is really there.
    ResultadoCierre<std::vector<Destino>> ComoSiempre(const BusquedaCentral::Grupo& grupo) {
        std::vector<bool> conocidos(grupo.size());
        if (!anteriores_.isEmpty()) {
            QUIMO_TRY(conocidos, busqueda_.Presentes(grupo, Alcance::Todas));
            for (std::size_t i = 0; i < grupo.size(); ++i) {
                const auto clave = busqueda_.Clave(*grupo[i]);
                conocidos[i] = conocidos[i] && clave && anteriores_.contains(*clave);
            }
        }
        BusquedaCentral::Grupo otros;
        for (std::size_t i = 0; i < grupo.size(); ++i) {
            if (!conocidos[i]) otros.push_back(grupo[i]);
        }
        std::vector<bool> presentes;
        if (!otros.empty()) {
            QUIMO_TRY(presentes, busqueda_.Presentes(otros, Alcance::DelDia));
        }
        std::vector<Destino> destinos;
        std::size_t otro = 0;
        for (std::size_t i = 0; i < grupo.size(); ++i) {
            if (!conocidos[i]) {
                destinos.push_back(presentes[otro++] ? Destino::Modificar : Destino::Insertar);
                continue;
            }
            QUIMO_TRY(const QString contenido, Contenido(copia_, *grupo[i]));
            const bool igual = anteriores_.value(*busqueda_.Clave(*grupo[i])) == contenido;
            destinos.push_back(igual ? Destino::Igual : Destino::Modificar);
        }
        return destinos;
    }

    ResultadoCierre<std::vector<Destino>> PorContenido(const BusquedaCentral::Grupo& grupo) {
        QUIMO_TRY(const auto centrales, busqueda_.Filas(grupo));
        const Destino del_distinto = opciones_.distintas == OpcionesCopia::Distintas::Actualizar
                                         ? Destino::Modificar
                                         : Destino::Distinto;
        std::vector<Destino> destinos;
        for (std::size_t i = 0; i < grupo.size(); ++i) {
            if (!centrales[i]) {
                destinos.push_back(Destino::Insertar);
                continue;
            }
            QUIMO_TRY(const auto distinta, comparador_.PrimeraDistinta(*grupo[i], *centrales[i]));
            destinos.push_back(distinta ? del_distinto : Destino::Igual);
        }
        return destinos;
    }

    ResultadoCierre<Cambio> Modificacion(const Renglon& renglon) const {
        QString asignaciones;
        for (std::size_t i = 0; i < copia_.al_modificar.size(); ++i) {
            QUIMO_TRY(const QString valor, renglon.LiteralAlModificar(i));
            if (i > 0) asignaciones += u',';
            asignaciones += QString::fromUtf16(copia_.al_modificar[i].columna) + u'=' + valor;
        }
        QUIMO_TRY(const QString condicion, busqueda_.Condicion(renglon));
        return Cambio{Cambio::Clase::Modificar, copiada_.tabla, asignaciones, condicion};
    }

    ResultadoCierre<Cambio> Insercion(const Renglon& renglon) const {
        constexpr qsizetype kLargoUsual = 192;
        QString valores;
        valores.reserve(kLargoUsual);
        for (std::size_t i = 0; i < copia_.al_insertar.size(); ++i) {
            if (i > 0) valores += u',';
            QUIMO_TRY_VOID(renglon.AgregarAlInsertar(valores, i));
        }
        return Cambio{Cambio::Clase::Insertar, copiada_.tabla, columnas_, valores};
    }

    /// The database's failure, with the row when it was about that.
    Interrupcion Rechazar(const Renglon& renglon, Cambio::Clase clase) {
        const FalloSql fallo = *ado_.Pendiente();
        const bool por_la_fila =
            fallo.numero == FalloSql::kIntegridad || fallo.numero == FalloSql::kSentencia;
        auto condicion = busqueda_.Condicion(renglon);
        if (!por_la_fila || !condicion) return fallo;
        RenglonRechazado rechazado{base_.Terminal(), copiada_.tabla, {}, *condicion, fallo};
        const bool insertar = clase == Cambio::Clase::Insertar;
        const auto campos = insertar ? copia_.al_insertar : copia_.al_modificar;
        for (std::size_t i = 0; i < campos.size(); ++i) {
            auto valor = insertar ? renglon.LiteralAlInsertar(i) : renglon.LiteralAlModificar(i);
            QUIMO_CHECK(valor.has_value());  // the statement was made of them
            rechazado.valores.append({QString::fromUtf16(campos[i].columna), *valor});
        }
        rechazado_ = std::move(rechazado);
        return fallo;
    }

    ClsAdo& ado_;
    const BaseTerminal& base_;
    const OpcionesCopia& opciones_;
    const DefCopia& copia_;
    BusquedaCentral busqueda_;
    ComparadorDeFilas comparador_;
    QString columnas_;
    QHash<quint64, QString> anteriores_;  // what the earlier files say, by key
    std::optional<RenglonRechazado> rechazado_;
    TablaCopiada copiada_;
};

}  // namespace

base::Result<QVector<TablaCopiada>, FallaCopia> CopiarTerminal(ClsAdo& ado,
                                                               const BaseTerminal& base,
                                                               const OpcionesCopia& opciones) {
    QVector<TablaCopiada> copiadas;
    for (const DefCopia& copia : Copias()) {
        if (!opciones.tablas.contains(QString::fromUtf16(copia.tabla), Qt::CaseInsensitive)) {
            continue;
        }
        CopiaDeTabla tarea(ado, base, opciones, copia);
        auto copiada = tarea.Copiar();
        if (!copiada) return FallaCopia{std::move(copiada).error(), tarea.Rechazado()};
        copiadas.append(*copiada);
    }
    return copiadas;
}

}  // namespace quimo::dayclose
