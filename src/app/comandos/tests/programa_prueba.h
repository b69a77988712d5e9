#pragma once

#include <gtest/gtest.h>

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

namespace quimo::app {

/// What a run of the program left.
struct Corrida {
    int estado = -1;  ///< -1: it did not end by itself
    QString salida;
    QString error;
};

/// The real quimoctl in a folder of its own; files are named as from inside.
class ProgramaTest : public testing::Test {
protected:
    Corrida Correr(const QStringList& argumentos, const QByteArray& entrada = {}) {
        constexpr int kPlazoMs = 50'000;
        QProcess programa;
        programa.setWorkingDirectory(carpeta_.path());
        QProcessEnvironment entorno = QProcessEnvironment::systemEnvironment();
        entorno.remove(QStringLiteral("QUIMO_CLAVE_ARCHIVO"));
        if (clave_.isEmpty()) {
            entorno.remove(QStringLiteral("QUIMO_CLAVE"));
        } else {
            entorno.insert(QStringLiteral("QUIMO_CLAVE"), clave_);
        }
        programa.setProcessEnvironment(entorno);
        programa.start(QStringLiteral(QUIMO_CTL), argumentos);
        programa.write(entrada);
        programa.closeWriteChannel();
        Corrida corrida;
        if (programa.waitForFinished(kPlazoMs) && programa.exitStatus() == QProcess::NormalExit) {
            corrida.estado = programa.exitCode();
        }
        corrida.salida = QString::fromUtf8(programa.readAllStandardOutput());
        corrida.error = QString::fromUtf8(programa.readAllStandardError());
        return corrida;
    }
    /// The program ends with this status after saying this: a failure on standard error alone.
    void Falla(const QStringList& argumentos, int estado, const QString& mensaje,
               const QByteArray& entrada = {}) {
        const Corrida corrida = Correr(argumentos, entrada);
        const std::string como = argumentos.join(u' ').toStdString();
        EXPECT_EQ(corrida.estado, estado) << como;
        EXPECT_EQ(corrida.salida, QString()) << como;
        EXPECT_TRUE(corrida.error.contains(mensaje)) << como << ": " << corrida.error.toStdString();
    }
    /// It does its work without a complaint; what it said.
    QString Hace(const QStringList& argumentos, const QByteArray& entrada = {}) {
        const Corrida corrida = Correr(argumentos, entrada);
        EXPECT_EQ(corrida.estado, 0) << argumentos.join(u' ').toStdString();
        EXPECT_EQ(corrida.error, QString());
        return corrida.salida;
    }
    void Escribir(const QString& nombre, const QByteArray& bytes) {
        QFile archivo(Ruta(nombre));
        ASSERT_TRUE(archivo.open(QIODevice::WriteOnly));
        ASSERT_EQ(archivo.write(bytes), bytes.size());
    }
    QByteArray Leer(const QString& nombre) const {
        QFile archivo(Ruta(nombre));
        EXPECT_TRUE(archivo.open(QIODevice::ReadOnly)) << nombre.toStdString();
        return archivo.readAll();
    }
    QString Ruta(const QString& nombre) const { return carpeta_.filePath(nombre); }

    QTemporaryDir carpeta_;
    QString clave_;  ///< of the passwords; none when empty
};

}  // namespace quimo::app
