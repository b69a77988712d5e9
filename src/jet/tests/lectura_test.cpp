// Files with known contents are read as what they contain.

#include "apoyo.h"
#include "json.h"

namespace quimo::jet::prueba {
namespace {

Json Leido(const std::string& texto) {
    auto [valor, bien] = LectorJson(texto).Leer();
    EXPECT_TRUE(bien) << texto.substr(0, 200);
    return std::move(valor);
}

/// Names the first difference, so that a failure can be read.
void Comparar(const Json& leido, const Json& esperado) {
    ASSERT_EQ(leido.objeto.size(), esperado.objeto.size());
    for (const auto& [tabla, filas] : esperado.objeto) {
        ASSERT_TRUE(leido.objeto.count(tabla) == 1) << tabla;
        const Json& suyas = leido.objeto.at(tabla);
        ASSERT_EQ(suyas.lista.size(), filas.lista.size()) << tabla;
        for (std::size_t i = 0; i < filas.lista.size(); ++i) {
            for (const auto& [columna, valor] : filas.lista[i].objeto) {
                ASSERT_TRUE(suyas.lista[i].objeto.at(columna) == valor)
                    << tabla << " fila " << i << " columna " << columna;
            }
            ASSERT_EQ(suyas.lista[i].objeto.size(), filas.lista[i].objeto.size());
        }
    }
}

TEST(Lectura, LosTerminalesSeVuelcanByteAByte) {
    for (const std::string terminal : {"CAJA1", "CAJA2", "BARRA"}) {
        const std::string carpeta = "terminals/" + terminal;
        const BaseDatos base = Exigir(BaseDatos::Abrir(Datos(carpeta + "/Quimo_Terminal.mdb")));
        EXPECT_TRUE(Volcar(base) == LeerTexto(Datos(carpeta + "/contents.json"))) << terminal;
        EXPECT_EQ(Hallazgos(base), "") << terminal;
    }
    const BaseDatos plantilla = Exigir(BaseDatos::Abrir(Datos("terminals/Plantilla.mdb")));
    EXPECT_EQ(Volcar(plantilla), LeerTexto(Datos("terminals/Plantilla.contents.json")));
    EXPECT_EQ(Hallazgos(plantilla), "");
}

TEST(Lectura, TodosLosTiposConSusExtremos) {
    const BaseDatos base = Exigir(BaseDatos::Abrir(Datos("jet-types/AllTypes.mdb")));
    Comparar(Leido(Volcar(base)), Leido(LeerTexto(Datos("jet-types/AllTypes.contents.json"))));
    EXPECT_EQ(Hallazgos(base, Cuales::Fallas), "");
}

/// The definition as the .schema.json files give it.
void CompararEsquema(const Tabla& tabla, const Json& esperado) {
    const auto& columnas = esperado.objeto.at("columns").lista;
    const DefTabla& def = tabla.Definicion();
    ASSERT_EQ(def.columnas.size(), columnas.size()) << def.nombre;
    for (std::size_t i = 0; i < columnas.size(); ++i) {
        const auto& c = columnas[i].objeto;
        EXPECT_EQ(def.columnas[i].nombre, c.at("name").texto);
        EXPECT_EQ(def.columnas[i].autonumerico, c.count("autonumber") == 1) << def.nombre;
        EXPECT_EQ(def.columnas[i].comprimido, c.count("compressed") == 1) << def.nombre;
        if (c.count("length") == 1) {
            EXPECT_EQ(def.columnas[i].largo, c.at("length").numero) << def.columnas[i].nombre;
        }
    }
    const auto& indices = esperado.objeto.at("indexes").lista;
    ASSERT_EQ(def.indices.size(), indices.size()) << def.nombre;
    for (const Json& indice : indices) {
        const auto& esperada = indice.objeto;
        const auto hallado =
            std::find_if(def.indices.begin(), def.indices.end(),
                         [&](const DefIndice& d) { return d.nombre == esperada.at("name").texto; });
        ASSERT_NE(hallado, def.indices.end()) << esperada.at("name").texto;
        EXPECT_EQ(hallado->primaria, esperada.at("primary").logico);
        EXPECT_EQ(hallado->foranea, esperada.at("foreign").logico);
        EXPECT_EQ(hallado->unico, esperada.at("unique").logico);
        EXPECT_EQ(hallado->requerido, esperada.at("required").logico);
        EXPECT_EQ(hallado->ignora_nulos, esperada.at("ignoreNulls").logico);
        std::vector<std::string> nombres;
        for (const ColumnaDeIndice& c : hallado->columnas) {
            nombres.push_back((c.descendente ? "-" : "+") + c.nombre);
        }
        std::vector<std::string> esperados;
        for (const Json& c : esperada.at("columns").lista)
            esperados.push_back(c.texto);
        EXPECT_EQ(nombres, esperados) << hallado->nombre;
    }
}

TEST(Lectura, LasDefinicionesSonLasEsperadas) {
    for (const std::string nombre : {"jet-types/AllTypes", "terminals/Plantilla"}) {
        const BaseDatos base = Exigir(BaseDatos::Abrir(Datos(nombre + ".mdb")));
        for (const auto& [tabla, esquema] :
             Leido(LeerTexto(Datos(nombre + ".schema.json"))).objeto) {
            CompararEsquema(Exigir(base.AbrirTabla(tabla)), esquema);
        }
    }
}

TEST(Lectura, LosArchivosDeAccessSeLeenIgualQueConOtroLector) {
    const auto carpeta = Muestras();
    if (!carpeta) GTEST_SKIP() << kSinMuestras;
    int vistos = 0;
    for (const auto& entrada : std::filesystem::directory_iterator(*carpeta)) {
        if (entrada.path().extension() != ".mdb") continue;
        SCOPED_TRACE(entrada.path());
        auto json = entrada.path();
        Json esperado = Leido(LeerTexto(json.replace_extension(".json")));
        const BaseDatos base = Exigir(BaseDatos::Abrir(entrada.path()));
        for (auto& [tabla, valor] : esperado.objeto) {
            CompararEsquema(Exigir(base.AbrirTabla(tabla)), valor);
            Json filas = valor.objeto.at("rows");
            valor = std::move(filas);
        }
        Comparar(Leido(Volcar(base)), esperado);
        EXPECT_EQ(Hallazgos(base, Cuales::Fallas), "");
        ++vistos;
    }
    EXPECT_EQ(vistos, 10);
}

TEST(Lectura, NombresSinMayusculasYLosQueNoHay) {
    const BaseDatos base = Exigir(BaseDatos::Abrir(Datos("terminals/CAJA1/Quimo_Terminal.mdb")));
    const Tabla tabla = Exigir(base.AbrirTabla("COMANDA"));
    EXPECT_EQ(tabla.Nombre(), "Comanda");
    EXPECT_EQ(Exigir(tabla.Columna("id_comanda")), 0U);
    EXPECT_EQ(tabla.Columna("nada").error().codigo, Error::Codigo::NoEncontrado);
    EXPECT_EQ(base.AbrirTabla("Nada").error().codigo, Error::Codigo::NoEncontrado);
    EXPECT_NE(base.AbrirTabla("Nada").error().mensaje.find("Nada"), std::string::npos);
}

TEST(Lectura, BuscaPorClaveYPorTramos) {
    const BaseDatos base = Exigir(BaseDatos::Abrir(Datos("terminals/CAJA1/Quimo_Terminal.mdb")));
    const Tabla cuentas = Exigir(base.AbrirTabla("Cuenta"));
    const auto id = Exigir(cuentas.BuscarClave(std::vector<Valor>{50901, 1}));
    ASSERT_TRUE(id.has_value());
    EXPECT_EQ(Exigir(cuentas.Leer(*id))[0], Valor(50901));
    EXPECT_FALSE(Exigir(cuentas.BuscarClave(std::vector<Valor>{50901, 99})).has_value());

    // By the index and by scanning: the same rows, for every leading key.
    std::map<std::int32_t, std::size_t> cuantas;
    for (const Fila& fila : Filas(cuentas))
        ++cuantas[std::get<std::int32_t>(fila[0])];
    for (const auto& [comanda, n] : cuantas) {
        EXPECT_EQ(Exigir(cuentas.Buscar("PrimaryKey", std::vector<Valor>{comanda})).size(), n);
    }
    const std::int32_t tercera = std::next(cuantas.begin(), 2)->first;
    const std::int32_t quinta = std::next(cuantas.begin(), 4)->first;
    CursorIndice cursor = Exigir(cuentas.RecorrerIndice(
        "primarykey", {.desde = std::vector<Valor>{tercera}, .hasta = std::vector<Valor>{quinta}}));
    std::map<std::int32_t, std::size_t> halladas;
    std::int32_t anterior = 0;
    while (Exigir(cursor.Siguiente())) {
        const auto comanda = std::get<std::int32_t>(Exigir(cuentas.Leer(cursor.Id()))[0]);
        EXPECT_GE(comanda, anterior);
        anterior = comanda;
        ++halladas[comanda];
    }
    EXPECT_EQ(halladas, (std::map<std::int32_t, std::size_t>(std::next(cuantas.begin(), 2),
                                                             std::next(cuantas.begin(), 5))));
    EXPECT_EQ(cuentas.Buscar("nada", {}).error().codigo, Error::Codigo::NoEncontrado);
}

}  // namespace
}  // namespace quimo::jet::prueba
