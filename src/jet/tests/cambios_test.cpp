// Random operations against a model, the verifier after each batch.

#include "modelo.h"

namespace quimo::jet::prueba {
namespace {

DefTabla TablaDeTodo() {
    DefTabla tabla{.nombre = "Todo", .columnas = {}, .indices = {}};
    const auto columna = [&](const char* nombre, TipoColumna tipo, int largo, bool comprimido) {
        tabla.columnas.push_back(
            {.nombre = nombre, .tipo = tipo, .largo = largo, .comprimido = comprimido});
    };
    columna("Número", TipoColumna::Largo, 0, false);
    tabla.columnas[0].autonumerico = true;
    columna("Lógico", TipoColumna::Logico, 0, false);
    columna("Octeto", TipoColumna::Byte, 0, false);
    columna("Entero", TipoColumna::Entero, 0, false);
    columna("Largo", TipoColumna::Largo, 0, false);
    columna("Moneda", TipoColumna::Moneda, 0, false);
    columna("Simple", TipoColumna::Simple, 0, false);
    columna("Doble", TipoColumna::Doble, 0, false);
    columna("Fecha", TipoColumna::Fecha, 0, false);
    columna("Texto", TipoColumna::Texto, 255, true);
    columna("Llano", TipoColumna::Texto, 50, false);
    columna("Binario", TipoColumna::Binario, 300, false);
    columna("Guid", TipoColumna::Guid, 0, false);
    columna("Numérico", TipoColumna::Numerico, 0, false);
    tabla.columnas.back().precision = 20;
    tabla.columnas.back().escala = 5;
    columna("Memo", TipoColumna::Memo, 0, true);
    columna("Ole", TipoColumna::Ole, 0, false);
    tabla.indices.push_back({.nombre = "PrimaryKey", .columnas = {{"Número"}}, .primaria = true});
    for (const DefColumna& c : tabla.columnas) {
        if (c.tipo == TipoColumna::Ole || c.tipo == TipoColumna::Memo || c.autonumerico) continue;
        tabla.indices.push_back({.nombre = "a" + c.nombre, .columnas = {{c.nombre, false}}});
        tabla.indices.push_back({.nombre = "d" + c.nombre,
                                 .columnas = {{c.nombre, true}, {"Largo", c.nombre == "Largo"}},
                                 .ignora_nulos = c.nombre == "Texto"});
        if (c.nombre == "Largo") tabla.indices.back().columnas.pop_back();
    }
    tabla.indices.push_back({.nombre = "memo", .columnas = {{"Memo", true}}, .ignora_nulos = true});
    tabla.indices.push_back(
        {.nombre = "unico", .columnas = {{"Llano", false}, {"Octeto", true}}, .unico = true});
    return tabla;
}

void Machacar(BaseDatos& base, const std::string& tabla, unsigned semilla, int tandas,
              int por_tanda) {
    Modelo modelo(Exigir(base.AbrirTabla(tabla)), semilla);
    for (int tanda = 0; tanda < tandas; ++tanda) {
        for (int i = 0; i < por_tanda && !testing::Test::HasFatalFailure(); ++i)
            modelo.Operar();
        ASSERT_NO_FATAL_FAILURE(modelo.Comparar()) << tabla << " tanda " << tanda;
        ASSERT_EQ(Hallazgos(base, Cuales::Fallas), "") << tabla << " tanda " << tanda;
    }
}

class Cambios : public testing::TestWithParam<unsigned> {};

TEST_P(Cambios, EnUnaTablaNuevaConIndicesDeTodo) {
    Carpeta carpeta;
    BaseDatos base = Exigir(BaseDatos::Crear(carpeta / "nueva.mdb"));
    Exigir(base.CrearTabla(TablaDeTodo()));
    Machacar(base, "todo", GetParam(), 4, 250);
    // Nothing at all is odd in a file that only this library wrote.
    EXPECT_EQ(Hallazgos(base), "");
    Exigir(base.Guardar());
    BaseDatos otra = Exigir(BaseDatos::Abrir(carpeta / "nueva.mdb", Modo::Lectura));
    EXPECT_EQ(Hallazgos(otra), "");
    EXPECT_TRUE(Volcar(otra) == Volcar(base));
}

TEST_P(Cambios, EnCopiasDeArchivosAjenos) {
    BaseDatos tipos = AbrirCopia("jet-types/AllTypes.mdb");
    for (const char* tabla : {"Tipos", "Unicos", "SoloFijos", "SoloLogicos"}) {
        Machacar(tipos, tabla, GetParam(), 2, 100);
    }
    BaseDatos terminal = AbrirCopia("terminals/Plantilla.mdb");
    for (const std::string& tabla : Exigir(terminal.Tablas())) {
        Machacar(terminal, tabla, GetParam(), 1, 15);
    }
}

INSTANTIATE_TEST_SUITE_P(Semillas, Cambios, testing::Values(1U, 2U));

TEST(CambiosEnTerminal, BorrarTodoYVolverAEmpezar) {
    BaseDatos base = AbrirCopia("terminals/CAJA1/Quimo_Terminal.mdb");
    for (const std::string& tabla : Exigir(base.Tablas())) {
        Modelo modelo(Exigir(base.AbrirTabla(tabla)), 7);
        if (tabla.size() % 2 == 0) {
            modelo.BorrarTodo();
        } else {
            modelo.Vaciar();
        }
        ASSERT_NO_FATAL_FAILURE(modelo.Comparar()) << tabla;
        for (int i = 0; i < 20; ++i)
            modelo.Operar();
        ASSERT_NO_FATAL_FAILURE(modelo.Comparar()) << tabla;
    }
    EXPECT_EQ(Hallazgos(base), "");
}

/// Tables of Access: old rows, deleted columns, several indexes on one column.
TEST(CambiosEnMuestras, DeAccess) {
    const auto carpeta = Muestras();
    if (!carpeta) GTEST_SKIP() << kSinMuestras;
    int tablas = 0;
    for (const auto& entrada : std::filesystem::directory_iterator(*carpeta)) {
        const std::string nombre = entrada.path().stem();
        // One has keys that cannot be computed, the other pads its texts.
        if (entrada.path().extension() != ".mdb" || nombre == "testUnicodeCompV2003" ||
            nombre == "fixedTextTestV2000") {
            continue;
        }
        BaseDatos base = Exigir(BaseDatos::AbrirImagen(LeerBytes(entrada.path()), Modo::Escritura));
        for (const std::string& tabla : Exigir(base.Tablas())) {
            Tabla abierta = Exigir(base.AbrirTabla(tabla));
            const auto& indices = abierta.Definicion().indices;
            if (std::any_of(indices.begin(), indices.end(),
                            [](const auto& i) { return i.foranea; })) {
                continue;
            }
            Machacar(base, tabla, 3, 2, 60);
            ++tablas;
        }
    }
    EXPECT_GE(tablas, 8);
}

struct CasoOrden {
    const char* nombre;
    std::int32_t (*clave)(std::int32_t i);
};

/// Long keys make trees of several levels out of few rows.
TEST(Arboles, CrecenYMenguanEnCualquierOrden) {
    constexpr std::int32_t kFilas = 1000;
    const CasoOrden casos[] = {
        {"ascendente", [](std::int32_t i) { return i; }},
        {"descendente", [](std::int32_t i) { return kFilas - i; }},
        {"revuelto", [](std::int32_t i) { return i * 7919 % kFilas; }},
    };
    for (const CasoOrden& caso : casos) {
        Carpeta carpeta;
        BaseDatos base = Exigir(BaseDatos::Crear(carpeta / "arbol.mdb"));
        Tabla tabla = Exigir(base.CrearTabla(
            {.nombre = "T",
             .columnas =
                 {{.nombre = "Clave", .tipo = TipoColumna::Texto, .largo = 255, .comprimido = true},
                  {.nombre = "Otra", .tipo = TipoColumna::Binario, .largo = 510}},
             .indices = {{.nombre = "PrimaryKey", .columnas = {{"Clave"}}, .primaria = true},
                         {.nombre = "Otra", .columnas = {{"Otra", true}, {"Clave"}}}}}));
        std::vector<IdFila> filas;
        for (std::int32_t i = 0; i < kFilas; ++i) {
            const std::int32_t n = caso.clave(i);
            // Every third key shares nothing with the rest: prefixes come and go.
            const std::u16string cabeza(n % 3 == 0 ? 0 : 180, u'z');
            const Binario bytes(static_cast<std::size_t>(n % 400), static_cast<std::uint8_t>(n));
            filas.push_back(Exigir(tabla.Insertar(
                std::vector<Valor>{cabeza + AUtf16(std::to_string(100000 + n)), bytes})));
        }
        ASSERT_EQ(Hallazgos(base), "") << caso.nombre;
        for (std::size_t i = 0; i < filas.size(); ++i) {
            if (i % 7 != 0) Exigir(tabla.Borrar(filas[i]));
            if (i % 400 == 399) {
                ASSERT_EQ(Hallazgos(base), "") << caso.nombre << i;
            }
        }
        for (std::size_t i = 0; i < filas.size(); i += 7)
            Exigir(tabla.Borrar(filas[i]));
        EXPECT_EQ(Hallazgos(base), "") << caso.nombre;
        EXPECT_EQ(Exigir(tabla.Cuantas()), 0U);
        Exigir(tabla.Insertar(std::vector<Valor>{std::u16string(u"otra vez"), Valor()}));
        EXPECT_EQ(Hallazgos(base), "") << caso.nombre;
    }
}

/// Two keys to a page: a tree of many levels, where nodes have nodes for children.
TEST(Arboles, AltosConClavesDelMaximo) {
    Carpeta carpeta;
    BaseDatos base = Exigir(BaseDatos::Crear(carpeta / "alto.mdb"));
    const auto columna = [](const char* nombre) {
        return DefColumna{.nombre = nombre, .tipo = TipoColumna::Binario, .largo = 510};
    };
    Tabla tabla = Exigir(base.CrearTabla(
        {.nombre = "T",
         .columnas = {columna("A"), columna("B"), columna("C")},
         .indices = {{.nombre = "I", .columnas = {{"A"}, {"B", true}, {"C"}}, .unico = true}}}));
    Generador azar(11);
    std::vector<IdFila> filas;
    const auto insertar = [&](std::size_t i) {
        // Now and then a family of keys with a long common beginning.
        const bool familia = i % 10 < 4;
        Binario cabeza(510, static_cast<std::uint8_t>(familia ? 9 : azar.Hasta(256)));
        cabeza[familia ? 509 : 0] = static_cast<std::uint8_t>(azar.Hasta(256));
        const Binario cola(azar.Hasta(511), static_cast<std::uint8_t>(i));
        const auto id = tabla.Insertar(std::vector<Valor>{cabeza, cola, Binario(510, 1)});
        if (id) filas.push_back(*id);
    };
    // Shrinking leaves nodes with an only child; growing again must keep their entries right.
    for (const std::size_t meta : {300U, 6U, 80U, 2U, 40U, 3U, 30U, 0U}) {
        for (std::size_t i = 0; filas.size() != meta; ++i) {
            ASSERT_LT(i, 2000U);
            if (filas.size() < meta) {
                insertar(i);
            } else {
                const std::size_t cual = azar.Hasta(filas.size());
                Exigir(tabla.Borrar(filas[cual]));
                filas.erase(filas.begin() + static_cast<std::ptrdiff_t>(cual));
            }
            if (i % 20 == 0) {
                ASSERT_EQ(Hallazgos(base), "") << meta << " " << i;
            }
        }
        ASSERT_EQ(Hallazgos(base), "") << meta;
    }
}

}  // namespace
}  // namespace quimo::jet::prueba
