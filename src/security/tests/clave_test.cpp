#include "security/clave.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace quimo::security {
namespace {

using namespace Qt::StringLiterals;

class ClaveTest : public testing::Test {
protected:
    void SetUp() override { Limpiar(); }
    void TearDown() override { Limpiar(); }
    static void Limpiar() {
        qunsetenv("QUIMO_CLAVE");
        qunsetenv("QUIMO_CLAVE_ARCHIVO");
    }
    /// The key of a file with these contents and permissions, or the message.
    QString ConArchivo(const QByteArray& contenido, mode_t modo) {
        const QString archivo = carpeta_.filePath(u"clave"_s);
        QFile::remove(archivo);
        QFile salida(archivo);
        EXPECT_TRUE(salida.open(QIODevice::WriteOnly) && salida.write(contenido) >= 0);
        salida.close();
        EXPECT_EQ(chmod(QFile::encodeName(archivo).constData(), modo), 0);
        qputenv("QUIMO_CLAVE_ARCHIVO", archivo.toUtf8());
        return Texto();
    }
    static QString Texto() {
        const auto clave = LeerClave();
        return clave ? *clave : u"! "_s + QString::fromStdString(clave.error().mensaje);
    }

    QTemporaryDir carpeta_;
};

TEST_F(ClaveTest, VieneDelEntornoODeUnArchivoDeSuDueno) {
    EXPECT_TRUE(Texto().startsWith(u"! Falta la clave"_s));
    struct Caso {
        QByteArray contenido;
        mode_t modo;
        QString clave;  // empty: refused
    };
    for (const Caso& caso : {Caso{"clave de prueba\nmás\n", 0600, u"clave de prueba"_s},
                             {"sin salto", 0400, u"sin salto"_s},
                             {"  con blancos \r\n", 0600, u"con blancos"_s},
                             {"para todos", 0644, {}},
                             {"para el grupo", 0640, {}},
                             {"", 0600, {}},
                             {"\nsegunda", 0600, {}},
                             {"漢字", 0600, {}}}) {
        const QString leida = ConArchivo(caso.contenido, caso.modo);
        if (caso.clave.isEmpty()) {
            EXPECT_TRUE(leida.startsWith(u"! "_s)) << caso.contenido.toStdString();
        } else {
            EXPECT_EQ(leida, caso.clave);
        }
    }
    qputenv("QUIMO_CLAVE", "del entorno");
    EXPECT_EQ(Texto(), u"del entorno"_s);
    // Set but empty is a mistake, not a reason to look elsewhere.
    qputenv("QUIMO_CLAVE", "");
    EXPECT_TRUE(Texto().startsWith(u"! "_s));
    qunsetenv("QUIMO_CLAVE");
    qputenv("QUIMO_CLAVE_ARCHIVO", carpeta_.path().toUtf8());
    EXPECT_TRUE(Texto().startsWith(u"! "_s));
}

TEST_F(ClaveTest, UnArchivoNuevoTieneUnaClaveAlAzarYNoReemplazaNada) {
    const QString uno = carpeta_.filePath(u"uno"_s);
    const QString dos = carpeta_.filePath(u"dos"_s);
    ASSERT_TRUE(CrearArchivoClave(uno));
    ASSERT_TRUE(CrearArchivoClave(dos));
    const QString clave = LeerClaveDe(uno).value();
    EXPECT_GE(clave.size(), 40);
    EXPECT_NE(clave, LeerClaveDe(dos).value());
    EXPECT_FALSE(CrearArchivoClave(uno));
    EXPECT_EQ(LeerClaveDe(uno).value(), clave);
    EXPECT_FALSE(CrearArchivoClave(carpeta_.filePath(u"no/hay"_s)));
    EXPECT_EQ(QDir(carpeta_.path()).entryList(QDir::Files), QStringList({u"dos"_s, u"uno"_s}));
}

}  // namespace
}  // namespace quimo::security
