// Statements that are read but mean nothing: each is refused with the server's number.

#include <array>

#include <gtest/gtest.h>

#include "traductor_prueba.h"

namespace quimo::tsql {

namespace {

struct Rechazo {
    const char* tsql;
    int nativo;
};
class NoSeTraduceTest : public testing::TestWithParam<Rechazo> {};

TEST_P(NoSeTraduceTest, ConElNumeroDelServidor) {
    const auto plan = TraductorPrueba().Traducir(GetParam().tsql);
    ASSERT_FALSE(plan.has_value()) << plan->sql;
    EXPECT_EQ(plan.error().nativo, GetParam().nativo) << plan.error().mensaje;
}

INSTANTIATE_TEST_SUITE_P(Traductor, NoSeTraduceTest,
                         testing::ValuesIn(std::to_array<Rechazo>({
                             {"SELECT nada FROM A", 207},
                             {"SELECT ID FROM A, B", 209},
                             {"SELECT z.ID FROM A", 4104},
                             {"SELECT A.nada FROM A", 207},
                             {"SELECT z.* FROM A", 107},
                             {"SELECT *", 263},
                             {"SELECT 1 FROM Nada", 208},
                             {"SELECT 1 FROM A, A", 1013},
                             {"SELECT @nada", 137},
                             {"SELECT ?, ?", 8178},
                             {"SELECT NADA(1)", 195},
                             {"SELECT dbo.Nada(1)", 4121},
                             {"SELECT dbo.Doble()", 313},
                             {"SELECT dbo.Doble(1,2)", 8144},
                             {"SELECT LEN(t,u) FROM A", 174},
                             {"SELECT CHARINDEX('a')", 189},
                             {"SELECT DATEADD(siglo,1,d) FROM A", 155},
                             {"SELECT DATEADD(1,1,d) FROM A", 1023},
                             {"SELECT SUBSTRING(n,1,2) FROM A", 8116},
                             {"SELECT CONVERT(VARCHAR(9),d,n) FROM A", 8116},
                             {"SELECT -t FROM A", 8117},
                             {"SELECT t-u FROM A", 8117},
                             {"SELECT b+b FROM A", 402},
                             {"SELECT m&1 FROM A", 402},
                             {"SELECT d*2 FROM A", 402},
                             {"SELECT f%2 FROM A", 402},
                             {"SELECT ID FROM A WHERE uid=1", 206},
                             {"SELECT CASE WHEN n=1 THEN NULL END FROM A", 8133},
                             {"SELECT COALESCE(NULL,NULL)", 4127},
                             {"SELECT (SELECT ID, z FROM B)", 116},
                             {"SELECT ID FROM A WHERE n IN (SELECT ID, z FROM B)", 116},
                             {"SELECT n, SUM(m) FROM A", 8120},
                             {"SELECT n FROM A GROUP BY s", 8120},
                             {"SELECT n FROM A GROUP BY n ORDER BY s", 8120},
                             {"SELECT n FROM A WHERE SUM(m)>1", 147},
                             {"SELECT SUM(SUM(m)) FROM A", 130},
                             {"SELECT SUM(t) FROM A", 8117},
                             {"SELECT SUM(*) FROM A", 102},
                             {"SELECT SUM(m,n) FROM A", 174},
                             {"SELECT 1 FROM A GROUP BY SUM(m)", 144},
                             {"SELECT 1 FROM A GROUP BY 1", 164},
                             {"SELECT ROW_NUMBER() FROM A", 102},
                             {"SELECT n FROM A WHERE RANK() OVER (ORDER BY n)=1", 147},
                             {"SELECT n FROM A ORDER BY 2", 108},
                             {"SELECT DISTINCT n FROM A ORDER BY s", 145},
                             {"SELECT n AS k, s AS k FROM A ORDER BY k", 209},
                             {"SELECT n FROM A UNION SELECT n, s FROM A", 205},
                             {"SELECT @n=n, s FROM A", 141},
                             {"SELECT * FROM (SELECT 1) d", 8155},
                             {"SELECT * FROM (SELECT 1 AS a, 2 AS a) d", 8156},
                             {"SELECT * FROM (SELECT 1, 2) d (a)", 8158},
                             {"SELECT * FROM (SELECT 1) d (a, b)", 8159},
                             {"INSERT INTO Nada VALUES (1)", 208},
                             {"INSERT INTO V VALUES (1,2)", 4406},
                             {"INSERT INTO B VALUES (1)", 213},
                             {"INSERT INTO B (ID,y) VALUES (1)", 109},
                             {"INSERT INTO B (ID) VALUES (1,2)", 110},
                             {"INSERT INTO B (ID,y) SELECT 1", 120},
                             {"INSERT INTO B (ID) SELECT 1, 2", 121},
                             {"INSERT INTO B (ID,ID) VALUES (1,2)", 264},
                             {"INSERT INTO B (nada) VALUES (1)", 207},
                             {"INSERT INTO I (ID) VALUES (1)", 544},
                             {"INSERT INTO I (calc) VALUES (1)", 271},
                             {"INSERT INTO B (ID) VALUES (SUM(1))", 147},
                             {"INSERT INTO A (ID,uid) VALUES (1,5)", 206},
                             {"UPDATE I SET ID=1", 8102},
                             {"UPDATE I SET calc=1", 271},
                             {"UPDATE A SET n=1, n=2", 264},
                             {"UPDATE A SET nada=1", 207},
                             {"UPDATE A SET n=SUM(n)", 157},
                             {"UPDATE V SET total=1", 4406},
                             {"UPDATE d SET k=1 FROM (SELECT n AS k FROM A) d", 4406},
                             {"DELETE FROM V", 4406},
                             {"DELETE FROM Nada", 208},
                             {"INSERT INTO A (ID,bin) VALUES (1,'x')", 257},
                             {"UPDATE A SET n=d", 257},
                             {"SELECT clave FROM Vuelta", 217},
                         })));

TEST(NoSeTraduceTest, LosMensajesNombranLoQueFalla) {
    const auto mensaje = [](const char* tsql) {
        return TraductorPrueba().Traducir(tsql).error().mensaje;
    };
    EXPECT_EQ(mensaje("SELECT x.n, SUM(m) FROM A x"),
              "Column 'x.n' is invalid in the select list because it is not contained in either an "
              "aggregate function or the GROUP BY clause.");
    EXPECT_EQ(mensaje("SELECT n FROM A GROUP BY n HAVING s=1"),
              "Column 'A.s' is invalid in the HAVING clause because it is not contained in either "
              "an aggregate function or the GROUP BY clause.");
    EXPECT_EQ(mensaje("SELECT CHARINDEX('a')"),
              "The charindex function requires 2 to 3 arguments.");
    EXPECT_EQ(mensaje("SELECT a.b.c.d FROM A"),
              "The multi-part identifier \"a.b.c.d\" could not be bound.");
    EXPECT_EQ(mensaje("SELECT ~f FROM A"), "Operand data type float is invalid for '~' operator.");
}

TEST(NoSeTraduceTest, LoMuyAnidadoSeRechaza) {
    std::string consulta = "SELECT n FROM A";
    for (int i = 0; i < 20; ++i)
        consulta = "SELECT n FROM (" + consulta + ") d" + std::to_string(i);
    EXPECT_TRUE(TraductorPrueba().Traducir(consulta).has_value());
    Expr expr{ClaseExpr::Literal};
    expr.literal = Literal{TipoEntero(Clase::Int), Valor::De(1)};
    expr.tipo = expr.literal->tipo;
    auto nodo = std::make_shared<const Expr>(expr);
    for (int i = 0; i < 2000; ++i) {
        Expr menos{ClaseExpr::Unaria};
        menos.texto = "-";
        menos.hijos = {nodo};
        nodo = std::make_shared<const Expr>(std::move(menos));
    }
    EXPECT_EQ(TraducirValor(*nodo, TraductorPrueba().entorno).error().nativo, 191);
}

}  // namespace

}  // namespace quimo::tsql
