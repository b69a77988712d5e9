// The operation log and transactions: it tells what happened, and nothing that was undone.

#include <functional>

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "data/transaccion.h"
#include "foundation/cls_ado.h"
#include "foundation/conector.h"
#include "support/conexion_espia.h"
#include "support/dialogos_guion.h"

using namespace Qt::StringLiterals;

namespace quimo::foundation {
namespace {

class BitacoraDeTransaccionTest : public ::testing::Test {
protected:
    void SetUp() override {
        cinta_->falla = [this](const QString& sentencia) -> std::optional<data::FalloSql> {
            if (sentencia.contains(u"perdida")) return pruebas::ConexionRota();
            return std::nullopt;
        };
        QString servidor = u"embebido"_s;
        QString base = carpeta_.filePath(u"central.db"_s);
        QString nada;
        ASSERT_TRUE(ado_.Conectar(servidor, base, nada, nada));
        Mandar(u"CREATE TABLE T (a INT NOT NULL PRIMARY KEY, b VARCHAR(10) NULL)"_s);
    }
    void Mandar(const QString& texto) {
        const data::RespuestaSql respuesta = ado_.Conexion().Ejecutar(texto);
        EXPECT_FALSE(respuesta.fallo) << texto.toStdString();
    }
    bool Poner(int a) { return ado_.Insertar(u"T"_s, u"a"_s, QString::number(a)); }
    /// Time and last part of every entry but the first.
    QString Bitacora() const {
        QFile archivo(carpeta_.filePath(u"log"_s));
        EXPECT_TRUE(archivo.open(QIODevice::ReadOnly));
        QStringList entradas;
        for (const QString& linea : QString::fromUtf8(archivo.readAll()).split(u'\n')) {
            const QStringList partes = linea.split(u'\t');
            if (partes.size() < 2 || partes[5] == u"Iniciando"_s) continue;
            entradas << partes[0].section(u':', -1) + u'=' + partes[partes.size() - 2];
        }
        return entradas.join(u' ');
    }
    QString Filas() {
        data::RecordsetPtr filas;
        EXPECT_TRUE(ado_.Consultar(filas, u"SELECT a FROM T ORDER BY a"_s));
        QStringList valores;
        for (const data::Fila& fila : filas->Filas())
            valores << fila[0].toString();
        return valores.join(u' ');
    }
    void Segundo(int segundo) {
        reloj_.Poner(QDateTime(QDate(2026, 11, 15), QTime(1, 30, segundo), Qt::UTC));
    }
    static OpcionesBitacora Opciones(const QString& archivo) {
        OpcionesBitacora opciones;
        opciones.PArchivoLog = archivo;
        opciones.PMsgBox = false;
        return opciones;
    }

    QTemporaryDir carpeta_;
    std::shared_ptr<pruebas::Cinta> cinta_ = std::make_shared<pruebas::Cinta>();
    pruebas::DialogosGuion dialogos_;
    pruebas::RelojFijo reloj_;
    ClsBitacora bitacora_{Opciones(carpeta_.filePath(u"log"_s)), dialogos_, reloj_};
    ClsAdo ado_{pruebas::ConEspia(CrearConector(reloj_, SiFalta::Crear), cinta_), dialogos_,
                bitacora_};
};

TEST_F(BitacoraDeTransaccionTest, SoloLoConfirmadoLlegaYConLaHoraDeCuandoPaso) {
    const auto texto = [](const char16_t* tsql) {
        return [tsql](ClsAdo& ado) { ado.Conexion().Ejecutar(QString::fromUtf16(tsql)); };
    };
    struct Fin {
        const char* nombre;
        std::function<void(ClsAdo&)> terminar;
        bool queda;
    };
    const Fin casos[] = {
        {"termina", [](ClsAdo& ado) { ado.Termina_Transaccion(); }, true},
        {"cancela", [](ClsAdo& ado) { ado.Cancela_Transaccion(); }, false},
        {"objeto",
         [](ClsAdo& ado) {
             // Inside another one: only the outer end counts.
             auto otra = data::Transaccion::Iniciar(ado.Conexion());
             ASSERT_TRUE(otra);
             ASSERT_TRUE(otra->Confirmar());
             EXPECT_TRUE(ado.Conexion().EnTransaccion());
             ado.Termina_Transaccion();
         },
         true},
        {"objeto sin confirmar",
         [](ClsAdo& ado) { ASSERT_TRUE(data::Transaccion::Iniciar(ado.Conexion())); }, false},
        {"texto que confirma", texto(u"COMMIT"), true},
        {"texto que deshace", texto(u"rollback transaction"), false},
        {"texto que confirma y falla", texto(u"COMMIT SELECT 1/0"), false},
        {"el motor la deshace", texto(u"SET XACT_ABORT ON INSERT INTO T (a) VALUES (1)"), false},
        {"sin conexión", [](ClsAdo& ado) { ado.Desconectar(); }, false},
    };
    for (const Fin& caso : casos) {
        const QString antes = Bitacora();
        const QString filas = Filas();
        ado_.Inicia_Transaccion();
        Segundo(10);
        ASSERT_TRUE(Poner(1)) << caso.nombre;
        Segundo(11);
        ASSERT_TRUE(Poner(2));
        EXPECT_EQ(Bitacora(), antes) << caso.nombre;
        Segundo(30);
        caso.terminar(ado_);
        EXPECT_EQ(
            Bitacora(),
            antes + (caso.queda ? antes.isEmpty() ? u"10=1 11=2"_s : u" 10=1 11=2"_s : QString()))
            << caso.nombre;
        if (!ado_.Conectado()) break;
        EXPECT_FALSE(ado_.Conexion().EnTransaccion()) << caso.nombre;
        if (!QLatin1StringView(caso.nombre).contains("confirma y falla"_L1)) {
            EXPECT_EQ(Filas(), caso.queda ? u"1 2"_s : filas) << caso.nombre;
        }
        Mandar(u"SET XACT_ABORT OFF DELETE FROM T"_s);
    }
}

TEST_F(BitacoraDeTransaccionTest, LoQueVieneDespuesDeDeshacerSeEscribeEnseguida) {
    Mandar(u"SET XACT_ABORT ON"_s);
    ado_.Inicia_Transaccion();
    ASSERT_TRUE(Poner(1));
    EXPECT_FALSE(Poner(1));
    ASSERT_TRUE(Poner(2));
    EXPECT_EQ(Bitacora(), u"00=2"_s);
    ado_.Termina_Transaccion();
    EXPECT_EQ(Bitacora(), u"00=2"_s);
    EXPECT_EQ(Filas(), u"2"_s);
}

TEST_F(BitacoraDeTransaccionTest, VariosCambiosQueAcabanConLaTransaccionNoDejanNada) {
    Mandar(u"SET XACT_ABORT ON"_s);
    ado_.Inicia_Transaccion();
    ASSERT_TRUE(Poner(9));
    const Cambio uno{Cambio::Clase::Insertar, u"T"_s, u"a"_s, u"1"_s};
    EXPECT_EQ(ado_.CambiarVarios({uno, uno, uno}), 1);
    EXPECT_FALSE(ado_.Conexion().EnTransaccion());
    EXPECT_EQ(Bitacora(), QString());
    EXPECT_EQ(Filas(), QString());
}

TEST_F(BitacoraDeTransaccionTest, LosFallosQuedanAunqueSeDeshaga) {
    ado_.CpsMen_LLave_Repetida = u"Ya existe"_s;
    ado_.Inicia_Transaccion();
    ASSERT_TRUE(Poner(1));
    EXPECT_FALSE(Poner(1));
    ado_.ManejaError();
    EXPECT_EQ(Bitacora(), u"00=ClsRdo_Error"_s);
    ado_.Cancela_Transaccion();
    EXPECT_EQ(Bitacora(), u"00=ClsRdo_Error"_s);
}

TEST_F(BitacoraDeTransaccionTest, ElCambioQueNoLlegaNoSeCuenta) {
    ado_.Inicia_Transaccion();
    ASSERT_TRUE(Poner(1));
    EXPECT_FALSE(ado_.Modificar(nullptr, u"T"_s, u"b='perdida'"_s, u"a=1"_s));
    EXPECT_EQ(ado_.CambiarVarios({{Cambio::Clase::Insertar, u"T"_s, u"a"_s, u"2"_s},
                                  {Cambio::Clase::Modificar, u"T"_s, u"b='perdida'"_s, u"a=2"_s},
                                  {Cambio::Clase::Insertar, u"T"_s, u"a"_s, u"3"_s}}),
              1);
    EXPECT_EQ(ado_.Pendiente()->numero, data::FalloSql::kConexionPerdida);
    ado_.Termina_Transaccion();
    EXPECT_EQ(Bitacora(), u"00=1 00=2"_s);
    EXPECT_EQ(Filas(), u"1 2"_s);
}

/// A connection whose COMMIT fails and takes the transaction with it.
class ConexionSinCommit final : public data::SqlConnection {
public:
    explicit ConexionSinCommit(std::unique_ptr<data::SqlConnection> dentro)
        : dentro_(std::move(dentro)) {}
    data::RespuestaSql Ejecutar(const QString& tsql, const QVector<QVariant>& parametros) override {
        return dentro_->Ejecutar(tsql, parametros);
    }
    base::Result<void, data::FalloSql> Iniciar() override { return dentro_->Iniciar(); }
    base::Result<void, data::FalloSql> Confirmar() override {
        static_cast<void>(dentro_->Revertir());
        return pruebas::ConexionRota();
    }
    base::Result<void, data::FalloSql> Revertir() override { return dentro_->Revertir(); }
    bool EnTransaccion() const override { return dentro_->EnTransaccion(); }
    std::uint64_t TransaccionActual() const override { return dentro_->TransaccionActual(); }
    base::Result<data::DefinicionTabla, data::FalloSql> Describir(const QString& tabla) override {
        return dentro_->Describir(tabla);
    }
    bool Abierta() const override { return dentro_->Abierta(); }
    void Cerrar() override { dentro_->Cerrar(); }

private:
    std::unique_ptr<data::SqlConnection> dentro_;
};

TEST_F(BitacoraDeTransaccionTest, ElCommitQueFallaNoDejaLineas) {
    ClsAdo otro(
        [this](const data::DatosConexion& datos)
            -> base::Result<std::unique_ptr<data::SqlConnection>, data::FalloSql> {
            QUIMO_TRY(std::unique_ptr<data::SqlConnection> abierta, CrearConector(reloj_)(datos));
            return std::unique_ptr<data::SqlConnection>(
                std::make_unique<ConexionSinCommit>(std::move(abierta)));
        },
        dialogos_, bitacora_);
    QString servidor = u"embebido"_s;
    QString base = carpeta_.filePath(u"central.db"_s);
    QString nada;
    ASSERT_TRUE(otro.Conectar(servidor, base, nada, nada));
    otro.Inicia_Transaccion();
    ASSERT_TRUE(otro.Insertar(u"T"_s, u"a"_s, u"1"_s));
    otro.Termina_Transaccion();
    EXPECT_EQ(Bitacora(), QString());
    ASSERT_TRUE(otro.Insertar(u"T"_s, u"a"_s, u"2"_s));
    EXPECT_EQ(Bitacora(), u"00=2"_s);
}

TEST_F(BitacoraDeTransaccionTest, VariosCambiosSonComoUnoPorUno) {
    const QVector<Cambio> cambios = {
        {Cambio::Clase::Insertar, u"T"_s, u"a,b"_s, u"1,'x'"_s},
        {Cambio::Clase::Modificar, u"T"_s, u"b='y'"_s, u"a=1"_s},
        {Cambio::Clase::Modificar, u"T"_s, u"b='z'"_s, u"a=77"_s},
        {Cambio::Clase::Insertar, u"T"_s, u"a"_s, u"1"_s},
        {Cambio::Clase::Insertar, u"T"_s, u"a"_s, u"5"_s},
    };
    EXPECT_EQ(ado_.CambiarVarios({}), 0);
    EXPECT_EQ(ado_.CambiarVarios(cambios), 3);
    EXPECT_EQ(ado_.Pendiente()->Nativo(), 2627);
    EXPECT_EQ(Filas(), u"1"_s);
    EXPECT_EQ(Bitacora(), u"00=1,'x' 00=b='y' 00=b='z'"_s);
    ado_.Desconectar();
    EXPECT_EQ(ado_.CambiarVarios(cambios), 0);
    EXPECT_EQ(ado_.Pendiente()->numero, data::FalloSql::kConexionCerrada);
}

}  // namespace
}  // namespace quimo::foundation
