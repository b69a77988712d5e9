#include "app/comandos/comando.h"
#include "programa_prueba.h"

using namespace Qt::StringLiterals;

namespace quimo::app {
namespace {

/// The program over a new central database.
class ComandoSqlTest : public ProgramaTest {
protected:
    void SetUp() override {
        EXPECT_EQ(Hace({u"crear"_s, u"embebido"_s, u"central.db"_s}),
                  u"Base de datos creada: central.db\n"_s);
    }
    static QStringList Sql(const QStringList& opciones) {
        return QStringList{u"sql"_s, u"embebido"_s, u"central.db"_s} + opciones;
    }
};

TEST_F(ComandoSqlTest, CadaValorSaleEntendibleEnCadaFormato) {
    const struct {
        QString expresion;
        QString tabla;  ///< its line below the heading, without blanks around it
        QString csv;
        QString json;
    } casos[] = {
        {u"CAST(NULL AS int)"_s, u"NULL"_s, {}, u"null"_s},
        {u"CAST(NULL AS varchar(5))"_s, u"NULL"_s, {}, u"null"_s},
        {u"''"_s, {}, {}, u"\"\""_s},
        {u"CAST(1234.5 AS money)"_s, u"1234.5000"_s, u"1234.5000"_s, u"\"1234.5000\""_s},
        {u"CAST(-0.0001 AS money)"_s, u"-0.0001"_s, u"-0.0001"_s, u"\"-0.0001\""_s},
        {u"CAST(922337203685477.5807 AS money)"_s, u"922337203685477.5807"_s,
         u"922337203685477.5807"_s, u"\"922337203685477.5807\""_s},
        {u"CAST(12.30 AS decimal(9,2))"_s, u"12.30"_s, u"12.30"_s, u"\"12.30\""_s},
        {u"2147483647"_s, u"2147483647"_s, u"2147483647"_s, u"2147483647"_s},
        {u"CAST(1 AS bit)"_s, u"1"_s, u"1"_s, u"1"_s},
        {u"CAST('2026-11-14T21:36:08' AS datetime)"_s, u"14/11/2026 21:36:08"_s,
         u"14/11/2026 21:36:08"_s, u"\"2026-11-14T21:36:08\""_s},
        {u"CAST('20261114' AS datetime)"_s, u"14/11/2026"_s, u"14/11/2026"_s,
         u"\"2026-11-14T00:00:00\""_s},
        {u"'café, con leche'"_s, u"café, con leche"_s, u"\"café, con leche\""_s,
         u"\"café, con leche\""_s},
        {u"'di \"hola\"'"_s, u"di \"hola\""_s, u"\"di \"\"hola\"\"\""_s, u"\"di \\\"hola\\\"\""_s},
        {u"'D''Acosta'"_s, u"D'Acosta"_s, u"D'Acosta"_s, u"\"D'Acosta\""_s},
        {u"'uno'+CHAR(10)+'dos'"_s, u"uno dos"_s, u"\"uno\ndos\""_s, u"\"uno\\ndos\""_s},
        {u"'uno'+CHAR(13)+'dos'"_s, u"uno dos"_s, u"\"uno\rdos\""_s, u"\"uno\\rdos\""_s},
    };
    for (const auto& caso : casos) {
        SCOPED_TRACE(caso.expresion.toStdString());
        const QString consulta = u"--consulta=SELECT "_s + caso.expresion + u" AS v"_s;
        const QStringList lineas = Hace(Sql({consulta})).split(u'\n');
        EXPECT_EQ(lineas.size(), 4);
        EXPECT_EQ(lineas.value(2).trimmed(), caso.tabla);
        EXPECT_EQ(Hace(Sql({consulta, u"--formato=csv"_s})), u"v\n"_s + caso.csv + u'\n');
        EXPECT_EQ(Hace(Sql({consulta, u"--formato=json"_s})),
                  u"{\"columns\":[\"v\"],\"rows\":[["_s + caso.json + u"]]}\n"_s);
    }
}

TEST_F(ComandoSqlTest, LosNumerosVanALaDerechaYLosTextosALaIzquierda) {
    EXPECT_EQ(Hace(Sql({u"--consulta=SELECT 'a' AS texto, 7 AS numero UNION ALL SELECT 'más de "
                        u"cinco',12345678"_s})),
              u"texto           numero\n"
              "------------  --------\n"
              "a                    7\n"
              "más de cinco  12345678\n"_s);
}

TEST_F(ComandoSqlTest, LosLotesCorrenEnSuOrdenHastaLaPrimeraFalla) {
    Escribir(u"lotes.sql"_s,
             "INSERT INTO Menu (ID_Menu,Nombre_Menu) VALUES (1,'Comida')\nGO\n"
             "PRINT 'a la mitad'\nGO\nSELECT * FROM NoHay\nGO\nDELETE FROM Menu\n");
    const Corrida corrida = Correr(Sql({u"--archivo"_s, u"lotes.sql"_s}));
    EXPECT_EQ(corrida.estado, kFallo);
    EXPECT_EQ(corrida.salida, u"(1 filas afectadas)\n"_s);
    EXPECT_TRUE(corrida.error.contains(u"a la mitad\nError 208: "_s))
        << corrida.error.toStdString();
    EXPECT_EQ(Hace(Sql({u"--consulta=SELECT Nombre_Menu FROM Menu"_s, u"--formato=csv"_s})),
              u"Nombre_Menu\nComida\n"_s);
    EXPECT_EQ(Hace(Sql({u"--consulta=UPDATE Menu SET Nombre_Menu='x'"_s, u"--formato=csv"_s})),
              QString());
}

TEST_F(ComandoSqlTest, PorLineasCadaSentenciaTieneSuRespuesta) {
    const QString salida = Hace(Sql({u"--lineas"_s}),
                                "INSERT INTO Menu (ID_Menu,Nombre_Menu) VALUES (1,'Ñam')\r\n"
                                "\n   \n"
                                "SELECT Nombre_Menu FROM Menu\n"
                                "SELECT * FROM NoHay\n"
                                "SELECT ID_Menu FROM Menu WHERE 1=0");
    const QStringList lineas = salida.split(u'\n');
    ASSERT_EQ(lineas.size(), 5) << salida.toStdString();
    EXPECT_EQ(lineas[0], u"{\"affected\":1}"_s);
    EXPECT_EQ(lineas[1], u"{\"columns\":[\"Nombre_Menu\"],\"rows\":[[\"Ñam\"]]}"_s);
    EXPECT_TRUE(lineas[2].contains(u"\"native\":208,\"sqlstate\":\"42S02\""_s));
    EXPECT_EQ(lineas[3], u"{\"columns\":[\"ID_Menu\"],\"rows\":[]}"_s);
}

TEST_F(ComandoSqlTest, LoQueNoSePuedeAbrirSeDice) {
    Escribir(u"texto.db"_s, "no es una base");
    const QString consulta = u"--consulta=SELECT 1"_s;
    Falla({u"sql"_s, u"embebido"_s, u"nada.db"_s, consulta}, kFallo,
          u"No existe la base de datos nada.db."_s);
    Falla({u"sql"_s, u"embebido"_s, u"texto.db"_s, consulta}, kFallo,
          u"El archivo texto.db no es una base de datos de QUIMO"_s);
    Falla(Sql({u"--archivo=nada.sql"_s}), kFallo, u"No se puede leer el archivo nada.sql: "_s);
    Falla(Sql({u"--archivo=."_s}), kFallo, u"No se puede leer el archivo .: "_s);
    EXPECT_FALSE(QFile::exists(Ruta(u"nada.db"_s)));
}

}  // namespace
}  // namespace quimo::app
