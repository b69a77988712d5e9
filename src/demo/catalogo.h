#pragma once

#include <map>
#include <vector>

#include <QChar>

#include "base/dinero.h"
#include "base/result.h"
#include "jet/base_datos.h"

namespace quimo::demo {

struct ImpuestoDeProducto {
    int tipo = 0;
    int tasa = 0;  ///< ten-thousandths of the price
    bool incluido = true;
};

struct ProductoEnCatalogo {
    int id = 0;
    int categoria = 0;
    base::Dinero precio = {};  ///< 0: this terminal does not offer it by itself
    int grupo_modificadores = 0;
    bool abierto = false;  ///< the price is typed in at the sale
    bool activo = true;
    bool paquete = false;
    std::vector<ImpuestoDeProducto> impuestos = {};

    bool SeVende() const { return activo && precio > base::Dinero(); }
};

struct ModificadorEnCatalogo {
    int tipo = 0;
    base::Dinero precio = {};
};

struct SeccionDePaquete {
    int cuantos = 1;
    std::vector<int> productos = {};
};

/// One step of an active promotion: who buys `minimo` of a group gets `obsequios` of another with a
/// discount.
struct PasoDePromocion {
    int promocion = 0;
    int minimo = 1;
    int obsequios = 1;
    int descuento = 0;  ///< ten-thousandths of the price
    std::vector<int> comprados = {};
    std::vector<int> regalados = {};
};

struct TipoDeCortesia {
    int id = 0;
    QChar tipo = u'P';           ///< P percentage, F fixed, A open
    base::Dinero cantidad = {};  ///< percent or pesos
    base::Dinero maximo = {};
    bool por_articulo = false;  ///< only for the listed products
    std::vector<int> productos = {};
};

struct TipoDePago {
    int id = 0;
    QChar clase = u'E';
};

/// What a terminal sells from, as its own database holds it.
struct Catalogo {
    int terminal = 0;
    int siguiente_articulo = 1;  ///< its running item counter
    std::map<int, ProductoEnCatalogo> productos = {};
    std::map<int, std::vector<ModificadorEnCatalogo>> modificadores = {};  ///< by group
    std::map<int, std::vector<SeccionDePaquete>> paquetes = {};            ///< by product
    std::vector<PasoDePromocion> promociones = {};
    std::vector<TipoDeCortesia> cortesias = {};
    std::vector<TipoDePago> pagos = {};
    std::vector<int> anulaciones = {};
    std::vector<int> modos = {};         ///< preparation modes
    std::vector<int> meseros = {};       ///< who opens orders
    std::vector<int> responsables = {};  ///< who voids
};

/// Reads it. An error too when the terminal cannot sell from it: no product with a price, nobody to
/// serve or no way to pay.
base::Result<Catalogo> LeerCatalogo(const jet::BaseDatos& base);

}  // namespace quimo::demo
