#pragma once

#include <map>
#include <vector>

#include "demo/catalogo.h"
#include "demo/suerte.h"
#include "demo/ventas.h"

namespace quimo::demo {

enum class ParteDia { Manana, Tarde, Noche, Madrugada };
constexpr int kPartesDia = 4;

/// Items that go on the same check: a package with its components, or one item alone.
using Lote = std::vector<Articulo>;

/// Takes the orders of one terminal: what guests ask for at each part of the day. Gives out the
/// item numbers. The catalogue and the chance must outlive it.
class Comedor {
public:
    Comedor(const Catalogo& catalogo, Suerte& suerte);

    /// What `comensales` guests ask for; never empty.
    std::vector<Lote> Pedir(ParteDia parte, int comensales, bool es_bar);
    int SiguienteArticulo() const { return siguiente_; }

private:
    // Products of one role at one part of the day: a category is chosen first, so that a long menu
    // page does not sell more than a short one.
    struct Opciones {
        std::vector<int> pesos_categoria = {};
        std::vector<std::vector<const ProductoEnCatalogo*>> productos = {};
        std::vector<std::vector<int>> pesos_producto = {};
    };

    Opciones ReunirOpciones(int rol, ParteDia parte) const;
    const Opciones& De(int rol, ParteDia parte) const;
    void Agregar(std::vector<Lote>& lotes, int rol, ParteDia parte);
    void AgregarPaquete(std::vector<Lote>& lotes, const ProductoEnCatalogo& paquete);
    void AgregarPromocion(std::vector<Lote>& lotes);
    std::vector<const ProductoEnCatalogo*> PaquetesPosibles(ParteDia parte) const;
    Articulo Nuevo(const ProductoEnCatalogo& producto);
    void Cobrar(Articulo& articulo, const ProductoEnCatalogo& producto, base::Dinero venta) const;
    void Adornar(Articulo& articulo, const ProductoEnCatalogo& producto);

    const Catalogo& catalogo_;
    Suerte& suerte_;
    int siguiente_;
    std::vector<Opciones> opciones_;
};

}  // namespace quimo::demo
