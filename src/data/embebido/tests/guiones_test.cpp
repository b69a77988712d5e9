// Scripts of tests/sql: statements and what a T-SQL server answers to them.
//
// A case is a statement of one or more lines, then its answers, then a blank line:
//   > a | b | NULL       one row, columns apart by " | "; several rows in order
//   > (nothing)          a result set without rows
//   # 3                  rows written
//   ! 2627 text          the native number of an error, and a piece of its description
//   * text               a message
// Lines that begin with "--" are comments. Each file runs on an empty database.

#include <QDir>

#include "base_prueba.h"

namespace quimo::data {

namespace {

struct Caso {
    int linea = 0;
    QString sql;
    QStringList respuestas;
};

bool EsRespuesta(const QString& linea) {
    return linea.size() >= 2 && QStringLiteral(">#!*").contains(linea[0]) &&
           linea[1] == QLatin1Char(' ');
}

QVector<Caso> LeerCasos(const QString& texto) {
    QVector<Caso> casos;
    Caso caso;
    int numero = 0;
    const auto cerrar = [&] {
        if (!caso.sql.trimmed().isEmpty()) casos.append(caso);
        caso = Caso();
    };
    for (const QString& linea : texto.split(QLatin1Char('\n'))) {
        ++numero;
        if (linea.trimmed().isEmpty()) {
            cerrar();
        } else if (EsRespuesta(linea)) {
            caso.respuestas.append(linea);
        } else if (!linea.startsWith(QLatin1String("--"))) {
            if (caso.sql.isEmpty()) caso.linea = numero;
            caso.sql += linea + QLatin1Char('\n');
        }
    }
    cerrar();
    return casos;
}

/// What a text left, written as the scripts write it.
QStringList Escribir(const RespuestaSql& respuesta) {
    QStringList salida;
    for (const ErrorProveedor& mensaje : respuesta.mensajes) {
        salida.append(QStringLiteral("* ") + mensaje.descripcion.mid(47));
    }
    for (const ResultadoSql& resultado : respuesta.resultados) {
        if (!resultado.conjunto) {
            if (resultado.afectadas >= 0)
                salida.append(QStringLiteral("# %1").arg(resultado.afectadas));
            continue;
        }
        if (resultado.conjunto->filas.isEmpty()) salida.append(QStringLiteral("> (nothing)"));
        for (const Fila& fila : resultado.conjunto->filas) {
            QStringList celdas;
            for (const QVariant& valor : fila)
                celdas.append(ATexto(valor));
            salida.append(QStringLiteral("> ") + celdas.join(QStringLiteral(" | ")));
        }
    }
    if (!respuesta.fallo) return salida;
    for (const ErrorProveedor& error : respuesta.fallo->errores) {
        salida.append(QStringLiteral("! %1 %2").arg(error.nativo).arg(error.descripcion.mid(47)));
    }
    return salida;
}

bool Concuerda(const QString& quiere, const QString& hay) {
    if (!quiere.startsWith(QLatin1Char('!'))) return quiere == hay;
    const QString numero = quiere.section(QLatin1Char(' '), 0, 1);
    const QString texto = quiere.section(QLatin1Char(' '), 2);
    return hay.section(QLatin1Char(' '), 0, 1) == numero && hay.contains(texto);
}

void Comparar(const Caso& caso, const QStringList& hay) {
    bool iguales = caso.respuestas.size() == hay.size();
    for (int i = 0; iguales && i < hay.size(); ++i)
        iguales = Concuerda(caso.respuestas[i], hay[i]);
    EXPECT_TRUE(iguales) << "line " << caso.linea << "\n"
                         << caso.sql.toStdString() << "wanted:\n"
                         << caso.respuestas.join(QLatin1Char('\n')).toStdString() << "\ngot:\n"
                         << hay.join(QLatin1Char('\n')).toStdString();
}

class GuionesTest : public testing::TestWithParam<std::string> {};

TEST_P(GuionesTest, ConcuerdaConElServidor) {
    BasePrueba base;
    const QString archivo =
        QStringLiteral(QUIMO_RAIZ "/tests/sql/") + QString::fromStdString(GetParam());
    const QVector<Caso> casos = LeerCasos(LeerTexto(archivo));
    ASSERT_FALSE(casos.isEmpty());
    for (const Caso& caso : casos)
        Comparar(caso, Escribir(base->Ejecutar(caso.sql)));
}

std::vector<std::string> Guiones() {
    std::vector<std::string> nombres;
    const QStringList archivos = QDir(QStringLiteral(QUIMO_RAIZ "/tests/sql"))
                                     .entryList({QStringLiteral("*.sql")}, QDir::Files, QDir::Name);
    for (const QString& nombre : archivos)
        nombres.push_back(nombre.toStdString());
    return nombres;
}

INSTANTIATE_TEST_SUITE_P(Sql, GuionesTest, testing::ValuesIn(Guiones()));

}  // namespace

}  // namespace quimo::data
