// Queries that are answered in another way than they are written, against the same question put so
// that they cannot be.

#include <random>

#include "base_prueba.h"

using namespace Qt::StringLiterals;

namespace quimo::data {

namespace {

/// What a text left: the values of its only row, or the number of its failure.
QString Escrita(SqlConnection& conexion, const QString& tsql) {
    const RespuestaSql respuesta = conexion.Ejecutar(tsql);
    if (respuesta.fallo) return u"! %1"_s.arg(respuesta.fallo->Nativo());
    QStringList celdas;
    const Conjunto& conjunto = *respuesta.resultados[0].conjunto;
    EXPECT_EQ(conjunto.filas.size(), 1) << tsql.toStdString();
    for (int i = 0; i < conjunto.columnas.size(); ++i) {
        celdas << u"%1:%2 %3"_s.arg(conjunto.columnas[i].nombre)
                      .arg(static_cast<int>(conjunto.columnas[i].tipo))
                      .arg(ATexto(conjunto.filas.value(0).value(i)));
    }
    return celdas.join(u" | "_s);
}

class ProductoTest : public testing::Test {
protected:
    ProductoTest() {
        base_.Bien(
            u"CREATE TABLE A (ID INT NULL, Total MONEY NULL, N SMALLINT NULL, F FLOAT NULL, "
            "T VARCHAR(9) NULL)"_s);
        base_.Bien(u"CREATE TABLE B (IB INT NULL, Importe NUMERIC(9,2) NULL, D DATETIME NULL)"_s);
        base_.Bien(u"CREATE TABLE C (IC BIGINT NULL, M SMALLMONEY NULL)"_s);
    }
    void Llenar(int a, int b, int c) {
        base_.Bien(u"DELETE FROM A DELETE FROM B DELETE FROM C"_s);
        for (int i = 0; i < a; ++i) {
            base_.Bien(u"INSERT INTO A VALUES (?,?,?,?,?)"_s,
                       {Tal(6), Tal(900), Tal(50), Tal(9), Tal(3)});
        }
        for (int i = 0; i < b; ++i) {
            base_.Bien(u"INSERT INTO B VALUES (?,?,?)"_s, {Tal(6), Tal(70), Tal(400)});
        }
        for (int i = 0; i < c; ++i)
            base_.Bien(u"INSERT INTO C VALUES (?,?)"_s, {Tal(5), Tal(90)});
    }
    /// A small number, at times none.
    QVariant Tal(int hasta) {
        const int n = std::uniform_int_distribution<int>(-1, hasta)(azar_);
        return n < 0 ? QVariant() : QVariant(n);
    }
    QString Uno(const QStringList& de) {
        return de[std::uniform_int_distribution<qsizetype>(0, de.size() - 1)(azar_)];
    }
    void Comparar(const QString& pregunta) {
        EXPECT_EQ(Escrita(*base_, pregunta), Escrita(*base_, pregunta + u" HAVING COUNT(*)>=0"_s))
            << pregunta.toStdString();
    }

    std::mt19937 azar_{20261114};
    BasePrueba base_;
};

TEST_F(ProductoTest, LoMismoQueElProductoEntero) {
    const QStringList agregados = {u"COUNT(*)"_s,
                                   u"COUNT(ID) AS i"_s,
                                   u"COUNT_BIG(*)"_s,
                                   u"SUM(Total) AS s"_s,
                                   u"MIN(T)"_s,
                                   u"MAX(D) AS d"_s,
                                   u"AVG(Total)"_s,
                                   u"AVG(N)"_s,
                                   u"SUM(N)+COUNT(*)"_s,
                                   u"SUM(IB)"_s,
                                   u"SUM(Importe)"_s,
                                   u"AVG(Importe)"_s,
                                   u"MIN(F)"_s,
                                   u"COUNT(DISTINCT N)"_s,
                                   u"ISNULL(SUM(Total),0)"_s,
                                   u"SUM(Total*N)"_s,
                                   u"MAX(ID+IB)"_s,
                                   u"COUNT(1)"_s,
                                   u"SUM(ID-1)"_s,
                                   u"MAX(1)"_s};
    const QStringList fuentes = {
        u"A,B"_s,    u"B,A"_s, u"A CROSS JOIN B"_s, u"A,B,C"_s, u"C,A INNER JOIN B ON A.ID=B.IB"_s,
        u"A,A X,B"_s};
    const QStringList condiciones = {u"A.ID=A.ID"_s,
                                     u"A.Total>100"_s,
                                     u"B.IB=3"_s,
                                     u"A.ID=B.IB"_s,
                                     u"1=1"_s,
                                     u"1=0"_s,
                                     u"B.D IS NULL"_s,
                                     u"NOT (A.N=2 OR A.N=5)"_s,
                                     u"A.N IN (1,2,3)"_s,
                                     u"(A.ID=1 OR B.IB=2)"_s,
                                     u"A.ID BETWEEN 1 AND 4"_s,
                                     u"A.ID<(SELECT MAX(IB) FROM B)"_s};
    for (int vuelta = 0; vuelta < 200; ++vuelta) {
        if (vuelta % 10 == 0) Llenar(vuelta % 9, (vuelta / 10) % 6, (vuelta / 20) % 4);
        const QString de = Uno(fuentes);
        QStringList lista;
        QStringList donde;
        for (int i = 0; i < 3; ++i) {
            lista << Uno(agregados);
            donde << Uno(condiciones);
        }
        QString pregunta = u"SELECT "_s + lista.join(u',') + u" FROM "_s + de;
        pregunta.replace(u"A,A X,B"_s, u"A,C X,B"_s);
        Comparar(pregunta + u" WHERE "_s + donde.join(u" AND "_s));
        if (HasFailure()) return;
    }
}

TEST_F(ProductoTest, LoQueNoCabeFallaIgual) {
    base_.Bien(
        u"INSERT INTO A (ID,Total,N) VALUES (2000000000,900000000000000,1),(5,0,2) "
        "INSERT INTO B (IB) VALUES (1),(2) INSERT INTO C (IC) VALUES (9000000000000000000)"_s);
    for (const char* agregado : {"SUM(Total)", "SUM(ID)", "SUM(IC)", "COUNT(*)", "AVG(N)"})
        Comparar(u"SELECT %1 FROM A,B,C"_s.arg(QLatin1StringView(agregado)));
    EXPECT_EQ(base_.Falla(u"SELECT SUM(Total) FROM A,B"_s), 8115);
    EXPECT_EQ(base_.Falla(u"SELECT SUM(ID) FROM A,B"_s), 8115);
    EXPECT_EQ(base_.Falla(u"SELECT SUM(IC) FROM B,C"_s), 8115);
}

// A million rows times a million would not end.
TEST_F(ProductoTest, ElProductoNoSeHace) {
    base_.Bien(u"INSERT INTO A (ID,Total) VALUES (1,1.5),(NULL,1),(2,2)"_s);
    for (int i = 0; i < 11; ++i)
        base_.Bien(u"INSERT INTO A (ID,Total) SELECT ID,Total FROM A"_s);
    base_.Bien(u"INSERT INTO B (IB) SELECT ID FROM A INSERT INTO C (IC) SELECT ID FROM A"_s);
    EXPECT_EQ(Escrita(*base_,
                      u"SELECT COUNT_BIG(*) AS n,SUM(Total) AS s FROM A,B,C WHERE "
                      "A.ID=A.ID AND B.IB=1 AND C.IC=2"_s),
              u"n:4 17179869184 | s:5 30064771072.0000"_s);
}

TEST(PrefijoDeNumeroTest, LoMismoQueSuTexto) {
    BasePrueba base;
    const QStringList tipos = {u"INT"_s, u"BIGINT"_s, u"SMALLINT"_s, u"TINYINT"_s};
    const qlonglong topes[] = {2147483647, 9223372036854775807LL, 32767, 255};
    for (int t = 0; t < tipos.size(); ++t) {
        base.Bien(u"CREATE TABLE T%1 (N %2 NULL, X INT)"_s.arg(t).arg(tipos[t]));
        base.Bien(u"CREATE INDEX IX ON T%1 (N) INSERT INTO T%1 VALUES (NULL,0)"_s.arg(t));
        QVector<qlonglong> numeros = {0, topes[t]};
        for (qlonglong potencia = 1; potencia <= topes[t] / 10; potencia *= 10) {
            for (const qlonglong n : {potencia, potencia + 1, 2 * potencia, 2 * potencia - 1,
                                      potencia * 10 - 1, -potencia}) {
                numeros << n;
            }
        }
        for (const qlonglong n : std::as_const(numeros)) {
            if (n > topes[t] || (n < 0 && topes[t] == 255)) continue;
            base.Bien(u"INSERT INTO T%1 VALUES (?,1)"_s.arg(t), {n});
        }
        for (const char* patron : {"1%", "19%", "0%", "00%", "2%", "9%", "10%", "2147483647%",
                                   "21474836470%", "9223372036854775807%", "-1%", "%1", "1", "1_%",
                                   " 1%", "99999999999999999999%", "922337203685477580%"}) {
            for (const char* que : {"MAX(N) AS m", "MIN(N)", "COUNT(*)", "COUNT(N)+MAX(X)"}) {
                for (const char* no : {"", "NOT "}) {
                    const auto pregunta = [&](const QString& numero) {
                        return u"SELECT %1 FROM T%2 WHERE %3 %4LIKE '%5'"_s.arg(
                            QLatin1StringView(que), QString::number(t), numero,
                            QLatin1StringView(no), QLatin1StringView(patron));
                    };
                    EXPECT_EQ(Escrita(*base, pregunta(u"N"_s)),
                              Escrita(*base, pregunta(u"CONVERT(VARCHAR(30),N)"_s)))
                        << pregunta(u"N"_s).toStdString();
                }
            }
        }
    }
}

}  // namespace

}  // namespace quimo::data
