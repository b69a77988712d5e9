// Reads whatever text it is given and translates every statement of it. Nothing may crash, hang or
// grow without bounds, and what the translator writes must be SQL that the engine takes.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include <sqlite3.h>

#include "base/check.h"
#include "tsql/lectura/lotes.h"
#include "tsql/lectura/parser.h"
#include "tsql/traduccion/traductor.h"
#include "tsql/valores/funciones.h"
#include "tsql/valores/texto.h"

namespace quimo::tsql {

namespace {

Tipo TipoDe(Clase clase) {
    if (clase == Clase::VarChar || clase == Clase::Char || clase == Clase::NVarChar)
        return TipoTexto(clase, 8);
    if (clase == Clase::Numeric) return TipoNumerico(18, 2);
    if (clase == Clase::Float) return TipoReal();
    if (clase == Clase::DateTime) return TipoFecha();
    if (clase == Clase::Money) {
        Tipo tipo;
        tipo.clase = clase;
        tipo.precision = 19;
        tipo.escala = 4;
        return tipo;
    }
    return TipoEntero(clase);
}

TablaPtr Mesa(const std::string& nombre,
              const std::vector<std::pair<std::string, Clase>>& columnas) {
    auto tabla = std::make_shared<Tabla>();
    tabla->nombre = nombre;
    tabla->temporal = nombre.front() == '#';
    tabla->sql = EntreComillas(nombre);
    for (const auto& [columna, clase] : columnas) {
        ColumnaTabla definicion;
        definicion.nombre = columna;
        definicion.tipo = TipoDe(clase);
        definicion.admite_nulos = !tabla->columnas.empty();
        tabla->columnas.push_back(definicion);
    }
    tabla->indices.push_back({"PK_" + nombre, Indice::Clase::Primaria, {0}});
    tabla->indices.push_back({"IX_" + nombre, Indice::Clase::Indice, {1}});
    return tabla;
}

/// Three tables with a column of every kind, a view and a function.
class CatalogoFijo final : public Catalogo {
public:
    CatalogoFijo() {
        tablas_ = {
            Mesa("Comanda", {{"ID_Comanda", Clase::Int},
                             {"Fecha_Trabajo", Clase::VarChar},
                             {"Fecha_Apertura", Clase::DateTime},
                             {"Control", Clase::Int},
                             {"Tipo", Clase::Char}}),
            Mesa("ProductosXCuenta", {{"ID_ProductosXCuenta", Clase::Int},
                                      {"ID_Comanda", Clase::Int},
                                      {"ID_Producto", Clase::SmallInt},
                                      {"Precio_Venta", Clase::Money},
                                      {"Cantidad", Clase::Numeric},
                                      {"Activo", Clase::Bit},
                                      {"Control", Clase::Int}}),
            Mesa("#t", {{"n", Clase::Int}, {"Nombre", Clase::NVarChar}, {"x", Clase::Float}})};
        Anotar(
            "CREATE VIEW Vw_Dia AS SELECT ID_Comanda, Fecha_Trabajo AS Dia FROM Comanda WHERE "
            "Control=0");
        Anotar(
            "CREATE FUNCTION dbo.Redondear (@Monto MONEY) RETURNS MONEY AS BEGIN RETURN "
            "ROUND(@Monto,2) END");
    }

    TablaPtr BuscarTabla(const NombreObjeto& nombre) const override {
        for (const TablaPtr& tabla : tablas_)
            if (MismoNombre(tabla->nombre, nombre.objeto)) return tabla;
        return nullptr;
    }
    ModuloPtr BuscarModulo(const NombreObjeto& nombre) const override {
        for (const ModuloPtr& modulo : modulos_)
            if (MismoNombre(modulo->nombre.objeto, nombre.objeto)) return modulo;
        return nullptr;
    }
    const std::vector<TablaPtr>& Tablas() const { return tablas_; }

private:
    void Anotar(const std::string& texto) {
        const auto lote = LeerLote(texto, Constantes::EnElArbol);
        QUIMO_CHECK(lote.has_value());
        modulos_.push_back(
            std::make_shared<CrearModulo>(std::get<CrearModulo>(lote->sentencias[0]->que)));
    }

    std::vector<TablaPtr> tablas_;
    std::vector<ModuloPtr> modulos_;
};

void Nada(sqlite3_context* sitio, int /*n*/, sqlite3_value** /*valores*/) {
    sqlite3_result_null(sitio);
}
void Fin(sqlite3_context* sitio) { sqlite3_result_null(sitio); }

/// A database of the same names, for the engine to read the translations against.
class Motor {
public:
    explicit Motor(const CatalogoFijo& catalogo) {
        QUIMO_CHECK(sqlite3_open(":memory:", &base_) == SQLITE_OK);
        for (const auto& funciones : {FuncionesDeTexto(), FuncionesDeNumero(), FuncionesDeFecha()})
            for (const FuncionEscalar& f : funciones)
                Escalar(std::string(f.nombre).c_str(), f.argumentos);
        Escalar("q_fn", -1);
        Escalar("q_objeto", -1);
        Escalar("q_candado", 3);
        Escalar("q_nombre_objeto", 1);
        Escalar("q_identidad", 0);
        Escalar("q_numero_dado", 1);
        for (const char* nombre :
             {"q_unico", "q_suma", "q_min", "q_max", "q_var", "q_varp", "q_stdev", "q_stdevp"})
            sqlite3_create_function(base_, nombre, 1, SQLITE_UTF8, nullptr, nullptr, Nada, Fin);
        sqlite3_create_collation(base_, "QUIMO", SQLITE_UTF8, nullptr,
                                 [](void*, int, const void*, int, const void*) { return 0; });
        for (const TablaPtr& tabla : catalogo.Tablas()) {
            std::string columnas;
            for (const ColumnaTabla& columna : tabla->columnas)
                columnas += (columnas.empty() ? "" : ",") + EntreComillas(columna.nombre);
            const std::string sql = "CREATE TABLE " + tabla->sql + "(" + columnas + ")";
            QUIMO_CHECK(sqlite3_exec(base_, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK);
        }
    }
    Motor(const Motor&) = delete;
    Motor& operator=(const Motor&) = delete;
    ~Motor() { sqlite3_close(base_); }

    void Aceptar(const Plan& plan, const std::string& texto) {
        sqlite3_stmt* sentencia = nullptr;
        const int codigo = sqlite3_prepare_v2(base_, plan.sql.c_str(), -1, &sentencia, nullptr);
        const std::string_view motivo = codigo == SQLITE_OK ? "" : sqlite3_errmsg(base_);
        const bool muy_largo =
            motivo.find("too many") != motivo.npos || motivo.find("too large") != motivo.npos ||
            motivo.find("overflow") != motivo.npos || motivo.find("at most") != motivo.npos;
        if (codigo != SQLITE_OK && !muy_largo) {
            std::fprintf(stderr, "%s\n%s\n%s\n", texto.c_str(), plan.sql.c_str(),
                         std::string(motivo).c_str());
            std::abort();
        }
        const int ranuras = codigo == SQLITE_OK ? sqlite3_bind_parameter_count(sentencia) : 0;
        sqlite3_finalize(sentencia);
        QUIMO_CHECK(codigo != SQLITE_OK || ranuras <= static_cast<int>(plan.ranuras.size()));
    }

private:
    void Escalar(const char* nombre, int argumentos) {
        sqlite3_create_function(base_, nombre, argumentos, SQLITE_UTF8 | SQLITE_DETERMINISTIC,
                                nullptr, Nada, nullptr, nullptr);
    }

    sqlite3* base_ = nullptr;
};

class Recorrido {
public:
    Recorrido(const Entorno& entorno, Motor& motor, const std::string& texto)
        : entorno_(entorno), motor_(motor), texto_(texto) {}

    void Sentencia(const SentenciaPtr& sentencia) {
        if (!sentencia) return;
        std::visit([this](const auto& que) { Ver(que); }, sentencia->que);
    }

private:
    void Probar(const Resultado<Plan>& plan) {
        if (plan) motor_.Aceptar(*plan, texto_);
    }
    void Ver(const Seleccionar& que) { Probar(TraducirConsulta(*que.consulta, entorno_)); }
    void Ver(const Insertar& que) { Probar(TraducirInsertar(que, entorno_)); }
    void Ver(const Actualizar& que) { Probar(TraducirActualizar(que, entorno_)); }
    void Ver(const Borrar& que) { Probar(TraducirBorrar(que, entorno_)); }
    void Ver(const Asignar& que) { Probar(TraducirValor(*que.expr, entorno_)); }
    void Ver(const Imprimir& que) { Probar(TraducirValor(*que.expr, entorno_)); }
    void Ver(const Si& que) {
        Probar(TraducirValor(*que.condicion, entorno_));
        Sentencia(que.entonces);
        Sentencia(que.sino);
    }
    template <typename Otra>
    void Ver(const Otra& /*otra*/) {}

    const Entorno& entorno_;
    Motor& motor_;
    const std::string& texto_;
};

}  // namespace

/// Reads and translates one text.
void Probar(const std::string& texto) {
    static const CatalogoFijo catalogo;
    static Motor motor(catalogo);
    for (const std::string& lote_texto : PartirLotes(texto)) {
        auto lote = LeerLote(lote_texto, Constantes::PorPosicion);
        if (!lote) {
            QUIMO_CHECK(lote.error().nativo != 0 && !lote.error().mensaje.empty());
            continue;
        }
        lote->tipos_fijos.resize(lote->literales.size());
        Entorno entorno;
        entorno.catalogo = &catalogo;
        entorno.tipo_variable = [](const std::string& nombre) -> std::optional<Tipo> {
            if (nombre.size() != 2) return std::nullopt;
            constexpr Clase kClases[] = {Clase::Int, Clase::Money, Clase::VarChar, Clase::DateTime,
                                         Clase::Numeric};
            return TipoDe(kClases[static_cast<unsigned char>(nombre[1]) % std::size(kClases)]);
        };
        entorno.parametros.assign(static_cast<std::size_t>(lote->parametros),
                                  TipoEntero(Clase::Int));
        entorno.lote = &*lote;
        Recorrido recorrido(entorno, motor, lote_texto);
        for (const SentenciaPtr& sentencia : lote->sentencias)
            recorrido.Sentencia(sentencia);
    }
}

}  // namespace quimo::tsql

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* datos, std::size_t largo) {
    constexpr std::size_t kTextoMax = 4096;
    if (largo <= kTextoMax)
        quimo::tsql::Probar(std::string(reinterpret_cast<const char*>(datos), largo));
    return 0;
}
