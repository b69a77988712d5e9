#include "demo/pedido.h"

#include <algorithm>
#include <array>
#include <string>

#include "base/check.h"
#include "base/decimal.h"
#include "demo/carta.h"

namespace quimo::demo {

using namespace Qt::StringLiterals;
using base::Dinero;

namespace {

constexpr int kPlato = 0;
constexpr int kBebida = 1;
constexpr int kEntrada = 2;
constexpr int kPostre = 3;
constexpr int kExtra = 4;
constexpr int kRecuerdo = 5;
constexpr int kRoles = 6;

// How often a category is asked for in its role: morning, afternoon, evening, after eleven.
struct Gusto {
    int categoria = 0;
    int rol = kPlato;
    std::array<int, kPartesDia> pesos = {10, 10, 10, 10};
};
constexpr Gusto kGustos[] = {
    {kDesayunos, kPlato, {92, 3, 0, 0}},     {kTlayudas, kPlato, {6, 22, 48, 60}},
    {kMoles, kPlato, {2, 45, 22, 10}},       {kParrilla, kPlato, {0, 30, 30, 30}},
    {kEntradas, kEntrada, {20, 55, 70, 90}}, {kSopas, kEntrada, {5, 40, 20, 10}},
    {kEnsaladas, kEntrada, {0, 15, 12, 0}},  {kPostres, kPostre, {20, 100, 100, 100}},
    {kCafe, kBebida, {70, 12, 18, 4}},       {kAguas, kBebida, {30, 50, 22, 8}},
    {kCerveza, kBebida, {0, 20, 28, 38}},    {kMezcal, kBebida, {0, 9, 18, 28}},
    {kCocteleria, kBebida, {0, 9, 20, 28}},  {kExtras, kExtra, {10, 10, 10, 10}},
    {kTienda, kRecuerdo, {10, 10, 5, 1}},    {kServicios, kRecuerdo, {0, 1, 2, 0}},
};

Gusto GustoDe(int categoria) {
    for (const Gusto& gusto : kGustos) {
        if (gusto.categoria == categoria) return gusto;
    }
    return {.categoria = categoria};
}

constexpr const char16_t* kComentarios[] = {
    u"sin cebolla",
    u"salsa aparte",
    u"para compartir, dos platos",
    u"sin sal, es para un niño",
    u"bien dorado",
    u"con poco chile, 'no pica' dijo el mesero",
    u"alergia al cacahuate, ¡avisar a cocina!",
    u"que salga junto con la sopa",
    u"cumpleaños de Íñigo: con velita",
    u"tortillas recién hechas",
    u"plato de la señora O'Neill",
    u"sin crema ni queso",
    u"término como siempre, mesa de don Ángel",
    u"media porción extra de arroz",
    u"caliente, caliente",
};

// Its part of an amount that contains it together with other included rates.
Dinero Contenido(Dinero monto, int tasa, int tasas_incluidas) {
    const base::Int128 divisor = 10000 + tasas_incluidas;
    const base::Int128 producto = base::Int128{monto.Diezmilesimas()} * tasa;
    return Dinero::DeDiezmilesimas(
        static_cast<std::int64_t>((2 * producto + divisor) / (2 * divisor)));
}

}  // namespace

Comedor::Comedor(const Catalogo& catalogo, Suerte& suerte)
    : catalogo_(catalogo), suerte_(suerte), siguiente_(catalogo.siguiente_articulo) {
    for (int rol = 0; rol < kRoles; ++rol) {
        for (int parte = 0; parte < kPartesDia; ++parte)
            opciones_.push_back(ReunirOpciones(rol, static_cast<ParteDia>(parte)));
    }
}

Comedor::Opciones Comedor::ReunirOpciones(int rol, ParteDia parte) const {
    std::map<int, std::vector<const ProductoEnCatalogo*>> por_categoria;
    for (const auto& [id, producto] : catalogo_.productos) {
        if (producto.SeVende() && !producto.paquete && GustoDe(producto.categoria).rol == rol)
            por_categoria[producto.categoria].push_back(&producto);
    }
    Opciones opciones;
    for (const auto& [categoria, productos] : por_categoria) {
        const int peso = GustoDe(categoria).pesos[static_cast<std::size_t>(parte)];
        if (peso == 0) continue;
        opciones.pesos_categoria.push_back(peso);
        opciones.productos.push_back(productos);
        // Favourites and others, always the same ones.
        std::vector<int> pesos;
        for (const ProductoEnCatalogo* producto : productos)
            pesos.push_back(1 + producto->id * 7 % 10);
        opciones.pesos_producto.push_back(std::move(pesos));
    }
    return opciones;
}

const Comedor::Opciones& Comedor::De(int rol, ParteDia parte) const {
    const int lugar = rol * kPartesDia + static_cast<int>(parte);
    return opciones_[static_cast<std::size_t>(lugar)];
}

Articulo Comedor::Nuevo(const ProductoEnCatalogo& producto) {
    // The number is a text of two numbers: the terminal's and its running counter.
    const std::string texto = std::to_string(catalogo_.terminal) + std::to_string(siguiente_);
    QUIMO_CHECK(texto.size() <= 9);
    ++siguiente_;
    Articulo articulo;
    articulo.id = std::stoi(texto);
    articulo.producto = producto.id;
    articulo.original = producto.precio;
    if (!catalogo_.modos.empty()) articulo.modo = catalogo_.modos.front();
    return articulo;
}

void Comedor::Cobrar(Articulo& articulo, const ProductoEnCatalogo& producto, Dinero venta) const {
    articulo.venta = venta;
    int incluidas = 0;
    for (const ImpuestoDeProducto& impuesto : producto.impuestos)
        incluidas += impuesto.incluido ? impuesto.tasa : 0;
    for (const ImpuestoDeProducto& impuesto : producto.impuestos) {
        articulo.impuestos.push_back(
            {impuesto.tipo, impuesto.incluido ? Contenido(venta, impuesto.tasa, incluidas)
                                              : venta.Fraccion(impuesto.tasa)});
    }
}

void Comedor::Adornar(Articulo& articulo, const ProductoEnCatalogo& producto) {
    Azar& azar = suerte_.Dado();
    const auto grupo = catalogo_.modificadores.find(producto.grupo_modificadores);
    if (grupo != catalogo_.modificadores.end() && suerte_.Toca(Rasgo::Modificador, 28)) {
        const ModificadorEnCatalogo& primero = azar.Uno(grupo->second);
        const ModificadorEnCatalogo& segundo = azar.Uno(grupo->second);
        articulo.modificadores.push_back({primero.tipo, primero.precio});
        if (segundo.tipo != primero.tipo && azar.Porciento(25))
            articulo.modificadores.push_back({segundo.tipo, segundo.precio});
    }
    if (GustoDe(producto.categoria).rol == kBebida) return;
    if (suerte_.Toca(Rasgo::Comentario, 6))
        articulo.comentario = QString::fromUtf16(azar.Uno(kComentarios));
    if (!catalogo_.modos.empty() && azar.Porciento(8)) articulo.modo = azar.Uno(catalogo_.modos);
}

void Comedor::Agregar(std::vector<Lote>& lotes, int rol, ParteDia parte) {
    const Opciones& opciones = De(rol, parte);
    if (opciones.pesos_categoria.empty()) return;
    Azar& azar = suerte_.Dado();
    const std::size_t categoria = azar.Pesado(opciones.pesos_categoria);
    const std::size_t cual = azar.Pesado(opciones.pesos_producto[categoria]);
    const ProductoEnCatalogo& producto = *opciones.productos[categoria][cual];
    Articulo articulo = Nuevo(producto);
    Dinero venta = producto.precio;
    if (producto.abierto) {
        const Dinero otra = venta + Dinero::DeEntero(5 * azar.Entre(-3, 5));
        if (otra > Dinero()) venta = otra;
    }
    Cobrar(articulo, producto, venta);
    Adornar(articulo, producto);
    lotes.push_back({std::move(articulo)});
}

std::vector<const ProductoEnCatalogo*> Comedor::PaquetesPosibles(ParteDia parte) const {
    std::vector<const ProductoEnCatalogo*> posibles;
    for (const auto& [id, secciones] : catalogo_.paquetes) {
        const auto paquete = catalogo_.productos.find(id);
        if (paquete == catalogo_.productos.end() || !paquete->second.paquete ||
            !paquete->second.SeVende())
            continue;
        // A package that begins with a breakfast dish is served in the morning, no other one is.
        const auto primero = catalogo_.productos.find(secciones.front().productos.front());
        const bool desayuno = primero->second.categoria == kDesayunos;
        if (desayuno == (parte == ParteDia::Manana)) posibles.push_back(&paquete->second);
    }
    return posibles;
}

void Comedor::AgregarPaquete(std::vector<Lote>& lotes, const ProductoEnCatalogo& paquete) {
    Lote lote{Nuevo(paquete)};
    Cobrar(lote.front(), paquete, paquete.precio);
    for (const SeccionDePaquete& seccion : catalogo_.paquetes.at(paquete.id)) {
        for (int i = 0; i < seccion.cuantos; ++i) {
            // Its price and taxes are those of the package.
            Articulo componente =
                Nuevo(catalogo_.productos.at(suerte_.Dado().Uno(seccion.productos)));
            componente.paquete = lote.front().id;
            lote.push_back(std::move(componente));
        }
    }
    lotes.push_back(std::move(lote));
}

void Comedor::AgregarPromocion(std::vector<Lote>& lotes) {
    Azar& azar = suerte_.Dado();
    const PasoDePromocion& paso = azar.Uno(catalogo_.promociones);
    for (int i = 0; i < paso.minimo; ++i) {
        const ProductoEnCatalogo& producto = catalogo_.productos.at(azar.Uno(paso.comprados));
        Articulo articulo = Nuevo(producto);
        Cobrar(articulo, producto, producto.precio);
        Adornar(articulo, producto);
        lotes.push_back({std::move(articulo)});
    }
    for (int i = 0; i < paso.obsequios; ++i) {
        const ProductoEnCatalogo& producto = catalogo_.productos.at(azar.Uno(paso.regalados));
        Articulo articulo = Nuevo(producto);
        articulo.promocion = paso.promocion;
        Cobrar(articulo, producto,
               producto.precio - producto.precio.Fraccion(paso.descuento).ACentavos());
        lotes.push_back({std::move(articulo)});
    }
}

std::vector<Lote> Comedor::Pedir(ParteDia parte, int comensales, bool es_bar) {
    Azar& azar = suerte_.Dado();
    std::vector<Lote> lotes;
    int sin_plato = comensales;
    const auto paquetes = PaquetesPosibles(parte);
    if (!paquetes.empty() && suerte_.Toca(Rasgo::Paquete, 7)) {
        AgregarPaquete(lotes, *azar.Uno(paquetes));
        --sin_plato;
    }
    for (int i = 0; i < comensales; i += 3) {
        if (azar.Porciento(es_bar ? 75 : 40)) Agregar(lotes, kEntrada, parte);
    }
    for (int i = 0; i < sin_plato; ++i) {
        if (azar.Porciento(es_bar ? 30 : 94)) Agregar(lotes, kPlato, parte);
    }
    for (int i = 0; i < comensales; ++i) {
        const int rondas = es_bar ? azar.Entre(2, 5) / 2 : azar.Entre(0, 5) / 2;
        for (int ronda = 0; ronda < rondas; ++ronda)
            Agregar(lotes, kBebida, parte);
        if (azar.Porciento(parte == ParteDia::Manana ? 4 : 18)) Agregar(lotes, kPostre, parte);
        if (azar.Porciento(12)) Agregar(lotes, kExtra, parte);
    }
    if (parte != ParteDia::Manana && !catalogo_.promociones.empty() &&
        suerte_.Toca(Rasgo::Promocion, es_bar ? 18 : 6))
        AgregarPromocion(lotes);
    if (azar.Porciento(4)) Agregar(lotes, kRecuerdo, parte);
    // Whatever there is, as long as nobody sits before an empty table.
    for (int i = 0; lotes.empty() && i < kRoles * kPartesDia; ++i)
        Agregar(lotes, i / kPartesDia, static_cast<ParteDia>(i % kPartesDia));
    return lotes;
}

}  // namespace quimo::demo
