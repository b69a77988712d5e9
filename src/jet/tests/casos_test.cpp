// Single facts of the format: keys, dates, texts, limits, maps that change their kind.

#include <cmath>

#include "apoyo.h"
#include "jet/clave.h"

namespace quimo::jet::prueba {
namespace {

struct CasoPesos {
    const char16_t* texto;
    const char* bytes;  // nullptr: refused
};

TEST(Clave, LosTextosOrdenanComoEnAccess) {
    const CasoPesos casos[] = {
        {u"", "0100"},
        {u"   ", "0100"},
        {u"Tables", "6D4A4C5E516B0100"},
        {u"tables  ", "6D4A4C5E516B0100"},
        {u"Peña", "6651624A010202190 0"},
        {u"Café", "4D4A5351010202020E00"},
        {u"O'Farrill", "64534A6969595E5E0101010180 0B06800 0"},
        {u"Ríos-Mora", "6959646B6064694A01020E010101801706820 0"},
        {u"a b", "4A074C0100"},
        {u"æß", "4A516B6B0100"},
        {u"\u0001", "01010101800706030 0"},
        {u"€—", "35A10101010 1800B068B00"},
        {u"Ω", nullptr},
        {u"a\u0301", nullptr},
        {u"\u81EA", nullptr},
    };
    for (const CasoPesos& caso : casos) {
        std::vector<std::uint8_t> clave;
        const auto sin_peso = AgregarPesos(caso.texto, clave);
        ASSERT_EQ(sin_peso.has_value(), caso.bytes == nullptr) << AUtf8(caso.texto);
        if (caso.bytes == nullptr) continue;
        std::string hexadecimal;
        for (const std::uint8_t b : clave) {
            constexpr std::string_view kCifras = "0123456789ABCDEF";
            hexadecimal += {kCifras[b >> 4], kCifras[b & 15]};
        }
        std::string esperado(caso.bytes);
        std::erase(esperado, ' ');
        EXPECT_EQ(hexadecimal, esperado) << AUtf8(caso.texto);
    }
}

TEST(Clave, SoloLosPrimeros255Caracteres) {
    std::vector<std::uint8_t> corta;
    std::vector<std::uint8_t> larga;
    const std::u16string texto(255, u'x');
    EXPECT_FALSE(AgregarPesos(texto, corta).has_value());
    EXPECT_FALSE(AgregarPesos(texto + u"Ω", larga).has_value());
    EXPECT_EQ(corta, larga);
}

struct CasoFecha {
    double dias;
    const char* texto;  // nullptr: none
};

TEST(FechaTest, LaParteFraccionariaEsLaHoraTambienAntesDe1900) {
    const CasoFecha casos[] = {
        {0.0, "1899-12-30 00:00:00.000"},
        {-1.25, "1899-12-29 06:00:00.000"},
        {0.25, "1899-12-30 06:00:00.000"},
        {-0.25, "1899-12-30 06:00:00.000"},
        {1.9999999999, "1900-01-01 00:00:00.000"},
        {-1.9999999999, "1899-12-30 00:00:00.000"},
        {46340.5, "2026-11-14 12:00:00.000"},
        {2958465.999988426, "9999-12-31 23:59:59.000"},
        {2958465.9999999999, nullptr},
        {2958466.0, nullptr},
        {-657434.0, "100-01-01 00:00:00.000"},
        {-657435.0, nullptr},
        {std::nan(""), nullptr},
        {1e300, nullptr},
    };
    for (const CasoFecha& caso : casos) {
        const auto c = Fecha{caso.dias}.ACivil();
        ASSERT_EQ(c.has_value(), caso.texto != nullptr) << caso.dias;
        if (!c) continue;
        char texto[64];
        std::snprintf(texto, sizeof texto, "%d-%02d-%02d %02d:%02d:%02d.%03d", c->ano, c->mes,
                      c->dia, c->hora, c->minuto, c->segundo, c->milisegundo);
        EXPECT_STREQ(texto, caso.texto);
        const auto vuelta = Fecha::DeCivil(*c);
        ASSERT_TRUE(vuelta.has_value());
        EXPECT_EQ(vuelta->ACivil(), c) << texto;
    }
    EXPECT_FALSE(Fecha::DeCivil({2026, 2, 29}).has_value());
    EXPECT_TRUE(Fecha::DeCivil({2024, 2, 29}).has_value());
    EXPECT_FALSE(Fecha::DeCivil({1900, 2, 29}).has_value());
    EXPECT_FALSE(Fecha::DeCivil({2026, 1, 1, 24}).has_value());
}

TEST(Textos, Utf8YUtf16VanYVuelven) {
    for (const std::string texto : {"", "abc", "áéñ€—", "漢字", "😀x"}) {
        EXPECT_EQ(AUtf8(AUtf16(texto)), texto);
    }
    EXPECT_EQ(AUtf8(std::u16string{0xD800, u'x'}), "\uFFFDx");
    EXPECT_EQ(AUtf16("a\xFF\xC3"), u"a\uFFFD\uFFFD");
    EXPECT_EQ(AUtf16("\xED\xA0\x80").front(), u'\uFFFD');
    EXPECT_TRUE(MismoNombre("CAMIÓN", "camión"));
    EXPECT_FALSE(MismoNombre("camion", "camión"));
}

struct CasoValor {
    const char* por_que;
    DefColumna columna;
    Valor valor;
    Error::Codigo codigo;
};

TEST(Valores, LosQueNoCabenSeRehusanYNoCambianNada) {
    const auto de = [](TipoColumna tipo, int largo = 0) {
        return DefColumna{.nombre = "Col", .tipo = tipo, .largo = largo};
    };
    const CasoValor casos[] = {
        {"octeto negativo", de(TipoColumna::Byte), -1, Error::Codigo::Datos},
        {"octeto grande", de(TipoColumna::Byte), 256, Error::Codigo::Datos},
        {"entero grande", de(TipoColumna::Entero), 32768, Error::Codigo::Datos},
        {"texto por número", de(TipoColumna::Largo), std::u16string(u"1"), Error::Codigo::Datos},
        {"texto largo", de(TipoColumna::Texto, 3), std::u16string(u"cuatro"), Error::Codigo::Datos},
        {"texto que parece comprimido", de(TipoColumna::Memo), std::u16string(u"\uFEFFa"),
         Error::Codigo::Datos},
        {"binario largo", de(TipoColumna::Binario, 2), Binario(3), Error::Codigo::Datos},
        {"no es número", de(TipoColumna::Doble), std::nan(""), Error::Codigo::Datos},
        {"simple inexacto", de(TipoColumna::Simple), 0.1, Error::Codigo::Datos},
        {"fecha lejana", de(TipoColumna::Fecha), Fecha{1e9}, Error::Codigo::Datos},
        {"demasiadas cifras", de(TipoColumna::Numerico),
         base::Decimal{base::Int128{1000000000} * 1000000000, 0}, Error::Codigo::Datos},
        {"demasiados decimales", de(TipoColumna::Numerico), base::Decimal{15, 1},
         Error::Codigo::Datos},
        {"carácter sin peso", de(TipoColumna::Texto, 9), std::u16string(u"Ω"),
         Error::Codigo::NoSoportado},
        {"nulo requerido", de(TipoColumna::Texto, 9), Valor(), Error::Codigo::Restriccion},
    };
    for (const CasoValor& caso : casos) {
        Carpeta carpeta;
        BaseDatos base = Exigir(BaseDatos::Crear(carpeta / "v.mdb"));
        Tabla tabla =
            Exigir(base.CrearTabla({.nombre = "Tab", .columnas = {caso.columna}, .indices = {}}));
        if (caso.codigo != Error::Codigo::Datos) {
            tabla = Exigir(base.CrearTabla(
                {.nombre = "Tab2",
                 .columnas = {caso.columna},
                 .indices = {{.nombre = "C", .columnas = {{"Col"}}, .requerido = true}}}));
        }
        const auto antes = Exigir(base.Imagen());
        const auto id = tabla.Insertar(std::vector<Valor>{caso.valor});
        ASSERT_FALSE(id.has_value()) << caso.por_que;
        EXPECT_EQ(id.error().codigo, caso.codigo) << caso.por_que;
        EXPECT_NE(id.error().mensaje.find("Col"), std::string::npos) << id.error().mensaje;
        EXPECT_TRUE(Exigir(base.Imagen()) == antes) << caso.por_que;
    }
}

TEST(Valores, UnicosSinMayusculasNiEspaciosFinales) {
    Carpeta carpeta;
    BaseDatos base = Exigir(BaseDatos::Crear(carpeta / "u.mdb"));
    Tabla tabla = Exigir(base.CrearTabla(
        {.nombre = "T",
         .columnas = {{.nombre = "N", .tipo = TipoColumna::Texto, .largo = 20, .comprimido = true}},
         .indices = {{.nombre = "N", .columnas = {{"N"}}, .unico = true}}}));
    const auto insertar = [&](const char16_t* texto) {
        return tabla.Insertar(std::vector<Valor>{std::u16string(texto)});
    };
    const IdFila cafe = Exigir(insertar(u"café"));
    const auto repetida = insertar(u"CAFÉ  ");
    ASSERT_FALSE(repetida.has_value());
    EXPECT_EQ(repetida.error().codigo, Error::Codigo::Restriccion);
    EXPECT_NE(repetida.error().mensaje.find("CAFÉ"), std::string::npos);
    Exigir(insertar(u"cafe"));
    // NULL may repeat, and a row may keep its own key.
    Exigir(tabla.Insertar(std::vector<Valor>{{}}));
    Exigir(tabla.Insertar(std::vector<Valor>{{}}));
    Exigir(tabla.Actualizar(cafe, std::vector<Cambio>{{0, std::u16string(u"Café")}}));
    EXPECT_FALSE(
        tabla.Actualizar(cafe, std::vector<Cambio>{{0, std::u16string(u"CAFE")}}).has_value());
    EXPECT_EQ(Exigir(tabla.Buscar("n", std::vector<Valor>{std::u16string(u"CAFÉ")})),
              std::vector<IdFila>{cafe});
    EXPECT_EQ(Hallazgos(base), "");
}

TEST(Filas, CrecenSeMudanYSeBorran) {
    Carpeta carpeta;
    BaseDatos base = Exigir(BaseDatos::Crear(carpeta / "f.mdb"));
    Tabla tabla = Exigir(base.CrearTabla(
        {.nombre = "T",
         .columnas = {{.nombre = "N", .tipo = TipoColumna::Largo},
                      {.nombre = "A", .tipo = TipoColumna::Binario, .largo = 510},
                      {.nombre = "B", .tipo = TipoColumna::Binario, .largo = 510}},
         .indices = {{.nombre = "PrimaryKey", .columnas = {{"N"}}, .primaria = true}}}));
    std::vector<IdFila> ids;
    for (int i = 0; i < 300; ++i)
        ids.push_back(Exigir(tabla.Insertar(std::vector<Valor>{i, {}, {}})));
    for (const std::size_t largo : {60U, 300U, 510U, 10U, 0U, 400U}) {
        for (const IdFila id : ids) {
            Exigir(tabla.Actualizar(
                id, std::vector<Cambio>{{1, Binario(largo)}, {2, Binario(largo / 2)}}));
        }
        ASSERT_EQ(Hallazgos(base), "") << largo;
        EXPECT_EQ(Filas(tabla).size(), ids.size());
    }
    for (const IdFila id : ids)
        Exigir(tabla.Borrar(id));
    EXPECT_EQ(tabla.Borrar(ids[0]).error().codigo, Error::Codigo::NoEncontrado);
    EXPECT_EQ(tabla.Leer(ids[7]).error().codigo, Error::Codigo::NoEncontrado);
    EXPECT_EQ(Hallazgos(base), "");
    EXPECT_TRUE(Filas(tabla).empty());
}

TEST(Filas, NoMasDe255PorPaginaAunqueSeBorren) {
    Carpeta carpeta;
    BaseDatos base = Exigir(BaseDatos::Crear(carpeta / "p.mdb"));
    Tabla tabla =
        Exigir(base.CrearTabla({.nombre = "P",
                                .columnas = {{.nombre = "S", .tipo = TipoColumna::Logico}},
                                .indices = {}}));
    std::vector<IdFila> ids;
    for (int i = 0; i < 700; ++i) {
        ids.push_back(Exigir(tabla.Insertar(std::vector<Valor>{i % 3 == 0})));
        if (i % 2 == 0) Exigir(tabla.Borrar(ids.back()));
    }
    EXPECT_EQ(ids[254].fila, 254);
    EXPECT_EQ(ids[254].pagina, ids[0].pagina);
    EXPECT_NE(ids[255].pagina, ids[0].pagina);
    EXPECT_EQ(Filas(tabla).size(), 350U);
    EXPECT_EQ(Hallazgos(base), "");
}

/// Pages past 512 and past 32736 turn maps into lists of bitmap pages.
TEST(Mapas, CambianDeClaseCuandoElArchivoCrece) {
    Carpeta carpeta;
    BaseDatos base = Exigir(BaseDatos::Crear(carpeta / "grande.mdb"));
    const auto crear = [&](const char* nombre) {
        return Exigir(
            base.CrearTabla({.nombre = nombre,
                             .columnas = {{.nombre = "N", .tipo = TipoColumna::Largo},
                                          {.nombre = "O", .tipo = TipoColumna::Ole}},
                             .indices = {{.nombre = "N", .columnas = {{"N"}}, .primaria = true}}}));
    };
    Tabla antes = crear("Antes");
    Tabla grande = crear("Grande");
    Exigir(antes.Insertar(std::vector<Valor>{1, Binario(9000, 1)}));
    const Binario mucho(4072 * 600, 0x5A);
    for (int i = 0; i < 56; ++i) {
        Exigir(grande.Insertar(std::vector<Valor>{i, mucho}));
        // The other table's pages lie far apart now.
        Exigir(antes.Insertar(std::vector<Valor>{100 + i, Binario(9000, 1)}));
        if (i == 1) {
            ASSERT_EQ(Hallazgos(base), "");  // past page 512
        }
    }
    ASSERT_GT(Exigir(base.Imagen()).size(), 32736U * 4096U);
    EXPECT_EQ(Hallazgos(base), "");
    Exigir(grande.Borrar(Exigir(grande.BuscarClave(std::vector<Valor>{7})).value()));
    Exigir(antes.Vaciar());
    Exigir(antes.Insertar(std::vector<Valor>{5, mucho}));
    EXPECT_EQ(Hallazgos(base), "");
    Exigir(base.Guardar());
    const BaseDatos otra = Exigir(BaseDatos::Abrir(carpeta / "grande.mdb"));
    EXPECT_EQ(Filas(Exigir(otra.AbrirTabla("Grande"))).size(), 55U);
}

}  // namespace
}  // namespace quimo::jet::prueba
