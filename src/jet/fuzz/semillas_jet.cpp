// The first inputs of the fuzzer: small databases with everything that this library writes.
// semillas_jet FOLDER

#include <cstdint>
#include <filesystem>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

#include "exigir.h"
#include "jet/base_datos.h"

namespace quimo::jet {
namespace {

DefColumna Columna(const char* nombre, TipoColumna tipo, int largo = 0) {
    return {.nombre = nombre, .tipo = tipo, .largo = largo, .comprimido = largo == 0 || largo > 50};
}

/// Every column type, every kind of index, long values of every kind, deleted rows.
void Tipos(BaseDatos& base) {
    DefTabla def{
        .nombre = "Tipos",
        .columnas = {Columna("Id", TipoColumna::Largo), Columna("Si", TipoColumna::Logico),
                     Columna("Octeto", TipoColumna::Byte), Columna("Entero", TipoColumna::Entero),
                     Columna("Importe", TipoColumna::Moneda),
                     Columna("Simple", TipoColumna::Simple), Columna("Doble", TipoColumna::Doble),
                     Columna("Cuando", TipoColumna::Fecha),
                     Columna("Nombre", TipoColumna::Texto, 60),
                     Columna("Bytes", TipoColumna::Binario, 20), Columna("Guid", TipoColumna::Guid),
                     Columna("Numero", TipoColumna::Numerico), Columna("Nota", TipoColumna::Memo),
                     Columna("Ole", TipoColumna::Ole)},
        .indices = {}};
    def.columnas[0].autonumerico = true;
    def.indices = {{.nombre = "PrimaryKey", .columnas = {{"Id"}}, .primaria = true},
                   {.nombre = "Nombre", .columnas = {{"Nombre"}, {"Cuando", true}}},
                   {.nombre = "Numero", .columnas = {{"Numero"}}, .ignora_nulos = true},
                   {.nombre = "Guid", .columnas = {{"Guid", true}, {"Bytes"}}, .unico = true},
                   {.nombre = "Importe", .columnas = {{"Importe"}}, .requerido = true}};
    Tabla tabla = Exigir(base.CrearTabla(def));
    std::vector<IdFila> ids;
    constexpr int kFilas = 12;
    for (int i = 0; i < kFilas; ++i) {
        const auto n = static_cast<std::uint8_t>(i);
        const auto veces = static_cast<std::size_t>(i);
        Guid guid;
        guid.bytes[0] = n;
        ids.push_back(Exigir(tabla.Insertar(
            std::vector<Valor>{{},
                               i % 2 == 0,
                               i,
                               -i,
                               base::Dinero::DeEntero(i),
                               0.5F * static_cast<float>(i),
                               1.5 * i,
                               *Fecha::DeCivil({2026, 1, 1 + i, i, i, i}),
                               i == 3 ? std::u16string(u"—“€”") : std::u16string(veces, u'ñ'),
                               Binario(veces, n),
                               guid,
                               i == 5 ? Valor() : Valor(base::Decimal{i, 0}),
                               std::u16string(veces * 300, u'a'),
                               Binario(veces * 500, n)})));
    }
    for (const std::size_t i : {1U, 6U, 11U})
        Exigir(tabla.Borrar(ids[i]));
}

/// Rows that have outgrown their pages.
void Mudadas(BaseDatos& base) {
    Tabla tabla = Exigir(base.CrearTabla(
        {.nombre = "Mudadas",
         .columnas = {Columna("N", TipoColumna::Largo), Columna("A", TipoColumna::Binario, 510),
                      Columna("B", TipoColumna::Texto, 255)},
         .indices = {{.nombre = "N", .columnas = {{"N", true}}, .primaria = true}}}));
    std::vector<IdFila> ids;
    for (int i = 0; i < 40; ++i)
        ids.push_back(Exigir(tabla.Insertar(std::vector<Valor>{i, {}, std::u16string(u"breve")})));
    for (std::size_t i = 0; i < ids.size(); i += 2)
        Exigir(tabla.Actualizar(ids[i], std::vector<Cambio>{{1, Binario(400)}}));
    Exigir(tabla.Borrar(ids[4]));
}

/// An index of two levels with a shared prefix, another with long keys.
void Arbol(BaseDatos& base) {
    Tabla tabla = Exigir(base.CrearTabla(
        {.nombre = "Arbol",
         .columnas = {Columna("T", TipoColumna::Texto, 120), Columna("K", TipoColumna::Largo)},
         .indices = {{.nombre = "T", .columnas = {{"T"}}},
                     {.nombre = "K", .columnas = {{"K"}, {"T"}}}}}));
    for (int i = 0; i < 110; ++i) {
        const std::u16string cola = {static_cast<char16_t>(u'a' + i % 26),
                                     static_cast<char16_t>(u'a' + i / 26)};
        Exigir(tabla.Insertar(std::vector<Valor>{std::u16string(90, u'p') + cola, i * 37 % 101}));
    }
}

/// Pages that were given back.
void Vaciada(BaseDatos& base) {
    Tabla tabla = Exigir(base.CrearTabla(
        {.nombre = "Vaciada",
         .columnas = {Columna("M", TipoColumna::Memo), Columna("S", TipoColumna::Logico)},
         .indices = {{.nombre = "S", .columnas = {{"S"}}}}}));
    for (int i = 0; i < 4; ++i)
        Exigir(tabla.Insertar(std::vector<Valor>{std::u16string(3000, u'x'), i % 2 == 0}));
    Exigir(tabla.Vaciar());
    Exigir(tabla.Insertar(std::vector<Valor>{std::u16string(u"otra"), true}));
}

void Escribir(const std::filesystem::path& carpeta, const char* nombre,
              const std::vector<void (*)(BaseDatos&)>& partes) {
    const std::string ruta = (carpeta / nombre).string();
    std::filesystem::remove(ruta);
    BaseDatos base = Exigir(BaseDatos::Crear(ruta));
    for (const auto parte : partes)
        parte(base);
    Exigir(base.Guardar());
}

void EscribirSemillas(const std::filesystem::path& carpeta) {
    Escribir(carpeta, "vacia.mdb", {});
    Escribir(carpeta, "tipos.mdb", {Tipos});
    Escribir(carpeta, "mudadas.mdb", {Mudadas});
    Escribir(carpeta, "arbol.mdb", {Arbol});
    Escribir(carpeta, "vaciada.mdb", {Vaciada, Mudadas});
}

}  // namespace
}  // namespace quimo::jet

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    quimo::jet::EscribirSemillas(argv[1]);
}
