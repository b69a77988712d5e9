#include <functional>
#include <utility>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "dayclose/terminales/archivo_ventas.h"
#include "dayclose/terminales/base_terminal.h"
#include "dayclose/terminales/carpeta_share.h"
#include "dayclose/terminales/valor_terminal.h"
#include "servidor_smb.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {
namespace {

using pruebas::Sha256De;

TEST(FalloArchivo, UnDiscoPropioQueFallaNoEsUnaTerminalSinComunicacion) {
    for (const int error : {EIO, ENXIO, ENODEV}) {
        EXPECT_TRUE(FalloEnDisco(Disco::Terminal, error, u"x"_s).EsDeComunicacion());
        const FalloArchivo propio = FalloEnDisco(Disco::Propio, error, u"x"_s);
        EXPECT_EQ(propio.numero, FalloArchivo::kErrorDispositivo);
        EXPECT_TRUE(propio.propio);
    }
    for (const int error : {ENOENT, EACCES, ENOSPC, EBUSY, ETIMEDOUT}) {
        const FalloArchivo propio = FalloEnDisco(Disco::Propio, error, u"x"_s);
        EXPECT_EQ(propio.numero, FalloDeErrno(error, u"x"_s).numero);
        EXPECT_FALSE(propio.propio);
    }
}

class CarpetaShareTest : public ::testing::Test {
protected:
    void Escribir(const QString& nombre, const QByteArray& contenido) const {
        QDir().mkpath(QFileInfo(carpeta_.filePath(nombre)).path());
        QFile archivo(carpeta_.filePath(nombre));
        ASSERT_TRUE(archivo.open(QIODevice::WriteOnly));
        archivo.write(contenido);
    }
    QByteArray Leer(const QString& nombre) const {
        QFile archivo(carpeta_.filePath(nombre));
        return archivo.open(QIODevice::ReadOnly) ? archivo.readAll() : QByteArray("no está");
    }

    QTemporaryDir carpeta_;
    CarpetaShare share_{carpeta_.filePath(u"red"_s)};
};

TEST_F(CarpetaShareTest, CadaFallaTieneSuNumero) {
    Escribir(u"red/Caja1/Quimo/Quimo_Terminal.mdb"_s, "datos");
    Escribir(u"red/CAJA2/quimo/otro.mdb"_s, "datos");
    Escribir(u"red/CAJA3/quimo"_s, "un archivo, no una carpeta");
    struct Caso {
        QString remoto;
        int existe;  // 1, 0 or the number of the failure
        int traer;   // 0 or the number of the failure
    };
    const Caso casos[] = {
        {u"\\\\CAJA1\\quimo\\Quimo_Terminal.mdb"_s, 1, 0},  // names compare without case
        {u"\\\\CAJA2\\quimo\\Quimo_Terminal.mdb"_s, 0, 53},
        {u"\\\\CAJA2\\quimo\\datos\\Quimo_Terminal.mdb"_s, 0, 76},
        {u"\\\\CAJA2\\otro\\Quimo_Terminal.mdb"_s, 76, 76},
        {u"\\\\CAJA3\\quimo\\Quimo_Terminal.mdb"_s, 76, 76},
        {u"\\\\CAJA9\\quimo\\Quimo_Terminal.mdb"_s, 52, 52},
        {u"\\\\CAJA1\\..\\CAJA2\\Quimo_Terminal.mdb"_s, 52, 52},
        {u"\\\\\\quimo\\Quimo_Terminal.mdb"_s, 52, 52},
    };
    for (const Caso& caso : casos) {
        const auto existe = share_.Existe(caso.remoto);
        EXPECT_EQ(existe ? static_cast<int>(*existe) : existe.error().numero, caso.existe)
            << caso.remoto.toStdString();
        const auto traido = share_.Traer(caso.remoto, carpeta_.filePath(u"local"_s));
        EXPECT_EQ(traido ? 0 : traido.error().numero, caso.traer) << caso.remoto.toStdString();
    }
    EXPECT_EQ(Leer(u"local"_s), "datos");
}

TEST_F(CarpetaShareTest, LoQueOtroTieneAbiertoEs70YQuedaComoEstaba) {
    const QString remoto = u"\\\\CAJA1\\quimo\\Quimo_Terminal.mdb"_s;
    for (const bool en_ldb : {false, true}) {
        for (const bool con_flock : {false, true}) {
            if (en_ldb && con_flock) continue;
            Escribir(u"red/CAJA1/quimo/Quimo_Terminal.mdb"_s, "datos");
            Escribir(u"red/CAJA1/quimo/Quimo_Terminal.ldb"_s, "usuario");
            Escribir(u"nuevo"_s, "nueva");
            const QString bloqueado =
                carpeta_.filePath(en_ldb ? u"red/CAJA1/quimo/Quimo_Terminal.ldb"_s
                                         : u"red/CAJA1/quimo/Quimo_Terminal.mdb"_s);
            const int fd = ::open(QFile::encodeName(bloqueado).constData(), O_RDWR | O_CLOEXEC);
            ASSERT_GE(fd, 0);
            struct flock candado {};
            candado.l_type = F_WRLCK;
            candado.l_whence = SEEK_SET;
            ASSERT_EQ(con_flock ? ::flock(fd, LOCK_EX) : ::fcntl(fd, F_OFD_SETLK, &candado), 0);
            const auto traido = share_.Traer(remoto, carpeta_.filePath(u"local"_s));
            const QString datos = Sha256De("datos");
            const auto llevado = share_.Llevar(carpeta_.filePath(u"nuevo"_s), remoto, datos);
            ::close(fd);
            ASSERT_FALSE(traido) << en_ldb << con_flock;
            ASSERT_FALSE(llevado) << en_ldb << con_flock;
            EXPECT_EQ(traido.error().numero, 70);
            EXPECT_EQ(llevado.error().numero, 70);
            EXPECT_EQ(Leer(u"red/CAJA1/quimo/Quimo_Terminal.mdb"_s), "datos");
            EXPECT_TRUE(share_.Llevar(carpeta_.filePath(u"nuevo"_s), remoto, datos));
            EXPECT_EQ(Leer(u"red/CAJA1/quimo/Quimo_Terminal.mdb"_s), "nueva");
        }
    }
}

TEST_F(CarpetaShareTest, LoQueSeVendeHastaElUltimoMomentoNoSeReemplaza) {
    const QString nombre = u"red/CAJA1/quimo/Quimo_Terminal.mdb"_s;
    const QString base = carpeta_.filePath(nombre);
    const QString ldb = carpeta_.filePath(u"red/CAJA1/quimo/Quimo_Terminal.ldb"_s);
    const QString resumen = Sha256De("vieja");
    int candado = -1;
    struct Caso {
        const char* nombre;
        QByteArray antes;  // empty: no file
        QString esperado;
        std::function<void()> mientras;  // while the new file is written
        int numero;
        QByteArray queda;
    };
    const Caso casos[] = {
        {"nadie vende", "vieja", resumen, {}, 0, "nueva"},
        {"vende", "vieja", resumen, [&] { Escribir(nombre, "viejaY"); }, 3197, "viejaY"},
        {"cambia sin crecer", "vieja", resumen, [&] { Escribir(nombre, "viejA"); }, 3197, "viejA"},
        {"vendió antes", "viejaX", resumen, {}, 3197, "viejaX"},
        {"abre", "vieja", resumen,
         [&] {
             candado = ::open(QFile::encodeName(base).constData(), O_RDWR | O_CLOEXEC);
             ::flock(candado, LOCK_SH);
         },
         70, "vieja"},
        {"abre su .ldb", "vieja", resumen,
         [&] {
             Escribir(u"red/CAJA1/quimo/Quimo_Terminal.ldb"_s, "usuario");
             candado = ::open(QFile::encodeName(ldb).constData(), O_RDWR | O_CLOEXEC);
             struct flock cerrojo {};
             cerrojo.l_type = F_WRLCK;
             cerrojo.l_whence = SEEK_SET;
             ::fcntl(candado, F_OFD_SETLK, &cerrojo);
         },
         70, "vieja"},
        {"desaparece", "vieja", resumen, [&] { QFile::remove(base); }, 3197, "no está"},
        {"no había", {}, QString(), {}, 0, "nueva"},
        {"aparece", {}, QString(), [&] { Escribir(nombre, "otra"); }, 3197, "otra"},
        {"había", "vieja", QString(), {}, 3197, "vieja"},
        {"ya no hay", {}, resumen, {}, 3197, "no está"},
    };
    Escribir(u"nuevo"_s, "nueva");
    for (const Caso& caso : casos) {
        QFile::remove(base);
        QFile::remove(ldb);
        Escribir(nombre + u"-otro"_s, "ajeno");
        if (!caso.antes.isEmpty()) Escribir(nombre, caso.antes);
        bool completa = false;
        share_.antes_de_reemplazar = [&] {
            completa = Leer(nombre + u".parcial"_s) == "nueva";
            if (caso.mientras) caso.mientras();
        };
        const auto llevado =
            share_.Llevar(carpeta_.filePath(u"nuevo"_s), u"\\\\CAJA1\\quimo\\Quimo_Terminal.mdb"_s,
                          caso.esperado);
        if (candado >= 0) ::close(std::exchange(candado, -1));
        EXPECT_EQ(llevado ? 0 : llevado.error().numero, caso.numero) << caso.nombre;
        EXPECT_TRUE(completa) << caso.nombre;
        EXPECT_EQ(Leer(nombre), caso.queda) << caso.nombre;
        EXPECT_FALSE(QFile::exists(base + u".parcial"_s)) << caso.nombre;
        EXPECT_EQ(Leer(nombre + u"-otro"_s), "ajeno");
    }
    const FalloArchivo fallo = FalloDeNumero(FalloArchivo::kCambiado, base);
    EXPECT_FALSE(fallo.EsDeComunicacion()) << "it must not be taken for a terminal out of reach";
}

TEST_F(CarpetaShareTest, LoQueCambiaMientrasSeCopiaEs70) {
    // Same size, and within the tick of the clock that the file's time shows.
    const QString base = carpeta_.filePath(u"base.mdb"_s);
    for (const QByteArray& mientras :
         {QByteArray("viejA"), QByteArray("viejaY"), QByteArray("v")}) {
        Escribir(u"base.mdb"_s, "vieja");
        const auto leido = RecorrerArchivo(
            base,
            [&](const char*, qsizetype) -> ResultadoArchivo<void> {
                Escribir(u"base.mdb"_s, mientras);
                return {};
            },
            Candados::Respetar);
        ASSERT_FALSE(leido) << mientras.toStdString();
        EXPECT_EQ(leido.error().numero, 70);
    }
}

TEST_F(CarpetaShareTest, LoQueDejoUnProcesoInterrumpidoSeBorra) {
    const QStringList restos = {
        u"dir/Quimo_Terminal.mdb.parcial"_s,       u"dir/Quimo_Terminal.mdb.4711-0.tmp"_s,
        u"dir/CAJA1/Quimo_Terminal.mdb.parcial"_s, u"dir/CAJA1/revision.tmp"_s,
        u"dir/CAJA1/revision.tmp.parcial"_s,       u"dir/archivo/recibido.tmp"_s,
        u"dir/archivo/recibido.tmp.parcial"_s,     u"dir/archivo/resumen.tmp.parcial"_s};
    const QStringList buenos = {u"dir/Plantilla.mdb"_s, u"dir/notas.tmp"_s,
                                u"dir/CAJA1/Quimo_Terminal.mdb"_s,
                                u"dir/archivo/14112026/CAJA1/Quimo_Terminal-1.mdb"_s};
    for (const QString& nombre : restos + buenos)
        Escribir(nombre, "x");
    BorrarRestos(carpeta_.filePath(u"dir"_s));
    for (const QString& nombre : restos)
        EXPECT_FALSE(QFile::exists(carpeta_.filePath(nombre))) << nombre.toStdString();
    for (const QString& nombre : buenos)
        EXPECT_TRUE(QFile::exists(carpeta_.filePath(nombre))) << nombre.toStdString();
}

TEST_F(CarpetaShareTest, ElDiscoLlenoNoTocaElDestino) {
    Escribir(u"red/CAJA1/quimo/Quimo_Terminal.mdb"_s, "vieja");
    // /dev/full refuses every byte; the copy that would stand beside the destination is put there.
    const QString parcial = carpeta_.filePath(u"red/CAJA1/quimo/Quimo_Terminal.mdb.parcial"_s);
    ASSERT_TRUE(QFile::link(u"/dev/full"_s, parcial));
    Escribir(u"nuevo"_s, QByteArray(100000, 'n'));
    const auto llevado =
        share_.Llevar(carpeta_.filePath(u"nuevo"_s), u"\\\\CAJA1\\quimo\\Quimo_Terminal.mdb"_s,
                      Sha256De("vieja"));
    ASSERT_FALSE(llevado);
    EXPECT_EQ(llevado.error().numero, 61);
    EXPECT_EQ(Leer(u"red/CAJA1/quimo/Quimo_Terminal.mdb"_s), "vieja");
    EXPECT_FALSE(QFile::exists(parcial));
}

TEST_F(CarpetaShareTest, ElArchivoGuardaCadaVersionUnaVez) {
    const ArchivoVentas archivo(carpeta_.filePath(u"archivo"_s));
    const QString remoto = u"\\\\CAJA1\\quimo\\Quimo_Terminal.mdb"_s;
    QStringList rutas;
    for (const QByteArray& contenido : {QByteArray("uno"), QByteArray("dos"), QByteArray("uno")}) {
        Escribir(u"red/CAJA1/quimo/Quimo_Terminal.mdb"_s, contenido);
        const auto recibido = archivo.Recibir(share_, remoto, u"14112026"_s, u"CAJA1"_s);
        ASSERT_TRUE(recibido);
        EXPECT_EQ(recibido->nuevo, rutas.size() < 2);
        EXPECT_EQ(QDir(carpeta_.filePath(u"archivo"_s)).entryList(QDir::Files), QStringList());
        rutas << recibido->ruta;
    }
    EXPECT_EQ(rutas[0], rutas[2]);
    EXPECT_EQ(Leer(u"archivo/14112026/CAJA1/Quimo_Terminal-2.mdb.sha256"_s),
              "c1299854f2b209632ab22aeb848c24c2b02da4b37ecf93a830ee9c7f6f809924"
              "  Quimo_Terminal-2.mdb\n");
    // A kept file that has rotted no longer counts as kept.
    Escribir(u"archivo/14112026/CAJA1/Quimo_Terminal-1.mdb"_s, "otro");
    const auto otra = archivo.Recibir(share_, remoto, u"14112026"_s, u"CAJA1"_s);
    ASSERT_TRUE(otra);
    EXPECT_TRUE(otra->nuevo);
    EXPECT_TRUE(otra->ruta.endsWith(u"Quimo_Terminal-3.mdb"_s));
}

TEST(LiteralDeTerminal, CadaFormaSeEscribeASuManera) {
    const auto fecha = jet::Fecha::DeCivil({2026, 11, 14, 21, 36, 8, 0});
    ASSERT_TRUE(fecha);
    struct Caso {
        jet::Valor valor;
        Forma forma;
        QString literal;
    };
    const Caso casos[] = {
        {std::monostate(), Forma::Texto, u"NULL"_s},
        {std::monostate(), Forma::FechaHora, u"NULL"_s},
        {true, Forma::Numero, u"1"_s},
        {std::int32_t{-5}, Forma::Numero, u"-5"_s},
        {base::Dinero::DeDiezmilesimas(12345), Forma::Numero, u"1.2345"_s},
        {std::u16string(u"O'Brien \"x\""), Forma::Texto, u"'O''Brien \"x\"'"_s},
        {std::u16string(), Forma::Texto, u"''"_s},
        {*fecha, Forma::FechaHora, u"'14/11/2026 21:36:08'"_s},
        {*fecha, Forma::FechaMedianoche, u"'14/11/2026 00:00:00'"_s},
        {*fecha, Forma::FechaMinutosDoble, u"'14/11/2026 21:36:36'"_s},
    };
    for (const Caso& caso : casos) {
        const auto literal = LiteralDeTerminal(caso.valor, caso.forma);
        ASSERT_TRUE(literal);
        EXPECT_EQ(*literal, caso.literal);
    }
    EXPECT_FALSE(LiteralDeTerminal(jet::Fecha{1e12}, Forma::FechaHora));
}

TEST(ValorTerminal, LoQueNoCabeNoSeGuarda) {
    using Tipo = jet::TipoColumna;
    const QVariant decimal = QVariant::fromValue(*base::Decimal::DeTexto("18.75"));
    EXPECT_EQ(AValorTerminal(decimal, Tipo::Doble), jet::Valor(18.75));
    EXPECT_EQ(AValorTerminal(QVariant(0), Tipo::Moneda), jet::Valor(base::Dinero()));
    const base::Dinero debe = base::Dinero::DeDiezmilesimas(-12345);
    EXPECT_EQ(AValorTerminal(QVariant::fromValue(debe), Tipo::Moneda), jet::Valor(debe));
    EXPECT_EQ(AValorTerminal(QVariant(true), Tipo::Entero), jet::Valor(1));
    EXPECT_EQ(AValorTerminal(QVariant(7), Tipo::Logico), jet::Valor(true));
    EXPECT_EQ(AValorTerminal(QVariant(), Tipo::Texto), jet::Valor(std::monostate()));
    EXPECT_EQ(AValorTerminal(QVariant(u"ñ"_s), Tipo::Texto), jet::Valor(std::u16string(u"ñ")));
    EXPECT_FALSE(AValorTerminal(decimal, Tipo::Largo));
    EXPECT_FALSE(AValorTerminal(QVariant(40000), Tipo::Entero));
    EXPECT_FALSE(AValorTerminal(QVariant(-1), Tipo::Byte));
    EXPECT_FALSE(AValorTerminal(QVariant(u"12"_s), Tipo::Largo));
    EXPECT_FALSE(AValorTerminal(QVariant(1), Tipo::Fecha));
}

}  // namespace
}  // namespace quimo::dayclose
