#include "jet/verificador.h"

#include <algorithm>
#include <cstring>

#include "jet/nucleo.h"
#include "jet/pagina_datos.h"
#include "jet/recorrido.h"
#include "jet/texto.h"
#include "jet/verificacion.h"

namespace quimo::jet {

namespace {

constexpr std::size_t kPosUsuarios = 0xE00;
constexpr std::array<std::uint8_t, 8> kTrasBloque = {0x54, 0x06, 0, 0, 0x34, 0x2E, 0x30, 0};
constexpr std::array<std::uint8_t, 8> kInicioBloque = {0, 1, 0, 0, 1, 1, 0, 0};
constexpr std::uint32_t kDuenoMapas = 0;  // owner field of pages with map rows
constexpr const char* kMapas = "los mapas de páginas";

/// Columns of the system tables that this library and Access go by.
struct ColumnaDeSistema {
    const char* tabla;
    const char* columna;
    TipoColumna tipo;
};
constexpr ColumnaDeSistema kColumnasDeSistema[] = {
    {"MSysObjects", "Id", TipoColumna::Largo},
    {"MSysObjects", "ParentId", TipoColumna::Largo},
    {"MSysObjects", "Name", TipoColumna::Texto},
    {"MSysObjects", "Type", TipoColumna::Entero},
    {"MSysObjects", "DateCreate", TipoColumna::Fecha},
    {"MSysObjects", "DateUpdate", TipoColumna::Fecha},
    {"MSysObjects", "Owner", TipoColumna::Binario},
    {"MSysObjects", "Flags", TipoColumna::Largo},
    {"MSysObjects", "LvProp", TipoColumna::Ole},
    {"MSysACEs", "ObjectId", TipoColumna::Largo},
    {"MSysACEs", "SID", TipoColumna::Binario},
    {"MSysACEs", "ACM", TipoColumna::Largo},
    {"MSysACEs", "FInheritable", TipoColumna::Logico},
    {"MSysRelationships", "szRelationship", TipoColumna::Texto},
    {"MSysRelationships", "grbit", TipoColumna::Largo},
    {"MSysRelationships", "szObject", TipoColumna::Texto},
    {"MSysRelationships", "szReferencedObject", TipoColumna::Texto},
};

std::string PaginaN(std::uint32_t numero) { return "La página " + std::to_string(numero); }

}  // namespace

Result<std::vector<Hallazgo>> Verificador::Verificar(const BaseDatos& base) {
    Almacen& almacen = *base.nucleo_->almacen;
    // Without these two nothing else can be told.
    QUIMO_TRY_VOID(ComprobarCabecera(almacen));
    QUIMO_TRY_VOID(almacen.Leer(1));
    return Verificacion(almacen).Hacer();
}

Verificacion::Verificacion(Almacen& almacen)
    : almacen_(almacen), duenos_(1), dueno_de_(almacen.Paginas(), 0) {}

void Verificacion::Anotar(Hallazgo::Gravedad gravedad, std::string mensaje) {
    if (hallazgos_.size() >= Verificador::kHallazgosMax) return;
    hallazgos_.push_back({gravedad, std::move(mensaje)});
}

void Verificacion::FallaDe(const Esquema& esquema, std::string mensaje) {
    Anotar(esquema.EsDeSistema() ? Hallazgo::Gravedad::Rareza : Hallazgo::Gravedad::Falla,
           std::move(mensaje));
}

bool Verificacion::Reclamar(std::uint32_t pagina, const std::string& dueno) {
    if (pagina >= dueno_de_.size()) {
        Falla(PaginaN(pagina) + ", de " + dueno + ", no existe.");
        return false;
    }
    if (EstaLibre(pagina)) {
        Falla(PaginaN(pagina) + " es de " + dueno + " y figura como libre.");
    }
    std::uint32_t& actual = dueno_de_[pagina];
    if (actual != 0) {
        if (duenos_[actual] == kMapas && dueno == kMapas) return true;
        Falla(PaginaN(pagina) + " es de " + duenos_[actual] + " y también de " + dueno + ".");
        return false;
    }
    if (duenos_.back() != dueno) duenos_.push_back(dueno);
    actual = static_cast<std::uint32_t>(duenos_.size() - 1);
    return true;
}

std::vector<std::uint32_t> Verificacion::ReclamarMapa(Puntero lugar, const std::string& dueno) {
    if (!mapas_.insert(lugar).second) {
        Falla("Dos usan el mapa de " + lugar.ATexto() + "; uno es " + dueno + ".");
    }
    const Mapa mapa(almacen_, lugar);
    const bool nueva = lugar.pagina < dueno_de_.size() && dueno_de_[lugar.pagina] == 0;
    if (Reclamar(lugar.pagina, kMapas) && nueva) ComprobarPaginaDatos(lugar.pagina, kDuenoMapas);
    const auto bits = mapa.PaginasDeBits();
    if (!Bien(bits)) return {};
    for (const std::uint32_t pagina : *bits)
        Reclamar(pagina, "el mapa de " + dueno);
    auto miembros = mapa.Miembros();
    if (!Bien(miembros)) return {};
    return std::move(miembros).value();
}

void Verificacion::ReclamarPieza(Puntero lugar, const std::string& dueno) {
    const auto [hallada, nueva] = piezas_.emplace(lugar, dueno);
    if (!nueva) {
        Falla("El valor largo de " + lugar.ATexto() + " es de " + hallada->second +
              " y también de " + dueno + ".");
    }
}

bool Verificacion::ComprobarPaginaDatos(std::uint32_t numero, std::uint32_t dueno) {
    const auto pagina = almacen_.Leer(numero);
    if (!Bien(pagina)) return false;
    if (!EsDeDatos(**pagina) || (*pagina)->bytes[1] != 1 || Dueno(**pagina) != dueno) {
        Falla(PaginaN(numero) + " no es la página de datos que debía ser.");
        return false;
    }
    if (!RanurasSanas(**pagina)) {
        Falla(PaginaN(numero) + " tiene mal la tabla de filas.");
        return false;
    }
    if (U16((*pagina)->data() + 2) != BytesLibres(**pagina)) {
        Falla(PaginaN(numero) + " cuenta mal sus bytes libres.");
    }
    return true;
}

void Verificacion::ComprobarPaginas01() {
    const auto cabecera = almacen_.Leer(0);
    if (!Bien(cabecera)) return;
    const std::uint8_t* p = (*cabecera)->data();
    const auto bloque = BloqueEnClaro(**cabecera);
    if (std::memcmp(bloque.data(), kInicioBloque.data(), kInicioBloque.size()) != 0 ||
        std::memcmp(p + 0x98, kTrasBloque.data(), kTrasBloque.size()) != 0) {
        Falla("La página 0 no tiene sus valores fijos.");
    }
    for (std::size_t i = kPosUsuarios; i < kTamPagina; i += 2) {
        if (U16(p + i) < 0x0100) {
            Rareza("La página 0 dice que un usuario no cerró el archivo.");
            break;
        }
    }
    Reclamar(0, "la cabecera");
    Reclamar(1, "el mapa global");
    ComprobarPaginaDatos(1, 1);
    auto libres = PaginasLibres(almacen_);
    const auto bits = PaginasDelMapaGlobal(almacen_);
    if (!Bien(libres) || !Bien(bits)) return;
    libres_ = std::move(libres).value();
    for (const std::uint32_t pagina : *bits)
        Reclamar(pagina, "el mapa global");
    for (const std::uint32_t pagina : {0U, 1U}) {
        if (EstaLibre(pagina)) Falla(PaginaN(pagina) + " figura como libre.");
    }
}

void Verificacion::ComprobarCatalogo(const std::vector<ObjetoCatalogo>& objetos) {
    std::set<std::pair<std::int32_t, std::string>> nombres;
    std::set<std::int32_t> ids;
    for (const ObjetoCatalogo& objeto : objetos) {
        if (!nombres.emplace(objeto.padre, Plegado(objeto.nombre)).second) {
            Falla("El catálogo tiene dos veces el nombre " + objeto.nombre + ".");
        }
        if (!ids.insert(objeto.id).second) {
            Falla("El catálogo tiene dos veces el número de " + objeto.nombre + ".");
        }
        if (!objeto.EsTabla()) continue;
        const auto esquema = LeerEsquema(almacen_, objeto.Pagina(), objeto.nombre);
        if (!Bien(esquema)) continue;
        ComprobarColumnasDeSistema(**esquema);
        VerificadorTabla(*this, *esquema).Hacer();
    }
}

void Verificacion::ComprobarColumnasDeSistema(const Esquema& esquema) {
    for (const auto& [tabla, columna, tipo] : kColumnasDeSistema) {
        if (!MismoNombre(tabla, esquema.tabla.nombre)) continue;
        const auto i = esquema.BuscarColumna(columna);
        const bool de_sistema = esquema.clase == Esquema::kClaseSistema;
        if (i && esquema.tabla.columnas[*i].tipo == tipo && de_sistema) continue;
        Falla("La tabla de sistema " + esquema.tabla.nombre + " no tiene bien su columna " +
              columna + ".");
    }
}

void Verificacion::ComprobarPermisos(const std::vector<ObjetoCatalogo>& objetos) {
    const auto esquema = BuscarEsquema(almacen_, "MSysACEs");
    if (!Bien(esquema)) return;
    const auto columna = (*esquema)->BuscarColumna("ObjectId");
    const auto recorrido = RecorridoPaginas::Empezar(almacen_, *esquema);
    if (!Bien(recorrido) || !columna) return;
    std::set<std::int32_t> con_permisos;
    Fila fila;
    while (true) {
        const auto hay = (*recorrido)->Avanzar();
        if (!Bien(hay)) return;
        if (!*hay) break;
        if (!Bien((*recorrido)->Leer(fila))) return;
        if (const auto* id = std::get_if<std::int32_t>(&fila[*columna])) con_permisos.insert(*id);
    }
    for (const ObjetoCatalogo& objeto : objetos) {
        if (objeto.EsTabla() && con_permisos.count(objeto.id) == 0) {
            Rareza("La tabla " + objeto.nombre + " no tiene permisos en MSysACEs.");
        }
    }
}

void Verificacion::ComprobarSinDueno() {
    std::size_t cuantas = 0;
    std::uint32_t primera = 0;
    for (std::uint32_t pagina = 0; pagina < dueno_de_.size(); ++pagina) {
        if (dueno_de_[pagina] != 0 || EstaLibre(pagina)) continue;
        if (cuantas++ == 0) primera = pagina;
    }
    if (cuantas == 0) return;
    Rareza("Hay " + std::to_string(cuantas) +
           " páginas que no son de nadie ni están libres; la primera es la " +
           std::to_string(primera) + ".");
}

std::vector<Hallazgo> Verificacion::Hacer() {
    ComprobarPaginas01();
    const auto catalogo = LeerCatalogo(almacen_);
    if (Bien(catalogo)) {
        ComprobarCatalogo((*catalogo)->objetos);
        ComprobarPermisos((*catalogo)->objetos);
        ComprobarSinDueno();
    }
    return std::move(hallazgos_);
}

}  // namespace quimo::jet
