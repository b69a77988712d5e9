#include "jet/lectura_danada.h"

#include <algorithm>

#include "jet/mapa.h"

namespace quimo::jet {

namespace {

constexpr std::size_t kQuejasMax = 1000;
constexpr std::uint32_t kPaginaMapaGlobal = 1;
constexpr int kSaltosMax = 16;
constexpr std::size_t kPosClase = 0x28;

std::string PaginaN(std::uint32_t numero) { return "la página " + std::to_string(numero); }

bool TieneFilas(const Pagina& pagina) {
    for (std::size_t i = 0; i < std::min(NumeroDeRanuras(pagina), kRanurasMax); ++i) {
        const auto ranura = LeerRanura(pagina, i);
        if (ranura && !ranura->Oculta()) return true;
    }
    return false;
}

}  // namespace

void Quejas::Anotar(std::string queja) {
    if (lista_.size() == kQuejasMax) lista_.emplace_back("y más, que no se enumeran");
    if (lista_.size() > kQuejasMax) return;
    lista_.push_back(std::move(queja));
}

LecturaDanada::LecturaDanada(Almacen& almacen) : almacen_(almacen), paginas_(almacen.Paginas()) {
    for (std::uint32_t numero = 0; numero < almacen.Paginas(); ++numero) {
        const auto leida = almacen.Leer(numero);
        Ficha& pagina = paginas_[numero];
        pagina.ilegible = !leida;
        if (!leida) continue;
        const Pagina& contenido = **leida;
        pagina.tipo = contenido.bytes[0];
        if (EsDeDatos(contenido)) {
            pagina.dueno = Dueno(contenido);
            pagina.con_filas = TieneFilas(contenido);
        } else if (pagina.tipo == kPaginaDefinicion) {
            pagina.con_filas = contenido.bytes[kPosClase] == Esquema::kClaseUsuario;
        }
    }
    if (auto libres = PaginasLibres(almacen)) libres_ = std::move(libres).value();
}

void LecturaDanada::Conocer(const Esquema& esquema) {
    cadenas_.insert(esquema.cadena.begin(), esquema.cadena.end());
    const auto nombradas = Mapa(almacen_, esquema.propias).Nombradas();
    if (!nombradas) return;  // the pages' own headers tell
    for (const std::uint32_t numero : *nombradas) {
        if (numero >= paginas_.size()) {
            faltan_[esquema.pagina].push_back(numero);
            continue;
        }
        // Between two maps the page's header decides.
        Ficha& pagina = paginas_[numero];
        if (pagina.de_quien == 0 || pagina.dueno == esquema.pagina) {
            pagina.de_quien = esquema.pagina;
        }
    }
}

std::set<std::uint32_t> LecturaDanada::PaginasDe(const Esquema& esquema, Quejas& quejas) const {
    std::set<std::uint32_t> buenas;
    const auto estructura = [this](std::uint32_t dueno) {
        return dueno == 0 || dueno == kPaginaMapaGlobal || dueno == kDuenoLargos;
    };
    for (std::uint32_t numero = 0; numero < paginas_.size(); ++numero) {
        const Ficha& pagina = paginas_[numero];
        const bool de_datos = pagina.tipo == kPaginaDatos && !pagina.ilegible;
        const bool suya = de_datos && pagina.dueno == esquema.pagina;
        if (pagina.de_quien == esquema.pagina) {
            // A header that names no table at all is a damaged one; the rows tell for themselves.
            const bool de_nadie =
                de_datos && !EsDefinicion(pagina.dueno) && !estructura(pagina.dueno);
            if (suya || de_nadie) {
                buenas.insert(numero);
            } else {
                quejas.Anotar(PaginaN(numero) + " no se puede leer o ya no es de la tabla");
            }
        } else if (suya && pagina.de_quien == 0 && !EstaLibre(numero)) {
            buenas.insert(numero);
        }
    }
    const auto faltan = faltan_.find(esquema.pagina);
    if (faltan == faltan_.end()) return buenas;
    for (const std::uint32_t numero : faltan->second)
        quejas.Anotar("falta " + PaginaN(numero) + ": el archivo está cortado o su mapa, dañado");
    return buenas;
}

std::vector<std::uint32_t> LecturaDanada::Dudosas(const Esquema& esquema) const {
    std::vector<std::uint32_t> dudosas;
    for (std::uint32_t numero = 0; numero < paginas_.size(); ++numero) {
        const Ficha& pagina = paginas_[numero];
        if (pagina.tipo == kPaginaDatos && pagina.dueno == esquema.pagina && pagina.con_filas &&
            pagina.de_quien != esquema.pagina && (pagina.de_quien != 0 || EstaLibre(numero))) {
            dudosas.push_back(numero);
        }
    }
    return dudosas;
}

std::vector<std::uint32_t> LecturaDanada::DefinicionesSueltas() const {
    std::vector<std::uint32_t> sueltas;
    for (std::uint32_t numero = 0; numero < paginas_.size(); ++numero) {
        const Ficha& pagina = paginas_[numero];
        if (pagina.tipo == kPaginaDefinicion && pagina.con_filas && !EstaLibre(numero) &&
            cadenas_.count(numero) == 0) {
            sueltas.push_back(numero);
        }
    }
    return sueltas;
}

void LecturaDanada::Recorrer(const Esquema& esquema, Quejas& quejas, const Receptora& recibir) {
    llegadas_.clear();
    propias_ = PaginasDe(esquema, quejas);
    for (const std::uint32_t numero : propias_)
        RecorrerPagina(numero, quejas, recibir);
}

/// The content of a moved row. Nothing when it does not lead to one, or to that of another row.
std::optional<FilaCruda> LecturaDanada::Seguir(FilaCruda fila) {
    for (int salto = 0; salto < kSaltosMax && (fila.ranura.banderas & kRanuraMovida) != 0;
         ++salto) {
        if (fila.ranura.Borrada() || fila.ranura.Largo() < 4) return std::nullopt;
        const Puntero destino = Puntero::Leer(fila.Bytes().data());
        auto siguiente = LeerFilaCruda(almacen_, destino);
        if (!siguiente || propias_.count(destino.pagina) == 0) return std::nullopt;
        fila = std::move(siguiente).value();
    }
    if (fila.ranura.banderas != kRanuraOculta || !llegadas_.insert(fila.lugar).second) {
        return std::nullopt;
    }
    return fila;
}

void LecturaDanada::RecorrerPagina(std::uint32_t numero, Quejas& quejas, const Receptora& recibir) {
    const auto pagina = almacen_.Leer(numero);
    if (!pagina) return quejas.Anotar(pagina.error().mensaje);
    if (NumeroDeRanuras(**pagina) > kRanurasMax) {
        return quejas.Anotar(PaginaN(numero) + " tiene mal la tabla de filas");
    }
    for (std::size_t i = 0; i < NumeroDeRanuras(**pagina); ++i) {
        const Puntero lugar{numero, static_cast<std::uint8_t>(i)};
        const auto ranura = LeerRanura(**pagina, i);
        if (!ranura) {
            quejas.Anotar("la fila de la " + lugar.ATexto() + ", no tiene un lugar posible");
            continue;
        }
        if (ranura->Oculta()) continue;
        FilaCruda contenido{*pagina, lugar, *ranura};
        if (ranura->Movida()) {
            auto seguida = Seguir(contenido);
            if (!seguida) {
                quejas.Anotar("la fila de la " + lugar.ATexto() + ", no lleva a su contenido");
                continue;
            }
            contenido = *std::move(seguida);
        }
        recibir({numero, lugar.fila}, contenido.Bytes());
    }
}

}  // namespace quimo::jet
