#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "jet/base_datos.h"
#include "jet/texto.h"
#include "jet/verificador.h"
#include "jet/volcado.h"

namespace quimo::jet::prueba {

inline std::string Datos(const std::string& nombre) { return QUIMO_TEST_DATA "/" + nombre; }

/// The folder with files made by Access; nothing where nobody has said where they are.
inline std::optional<std::filesystem::path> Muestras() {
    const std::filesystem::path carpeta = QUIMO_TEST_SAMPLES;
    if (!std::filesystem::is_directory(carpeta)) return std::nullopt;
    return carpeta;
}
constexpr const char* kSinMuestras =
    "QUIMO_JET_SAMPLES no dice dónde hay archivos hechos por Access: '" QUIMO_TEST_SAMPLES "'";

inline std::vector<std::uint8_t> LeerBytes(const std::string& ruta) {
    std::ifstream flujo(ruta, std::ios::binary);
    return {std::istreambuf_iterator<char>(flujo), std::istreambuf_iterator<char>()};
}

inline std::string LeerTexto(const std::string& ruta) {
    const auto bytes = LeerBytes(ruta);
    return {bytes.begin(), bytes.end()};
}

/// A folder of its own for each test, removed afterwards.
class Carpeta {
public:
    Carpeta() {
        std::string plantilla = (std::filesystem::temp_directory_path() / "jet-XXXXXX").string();
        ruta_ = ::mkdtemp(plantilla.data());
    }
    ~Carpeta() {
        std::error_code fallo;
        std::filesystem::remove_all(ruta_, fallo);
    }
    Carpeta(const Carpeta&) = delete;
    Carpeta& operator=(const Carpeta&) = delete;
    std::string operator/(const std::string& nombre) const { return ruta_ + "/" + nombre; }
    std::size_t Archivos() const {
        return static_cast<std::size_t>(
            std::distance(std::filesystem::directory_iterator(ruta_), {}));
    }

private:
    std::string ruta_;
};

/// The value, or the test's end with the error's text.
template <typename T>
T Exigir(Result<T> resultado) {
    if (!resultado) {
        ADD_FAILURE() << resultado.error().mensaje << " " << resultado.error().detalle;
        std::abort();
    }
    return std::move(resultado).value();
}
inline void Exigir(const Result<void>& resultado) {
    if (!resultado) FAIL() << resultado.error().mensaje << " " << resultado.error().detalle;
}

inline std::string Volcar(const BaseDatos& base) {
    std::ostringstream flujo;
    Exigir(VolcarBase(base, HaciaFlujo(flujo)));
    return flujo.str();
}

/// Every finding, or only the damage among them.
enum class Cuales { Todos, Fallas };
inline std::string Hallazgos(const BaseDatos& base, Cuales cuales = Cuales::Todos) {
    std::string texto;
    for (const Hallazgo& hallazgo : Exigir(Verificador::Verificar(base))) {
        if (cuales == Cuales::Fallas && hallazgo.gravedad != Hallazgo::Gravedad::Falla) continue;
        texto += hallazgo.mensaje + "\n";
    }
    return texto;
}

inline BaseDatos AbrirCopia(const std::string& nombre) {
    return Exigir(BaseDatos::AbrirImagen(LeerBytes(Datos(nombre)), Modo::Escritura));
}

inline std::vector<Fila> Filas(const Tabla& tabla) {
    std::vector<Fila> filas;
    Cursor cursor = Exigir(tabla.Recorrer());
    while (Exigir(cursor.Siguiente()))
        filas.push_back(cursor.Valores());
    return filas;
}

}  // namespace quimo::jet::prueba
