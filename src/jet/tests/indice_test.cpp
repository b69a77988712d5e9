// Index leaves at their edges, and texts as other programs store them.

#include "apoyo.h"
#include "jet/catalogo.h"
#include "jet/fila.h"
#include "jet/pagina_indice.h"

namespace quimo::jet::prueba {
namespace {

struct CasoTexto {
    const char* por_que;
    Binario bytes;
    std::u16string_view texto;
};

/// 00 switches between one byte and two bytes a letter, as often as it likes.
TEST(Textos, LosComprimidosCambianDeModo) {
    const CasoTexto casos[] = {
        {"plano", {'a', 0, 0xAC, 0x20}, u"a€"},
        {"plano de largo impar", {'a', 0, 'b'}, u"a"},
        {"vacío", {0xFF, 0xFE}, u""},
        {"un modo", {0xFF, 0xFE, 'a', 0xF1}, u"añ"},
        {"una vez", {0xFF, 0xFE, 'a', 0, 0xAC, 0x20}, u"a€"},
        {"dos veces", {0xFF, 0xFE, 'a', 0, 0xAC, 0x20, 0, 'b', 'c'}, u"a€bc"},
        {"tres veces",
         {0xFF, 0xFE, 'a', 0, 0xAC, 0x20, 0, 'b', 0, 0x14, 0x20, 0x26, 0x20},
         u"a€b—…"},
        {"desde el principio", {0xFF, 0xFE, 0, 0xAC, 0x20, 0, 'z'}, u"€z"},
        {"dos cambios seguidos", {0xFF, 0xFE, 'a', 0, 0, 'b'}, u"ab"},
        {"impar en modo doble", {0xFF, 0xFE, 0, 0xAC, 0x20, 0x33, 0, 'b'}, u"€b"},
    };
    for (const CasoTexto& caso : casos) {
        std::u16string texto = u"de antes";
        DescifrarTexto(caso.bytes, texto);
        EXPECT_EQ(AUtf8(texto), AUtf8(caso.texto)) << caso.por_que;
    }
}

/// A unique index of several leaves, and the places where each leaf begins.
class HojasTest : public testing::Test {
protected:
    static constexpr int kFilas = 400;
    void SetUp() override {
        tabla_ = Exigir(base_.CrearTabla(
            {.nombre = "T",
             .columnas = {{.nombre = "N", .tipo = TipoColumna::Largo},
                          {.nombre = "B", .tipo = TipoColumna::Binario, .largo = 40}},
             .indices = {{.nombre = "N", .columnas = {{"N"}, {"B"}}, .unico = true}}}));
        for (int i = 0; i < kFilas; ++i)
            ids_.push_back(Exigir(tabla_->Insertar(FilaDe(i))));
    }
    static std::vector<Valor> FilaDe(int i) { return {i * 7 % kFilas, Binario(40, 9)}; }

    /// Pages of the leaves, left to right.
    std::vector<std::uint32_t> Hojas() {
        const auto almacen = Exigir(Almacen::DeImagen(Exigir(base_.Imagen())));
        const auto esquema = Exigir(BuscarEsquema(*almacen, "T"));
        PaginaIndice pagina;
        std::uint32_t numero = esquema->reales[0].raiz;
        for (Exigir(pagina.Leer(*almacen, numero, esquema->pagina)); !pagina.hoja;
             Exigir(pagina.Leer(*almacen, numero, esquema->pagina))) {
            numero = pagina.Entradas() > 0 ? pagina.Hijo(0) : pagina.cola;
        }
        std::vector<std::uint32_t> hojas = {numero};
        for (; pagina.siguiente != 0; hojas.push_back(numero)) {
            numero = pagina.siguiente;
            Exigir(pagina.Leer(*almacen, numero, esquema->pagina));
        }
        return hojas;
    }

    Carpeta carpeta_;
    BaseDatos base_ = Exigir(BaseDatos::Crear(carpeta_ / "h.mdb"));
    std::optional<Tabla> tabla_;
    std::vector<IdFila> ids_;
};

TEST_F(HojasTest, CadaEntradaSeHallaSeRepiteYSeRecorre) {
    ASSERT_GT(Hojas().size(), 3U);
    for (int i = 0; i < kFilas; ++i) {
        const auto clave = FilaDe(i);
        const IdFila id = ids_[static_cast<std::size_t>(i)];
        ASSERT_EQ(Exigir(tabla_->Buscar("N", clave)), std::vector<IdFila>{id});
        ASSERT_EQ(tabla_->Insertar(clave).error().codigo, Error::Codigo::Restriccion) << i;
        CursorIndice desde = Exigir(tabla_->RecorrerIndice("N", {.desde = clave, .hasta = {}}));
        ASSERT_TRUE(Exigir(desde.Siguiente()));
        ASSERT_EQ(desde.Id(), id);
    }
    int anterior = -1;
    CursorIndice todas = Exigir(tabla_->RecorrerIndice("N"));
    while (Exigir(todas.Siguiente())) {
        const auto fila = Exigir(tabla_->Leer(todas.Id()));
        ASSERT_EQ(fila[0], Valor(++anterior));
    }
    EXPECT_EQ(anterior, kFilas - 1);
    EXPECT_EQ(Hallazgos(base_), "");
}

TEST_F(HojasTest, ElVerificadorVeLaPrimeraEntradaDeCadaHoja) {
    const auto sano = Exigir(base_.Imagen());
    for (const std::uint32_t hoja : Hojas()) {
        const std::size_t primera = std::size_t{hoja} * 4096 + 480;
        // Flag, four bytes of the number, the Binary, the row.
        for (const std::size_t lugar : {primera + 4, primera + 8}) {
            auto bytes = sano;
            bytes[lugar] ^= 1;
            EXPECT_NE(Hallazgos(Exigir(BaseDatos::AbrirImagen(bytes)), Cuales::Fallas), "")
                << hoja << " " << lugar - primera;
        }
    }
}

}  // namespace
}  // namespace quimo::jet::prueba
