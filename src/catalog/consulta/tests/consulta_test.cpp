#include "catalog/consulta/consulta.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "filtros_prueba.h"
#include "support/central_prueba.h"

using namespace Qt::StringLiterals;

namespace quimo::catalog {
namespace {

using enum Operador;

class ConsultaTest : public testing::Test {
protected:
    /// The texts of a shown column, after a consult with these conditions.
    QStringList Columna(Consulta& consulta, const QVector<Condicion>& condiciones, qsizetype cual) {
        const auto sentencia = consulta.Sentencia(condiciones);
        EXPECT_TRUE(sentencia) << sentencia.error().mensaje.toStdString();
        if (!sentencia) return {};
        EXPECT_TRUE(consulta.Ejecutar(*sentencia)) << sentencia->toStdString();
        QStringList textos;
        for (qsizetype f = 0; f < consulta.Tabla().Filas(); ++f)
            textos << consulta.Tabla().Texto(f, cual);
        return textos;
    }
    QStringList Columna(const FiltroDef& filtro, const QVector<Condicion>& condiciones,
                        qsizetype cual) {
        Consulta consulta(filtro, central_.Ado());
        QStringList textos = Columna(consulta, condiciones, cual);
        std::sort(textos.begin(), textos.end());
        return textos;
    }

    pruebas::CentralPrueba central_;
};

TEST_F(ConsultaTest, CadaFiltroListaLoQueHayYAceptaTodasSusCondiciones) {
    central_.Ejecutar(
        u"CREATE TABLE #Tmp_Paquetes (ID_Paquete INT, ID_Producto INT) "
        u"INSERT INTO #Tmp_Paquetes VALUES (901,101) INSERT INTO #Tmp_Paquetes VALUES (902,NULL)"_s);
    struct Caso {
        const FiltroDef& filtro;
        int filas;
    };
    // Products without both groups never appear; tax types come once for each of their rates.
    for (const Caso& caso :
         {Caso{kTipoPago, 6}, Caso{kTiposAnulacion, 6}, Caso{kCategoria, 13}, Caso{kModo, 6},
          Caso{kMensajes, 10}, Caso{kProducto, 69}, Caso{kImpuesto, 4}, Caso{kMenu, 3},
          Caso{kSubMenu, 6}, Caso{kModificador, 16}, Caso{kGrupoModificador, 3},
          Caso{kPaquete, 2}}) {
        EXPECT_EQ(Columna(caso.filtro, {}, 0).size(), caso.filas)
            << caso.filtro.base.toUtf8().data();
    }
    QVector<const FiltroDef*> filtros = {&kPaquete};
    for (const EditorDef* const def : Editores())
        filtros << &def->filtro;
    for (const FiltroDef* const filtro : filtros) {
        Consulta consulta(*filtro, central_.Ado());
        for (qsizetype c = 0; c < consulta.Columnas().size(); ++c) {
            const ColumnaFiltrable& columna = consulta.Columnas()[c];
            if (columna.columna == u"Nombre_Menuu"_s) continue;
            const bool fecha = data::ClaseDe(columna.tipo) == data::ClaseValor::Fecha;
            const QString valor = fecha ? u"01/01/2020"_s : u"1"_s;
            for (const Operador operador : columna.Operadores())
                Columna(consulta, {{c, operador, valor, valor}}, 0);
        }
    }
    EXPECT_EQ(central_.Dialogos().Mostrados(), QStringList());
}

TEST_F(ConsultaTest, LaSentenciaUneLaBaseConLasCondiciones) {
    struct Caso {
        const FiltroDef& filtro;
        QVector<Condicion> condiciones;
        QString tsql;
    };
    const QString impuesto =
        u"SELECT Tipos_Impuesto.ID_Tipo_Impuesto,Nombre_Tipo_Impuesto,Tipo_Imp_Activo,"
        u"Fecha_Inicio_Impuesto,Fecha_Fin_Impuesto FROM Tipos_Impuesto,PorcentajeXTipo_Impuesto "
        u"WHERE Tipos_Impuesto.ID_Tipo_Impuesto=PorcentajeXTipo_Impuesto.ID_Tipo_Impuesto"_s;
    const FiltroDef sin_where = {u"SubMenu", kSubMenu.columnas};
    const QString submenu = u"SELECT ID_SubMenu,Nombre_SubMenu FROM SubMenu"_s;
    for (const Caso& caso :
         {Caso{kSubMenu, {}, submenu}, Caso{sin_where, {}, submenu},
          Caso{kSubMenu, {{1, Contiene, u" "_s}}, submenu},
          Caso{kSubMenu, {{0, Igual, u"2"_s}}, submenu + u" WHERE ID_SubMenu=2"_s},
          Caso{sin_where, {{0, Igual, u"2"_s}}, submenu + u" WHERE ID_SubMenu=2"_s},
          Caso{kSubMenu,
               {{0, MayorIgual, u"2"_s}, {1, Vacio}},
               submenu + u" WHERE ID_SubMenu>=2 AND (Nombre_SubMenu IS NULL OR "
                         u"Nombre_SubMenu='')"_s},
          Caso{kCategoria,
               {{2, Distinto, u"retail"_s}},
               u"SELECT ID_Categoria,Nombre_Categoria,CASE Tipo_Categoria WHEN 'V' THEN 'Ventas' "
               u"WHEN 'S' THEN 'Sugestivo' WHEN 'R' THEN 'Retail' WHEN 'N' THEN 'Sin Ventas' END "
               u"AS Tipo FROM Categoria WHERE (Tipo_Categoria<>'R' OR Tipo_Categoria IS NULL)"_s},
          Caso{kTipoPago,
               {{2, Igual, u"Otro"_s}},
               u"SELECT ID_Tipo_Pago,Nombre_Tipo_Pago,CASE Clase WHEN 'E' THEN 'Efectivo' WHEN 'T' "
               u"THEN 'Tarjeta Crédito' WHEN 'D' THEN 'Débito' WHEN 'C' THEN 'Cheque' ELSE 'Otro' "
               u"END AS Clase,Abrir_Gaveta FROM Tipo_Pago WHERE (Clase NOT IN ('E','T','D','C') OR "
               u"Clase IS NULL)"_s},
          Caso{kModificador,
               {},
               u"SELECT ID_Tipo_Modificador,Nombre_Tipo_Modificador,CASE Estado_Modificador WHEN "
               u"'A' THEN 'Activo' WHEN 'S' THEN 'Suspendido' WHEN 'D' THEN 'Descontinuado' END AS "
               u"Estado_Modificador,Precio_Tipo_Modificador FROM Tipo_Modificador"_s},
          Caso{kImpuesto, {}, impuesto},
          Caso{kImpuesto,
               {{0, Igual, u"1"_s}, {4, Vacio}},
               impuesto + u" AND Tipos_Impuesto.ID_Tipo_Impuesto=1 AND Fecha_Fin_Impuesto IS "
                          u"NULL"_s}}) {
        const auto sentencia = Consulta(caso.filtro, central_.Ado()).Sentencia(caso.condiciones);
        EXPECT_EQ(sentencia ? *sentencia : sentencia.error().mensaje, caso.tsql);
    }
    Consulta consulta(kImpuesto, central_.Ado());
    const Condicion mala[] = {{0, Igual, u"1"_s}, {3, Igual, u"31/02/2020"_s}};
    const auto sentencia = consulta.Sentencia(mala);
    ASSERT_FALSE(sentencia);
    EXPECT_EQ(sentencia.error().columna, 3);
}

TEST_F(ConsultaTest, LasCondicionesHallanLoQueDicen) {
    central_.Ejecutar(
        u"INSERT INTO Tipo_Pago (Nombre_Tipo_Pago,Clase,Abrir_Gaveta) VALUES "
        u"('50%_[off] d''oro','O',0)"_s);
    central_.Ejecutar(
        u"INSERT INTO Categoria (ID_Categoria,Nombre_Categoria,Tipo_Categoria) "
        u"VALUES (50,'Ajena','X')"_s);
    struct Caso {
        const FiltroDef& filtro;
        QVector<Condicion> condiciones;
        qsizetype muestra;
        QStringList textos;
    };
    const QString raro = u"50%_[off] d'oro"_s;
    const Caso casos[] = {
        {kTipoPago, {{1, Contiene, u"%"_s}}, 1, {raro}},
        {kTipoPago, {{1, Contiene, u"_"_s}}, 1, {raro}},
        {kTipoPago, {{1, Contiene, u"["_s}}, 1, {raro}},
        {kTipoPago, {{1, Empieza, u"50%_[OFF] d'"_s}}, 1, {raro}},
        {kTipoPago, {{1, Contiene, u"😀"_s}}, 1, {}},
        {kTipoPago, {{1, Igual, u"Dólares"_s}}, 0, {u"5"_s}},
        {kTipoPago, {{1, Igual, u"x' OR '1'='1"_s}}, 0, {}},
        {kTipoPago, {{2, Igual, u"otro"_s}}, 2, {u"Otro"_s, u"Otro"_s}},
        {kTipoPago, {{2, Igual, u"cheque"_s}}, 0, {u"6"_s}},
        {kTipoPago, {{3, Igual, u"Sí"_s}}, 3, {u"Sí"_s, u"Sí"_s}},
        {kCategoria, {{1, Igual, u"Ajena"_s}}, 2, {u""_s}},  // a letter that has no text
        {kCategoria, {{0, Entre, u"2"_s, u"4"_s}}, 0, {u"2"_s, u"3"_s, u"4"_s}},
        {kModificador, {{3, MayorIgual, u"22,00"_s}}, 3, {u"$22.00"_s, u"$28.00"_s}},
        {kModificador, {{3, Igual, u"$12.75"_s}}, 1, {u"Ensalada en vez de papa"_s}},
        {kImpuesto, {{0, Igual, u"1"_s}}, 1, {u"IVA 16%"_s, u"IVA 16%"_s}},
        {kImpuesto, {{4, Vacio}}, 3, {u"01/01/2020"_s}},
        {kImpuesto, {{3, Igual, u"1/1/2010"_s}}, 4, {u"31/12/2019"_s}},
        {kProducto, {{0, Igual, u"106"_s}}, 0, {}},  // without a modifier group
        {kProducto, {{1, Contiene, u"Ñandú"_s}}, 0, {u"310"_s}},
        {kMenu, {{2, Vacio}}, 1, {u"Banquetes"_s}},
    };
    for (const Caso& caso : casos) {
        const QStringList textos = Columna(caso.filtro, caso.condiciones, caso.muestra);
        EXPECT_EQ(textos, caso.textos) << textos.join(u" | "_s).toStdString();
    }
}

TEST_F(ConsultaTest, UnaColumnaQueNoExisteSeDiceYSePuedeSeguir) {
    Consulta consulta(kMenu, central_.Ado());
    EXPECT_EQ(data::ClaseDe(consulta.Columnas()[0].tipo), data::ClaseValor::Numero);
    EXPECT_EQ(data::ClaseDe(consulta.Columnas()[1].tipo), data::ClaseValor::Texto);
    EXPECT_EQ(data::ClaseDe(consulta.Columnas()[3].tipo), data::ClaseValor::Logico);
    EXPECT_EQ(Columna(consulta, {}, 1).size(), 3);
    const Condicion por_nombre[] = {{1, Contiene, u"Bar"_s}};
    EXPECT_EQ(*consulta.Sentencia(por_nombre),
              u"SELECT ID_Menu,Nombre_Menu,Descripcion,Menu_Activo FROM Menu WHERE Nombre_Menuu "
              u"LIKE '%Bar%'"_s);
    EXPECT_FALSE(consulta.Ejecutar(*consulta.Sentencia(por_nombre)));
    ASSERT_EQ(central_.Dialogos().Mostrados().size(), 1);
    EXPECT_TRUE(central_.Dialogos().Mostrados()[0].contains(u"Nombre_Menuu"_s));
    EXPECT_FALSE(central_.Ado().Pendiente());
    EXPECT_EQ(consulta.Tabla().Filas(), 0);
    EXPECT_EQ(Columna(consulta, {{0, Igual, u"2"_s}}, 1), QStringList{u"Bar"_s});
    EXPECT_EQ(consulta.Clave(0), QVariant(2));

    Consulta cortesia(kCortesia, central_.Ado());
    EXPECT_EQ(data::ClaseDe(cortesia.Columnas()[0].tipo), data::ClaseValor::Numero);
    EXPECT_FALSE(cortesia.Ejecutar(*cortesia.Sentencia({})));
    EXPECT_TRUE(central_.Dialogos().Mostrados().last().contains(u"Abrir_Gaveta"_s));
}

TEST_F(ConsultaTest, SinConexionNoSePierdeNada) {
    Consulta consulta(kSubMenu, central_.Ado());
    EXPECT_EQ(Columna(consulta, {}, 0).size(), 6);
    central_.Ado().Desconectar();
    EXPECT_FALSE(consulta.Ejecutar(*consulta.Sentencia({})));
    EXPECT_EQ(Consulta(kSubMenu, central_.Ado()).Columnas().size(), 2);
}

TEST_F(ConsultaTest, OrdenaNumerosFechasYTextosComoSon) {
    central_.Ejecutar(
        u"INSERT INTO SubMenu VALUES (10,'Ñoquis',0) "
        u"INSERT INTO SubMenu VALUES (9,'Nueces',0) "
        u"INSERT INTO SubMenu VALUES (11,'ÁRBOL',0)"_s);
    const auto ordenada = [&](const FiltroDef& filtro, qsizetype columna, Sentido sentido) {
        Consulta consulta(filtro, central_.Ado());
        Columna(consulta, {}, 0);
        consulta.Tabla().Ordenar(columna, sentido);
        QStringList textos;
        for (qsizetype f = 0; f < consulta.Tabla().Filas(); ++f)
            textos << consulta.Tabla().Texto(f, columna);
        return textos.join(u'|');
    };
    using enum Sentido;
    EXPECT_EQ(ordenada(kSubMenu, 0, Ascendente), u"1|2|3|4|5|6|9|10|11"_s);
    EXPECT_EQ(ordenada(kSubMenu, 0, Descendente), u"11|10|9|6|5|4|3|2|1"_s);
    EXPECT_EQ(ordenada(kSubMenu, 1, Ascendente),
              u"ÁRBOL|Bar|Bebidas calientes|Bebidas frías|Comida|Desayuno|Niños|Nueces|Ñoquis"_s);
    EXPECT_EQ(ordenada(kImpuesto, 4, Ascendente), u"|31/12/2019|31/12/2021|31/12/2098"_s);
    EXPECT_TRUE(
        ordenada(kModificador, 3, Descendente).startsWith(u"$28.00|$22.00|$15.00|$12.75"_s));
}

}  // namespace
}  // namespace quimo::catalog
