#include "foundation/cls_ado.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "data/valores.h"
#include "foundation/conector.h"
#include "foundation/parametros.h"
#include "support/dialogos_guion.h"

using namespace Qt::StringLiterals;

namespace quimo::foundation {
namespace {

class ClsAdoTest : public ::testing::Test {
protected:
    void SetUp() override {
        QString servidor = u"embebido"_s;
        QString base = carpeta_.filePath(u"central.db"_s);
        QString usuario;
        QString clave;
        ado_.CpsTitulo = u"Título"_s;
        ASSERT_TRUE(ado_.Conectar(servidor, base, usuario, clave));
        for (const char16_t* sentencia : {
                 u"CREATE TABLE Menu (ID_Menu INT NOT NULL PRIMARY KEY, Nombre_Menu VARCHAR(30) "
                 u"NOT NULL, Precio MONEY NULL)",
                 u"CREATE UNIQUE INDEX IX_Menu ON Menu (Nombre_Menu)",
                 u"CREATE TABLE Productos (ID INT IDENTITY(1,1) NOT NULL PRIMARY KEY, ID_Menu INT "
                 u"NULL REFERENCES Menu (ID_Menu), Alta DATETIME NULL, Activo BIT NOT NULL "
                 u"DEFAULT 1)",
                 u"INSERT INTO Menu (ID_Menu,Nombre_Menu,Precio) VALUES (1,'Desayuno',1.5)",
                 u"INSERT INTO Menu (ID_Menu,Nombre_Menu,Precio) VALUES (2,'Comida',NULL)",
                 u"INSERT INTO Menu (ID_Menu,Nombre_Menu,Precio) VALUES (3,'Cena',3)",
                 u"INSERT INTO Productos (ID_Menu) VALUES (1)",
                 u"CREATE PROCEDURE Contar @minimo int AS SELECT COUNT(*) AS n,'x' AS letra FROM "
                 u"Menu WHERE ID_Menu>=@minimo",
                 u"CREATE PROCEDURE Quejarse AS RAISERROR('Faltan datos',16,1)",
             }) {
            const data::RespuestaSql respuesta =
                ado_.Conexion().Ejecutar(QString::fromUtf16(sentencia));
            ASSERT_FALSE(respuesta.fallo) << respuesta.fallo->Descripcion().toStdString();
        }
    }

    static OpcionesBitacora Opciones(const QString& archivo) {
        OpcionesBitacora opciones;
        opciones.PArchivoLog = archivo;
        opciones.PMsgBox = false;
        return opciones;
    }
    /// The parts of every log entry but the first, joined by |.
    QStringList Bitacora() const {
        QFile archivo(carpeta_.filePath(u"log"_s));
        EXPECT_TRUE(archivo.open(QIODevice::ReadOnly));
        QStringList entradas;
        for (const QString& linea : QString::fromUtf8(archivo.readAll()).split(u'\n')) {
            if (!linea.isEmpty()) entradas << linea.split(u'\t').mid(5).join(u'|');
        }
        return entradas.mid(1);
    }
    data::RecordsetPtr Abrir(const QString& consulta) {
        data::RecordsetPtr filas;
        EXPECT_TRUE(ado_.Consultar(filas, consulta)) << consulta.toStdString();
        return filas;
    }
    static QString Campo(const data::RecordsetPtr& filas, const QString& nombre) {
        const auto valor = filas->Campo(nombre);
        return valor ? data::TextoDeValor(*valor) : u"sin registro"_s;
    }

    QTemporaryDir carpeta_;
    pruebas::DialogosGuion dialogos_;
    pruebas::RelojFijo reloj_;
    ClsBitacora bitacora_{Opciones(carpeta_.filePath(u"log"_s)), dialogos_, reloj_};
    ClsAdo ado_{CrearConector(reloj_, SiFalta::Crear), dialogos_, bitacora_};
};

TEST_F(ClsAdoTest, CadaCambioQuedaEnLaBitacoraYLoFallidoNo) {
    EXPECT_TRUE(ado_.Insertar(u"Menu"_s, u"ID_Menu,Nombre_Menu"_s,
                              u"4,'"_s + data::DuplicaApostrofes(u"D'Or"_s) + u"'"_s));
    EXPECT_TRUE(ado_.Modificar(nullptr, u"Menu"_s, u"Precio=4"_s, u"ID_Menu=4"_s));
    EXPECT_TRUE(ado_.Borrar(nullptr, u"Menu"_s, std::nullopt, u"ID_Menu=4"_s));
    EXPECT_EQ(ado_.dbExecStored(u"  exec Contar 2"_s, true).toInt(), 2);
    EXPECT_FALSE(ado_.Insertar(u"Menu"_s, u"ID_Menu,Nombre_Menu"_s, u"1,'otra'"_s));
    EXPECT_FALSE(ado_.Modificar(nullptr, u"Menu"_s, u"Precio=4"_s, QString()));
    EXPECT_EQ(Bitacora(),
              (QStringList{
                  u"Valor insertado en |Menu| campos: |ID_Menu,Nombre_Menu| valores: |4,'D''Or'|"_s,
                  u"Modificacion en |Menu| Valor: |Precio=4|"_s,
                  u"Valor borrado en |Menu| condicion: |ID_Menu=4|"_s, u"exec Contar 2|"_s}));
    EXPECT_TRUE(dialogos_.Mostrados().isEmpty());
}

TEST_F(ClsAdoTest, BorrarPreguntaYDiceQuienLoUsa) {
    dialogos_.Responder(u"¿Esta seguro de borrar el registro?"_s, Respuesta::No);
    EXPECT_FALSE(ado_.Borrar(nullptr, u"Menu"_s, u"el registro?"_s, u"ID_Menu=2"_s));
    EXPECT_EQ(Abrir(u"SELECT * FROM Menu"_s)->RecordCount(), 3);

    dialogos_.Responder(u"¿Esta seguro de borrar el registro?"_s, Respuesta::Si);
    EXPECT_FALSE(ado_.Borrar(nullptr, u"Menu"_s, u"el registro?"_s, u"ID_Menu=1"_s));
    EXPECT_EQ(dialogos_.Mostrados(),
              QStringList{u"[x] |No se puede borrar este registro por estar en uso en la tabla "
                          u"'Productos'"_s});

    // An empty condition empties the table, and the record set of the screen is read again.
    const data::RecordsetPtr filas = Abrir(u"SELECT * FROM Productos"_s);
    EXPECT_TRUE(ado_.Borrar(filas, u"Productos"_s, std::nullopt, QString(), true));
    EXPECT_TRUE(filas->Vacio());
}

TEST_F(ClsAdoTest, DesplazarSeQuedaEnElUltimoPeroCuentaUnoMas) {
    const data::RecordsetPtr filas = Abrir(u"SELECT * FROM Menu ORDER BY ID_Menu"_s);
    struct Paso {
        QString direccion;
        QString menu;
        qint32 posicion;
        bool aviso;
    };
    const Paso pasos[] = {
        {u"siguiente"_s, u"2"_s, 2, false}, {u"ULTIMO"_s, u"3"_s, 3, false},
        {u"SIGUIENTE"_s, u"3"_s, 4, true},  {u"Anterior"_s, u"2"_s, 3, false},
        {u"PRIMERO"_s, u"1"_s, 1, false},   {u"ANTERIOR"_s, u"1"_s, 0, true},
    };
    qint32 posicion = 1;
    for (const Paso& paso : pasos) {
        dialogos_.Olvidar();
        EXPECT_TRUE(ado_.Desplazar(filas, paso.direccion, posicion));
        EXPECT_EQ(Campo(filas, u"ID_Menu"_s), paso.menu) << paso.direccion.toStdString();
        EXPECT_EQ(posicion, paso.posicion);
        EXPECT_EQ(dialogos_.Mostrados(),
                  paso.aviso ? QStringList{u"[i] Título|No hay mas registros"_s} : QStringList());
    }
    dialogos_.Olvidar();
    EXPECT_FALSE(ado_.Desplazar(filas, u"ARRIBA"_s, posicion));
    EXPECT_FALSE(
        ado_.Desplazar(Abrir(u"SELECT * FROM Menu WHERE ID_Menu=9"_s), u"PRIMERO"_s, posicion));
    EXPECT_EQ(dialogos_.Mostrados(),
              (QStringList{u"[-] |No existe ese desplazamiento"_s, u"[i] |no hay registros"_s}));
}

TEST_F(ClsAdoTest, ModificarYReposicionarVuelvenALaFila) {
    const data::RecordsetPtr filas = Abrir(u"SELECT * FROM Menu ORDER BY ID_Menu"_s);
    ASSERT_TRUE(filas->MoveNext());
    EXPECT_TRUE(ado_.Modificar(filas, u"Menu"_s, u"Precio=2.25"_s, u"ID_Menu=2"_s, true));
    EXPECT_EQ(Campo(filas, u"Precio"_s), u"2.2500"_s);

    EXPECT_TRUE(ado_.Reposicionar(filas, false, false));
    EXPECT_EQ(Campo(filas, u"ID_Menu"_s), u"2"_s);
    EXPECT_TRUE(ado_.Reposicionar(filas, true, false));
    EXPECT_EQ(Campo(filas, u"ID_Menu"_s), u"3"_s);
    EXPECT_TRUE(ado_.Reposicionar(filas, false, true));
    EXPECT_EQ(Campo(filas, u"ID_Menu"_s), u"2"_s);
    EXPECT_EQ(Abrir(u"SELECT * FROM Menu"_s)->RecordCount(), 2);
}

TEST_F(ClsAdoTest, ElConjuntoAgregaCambiaYBorraEnLaBase) {
    const data::RecordsetPtr filas = Abrir(u"SELECT * FROM Productos ORDER BY ID"_s);
    ASSERT_TRUE(filas->AddNew());
    ASSERT_TRUE(filas->Asignar(u"id_menu"_s, 3));
    ASSERT_TRUE(filas->Asignar(u"Alta"_s, QDateTime(QDate(2026, 2, 28), QTime(1, 2, 3), Qt::UTC)));
    filas->CancelUpdate();
    EXPECT_EQ(Campo(filas, u"ID"_s), u"1"_s);

    ASSERT_TRUE(filas->AddNew());
    EXPECT_EQ(Campo(filas, u"ID"_s), QString());
    ASSERT_TRUE(filas->Asignar(u"ID_Menu"_s, 3));
    ASSERT_TRUE(filas->Asignar(u"Alta"_s, QDateTime(QDate(2026, 2, 28), QTime(1, 2, 3), Qt::UTC)));
    ASSERT_TRUE(filas->Update());
    // The database's number and default are known at once.
    EXPECT_EQ(Campo(filas, u"ID"_s), u"2"_s);
    EXPECT_EQ(Campo(filas, u"Activo"_s), u"1"_s);
    EXPECT_EQ(Campo(filas, u"Alta"_s), u"28/02/2026 01:02:03"_s);

    ASSERT_TRUE(filas->Asignar(u"ID_Menu"_s, 99));
    const auto rechazado = filas->Update();
    ASSERT_FALSE(rechazado);
    EXPECT_EQ(rechazado.error().Nativo(), 547);
    EXPECT_EQ(Campo(filas, u"ID_Menu"_s), u"99"_s);  // what was typed is still there
    ASSERT_TRUE(filas->Asignar(u"ID_Menu"_s, 2));
    ASSERT_TRUE(filas->Update());
    EXPECT_EQ(Campo(Abrir(u"SELECT ID_Menu FROM Productos WHERE ID=2"_s), u"ID_Menu"_s), u"2"_s);

    ASSERT_TRUE(ado_.Borrar(nullptr, u"Productos"_s, std::nullopt, u"ID=2"_s));
    ASSERT_TRUE(filas->Asignar(u"ID_Menu"_s, 3));
    const auto perdida = filas->Update();
    ASSERT_FALSE(perdida);
    EXPECT_EQ(perdida.error().numero, 0x80040E38);

    ASSERT_TRUE(filas->MoveFirst());
    ASSERT_TRUE(filas->Delete());
    EXPECT_TRUE(Abrir(u"SELECT * FROM Productos"_s)->Vacio());
    EXPECT_FALSE(Abrir(u"SELECT COUNT(*) AS n FROM Menu,Productos"_s)->AddNew());
}

TEST_F(ClsAdoTest, ElProcedimientoDevuelveSegunSePida) {
    data::RecordsetPtr filas;
    EXPECT_EQ(ado_.dbExecStored(u"EXEC Contar 1"_s).toInt(), 1);
    EXPECT_EQ(ado_.dbExecStored(u"EXEC Contar 3"_s, true).toInt(), 1);
    EXPECT_EQ(ado_.dbExecStored(u"EXEC Contar 1"_s, true, &filas, true).toInt(), 1);
    ASSERT_NE(filas, nullptr);
    EXPECT_EQ(Campo(filas, u"n"_s), u"3"_s);
    EXPECT_EQ(dialogos_.VecesEventos(), 3);
    EXPECT_EQ(ado_.dbExecStored(u"DELETE FROM Menu"_s).toInt(), 1);
    EXPECT_EQ(Abrir(u"SELECT * FROM Menu"_s)->RecordCount(), 3);
    EXPECT_EQ(ado_.dbExecStored(u"EXEC Quejarse"_s).toInt(), -1);
    EXPECT_EQ(dialogos_.Mostrados(), QStringList{u"[!] |Faltan datos"_s});
}

TEST_F(ClsAdoTest, ValorCampoNombraSuColumna) {
    struct Caso {
        QString tabla;
        QString expresion;
        QString condicion;
        QString valor;
    };
    const Caso casos[] = {
        {u"Menu"_s, u"MAX(ID_Menu) as m"_s, QString(), u"3"_s},
        {u"Menu m"_s, u"m.Nombre_Menu"_s, u"ID_Menu=2"_s, u"Comida"_s},
        {u"Menu"_s, u"Nombre_Menu"_s, u"ID_Menu=1"_s, u"Desayuno"_s},
        {u"Menu"_s, u"Precio"_s, u"ID_Menu=2"_s, QString()},
        {QString(), u"1+1 AS suma"_s, QString(), u"2"_s},
    };
    for (const Caso& caso : casos) {
        const auto valor = ValorCampo(ado_, caso.tabla, caso.expresion, caso.condicion);
        ASSERT_TRUE(valor) << caso.expresion.toStdString();
        EXPECT_EQ(*valor, caso.valor) << caso.expresion.toStdString();
    }
    const auto vacio = ValorCampo(ado_, u"Menu"_s, u"Nombre_Menu"_s, u"ID_Menu=9"_s);
    ASSERT_FALSE(vacio);
    EXPECT_EQ(vacio.error().numero, data::FalloSql::kSinRegistro);
}

TEST_F(ClsAdoTest, LlenaComboYTransacciones) {
    ado_.Inicia_Transaccion();
    EXPECT_TRUE(ado_.Insertar(u"Menu"_s, u"ID_Menu,Nombre_Menu"_s, u"5,'Antojitos'"_s));
    ado_.Cancela_Transaccion();
    ado_.Termina_Transaccion();  // there is none: ignored
    const auto entradas =
        LlenaCombo(ado_, u"SELECT Nombre_Menu,ID_Menu FROM Menu ORDER BY Nombre_Menu"_s);
    ASSERT_TRUE(entradas);
    ASSERT_EQ(entradas->size(), 3);
    EXPECT_EQ((*entradas)[0].texto, u"Cena"_s);
    EXPECT_EQ((*entradas)[0].dato, 3);
}

TEST(TablaDeConsulta, SoloHayUnaCuandoLaConsultaLeeUna) {
    const std::pair<const char16_t*, const char16_t*> casos[] = {
        {u"SELECT * FROM Menu", u"Menu"},
        {u"select a,b from dbo.[Menu] where x='from Otra' order by a", u"Menu"},
        {u"SELECT *,' ' AS M FROM #Temp", u"#Temp"},
        {u"SELECT * FROM Menu,SubMenu", u""},
        {u"SELECT * FROM Menu m INNER JOIN SubMenu s ON 1=1", u""},
        {u"SELECT a FROM Menu WHERE a=1 UNION SELECT b FROM Otra", u""},
        {u"SELECT COUNT(*) FROM Menu GROUP BY a", u""},
        {u"SELECT 1", u""},
    };
    for (const auto& [consulta, tabla] : casos) {
        EXPECT_EQ(data::TablaDeConsulta(QString::fromUtf16(consulta)), QString::fromUtf16(tabla));
    }
}

}  // namespace
}  // namespace quimo::foundation
