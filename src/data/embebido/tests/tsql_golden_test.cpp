// The answers of an independent T-SQL server, statement by statement.

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "base_prueba.h"

namespace quimo::data {

namespace {

const QString kDatos = QStringLiteral(QUIMO_RAIZ "/tests/data/");

/// Numbers by value, dates to the second, text as it stands but for blanks at its end.
bool Igual(const QJsonValue& quiere, const QVariant& hay) {
    if (quiere.isNull() || !hay.isValid()) return quiere.isNull() && !hay.isValid();
    const QString texto = ATexto(hay);
    if (quiere.isObject() && quiere.toObject().contains(QStringLiteral("dec"))) {
        const auto a =
            base::Decimal::DeTexto(quiere[QStringLiteral("dec")].toString().toStdString());
        const auto b = base::Decimal::DeTexto(texto.toStdString());
        if (!a || !b) return false;
        constexpr int kEscala = 5;
        const auto diferencia = a->ConEscala(kEscala)->digitos - b->ConEscala(kEscala)->digitos;
        return diferencia >= -5 && diferencia <= 5;
    }
    if (quiere.isObject()) return texto.left(19) == quiere[QStringLiteral("date")].toString();
    if (quiere.isDouble()) return texto == QString::number(quiere.toDouble(), 'g', 15);
    const auto sin_cola = [](QString s) {
        while (s.endsWith(QLatin1Char(' ')))
            s.chop(1);
        return s;
    };
    return sin_cola(texto) == sin_cola(quiere.toString());
}

bool MismaFila(const QJsonArray& quiere, const Fila& hay) {
    if (quiere.size() != hay.size()) return false;
    for (int i = 0; i < hay.size(); ++i) {
        if (!Igual(quiere[i], hay[i])) return false;
    }
    return true;
}

/// Rows in their order when the statement asks for one, as a bag otherwise.
void CompararFilas(const QJsonArray& quiere, QVector<Fila> hay, bool en_orden) {
    ASSERT_EQ(quiere.size(), hay.size());
    for (int i = 0; i < quiere.size(); ++i) {
        int cual = 0;
        while (cual < hay.size() && !MismaFila(quiere[i].toArray(), hay[cual]))
            ++cual;
        ASSERT_LT(cual, hay.size()) << "row " << i << " is missing";
        if (en_orden) {
            ASSERT_EQ(cual, 0) << "row " << i << " is out of order";
        }
        hay.remove(cual);
    }
}

void CompararRespuesta(const QJsonObject& caso, const RespuestaSql& hay) {
    const QJsonValue error = caso[QStringLiteral("error")];
    if (!error.isUndefined()) {
        ASSERT_TRUE(hay.fallo.has_value()) << "must fail";
        const QJsonArray uno = {error};
        const QJsonArray permitidos = error.isArray() ? error.toArray() : uno;
        const bool cualquiera = error.toString() == QStringLiteral("any");
        EXPECT_TRUE(cualquiera || permitidos.contains(hay.fallo->Nativo())) << hay.fallo->Nativo();
        return;
    }
    ASSERT_FALSE(hay.fallo.has_value()) << hay.fallo->Descripcion().toStdString();
    if (caso.contains(QStringLiteral("rows"))) {
        ASSERT_FALSE(hay.resultados.isEmpty());
        ASSERT_TRUE(hay.resultados.last().conjunto.has_value());
        const bool en_orden = caso[QStringLiteral("sql")].toString().contains(
            QStringLiteral("order by"), Qt::CaseInsensitive);
        CompararFilas(caso[QStringLiteral("rows")].toArray(), hay.resultados.last().conjunto->filas,
                      en_orden);
        return;
    }
    const int afectadas = caso[QStringLiteral("affected")].toInt();
    if (afectadas > 0) {
        ASSERT_FALSE(hay.resultados.isEmpty());
        EXPECT_EQ(hay.resultados.last().afectadas, afectadas);
    }
}

/// A day's orders times every check: twelve orders (the thirteenth that the answers count was left
/// behind by their own group of writes, whose transaction had failed).
bool EsDeOtraBase(const QString& sql) {
    return sql.startsWith(QStringLiteral("SELECT COUNT(*),SUM(Total) FROM Cuenta,Comanda"));
}

}  // namespace

TEST(TsqlGoldenTest, RespondeComoElServidor) {
    BasePrueba base;
    base.Guion(QStringLiteral(QUIMO_RAIZ "/db/schema.sql"));
    base.Lineas(kDatos + QStringLiteral("day-golden/central-before.sql"));
    const QByteArray json = LeerTexto(kDatos + QStringLiteral("tsql-golden/cases.json")).toUtf8();
    const QJsonArray grupos = QJsonDocument::fromJson(json).array();
    ASSERT_FALSE(grupos.isEmpty());
    for (const QJsonValue& grupo : grupos) {
        base.Bien(QStringLiteral("BEGIN TRANSACTION"));
        for (const QJsonValue& caso : grupo[QStringLiteral("statements")].toArray()) {
            const QString sql = caso[QStringLiteral("sql")].toString();
            SCOPED_TRACE(sql.toStdString());
            const RespuestaSql respuesta = base->Ejecutar(sql);
            if (EsDeOtraBase(sql)) {
                ASSERT_FALSE(respuesta.fallo.has_value());
                const Fila& fila = respuesta.resultados.last().conjunto->filas[0];
                EXPECT_EQ(ATexto(fila[0]), QStringLiteral("792"));
                EXPECT_EQ(ATexto(fila[1]), QStringLiteral("207616.8516"));
                continue;
            }
            CompararRespuesta(caso.toObject(), respuesta);
        }
        base.Bien(QStringLiteral("ROLLBACK TRANSACTION"));
    }
}

TEST(SentenciasDelProgramaTest, CorrenOFallanComoDeben) {
    BasePrueba base;
    base.Guion(QStringLiteral(QUIMO_RAIZ "/db/schema.sql"));
    base.Guion(QStringLiteral(QUIMO_RAIZ "/db/procedures.sql"));
    base.Lineas(kDatos + QStringLiteral("day-golden/central-before.sql"));
    const QString archivo = QStringLiteral(QUIMO_RAIZ "/tests/sql/programa/sentencias.sql");
    int corridas = 0;
    for (QString linea : LeerTexto(archivo).split(QLatin1Char('\n'))) {
        if (linea.isEmpty() || linea.startsWith(QLatin1String("-- "))) continue;
        ++corridas;
        int fallo = 0;
        if (linea.startsWith(QLatin1String("! "))) {
            fallo = linea.section(QLatin1Char(' '), 1, 1).toInt();
            linea = linea.section(QLatin1Char(' '), 2);
        }
        const bool queda = linea.startsWith(QLatin1String("+ "));
        if (queda) linea.remove(0, 2);
        if (!queda) base.Bien(QStringLiteral("BEGIN TRANSACTION"));
        const RespuestaSql respuesta = base->Ejecutar(linea);
        EXPECT_EQ(respuesta.fallo ? respuesta.fallo->Nativo() : 0, fallo)
            << linea.toStdString() << "\n"
            << (respuesta.fallo ? respuesta.fallo->Descripcion().toStdString() : "");
        if (!queda) base.Bien(QStringLiteral("ROLLBACK TRANSACTION"));
    }
    EXPECT_GT(corridas, 150);
}

}  // namespace quimo::data
