// What a plan says beside its SQL: what is bound, what comes out, what is written to.

#include <gtest/gtest.h>

#include "traductor_prueba.h"

namespace quimo::tsql {

namespace {

std::string Ranuras(const Plan& plan) {
    constexpr const char* kOrigenes[] = {"literal", "parametro", "variable", "global"};
    std::string texto;
    for (const Ranura& ranura : plan.ranuras) {
        texto +=
            (texto.empty() ? "" : " ") + std::string(kOrigenes[static_cast<int>(ranura.origen)]);
        texto += ranura.nombre.empty() ? ":" + std::to_string(ranura.indice) : ":" + ranura.nombre;
    }
    return texto;
}

TEST(PlanTest, CadaValorTieneUnaRanura) {
    TraductorPrueba traductor;
    const Plan plan =
        traductor
            .Traducir("SELECT @n, ?, GETDATE(), @n FROM A WHERE n=5 AND t='x' AND n=@n AND s=5",
                      Constantes::PorPosicion)
            .value();
    EXPECT_EQ(SinComillas(plan.sql),
              "SELECT ?3 AS q1,?5 AS q2,?6 AS q3,?3 AS q4 FROM A AS t1 WHERE t1.n=?1 AND t1.t "
              "COLLATE QUIMO=?2 AND t1.n=?3 AND t1.s=?4");
    EXPECT_EQ(Ranuras(plan),
              "literal:0 literal:1 variable:@n literal:2 parametro:0 global:GETDATE");
}

// A text of the same form with other constants is run by the same plan: what the plan was shaped by
// must be marked, and nothing else.
TEST(PlanTest, MarcaLasConstantesQueFormanElSql) {
    TraductorPrueba traductor;
    const auto fijos = [&](const char* tsql) {
        EXPECT_TRUE(traductor.Traducir(tsql, Constantes::PorPosicion).has_value()) << tsql;
        std::string marcas;
        for (std::size_t i = 0; i < traductor.lote.fijos.size(); ++i)
            marcas += traductor.lote.fijos[i] ? 'f' : traductor.lote.tipos_fijos[i] ? 't' : '-';
        return marcas;
    };
    EXPECT_EQ(fijos("SELECT n FROM A WHERE n=5 AND t='x' AND n IN (1,2)"), "----");
    EXPECT_EQ(fijos("SELECT 5, n+1 FROM A"), "tt");
    EXPECT_EQ(fijos("SELECT n FROM A ORDER BY 1"), "f");
    EXPECT_EQ(fijos("SELECT CONVERT(VARCHAR(10),d,103) FROM A"), "ff");
    EXPECT_EQ(fijos("SELECT SUBSTRING(t,1,n) FROM A"), "f");
    EXPECT_EQ(fijos("SELECT n FROM A WHERE n LIKE '12%'"), "f");
    EXPECT_EQ(fijos("INSERT INTO B (ID,y) VALUES (1,2.5)"), "--");
}

TEST(PlanTest, LasColumnasTienenNombreYTipo) {
    const Plan plan = TraductorPrueba()
                          .Traducir("SELECT A.id, n AS Otro, m*2, NULL, COUNT(*) OVER () FROM A")
                          .value();
    ASSERT_EQ(plan.columnas.size(), 5U);
    EXPECT_EQ(plan.columnas[0].nombre, "ID");  // as it was created
    EXPECT_FALSE(plan.columnas[0].admite_nulos);
    EXPECT_EQ(plan.columnas[1].nombre, "Otro");
    EXPECT_TRUE(plan.columnas[1].admite_nulos);
    EXPECT_EQ(plan.columnas[2].nombre, "");
    EXPECT_EQ(plan.columnas[2].tipo, TipoMoneda());
    EXPECT_EQ(plan.columnas[3].tipo, TipoEntero(Clase::Int));
    ASSERT_EQ(plan.usadas.size(), 1U);
    EXPECT_EQ(plan.usadas[0]->nombre, "A");
}

TEST(PlanTest, SelectAsignaALasVariables) {
    const Plan plan = TraductorPrueba().Traducir("SELECT @n=m, @t=n FROM A").value();
    EXPECT_EQ(plan.variables, (std::vector<std::string>{"@n", "@t"}));
    EXPECT_EQ(plan.columnas[0].tipo, TipoEntero(Clase::Int));
    EXPECT_EQ(SinComillas(plan.sql),
              "SELECT q_cv(t1.m,17498636561,167772430,0) AS q1,q_cv(t1.n,167772430,1540,0) AS q2 "
              "FROM A AS t1");
}

TEST(PlanTest, UpdateDaTambienSusFilas) {
    const Plan plan = TraductorPrueba().Traducir("UPDATE A SET s=2, n=1 WHERE t='x'").value();
    EXPECT_EQ(SinComillas(plan.sql_filas),
              "SELECT t1.rowid AS fila,q_cv(2,16777486,83886349,65536) AS v1,1 AS v2 FROM A AS t1 "
              "WHERE t1.t COLLATE QUIMO='x'");
    EXPECT_EQ(plan.columnas_escritas, (std::vector<int>{2, 1}));
    EXPECT_EQ(plan.tabla->nombre, "A");
}

TEST(PlanTest, LaIdentidadEsDelMotorODelTexto) {
    TraductorPrueba traductor;
    const Plan automatica = traductor.Traducir("INSERT INTO I (v) VALUES (1)").value();
    EXPECT_TRUE(automatica.identidad_automatica);
    EXPECT_FALSE(automatica.identidad_explicita);
    traductor.entorno.identity_insert = "i";
    const Plan explicita = traductor.Traducir("INSERT INTO I (ID,v) VALUES (7,1)").value();
    EXPECT_FALSE(explicita.identidad_automatica);
    EXPECT_TRUE(explicita.identidad_explicita);
    EXPECT_EQ(SinComillas(explicita.sql),
              "INSERT INTO I(ID,v,obligado) VALUES (q_numero_dado(7),1,'x')");
    EXPECT_EQ(traductor.Traducir("INSERT INTO I (v) VALUES (1)").error().nativo, 545);
}

TEST(PlanTest, LaLlaveDeFilaNoAdmiteNulos) {
    EXPECT_EQ(SinComillas(TraductorPrueba().Traducir("UPDATE B SET ID=z").value().sql),
              "UPDATE B AS t1 SET ID=q_no_nulo(t1.z,'ID','B','UPDATE')");
}

TEST(PlanTest, UnaFilaDeUnProcedimiento) {
    TraductorPrueba traductor;
    const Lote lote = LeerLote("INSERT INTO B (ID,y) EXEC p", Constantes::EnElArbol).value();
    const auto& insertar = std::get<Insertar>(lote.sentencias[0]->que);
    const std::vector<Tipo> tipos = {TipoEntero(Clase::Int), TipoMoneda()};
    traductor.entorno.parametros = tipos;
    const Plan plan = TraducirInsertarFila(insertar, tipos, traductor.entorno).value();
    EXPECT_EQ(
        SinComillas(plan.sql),
        "INSERT INTO B(ID,y,ID_A,z) VALUES (q_no_nulo(q_cv(?1,167772430,167772430,65536),'ID',"
        "'B','INSERT'),q_cv(?2,17498636561,17498636561,65536),NULL,NULL)");
    EXPECT_EQ(Ranuras(plan), "parametro:0 parametro:1");
}

TEST(PlanTest, UnValorSuelto) {
    const Entorno entorno = TraductorPrueba().entorno;
    const auto sql = [&](const char* texto) {
        return TraducirValor(*LeerExpresion(texto).value(), entorno).value().sql;
    };
    EXPECT_EQ(sql("1+2"), "SELECT 1+2");
    EXPECT_EQ(sql("@n>5 AND @t='x'"),
              "SELECT CASE WHEN ?1>5 AND ?2 COLLATE QUIMO='x' THEN 1 ELSE 0 END");
}

TEST(PlanTest, UnaExpresionDeTablaNombraSusColumnas) {
    const Entorno entorno = TraductorPrueba().entorno;
    const TablaPtr tabla = EsquemaPrueba().Tabla("A");
    const auto expresion = TraducirDeTabla("n*2+s", *tabla, entorno).value();
    EXPECT_EQ(expresion.sql, "\"n\"*2+\"s\"");
    EXPECT_EQ(expresion.tipo, TipoEntero(Clase::Int));
    EXPECT_EQ(TraducirDeTabla("nada", *tabla, entorno).error().nativo, 207);
    EXPECT_EQ(TraducirDeTabla("SUM(n)", *tabla, entorno).error().nativo, 147);
}

TEST(PlanTest, LosNombresVanEntreComillas) {
    const Plan plan = TraductorPrueba().Traducir("SELECT [la 'llave'] FROM [de \"todo\"]").value();
    EXPECT_EQ(plan.sql,
              "SELECT \"t1\".\"la 'llave'\" AS \"q1\" FROM \"de \"\"todo\"\"\" AS \"t1\"");
}

TEST(PlanTest, ElOrdenDeLasFechasLlegaALaConversion) {
    TraductorPrueba traductor;
    traductor.entorno.orden = OrdenFecha::Mda;
    EXPECT_EQ(traductor.Traducir("SELECT CAST('01/02/2026' AS DATETIME)").value().sql,
              "SELECT q_cv('01/02/2026',2820,278,1048576) AS \"q1\"");
}

}  // namespace

}  // namespace quimo::tsql
