#include "app/comandos/comando.h"
#include "programa_prueba.h"

using namespace Qt::StringLiterals;

namespace quimo::app {
namespace {

constexpr qsizetype kPagina = 4096;

/// A terminal's file, spoilt anew by each case, and mdb with words about it.
class ComandoMdbTest : public ProgramaTest {
protected:
    void SetUp() override {
        QFile original(QStringLiteral(QUIMO_TEST_DATA "/terminals/BARRA/Quimo_Terminal.mdb"));
        ASSERT_TRUE(original.open(QIODevice::ReadOnly));
        bytes_ = original.readAll();
        Escribir(u"t.mdb"_s, bytes_);
    }
    Estado Mdb(const QString& accion, const QStringList& palabras) {
        return static_cast<Estado>(Correr(QStringList{u"mdb"_s, accion} + palabras).estado);
    }
    void Danar(qsizetype lugar, const QByteArray& bytes) {
        bytes_.replace(lugar, bytes.size(), bytes);
        Escribir(u"t.mdb"_s, bytes_);
    }
    QByteArray bytes_;
};

TEST_F(ComandoMdbTest, UnArchivoSanoSeListaSeVuelcaYSeVerifica) {
    EXPECT_EQ(Hace({u"mdb"_s, u"verificar"_s, u"t.mdb"_s}), u"El archivo está bien.\n"_s);
    const QStringList tablas = Hace({u"mdb"_s, u"tablas"_s, u"t.mdb"_s}).split(u'\n');
    EXPECT_TRUE(tablas.contains(u"Comanda\t60"_s) && tablas.contains(u"Pago\t63"_s));
    const QString pagos = Hace({u"mdb"_s, u"volcar"_s, u"t.mdb"_s, u"Pago"_s});
    EXPECT_EQ(pagos.count(u"\"ID_Pago\": "_s), 63);
    EXPECT_TRUE(pagos.contains(u"\"Monto_Pago\": \"716.5000\""_s));
    const QString todo = Hace({u"mdb"_s, u"volcar"_s, u"t.mdb"_s});
    EXPECT_TRUE(todo.contains(pagos.section(u'\n', 1, 1)));
    EXPECT_EQ(todo.count(u"\"ID_Pago\": "_s), 63);
    EXPECT_EQ(Leer(u"t.mdb"_s), bytes_) << "none of them writes";
}

TEST_F(ComandoMdbTest, LoQueNoEsUnaBaseSeDiceConCadaAccion) {
    Escribir(u"vacio"_s, {});
    Escribir(u"pagina"_s, bytes_.left(kPagina));
    Escribir(u"a-media"_s, bytes_.left(48 * kPagina + 100));
    Escribir(u"cortado"_s, bytes_.left(48 * kPagina));
    Escribir(u"texto"_s, QByteArray(3 * kPagina, 'x'));
    const struct {
        QString archivo;
        QString mensaje;
    } casos[] = {
        {u"nada"_s, u"No se encuentra el archivo nada."_s},
        {u"."_s, u"No es un archivo: "_s},
        {u"vacio"_s, u"no es una base de datos: mide 0 bytes."_s},
        {u"pagina"_s, u"El archivo "_s},
        {u"a-media"_s, u"está dañado: está cortado a media página."_s},
        {u"texto"_s, u"El archivo "_s},
    };
    for (const auto& caso : casos) {
        for (const QString& accion : {u"tablas"_s, u"volcar"_s, u"verificar"_s})
            Falla({u"mdb"_s, accion, caso.archivo}, kFallo, caso.mensaje);
        const Estado reparado = Mdb(u"reparar"_s, {caso.archivo, u"copia.mdb"_s});
        EXPECT_EQ(reparado, caso.archivo == u"a-media"_s ? kIncompleto : kFallo)
            << caso.archivo.toStdString();
        EXPECT_EQ(QFile::remove(Ruta(u"copia.mdb"_s)), reparado != kFallo);
    }
    // Cut between two pages it can be opened, and what is missing is missed.
    EXPECT_EQ(Mdb(u"verificar"_s, {u"cortado"_s}), kFallo);
    EXPECT_EQ(Mdb(u"volcar"_s, {u"cortado"_s}), kFallo);
    Falla({u"mdb"_s, u"volcar"_s, u"t.mdb"_s, u"NoHay"_s}, kFallo,
          u"no tiene una tabla llamada NoHay."_s);
    for (const QStringList& palabras : {QStringList{u"abrir"_s, u"t.mdb"_s},
                                        {u"tablas"_s, u"t.mdb"_s, u"Pago"_s},
                                        {u"verificar"_s, u"t.mdb"_s, u"Pago"_s},
                                        {u"reparar"_s, u"t.mdb"_s}})
        Falla(QStringList{u"mdb"_s} + palabras, kMalUso,
              u"Uso: quimoctl mdb tablas|volcar|verificar ARCHIVO"_s);
}

TEST_F(ComandoMdbTest, UnByteVolteadoEnCadaPaginaNuncaDaUnaTablaDeMas) {
    const QByteArray sano = bytes_;
    const QStringList tablas = Hace({u"mdb"_s, u"tablas"_s, u"t.mdb"_s}).split(u'\n');
    int fallas = 0;
    int paginas = 0;
    for (qsizetype pagina = 0; pagina * kPagina < sano.size(); pagina += 13) {
        bytes_ = sano;
        // The kind of the page: whoever needs this page must miss it.
        Danar(pagina * kPagina, QByteArray(1, static_cast<char>(sano[pagina * kPagina] ^ 0x55)));
        ++paginas;
        const Corrida verificada = Correr({u"mdb"_s, u"verificar"_s, u"t.mdb"_s});
        const Corrida listada = Correr({u"mdb"_s, u"tablas"_s, u"t.mdb"_s});
        SCOPED_TRACE(pagina);
        ASSERT_TRUE(verificada.estado == kHecho || verificada.estado == kFallo);
        EXPECT_EQ(verificada.estado == kFallo, !verificada.error.isEmpty());
        fallas += verificada.estado == kFallo ? 1 : 0;
        if (listada.estado == kHecho) {
            EXPECT_EQ(listada.salida.split(u'\n'), tablas);
        } else {
            EXPECT_EQ(listada.estado, kFallo);
            EXPECT_TRUE(listada.error.contains(u"está dañado"_s) ||
                        listada.error.contains(u"no es una base de datos"_s))
                << listada.error.toStdString();
        }
    }
    // The few others are free pages, whose kind says nothing.
    EXPECT_GT(fallas, paginas * 2 / 3);
}

TEST_F(ComandoMdbTest, RepararDiceConSuEstadoSiLaCopiaEstaCompleta) {
    const QStringList copia = {u"t.mdb"_s, u"sana.mdb"_s};
    Danar(kPagina, QByteArray(kPagina, '\0'));  // the map of free pages
    EXPECT_EQ(Mdb(u"verificar"_s, {u"t.mdb"_s}), kFallo);
    EXPECT_EQ(Mdb(u"reparar"_s, copia), kHecho);
    EXPECT_EQ(Mdb(u"verificar"_s, {u"sana.mdb"_s}), kHecho);
    Danar(120 * kPagina, QByteArray(80 * kPagina, '\0'));
    EXPECT_EQ(Mdb(u"reparar"_s, copia), kIncompleto);
    EXPECT_EQ(Mdb(u"verificar"_s, {u"sana.mdb"_s}), kHecho);
    Danar(0, QByteArray(kPagina, '\0'));
    EXPECT_EQ(Mdb(u"reparar"_s, copia), kFallo);
    EXPECT_EQ(Mdb(u"reparar"_s, {u"t.mdb"_s}), kMalUso);
}

}  // namespace
}  // namespace quimo::app
