#include "jet/plano.h"

#include <algorithm>
#include <numeric>
#include <set>
#include <string>

#include "jet/esquema.h"
#include "jet/pagina_indice.h"
#include "jet/texto.h"

namespace quimo::jet {

namespace {

constexpr std::size_t kLargoFilaDeMapa = 69;
constexpr std::uint8_t kFija = 0x01;
constexpr std::uint8_t kSiempre = 0x02;
constexpr std::uint8_t kAutonumerica = 0x04;
constexpr std::uint8_t kDeSistema = 0x10;
constexpr std::uint8_t kDeSeguridad = 0x20;

Error Imposible(const std::string& que) { return {Error::Codigo::Datos, que}; }

Result<void> ComprobarNombre(const std::string& nombre, const std::string& de_que) {
    const std::u16string texto = AUtf16(nombre);
    bool mal = texto.empty() || texto.size() > kNombreMax || texto.front() == u' ';
    for (const char16_t c : texto) {
        mal = mal || c < 0x20 || c == 0x7F ||
              std::u16string_view(u".![]`").find(c) != std::u16string_view::npos;
    }
    if (!mal) return {};
    return Imposible("El nombre «" + nombre + "» no es posible para " + de_que + ".");
}

Result<void> ComprobarColumna(const DefColumna& c, const std::string& tabla) {
    const std::string cual = "La columna " + c.nombre + " de la tabla " + tabla;
    QUIMO_TRY_VOID(ComprobarNombre(c.nombre, "una columna de la tabla " + tabla));
    if (!SeEscribe(c.tipo)) return Imposible(cual + " es de un tipo que no se escribe.");
    if ((c.tipo == TipoColumna::Texto && (c.largo < 1 || c.largo > 255)) ||
        (c.tipo == TipoColumna::Binario && (c.largo < 1 || c.largo > 510))) {
        return Imposible(cual + " no puede medir " + std::to_string(c.largo) + ".");
    }
    if (c.tipo == TipoColumna::Numerico &&
        (c.precision < 1 || c.precision > 28 || c.escala < 0 || c.escala > c.precision)) {
        return Imposible(cual + " no puede tener " + std::to_string(c.precision) + " cifras y " +
                         std::to_string(c.escala) + " decimales.");
    }
    if (c.autonumerico && c.tipo != TipoColumna::Largo) {
        return Imposible(cual + " no puede numerarse sola: no es Entero largo.");
    }
    return {};
}

Result<void> ComprobarIndice(const DefIndice& indice, const DefTabla& tabla) {
    const std::string cual = "El índice " + indice.nombre + " de la tabla " + tabla.nombre;
    QUIMO_TRY_VOID(ComprobarNombre(indice.nombre, "un índice de la tabla " + tabla.nombre));
    if (indice.foranea) {
        return Error{Error::Codigo::NoSoportado, cual + " es de una relación; no se crean."};
    }
    if (indice.columnas.empty() || indice.columnas.size() > kColumnasDeIndiceMax) {
        return Imposible(cual + " debe tener de 1 a 10 columnas.");
    }
    std::set<std::string> usadas;
    for (const ColumnaDeIndice& c : indice.columnas) {
        const auto hallada =
            std::find_if(tabla.columnas.begin(), tabla.columnas.end(),
                         [&](const DefColumna& d) { return MismoNombre(d.nombre, c.nombre); });
        if (hallada == tabla.columnas.end()) {
            return Imposible(cual + " usa la columna " + c.nombre + ", que no hay.");
        }
        if (hallada->tipo == TipoColumna::Ole || !usadas.insert(Plegado(c.nombre)).second) {
            return Imposible(cual + " no puede usar así la columna " + c.nombre + ".");
        }
    }
    return {};
}

std::size_t LargoMinimoDeFila(const DefTabla& tabla) {
    std::size_t largo = 2 + (tabla.columnas.size() + 7) / 8 + 4;
    for (const DefColumna& c : tabla.columnas) {
        const std::size_t fijo = TamanoFijo(c.tipo);
        largo += c.tipo == TipoColumna::Logico ? 0 : fijo == 0 ? 2 : fijo;
    }
    return largo;
}

/// Appends integers and texts in the order of the file.
class Redactor {
public:
    explicit Redactor(std::vector<std::uint8_t>& bytes) : bytes_(bytes) {}
    void Octeto(std::size_t v) { bytes_.push_back(static_cast<std::uint8_t>(v)); }
    void Palabra(std::size_t v) {
        Octeto(v);
        Octeto(v >> 8);
    }
    void Doble(std::size_t v) {
        Palabra(v);
        Palabra(v >> 16);
    }
    void Ceros(std::size_t n) { bytes_.insert(bytes_.end(), n, 0); }
    void Nombre(const std::string& nombre) {
        const std::u16string texto = AUtf16(nombre);
        Palabra(2 * texto.size());
        for (const char16_t c : texto)
            Palabra(c);
    }

private:
    std::vector<std::uint8_t>& bytes_;
};

bool EsFija(TipoColumna tipo) { return TamanoFijo(tipo) != 0; }

std::size_t Banderas(const DefColumna& c, ClaseTabla clase) {
    std::size_t banderas = kSiempre;
    if (EsFija(c.tipo)) banderas |= kFija;
    if (c.autonumerico) banderas |= kAutonumerica;
    if (clase == ClaseTabla::Sistema) banderas |= kDeSistema;
    if (clase == ClaseTabla::Sistema && (c.nombre == "Owner" || c.nombre == "SID")) {
        banderas |= kDeSeguridad;
    }
    return banderas;
}

std::size_t BytesDeColumna(const DefColumna& c) {
    if (c.tipo == TipoColumna::Texto) return 2 * static_cast<std::size_t>(c.largo);
    if (c.tipo == TipoColumna::Binario) return static_cast<std::size_t>(c.largo);
    return TamanoFijo(c.tipo);
}

/// The positions 0..n-1 in ascending order of their names.
template <typename T>
std::vector<std::size_t> PorNombre(const std::vector<T>& cosas) {
    std::vector<std::size_t> orden(cosas.size());
    std::iota(orden.begin(), orden.end(), std::size_t{0});
    std::stable_sort(orden.begin(), orden.end(), [&](std::size_t a, std::size_t b) {
        return Plegado(cosas[a].nombre) < Plegado(cosas[b].nombre);
    });
    return orden;
}

void RedactarColumnas(Redactor& r, const DefTabla& tabla, ClaseTabla clase) {
    std::vector<std::size_t> variable_antes;  // variable columns before each one
    std::vector<std::size_t> desplazamiento;
    std::size_t variables = 0;
    std::size_t fija = 0;
    for (const DefColumna& c : tabla.columnas) {
        const bool ocupa = EsFija(c.tipo) && c.tipo != TipoColumna::Logico;
        variable_antes.push_back(variables);
        desplazamiento.push_back(ocupa ? fija : 0);
        if (ocupa) fija += TamanoFijo(c.tipo);
        if (!EsFija(c.tipo)) ++variables;
    }
    std::vector<std::size_t> orden(tabla.columnas.size());
    std::iota(orden.begin(), orden.end(), std::size_t{0});
    if (clase == ClaseTabla::Sistema) orden = PorNombre(tabla.columnas);
    for (const std::size_t i : orden) {
        const DefColumna& c = tabla.columnas[i];
        r.Octeto(static_cast<std::size_t>(c.tipo));
        r.Doble(kMarcaObjeto);
        r.Palabra(i);
        r.Palabra(variable_antes[i]);
        r.Palabra(clase == ClaseTabla::Sistema ? 0 : i);
        if (c.tipo == TipoColumna::Numerico) {
            r.Octeto(static_cast<std::size_t>(c.precision));
            r.Octeto(static_cast<std::size_t>(c.escala));
        } else {
            r.Palabra(kOrdenGeneral);
        }
        r.Ceros(2);
        r.Octeto(Banderas(c, clase));
        r.Octeto(EsTexto(c.tipo) && c.comprimido ? 1 : 0);
        r.Ceros(4);
        r.Palabra(desplazamiento[i]);
        r.Palabra(BytesDeColumna(c));
    }
    for (const std::size_t i : orden)
        r.Nombre(tabla.columnas[i].nombre);
}

std::size_t PosicionDe(const DefTabla& tabla, const std::string& columna) {
    std::size_t i = 0;
    while (i < tabla.columnas.size() && !MismoNombre(tabla.columnas[i].nombre, columna))
        ++i;
    return i;
}

void RedactarIndices(Redactor& r, const DefTabla& tabla, const Plano& plano, ClaseTabla clase) {
    const bool sistema = clase == ClaseTabla::Sistema;
    for (std::size_t i = 0; i < tabla.indices.size(); ++i) {
        const DefIndice& indice = tabla.indices[i];
        r.Doble(kMarcaIndice);
        for (std::size_t k = 0; k < kColumnasDeIndiceMax; ++k) {
            const bool usada = k < indice.columnas.size();
            r.Palabra(usada ? PosicionDe(tabla, indice.columnas[k].nombre) : 0xFFFF);
            r.Octeto(usada && !indice.columnas[k].descendente ? 1 : 0);
        }
        r.Doble(plano.mapas[i].Crudo());
        r.Doble(plano.raices[i]);
        r.Ceros(4);
        std::size_t banderas = 0x80;
        if (indice.unico || indice.primaria) banderas |= 0x01;
        if (indice.ignora_nulos) banderas |= 0x02;
        if (indice.requerido || (indice.primaria && !sistema)) banderas |= 0x08;
        r.Octeto(banderas);
        r.Ceros(5);
    }
    const std::vector<std::size_t> orden = PorNombre(tabla.indices);
    for (const std::size_t i : orden) {
        r.Doble(kMarcaObjeto);
        r.Doble(i);
        r.Doble(i);
        r.Octeto(0);
        r.Doble(0xFFFFFFFF);
        r.Doble(0);
        r.Octeto(sistema ? 4 : 0);
        r.Octeto(sistema ? 4 : 0);
        r.Octeto(tabla.indices[i].primaria ? 1 : 0);
        r.Doble(0);
    }
    for (const std::size_t i : orden)
        r.Nombre(tabla.indices[i].nombre);
}

}  // namespace

Result<void> ComprobarDefinicion(const DefTabla& tabla) {
    QUIMO_TRY_VOID(ComprobarNombre(tabla.nombre, "una tabla"));
    if (tabla.columnas.empty() || tabla.columnas.size() > kColumnasMax ||
        tabla.indices.size() > kIndicesMax) {
        return Imposible("La tabla " + tabla.nombre +
                         " debe tener de 1 a 255 columnas y hasta 32 índices.");
    }
    std::set<std::string> nombres;
    std::size_t autonumericas = 0;
    for (const DefColumna& c : tabla.columnas) {
        QUIMO_TRY_VOID(ComprobarColumna(c, tabla.nombre));
        if (c.autonumerico) ++autonumericas;
        if (!nombres.insert(Plegado(c.nombre)).second || autonumericas > 1) {
            return Imposible("La columna " + c.nombre + " se repite en la tabla " + tabla.nombre +
                             ".");
        }
    }
    nombres.clear();
    std::size_t primarias = 0;
    for (const DefIndice& indice : tabla.indices) {
        QUIMO_TRY_VOID(ComprobarIndice(indice, tabla));
        if (indice.primaria) ++primarias;
        if (!nombres.insert(Plegado(indice.nombre)).second || primarias > 1) {
            return Imposible("El índice " + indice.nombre + " se repite en la tabla " +
                             tabla.nombre + ".");
        }
    }
    if (LargoMinimoDeFila(tabla) > kFilaMax) {
        return Imposible("Las filas de la tabla " + tabla.nombre + " serían demasiado largas.");
    }
    return {};
}

std::size_t ColumnasDeLargos(const DefTabla& tabla) {
    return static_cast<std::size_t>(std::count_if(tabla.columnas.begin(), tabla.columnas.end(),
                                                  [](const auto& c) { return EsLargo(c.tipo); }));
}

std::vector<std::uint8_t> ArmarDefinicion(const DefTabla& tabla, const Plano& plano,
                                          ClaseTabla clase) {
    std::vector<std::uint8_t> bytes;
    Redactor r(bytes);
    const auto variables = static_cast<std::size_t>(
        std::count_if(tabla.columnas.begin(), tabla.columnas.end(),
                      [](const DefColumna& c) { return !EsFija(c.tipo); }));
    r.Ceros(12);  // page header and length: filled in when it is written
    r.Doble(kMarcaObjeto);
    r.Ceros(8);  // rows, last autonumber
    r.Octeto(1);
    r.Ceros(15);
    r.Octeto(clase == ClaseTabla::Sistema ? Esquema::kClaseSistema : Esquema::kClaseUsuario);
    r.Palabra(tabla.columnas.size());
    r.Palabra(variables);
    r.Palabra(tabla.columnas.size());
    r.Doble(tabla.indices.size());
    r.Doble(tabla.indices.size());
    r.Doble(plano.propias.Crudo());
    r.Doble(plano.libres.Crudo());
    r.Ceros(kLargoContador * tabla.indices.size());
    RedactarColumnas(r, tabla, clase);
    RedactarIndices(r, tabla, plano, clase);
    std::size_t largo = 0;
    for (std::size_t i = 0; i < tabla.columnas.size(); ++i) {
        if (!EsLargo(tabla.columnas[i].tipo)) continue;
        r.Palabra(i);
        r.Doble(plano.largos[largo].first.Crudo());
        r.Doble(plano.largos[largo].second.Crudo());
        ++largo;
    }
    r.Palabra(0xFFFF);
    PonerU32(bytes.data() + 8, static_cast<std::uint32_t>(bytes.size()));
    return bytes;
}

std::vector<std::uint8_t> FilaDeMapaVacia() {
    return std::vector<std::uint8_t>(kLargoFilaDeMapa, 0);
}

std::vector<std::uint8_t> FilaDeMapaDe(std::uint32_t pagina) {
    std::vector<std::uint8_t> fila = FilaDeMapaVacia();
    PonerU32(fila.data() + 1, pagina & ~7U);
    fila[5] = static_cast<std::uint8_t>(1U << (pagina & 7U));
    return fila;
}

Result<void> EscribirRaizVacia(Almacen& almacen, std::uint32_t pagina, std::uint32_t tabla) {
    PaginaIndice raiz;
    raiz.tabla = tabla;
    return raiz.Escribir(almacen, pagina);
}

}  // namespace quimo::jet
