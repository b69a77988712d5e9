// What a text is read as: how operators bind, and every kind of statement.

#include <array>

#include <gtest/gtest.h>

#include "arbol_escrito.h"

namespace quimo::tsql {

namespace {

struct Caso {
    const char* texto;
    const char* arbol;
};

class ArbolTest : public testing::TestWithParam<Caso> {};

TEST_P(ArbolTest, SeLeeAsi) { EXPECT_EQ(ArbolDe(GetParam().texto), GetParam().arbol); }

INSTANTIATE_TEST_SUITE_P(
    Parser, ArbolTest,
    testing::ValuesIn(std::to_array<Caso>({
        {"SELECT 1+2*3-4, -a.b, ~c%2, (1+2)*3",
         "SELECT ((1 + (2 * 3)) - 4),(- a.b),((~ c) % 2),((1 + 2) * 3)"},
        {"SELECT 1 WHERE a=1 OR b=2 AND NOT c<3 AND (d>4 OR e!>5)",
         "SELECT 1 WHERE ((a = 1) OR (((b = 2) AND (NOT (c < 3))) AND ((d > 4) OR (e <= 5))))"},
        {"SELECT 1 WHERE a NOT IN (1,2) AND b BETWEEN 1 AND 2 AND c NOT LIKE 'x%' ESCAPE '!' AND d "
         "IS NOT NULL",
         "SELECT 1 WHERE ((((a NOT IN 1,2) AND (b BETWEEN 1,2)) AND (c NOT LIKE 'x%','!')) AND (d "
         "IS NOT NULL))"},
        {"SELECT 1 WHERE a IN (SELECT b FROM t) AND EXISTS (SELECT * FROM t) AND c >= ALL (SELECT "
         "1) AND d <> SOME (SELECT 2)",
         "SELECT 1 WHERE ((((a IN SELECT b FROM t) AND EXISTS(SELECT * FROM t)) AND (c >= ALL "
         "SELECT 1)) AND (d <> ANY SELECT 2))"},
        {"SELECT CASE a WHEN 1 THEN 'x' ELSE N'y' END, CASE WHEN a=1 THEN 2 WHEN b=2 THEN 3 END",
         "SELECT CASE a WHEN 1 THEN 'x' ELSE N'y' END,CASE WHEN (a = 1) THEN 2 WHEN (b = 2) THEN 3 "
         "END"},
        {"SELECT CAST(a AS VARCHAR), CONVERT(CHAR(5),b,103), CAST(c AS NUMERIC(10,2)), CAST(d AS "
         "DOUBLE PRECISION), CAST(e AS NVARCHAR(MAX))",
         "SELECT CAST(a AS varchar(30)),CAST(b,103 AS char(5)),CAST(c AS numeric(10,2)),CAST(d AS "
         "float),CAST(e AS nvarchar(-1))"},
        {"SELECT COUNT(*), COUNT(DISTINCT a), dbo.f(1,b), LEFT(c,2), CURRENT_TIMESTAMP, RANK() "
         "OVER (PARTITION BY a ORDER BY b DESC)",
         "SELECT COUNT(*),COUNT(DISTINCT a),dbo,f(1,b),LEFT(c,2),GETDATE(),RANK() OVER(a;b DESC)"},
        {"SELECT DISTINCT TOP 10 PERCENT t.*, x = a, b AS 'y z', [raro]]n] c INTO #n FROM dbo.t AS "
         "t WITH (NOLOCK), otra..u v",
         "SELECT DISTINCT TOP 10% t.*,a AS x,b AS y z,raro]n AS c INTO #n FROM dbo.t AS t,otra..u "
         "AS v"},
        {"SELECT @x = a, @y = @@ROWCOUNT FROM @tabla", "SELECT @x=a,@y=@@ROWCOUNT FROM @tabla"},
        {"SELECT 1 FROM a LEFT OUTER JOIN b ON a.i=b.i INNER JOIN (c CROSS JOIN d) ON c.i=a.i FULL "
         "JOIN (SELECT 1 AS n) e (m) ON e.m=1",
         "SELECT 1 FROM [[[a LEFT b ON (a.i = b.i)] JOIN [c CROSS d] ON (c.i = a.i)] FULL (SELECT "
         "1 AS n) AS e(m) ON (e.m = 1)]"},
        {"SELECT a FROM t GROUP BY a, b HAVING COUNT(*)>1 ORDER BY a DESC, 2 ASC",
         "SELECT a FROM t GROUP a,b HAVING (COUNT(*) > 1) ORDER a DESC,2"},
        {"SELECT 1 UNION ALL SELECT 2 EXCEPT SELECT 3 INTERSECT SELECT 4 ORDER BY 1",
         "<<SELECT 1 UNION ALL SELECT 2> EXCEPT <SELECT 3 INTERSECT SELECT 4>> ORDER 1"},
        {"WITH c (x) AS (SELECT 1), d AS (SELECT 2) SELECT * FROM c",
         "WITH c(x){SELECT 1} WITH d(){SELECT 2} SELECT * FROM c"},
        {"INSERT INTO t (a,b) VALUES (1,DEFAULT),(NULL,'x')",
         "INSERT t(a,b) (1,DEFAULT) (NULL,'x')"},
        {"INSERT t DEFAULT VALUES INSERT @t SELECT 1 INSERT t EXEC p 1, @x OUTPUT",
         "INSERT t() DEFAULT VALUES ; INSERT @t() SELECT 1 ; INSERT t() EXEC p 1 @x OUT"},
        {"UPDATE TOP (5) t SET a=1, t.b=DEFAULT, c+=2 FROM t JOIN u ON t.i=u.i WHERE a>1",
         "UPDATE t TOP 5 SET a=1 b=DEFAULT c=(c + 2) FROM [t JOIN u ON (t.i = u.i)] WHERE (a > 1)"},
        {"DELETE TOP (2) FROM t WHERE a=1 DELETE x FROM t x, u TRUNCATE TABLE dbo.t",
         "DELETE t TOP 2 WHERE (a = 1) ; DELETE x FROM t AS x,u ; TRUNCATE dbo.t"},
        {"CREATE TABLE t (a INT IDENTITY(5,-2) NOT NULL, b VARCHAR(9) NULL DEFAULT 'x', c AS a+1 "
         "PERSISTED, CONSTRAINT p PRIMARY KEY CLUSTERED (a), d INT REFERENCES u(i) ON DELETE "
         "CASCADE ON UPDATE SET NULL, CHECK (a>0), e MONEY,)",
         "TABLE t(a int NOT NULL ID(5,-2), b varchar(9) NULL, c AS a+1 P, d int, e money, DEFAULT "
         "(b)'x', PK p(a), FK (d)->u(i)CASCADE/SET NULL, CHECK ()a>0)"},
        {"ALTER TABLE t ADD a INT NULL, b INT NOT NULL ALTER TABLE t ADD CONSTRAINT q UNIQUE (a) "
         "ALTER TABLE t DROP COLUMN a, b ALTER TABLE t DROP CONSTRAINT q ALTER TABLE t ALTER "
         "COLUMN a BIGINT",
         "ADD COLUMN t a int NULL, b int NOT NULL ; ADD CONSTRAINT t UNIQUE q(a) ; DROP COLUMN t "
         "a,b ; DROP CONSTRAINT t q ; ALTER COLUMN t a bigint"},
        {"CREATE UNIQUE CLUSTERED INDEX i ON t (a DESC, b) INCLUDE (c) CREATE INDEX j ON t (a) "
         "INCLUDE (b) WITH (FILLFACTOR = 80)",
         "UNIQUE INDEX i ON t(a,b) ; INDEX j ON t(a,b)"},
        {"CREATE VIEW v (a) AS SELECT 1", "CREATE VIEW v(a) SELECT 1"},
        {"ALTER PROCEDURE p @a INT = 5, @b VARCHAR(3) OUTPUT WITH RECOMPILE AS SET @a = 1 RETURN",
         "ALTER PROCEDURE p(@a int=5;@b varchar(3) OUT;) {SET @a=1 ; RETURN}"},
        {"CREATE FUNCTION dbo.f (@a INT) RETURNS MONEY AS BEGIN RETURN @a*2 END",
         "CREATE FUNCTION dbo.f(@a int;) {{RETURN (@a * 2)}}"},
        {"DROP TABLE IF EXISTS a, b DROP PROC p DROP INDEX i ON t, u.j",
         "DROP TABLE IF EXISTS a b ; DROP PROCEDURE p ; DROP INDEX t.i u.j"},
        {"sp_x a, 'b', @c=DEFAULT, -1, @d = @e OUT",
         "EXEC sp_x 'a' 'b' @c=DEFAULT (- 1) @d=@e OUT"},
        {"EXEC @r = dbo.p EXEC ('SELECT ' + @x)", "EXEC @r=dbo.p ; EXEC text ('SELECT ' + @x)"},
        {"DECLARE @a INT = 5, @b AS VARCHAR(3) DECLARE @t TABLE (i INT PRIMARY KEY)",
         "DECLARE @a int=5 @b varchar(3) ; DECLARE TABLE @t(i int NOT NULL, PK (i))"},
        {"SET @a = 1 SET @a -= 2 SET NOCOUNT ON SET LOCK_TIMEOUT -1 SET IDENTITY_INSERT t OFF SET "
         "TRANSACTION ISOLATION LEVEL READ COMMITTED USE otra",
         "SET @a=1 ; SET @a=(@a - 2) ; SET NOCOUNT ON ; SET LOCK_TIMEOUT -1 ; SET IDENTITY_INSERT "
         "OFFt ; SET TRANSACTION READCOMMITTED ; SET USE otra"},
        {"IF a=1 SELECT 1 ELSE BEGIN WHILE 1=1 BREAK; CONTINUE END",
         "IF (a = 1) SELECT 1 ELSE {WHILE (1 = 1) BREAK ; CONTINUE}"},
        {"BEGIN TRAN a SAVE TRAN b COMMIT WORK ROLLBACK TRANSACTION b PRINT 'x' RAISERROR "
         "('m',16,1) WITH NOWAIT DBCC CHECKDB WITH NO_INFOMSGS",
         "BEGIN TRAN a ; SAVE TRAN b ; COMMIT TRAN  ; ROLLBACK TRAN b ; PRINT 'x' ; RAISERROR "
         "'m',16,1 ; CHECKDB BAD"},
    })));

TEST(ArbolTest, LasConstantesPorPosicionNoEstanEnElArbol) {
    EXPECT_EQ(ArbolDe("SELECT a+5 FROM t WHERE b='x' AND c=?", Constantes::PorPosicion),
              "SELECT (a + #0) FROM t WHERE ((b = #1) AND (c = ?0))");
}

TEST(ArbolTest, LoQueFormaElArbolQuedaFijo) {
    const auto lote = LeerLote("SELECT a 'nombre', 5 FROM t", Constantes::PorPosicion);
    ASSERT_TRUE(lote.has_value());
    EXPECT_EQ(lote->fijos, (std::vector<bool>{true, false}));
}

TEST(ArbolTest, UnModuloGuardaSuTextoComoCreate) {
    const auto lote = LeerLote("-- nota\nALTER VIEW v AS SELECT 1 -- fin", Constantes::EnElArbol);
    ASSERT_TRUE(lote.has_value());
    EXPECT_EQ(std::get<CrearModulo>(lote->sentencias[0]->que).texto,
              "CREATE VIEW v AS SELECT 1 -- fin");
}

TEST(ArbolTest, ReconoceLosAgregados) {
    const auto expr = [](const char* texto) { return *LeerExpresion(texto).value(); };
    EXPECT_TRUE(EsAgregado(expr("SUM(a)")));
    EXPECT_TRUE(TieneAgregado(expr("1+ABS(MAX(a))")));
    EXPECT_FALSE(EsAgregado(expr("dbo.SUM(a)")));
    EXPECT_FALSE(EsAgregado(expr("SUM(a) OVER (ORDER BY b)")));
    EXPECT_FALSE(TieneAgregado(expr("(SELECT MAX(a) FROM t)")));
    EXPECT_TRUE(TieneVentana(expr("1+SUM(a) OVER (ORDER BY b)")));
    EXPECT_FALSE(TieneVentana(expr("SUM(a)")));
}

}  // namespace

}  // namespace quimo::tsql
