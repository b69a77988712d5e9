/// Makes a terminal's file bad in ways that need its structure: rows with impossible values, tables
/// and columns that are missing or of another kind. What only needs bytes changed is done by the
/// caller.
///
/// usage: archivo_malo poner FILE TABLE KEY COLUMN=VALUE...
///        archivo_malo rehacer FILE CHANGE...
///
/// `poner` changes the row with this key (numbers, a comma between two) or adds it. `rehacer`
/// writes the file anew with its definitions changed: sin-tabla:T, sin-columna:T.C, sin-llave:T,
/// vaciar:T, tipo:T.C=doble (or texto, entero, fecha, dinero), largo:T.C=200. A value is nulo,
/// entero:5, dinero:1.2345, diezmilesimas:-1, doble:1e300, fecha:-5.5 (days as the file keeps
/// them), logico:1, texto:abc or hex:0041,D83D (UTF-16 units).
#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "jet/base_datos.h"

namespace {

namespace base = quimo::base;
namespace jet = quimo::jet;

[[noreturn]] void Rendirse(const std::string& porque) {
    std::cerr << "archivo_malo: " << porque << '\n';
    std::exit(1);
}

template <typename T>
T Exigir(base::Result<T> resultado) {
    if (!resultado) Rendirse(resultado.error().mensaje);
    return std::move(resultado).value();
}

void Exigir(const base::Result<void>& resultado) {
    if (!resultado) Rendirse(resultado.error().mensaje);
}

/// The text before the first of a mark and the one behind it.
std::pair<std::string, std::string> Partir(std::string_view texto, char marca) {
    const auto donde = texto.find(marca);
    if (donde == std::string_view::npos) Rendirse("falta '" + std::string(1, marca) + "'");
    return {std::string(texto.substr(0, donde)), std::string(texto.substr(donde + 1))};
}

std::u16string DeUtf8(const std::string& texto) {
    std::u16string salida;
    for (std::size_t i = 0; i < texto.size();) {
        const auto primero = static_cast<unsigned char>(texto[i]);
        int mas = 0;
        char32_t punto = primero;
        if (primero >= 0xF0) {
            mas = 3;
            punto = primero & 0x07U;
        } else if (primero >= 0xE0) {
            mas = 2;
            punto = primero & 0x0FU;
        } else if (primero >= 0xC0) {
            mas = 1;
            punto = primero & 0x1FU;
        }
        for (++i; mas > 0 && i < texto.size(); --mas, ++i)
            punto = punto << 6U | (static_cast<unsigned char>(texto[i]) & 0x3FU);
        if (punto >= 0x10000) {
            salida += static_cast<char16_t>(0xD800 + ((punto - 0x10000) >> 10U));
            salida += static_cast<char16_t>(0xDC00 + ((punto - 0x10000) & 0x3FFU));
        } else {
            salida += static_cast<char16_t>(punto);
        }
    }
    return salida;
}

std::u16string DeHex(std::string_view texto) {
    std::u16string salida;
    while (!texto.empty()) {
        unsigned unidad = 0;
        const auto leido = std::from_chars(texto.data(), texto.data() + texto.size(), unidad, 16);
        if (leido.ec != std::errc()) Rendirse("hex mal escrito");
        salida += static_cast<char16_t>(unidad);
        texto.remove_prefix(static_cast<std::size_t>(leido.ptr - texto.data()));
        if (!texto.empty()) texto.remove_prefix(1);
    }
    return salida;
}

jet::Valor LeerValor(const std::string& escrito) {
    if (escrito == "nulo") return std::monostate();
    const auto [clase, texto] = Partir(escrito, ':');
    if (clase == "entero")
        return static_cast<std::int32_t>(std::strtol(texto.c_str(), nullptr, 10));
    if (clase == "doble") return std::strtod(texto.c_str(), nullptr);
    if (clase == "fecha") return jet::Fecha{std::strtod(texto.c_str(), nullptr)};
    if (clase == "logico") return texto == "1";
    if (clase == "texto") return DeUtf8(texto);
    if (clase == "hex") return DeHex(texto);
    if (clase == "diezmilesimas") {
        return base::Dinero::DeDiezmilesimas(std::strtoll(texto.c_str(), nullptr, 10));
    }
    const auto dinero = base::Dinero::DeTexto(texto);
    if (clase != "dinero" || !dinero) Rendirse("no es un valor: " + escrito);
    return *dinero;
}

std::vector<jet::Valor> LeerClave(std::string_view texto) {
    std::vector<jet::Valor> clave;
    while (true) {
        const auto coma = texto.find(',');
        const std::string parte(texto.substr(0, coma));
        clave.emplace_back(static_cast<std::int32_t>(std::strtol(parte.c_str(), nullptr, 10)));
        if (coma == std::string_view::npos) return clave;
        texto.remove_prefix(coma + 1);
    }
}

/// The row with a key, in tables without a primary key too.
std::optional<jet::IdFila> Buscar(const jet::Tabla& tabla, const std::vector<jet::Valor>& clave) {
    auto cursor = Exigir(tabla.Recorrer());
    while (Exigir(cursor.Siguiente())) {
        if (std::equal(clave.begin(), clave.end(), cursor.Valores().begin())) return cursor.Id();
    }
    return std::nullopt;
}

void Poner(const std::string& archivo, const std::vector<std::string>& argumentos) {
    auto base = Exigir(jet::BaseDatos::Abrir(archivo, jet::Modo::Escritura));
    auto tabla = Exigir(base.AbrirTabla(argumentos[0]));
    const auto clave = LeerClave(argumentos[1]);
    std::vector<jet::Cambio> cambios;
    for (std::size_t i = 2; i < argumentos.size(); ++i) {
        const auto [columna, valor] = Partir(argumentos[i], '=');
        cambios.push_back({Exigir(tabla.Columna(columna)), LeerValor(valor)});
    }
    const auto id = Buscar(tabla, clave);
    if (id) {
        Exigir(tabla.Actualizar(*id, cambios));
    } else {
        std::vector<jet::Valor> fila(tabla.Definicion().columnas.size());
        std::copy(clave.begin(), clave.end(), fila.begin());
        for (const jet::Cambio& cambio : cambios)
            fila[cambio.columna] = cambio.valor;
        Exigir(tabla.Insertar(fila));
    }
    Exigir(base.Guardar());
}

struct Alteracion {
    std::string que;
    std::string tabla;
    std::string columna;
    std::string valor;
};

Alteracion LeerAlteracion(const std::string& escrita) {
    Alteracion alteracion;
    std::string resto;
    std::tie(alteracion.que, resto) = Partir(escrita, ':');
    if (resto.find('=') != std::string::npos) {
        std::tie(resto, alteracion.valor) = Partir(resto, '=');
    }
    alteracion.tabla = resto;
    if (resto.find('.') != std::string::npos) {
        std::tie(alteracion.tabla, alteracion.columna) = Partir(resto, '.');
    }
    return alteracion;
}

jet::TipoColumna TipoDe(const std::string& nombre) {
    if (nombre == "doble") return jet::TipoColumna::Doble;
    if (nombre == "texto") return jet::TipoColumna::Texto;
    if (nombre == "entero") return jet::TipoColumna::Largo;
    if (nombre == "fecha") return jet::TipoColumna::Fecha;
    if (nombre == "dinero") return jet::TipoColumna::Moneda;
    Rendirse("no es un tipo: " + nombre);
}

/// The value as a column of another type keeps it; NULL where there is no such value.
jet::Valor Convertir(const jet::Valor& valor, jet::TipoColumna tipo) {
    std::string texto;
    double numero = 0;
    if (const auto* entero = std::get_if<std::int32_t>(&valor)) {
        texto = std::to_string(*entero);
        numero = *entero;
    } else if (const auto* dinero = std::get_if<base::Dinero>(&valor)) {
        texto = dinero->ATexto();
        numero = static_cast<double>(dinero->Diezmilesimas()) / 10000;
    } else if (const auto* fecha = std::get_if<jet::Fecha>(&valor)) {
        texto = std::to_string(fecha->dias);
        numero = fecha->dias;
    } else {
        return std::monostate();
    }
    if (tipo == jet::TipoColumna::Doble) return numero;
    if (tipo == jet::TipoColumna::Fecha) return jet::Fecha{numero};
    if (tipo == jet::TipoColumna::Texto) return DeUtf8(texto);
    if (tipo == jet::TipoColumna::Largo) return static_cast<std::int32_t>(numero);
    const auto leido = base::Dinero::DeTexto(texto);
    return leido ? jet::Valor(*leido) : jet::Valor();
}

/// Copies one table into the new file, with its definition changed. The source's column for each of
/// the new ones goes along.
void CopiarTabla(const jet::Tabla& vieja, jet::BaseDatos& nueva,
                 const std::vector<Alteracion>& alteraciones) {
    jet::DefTabla definicion{vieja.Nombre(), {}, {}};
    std::vector<std::size_t> origen;
    bool con_llave = true;
    bool con_filas = true;
    for (const jet::DefColumna& columna : vieja.Definicion().columnas) {
        jet::DefColumna copia = columna;
        bool sigue = true;
        for (const Alteracion& a : alteraciones) {
            if (a.tabla != definicion.nombre) continue;
            con_llave = con_llave && a.que != "sin-llave";
            con_filas = con_filas && a.que != "vaciar";
            if (a.columna != columna.nombre) continue;
            if (a.que == "sin-columna") sigue = false;
            if (a.que == "largo") copia.largo = std::atoi(a.valor.c_str());
            if (a.que == "tipo") copia.tipo = TipoDe(a.valor);
            if (a.que == "tipo" && copia.tipo == jet::TipoColumna::Texto) copia.largo = 100;
        }
        if (!sigue) continue;
        definicion.columnas.push_back(copia);
        origen.push_back(Exigir(vieja.Columna(columna.nombre)));
    }
    for (const jet::DefIndice& indice : vieja.Definicion().indices) {
        bool completo = con_llave && !indice.foranea;
        for (const jet::ColumnaDeIndice& de_indice : indice.columnas) {
            completo = completo && std::any_of(definicion.columnas.begin(),
                                               definicion.columnas.end(), [&](const auto& columna) {
                                                   return columna.nombre == de_indice.nombre;
                                               });
        }
        if (completo) definicion.indices.push_back(indice);
    }
    jet::Tabla tabla = Exigir(nueva.CrearTabla(definicion));
    if (!con_filas) return;
    auto cursor = Exigir(vieja.Recorrer());
    while (Exigir(cursor.Siguiente())) {
        std::vector<jet::Valor> fila;
        for (std::size_t i = 0; i < origen.size(); ++i) {
            const jet::Valor& valor = cursor.Valores()[origen[i]];
            const bool mismo =
                definicion.columnas[i].tipo == vieja.Definicion().columnas[origen[i]].tipo;
            fila.push_back(mismo ? valor : Convertir(valor, definicion.columnas[i].tipo));
        }
        Exigir(tabla.Insertar(fila));
    }
}

void Rehacer(const std::string& archivo, const std::vector<std::string>& argumentos) {
    std::vector<Alteracion> alteraciones;
    for (const std::string& argumento : argumentos)
        alteraciones.push_back(LeerAlteracion(argumento));
    const auto vieja = Exigir(jet::BaseDatos::Abrir(archivo));
    const std::string otro = archivo + ".nuevo";
    auto nueva = Exigir(jet::BaseDatos::Crear(otro));
    for (const std::string& nombre : Exigir(vieja.Tablas())) {
        const bool falta = std::any_of(
            alteraciones.begin(), alteraciones.end(),
            [&](const Alteracion& a) { return a.que == "sin-tabla" && a.tabla == nombre; });
        if (!falta) CopiarTabla(Exigir(vieja.AbrirTabla(nombre)), nueva, alteraciones);
    }
    Exigir(nueva.Guardar());
    std::filesystem::rename(otro, archivo);
}

}  // namespace

int main(int cuantos, char** palabras) {
    const std::vector<std::string> argumentos(palabras + 1, palabras + cuantos);
    if (argumentos.size() < 3) Rendirse("faltan argumentos");
    const std::vector<std::string> resto(argumentos.begin() + 2, argumentos.end());
    if (argumentos[0] == "poner" && resto.size() >= 2) {
        Poner(argumentos[1], resto);
    } else if (argumentos[0] == "rehacer") {
        Rehacer(argumentos[1], resto);
    } else {
        Rendirse("no es una operación: " + argumentos[0]);
    }
    return 0;
}
