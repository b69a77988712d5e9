// Databases from nothing, read back here and by mdbtools.

#include <cstdio>

#include "apoyo.h"

namespace quimo::jet::prueba {
namespace {

DefColumna Columna(const char* nombre, TipoColumna tipo, int largo = 0, bool comprimido = false) {
    return {.nombre = nombre, .tipo = tipo, .largo = largo, .comprimido = comprimido};
}

DefTabla TablaDeTipos() {
    DefTabla tabla{
        .nombre = "Tipos",
        .columnas = {Columna("Id", TipoColumna::Largo), Columna("Si", TipoColumna::Logico),
                     Columna("Octeto", TipoColumna::Byte), Columna("Entero", TipoColumna::Entero),
                     Columna("Importe", TipoColumna::Moneda),
                     Columna("Simple", TipoColumna::Simple), Columna("Doble", TipoColumna::Doble),
                     Columna("Cuando", TipoColumna::Fecha),
                     Columna("Nombre", TipoColumna::Texto, 50, true),
                     Columna("Bytes", TipoColumna::Binario, 20),
                     Columna("Clave", TipoColumna::Guid), Columna("Numero", TipoColumna::Numerico),
                     Columna("Nota", TipoColumna::Memo, 0, true),
                     Columna("Objeto", TipoColumna::Ole)},
        .indices = {}};
    tabla.columnas[0].autonumerico = true;
    tabla.columnas[11].precision = 28;
    tabla.columnas[11].escala = 3;
    tabla.indices = {{.nombre = "PrimaryKey", .columnas = {{"Id"}}, .primaria = true},
                     {.nombre = "Nombre", .columnas = {{"Nombre"}, {"Cuando", true}}}};
    return tabla;
}

std::vector<Fila> FilasDeTipos() {
    const auto fecha = [](int ano, int mes, int dia, int hora) {
        return *Fecha::DeCivil({ano, mes, dia, hora, 59, 59});
    };
    const auto numero = [](const char* texto) { return *base::Decimal::DeTexto(texto); };
    const std::u16string larga(5000, u'ñ');
    return {
        {1, true, 255, 32767, *base::Dinero::DeTexto("922337203685477.5807"), 1.5F, 0.1,
         fecha(2026, 11, 14, 21), std::u16string(50, u'Ñ'), Binario(20, 0xFE),
         *Guid::DeTexto("{00112233-4455-6677-8899-AABBCCDDEEFF}"),
         numero("9999999999999999999999999.999"), larga, Binario(9000, 0xAB)},
        {2, false, 0, -32768, base::Dinero::DeDiezmilesimas(INT64_MIN), -3.4e38F, -5e-324,
         fecha(100, 1, 1, 0), std::u16string(), Binario(), Guid{}, numero("-0.001"),
         std::u16string(u"—cuatro—"), Binario{1}},
        {3, false, {}, {}, {}, {}, {}, {}, {}, {}, {}, {}, {}, {}},
        {4, true, 7, -7, base::Dinero::DeEntero(-7), 0.0F, 7.0, fecha(9999, 12, 31, 23),
         std::u16string(u"Peña, \"El Niño\"\n"), Binario{0, 255}, Guid{}, numero("0.000"),
         std::u16string(u"ñandú"), Binario(64, 1)},
    };
}

BaseDatos CrearConTipos(const std::string& ruta) {
    BaseDatos base = Exigir(BaseDatos::Crear(ruta));
    Tabla tabla = Exigir(base.CrearTabla(TablaDeTipos()));
    for (Fila fila : FilasDeTipos()) {
        fila[0] = Valor();  // numbered by the table
        Exigir(tabla.Insertar(fila));
    }
    Exigir(base.Guardar());
    return base;
}

std::string Salida(const std::string& orden) {
    std::string salida;
    FILE* tubo = ::popen((orden + " 2>&1").c_str(), "r");
    char trozo[4096];
    while (const std::size_t n = std::fread(trozo, 1, sizeof trozo, tubo))
        salida.append(trozo, n);
    ::pclose(tubo);
    return salida;
}

bool HayMdbtools() {
    return Salida("command -v mdb-export").find("mdb-export") != std::string::npos;
}

TEST(Creacion, TodosLosTiposVuelvenComoEntraron) {
    Carpeta carpeta;
    const std::string ruta = carpeta / "nueva.mdb";
    static_cast<void>(CrearConTipos(ruta));
    const BaseDatos base = Exigir(BaseDatos::Abrir(ruta));
    EXPECT_EQ(Exigir(base.Tablas()), std::vector<std::string>{"Tipos"});
    EXPECT_EQ(Exigir(base.Tablas(Sistema::Si)).size(), 5U);
    const std::vector<Fila> leidas = Filas(Exigir(base.AbrirTabla("tipos")));
    const std::vector<Fila> esperadas = FilasDeTipos();
    ASSERT_EQ(leidas.size(), esperadas.size());
    for (std::size_t i = 0; i < esperadas.size(); ++i) {
        for (std::size_t k = 0; k < esperadas[i].size(); ++k) {
            EXPECT_TRUE(leidas[i][k] == esperadas[i][k]) << "fila " << i << " columna " << k;
        }
    }
    EXPECT_EQ(Hallazgos(base), "");
}

TEST(Creacion, OtroProgramaLeeLoMismo) {
    if (!HayMdbtools()) GTEST_SKIP() << "no está mdbtools";
    Carpeta carpeta;
    const std::string ruta = carpeta / "nueva.mdb";
    BaseDatos base = CrearConTipos(ruta);
    EXPECT_EQ(Salida("mdb-tables -1 " + ruta), "Tipos\n");
    const std::string esperado =
        "1,1,255,32767,922337203685477.5807,1.5,0.1,2026-11-14 21:59:59,"
        "ÑÑÑÑÑÑÑÑÑÑÑÑÑÑÑÑÑÑÑÑÑÑÑÑÑÑÑÑÑÑÑÑÑÑÑÑÑÑÑÑÑÑÑÑÑÑÑÑÑÑ";
    const std::string csv =
        Salida("mdb-export -H -Q -b hex -T '%Y-%m-%d %H:%M:%S' " + ruta + " Tipos");
    EXPECT_EQ(csv.substr(0, esperado.size()), esperado);
    EXPECT_NE(csv.find("9999999999999999999999999.999"), std::string::npos);
    EXPECT_NE(csv.find("—cuatro—"), std::string::npos);
    EXPECT_NE(csv.find("Peña, \"El Niño\""), std::string::npos);
    EXPECT_NE(csv.find("ñandú"), std::string::npos);
    EXPECT_NE(Salida("mdb-schema " + ruta + " postgres").find("PRIMARY KEY"), std::string::npos);

    // Many rows, some of them moved and deleted: the other program sees those that are left.
    Tabla tabla = Exigir(base.AbrirTabla("Tipos"));
    std::vector<IdFila> ids;
    for (int i = 0; i < 3000; ++i) {
        Fila fila(tabla.Definicion().columnas.size());
        fila[8] = AUtf16("n" + std::to_string(i));
        ids.push_back(Exigir(tabla.Insertar(fila)));
    }
    const std::u16string larga(50, u'—');
    for (std::size_t i = 0; i < ids.size(); ++i) {
        if (i % 3 == 0) Exigir(tabla.Borrar(ids[i]));
        if (i % 3 == 1) Exigir(tabla.Actualizar(ids[i], std::vector<Cambio>{{8, larga}}));
    }
    Exigir(base.Guardar());
    EXPECT_EQ(Salida("mdb-export -H " + ruta + " Tipos | grep -c '^[0-9]*,'"), "2004\n");
    EXPECT_EQ(Salida("mdb-export -H " + ruta + " Tipos | grep -c '——————'"), "1000\n");
}

TEST(Creacion, TablasDeCienColumnasYTreintaIndices) {
    Carpeta carpeta;
    BaseDatos base = Exigir(BaseDatos::Crear(carpeta / "ancha.mdb"));
    DefTabla def{.nombre = "Ancha", .columnas = {}, .indices = {}};
    for (int i = 0; i < 255; ++i) {
        const std::string nombre =
            "Una columna de nombre bastante largo número " + std::to_string(i);
        def.columnas.push_back(Columna(nombre.c_str(),
                                       i % 5 == 0   ? TipoColumna::Memo
                                       : i % 2 == 0 ? TipoColumna::Largo
                                                    : TipoColumna::Texto,
                                       20, true));
        if (i % 8 == 1) def.indices.push_back({.nombre = "i" + nombre, .columnas = {{nombre}}});
    }
    ASSERT_EQ(def.indices.size(), 32U);
    Tabla tabla = Exigir(base.CrearTabla(def));
    Fila fila;
    for (const DefColumna& c : def.columnas) {
        fila.push_back(c.tipo == TipoColumna::Largo ? Valor(7) : Valor(std::u16string(u"abc")));
    }
    Exigir(tabla.Insertar(fila));
    Exigir(tabla.Insertar(Fila(fila.size())));
    Exigir(base.Guardar());
    const BaseDatos otra = Exigir(BaseDatos::Abrir(carpeta / "ancha.mdb"));
    EXPECT_EQ(Hallazgos(otra), "");
    const auto leidas = Filas(Exigir(otra.AbrirTabla("ancha")));
    ASSERT_EQ(leidas.size(), 2U);
    EXPECT_TRUE(leidas[0] == fila);
}

struct CasoDefinicion {
    const char* por_que;
    void (*cambiar)(DefTabla& tabla);
    Error::Codigo codigo;
};

TEST(Creacion, DefinicionesImposiblesNoDejanRastro) {
    const CasoDefinicion casos[] = {
        {"nombre vacío", [](DefTabla& t) { t.nombre = ""; }, Error::Codigo::Datos},
        {"nombre con punto", [](DefTabla& t) { t.nombre = "a.b"; }, Error::Codigo::Datos},
        {"nombre largo", [](DefTabla& t) { t.nombre.assign(65, 'a'); }, Error::Codigo::Datos},
        {"nombre usado", [](DefTabla& t) { t.nombre = "MSYSOBJECTS"; }, Error::Codigo::Restriccion},
        {"nombre sin peso", [](DefTabla& t) { t.nombre = "Мир"; }, Error::Codigo::NoSoportado},
        {"sin columnas", [](DefTabla& t) { t.columnas.clear(); }, Error::Codigo::Datos},
        {"columna repetida", [](DefTabla& t) { t.columnas[1].nombre = "ID"; },
         Error::Codigo::Datos},
        {"texto de 256", [](DefTabla& t) { t.columnas[8].largo = 256; }, Error::Codigo::Datos},
        {"tipo opaco", [](DefTabla& t) { t.columnas[2].tipo = TipoColumna::Bloque; },
         Error::Codigo::Datos},
        {"escala de más", [](DefTabla& t) { t.columnas[11].escala = 29; }, Error::Codigo::Datos},
        {"texto que se numera", [](DefTabla& t) { t.columnas[8].autonumerico = true; },
         Error::Codigo::Datos},
        {"índice sin columna", [](DefTabla& t) { t.indices[0].columnas[0].nombre = "Nada"; },
         Error::Codigo::Datos},
        {"índice de OLE", [](DefTabla& t) { t.indices[1].columnas[0].nombre = "Objeto"; },
         Error::Codigo::Datos},
        {"dos primarias", [](DefTabla& t) { t.indices[1].primaria = true; }, Error::Codigo::Datos},
        {"relación", [](DefTabla& t) { t.indices[1].foranea = true; }, Error::Codigo::NoSoportado},
    };
    Carpeta carpeta;
    BaseDatos base = Exigir(BaseDatos::Crear(carpeta / "nueva.mdb"));
    const auto antes = Exigir(base.Imagen());
    for (const CasoDefinicion& caso : casos) {
        DefTabla def = TablaDeTipos();
        caso.cambiar(def);
        const auto tabla = base.CrearTabla(def);
        ASSERT_FALSE(tabla.has_value()) << caso.por_que;
        EXPECT_EQ(tabla.error().codigo, caso.codigo) << caso.por_que << tabla.error().mensaje;
        EXPECT_TRUE(Exigir(base.Imagen()) == antes) << caso.por_que;
    }
}

}  // namespace
}  // namespace quimo::jet::prueba
