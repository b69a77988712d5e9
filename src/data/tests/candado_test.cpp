#include "data/candado.h"

#include <csignal>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QDir>
#include <QTemporaryDir>

#include "data/embebido/conexion_embebida.h"
#include "support/dialogos_guion.h"

using namespace Qt::StringLiterals;

namespace quimo::data {
namespace {

const QString kCierre = u"cierre"_s;

class CandadoTest : public testing::Test {
protected:
    std::unique_ptr<SqlConnection> Abrir() {
        auto abierta = AbrirEmbebida(archivo_, reloj_, true);
        EXPECT_TRUE(abierta.has_value());
        return abierta ? std::move(abierta).value() : nullptr;
    }
    /// The lock, or nothing and who has it in `dueno_`.
    std::optional<Candado> Tomar(SqlConnection& conexion, const QString& quien, int pasados_s = 0) {
        auto tomado = Candado::Tomar(conexion, kCierre, quien, hora_.addSecs(pasados_s));
        EXPECT_TRUE(tomado.has_value());
        if (!tomado) return std::nullopt;
        if (auto* candado = std::get_if<Candado>(&tomado.value())) return std::move(*candado);
        dueno_ = std::get<DuenoCandado>(tomado.value());
        return std::nullopt;
    }
    /// Runs something in a process of its own, which ends with what it returns.
    pid_t EnOtro(const std::function<int()>& trabajo) {
        const pid_t hijo = fork();
        if (hijo == 0) _exit(trabajo());
        EXPECT_GT(hijo, 0);
        return hijo;
    }
    static int Esperar(pid_t hijo) {
        int estado = 0;
        EXPECT_EQ(waitpid(hijo, &estado, 0), hijo);
        return estado;
    }
    int Filas(SqlConnection& conexion) const {
        return conexion.Ejecutar(u"SELECT COUNT(*) FROM Candado"_s)
            .resultados[0]
            .conjunto->filas[0][0]
            .toInt();
    }

    QTemporaryDir carpeta_;
    QString archivo_ = carpeta_.filePath(u"central.db"_s);
    QDateTime hora_{QDate(2026, 11, 14), QTime(23, 59, 58, 123), Qt::UTC};
    pruebas::RelojFijo reloj_{hora_};
    DuenoCandado dueno_;
};

// The same on a file system without locks, which a folder in the lock file's place stands for.
class CandadoDeCadaClaseTest : public CandadoTest, public testing::WithParamInterface<bool> {
protected:
    CandadoDeCadaClaseTest() {
        if (GetParam()) {
            EXPECT_TRUE(QDir().mkdir(archivo_ + u"-candado"_s));
        }
    }
};

TEST_P(CandadoDeCadaClaseTest, UnoALaVezYSeDiceQuien) {
    const auto una = Abrir();
    const auto otra = Abrir();
    {
        auto suyo = Tomar(*una, u"maria en CAJA (quimo, proceso 7)"_s);
        ASSERT_TRUE(suyo.has_value());
        EXPECT_TRUE(suyo->Vigente());
        EXPECT_FALSE(Tomar(*otra, u"juan"_s, 60).has_value());
        EXPECT_EQ(dueno_.quien, u"maria en CAJA (quimo, proceso 7)"_s);
        EXPECT_EQ(dueno_.desde.toString(Qt::ISODate), u"2026-11-14T23:59:58Z"_s);
        EXPECT_TRUE(suyo->Renovar(hora_.addSecs(100)));
        EXPECT_FALSE(Tomar(*otra, u"juan"_s, 200).has_value());
        const Candado mudado = std::move(*suyo);
        EXPECT_FALSE(suyo->Vigente());
        EXPECT_FALSE(Tomar(*otra, u"juan"_s, 200).has_value());
    }
    EXPECT_EQ(Filas(*una), 0);
    EXPECT_TRUE(Tomar(*otra, u"juan"_s).has_value());
}

TEST_P(CandadoDeCadaClaseTest, UnNombreMuyLargoSeCorta) {
    const auto una = Abrir();
    const auto otra = Abrir();
    const QString quien = QString(199, u'ñ') + u"fin de la cola"_s;
    ASSERT_TRUE(Tomar(*una, quien).has_value());
    const auto suyo = Tomar(*una, quien);
    ASSERT_TRUE(suyo.has_value());
    EXPECT_FALSE(Tomar(*otra, u"juan"_s, 1).has_value());
    EXPECT_EQ(dueno_.quien, quien.left(200));
}

INSTANTIATE_TEST_SUITE_P(ConYSinCerrojos, CandadoDeCadaClaseTest, testing::Bool());

TEST_F(CandadoTest, ElArriendoQueNadieRenuevaVenceYNoSeRecupera) {
    ASSERT_TRUE(QDir().mkdir(archivo_ + u"-candado"_s));
    const auto una = Abrir();
    const auto otra = Abrir();
    auto suyo = Tomar(*una, u"maria"_s);
    ASSERT_TRUE(suyo.has_value());
    EXPECT_FALSE(Tomar(*otra, u"juan"_s, 119).has_value());
    auto nuevo = Tomar(*otra, u"juan"_s, 121);
    ASSERT_TRUE(nuevo.has_value());
    EXPECT_FALSE(suyo->Vigente());
    EXPECT_FALSE(suyo->Renovar(hora_.addSecs(122)));
    suyo.reset();
    EXPECT_TRUE(nuevo->Vigente());
}

TEST_F(CandadoTest, SeVaConSuConexionYLaFilaDeUnMuertoNoEstorba) {
    auto una = Abrir();
    auto suyo = Tomar(*una, u"maria"_s);
    ASSERT_TRUE(suyo.has_value());
    una->Cerrar();
    EXPECT_FALSE(suyo->Vigente());
    const auto otra = Abrir();
    EXPECT_EQ(Filas(*otra), 1);
    auto nuevo = Tomar(*otra, u"juan"_s, 5);
    ASSERT_TRUE(nuevo.has_value());
    suyo.reset();
    EXPECT_TRUE(nuevo->Vigente());
    EXPECT_EQ(Filas(*otra), 1);
}

TEST_F(CandadoTest, UnProcesoMatadoLoSuelta) {
    int tubo[2] = {-1, -1};
    ASSERT_EQ(pipe(tubo), 0);
    const pid_t hijo = EnOtro([&] {
        const auto conexion = Abrir();
        const auto suyo = Tomar(*conexion, u"el otro proceso"_s);
        if (!suyo || write(tubo[1], "t", 1) != 1) return 1;
        pause();
        return 2;
    });
    close(tubo[1]);
    char letra = 0;
    ASSERT_EQ(read(tubo[0], &letra, 1), 1);
    close(tubo[0]);
    const auto conexion = Abrir();
    EXPECT_FALSE(Tomar(*conexion, u"juan"_s).has_value());
    EXPECT_EQ(dueno_.quien, u"el otro proceso"_s);
    EXPECT_EQ(kill(hijo, SIGKILL), 0);
    EXPECT_TRUE(WIFSIGNALED(Esperar(hijo)));
    EXPECT_TRUE(Tomar(*conexion, u"juan"_s).has_value());
}

// None of them knows the table at first: they also make it at once.
TEST_F(CandadoTest, VariosProcesosALaVezNuncaEntranDosJuntos) {
    constexpr int kProcesos = 4;
    constexpr int kVeces = 5;
    constexpr int kIntentos = 2000;
    const std::string dentro = carpeta_.filePath(u"dentro"_s).toStdString();
    Abrir();
    std::vector<pid_t> hijos;
    for (int i = 0; i < kProcesos; ++i) {
        hijos.push_back(EnOtro([&] {
            const auto conexion = Abrir();
            int veces = 0;
            for (int intento = 0; veces < kVeces && intento < kIntentos; ++intento) {
                usleep(500);
                const auto suyo = Tomar(*conexion, QString::number(getpid()));
                if (HasFailure()) return 2;
                if (!suyo) continue;
                const int marca = open(dentro.c_str(), O_CREAT | O_EXCL | O_WRONLY, 0600);
                if (marca < 0) return 1;
                close(marca);
                usleep(500);
                if (unlink(dentro.c_str()) != 0) return 1;
                ++veces;
            }
            return veces == kVeces ? 0 : 3;
        }));
    }
    for (const pid_t hijo : hijos)
        EXPECT_EQ(Esperar(hijo), 0);
}

struct Llamada {
    const char* tsql = nullptr;
    const char* deja = nullptr;  ///< the value that it leaves, or the number of its failure
};

// What the programs say to SQL Server, said to the embedded engine.
TEST_F(CandadoTest, LosProcedimientosDelServidor) {
    const auto una = Abrir();
    const auto otra = Abrir();
    const auto dejan = [](SqlConnection& conexion, const char* tsql) {
        const RespuestaSql r = conexion.Ejecutar(QString::fromUtf8(tsql));
        if (r.fallo) return QString::number(r.fallo->Nativo());
        return r.resultados.isEmpty() ? QString()
                                      : r.resultados.last().conjunto->filas[0][0].toString();
    };
    constexpr auto kToma =
        "DECLARE @r INT EXEC @r=sp_getapplock 'Día','Exclusive','Session',0 SELECT @r";
    constexpr Llamada kCasos[] = {
        {"SELECT APPLOCK_MODE('public','Día','Session')", "NoLock"},
        {kToma, "0"},
        {kToma, "0"},
        {"SELECT APPLOCK_MODE('public','Día','Session')", "Exclusive"},
        {"EXEC sp_releaseapplock @Resource='Día', @LockOwner='Session'", ""},
        {"SELECT APPLOCK_MODE('public','Día','Session')", "Exclusive"},
        {"EXEC sp_getapplock 'Día','Shared','Session',0", "1023"},
        {"EXEC sp_getapplock 'Día','Exclusive','Session'", "1023"},
        {"EXEC sp_getapplock 'Día','Exclusive','Transaction',0", "1023"},
        {"EXEC sp_getapplock @Recurso='Día'", "8145"},
        {"EXEC sp_releaseapplock 'Otro','Session'", "1223"},
    };
    for (const Llamada& caso : kCasos)
        EXPECT_EQ(dejan(*una, caso.tsql), QString::fromUtf8(caso.deja)) << caso.tsql;
    EXPECT_EQ(dejan(*otra, kToma), u"-1"_s);
    EXPECT_EQ(dejan(*otra,
                    "DECLARE @r INT EXEC @r=sp_getapplock 'Noche','Exclusive','Session',0 "
                    "SELECT @r"),
              u"0"_s);
    EXPECT_EQ(dejan(*una, "EXEC sp_releaseapplock 'Día','Session'"), QString());
    EXPECT_EQ(dejan(*otra,
                    "DECLARE @r INT EXEC @r=sp_getapplock 'Día','Exclusive','Session',50 "
                    "SELECT @r"),
              u"0"_s);
}

}  // namespace
}  // namespace quimo::data
