// Statements and the SQL that they become. Names are compared without their quotes; a test of its
// own looks at those.

#include <array>

#include <gtest/gtest.h>

#include "traductor_prueba.h"

namespace quimo::tsql {

namespace {

struct Caso {
    const char* tsql;
    const char* sql;
};
class TraduccionTest : public testing::TestWithParam<Caso> {};

TEST_P(TraduccionTest, DaEsteSql) {
    const auto plan = TraductorPrueba().Traducir(GetParam().tsql);
    ASSERT_TRUE(plan.has_value()) << plan.error().mensaje;
    EXPECT_EQ(SinComillas(plan->sql), GetParam().sql);
}

INSTANTIATE_TEST_SUITE_P(
    Expresiones, TraduccionTest,
    testing::ValuesIn(std::to_array<Caso>({
        {"SELECT n+1, -n, - -5, n-(-5), (n+1)*2, n+1*2, ~n, ~b FROM A",
         "SELECT t1.n+1 AS q1,-t1.n AS q2,-(-5) AS q3,t1.n-(-5) AS q4,(t1.n+1)*2 AS q5,t1.n+1*2 AS "
         "q6,~t1.n AS q7,1-t1.b AS q8 FROM A AS t1"},
        {"SELECT m+n, m*n, m*m, m/n, p+m, p*p, w+p, f/n, n/2, n%3, p%2, d+1, d-d FROM A",
         "SELECT t1.m+t1.n*10000 AS q1,t1.m*t1.n AS q2,q_por(t1.m,t1.m,4,4,17498636561) AS "
         "q3,q_cociente(t1.m,t1.n) AS q4,t1.p*100+t1.m AS q5,t1.p*t1.p AS "
         "q6,q_mas(t1.w,t1.p,4,2,17699963154) AS q7,q_cociente(t1.f,CAST(t1.n AS REAL)) AS "
         "q8,q_cociente(t1.n,2) AS q9,q_modulo(t1.n,3) AS q10,q_modulo(t1.p,2*100) AS "
         "q11,q_sumar_dias(t1.d,1,q_cv(1,16777486,278,0)) AS q12,q_sumar_dias(t1.d,-1,t1.d) AS q13 "
         "FROM A AS t1"},
        {"SELECT t+u, t+c, t+NULL, n&s, n|s, n^s FROM A",
         "SELECT t1.t||t1.u AS q1,t1.t||t1.c AS q2,t1.t||NULL AS q3,t1.n&t1.s AS q4,t1.n|t1.s AS "
         "q5,(t1.n|t1.s)-(t1.n&t1.s) AS q6 FROM A AS t1"},
        {"SELECT n FROM A WHERE n=1 AND (s<2 OR NOT b=1) AND m>n AND t='x' AND d>='01/02/2026'",
         "SELECT t1.n AS q1 FROM A AS t1 WHERE t1.n=1 AND (t1.s<2 OR NOT t1.b=1) AND "
         "t1.m>t1.n*10000 AND t1.t COLLATE QUIMO='x' AND t1.d>=q_cv('01/02/2026',2820,278,0)"},
        {"SELECT n FROM A WHERE n BETWEEN 1 AND 5 AND t NOT BETWEEN 'a' AND 'b' AND n BETWEEN 1.5 "
         "AND 2 AND m IN (1,2.5) AND t IN ('a','b') AND n NOT IN (1,2)",
         "SELECT t1.n AS q1 FROM A AS t1 WHERE t1.n BETWEEN 1 AND 5 AND t1.t COLLATE QUIMO NOT "
         "BETWEEN 'a' AND 'b' AND (t1.n*10>=15 AND t1.n<=2) AND t1.m IN (1*10000,25*1000) AND t1.t "
         "COLLATE QUIMO IN ('a','b') AND t1.n NOT IN (1,2)"},
        {"SELECT n FROM A WHERE t LIKE 'a%' AND t NOT LIKE 'b!%' ESCAPE '!' AND n LIKE '12%' AND n "
         "NOT LIKE 'x%' AND t IS NULL AND u IS NOT NULL",
         "SELECT t1.n AS q1 FROM A AS t1 WHERE q_como(t1.t,'a%') AND NOT q_como(t1.t,'b!%','!') "
         "AND (t1.n BETWEEN 12 AND 12 OR t1.n BETWEEN 120 AND 129 OR t1.n BETWEEN 1200 AND 1299 OR "
         "t1.n BETWEEN 12000 AND 12999 OR t1.n BETWEEN 120000 AND 129999 OR t1.n BETWEEN 1200000 "
         "AND 1299999 OR t1.n BETWEEN 12000000 AND 12999999 OR t1.n BETWEEN 120000000 AND "
         "129999999 OR t1.n BETWEEN 1200000000 AND 1299999999) AND NOT q_como(CAST(t1.n AS "
         "TEXT),'x%') AND t1.t IS NULL AND t1.u IS NOT NULL"},
        {"SELECT n FROM A WHERE EXISTS (SELECT 1 FROM B WHERE B.ID_A=A.ID) AND n IN (SELECT z FROM "
         "B) AND t NOT IN (SELECT u FROM A) AND n > ALL (SELECT z FROM B) AND n = ANY (SELECT z "
         "FROM B)",
         "SELECT t1.n AS q1 FROM A AS t1 WHERE EXISTS (SELECT 1 AS q1 FROM B AS t2 WHERE "
         "t2.ID_A=t1.ID) AND t1.n IN (SELECT t3.z AS q1 FROM B AS t3) AND t1.t COLLATE QUIMO NOT "
         "IN (SELECT t4.u AS q1 FROM A AS t4) AND CASE WHEN EXISTS (SELECT 1 FROM (SELECT t5.z AS "
         "q1 FROM B AS t5) AS t6 WHERE (t1.n>t6.q1) IS FALSE) THEN 0 WHEN EXISTS (SELECT 1 FROM "
         "(SELECT t5.z AS q1 FROM B AS t5) AS t6 WHERE (t1.n>t6.q1) IS NULL) THEN NULL ELSE 1 END "
         "AND CASE WHEN EXISTS (SELECT 1 FROM (SELECT t7.z AS q1 FROM B AS t7) AS t8 WHERE "
         "(t1.n=t8.q1) IS TRUE) THEN 1 WHEN EXISTS (SELECT 1 FROM (SELECT t7.z AS q1 FROM B AS t7) "
         "AS t8 WHERE (t1.n=t8.q1) IS NULL) THEN NULL ELSE 0 END"},
        {"SELECT (SELECT z FROM B WHERE B.ID=A.ID), (SELECT MAX(z) FROM B), (SELECT TOP 1 z FROM "
         "B) FROM A",
         "SELECT (SELECT q_unico(q1) FROM (SELECT t2.z AS q1 FROM B AS t2 WHERE t2.ID=t1.ID)) AS "
         "q1,(SELECT max(t3.z) AS q1 FROM B AS t3) AS q2,(SELECT t4.z AS q1 FROM B AS t4 LIMIT 1) "
         "AS q3 FROM A AS t1"},
        {"SELECT CASE WHEN n=1 THEN 'a' ELSE u END, CASE t WHEN 'x' THEN 1 END, ISNULL(n,0), "
         "COALESCE(n,s,m), NULLIF(n,0) FROM A",
         "SELECT CASE WHEN t1.n=1 THEN 'a' ELSE t1.u END AS q1,CASE WHEN t1.t COLLATE QUIMO='x' "
         "THEN 1 END AS q2,ifnull(t1.n,0) AS q3,coalesce(t1.n*10000,t1.s*10000,t1.m) AS q4,CASE "
         "WHEN t1.n=0 THEN NULL ELSE t1.n END AS q5 FROM A AS t1"},
        {"SELECT CAST(n AS VARCHAR(12)), CAST(n AS VARCHAR(3)), CAST(n AS FLOAT), CAST(p AS "
         "MONEY), CAST(t AS INT), CONVERT(VARCHAR(10),d,103) FROM A",
         "SELECT CAST(t1.n AS TEXT) AS q1,q_cv(t1.n,167772430,1028,0) AS q2,CAST(t1.n AS REAL) AS "
         "q3,t1.p*100 AS q4,q_cv(t1.t,5380,167772430,0) AS q5,q_cv(t1.d,278,2820,103) AS q6 FROM A "
         "AS t1"},
        {"SELECT LEFT(t,2), LEN(t), SUBSTRING(t,1,3), SUBSTRING(t,n,3), UPPER(u), "
         "REPLACE(t,'a',n), CHARINDEX('a',t), STR(f,10,2) FROM A",
         "SELECT q_izquierda(t1.t,2) AS q1,length(rtrim(t1.t)) AS q2,substr(t1.t,1,3) AS "
         "q3,q_trozo(t1.t,t1.n,3) AS q4,q_mayusculas(t1.u) AS q5,q_reemplazar(t1.t,'a',CAST(t1.n "
         "AS TEXT)) AS q6,q_posicion('a',t1.t) AS q7,q_str(t1.f,10,2) AS q8 FROM A AS t1"},
        {"SELECT ROUND(m,2), ABS(n), ABS(w), FLOOR(p), POWER(n,2), YEAR(d), DATEADD(day,n,d), "
         "DATEDIFF(mm,d,GETDATE()), DATENAME(dw,d) FROM A",
         "SELECT q_redondear(t1.m,2,0,17498636561) AS q1,abs(t1.n) AS "
         "q2,q_absoluto(t1.w,17683185938) AS q3,q_piso(t1.p,8740929810) AS q4,q_elevar(t1.n,CAST(2 "
         "AS REAL),167772430) AS q5,q_parte(0,t1.d) AS q6,q_sumar_fecha(4,t1.n,t1.d) AS "
         "q7,q_diferencia(2,t1.d,?1) AS q8,q_nombre_parte(6,t1.d) AS q9 FROM A AS t1"},
        {"SELECT n FROM A WHERE n IN (1,1.5) AND n NOT IN (2,2.5)",
         "SELECT t1.n AS q1 FROM A AS t1 WHERE (t1.n=1 OR t1.n*10=15) AND NOT (t1.n=2 OR "
         "t1.n*10=25)"},
        {"SELECT SUBSTRING(t,0,3) FROM A", "SELECT q_trozo(t1.t,0,3) AS q1 FROM A AS t1"},
        {"SELECT @n, @t+'x', ?, @@ROWCOUNT, GETDATE(), GETDATE(), @n",
         "SELECT ?1 AS q1,?2||'x' AS q2,?3 AS q3,?4 AS q4,?5 AS q5,?5 AS q6,?1 AS q7"},
        {"SELECT dbo.Doble(n), dbo.Suma(n), dbo.Suma(n+1), dbo.Larga(n) FROM A",
         "SELECT t1.n*2 AS q1,t1.n+t1.n AS q2,q_fn('dbo.Suma',t1.n+1) AS q3,q_fn('dbo.Larga',t1.n) "
         "AS q4 FROM A AS t1"},
    })));

INSTANTIATE_TEST_SUITE_P(
    Consultas, TraduccionTest,
    testing::ValuesIn(std::to_array<Caso>({
        {"SELECT x.* FROM B x WHERE x.ID=1",
         "SELECT t1.ID AS q1,t1.ID_A AS q2,t1.z AS q3,t1.y AS q4 FROM B AS t1 WHERE t1.ID=1"},
        {"SELECT x.ID AS k, y.z FROM A x, B y WHERE x.ID=y.ID_A ORDER BY k DESC, 2",
         "SELECT t1.ID AS q1,t2.z AS q2 FROM A AS t1,B AS t2 WHERE t1.ID=t2.ID_A ORDER BY 1 "
         "DESC,2"},
        {"SELECT DISTINCT TOP 3 t FROM A ORDER BY t",
         "SELECT DISTINCT t1.t COLLATE QUIMO AS q1 FROM A AS t1 ORDER BY 1 COLLATE QUIMO LIMIT 3"},
        {"SELECT TOP 10 PERCENT n FROM A",
         "SELECT t1.n AS q1 FROM A AS t1 LIMIT (SELECT CAST(count(*)*CAST(10 AS "
         "REAL)/100.0+0.9999999999 AS INTEGER) FROM (SELECT t1.n AS q1 FROM A AS t1))"},
        {"SELECT n, SUM(m) AS s, COUNT(*), AVG(p), MIN(t), COUNT(DISTINCT t) FROM A GROUP BY n "
         "HAVING SUM(m)>1 ORDER BY s",
         "SELECT t1.n AS q1,sum(t1.m) AS q2,count(*) AS "
         "q3,q_entre(sum(t1.p),count(t1.p),2,0,26407338258) AS q4,min(t1.t COLLATE QUIMO) AS "
         "q5,count(DISTINCT t1.t COLLATE QUIMO) AS q6 FROM A AS t1 GROUP BY t1.n HAVING "
         "sum(t1.m)>1*10000 ORDER BY 2"},
        {"SELECT SUM(n), SUM(w), AVG(n), AVG(w), MAX(w), STDEV(n) FROM A",
         "SELECT sum(t1.n) AS q1,q_suma(t1.w) AS q2,sum(t1.n)/count(t1.n) AS "
         "q3,q_entre(q_suma(t1.w),count(t1.w),4,0,26407338258) AS q4,q_max(t1.w) AS "
         "q5,q_stdev(CAST(t1.n AS REAL)) AS q6 FROM A AS t1"},
        {"SELECT ROW_NUMBER() OVER (PARTITION BY n ORDER BY t DESC), SUM(m) OVER (PARTITION BY n) "
         "FROM A",
         "SELECT row_number() OVER (PARTITION BY t1.n ORDER BY t1.t COLLATE QUIMO DESC) AS "
         "q1,sum(t1.m) OVER (PARTITION BY t1.n) AS q2 FROM A AS t1"},
        {"SELECT n FROM A UNION SELECT m FROM A ORDER BY 1",
         "SELECT q1 AS q1 FROM (SELECT q1*10000 AS q1 FROM (SELECT t1.n AS q1 FROM A AS t1) UNION "
         "SELECT q1 AS q1 FROM (SELECT t2.m AS q1 FROM A AS t2)) ORDER BY 1"},
        {"SELECT t FROM A EXCEPT SELECT u FROM A",
         "SELECT q1 COLLATE QUIMO AS q1 FROM (SELECT t1.t AS q1 FROM A AS t1) EXCEPT SELECT q1 "
         "COLLATE QUIMO AS q1 FROM (SELECT t2.u AS q1 FROM A AS t2)"},
        {"SELECT A.ID FROM A LEFT JOIN B ON B.ID_A=A.ID RIGHT JOIN I ON I.ID=A.ID FULL JOIN (B x "
         "JOIN B y ON x.ID=y.ID) ON x.ID=A.ID",
         "SELECT t1.ID AS q1 FROM I AS t3 LEFT JOIN (A AS t1 LEFT JOIN B AS t2 ON t2.ID_A=t1.ID) "
         "ON t3.ID=t1.ID FULL JOIN (B AS t4 JOIN B AS t5 ON t4.ID=t5.ID) ON t4.ID=t1.ID"},
        {"SELECT A.ID FROM B, A RIGHT JOIN I ON A.ID=I.ID",
         "SELECT t2.ID AS q1 FROM B AS t1,(I AS t3 LEFT JOIN A AS t2 ON t2.ID=t3.ID)"},
        {"SELECT d.k FROM (SELECT n AS k FROM A) d WHERE d.k>1",
         "SELECT t2.q1 AS q1 FROM (SELECT t1.n AS q1 FROM A AS t1) AS t2 WHERE t2.q1>1"},
        {"WITH c (k) AS (SELECT n FROM A), e AS (SELECT k FROM c) SELECT k FROM e",
         "SELECT t3.q1 AS q1 FROM (SELECT t2.q1 AS q1 FROM (SELECT t1.n AS q1 FROM A AS t1) AS t2) "
         "AS t3"},
        {"SELECT clave FROM V WHERE total>1",
         "SELECT t2.q1 AS q1 FROM (SELECT t1.ID AS q1,t1.m AS q2 FROM A AS t1 WHERE t1.n>1) AS t2 "
         "WHERE t2.q2>1*10000"},
    })));

INSTANTIATE_TEST_SUITE_P(
    Reescrituras, TraduccionTest,
    testing::ValuesIn(std::to_array<Caso>({
        {"SELECT A.ID, d.s FROM A LEFT JOIN (SELECT ID_A, SUM(y) AS s FROM B GROUP BY ID_A) d ON "
         "d.ID_A=A.ID",
         "SELECT t1.ID AS q1,(SELECT sum(t2.y) FROM B AS t2 WHERE t2.ID_A=t1.ID) AS q2 FROM A AS "
         "t1"},
        {"SELECT A.ID, B.y FROM A LEFT JOIN B ON B.ID_A=A.ID AND B.z IN (SELECT v FROM I)",
         "SELECT t1.ID AS q1,t2.y AS q2 FROM A AS t1 LEFT JOIN B AS t2 ON t2.ID_A=t1.ID AND t2.z "
         "IN (SELECT t3.v AS q1 FROM I AS t3)"},
        {"SELECT COUNT(*) FROM A, B",
         "SELECT q_cv(t4.q1*t6.q1,318767375,167772430,0) AS q1 FROM (SELECT count(*) AS q1 FROM A "
         "AS t3) AS t4,(SELECT count(*) AS q1 FROM B AS t5) AS t6"},
        {"SELECT MAX(ID) FROM A WHERE ID LIKE '999999999%'",
         "SELECT max(t1.ID) AS q1 FROM A AS t1 WHERE (t1.ID BETWEEN 999999999 AND 999999999)"},
        {"SELECT n FROM A WHERE "
         "CONVERT(DATETIME,SUBSTRING(dia,1,2)+'/'+SUBSTRING(dia,3,2)+'/"
         "'+SUBSTRING(dia,5,4),103)>='01/02/2026'",
         "SELECT t1.n AS q1 FROM A AS t1 WHERE q_fecha8(t1.dia)>=q_cv('01/02/2026',2820,278,0) AND "
         "q_fechas_validas((SELECT 1 FROM A WHERE q_fecha8(dia)='!' LIMIT 1))"},
    })));

INSTANTIATE_TEST_SUITE_P(
    Escrituras, TraduccionTest,
    testing::ValuesIn(std::to_array<Caso>({
        {"INSERT INTO B (ID,y) VALUES (1,2),(3,DEFAULT)",
         "INSERT INTO B(ID,y,ID_A,z) VALUES (1,2*10000,NULL,NULL),(3,NULL,NULL,NULL)"},
        {"INSERT INTO I DEFAULT VALUES",
         "INSERT INTO I(ID,v,obligado) VALUES (q_identidad(),5,'x')"},
        {"INSERT INTO I (obligado) SELECT t FROM A",
         "INSERT INTO I(obligado,ID,v) SELECT q_cv(q1,5380,1540,65536),q_identidad(),5 FROM "
         "(SELECT t1.t AS q1 FROM A AS t1) WHERE 1"},
        {"UPDATE A SET n=n+1, t='x', b=DEFAULT WHERE ID=1",
         "UPDATE A AS t1 SET n=q_cv(t1.n+1,167772430,167772430,65536),t='x',b=NULL WHERE t1.ID=1"},
        {"UPDATE TOP (2) A SET n=1 WHERE s=2",
         "UPDATE A AS t1 SET n=1 WHERE t1.rowid IN (SELECT rowid FROM A AS t1 WHERE t1.s=2 LIMIT "
         "2)"},
        {"UPDATE A SET m=B.y FROM A JOIN B ON B.ID_A=A.ID WHERE B.z=1",
         "UPDATE A AS d SET m=s.v1 FROM (SELECT t1.rowid AS fila,t2.y AS v1 FROM A AS t1 JOIN B AS "
         "t2 ON t2.ID_A=t1.ID WHERE t2.z=1) AS s WHERE d.rowid=s.fila"},
        {"UPDATE A SET m=B.y FROM B WHERE B.ID_A=A.ID",
         "UPDATE A AS d SET m=s.v1 FROM (SELECT t2.rowid AS fila,t1.y AS v1 FROM B AS t1,A AS t2 "
         "WHERE t1.ID_A=t2.ID) AS s WHERE d.rowid=s.fila"},
        {"DELETE FROM A WHERE n=1", "DELETE FROM A AS t1 WHERE t1.n=1"},
        {"DELETE TOP (2) FROM A",
         "DELETE FROM A WHERE rowid IN (SELECT t1.rowid FROM A AS t1 LIMIT 2)"},
        {"DELETE x FROM A x JOIN B ON B.ID_A=x.ID WHERE B.z=1",
         "DELETE FROM A WHERE rowid IN (SELECT t1.rowid FROM A AS t1 JOIN B AS t2 ON t2.ID_A=t1.ID "
         "WHERE t2.z=1)"},
    })));

}  // namespace

}  // namespace quimo::tsql
