// Sound copies of damaged files. Every damage is done to the bytes of a whole file.

#include "jet/reparacion.h"

#include <functional>
#include <optional>

#include "apoyo.h"
#include "jet/catalogo.h"
#include "jet/mapa.h"
#include "jet/pagina_datos.h"

namespace quimo::jet::prueba {
namespace {

constexpr const char* kTerminal = "terminals/BARRA/Quimo_Terminal.mdb";
constexpr std::size_t kPagina = 4096;
using Bytes = std::vector<std::uint8_t>;

void EscribirBytes(const std::string& ruta, const Bytes& bytes) {
    std::ofstream(ruta, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
}

/// Where the parts of a table lie in a whole file.
struct Lugares {
    std::shared_ptr<const Esquema> esquema;
    std::vector<std::uint32_t> paginas;

    Lugares(const Bytes& bytes, const char* tabla) {
        const auto almacen = Exigir(Almacen::DeImagen(bytes));
        esquema = Exigir(BuscarEsquema(*almacen, tabla));
        paginas = Exigir(Mapa(*almacen, esquema->propias).Miembros());
        mapa_en = MapaEn(*almacen);
    }
    std::size_t Definicion() const { return esquema->pagina * kPagina; }
    std::size_t Primera() const { return paginas.front() * kPagina; }
    std::size_t Raiz(std::size_t real) const { return esquema->reales[real].raiz * kPagina; }
    std::size_t mapa_en = 0;  // of the owned map's row

private:
    std::size_t MapaEn(Almacen& almacen) const {
        const auto fila = Exigir(LeerFilaCruda(almacen, esquema->propias));
        return esquema->propias.pagina * kPagina + fila.ranura.inicio;
    }
};

void Rellenar(Bytes& bytes, std::size_t pagina, std::uint8_t con) {
    std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(pagina), kPagina, con);
}

struct Reparada {
    InformeReparacion informe;
    BaseDatos base;
    std::string volcado;

    /// Everything that is told about one table.
    std::string Ilegibles(const std::string& tabla) const {
        std::string texto;
        for (const TablaReparada& t : informe.tablas) {
            if (t.nombre != tabla) continue;
            for (const std::string& queja : t.ilegibles)
                texto += queja + "\n";
        }
        return texto;
    }
};

Reparada RepararBytes(const Carpeta& carpeta, const Bytes& bytes) {
    EscribirBytes(carpeta / "danada.mdb", bytes);
    const InformeReparacion informe = Exigir(Reparar(carpeta / "danada.mdb", carpeta / "sana.mdb"));
    EXPECT_TRUE(LeerBytes(carpeta / "danada.mdb") == bytes);
    BaseDatos base = Exigir(BaseDatos::Abrir(carpeta / "sana.mdb"));
    EXPECT_EQ(Hallazgos(base), "");
    std::string volcado = Volcar(base);
    return {informe, std::move(base), std::move(volcado)};
}

struct CasoInofensivo {
    const char* por_que;
    std::function<void(Bytes&, const Lugares&)> danar;
};

/// Whatever can be made anew or is said twice loses nothing.
TEST(Reparar, LoQueSePuedeRehacerNoPierdeNada) {
    const Bytes sano = LeerBytes(Datos(kTerminal));
    const Lugares lugares(sano, "ProductosXCuenta");
    const std::string esperado = Volcar(AbrirCopia(kTerminal));
    const CasoInofensivo casos[] = {
        {"entero", [](Bytes&, const Lugares&) {}},
        {"una fila de menos en la cuenta",
         [](Bytes& b, const Lugares& l) { --b[l.Definicion() + kPosFilas]; }},
        {"una fila de más en la cuenta",
         [](Bytes& b, const Lugares& l) { ++b[l.Definicion() + kPosFilas]; }},
        {"la raíz de un índice perdida",
         [](Bytes& b, const Lugares& l) { Rellenar(b, l.Raiz(0), 0xFF); }},
        {"un separador o una clave mayor",
         [](Bytes& b, const Lugares& l) { ++b[l.Raiz(0) + 480 + 3]; }},
        {"el mapa de la tabla no nombra una página",
         [](Bytes& b, const Lugares& l) {
             const std::uint32_t k = l.paginas[1] - U32(b.data() + l.mapa_en + 1);
             b[l.mapa_en + 5 + k / 8] ^= static_cast<std::uint8_t>(1U << k % 8);
         }},
        {"el mapa de la tabla no es un mapa", [](Bytes& b, const Lugares& l) { b[l.mapa_en] = 7; }},
        {"el dueño de una página es imposible",
         [](Bytes& b, const Lugares& l) { b[l.Primera() + 6] = 0x77; }},
        {"los bytes libres de una página",
         [](Bytes& b, const Lugares& l) { b[l.Primera() + 2] ^= 1; }},
        {"el mapa global perdido", [](Bytes& b, const Lugares&) { Rellenar(b, kPagina, 0); }},
        {"la definición del catálogo perdida",
         [](Bytes& b, const Lugares&) { Rellenar(b, 2 * kPagina + 0x2D, 0); }},
        {"bytes de más al final", [](Bytes& b, const Lugares&) { b.resize(b.size() + 100); }},
    };
    for (const CasoInofensivo& caso : casos) {
        Bytes bytes = sano;
        bytes.resize(sano.size() + kPagina);  // room for a fill that does not begin a page
        caso.danar(bytes, lugares);
        bytes.resize(bytes.size() - kPagina);
        Carpeta carpeta;
        const Reparada r = RepararBytes(carpeta, bytes);
        EXPECT_TRUE(r.informe.Completa()) << caso.por_que << r.Ilegibles("ProductosXCuenta");
        EXPECT_TRUE(r.volcado == esperado) << caso.por_que;
        EXPECT_EQ(r.informe.Renglones(), 1613) << caso.por_que;
    }
}

struct CasoPerdida {
    const char* por_que;
    std::function<void(Bytes&, const Lugares&)> danar;
    const char* se_dice;
    int filas_min;
    int filas_max;
};

/// Of 306 rows, those that are left, and what is told of the others.
TEST(Reparar, LoPerdidoSeEnumeraYLoDemasSeSalva) {
    const Bytes sano = LeerBytes(Datos(kTerminal));
    const Lugares lugares(sano, "ProductosXCuenta");
    const std::string pagina = "página " + std::to_string(lugares.paginas[0]);
    const CasoPerdida casos[] = {
        {"una página en ceros", [](Bytes& b, const Lugares& l) { Rellenar(b, l.Primera(), 0); },
         pagina.c_str(), 200, 305},
        {"una página de otra tabla",
         [](Bytes& b, const Lugares& l) {
             PonerU32(b.data() + l.Primera() + 4, Lugares(b, "Pago").esquema->pagina);
         },
         pagina.c_str(), 200, 305},
        {"una página que solo nombraba el mapa",
         [](Bytes& b, const Lugares& l) {
             Rellenar(b, l.Primera(), 0);
             b[l.mapa_en] = 7;
         },
         "que un índice nombra, no está", 200, 305},
        {"una fila sin lugar", [](Bytes& b, const Lugares& l) { b[l.Primera() + 14 + 1] |= 0x1F; },
         "fila 0", 304, 305},
        {"una fila marcada como borrada",
         [](Bytes& b, const Lugares& l) { b[l.Primera() + 14 + 5] |= 0xC0; }, "fila 2", 305, 305},
        {"una fila con cien columnas",
         [](Bytes& b, const Lugares& l) {
             b[l.Primera() + (U16(b.data() + l.Primera() + 14) & kRanuraPosicion)] = 100;
         },
         "fila 0", 305, 305},
        {"cortado tras la primera página",
         [](Bytes& b, const Lugares& l) { b.resize((l.paginas[0] + 1) * kPagina + kPagina); },
         "falta la página", 1, 305},
        {"la definición perdida",
         [](Bytes& b, const Lugares& l) { Rellenar(b, l.Definicion(), 0); }, "definición", -1, -1},
    };
    for (const CasoPerdida& caso : casos) {
        Bytes bytes = sano;
        caso.danar(bytes, lugares);
        Carpeta carpeta;
        const Reparada r = RepararBytes(carpeta, bytes);
        EXPECT_FALSE(r.informe.Completa()) << caso.por_que;
        EXPECT_NE(r.Ilegibles("ProductosXCuenta").find(caso.se_dice), std::string::npos)
            << caso.por_que << ": " << r.Ilegibles("ProductosXCuenta");
        const auto tabla = r.base.AbrirTabla("ProductosXCuenta");
        ASSERT_EQ(tabla.has_value(), caso.filas_min >= 0) << caso.por_que;
        if (!tabla) continue;
        const int filas = static_cast<int>(Filas(*tabla).size());
        EXPECT_GE(filas, caso.filas_min) << caso.por_que;
        EXPECT_LE(filas, caso.filas_max) << caso.por_que;
    }
}

TEST(Reparar, SinCatalogoLasTablasSeSalvanConOtroNombre) {
    Bytes bytes = LeerBytes(Datos(kTerminal));
    const Lugares catalogo(bytes, "MSysObjects");
    const Lugares comanda(bytes, "Comanda");
    for (const std::uint32_t pagina : catalogo.paginas)
        Rellenar(bytes, pagina * kPagina, 0);
    Carpeta carpeta;
    const Reparada r = RepararBytes(carpeta, bytes);
    EXPECT_FALSE(r.informe.Completa());
    const std::string nombre = "Recuperada_" + std::to_string(comanda.esquema->pagina);
    EXPECT_EQ(Filas(Exigir(r.base.AbrirTabla(nombre))).size(), 60U);
    EXPECT_NE(r.Ilegibles(nombre).find("nombre"), std::string::npos);
    EXPECT_EQ(r.informe.Renglones(), 1613);
}

/// A small file with what the terminals' own files do not have.
BaseDatos Pequena(const std::string& ruta) {
    BaseDatos base = Exigir(BaseDatos::Crear(ruta));
    Tabla tabla = Exigir(base.CrearTabla(
        {.nombre = "T",
         .columnas = {{.nombre = "Id", .tipo = TipoColumna::Largo, .autonumerico = true},
                      {.nombre = "N", .tipo = TipoColumna::Texto, .largo = 20},
                      {.nombre = "M", .tipo = TipoColumna::Memo}},
         .indices = {{.nombre = "PrimaryKey", .columnas = {{"Id"}}, .primaria = true},
                     {.nombre = "N", .columnas = {{"N"}}, .unico = true}}}));
    for (int i = 0; i < 5; ++i) {
        Exigir(tabla.Insertar(
            std::vector<Valor>{{},
                               std::u16string(u"Zorro") + static_cast<char16_t>(u'a' + i),
                               std::u16string(3000, static_cast<char16_t>(u'a' + i))}));
    }
    Exigir(tabla.Borrar(Exigir(tabla.BuscarClave(std::vector<Valor>{5})).value()));
    Exigir(base.Guardar());
    return base;
}

/// The last letter of the n-th name, wherever the file has it.
std::size_t LetraDe(const Bytes& bytes, char letra) {
    const std::string texto = {'r', 0, 'r', 0, 'o', 0, letra, 0};
    const auto p = std::search(bytes.begin(), bytes.end(), texto.begin(), texto.end());
    return static_cast<std::size_t>(p - bytes.begin()) + 6;
}

TEST(Reparar, ClavesRepetidasYLetrasAjenasSeDicen) {
    Carpeta carpeta;
    static_cast<void>(Pequena(carpeta / "p.mdb"));
    const Bytes sano = LeerBytes(carpeta / "p.mdb");
    Bytes repetida = sano;
    repetida[LetraDe(sano, 'c')] = 'a';
    const Reparada sin_una = RepararBytes(carpeta, repetida);
    EXPECT_NE(sin_una.Ilegibles("T").find("ya tiene una fila con N = «Zorroa»"), std::string::npos)
        << sin_una.Ilegibles("T");
    EXPECT_EQ(Filas(Exigir(sin_una.base.AbrirTabla("T"))).size(), 3U);

    // The row is worth more than the index that cannot hold its letter.
    Bytes ajena = sano;
    ajena[LetraDe(sano, 'c') + 1] = 0x26;
    const Reparada sin_indice = RepararBytes(carpeta, ajena);
    EXPECT_FALSE(sin_indice.informe.Completa());
    ASSERT_EQ(sin_indice.informe.faltas.size(), 1U);
    EXPECT_NE(sin_indice.informe.faltas[0].find("El índice N de la tabla T"), std::string::npos);
    Tabla tabla = Exigir(sin_indice.base.AbrirTabla("T"));
    EXPECT_EQ(Filas(tabla).size(), 4U);
    EXPECT_EQ(tabla.Definicion().indices.size(), 1U);
}

TEST(Reparar, UnMemoPerdidoSeDiceYElContadorSigue) {
    Carpeta carpeta;
    static_cast<void>(Pequena(carpeta / "p.mdb"));
    Bytes bytes = LeerBytes(carpeta / "p.mdb");
    const auto almacen = Exigir(Almacen::DeImagen(bytes));
    const auto esquema = Exigir(BuscarEsquema(*almacen, "T"));
    const auto largas = Exigir(Mapa(*almacen, *esquema->fisicas[2].mapa_largos).Miembros());
    Rellenar(bytes, largas[1] * kPagina, 0);
    const Reparada r = RepararBytes(carpeta, bytes);
    EXPECT_NE(r.Ilegibles("T"), "");
    const auto filas = Filas(Exigir(r.base.AbrirTabla("T"))).size();
    EXPECT_EQ(r.informe.Renglones(), static_cast<std::int64_t>(filas));
    EXPECT_TRUE(filas > 0 && filas < 4) << filas;
    EXPECT_EQ(Exigir(Exigir(r.base.AbrirTabla("T")).UltimoAutonumerico()), 5);
}

TEST(Reparar, NoPisaElOriginalNiCopiaLoQueNoEsUnaBase) {
    Carpeta carpeta;
    const std::string ruta = carpeta / "t.mdb";
    std::filesystem::copy_file(Datos(kTerminal), ruta);
    std::filesystem::create_symlink(ruta, carpeta / "enlace.mdb");
    EXPECT_EQ(Reparar(ruta, carpeta / "enlace.mdb").error().codigo, Error::Codigo::Datos);
    EXPECT_EQ(Reparar(carpeta / "nada.mdb", carpeta / "s.mdb").error().codigo,
              Error::Codigo::NoEncontrado);
    EXPECT_TRUE(LeerBytes(ruta) == LeerBytes(Datos(kTerminal)));
    EscribirBytes(carpeta / "texto.mdb", Bytes(3 * kPagina, 'x'));
    EXPECT_EQ(Reparar(carpeta / "texto.mdb", carpeta / "s.mdb").error().codigo,
              Error::Codigo::Formato);
    EXPECT_FALSE(std::filesystem::exists(carpeta / "s.mdb"));
    Bytes vacio(20 * kPagina, 0);
    std::copy_n(LeerBytes(ruta).begin(), kPagina, vacio.begin());
    EscribirBytes(carpeta / "vacio.mdb", vacio);
    EXPECT_EQ(Reparar(carpeta / "vacio.mdb", carpeta / "s.mdb").error().codigo,
              Error::Codigo::Formato);
    // What was at the destination is replaced whole.
    EscribirBytes(carpeta / "s.mdb", Bytes(99, 'x'));
    Exigir(Reparar(ruta, carpeta / "s.mdb"));
    EXPECT_TRUE(Volcar(Exigir(BaseDatos::Abrir(carpeta / "s.mdb"))) ==
                LeerTexto(Datos("terminals/BARRA/contents.json")));
}

/// Whatever bytes are changed: an error, or a sound copy.
TEST(Reparar, CualquierDanoDaErrorOCopiaSana) {
    const Bytes sano = LeerBytes(Datos(kTerminal));
    std::uint32_t azar = 777;
    const auto siguiente = [&azar] { return azar = azar * 1664525U + 1013904223U, azar >> 8; };
    Carpeta carpeta;
    for (int vuelta = 0; vuelta < 10; ++vuelta) {
        Bytes bytes = sano;
        for (int i = 0; i < 1 + vuelta * 20; ++i) {
            const std::size_t pagina = siguiente() % (sano.size() / kPagina);
            bytes[pagina * kPagina + siguiente() % (i % 2 == 0 ? 64 : kPagina)] ^=
                static_cast<std::uint8_t>(1 + siguiente() % 255);
        }
        EscribirBytes(carpeta / "d.mdb", bytes);
        const auto informe = Reparar(carpeta / "d.mdb", carpeta / "s.mdb");
        if (!informe) {
            EXPECT_NE(informe.error().codigo, Error::Codigo::Interno) << informe.error().detalle;
            continue;
        }
        EXPECT_EQ(Hallazgos(Exigir(BaseDatos::Abrir(carpeta / "s.mdb"))), "");
    }
}

}  // namespace
}  // namespace quimo::jet::prueba
