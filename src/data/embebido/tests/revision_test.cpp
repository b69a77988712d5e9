// DBCC CHECKDB: what is wrong in a file is found, and told with its table.

#include <sqlite3.h>

#include "base_prueba.h"

namespace quimo::data {

namespace {

using namespace Qt::StringLiterals;

/// Pages of a database file that no connection has open, by themselves.
class Paginas {
public:
    explicit Paginas(const QString& archivo) : archivo_(archivo) {
        EXPECT_TRUE(archivo_.open(QIODevice::ReadWrite));
        tamano_ = Numero(Leer(0, 18), 16, 2);
        if (tamano_ == 1) tamano_ = 65536;
    }
    QByteArray Pagina(qint64 cual) { return Leer((cual - 1) * tamano_, tamano_); }
    void Poner(qint64 cual, qint64 desde, const QByteArray& bytes) {
        archivo_.seek((cual - 1) * tamano_ + desde);
        EXPECT_EQ(archivo_.write(bytes), bytes.size());
    }
    static qint64 Numero(const QByteArray& bytes, int desde, int cuantos) {
        qint64 numero = 0;
        for (int i = 0; i < cuantos; ++i)
            numero = numero * 256 + static_cast<unsigned char>(bytes[desde + i]);
        return numero;
    }

private:
    QByteArray Leer(qint64 desde, qint64 cuantos) {
        archivo_.seek(desde);
        return archivo_.read(cuantos);
    }
    QFile archivo_;
    qint64 tamano_ = 0;
};

/// The plain engine, which knows nothing of the program, as the shell does not.
class Ajena {
public:
    explicit Ajena(const QString& archivo) {
        EXPECT_EQ(sqlite3_open(archivo.toUtf8().constData(), &base_), SQLITE_OK);
    }
    Ajena(const Ajena&) = delete;
    Ajena& operator=(const Ajena&) = delete;
    ~Ajena() { sqlite3_close(base_); }

    int Correr(const char* sql) { return sqlite3_exec(base_, sql, nullptr, nullptr, nullptr); }
    qint64 Raiz(const char* nombre) {
        sqlite3_stmt* consulta = nullptr;
        sqlite3_prepare_v2(base_, "SELECT rootpage FROM sqlite_master WHERE name=?1", -1, &consulta,
                           nullptr);
        sqlite3_bind_text(consulta, 1, nombre, -1, SQLITE_STATIC);
        EXPECT_EQ(sqlite3_step(consulta), SQLITE_ROW) << nombre;
        const qint64 pagina = sqlite3_column_int64(consulta, 0);
        sqlite3_finalize(consulta);
        return pagina;
    }

private:
    sqlite3* base_ = nullptr;
};

class RevisionTest : public testing::Test {
protected:
    void SetUp() override {
        base_.Bien(u"CREATE TABLE Grupo (ID INT NOT NULL PRIMARY KEY, Nombre VARCHAR(20))"_s);
        base_.Bien(
            u"CREATE TABLE Venta (ID INT NOT NULL PRIMARY KEY, ID_Grupo INT NOT NULL REFERENCES "
            u"Grupo (ID), Nota VARCHAR(200), Monto INT CHECK (Monto>0))"_s);
        base_.Bien(u"CREATE INDEX IX_Venta_Nota ON Venta (Nota)"_s);
        base_.Bien(u"INSERT INTO Grupo VALUES (1,'Bebidas')"_s);
        base_.Bien(u"INSERT INTO Venta VALUES (1,1,'Café',5)"_s);
    }
    /// Closes the connection, so that the whole database lies in its file, changes that and comes
    /// back.
    template <typename Cambio>
    void ConArchivo(Cambio cambio) {
        base_->Cerrar();
        cambio(base_.Archivo());
        base_.Reabrir();
    }
    /// The findings of the file as it is now, "number table text".
    QStringList Revisar() {
        QStringList hallazgos;
        const RespuestaSql respuesta =
            base_.Bien(u"DBCC CHECKDB WITH NO_INFOMSGS, ALL_ERRORMSGS, TABLERESULTS"_s);
        for (const Fila& fila : respuesta.resultados.at(0).conjunto->filas) {
            const QVariant tabla = base_.Uno(u"SELECT OBJECT_NAME(?)"_s, {fila[4]});
            hallazgos << u"%1 %2 %3"_s.arg(fila[0].toString(), ATexto(tabla), fila[3].toString());
        }
        return hallazgos;
    }
    BasePrueba base_;
};

TEST_F(RevisionTest, UnaBaseSanaLoDiceEnUnMensajeOEnUnRenglon) {
    EXPECT_EQ(Revisar(), QStringList());
    const RespuestaSql callada = base_.Bien(u"DBCC CHECKDB WITH NO_INFOMSGS"_s);
    EXPECT_TRUE(callada.mensajes.isEmpty() && callada.resultados.isEmpty());
    const RespuestaSql dicha = base_.Bien(u"dbcc checkdb"_s);
    ASSERT_EQ(dicha.mensajes.size(), 1);
    EXPECT_EQ(dicha.mensajes[0].nativo, 8989);
    EXPECT_TRUE(
        dicha.mensajes[0].descripcion.contains(u"0 consistency errors in database 'central'"_s));
    base_.Bien(u"CREATE TABLE #r (e INT, l INT, s INT, m NVARCHAR(4000), o INT)"_s);
    base_.Bien(u"INSERT INTO #r EXEC ('DBCC CHECKDB WITH TABLERESULTS')"_s);
    EXPECT_EQ(ATexto(base_.Uno(u"SELECT MAX(e) FROM #r"_s)), u"8989"_s);
    EXPECT_EQ(base_.Falla(u"DBCC SHRINKDATABASE"_s), 102);
    EXPECT_EQ(base_.Falla(u"DBCC CHECKDB WITH REPAIR_ALLOW_DATA_LOSS"_s), 102);
}

TEST_F(RevisionTest, UnaPaginaDanadaSeDiceConSuTablaYLasDemasSeRevisan) {
    base_.Bien(u"BEGIN TRANSACTION"_s);
    for (int i = 2; i <= 300; ++i)
        base_.Bien(u"INSERT INTO Venta VALUES (?,1,REPLICATE('x',100),5)"_s, {i});
    base_.Bien(u"COMMIT"_s);
    ConArchivo([](const QString& archivo) {
        const qint64 raiz = Ajena(archivo).Raiz("Venta");
        Paginas paginas(archivo);
        constexpr int kUltimaHija = 8;
        const qint64 hija = Paginas::Numero(paginas.Pagina(raiz), kUltimaHija, 4);
        paginas.Poner(hija, 0, QByteArray("\x99\x7f\xff\xff", 4));
    });
    const QStringList hallazgos = Revisar();
    ASSERT_GE(hallazgos.size(), 1);
    for (const QString& hallazgo : hallazgos)
        EXPECT_TRUE(hallazgo.contains(u" Venta "_s)) << hallazgo.toStdString();
    EXPECT_TRUE(hallazgos[0].startsWith(u"8928 Venta "_s)) << hallazgos[0].toStdString();
    EXPECT_EQ(base_.Falla(u"DBCC CHECKDB"_s), 8928);
}

TEST_F(RevisionTest, UnIndiceAlQueLeFaltaUnRenglonSeNombra) {
    QByteArray antes;
    qint64 raiz = 0;
    ConArchivo([&](const QString& archivo) {
        raiz = Ajena(archivo).Raiz("Venta$IX_Venta_Nota");
        antes = Paginas(archivo).Pagina(raiz);
    });
    base_.Bien(u"INSERT INTO Venta VALUES (2,1,'Ñandú',5)"_s);
    ConArchivo([&](const QString& archivo) { Paginas(archivo).Poner(raiz, 0, antes); });
    const QStringList hallazgos = Revisar();
    ASSERT_EQ(hallazgos.size(), 1) << hallazgos.join(u'\n').toStdString();
    EXPECT_TRUE(hallazgos[0].startsWith(u"8951 Venta "_s)) << hallazgos[0].toStdString();
    EXPECT_TRUE(hallazgos[0].contains(u"index 'IX_Venta_Nota'"_s)) << hallazgos[0].toStdString();
    // What the text tells can be done: made again from the rows, it is right.
    base_.Bien(u"DROP INDEX IX_Venta_Nota ON Venta"_s);
    base_.Bien(u"CREATE INDEX IX_Venta_Nota ON Venta (Nota)"_s);
    EXPECT_EQ(Revisar(), QStringList());
}

TEST_F(RevisionTest, LoQueOtroProgramaEscribioContraLasReglas) {
    struct Caso {
        const char* sql;
        const char* dice;
    };
    for (const Caso& caso :
         {Caso{"PRAGMA ignore_check_constraints=ON; UPDATE Venta SET Monto=-1", "2570 Venta "},
          Caso{"PRAGMA ignore_check_constraints=ON; UPDATE Venta SET Monto=5; DELETE FROM Grupo",
               "547 Venta Table error: table 'Venta', column 'ID_Grupo'. Rows that refer to none "
               "of table 'Grupo': 1."}}) {
        ConArchivo([&](const QString& archivo) {
            EXPECT_EQ(Ajena(archivo).Correr(caso.sql), SQLITE_OK) << caso.sql;
        });
        const QStringList hallazgos = Revisar();
        ASSERT_EQ(hallazgos.size(), 1) << caso.sql << hallazgos.join(u'\n').toStdString();
        EXPECT_TRUE(hallazgos[0].startsWith(QString::fromUtf8(caso.dice)))
            << hallazgos[0].toStdString();
    }
}

}  // namespace

}  // namespace quimo::data
