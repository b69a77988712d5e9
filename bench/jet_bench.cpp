// Reading and writing .mdb files: a table of 20 MB against mdbtools, a terminal's database, a file
// with thousands of tables.

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "exigir.h"
#include "jet/base_datos.h"
#include "jet/texto.h"
#include "jet/verificador.h"
#include "jet/volcado.h"

namespace quimo::jet {
namespace {

constexpr std::uintmax_t kTamano = 20U << 20;
constexpr int kProductos = 5000;
constexpr int kTablas = 3200;

std::string Carpeta() {
    static const std::string kCarpeta = [] {
        const auto ruta = std::filesystem::temp_directory_path() / "jet_bench";
        std::filesystem::create_directories(ruta);
        return ruta.string();
    }();
    return kCarpeta;
}

/// A table as the sales of a day are: keys, amounts, dates, short texts. Made once.
const std::string& ArchivoGrande() {
    static const std::string kRuta = [] {
        const std::string ruta = Carpeta() + "/grande.mdb";
        std::filesystem::remove(ruta);
        BaseDatos base = Exigir(BaseDatos::Crear(ruta));
        Tabla tabla = Exigir(base.CrearTabla(
            {.nombre = "Ventas",
             .columnas = {{.nombre = "Id", .tipo = TipoColumna::Largo},
                          {.nombre = "Comanda", .tipo = TipoColumna::Largo},
                          {.nombre = "Producto",
                           .tipo = TipoColumna::Texto,
                           .largo = 50,
                           .comprimido = true},
                          {.nombre = "Precio", .tipo = TipoColumna::Moneda},
                          {.nombre = "Hora", .tipo = TipoColumna::Fecha},
                          {.nombre = "Cantidad", .tipo = TipoColumna::Doble},
                          {.nombre = "Cortesia", .tipo = TipoColumna::Logico},
                          {.nombre = "Comentario", .tipo = TipoColumna::Texto, .largo = 100}},
             .indices = {}}));
        for (int i = 0;; ++i) {
            const auto fecha = Fecha::DeCivil({2026, 11, 1 + i % 28, i % 24, i % 60, i % 59, 0});
            Exigir(tabla.Insertar(std::vector<Valor>{
                i, i / 4, AUtf16("Enchiladas suizas número " + std::to_string(i % 500)),
                base::Dinero::DeDiezmilesimas(i * 12500), *fecha, i * 0.25, i % 7 == 0,
                i % 3 == 0 ? Valor() : Valor(std::u16string(u"sin cebolla — bien cocido"))}));
            if (i % 10000 == 0 && Exigir(base.Imagen()).size() >= kTamano) break;
        }
        Exigir(base.Guardar());
        return ruta;
    }();
    return kRuta;
}

void Recorrer(benchmark::State& estado) {
    std::size_t filas = 0;
    const std::string& ruta = ArchivoGrande();
    for ([[maybe_unused]] const auto vuelta : estado) {
        const BaseDatos base = Exigir(BaseDatos::Abrir(ruta));
        Cursor cursor = Exigir(Exigir(base.AbrirTabla("Ventas")).Recorrer());
        filas = 0;
        while (Exigir(cursor.Siguiente()))
            ++filas;
    }
    estado.counters["filas"] = static_cast<double>(filas);
    estado.SetBytesProcessed(static_cast<std::int64_t>(estado.iterations()) *
                             static_cast<std::int64_t>(std::filesystem::file_size(ruta)));
}

template <typename Volcado>
void Volcar(benchmark::State& estado, Volcado volcado) {
    const std::string& ruta = ArchivoGrande();
    for ([[maybe_unused]] const auto vuelta : estado) {
        const BaseDatos base = Exigir(BaseDatos::Abrir(ruta));
        std::FILE* nada = std::fopen("/dev/null", "w");
        Exigir(volcado(base, "Ventas", [nada](std::string_view texto) {
            return std::fwrite(texto.data(), 1, texto.size(), nada) == texto.size();
        }));
        std::fclose(nada);
    }
}

void MdbExport(benchmark::State& estado) {
    const std::string orden = "mdb-export " + ArchivoGrande() + " Ventas > /dev/null 2>&1";
    for ([[maybe_unused]] const auto vuelta : estado) {
        if (std::system(orden.c_str()) != 0) {
            estado.SkipWithError("no está mdbtools");
            break;
        }
    }
}

/// The value that a column of a catalogue takes for product i.
Valor ValorDe(const DefColumna& columna, int i) {
    switch (columna.tipo) {
        case TipoColumna::Logico:
            return i % 2 == 0;
        case TipoColumna::Byte:
        case TipoColumna::Entero:
            return i % 100;
        case TipoColumna::Largo:
        case TipoColumna::Moneda:
        case TipoColumna::Simple:
        case TipoColumna::Doble:
        case TipoColumna::Numerico:
            return i;
        case TipoColumna::Fecha:
            return Fecha{46340.0 + i % 365};
        case TipoColumna::Texto: {
            std::u16string texto = AUtf16("Producto número " + std::to_string(i));
            if (columna.largo < static_cast<int>(texto.size())) {
                texto = texto.substr(texto.size() - static_cast<std::size_t>(columna.largo));
            }
            return texto;
        }
        case TipoColumna::Memo:
            return AUtf16("Nota del producto " + std::to_string(i));
        case TipoColumna::Binario:
        case TipoColumna::Ole:
        case TipoColumna::Guid:
        case TipoColumna::Bloque:
            break;
    }
    return {};
}

/// The template opened, 5,000 products, fifty rows in every other table, then every price changed
/// by its key, and saved.
void TerminalNuevo(benchmark::State& estado) {
    const std::string ruta = Carpeta() + "/terminal.mdb";
    for ([[maybe_unused]] const auto vuelta : estado) {
        BaseDatos base = Exigir(BaseDatos::Abrir(QUIMO_BENCH_PLANTILLA));
        base = Exigir(BaseDatos::AbrirImagen(Exigir(base.Imagen()), Modo::Escritura));
        for (const std::string& nombre : Exigir(base.Tablas())) {
            Tabla tabla = Exigir(base.AbrirTabla(nombre));
            const int filas = nombre == "Producto" ? kProductos : 50;
            for (int i = 0; i < filas; ++i) {
                Fila fila;
                for (const DefColumna& c : tabla.Definicion().columnas)
                    fila.push_back(ValorDe(c, i));
                Exigir(tabla.Insertar(fila));
            }
        }
        Tabla productos = Exigir(base.AbrirTabla("Producto"));
        const auto& columnas = productos.Definicion().columnas;
        std::size_t precio = 0;
        while (columnas[precio].tipo != TipoColumna::Moneda)
            ++precio;
        for (int i = 0; i < kProductos; ++i) {
            const auto id = Exigir(productos.BuscarClave(std::vector<Valor>{i}));
            Exigir(productos.Actualizar(*id, std::vector<Cambio>{{precio, i + 1}}));
        }
        Exigir(base.GuardarComo(ruta));
    }
    const BaseDatos hecha = Exigir(BaseDatos::Abrir(ruta));
    if (!Exigir(Verificador::Verificar(hecha)).empty()) estado.SkipWithError("no verifica");
}

/// A file with very many tables, as generated ones are. Made once.
const std::string& ArchivoDeMuchasTablas() {
    static const std::string kRuta = [] {
        const std::string ruta = Carpeta() + "/muchas.mdb";
        std::filesystem::remove(ruta);
        BaseDatos base = Exigir(BaseDatos::Crear(ruta));
        for (int i = 0; i < kTablas; ++i) {
            Exigir(base.CrearTabla({.nombre = "Tabla" + std::to_string(i),
                                    .columnas = {{.nombre = "Id", .tipo = TipoColumna::Largo}},
                                    .indices = {}}));
        }
        Exigir(base.Guardar());
        return ruta;
    }();
    return kRuta;
}

void AbrirTodasLasTablas(benchmark::State& estado) {
    const std::string& ruta = ArchivoDeMuchasTablas();
    for ([[maybe_unused]] const auto vuelta : estado) {
        const BaseDatos base = Exigir(BaseDatos::Abrir(ruta));
        for (const std::string& nombre : Exigir(base.Tablas()))
            Exigir(base.AbrirTabla(nombre));
    }
}

void VerificarTodasLasTablas(benchmark::State& estado) {
    const BaseDatos base = Exigir(BaseDatos::Abrir(ArchivoDeMuchasTablas()));
    for ([[maybe_unused]] const auto vuelta : estado) {
        if (!Exigir(Verificador::Verificar(base)).empty()) estado.SkipWithError("no verifica");
    }
}

}  // namespace

BENCHMARK(Recorrer)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Volcar, json, VolcarTabla)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Volcar, csv, VolcarCsv)->Unit(benchmark::kMillisecond);
BENCHMARK(MdbExport)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(TerminalNuevo)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(AbrirTodasLasTablas)->Unit(benchmark::kMillisecond);
BENCHMARK(VerificarTodasLasTablas)->Unit(benchmark::kMillisecond);

}  // namespace quimo::jet

BENCHMARK_MAIN();
