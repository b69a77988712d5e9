// Opens, dumps, verifies and changes whatever bytes it is given. Nothing may crash, hang or grow
// without bounds; what a refused change leaves behind must still be readable.

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "base/check.h"
#include "jet/base_datos.h"
#include "jet/reparacion.h"
#include "jet/verificador.h"
#include "jet/volcado.h"

using quimo::jet::BaseDatos;
using quimo::jet::Cambio;
using quimo::jet::DefColumna;
using quimo::jet::Fila;
using quimo::jet::IdFila;
using quimo::jet::Modo;
using quimo::jet::Sistema;
using quimo::jet::Tabla;
using quimo::jet::TipoColumna;
using quimo::jet::Valor;
using quimo::jet::Verificador;

namespace {

constexpr std::size_t kTamPagina = 4096;
constexpr std::size_t kImagenMax = 64 * kTamPagina;

Valor ValorSencillo(const DefColumna& columna) {
    switch (columna.tipo) {
        case TipoColumna::Logico:
            return true;
        case TipoColumna::Texto:
        case TipoColumna::Memo:
            return std::u16string(columna.largo > 2 || columna.tipo == TipoColumna::Memo ? 3 : 1,
                                  u'x');
        case TipoColumna::Ole:
            return std::vector<std::uint8_t>(5000, 7);
        case TipoColumna::Byte:
        case TipoColumna::Entero:
        case TipoColumna::Largo:
        case TipoColumna::Moneda:
        case TipoColumna::Simple:
        case TipoColumna::Doble:
            return 7;
        case TipoColumna::Fecha:
        case TipoColumna::Binario:
        case TipoColumna::Guid:
        case TipoColumna::Numerico:
        case TipoColumna::Bloque:
            break;
    }
    return {};
}

/// Every result is looked at only for being there: errors are what most inputs give.
void Cambiar(Tabla& tabla) {
    Fila fila;
    std::vector<Cambio> cambios;
    for (const DefColumna& columna : tabla.Definicion().columnas) {
        fila.push_back(ValorSencillo(columna));
        cambios.push_back({fila.size() - 1, fila.back()});
    }
    const auto nueva = tabla.Insertar(fila);
    std::vector<IdFila> ids;
    if (auto cursor = tabla.Recorrer()) {
        for (auto hay = cursor->Siguiente(); hay && *hay && ids.size() < 8;
             hay = cursor->Siguiente()) {
            ids.push_back(cursor->Id());
        }
    }
    for (const auto& indice : tabla.Definicion().indices) {
        static_cast<void>(tabla.Buscar(indice.nombre, {}));
    }
    for (std::size_t i = 0; i < ids.size(); ++i) {
        static_cast<void>(i % 2 == 0 ? tabla.Actualizar(ids[i], cambios) : tabla.Borrar(ids[i]));
    }
    if (nueva) static_cast<void>(tabla.Borrar(*nueva));
    if (ids.size() % 2 == 1) static_cast<void>(tabla.Vaciar());
}

}  // namespace

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* datos, std::size_t largo, std::size_t maximo);

/// Changes a few bytes of one page in place, mostly where its structure is, so that the rest of the
/// file goes on making sense.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* datos, std::size_t largo,
                                               std::size_t maximo, unsigned semilla) {
    constexpr std::size_t kVentana = 16;
    std::minstd_rand azar(semilla);
    const std::size_t paginas = largo / kTamPagina;
    if (paginas < 2 || azar() % 100 == 0) return LLVMFuzzerMutate(datos, largo, maximo);
    const std::size_t pagina = 1 + azar() % (paginas - 1);
    std::size_t desde = azar() % (kTamPagina - kVentana);
    const auto donde = azar() % 4;
    if (donde < 2) desde = azar() % 128;
    if (donde == 2) desde = kTamPagina - kVentana - azar() % 256;
    std::uint8_t* ventana = datos + pagina * kTamPagina + desde;
    LLVMFuzzerMutate(ventana, kVentana, kVentana);
    return largo;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* datos, std::size_t largo) {
    if (largo > kImagenMax) return 0;
    const std::vector<std::uint8_t> imagen(datos, datos + largo);
    auto base = BaseDatos::AbrirImagen(imagen, Modo::Escritura);
    if (!base) return 0;
    static_cast<void>(quimo::jet::VolcarBase(*base, [](std::string_view) { return true; }));
    const auto antes = Verificador::Verificar(*base);
    // A repair gives an error or a copy that its own verification finds sound.
    std::vector<std::uint8_t> copia;
    const auto reparada = quimo::jet::RepararImagen(imagen, copia);
    QUIMO_CHECK(reparada || reparada.error().codigo != quimo::base::Error::Codigo::Interno);
    const auto tablas = base->Tablas(Sistema::Si);
    if (!tablas) return 0;
    for (const std::string& nombre : *tablas) {
        if (auto tabla = base->AbrirTabla(nombre)) Cambiar(*tabla);
    }
    static_cast<void>(base->CrearTabla({.nombre = "Nueva",
                                        .columnas = {{.nombre = "A"}, {.nombre = "B"}},
                                        .indices = {{.nombre = "A", .columnas = {{"A"}}}}}));
    const auto despues = Verificador::Verificar(*base);
    // A sound file stays sound.
    if (antes && antes->empty()) QUIMO_CHECK(despues && despues->empty());
    const auto guardada = base->Imagen();
    QUIMO_CHECK(guardada && guardada->size() >= largo / kTamPagina * kTamPagina);
    return 0;
}
