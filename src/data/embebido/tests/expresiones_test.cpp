// Random expressions, written with no more parentheses than T-SQL's precedence asks for, against a
// model that works the tree out by itself. Catches a translation that binds otherwise.

#include <optional>
#include <random>

#include "base_prueba.h"

namespace quimo::data {

namespace {

/// What a tree stands for: its T-SQL, the level of its outermost operator, and its value in
/// ten-thousandths; nothing when the server would fail (a division by zero).
struct Nodo {
    QString sql;
    int nivel = 9;
    std::optional<qint64> valor;
};

// Levels of T-SQL, the weakest first.
enum Nivel { kO = 1, kY, kNo, kComparacion, kSuma, kProducto, kUnario, kAtomo = 9 };

class Generador {
public:
    explicit Generador(unsigned semilla) : azar_(semilla) {}

    Nodo Entera(int hondo) {
        if (hondo == 0 || Hasta(5) == 0) return Hoja(kEnteras, std::size(kEnteras));
        if (Hasta(8) == 0) return Negada(Entera(hondo - 1));
        if (Hasta(8) == 0)
            return Caso(Condicion(hondo - 1, true), Entera(hondo - 1), Entera(hondo - 1));
        static constexpr char kOperadores[] = {'+', '-', '*', '/', '%', '&', '|'};
        const Nodo a = Entera(hondo - 1);
        const Nodo b = Entera(hondo - 1);
        return Operar(kOperadores[Hasta(std::size(kOperadores))], a, b);
    }

    /// Sums and differences of INT, NUMERIC and MONEY, which are exact.
    Nodo Exacta(int hondo) {
        if (hondo == 0 || Hasta(5) == 0) return Hoja(kExactas, std::size(kExactas));
        if (Hasta(8) == 0) return Negada(Exacta(hondo - 1));
        if (Hasta(8) == 0)
            return Caso(Condicion(hondo - 1, false), Exacta(hondo - 1), Exacta(hondo - 1));
        const Nodo a = Exacta(hondo - 1);
        const Nodo b = Exacta(hondo - 1);
        return Operar(Hasta(2) == 0 ? '+' : '-', a, b);
    }

private:
    struct Valor {
        const char* sql;
        qint64 diezmilesimas;
    };
    static constexpr Valor kEnteras[] = {{"n", 70'000}, {"m", 30'000},  {"k", 10'000},
                                         {"5", 50'000}, {"2", 20'000},  {"13", 130'000},
                                         {"0", 0},      {"t.n", 70'000}};
    static constexpr Valor kExactas[] = {{"n", 70'000},    {"d", 12'500}, {"p", 995'000},
                                         {"2.5", 25'000},  {"3", 30'000}, {"0.125", 1'250},
                                         {"q", 1'234'567}, {"1", 10'000}};

    int Hasta(std::size_t n) { return static_cast<int>(azar_() % n); }

    Nodo Hoja(const Valor* valores, std::size_t cuantos) {
        const Valor& hoja = valores[Hasta(cuantos)];
        return {QString::fromLatin1(hoja.sql), kAtomo, hoja.diezmilesimas};
    }
    static QString Entre(const Nodo& nodo, int minimo) {
        return nodo.nivel < minimo ? QStringLiteral("(") + nodo.sql + QStringLiteral(")")
                                   : nodo.sql;
    }
    static Nodo Negada(const Nodo& a) {
        Nodo nodo{QStringLiteral(" - ") + Entre(a, kAtomo), kUnario, a.valor};
        if (nodo.valor) nodo.valor = -*nodo.valor;
        return nodo;
    }
    static Nodo Caso(const Nodo& si, const Nodo& a, const Nodo& b) {
        Nodo nodo{QStringLiteral("CASE WHEN ") + si.sql + QStringLiteral(" THEN ") + a.sql +
                      QStringLiteral(" ELSE ") + b.sql + QStringLiteral(" END"),
                  kAtomo, std::nullopt};
        if (si.valor && a.valor && b.valor) nodo.valor = *si.valor != 0 ? *a.valor : *b.valor;
        return nodo;
    }
    static Nodo Operar(char signo, const Nodo& a, const Nodo& b) {
        // + - & | are of one level, and all associate to the left.
        const int nivel = signo == '*' || signo == '/' || signo == '%' ? kProducto : kSuma;
        Nodo nodo{Entre(a, nivel) + QLatin1Char(signo) + Entre(b, nivel + 1), nivel, std::nullopt};
        if (!a.valor || !b.valor) return nodo;
        const qint64 x = *a.valor;
        const qint64 y = *b.valor;
        if (signo == '+') nodo.valor = x + y;
        if (signo == '-') nodo.valor = x - y;
        if (signo == '*') nodo.valor = x / 10'000 * y;
        if (signo == '&') nodo.valor = ((x / 10'000) & (y / 10'000)) * 10'000;
        if (signo == '|') nodo.valor = ((x / 10'000) | (y / 10'000)) * 10'000;
        if (signo == '/' && y != 0) nodo.valor = x / y * 10'000;
        if (signo == '%' && y != 0) nodo.valor = x % y;
        // Beyond INT the server fails.
        if (nodo.valor && std::abs(*nodo.valor) > 2'000'000'000LL * 10'000) nodo.valor.reset();
        return nodo;
    }
    Nodo Condicion(int hondo, bool entera) {
        const auto otra = [&] { return entera ? Entera(hondo / 2) : Exacta(hondo / 2); };
        if (hondo > 0 && Hasta(3) == 0) {
            const Nodo a = Condicion(hondo - 1, entera);
            Nodo nodo{QStringLiteral("NOT ") + Entre(a, kNo), kNo, a.valor};
            if (nodo.valor) nodo.valor = *nodo.valor == 0 ? 1 : 0;
            return nodo;
        }
        if (hondo > 0 && Hasta(2) == 0) {
            const bool y = Hasta(2) == 0;
            const Nodo a = Condicion(hondo - 1, entera);
            const Nodo b = Condicion(hondo - 1, entera);
            const int nivel = y ? kY : kO;
            Nodo nodo{Entre(a, nivel) + (y ? QStringLiteral(" AND ") : QStringLiteral(" OR ")) +
                          Entre(b, nivel + 1),
                      nivel, std::nullopt};
            if (a.valor && b.valor)
                nodo.valor = y ? *a.valor * *b.valor : (*a.valor + *b.valor > 0 ? 1 : 0);
            return nodo;
        }
        const Nodo a = otra();
        const Nodo b = otra();
        static constexpr const char* kSignos[] = {"=", "<>", "<", ">="};
        const int cual = Hasta(std::size(kSignos));
        Nodo nodo{Entre(a, kSuma) + QLatin1String(kSignos[cual]) + Entre(b, kSuma), kComparacion,
                  std::nullopt};
        if (!a.valor || !b.valor) return nodo;
        const bool verdad[] = {*a.valor == *b.valor, *a.valor != *b.valor, *a.valor < *b.valor,
                               *a.valor >= *b.valor};
        nodo.valor = verdad[cual] ? 1 : 0;
        return nodo;
    }

    std::mt19937 azar_;
};

qint64 EnDiezmilesimas(const QString& texto) {
    const bool negativo = texto.startsWith(QLatin1Char('-'));
    const QString sin_signo = negativo ? texto.mid(1) : texto;
    const QString decimales = sin_signo.section(QLatin1Char('.'), 1) + QStringLiteral("0000");
    const qint64 valor = sin_signo.section(QLatin1Char('.'), 0, 0).toLongLong() * 10'000 +
                         decimales.left(4).toLongLong();
    return negativo ? -valor : valor;
}

TEST(ExpresionesAzarTest, ValenLoQueDiceSuArbol) {
    BasePrueba base;
    base.Bien(QStringLiteral(
        "CREATE TABLE t (n INT, m INT, k INT, d NUMERIC(9,2), p MONEY, q NUMERIC(12,4))\n"
        "INSERT INTO t VALUES (7,3,1,1.25,99.5,123.4567)"));
    Generador azar(20261114);
    int comparadas = 0;
    for (int i = 0; i < 1500; ++i) {
        const Nodo nodo = i % 2 == 0 ? azar.Entera(4) : azar.Exacta(4);
        if (!nodo.valor) continue;
        const RespuestaSql respuesta =
            base->Ejecutar(QStringLiteral("SELECT ") + nodo.sql + QStringLiteral(" FROM t"));
        // The server may fail in a branch that the model never takes.
        if (respuesta.fallo) {
            EXPECT_TRUE(respuesta.fallo->Nativo() == 8134 || respuesta.fallo->Nativo() == 8115)
                << nodo.sql.toStdString() << respuesta.fallo->Descripcion().toStdString();
            continue;
        }
        ++comparadas;
        EXPECT_EQ(EnDiezmilesimas(ATexto(respuesta.resultados[0].conjunto->filas[0][0])),
                  *nodo.valor)
            << nodo.sql.toStdString();
    }
    EXPECT_GT(comparadas, 1000);
}

/// Two ways of asking the same, of which the translator rewrites the first: over random rows, with
/// keys that are missing, repeated and NULL, both must answer alike.
struct Pareja {
    const char* reescrita = nullptr;
    const char* tal_cual = nullptr;
};
constexpr Pareja kParejas[] = {
    {"SELECT a.id, d.s, d.c, d.k FROM a LEFT JOIN (SELECT k, SUM(v) AS s, COUNT(*) AS c FROM b "
     "GROUP BY k) d "
     "ON d.k = a.k ORDER BY a.id",
     "SELECT a.id, d.s, d.c, d.k FROM a LEFT JOIN (SELECT k, SUM(v) AS s, COUNT(*) AS c FROM b "
     "GROUP BY k "
     "HAVING COUNT(*) > 0) d ON d.k = a.k ORDER BY a.id"},
    {"SELECT a.k, SUM(a.v) + SUM(ISNULL(d.s,0)), COUNT(d.m) FROM a LEFT JOIN (SELECT b.k, SUM(b.v) "
     "AS s, MIN(c.v) AS m "
     "FROM b, c WHERE b.id = c.k AND b.v IS NOT NULL GROUP BY b.k) d ON a.k = d.k WHERE a.v > 1 "
     "GROUP BY a.k ORDER BY 1",
     "SELECT a.k, SUM(a.v) + SUM(ISNULL(d.s,0)), COUNT(d.m) FROM a LEFT JOIN (SELECT b.k, SUM(b.v) "
     "AS s, MIN(c.v) AS m "
     "FROM b, c WHERE b.id = c.k AND b.v IS NOT NULL GROUP BY b.k HAVING COUNT(*) > 0) d ON a.k = "
     "d.k WHERE a.v > 1 "
     "GROUP BY a.k ORDER BY 1"},
    {"SELECT a.id, b.id FROM a LEFT JOIN b ON a.v = b.v AND b.k IN (SELECT k FROM c) AND b.id > 2 "
     "ORDER BY 1, 2",
     "SELECT a.id, b.id FROM a LEFT JOIN b ON a.v = b.v AND EXISTS (SELECT * FROM c WHERE c.k = "
     "b.k) AND b.id > 2 "
     "ORDER BY 1, 2"},
    {"SELECT a.id, COUNT(b.id), SUM(b.v)/COUNT(b.id) FROM c, a LEFT JOIN b ON a.v = b.v AND b.k IN "
     "(SELECT k FROM c "
     "WHERE v > 2) WHERE c.id = a.id GROUP BY a.id ORDER BY 1",
     "SELECT a.id, COUNT(b.id), SUM(b.v)/COUNT(b.id) FROM c, a LEFT JOIN b ON a.v = b.v AND b.k + "
     "0 IN (SELECT k FROM c "
     "WHERE v > 2) WHERE c.id = a.id GROUP BY a.id ORDER BY 1"},
};

TEST(UnionesAzarTest, LaReescritaRespondeComoLaEscrita) {
    std::mt19937 azar(7);
    const auto numero = [&](unsigned long hasta) {
        const unsigned long n = azar() % (hasta + 1);
        return n == hasta ? QStringLiteral("NULL") : QString::number(n);
    };
    int filas = 0;
    for (int vuelta = 0; vuelta < 12; ++vuelta) {
        BasePrueba base;
        for (const char tabla : {'a', 'b', 'c'}) {
            const QString nombre = QString(QLatin1Char(tabla));
            base.Bien(QStringLiteral(
                          "CREATE TABLE %1 (id INT NOT NULL PRIMARY KEY, k INT NULL, v MONEY NULL)")
                          .arg(nombre));
            base.Bien(QStringLiteral("CREATE INDEX ix ON %1 (k)").arg(nombre));
            for (unsigned long id = azar() % 2; id < 3 + azar() % 20; ++id) {
                base.Bien(QStringLiteral("INSERT INTO %1 VALUES (%2,%3,%4)")
                              .arg(nombre, QString::number(id), numero(6), numero(5)));
            }
        }
        for (const Pareja& pareja : kParejas) {
            const auto una = base.Bien(QString::fromLatin1(pareja.reescrita));
            const auto otra = base.Bien(QString::fromLatin1(pareja.tal_cual));
            ASSERT_FALSE(una.fallo || otra.fallo);
            const auto textos = [&filas](const RespuestaSql& respuesta) {
                QStringList lineas;
                for (const Fila& fila : respuesta.resultados[0].conjunto->filas) {
                    QStringList celdas;
                    for (const QVariant& valor : fila)
                        celdas.append(ATexto(valor));
                    lineas.append(celdas.join(QLatin1Char('|')));
                    ++filas;
                }
                return lineas;
            };
            EXPECT_EQ(textos(una), textos(otra)) << pareja.reescrita;
        }
    }
    EXPECT_GT(filas, 200);
}

// Each side of a join is read once: read twice, this text would take hours.
TEST(UnionesAzarTest, MuchasUnionesConGruposNoSeMultiplican) {
    BasePrueba base;
    base.Bien(
        QStringLiteral("CREATE TABLE t (id INT, nombre VARCHAR(5))\n"
                       "INSERT INTO t VALUES (1,'a'),(2,'a'),(3,'b')"));
    QString texto = QStringLiteral("SELECT SUM(d0.c), SUM(d23.c) FROM t");
    for (int i = 0; i < 24; ++i) {
        texto += QStringLiteral(
                     " LEFT JOIN (SELECT nombre, COUNT(*) AS c FROM t GROUP BY nombre) "
                     "d%1 ON d%1.nombre = t.nombre")
                     .arg(i);
    }
    const RespuestaSql respuesta = base.Bien(texto);
    ASSERT_FALSE(respuesta.resultados.isEmpty());
    const Fila& fila = respuesta.resultados[0].conjunto->filas[0];
    EXPECT_EQ(ATexto(fila[0]), QStringLiteral("5"));
    EXPECT_EQ(ATexto(fila[1]), QStringLiteral("5"));
}

}  // namespace

}  // namespace quimo::data
