#include "jet/esquema.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <utility>

#include "jet/texto.h"

namespace quimo::jet {

namespace {

constexpr std::size_t kCadenaMax = 64;  // definition pages; the largest definition takes 15
constexpr std::size_t kLargoColumna = 25;
constexpr std::size_t kLargoReal = 52;
constexpr std::size_t kLargoLogico = 28;
constexpr std::size_t kRealesMax = 255;
constexpr std::size_t kLogicosMax = 1024;

/// Takes the definition apart from front to back. Reading past the end gives zeros and is noted.
class Lector {
public:
    explicit Lector(std::span<const std::uint8_t> datos) : datos_(datos) {}
    /// The next n bytes.
    const std::uint8_t* Tomar(std::size_t n) {
        static constexpr std::array<std::uint8_t, 64> kCeros{};
        if (n > datos_.size() - pos_) {
            agotado_ = true;
            return kCeros.data();
        }
        const std::uint8_t* p = datos_.data() + pos_;
        pos_ += n;
        return p;
    }
    std::string TomarNombre() {
        const std::size_t bytes = U16(Tomar(2));
        if (bytes > datos_.size() - pos_ || bytes % 2 != 0 || bytes > 2 * kNombreMax) {
            agotado_ = true;
            return {};
        }
        std::u16string nombre(bytes / 2, u'\0');
        for (char16_t& c : nombre)
            c = static_cast<char16_t>(U16(Tomar(2)));
        return AUtf8(nombre);
    }
    bool Agotado() const { return agotado_; }
    std::size_t Posicion() const { return pos_; }

private:
    std::span<const std::uint8_t> datos_;
    std::size_t pos_ = 0;
    bool agotado_ = false;
};

Result<std::vector<std::uint8_t>> LeerCadena(Almacen& almacen, Esquema& esquema) {
    std::vector<std::uint8_t> datos;
    std::uint32_t numero = esquema.pagina;
    while (numero != 0) {
        QUIMO_TRY(const PaginaLeida pagina, almacen.Leer(numero));
        if (pagina->bytes[0] != kPaginaDefinicion || esquema.cadena.size() >= kCadenaMax ||
            std::find(esquema.cadena.begin(), esquema.cadena.end(), numero) !=
                esquema.cadena.end()) {
            return almacen.Danado("la página " + std::to_string(numero) +
                                  " no es la definición de la tabla " + esquema.tabla.nombre);
        }
        esquema.cadena.push_back(numero);
        const std::size_t desde = datos.empty() ? 0 : 8;
        datos.insert(datos.end(), pagina->bytes.begin() + static_cast<std::ptrdiff_t>(desde),
                     pagina->bytes.end());
        numero = U32(pagina->data() + 4);
    }
    return datos;
}

struct ColumnaLeida {
    DefColumna def;
    ColumnaFisica fisica;
};

ColumnaLeida LeerColumna(const std::uint8_t* p) {
    ColumnaLeida c;
    c.def.tipo = static_cast<TipoColumna>(p[0]);
    c.fisica.numero = U16(p + 5);
    c.fisica.ranura_variable = U16(p + 7);
    c.fisica.banderas = p[15];
    c.fisica.fija = (p[15] & 0x01) != 0;
    c.fisica.desplazamiento = U16(p + 21);
    c.fisica.bytes = U16(p + 23);
    c.def.comprimido = (p[16] & 0x01) != 0;
    c.def.autonumerico = c.def.tipo == TipoColumna::Largo && (p[15] & 0x04) != 0;
    if (c.def.tipo == TipoColumna::Numerico) {
        c.def.precision = p[11];
        c.def.escala = p[12];
    } else if (EsTexto(c.def.tipo)) {
        c.fisica.orden = U16(p + 11);
        c.fisica.version_orden = p[14];
    }
    if (c.def.tipo == TipoColumna::Texto) c.def.largo = c.fisica.bytes / 2;
    if (c.def.tipo == TipoColumna::Binario) c.def.largo = c.fisica.bytes;
    const std::size_t fijo = TamanoFijo(c.def.tipo);
    if (fijo != 0) c.fisica.bytes = static_cast<std::uint16_t>(fijo);
    return c;
}

Result<void> LeerColumnas(Almacen& almacen, Lector& lector, std::size_t cuantas, Esquema& esquema) {
    std::vector<ColumnaLeida> columnas;
    for (std::size_t i = 0; i < cuantas && !lector.Agotado(); ++i) {
        columnas.push_back(LeerColumna(lector.Tomar(kLargoColumna)));
    }
    for (ColumnaLeida& c : columnas)
        c.def.nombre = lector.TomarNombre();
    std::stable_sort(columnas.begin(), columnas.end(), [](const auto& a, const auto& b) {
        return a.fisica.numero < b.fisica.numero;
    });
    std::vector<bool> variables(esquema.ranuras_variables, false);
    for (std::size_t i = 0; i < columnas.size() && !lector.Agotado(); ++i) {
        ColumnaLeida& c = columnas[i];
        const ColumnaFisica& f = c.fisica;
        bool mal =
            f.numero >= esquema.ranuras_columna ||
            (i > 0 && f.numero == columnas[i - 1].fisica.numero) ||
            (c.def.tipo == TipoColumna::Numerico && (c.def.escala > 28 || c.def.precision > 28));
        if (f.fija && c.def.tipo != TipoColumna::Logico) {
            const std::size_t fin = std::size_t{f.desplazamiento} + f.bytes;
            esquema.parte_fija = std::max(esquema.parte_fija, fin);
            mal = mal || EsLargo(c.def.tipo) || fin > kTamPagina;
        } else if (!f.fija) {
            mal = mal || f.ranura_variable >= variables.size() || variables[f.ranura_variable];
            if (!mal) variables[f.ranura_variable] = true;
        }
        if (mal) {
            return almacen.Danado("la columna " + c.def.nombre + " de la tabla " +
                                  esquema.tabla.nombre + " no está bien definida");
        }
        if (c.def.autonumerico && !esquema.autonumerica) esquema.autonumerica = i;
        esquema.tabla.columnas.push_back(std::move(c.def));
        esquema.fisicas.push_back(c.fisica);
    }
    return {};
}

Result<void> LeerReales(Almacen& almacen, Lector& lector, std::size_t cuantos, Esquema& esquema) {
    for (std::size_t i = 0; i < cuantos && !lector.Agotado(); ++i) {
        const std::uint8_t* p = lector.Tomar(kLargoReal);
        if (lector.Agotado()) break;
        IndiceReal real;
        for (std::size_t k = 0; k < kColumnasDeIndiceMax; ++k) {
            const std::uint16_t numero = U16(p + 4 + 3 * k);
            if (numero == 0xFFFF) continue;
            const auto hallada =
                std::find_if(esquema.fisicas.begin(), esquema.fisicas.end(),
                             [&](const ColumnaFisica& f) { return f.numero == numero; });
            if (hallada == esquema.fisicas.end()) {
                return almacen.Danado("un índice de la tabla " + esquema.tabla.nombre +
                                      " usa una columna que no hay");
            }
            real.columnas.push_back({static_cast<std::size_t>(hallada - esquema.fisicas.begin()),
                                     p[4 + 3 * k + 2] == 0});
        }
        real.mapa = Puntero::Leer(p + 34);
        real.raiz = U32(p + 38);
        real.banderas = p[46];
        if (real.columnas.empty()) {
            return almacen.Danado("un índice de la tabla " + esquema.tabla.nombre +
                                  " no tiene columnas");
        }
        esquema.reales.push_back(std::move(real));
    }
    return {};
}

Result<void> LeerLogicos(Almacen& almacen, Lector& lector, std::size_t cuantos, Esquema& esquema) {
    for (std::size_t i = 0; i < cuantos && !lector.Agotado(); ++i) {
        const std::uint8_t* p = lector.Tomar(kLargoLogico);
        if (lector.Agotado()) break;
        const std::uint32_t real = U32(p + 8);
        if (real >= esquema.reales.size()) {
            return almacen.Danado("un índice de la tabla " + esquema.tabla.nombre +
                                  " no tiene datos");
        }
        DefIndice indice;
        indice.primaria = p[23] == 1;
        indice.foranea = p[23] == 2;
        if (indice.primaria) esquema.reales[real].primario = true;
        esquema.tabla.indices.push_back(std::move(indice));
        esquema.real_de.push_back(real);
    }
    for (std::size_t i = 0; i < esquema.tabla.indices.size(); ++i) {
        DefIndice& indice = esquema.tabla.indices[i];
        indice.nombre = lector.TomarNombre();
        IndiceReal& real = esquema.reales[esquema.real_de[i]];
        if (real.nombre.empty() || indice.primaria) real.nombre = indice.nombre;
        indice.unico = indice.primaria || (real.banderas & 0x01) != 0;
        indice.requerido = indice.primaria || (real.banderas & 0x08) != 0;
        indice.ignora_nulos = real.IgnoraNulos();
        for (const IndiceReal::Columna& c : real.columnas) {
            indice.columnas.push_back({esquema.tabla.columnas[c.posicion].nombre, c.descendente});
        }
    }
    return {};
}

Result<void> LeerMapasDeLargos(Almacen& almacen, Lector& lector, Esquema& esquema) {
    for (std::size_t i = 0; i <= kColumnasMax && !lector.Agotado(); ++i) {
        const std::uint16_t numero = U16(lector.Tomar(2));
        if (numero == 0xFFFF) return {};
        const std::uint8_t* p = lector.Tomar(8);
        for (ColumnaFisica& f : esquema.fisicas) {
            if (f.numero != numero) continue;
            f.mapa_largos = Puntero::Leer(p);
            f.mapa_largos_libres = Puntero::Leer(p + 4);
        }
    }
    return almacen.Danado("la definición de la tabla " + esquema.tabla.nombre + " no termina");
}

}  // namespace

std::optional<std::size_t> Esquema::BuscarColumna(std::string_view nombre) const {
    for (std::size_t i = 0; i < tabla.columnas.size(); ++i) {
        if (MismoNombre(tabla.columnas[i].nombre, nombre)) return i;
    }
    return std::nullopt;
}

std::optional<std::size_t> Esquema::BuscarIndice(std::string_view nombre) const {
    for (std::size_t i = 0; i < tabla.indices.size(); ++i) {
        if (MismoNombre(tabla.indices[i].nombre, nombre)) return i;
    }
    return std::nullopt;
}

Result<std::shared_ptr<const Esquema>> LeerEsquema(Almacen& almacen, std::uint32_t pagina,
                                                   const std::string& nombre) {
    auto esquema = std::make_shared<Esquema>();
    esquema->pagina = pagina;
    esquema->tabla.nombre = nombre;
    QUIMO_TRY(const std::vector<std::uint8_t> datos, LeerCadena(almacen, *esquema));
    if (datos.empty()) return almacen.Danado("la tabla " + nombre + " no tiene definición");
    const std::uint8_t* p = datos.data();
    esquema->largo_dicho = U32(p + 0x08);
    esquema->clase = p[0x28];
    esquema->ranuras_columna = U16(p + 0x29);
    esquema->ranuras_variables = U16(p + 0x2B);
    const std::size_t columnas = U16(p + 0x2D);
    const std::size_t logicos = U32(p + 0x2F);
    const std::size_t reales = U32(p + 0x33);
    esquema->propias = Puntero::Leer(p + 0x37);
    esquema->libres = Puntero::Leer(p + 0x3B);
    if (columnas > kColumnasMax || logicos > kLogicosMax || reales > kRealesMax ||
        esquema->largo_dicho > datos.size()) {
        return almacen.Danado("la definición de la tabla " + nombre + " no tiene sentido");
    }
    Lector lector(
        std::span<const std::uint8_t>(datos).first(std::max(esquema->largo_dicho, kPosContadores)));
    lector.Tomar(kPosContadores);
    lector.Tomar(kLargoContador * reales);
    QUIMO_TRY_VOID(LeerColumnas(almacen, lector, columnas, *esquema));
    QUIMO_TRY_VOID(LeerReales(almacen, lector, reales, *esquema));
    QUIMO_TRY_VOID(LeerLogicos(almacen, lector, logicos, *esquema));
    QUIMO_TRY_VOID(LeerMapasDeLargos(almacen, lector, *esquema));
    if (lector.Agotado())
        return almacen.Danado("la definición de la tabla " + nombre + " está cortada");
    esquema->largo = lector.Posicion();
    return std::shared_ptr<const Esquema>(std::move(esquema));
}

std::size_t TamanoFijo(TipoColumna tipo) {
    // Indexed by the type's number; 0 where values differ in length.
    static constexpr std::array<std::uint16_t, 0x12> kTamanos = {0, 1, 1, 2, 4, 8, 4,  8,  8,
                                                                 0, 0, 0, 0, 0, 0, 16, 17, 3992};
    const auto n = static_cast<std::size_t>(tipo);
    return n < kTamanos.size() ? kTamanos.at(n) : 0;
}

bool EsLargo(TipoColumna tipo) { return tipo == TipoColumna::Memo || tipo == TipoColumna::Ole; }

bool EsTexto(TipoColumna tipo) { return tipo == TipoColumna::Texto || tipo == TipoColumna::Memo; }

bool SeEscribe(TipoColumna tipo) {
    const auto n = static_cast<unsigned>(tipo);
    return (n >= 0x01 && n <= 0x0C) || tipo == TipoColumna::Guid || tipo == TipoColumna::Numerico;
}

}  // namespace quimo::jet
