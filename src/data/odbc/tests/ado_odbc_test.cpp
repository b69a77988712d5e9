// The data-access object over a driver for SQL Server: what the user is told when the server
// refuses, answers nothing or goes away.

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "apoyo_odbc.h"
#include "foundation/conector.h"
#include "support/dialogos_guion.h"

namespace quimo::data::odbc {

namespace {

QString U(const char* texto) { return QString::fromUtf8(texto); }

class AdoOdbcTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        PrepararControladores();
        qunsetenv("QUIMO_BD_USUARIO");
    }

    /// Opens with whichever engine the server word names, as the program does.
    bool Conectar(const QString& servidor, const QString& usuario = U("quien")) {
        QString palabra = servidor;
        QString base = U("central");
        QString quien = usuario;
        QString clave = U("secreto9");
        return ado_.Conectar(palabra, base, quien, clave);
    }
    QString Bitacora() const {
        QFile archivo(carpeta_.filePath(U("log")));
        return archivo.open(QIODevice::ReadOnly) ? QString::fromUtf8(archivo.readAll()) : QString();
    }
    foundation::OpcionesBitacora Opciones() const {
        foundation::OpcionesBitacora opciones;
        opciones.PArchivoLog = carpeta_.filePath(U("log"));
        opciones.Parchivo = true;
        opciones.PMsgBox = false;
        return opciones;
    }

    QTemporaryDir carpeta_;
    pruebas::RelojFijo reloj_;
    pruebas::DialogosGuion dialogos_;
    foundation::ClsBitacora bitacora_{Opciones(), dialogos_, reloj_};
    foundation::ClsAdo ado_{foundation::CrearConector(reloj_), dialogos_, bitacora_};
};

TEST_F(AdoOdbcTest, LosRechazosDelServidorSeDicenComoSiempre) {
    const ServidorTds servidor(DeEmbebida(carpeta_.filePath(U("c.db"))));
    ASSERT_TRUE(Conectar(servidor.Palabra()));
    ado_.CpsMen_LLave_Repetida = U("Ya existe el producto");
    const auto bien = [&](const char* texto) {
        EXPECT_FALSE(ado_.Conexion().Ejecutar(U(texto)).fallo.has_value()) << texto;
    };
    bien("CREATE TABLE Grupos (ID INT NOT NULL PRIMARY KEY)");
    bien("CREATE TABLE Productos (ID INT NOT NULL PRIMARY KEY REFERENCES Grupos (ID))");
    bien("CREATE PROCEDURE Quejarse AS RAISERROR('No hay [más] ñandú',16,1)");
    EXPECT_TRUE(ado_.Insertar(U("Grupos"), U("ID"), U("1")));
    EXPECT_TRUE(ado_.Insertar(U("Productos"), U("ID"), U("1")));
    EXPECT_FALSE(ado_.Insertar(U("Productos"), U("ID"), U("1")));
    ado_.ManejaError();
    EXPECT_FALSE(ado_.Borrar(nullptr, U("Grupos"), std::nullopt, U("ID=1")));
    EXPECT_EQ(ado_.dbExecStored(U("EXEC Quejarse")).toInt(), -1);
    ASSERT_EQ(dialogos_.Mostrados().size(), 3) << dialogos_.Mostrados().join(u'\n').toStdString();
    EXPECT_TRUE(dialogos_.Mostrados()[0].endsWith(U("|Ya existe el producto")));
    EXPECT_TRUE(dialogos_.Mostrados()[1].endsWith(
        U("|No se puede borrar este registro por estar en uso en la tabla 'Productos'")));
    EXPECT_TRUE(dialogos_.Mostrados()[2].endsWith(U("|No hay [más] ñandú")));
    EXPECT_EQ(foundation::ValorCampo(ado_, U("Productos"), U("MAX(ID)+1 AS n"), {}).value(),
              U("2"));
}

TEST_F(AdoOdbcTest, LaConexionPerdidaSeDiceUnaVezYSeRepone) {
    const ServidorTds servidor(Siempre({}));
    ASSERT_TRUE(Conectar(servidor.Palabra()));
    EXPECT_EQ(ado_.dbExecStored(U("EXEC Algo /*corta*/")).toInt(), -1);
    ASSERT_EQ(dialogos_.Mostrados().size(), 1);
    EXPECT_TRUE(dialogos_.Mostrados()[0].endsWith(U("|Se perdio la conexión con el servidor")));
    EXPECT_TRUE(ado_.Conectado());
    EXPECT_EQ(ado_.dbExecStored(U("EXEC Algo")).toInt(), 1);
    EXPECT_EQ(dialogos_.Mostrados().size(), 1);
}

TEST_F(AdoOdbcTest, LoQueNoAbreSeDiceSinRepetirYSinLaClave) {
    int libre = 0;
    {
        const ServidorTds servidor(Siempre({}));
        libre = servidor.Puerto();
        // A refused login is told by the screen that asked for it.
        EXPECT_FALSE(Conectar(servidor.Palabra(), QString::fromUtf16(ServidorTds::kUsuarioMalo)));
        EXPECT_TRUE(dialogos_.Mostrados().isEmpty());
        EXPECT_FALSE(
            Conectar(servidor.Palabra(), QString::fromUtf16(ServidorTds::kUsuarioSinBase)));
        EXPECT_TRUE(dialogos_.Mostrados().value(0).contains(U("Cannot open database")));
        EXPECT_EQ(servidor.Accesos().size(), 2);
    }
    dialogos_.Olvidar();
    EXPECT_FALSE(Conectar(U("127.0.0.1,%1").arg(libre)));
    ASSERT_EQ(dialogos_.Mostrados().size(), 1);
    EXPECT_TRUE(dialogos_.Mostrados()[0].endsWith(U("|No se pudo encontrar al servidor")));
    EXPECT_FALSE(ado_.Conectado());
    EXPECT_FALSE(Bitacora().isEmpty());
    EXPECT_FALSE(Bitacora().contains(U("secreto9")));
}

// A failure to open that names nothing is tried again with the second login, until it is another.
TEST_F(AdoOdbcTest, ElFalloSinMotivoSeReintentaConElSegundoAcceso) {
    QStringList usuarios;
    const QString carpeta = carpeta_.filePath(U("nueva"));
    foundation::ClsAdo ado(
        [&](const DatosConexion& datos) {
            constexpr int kIntentos = 3;
            usuarios << datos.usuario;
            if (usuarios.size() == kIntentos) QDir().mkpath(carpeta);
            return AbrirOdbc({U("local"), carpeta + U("/c.db"), datos.usuario, datos.clave},
                             Con(U("SQLite3")), {{}, {}});
        },
        dialogos_, bitacora_);
    QString servidor = U("local");
    QString base = U("c");
    QString usuario = U("quien");
    QString clave = U("x");
    EXPECT_TRUE(ado.Conectar(servidor, base, usuario, clave));
    EXPECT_EQ(usuarios.join(u'|'), U("quien|norsa|norsa"));
    EXPECT_EQ(usuario, U("norsa"));
    EXPECT_TRUE(dialogos_.Mostrados().isEmpty());
}

}  // namespace

}  // namespace quimo::data::odbc
