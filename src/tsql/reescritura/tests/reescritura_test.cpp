// Rewrites over the tree: that each is made where it gives the same answer faster, and stays out
// where the answer, or what the engine can do by itself, would change.

#include <array>

#include <gtest/gtest.h>

#include "arbol_escrito.h"
#include "catalogo_prueba.h"
#include "tsql/reescritura/busqueda_de_grupo.h"
#include "tsql/reescritura/fecha_trabajo.h"
#include "tsql/reescritura/filtro_opcional.h"
#include "tsql/reescritura/producto.h"
#include "tsql/reescritura/rangos_prefijo.h"
#include "tsql/valores/texto.h"

namespace quimo::tsql {

namespace {

const CatalogoPrueba& Catalogo() {
    static const CatalogoPrueba kCatalogo{
        "CREATE TABLE A (ID INT NOT NULL PRIMARY KEY, Total MONEY, N SMALLINT, T VARCHAR(9), "
        "Dia VARCHAR(8), Larga VARCHAR(10), Suelta VARCHAR(8))",
        "CREATE TABLE B (IB INT NOT NULL PRIMARY KEY, ID_A INT, Importe NUMERIC(9,2), F FLOAT, "
        "G BIGINT, K TINYINT, Sin INT)",
        "CREATE INDEX IX_Dia ON A (Dia)", "CREATE INDEX IX_Larga ON A (Larga)",
        "CREATE INDEX IX_G ON B (G)"};
    return kCatalogo;
}

void Anotar(const Fuente& fuente, Ambito& ambito) {
    if (fuente.clase == Fuente::Clase::Join) {
        Anotar(*fuente.izquierda, ambito);
        Anotar(*fuente.derecha, ambito);
        return;
    }
    TablaAmbito tabla;
    tabla.expuesto = fuente.alias.empty() ? fuente.nombre.objeto : fuente.alias;
    tabla.alias_sql = tabla.expuesto;
    tabla.tabla = Catalogo().BuscarTabla(fuente.nombre);
    if (tabla.tabla) {
        for (const ColumnaTabla& c : tabla.tabla->columnas)
            tabla.columnas.push_back({c.nombre, tabla.expuesto + "." + c.nombre, c.tipo});
    }
    ambito.tablas.push_back(std::move(tabla));
}

/// A query and the names that its FROM brings.
struct Pregunta {
    explicit Pregunta(const std::string& texto)
        : lote(LeerLote(texto, Constantes::PorPosicion).value()),
          consulta(*std::get<Seleccionar>(lote.sentencias[0]->que).consulta) {
        for (const FuentePtr& fuente : consulta.simple->fuentes)
            Anotar(*fuente, ambito);
    }

    Lote lote;
    const Consulta& consulta;
    Ambito ambito;
};

struct Caso {
    const char* texto;
    const char* esperado;  ///< empty: it is left as it is
};

class ProductoTest : public testing::TestWithParam<Caso> {};

TEST_P(ProductoTest, SoloSinCondicionQueUna) {
    const Pregunta pregunta(GetParam().texto);
    const auto otra = SinProducto(pregunta.consulta, pregunta.ambito);
    EXPECT_EQ(otra ? Escribir(*otra) : "", GetParam().esperado);
}

INSTANTIATE_TEST_SUITE_P(
    Reescritura, ProductoTest,
    testing::ValuesIn(std::to_array<Caso>({
        {"SELECT COUNT(*) FROM A, B",
         "SELECT CAST((producto 1.n * producto 2.n) AS int) FROM (SELECT COUNT_BIG(*) AS n FROM A) "
         "AS producto 1,(SELECT COUNT_BIG(*) AS n FROM B) AS producto 2"},
        {"SELECT SUM(Total) AS s, MAX(IB) FROM A CROSS JOIN B WHERE A.N > 1",
         "SELECT CAST((producto 1.a1 * NULLIF(producto 2.n,0)) AS money) AS s,CASE WHEN (producto "
         "1.n > 0) THEN producto 2.a1 END FROM (SELECT COUNT_BIG(*) AS n,SUM(Total) AS a1 FROM A "
         "WHERE (A.N > #0)) AS producto 1,(SELECT COUNT_BIG(*) AS n,MAX(IB) AS a1 FROM [(SELECT "
         "TOP 1 1 AS uno FROM A WHERE (A.N > #0)) AS hay producto 1 DELANTE B]) AS producto 2"},
        {"SELECT COUNT(N) + AVG(Sin) FROM A, B",
         "SELECT (CAST((producto 1.a1 * producto 2.n) AS int) + CASE WHEN (producto 1.n > 0) THEN "
         "producto 2.a1 END) FROM (SELECT COUNT_BIG(*) AS n,COUNT(N) AS a1 FROM A) AS producto "
         "1,(SELECT COUNT_BIG(*) AS n,AVG(Sin) AS a1 FROM B) AS producto 2"},
        {"SELECT COUNT(*) FROM A", ""},
        {"SELECT COUNT(*) FROM A, B WHERE A.ID = B.ID_A", ""},
        {"SELECT COUNT(*) FROM A JOIN B ON A.ID = B.ID_A", ""},
        {"SELECT COUNT(*) FROM A LEFT JOIN B ON 1 = 1", ""},
        {"SELECT COUNT(*) FROM A, (SELECT 1 AS x) d", ""},
        {"SELECT COUNT(*) FROM A, B WHERE A.ID IN (SELECT 1)", ""},
        {"SELECT COUNT(*) FROM A, B WHERE A.ID = otra.x", ""},
        {"SELECT SUM(F) FROM A, B", ""},
        {"SELECT SUM(Importe) FROM A, B", ""},
        {"SELECT SUM(DISTINCT N) FROM A, B", ""},
        {"SELECT SUM(N + Sin) FROM A, B", ""},
        {"SELECT COUNT(*) FROM A, B GROUP BY N", ""},
        {"SELECT COUNT(*) FROM A, B HAVING COUNT(*) > 1", ""},
        {"SELECT DISTINCT COUNT(*) FROM A, B", ""},
        {"SELECT TOP 1 COUNT(*) FROM A, B", ""},
        {"SELECT COUNT(*) FROM A, B ORDER BY 1", ""},
        {"SELECT COUNT(*), N FROM A, B", ""},
        {"SELECT N FROM A, B", ""},
    })));

class ExtremoTest : public testing::TestWithParam<Caso> {};

TEST_P(ExtremoTest, SoloDeUnNumeroPorSuPrefijo) {
    Pregunta pregunta(GetParam().texto);
    const auto otra = ExtremoPorRangos(pregunta.consulta, pregunta.ambito, &pregunta.lote);
    EXPECT_EQ(otra ? Escribir(*otra) : "", GetParam().esperado);
}

INSTANTIATE_TEST_SUITE_P(
    Reescritura, ExtremoTest,
    testing::ValuesIn(std::to_array<Caso>({
        {"SELECT MAX(K) AS m FROM B WHERE K LIKE '1%'",
         "SELECT MAX(m) AS m FROM (<<SELECT MAX(K) AS m FROM B WHERE (K BETWEEN CAST(1 AS "
         "tinyint),CAST(1 AS tinyint)) UNION ALL SELECT MAX(K) AS m FROM B WHERE (K BETWEEN "
         "CAST(10 AS tinyint),CAST(19 AS tinyint))> UNION ALL SELECT MAX(K) AS m FROM B WHERE (K "
         "BETWEEN CAST(100 AS tinyint),CAST(199 AS tinyint))>) AS rangos"},
        {"SELECT MIN(N) FROM A WHERE N LIKE '327%'",
         "SELECT MIN(m) FROM (<<SELECT MIN(N) AS m FROM A WHERE (N BETWEEN CAST(327 AS "
         "smallint),CAST(327 AS smallint)) UNION ALL SELECT MIN(N) AS m FROM A WHERE (N BETWEEN "
         "CAST(3270 AS smallint),CAST(3279 AS smallint))> UNION ALL SELECT MIN(N) AS m FROM A "
         "WHERE (N BETWEEN CAST(32700 AS smallint),CAST(32767 AS smallint))>) AS rangos"},
        {"SELECT MAX(ID) FROM A WHERE ID LIKE '0%'", ""},
        {"SELECT MAX(K) FROM B WHERE K LIKE '255%'", ""},
        {"SELECT MAX(ID) FROM A WHERE ID NOT LIKE '1%'", ""},
        {"SELECT MAX(ID) FROM A WHERE ID LIKE '%1'", ""},
        {"SELECT MAX(ID) FROM A WHERE ID LIKE '1%%'", ""},
        {"SELECT MAX(ID) FROM A WHERE ID LIKE '1%' ESCAPE '!'", ""},
        {"SELECT MAX(ID) FROM A WHERE N LIKE '1%'", ""},
        {"SELECT MAX(T) FROM A WHERE T LIKE '1%'", ""},
        {"SELECT SUM(ID) FROM A WHERE ID LIKE '1%'", ""},
        {"SELECT MAX() FROM A WHERE ID LIKE '1%'", ""},
        {"SELECT MAX(ID) FROM A WHERE ID LIKE '1%' AND N = 2", ""},
        {"SELECT MAX(ID), 1 FROM A WHERE ID LIKE '1%'", ""},
        {"SELECT TOP 1 MAX(ID) FROM A WHERE ID LIKE '1%'", ""},
    })));

TEST(RangosTest, LosNumerosQueEmpiezanAsi) {
    const auto rangos = [](const char* patron, Clase clase) {
        Pregunta pregunta(std::string("SELECT 1 WHERE x LIKE ") + patron);
        const auto hallados =
            RangosDePrefijo(*pregunta.consulta.simple->donde, TipoEntero(clase), &pregunta.lote);
        return hallados ? EnRangos({"x", TipoEntero(clase)}, *hallados, false).sql : "no";
    };
    EXPECT_EQ(rangos("'7%'", Clase::TinyInt), "(x BETWEEN 7 AND 7 OR x BETWEEN 70 AND 79)");
    EXPECT_EQ(rangos("'25%'", Clase::TinyInt), "(x BETWEEN 25 AND 25 OR x BETWEEN 250 AND 255)");
    EXPECT_EQ(rangos("'3276%'", Clase::SmallInt),
              "(x BETWEEN 3276 AND 3276 OR x BETWEEN 32760 AND 32767)");
    EXPECT_EQ(rangos("'0%'", Clase::Int), "(x BETWEEN 0 AND 0)");
    EXPECT_EQ(rangos("'01%'", Clase::Int), "()");
    EXPECT_EQ(rangos("'-1%'", Clase::Int), "no");
    EXPECT_EQ(rangos("'1_'", Clase::Int), "no");
    EXPECT_EQ(rangos("'%'", Clase::Int), "no");
    EXPECT_EQ(rangos("'1234567890123456789%'", Clase::BigInt), "no");
    EXPECT_EQ(rangos("'1%'", Clase::Bit), "no");
    EXPECT_EQ(rangos("1", Clase::Int), "no");
    EXPECT_EQ(EnRangos({"x", {}}, {{1, 2}}, true).sql, "NOT (x BETWEEN 1 AND 2)");
}

TEST(RangosTest, ElPatronQuedaFijoEnElArbol) {
    Pregunta pregunta("SELECT MAX(ID) FROM A WHERE ID LIKE '1%'");
    ASSERT_TRUE(ExtremoPorRangos(pregunta.consulta, pregunta.ambito, &pregunta.lote));
    EXPECT_EQ(pregunta.lote.fijos, std::vector<bool>{true});
}

std::string PorFecha(const std::string& donde, OrdenFecha orden = OrdenFecha::Dma,
                     bool agrupada = false) {
    Pregunta pregunta("SELECT 1 FROM A WHERE 1 = " + donde);
    pregunta.ambito.agrupado = agrupada;
    const Expr& expr = *pregunta.consulta.simple->donde->hijos[1];
    const auto fecha = FechaDeTrabajo(expr, pregunta.ambito, orden, &pregunta.lote);
    return fecha ? fecha->ConControl(Verdad(fecha->fecha.sql + ">5", Fuerza::Orden)).sql : "no";
}

TEST(FechaDeTrabajoTest, SoloLaFechaDelDiaSobreSuIndice) {
    const std::string trozos = "SUBSTRING(Dia,1,2)+'/'+SUBSTRING(Dia,3,2)+'/'+SUBSTRING(Dia,5,4)";
    const std::string con_control =
        "q_fecha8(A.Dia)>5 AND q_fechas_validas((SELECT 1 FROM \"A\" WHERE q_fecha8(\"Dia\")='!' "
        "LIMIT 1))";
    EXPECT_EQ(PorFecha("CONVERT(DATETIME," + trozos + ",103)"), con_control);
    EXPECT_EQ(PorFecha("CONVERT(DATETIME," + trozos + ")"), con_control);
    EXPECT_EQ(PorFecha("CAST(" + trozos + " AS DATETIME)"), con_control);
    EXPECT_EQ(PorFecha("CONVERT(DATETIME," + trozos + ")", OrdenFecha::Mda), "no");
    EXPECT_EQ(PorFecha("CONVERT(DATETIME," + trozos + ",101)"), "no");
    EXPECT_EQ(PorFecha("CONVERT(SMALLDATETIME," + trozos + ",103)"), "no");
    EXPECT_EQ(PorFecha("CONVERT(DATETIME," + trozos + ",103)", OrdenFecha::Dma, true), "no");
    EXPECT_EQ(PorFecha(trozos), "no");
}

TEST(FechaDeTrabajoTest, OtroTextoNoTieneIndice) {
    const auto de = [](const std::string& uno, const std::string& dos, const std::string& tres) {
        return PorFecha("CONVERT(DATETIME," + uno + "+'/'+" + dos + "+'/'+" + tres + ",103)");
    };
    const std::string dia = "SUBSTRING(Dia,1,2)";
    const std::string mes = "SUBSTRING(Dia,3,2)";
    EXPECT_NE(de(dia, mes, "SUBSTRING(Dia,5,4)"), "no");
    EXPECT_EQ(de(dia, mes, "SUBSTRING(Dia,5,2)"), "no");
    EXPECT_EQ(de(mes, dia, "SUBSTRING(Dia,5,4)"), "no");
    EXPECT_EQ(de(dia, mes, "SUBSTRING(Suelta,5,4)"), "no");
    EXPECT_EQ(de("SUBSTRING(Suelta,1,2)", "SUBSTRING(Suelta,3,2)", "SUBSTRING(Suelta,5,4)"), "no");
    EXPECT_EQ(de("SUBSTRING(Larga,1,2)", "SUBSTRING(Larga,3,2)", "SUBSTRING(Larga,5,4)"), "no");
}

/// Writes columns, and operators as they are; what names no column of the scope is an error.
class ValoradorPrueba final : public Valorador {
public:
    Resultado<Termino> Valor(const ExprPtr& expr, Ambito& ambito) override {
        ++marca_;
        if (expr->clase == ClaseExpr::Columna) {
            QUIMO_TRY(const ColumnaAmbito* const columna, BuscarColumna(*expr, ambito));
            if (columna == nullptr) return ColumnaDesconocida(expr->partes.back());
            return Termino{columna->sql, columna->tipo};
        }
        std::string sql;
        for (const ExprPtr& hijo : expr->hijos) {
            QUIMO_TRY(const Termino termino, Valor(hijo, ambito));
            sql += (sql.empty() ? "" : expr->texto) + termino.sql;
        }
        if (expr->consulta) sql += " IN (...)";
        return Verdad(sql, Fuerza::Atomo);
    }
    Resultado<Termino> ValorSuelto(const ExprPtr& expr, Ambito& ambito) override {
        return Valor(expr, ambito);
    }
    std::size_t Marca() const override { return marca_; }
    void Volver(std::size_t marca) override { marca_ = marca; }

private:
    std::size_t marca_ = 0;
};

class FiltroTest : public testing::TestWithParam<Caso> {};

TEST_P(FiltroTest, SoloLoQueUnIndiceEncuentraAntes) {
    const Pregunta pregunta(std::string("SELECT 1 FROM A LEFT JOIN B ON ") + GetParam().texto);
    ValoradorPrueba valores;
    const auto sql =
        FiltrarOpcional(*pregunta.consulta.simple->fuentes[0], pregunta.ambito, valores);
    EXPECT_EQ(sql.value_or(""), GetParam().esperado);
}

INSTANTIATE_TEST_SUITE_P(
    Reescritura, FiltroTest,
    testing::ValuesIn(std::to_array<Caso>({
        {"B.ID_A=A.ID AND B.G IN (SELECT 1)",
         "(SELECT * FROM \"B\" AS B WHERE B.G IN (...) LIMIT -1) AS B ON B.ID_A=A.ID"},
        {"B.G IN (SELECT 1)", "(SELECT * FROM \"B\" AS B WHERE B.G IN (...) LIMIT -1) AS B ON 1"},
        {"B.ID_A=A.ID AND B.G IN (SELECT 1) AND B.F>B.Importe",
         "(SELECT * FROM \"B\" AS B WHERE B.G IN (...) AND B.F>B.Importe LIMIT -1) AS B ON "
         "B.ID_A=A.ID"},
        {"B.IB=A.ID AND B.G IN (SELECT 1)", ""},      // the key finds the row as it is
        {"B.ID_A=A.ID AND B.Sin IN (SELECT 1)", ""},  // no index to begin with
        {"B.ID_A=A.ID AND B.G NOT IN (SELECT 1)", ""},
        {"B.ID_A=A.ID AND B.G=5", ""},
        {"B.ID_A=A.ID AND B.G IN (SELECT 1) AND B.Nada>1", ""},
    })));

std::string Buscado(const std::string& join, const PiezasDeGrupo& grupo) {
    const Pregunta pregunta("SELECT 1 FROM " + join);
    const Fuente& fuente = *pregunta.consulta.simple->fuentes[0];
    Ambito ambito;
    Anotar(fuente.join == TipoJoin::Izquierda ? *fuente.izquierda : *fuente.derecha, ambito);
    TablaAmbito tabla;
    tabla.expuesto = "d";
    tabla.columnas = {{"k", "d.k", TipoEntero(Clase::Int), false}, {"s", "d.s", TipoMoneda()}};
    ValoradorPrueba valores;
    if (!BuscarGrupo(fuente, grupo, tabla, ambito, valores)) {
        EXPECT_EQ(tabla.columnas[1].sql, "d.s");
        return "no";
    }
    EXPECT_TRUE(tabla.columnas[0].admite_nulos);
    return tabla.columnas[0].sql + " " + tabla.columnas[1].sql;
}

TEST(BusquedaDeGrupoTest, UnGrupoPorSuClave) {
    const std::string d = "(SELECT ID_A AS k, SUM(Importe) AS s FROM B GROUP BY ID_A) d";
    const PiezasDeGrupo grupo{
        {"b.ID_A", "sum(b.Importe)"}, "B AS b", "b.G>1", {"b.ID_A", TipoEntero(Clase::Int)}};
    const std::string preguntas =
        "(SELECT b.ID_A FROM B AS b WHERE (b.G>1) AND b.ID_A=A.ID GROUP BY b.ID_A) "
        "(SELECT sum(b.Importe) FROM B AS b WHERE (b.G>1) AND b.ID_A=A.ID)";
    EXPECT_EQ(Buscado("A LEFT JOIN " + d + " ON d.k = A.ID", grupo), preguntas);
    EXPECT_EQ(Buscado("A LEFT JOIN " + d + " ON A.ID = d.k", grupo), preguntas);
    EXPECT_EQ(Buscado(d + " RIGHT JOIN A ON d.k = A.ID", grupo), preguntas);
    EXPECT_EQ(Buscado("A LEFT JOIN " + d + " ON d.s = A.ID", grupo), "no");
    EXPECT_EQ(Buscado("A LEFT JOIN " + d + " ON d.k > A.ID", grupo), "no");
    EXPECT_EQ(Buscado("A LEFT JOIN " + d + " ON d.k = d.k", grupo), "no");
    EXPECT_EQ(Buscado("A LEFT JOIN " + d + " ON d.k = A.ID + 1", grupo), "no");
    EXPECT_EQ(Buscado("A LEFT JOIN " + d + " ON d.k = A.T", grupo), "no");
    EXPECT_EQ(Buscado("A LEFT JOIN " + d + " ON d.k = ID", grupo), "no");
    PiezasDeGrupo de_texto = grupo;
    de_texto.clave.tipo = TipoTexto(Clase::VarChar, 5);
    EXPECT_EQ(Buscado("A LEFT JOIN " + d + " ON d.k = A.ID", de_texto), "no");
}

TEST(BusquedaDeGrupoTest, SoloElLadoOpcionalEntreParentesis) {
    const auto opcional = [](const std::string& join) {
        const Pregunta pregunta("SELECT 1 FROM " + join);
        const Fuente* const fuente = OpcionalDerivada(*pregunta.consulta.simple->fuentes[0]);
        return fuente == nullptr ? "" : fuente->alias;
    };
    EXPECT_EQ(opcional("A LEFT JOIN (SELECT 1 AS x) d ON 1=1"), "d");
    EXPECT_EQ(opcional("(SELECT 1 AS x) d RIGHT JOIN A ON 1=1"), "d");
    EXPECT_EQ(opcional("(SELECT 1 AS x) d LEFT JOIN A ON 1=1"), "");
    EXPECT_EQ(opcional("A JOIN (SELECT 1 AS x) d ON 1=1"), "");
    EXPECT_EQ(opcional("A LEFT JOIN B ON 1=1"), "");
}

TEST(AmbitoTest, LosNombresSeBuscanSinMayusculas) {
    const Pregunta pregunta("SELECT 1 FROM A x, A y, B");
    const auto buscar = [&](const char* nombre) -> std::string {
        const auto columna = BuscarColumna(*LeerExpresion(nombre).value(), pregunta.ambito);
        if (!columna) return "! " + std::to_string(columna.error().nativo);
        return *columna == nullptr ? "" : (*columna)->sql;
    };
    EXPECT_EQ(buscar("X.id"), "x.ID");
    EXPECT_EQ(buscar("importe"), "B.Importe");
    EXPECT_EQ(buscar("ID"), "! 209");
    EXPECT_EQ(buscar("B.Nada"), "! 207");
    EXPECT_EQ(buscar("Nada"), "");
    EXPECT_EQ(buscar("z.ID"), "");
}

TEST(AmbitoTest, DicenLoMismoAunqueSeEscribanDistinto) {
    Pregunta pregunta(
        "SELECT A.N+1, n+1, N+2, N-1, ABS(N), ABS(A.N), COUNT(N), COUNT(DISTINCT N) "
        "FROM A");
    const auto iguales = [&](std::size_t i, std::size_t j) {
        const auto& items = pregunta.consulta.simple->items;
        return DicenLoMismo(*items[i].expr, *items[j].expr, pregunta.ambito, &pregunta.lote);
    };
    EXPECT_TRUE(iguales(0, 1));
    EXPECT_FALSE(iguales(0, 2));
    EXPECT_FALSE(iguales(0, 3));
    EXPECT_TRUE(iguales(4, 5));
    EXPECT_FALSE(iguales(4, 0));
    EXPECT_FALSE(iguales(6, 7));
}

}  // namespace

}  // namespace quimo::tsql
