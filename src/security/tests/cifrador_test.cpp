#include "security/cifrador.h"

#include <algorithm>
#include <array>
#include <memory>

#include <gtest/gtest.h>

#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include "security/cifrado_rc4.h"
#include "security/cls_des.h"
#include "security/cls_rc4.h"
#include "security/pagina_codigos.h"

namespace quimo::security {
namespace {

using namespace Qt::StringLiterals;
using base::Error;

QByteArray Hex(const char* texto) { return QByteArray::fromHex(texto); }

struct Vector {
    const char* clave = nullptr;
    const char* claro = nullptr;
    const char* cifrado = nullptr;
};

// The classic RC4 vectors, and the first bytes of RFC 6229's streams (data of zeros).
constexpr std::array<Vector, 6> kRc4 = {{
    {"4b6579", "506c61696e74657874", "bbf316e8d940af0ad3"},
    {"57696b69", "7065646961", "1021bf0420"},
    {"536563726574", "41747461636b206174206461776e", "45a01f645fc35b383552544b9bf5"},
    {"0102030405", "00000000000000000000000000000000", "b2396305f03dc027ccc3524a0a1118a8"},
    {"0102030405060708090a0b0c0d0e0f10", "00000000000000000000000000000000",
     "9ac7cc9a609d1ef7b2932899cde41b97"},
    {"0102030405060708090a0b0c0d0e0f101112131415161718191a1b1c1d1e1f20",
     "00000000000000000000000000000000", "eaa6bd25880bf93d3f5d1e4ca2611d91"},
}};

TEST(Rc4Test, CoincideConLosVectoresPublicados) {
    const clsRC4 rc4;
    for (const Vector& caso : kRc4) {
        QByteArray bytes = Hex(caso.claro);
        ASSERT_TRUE(rc4.EncryptByte(bytes, DePagina(Hex(caso.clave))));
        EXPECT_EQ(bytes.toHex().toStdString(), caso.cifrado);
    }
}

/// What the openssl command makes of the bytes; the test is skipped where it is missing.
QByteArray OpenSsl(const QStringList& argumentos, const QByteArray& entrada) {
    QProcess openssl;
    openssl.start(u"openssl"_s, QStringList{u"enc"_s, u"-e"_s, u"-provider"_s, u"legacy"_s,
                                            u"-provider"_s, u"default"_s} +
                                    argumentos);
    EXPECT_TRUE(openssl.waitForStarted());
    openssl.write(entrada);
    openssl.closeWriteChannel();
    EXPECT_TRUE(openssl.waitForFinished(20000));
    EXPECT_EQ(openssl.exitCode(), 0) << openssl.readAllStandardError().toStdString();
    return openssl.readAllStandardOutput();
}

QByteArray Azar(QRandomGenerator& azar, qsizetype largo) {
    QByteArray bytes(largo, '\0');
    std::generate(bytes.begin(), bytes.end(),
                  [&azar] { return static_cast<char>(azar.bounded(256)); });
    return bytes;
}

TEST(CifradoresTest, CoincidenConOpensslEnDatosAlAzar) {
    QRandomGenerator azar(20261114);
    const clsRC4 rc4;
    const clsDES des;
    for (const qsizetype largo : {0, 1, 3, 4, 5, 11, 12, 13, 4096, 65536, 200001}) {
        const QByteArray claro = Azar(azar, largo);
        const QByteArray clave16 = Azar(azar, 16);
        QByteArray bytes = claro;
        ASSERT_TRUE(rc4.EncryptByte(bytes, DePagina(clave16)));
        EXPECT_EQ(bytes, OpenSsl({u"-rc4"_s, u"-K"_s, QString::fromLatin1(clave16.toHex())}, claro))
            << "rc4, " << largo;

        QByteArray clave8 = clave16.left(8);
        QByteArray relleno = Hex(QByteArray::number(largo, 16).rightJustified(8, '0')) + claro;
        while (relleno.size() % 8 != 0)
            relleno += '\0';
        bytes = claro;
        ASSERT_TRUE(des.EncryptByte(bytes, DePagina(clave8)));
        EXPECT_EQ(bytes, OpenSsl({u"-des-cbc"_s, u"-nopad"_s, u"-K"_s,
                                  QString::fromLatin1(clave8.toHex()), u"-iv"_s, u"00"_s},
                                 relleno))
            << "des, " << largo;
        ASSERT_TRUE(des.DecryptByte(bytes, DePagina(clave8)));
        EXPECT_EQ(bytes, claro);
    }
}

TEST(DesTest, RehusaLoQueSuCifradoNoEscribio) {
    const clsDES des;
    QByteArray bien = "doce letras!";
    ASSERT_TRUE(des.EncryptByte(bien, u"secreto"_s));
    for (const auto& [que, bytes, clave] :
         {std::tuple{"cut inside a block", bien.chopped(3), u"secreto"_s},
          {"cut between blocks", bien.chopped(8), u"secreto"_s},
          {"a block too many", bien + QByteArray(8, 'x'), u"secreto"_s},
          {"nothing", QByteArray(), u"secreto"_s},
          {"another key", bien, u"otra clave, más larga"_s}}) {
        QByteArray copia = bytes;
        const auto hecho = des.DecryptByte(copia, clave);
        ASSERT_FALSE(hecho) << que;
        EXPECT_EQ(hecho.error().mensaje, "Incorrect size descriptor in DES decryption") << que;
        EXPECT_EQ(copia, bytes) << que;
    }
    // Bytes beyond the eighth count.
    EXPECT_NE(des.EncryptString(u"x"_s, u"12345678a"_s).value(),
              des.EncryptString(u"x"_s, u"12345678b"_s).value());
}

/// Both ciphers, which must behave alike.
class CadaCifradorTest : public testing::TestWithParam<bool> {
protected:
    CadaCifradorTest() {
        if (GetParam()) {
            cifrador_ = std::make_unique<clsRC4>();
        } else {
            cifrador_ = std::make_unique<clsDES>();
        }
        cifrador_->Key(u"clave guardada"_s);
    }
    QString Archivo(const QString& nombre) const { return carpeta_.filePath(nombre); }
    static void Escribir(const QString& archivo, const QByteArray& bytes) {
        QFile salida(archivo);
        ASSERT_TRUE(salida.open(QIODevice::WriteOnly) && salida.write(bytes) == bytes.size());
    }
    static QByteArray Leer(const QString& archivo) {
        QFile entrada(archivo);
        EXPECT_TRUE(entrada.open(QIODevice::ReadOnly));
        return entrada.readAll();
    }

    std::unique_ptr<Cifrador> cifrador_;
    QTemporaryDir carpeta_;
};

TEST_P(CadaCifradorTest, DevuelveCadaLetraDeLaPagina) {
    QString todos;
    for (int byte = 0; byte < 256; ++byte)
        todos += DePagina(QByteArray(1, static_cast<char>(byte)));
    EXPECT_TRUE(CabeEnPagina(todos));
    EXPECT_TRUE(todos.contains(u"€") && todos.contains(u"Ñ") && todos.contains(u"™"));
    for (const Forma forma : {Forma::Bytes, Forma::Base64}) {
        const QString cifrado = cifrador_->EncryptString(todos, {}, forma).value();
        EXPECT_NE(cifrado, todos);
        EXPECT_EQ(cifrado, cifrador_->EncryptString(todos, u"clave guardada"_s, forma).value());
        EXPECT_EQ(cifrador_->DecryptString(cifrado, {}, forma).value(), todos);
        EXPECT_NE(cifrador_->EncryptString(todos, u"otra"_s, forma).value(), cifrado);
    }
    EXPECT_FALSE(CabeEnPagina(u"漢"_s));
    EXPECT_EQ(cifrador_->DecryptString(cifrador_->EncryptString(u"a漢"_s).value()).value(),
              u"a?"_s);
}

TEST_P(CadaCifradorTest, NuncaUsaUnaClaveVacia) {
    cifrador_->Key(QString());
    QByteArray bytes = "x";
    for (const auto& hecho : {cifrador_->EncryptByte(bytes), cifrador_->DecryptByte(bytes)}) {
        ASSERT_FALSE(hecho);
        EXPECT_EQ(hecho.error().codigo, Error::Codigo::Restriccion);
    }
    EXPECT_EQ(bytes, "x");
}

TEST_P(CadaCifradorTest, LosArchivosVuelvenEnterosYDicenSuAvance) {
    QRandomGenerator azar(7);
    for (const qsizetype largo : {qsizetype{0}, qsizetype{10}, qsizetype{300000}}) {
        const QByteArray claro = Azar(azar, largo);
        Escribir(Archivo(u"claro"_s), claro);
        for (const Forma forma : {Forma::Bytes, Forma::Base64}) {
            QVector<int> avance;
            cifrador_->Progress = [&avance](int porcentaje) { avance << porcentaje; };
            ASSERT_TRUE(cifrador_->EncryptFile(Archivo(u"claro"_s), Archivo(u"cifrado"_s),
                                               SiExiste::Reemplazar, {}, forma));
            EXPECT_TRUE(std::is_sorted(avance.begin(), avance.end()));
            EXPECT_EQ(avance.first(), 0);
            EXPECT_EQ(avance.last(), 100);
            EXPECT_EQ(avance.size() > 4, largo > 200000);
            ASSERT_TRUE(cifrador_->DecryptFile(Archivo(u"cifrado"_s), Archivo(u"vuelta"_s),
                                               SiExiste::Reemplazar, {}, forma));
            EXPECT_EQ(Leer(Archivo(u"vuelta"_s)), claro);
        }
    }
    cifrador_->Progress = {};
    // In its own place.
    ASSERT_TRUE(
        cifrador_->EncryptFile(Archivo(u"vuelta"_s), Archivo(u"vuelta"_s), SiExiste::Reemplazar));
    EXPECT_NE(Leer(Archivo(u"vuelta"_s)), Leer(Archivo(u"claro"_s)));
}

TEST_P(CadaCifradorTest, LosArchivosQueNoSePuedenDejanEnPazALosDemas) {
    Escribir(Archivo(u"a"_s), "algo");
    Escribir(Archivo(u"b"_s), "otra cosa, que no es Base64");
    EXPECT_FALSE(cifrador_->EncryptFile(Archivo(u"a"_s), Archivo(u"b"_s), SiExiste::Fallar));
    EXPECT_FALSE(cifrador_->EncryptFile(Archivo(u"no hay"_s), Archivo(u"c"_s), SiExiste::Fallar));
    EXPECT_FALSE(cifrador_->DecryptFile(Archivo(u"b"_s), Archivo(u"c"_s), SiExiste::Fallar, {},
                                        Forma::Base64));
    EXPECT_FALSE(
        cifrador_->EncryptFile(Archivo(u"a"_s), Archivo(u"sin/carpeta"_s), SiExiste::Fallar));
    EXPECT_EQ(Leer(Archivo(u"b"_s)), "otra cosa, que no es Base64");
    EXPECT_FALSE(QFile::exists(Archivo(u"c"_s)));
}

INSTANTIATE_TEST_SUITE_P(Rc4YDes, CadaCifradorTest, testing::Bool());

TEST(Base64Test, UsaElAlfabetoDelEstandar) {
    EXPECT_EQ(Cifrador::Encode64(u"ñandú"_s), u"8WFuZPo="_s);
    EXPECT_EQ(Cifrador::EncodeArray64(Hex("fbff00")), "+/8A");
    EXPECT_EQ(Cifrador::Decode64(u"8WFuZPo="_s).value(), u"ñandú"_s);
    for (const QString& malo : {u"¡no!"_s, u"8WFuZPo=="_s, u"+-8A"_s, u"A"_s})
        EXPECT_FALSE(Cifrador::Decode64(malo)) << malo.toStdString();
}

TEST(CifradoRc4Test, RehusaContrasenasQueNoSePodrianTeclearOtraVez) {
    CifradoRc4 cifrado;
    cifrado.PonerClave(u"Wiki"_s);
    EXPECT_EQ(cifrado.Cifrar(u"pedia"_s).value(), u"ECG/BCA="_s);
    EXPECT_EQ(cifrado.Descifrar(u"ECG/BCA="_s).value(), u"pedia"_s);
    EXPECT_FALSE(cifrado.Cifrar(u"密碼"_s));
    EXPECT_FALSE(cifrado.Cifrar(QString()));
    EXPECT_FALSE(cifrado.Descifrar(u"esto no es Base64"_s));
}

}  // namespace
}  // namespace quimo::security
