// A disk that fails: what was told as done is in the file, what was told as failed is not, and
// the count of open transactions is true in between.

#include <set>

#include <QFile>

#include "base_prueba.h"
#include "data/transaccion.h"
#include "disco_que_falla.h"

using namespace Qt::StringLiterals;

namespace quimo::data {

namespace {

/// One text, and what each statement of it does to the table T or to the tables that there are.
struct Paso {
    QString tsql;
    /// "+5", "-5": a row or a table more or less. "=": neither. BEGIN, COMMIT, ROLLBACK, SAVE,
    /// "ROLLBACK TO".
    QStringList efectos;
};

const QVector<Paso>& Guion() {
    static const QVector<Paso> kGuion = {
        {u"INSERT INTO T VALUES (1,'uno')"_s, {u"+1"_s}},
        {u"INSERT INTO T VALUES (2,'dos') INSERT INTO T VALUES (3,'tres')"_s, {u"+2"_s, u"+3"_s}},
        {u"BEGIN TRANSACTION"_s, {u"BEGIN"_s}},
        {u"INSERT INTO T VALUES (4,'cuatro')"_s, {u"+4"_s}},
        {u"INSERT INTO T (ID,N) SELECT ID+10,N FROM Copia"_s, {u"+15"_s}},
        {u"COMMIT TRANSACTION"_s, {u"COMMIT"_s}},
        {u"BEGIN TRAN INSERT INTO T VALUES (20,'a') DELETE FROM T WHERE ID=1 COMMIT"_s,
         {u"BEGIN"_s, u"+20"_s, u"-1"_s, u"COMMIT"_s}},
        {u"BEGIN TRAN fuera"_s, {u"BEGIN"_s}},
        {u"INSERT INTO T VALUES (30,'b')"_s, {u"+30"_s}},
        {u"BEGIN TRAN dentro"_s, {u"BEGIN"_s}},
        {u"INSERT INTO Numerada (N) VALUES (31) INSERT INTO T VALUES (31,'c')"_s,
         {u"="_s, u"+31"_s}},
        {u"COMMIT"_s, {u"COMMIT"_s}},
        {u"SAVE TRANSACTION aqui"_s, {u"SAVE"_s}},
        {u"INSERT INTO T VALUES (32,'d')"_s, {u"+32"_s}},
        {u"CREATE TABLE Apartada (A INT NOT NULL PRIMARY KEY)"_s, {u"+Apartada"_s}},
        {u"ROLLBACK TRANSACTION aqui"_s, {u"ROLLBACK TO"_s}},
        {u"INSERT INTO T VALUES (33,'e')"_s, {u"+33"_s}},
        {u"COMMIT TRAN"_s, {u"COMMIT"_s}},
        {u"CREATE TABLE Suelta (A INT NOT NULL, B VARCHAR(9)) "_s, {u"+Suelta"_s}},
        {u"BEGIN TRAN"_s, {u"BEGIN"_s}},
        {u"CREATE TABLE Junta (A INT NOT NULL PRIMARY KEY)"_s, {u"+Junta"_s}},
        {u"INSERT INTO T EXEC Filas"_s, {u"+40"_s}},
        {u"UPDATE T SET ID=ID+1 WHERE ID IN (70,71)"_s, {u"-70,+72"_s}},
        {u"COMMIT"_s, {u"COMMIT"_s}},
        {u"BEGIN TRAN DROP TABLE Vieja INSERT INTO T VALUES (50,'f')"_s,
         {u"BEGIN"_s, u"-Vieja"_s, u"+50"_s}},
        {u"ROLLBACK"_s, {u"ROLLBACK"_s}},
        {u"INSERT INTO T EXEC Filas"_s, {u"+40"_s}},
        {u"INSERT INTO Numerada (N) VALUES (60) INSERT INTO T VALUES (60,'g')"_s,
         {u"="_s, u"+60"_s}},
    };
    return kGuion;
}

struct Contenido {
    std::set<QString> cosas;  ///< ids of rows, names of tables
    bool operator==(const Contenido&) const = default;
};

std::string ATextoDe(const Contenido& c) {
    std::string texto;
    for (const QString& cosa : c.cosas)
        texto += cosa.toStdString() + " ";
    return texto;
}

/// What there should be, by what was told.
class Modelo {
public:
    explicit Modelo(Contenido principio) : confirmado(principio), actual(std::move(principio)) {}

    void Hacer(const QString& efecto) {
        for (const QString& cosa : efecto.split(u',')) {
            if (cosa.startsWith(u'+')) actual.cosas.insert(cosa.mid(1));
            if (cosa.startsWith(u'-')) actual.cosas.erase(cosa.mid(1));
        }
        if (efecto == "BEGIN"_L1) {
            ++cuenta;
        } else if (efecto == "COMMIT"_L1) {
            --cuenta;
        } else if (efecto == "ROLLBACK"_L1) {
            Perder();
        } else if (efecto == "SAVE"_L1) {
            guardado = actual;
        } else if (efecto == "ROLLBACK TO"_L1) {
            actual = guardado;
        }
        if (cuenta == 0) confirmado = actual;
    }
    void Perder() {
        cuenta = 0;
        actual = confirmado;
    }

    Contenido confirmado;
    Contenido actual;
    Contenido guardado = {};
    int cuenta = 0;
};

std::optional<Contenido> Leer(SqlConnection& conexion) {
    Contenido contenido;
    for (const QString& consulta :
         {u"SELECT CONVERT(VARCHAR(9),ID) FROM T"_s,
          u"SELECT TABLE_NAME FROM INFORMATION_SCHEMA.TABLES WHERE TABLE_TYPE='BASE TABLE'"_s}) {
        const RespuestaSql respuesta = conexion.Ejecutar(consulta);
        if (respuesta.fallo) return std::nullopt;
        for (const Fila& fila : respuesta.resultados[0].conjunto->filas)
            contenido.cosas.insert(fila[0].toString());
    }
    return contenido;
}

class FallosDeDisco : public testing::TestWithParam<Falla> {
protected:
    FallosDeDisco() {
        BasePrueba base;
        base.Bien(u"CREATE TABLE T (ID INT NOT NULL PRIMARY KEY, N VARCHAR(20) NULL)"_s);
        base.Bien(u"CREATE INDEX IX_T ON T (N)"_s);
        base.Bien(
            u"CREATE TABLE Copia (ID INT NOT NULL, N VARCHAR(20)) "
            "INSERT INTO Copia VALUES (5,'cinco')"_s);
        base.Bien(
            u"INSERT INTO T (ID) VALUES (70) INSERT INTO T (ID) VALUES (71) "
            "CREATE TABLE Vieja (A INT NOT NULL PRIMARY KEY)"_s);
        base.Bien(u"CREATE TABLE Numerada (ID INT IDENTITY(1,1) PRIMARY KEY, N INT)"_s);
        base.Bien(
            u"CREATE PROCEDURE Filas AS SELECT 40,'cuarenta' WHERE NOT EXISTS "
            "(SELECT 1 FROM T WHERE ID=40)"_s);
        principio_ = *Leer(*base);
        base->Cerrar();
        QFile archivo(base.Archivo());
        EXPECT_TRUE(archivo.open(QIODevice::ReadOnly));
        bytes_ = archivo.readAll();
    }

    void Poner(const QString& nombre) const {
        QFile::remove(nombre + u"-wal"_s);
        QFile::remove(nombre + u"-shm"_s);
        QFile archivo(nombre);
        ASSERT_TRUE(archivo.open(QIODevice::WriteOnly));
        archivo.write(bytes_);
    }

    /// What somebody finds who opens the file as it lies there now.
    Contenido Hallado(const QString& nombre) const {
        const auto abierta = AbrirEmbebida(nombre, reloj_, false);
        EXPECT_TRUE(abierta.has_value());
        if (!abierta) return {};
        const auto leido = Leer(**abierta);
        EXPECT_TRUE(leido.has_value());
        const RespuestaSql escrita = (*abierta)->Ejecutar(u"UPDATE T SET N='x' WHERE ID<0"_s);
        EXPECT_FALSE(escrita.fallo.has_value());
        return leido.value_or(Contenido{});
    }

    /// As if the program had been killed now.
    void ComprobarMuerto(const QString& nombre, const Modelo& modelo) const {
        const QString copia = carpeta_.filePath(u"muerta.db"_s);
        for (const QString& cola : {u""_s, u"-wal"_s}) {
            QFile::remove(copia + cola);
            QFile::copy(nombre + cola, copia + cola);
        }
        QFile::remove(copia + u"-shm"_s);
        EXPECT_EQ(ATextoDe(Hallado(copia)), ATextoDe(modelo.confirmado)) << "killed";
    }

    /// Compares one text's outcome with the model. False when the disk has failed in it.
    bool Seguir(SqlConnection& conexion, const Paso& paso, Modelo& modelo) {
        const RespuestaSql respuesta = conexion.Ejecutar(paso.tsql);
        int contadas = 0;
        for (const QString& efecto : paso.efectos) {
            const bool cuenta =
                efecto.startsWith(u'+') || efecto.startsWith(u'-') || efecto == "="_L1;
            const bool hecha = !respuesta.fallo || contadas < respuesta.resultados.size();
            if (!hecha) break;
            if (cuenta) ++contadas;
            modelo.Hacer(efecto);
        }
        if (respuesta.fallo && !conexion.EnTransaccion()) modelo.Perder();
        if (respuesta.fallo && conexion.EnTransaccion() && modelo.cuenta == 0) modelo.cuenta = 1;
        const RespuestaSql cuenta = conexion.Ejecutar(u"SELECT @@TRANCOUNT"_s);
        EXPECT_TRUE(!cuenta.fallo || disco_.Fallidas() > 0);
        if (!cuenta.fallo) {
            EXPECT_EQ(cuenta.resultados[0].conjunto->filas[0][0].toInt(), modelo.cuenta)
                << paso.tsql.toStdString();
        }
        EXPECT_EQ(conexion.EnTransaccion(), modelo.cuenta > 0) << paso.tsql.toStdString();
        EXPECT_EQ(conexion.TransaccionActual() != 0, modelo.cuenta > 0);
        return !respuesta.fallo.has_value();
    }

    void Correr(const Falla& falla) {
        const QString nombre = carpeta_.filePath(u"central.db"_s);
        Poner(nombre);
        Modelo modelo(principio_);
        disco_.Armar(falla);
        {
            auto abierta = AbrirEmbebida(nombre, reloj_, false);
            for (const Paso& paso : Guion()) {
                if (!abierta) break;
                // A text that stands in a transaction is not run outside of it.
                const bool propia = paso.efectos[0] == "BEGIN"_L1 || EnSuelto(paso);
                if (modelo.cuenta == 0 && !propia) continue;
                if (!Seguir(**abierta, paso, modelo)) {
                    const int fallidas = disco_.Fallidas();
                    EXPECT_GT(fallidas, 0) << paso.tsql.toStdString();
                    disco_.Desarmar();
                    ComprobarMuerto(nombre, modelo);
                    if (falla.siempre) disco_.Armar({falla.operacion, 1, true, falla.lleno});
                    fallos_ += fallidas;
                }
                const auto leido = Leer(**abierta);
                if (!(*abierta)->EnTransaccion()) modelo.Perder();
                if (leido) {
                    EXPECT_EQ(ATextoDe(*leido), ATextoDe(modelo.actual));
                }
                if (HasFailure()) return;
            }
        }
        fallos_ += disco_.Fallidas();
        disco_.Desarmar();
        ComprobarMuerto(nombre, modelo);
        EXPECT_EQ(ATextoDe(Hallado(nombre)), ATextoDe(modelo.confirmado));
    }

    static bool EnSuelto(const Paso& paso) {
        static const QStringList kSueltos = {u"+1"_s, u"+2"_s, u"+Suelta"_s, u"+40"_s, u"="_s};
        return kSueltos.contains(paso.efectos[0]);
    }

    DiscoQueFalla disco_;
    QTemporaryDir carpeta_;
    RelojFijo reloj_;
    QByteArray bytes_;
    Contenido principio_;
    int fallos_ = 0;
};

TEST_P(FallosDeDisco, LoDichoHechoEstaYLoDichoFallidoNo) {
    Falla falla = GetParam();
    int cuantas = 0;
    do {
        ++falla.desde;
        ++cuantas;
        fallos_ = 0;
        SCOPED_TRACE("operation " + std::to_string(falla.desde));
        Correr(falla);
        ASSERT_LT(cuantas, 2000);
    } while (fallos_ > 0 && !HasFailure());
    EXPECT_GT(cuantas, 1) << "nothing has failed";
}

std::string NombreDe(const testing::TestParamInfo<Falla>& caso) {
    constexpr const char* kNombres[] = {"Lectura",  "Escritura", "Sincronia",
                                        "Apertura", "Recorte",   "Cerrojo"};
    const Falla& falla = caso.param;
    return std::string(kNombres[static_cast<int>(falla.operacion)]) +
           (falla.lleno ? "SinLugar" : "") + (falla.siempre ? "ParaSiempre" : "UnaVez");
}

INSTANTIATE_TEST_SUITE_P(
    Embebida, FallosDeDisco,
    testing::Values(
        Falla{Operacion::Lectura, 0, false, false}, Falla{Operacion::Lectura, 0, true, false},
        Falla{Operacion::Escritura, 0, false, false}, Falla{Operacion::Escritura, 0, true, false},
        Falla{Operacion::Escritura, 0, false, true}, Falla{Operacion::Escritura, 0, true, true},
        Falla{Operacion::Sincronia, 0, false, false}, Falla{Operacion::Sincronia, 0, true, false},
        Falla{Operacion::Sincronia, 0, true, true}, Falla{Operacion::Apertura, 0, false, false},
        Falla{Operacion::Apertura, 0, true, false}, Falla{Operacion::Recorte, 0, false, false},
        Falla{Operacion::Recorte, 0, true, true}, Falla{Operacion::Cerrojo, 0, false, false},
        Falla{Operacion::Cerrojo, 0, true, false}),
    NombreDe);

// A thousand rows of a day were copied outside of any transaction after a COMMIT had failed.
TEST(TransaccionPerdidaTest, NadaSigueFueraDeLaQueElMotorDeshizo) {
    DiscoQueFalla disco;
    BasePrueba base;
    base.Bien(u"CREATE TABLE T (ID INT NOT NULL PRIMARY KEY)"_s);
    auto primera = Transaccion::Iniciar(*base);
    ASSERT_TRUE(primera.has_value());
    EXPECT_TRUE(primera->Viva());
    EXPECT_FALSE(primera->Ejecutar(u"INSERT INTO T VALUES (1)"_s).fallo.has_value());
    disco.Armar({Operacion::Sincronia, 1, false, true});
    const auto confirmada = primera->Confirmar();
    ASSERT_FALSE(confirmada.has_value());
    EXPECT_EQ(confirmada.error().Nativo(), 9002);
    EXPECT_EQ(confirmada.error().errores.last().nativo, 3998);
    EXPECT_FALSE(primera->Viva());
    EXPECT_FALSE(base->EnTransaccion());
    EXPECT_EQ(base->Confirmar().error().Nativo(), 3902);
    EXPECT_EQ(base.Falla(u"COMMIT"_s), 3902);
    EXPECT_EQ(ATexto(base.Uno(u"SELECT COUNT(*)+@@TRANCOUNT FROM T"_s)), u"0"_s);

    // Another one on the same connection is none of its business.
    auto segunda = Transaccion::Iniciar(*base);
    ASSERT_TRUE(segunda.has_value());
    EXPECT_EQ(primera->Ejecutar(u"INSERT INTO T VALUES (2)"_s).fallo->Nativo(), 3902);
    EXPECT_EQ(primera->Confirmar().error().Nativo(), 3902);
    { const Transaccion vieja = std::move(*primera); }
    EXPECT_TRUE(segunda->Viva());
    EXPECT_FALSE(segunda->Ejecutar(u"INSERT INTO T VALUES (3)"_s).fallo.has_value());
    EXPECT_TRUE(segunda->Confirmar().has_value());
    EXPECT_FALSE(segunda->Viva());
    EXPECT_EQ(ATexto(base.Uno(u"SELECT SUM(ID) FROM T"_s)), u"3"_s);

    // A text goes no further than the COMMIT that failed.
    disco.Armar({Operacion::Sincronia, 1, false, false});
    EXPECT_EQ(base.Falla(u"BEGIN TRAN INSERT INTO T VALUES (4) COMMIT INSERT INTO T VALUES (5)"_s),
              823);
    EXPECT_EQ(ATexto(base.Uno(u"SELECT SUM(ID) FROM T"_s)), u"3"_s);
    {
        auto tercera = Transaccion::Iniciar(*base);
        ASSERT_TRUE(tercera.has_value());
        EXPECT_FALSE(tercera->Ejecutar(u"INSERT INTO T VALUES (6)"_s).fallo.has_value());
    }
    EXPECT_FALSE(base->EnTransaccion());
    EXPECT_EQ(ATexto(base.Uno(u"SELECT SUM(ID) FROM T"_s)), u"3"_s);
}

}  // namespace

}  // namespace quimo::data
