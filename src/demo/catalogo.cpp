#include "demo/catalogo.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <string>

#include "demo/archivo_terminal.h"
#include "demo/carta.h"

namespace quimo::demo {

using base::Dinero;
using base::Error;
using base::Result;
using jet::Fila;

namespace {

int Entero(const jet::Valor& valor) {
    const auto* numero = std::get_if<std::int32_t>(&valor);
    return numero == nullptr ? 0 : *numero;
}
bool Logico(const jet::Valor& valor) {
    const auto* logico = std::get_if<bool>(&valor);
    return logico != nullptr && *logico;
}
// An amount that a sale can be made of: the sums and shares of a day must fit.
Result<Dinero> Monto(const jet::Valor& valor, const std::string& tabla, int id) {
    constexpr Dinero kTope = Dinero::DeEntero(100'000'000);
    const auto* monto = std::get_if<Dinero>(&valor);
    if (monto == nullptr) return Dinero();
    if (*monto <= kTope && *monto >= Dinero() - kTope) return *monto;
    return Error{Error::Codigo::Datos, "El importe " + monto->AMoneda() + " de la tabla " + tabla +
                                           ", clave " + std::to_string(id) +
                                           ", no es de un restaurante."};
}
double Real(const jet::Valor& valor) {
    const auto* real = std::get_if<double>(&valor);
    return real == nullptr ? 0 : *real;
}
// The nearest whole number; 0 for what is not a number of this restaurant's size.
int Redondeado(double real) {
    constexpr double kTope = 1e9;
    return real >= -kTope && real <= kTope ? static_cast<int>(std::lround(real)) : 0;
}
QChar Letra(const jet::Valor& valor) {
    const auto* texto = std::get_if<std::u16string>(&valor);
    return texto == nullptr || texto->empty() ? QChar() : QChar(texto->front());
}

// Members by group, of a table whose columns are group and member.
Result<std::map<int, std::vector<int>>> LeerMiembros(const jet::BaseDatos& base,
                                                     std::string_view tabla,
                                                     std::string_view grupo) {
    QUIMO_TRY(const auto filas, LeerTabla(base, tabla, {grupo, "ID_Producto"}));
    std::map<int, std::vector<int>> miembros;
    for (const Fila& fila : filas)
        miembros[Entero(fila[0])].push_back(Entero(fila[1]));
    return miembros;
}

Result<void> LeerProductos(const jet::BaseDatos& base, Catalogo& catalogo) {
    QUIMO_TRY(const auto productos,
              LeerTabla(base, "Producto",
                        {"ID_Producto", "ID_Categoria", "Precio_Producto", "Abierto",
                         "ID_Grupo_Modificadores", "Estado", "Paquete"}));
    for (const Fila& fila : productos) {
        const int id = Entero(fila[0]);
        QUIMO_TRY(const Dinero precio, Monto(fila[2], "Producto", id));
        catalogo.productos[id] = {.id = id,
                                  .categoria = Entero(fila[1]),
                                  .precio = precio,
                                  .grupo_modificadores = Entero(fila[4]),
                                  .abierto = Logico(fila[3]),
                                  .activo = Letra(fila[5]) == u'A',
                                  .paquete = Logico(fila[6])};
    }
    QUIMO_TRY(const auto tipos, LeerTabla(base, "Tipos_Impuesto",
                                          {"ID_Tipo_Impuesto", "Porcentaje", "Tipo_Imp_Activo"}));
    std::map<int, int> tasas;
    for (const Fila& fila : tipos) {
        if (Logico(fila[2])) tasas[Entero(fila[0])] = Redondeado(Real(fila[1]) * 10000);
    }
    QUIMO_TRY(const auto impuestos,
              LeerTabla(base, "ImpuestosXProducto",
                        {"ID_Producto", "ID_Tipo_Impuesto", "Incluir_en_precio"}));
    for (const Fila& fila : impuestos) {
        const auto producto = catalogo.productos.find(Entero(fila[0]));
        const auto tasa = tasas.find(Entero(fila[1]));
        if (producto == catalogo.productos.end() || tasa == tasas.end()) continue;
        producto->second.impuestos.push_back({tasa->first, tasa->second, Logico(fila[2])});
    }
    return {};
}

Result<void> LeerModificadores(const jet::BaseDatos& base, Catalogo& catalogo) {
    QUIMO_TRY(const auto tipos,
              LeerTabla(base, "Tipo_Modificador",
                        {"ID_Tipo_Modificador", "Precio_Tipo_Modificador", "Estado_Modificador"}));
    std::map<int, Dinero> precios;
    for (const Fila& fila : tipos) {
        if (Letra(fila[2]) != u'A') continue;
        QUIMO_TRY(precios[Entero(fila[0])], Monto(fila[1], "Tipo_Modificador", Entero(fila[0])));
    }
    QUIMO_TRY(const auto grupos, LeerTabla(base, "Grupo_Modificadores",
                                           {"ID_Grupo_Modificadores", "Grupo_Mod_Activo"}));
    std::set<int> activos;
    for (const Fila& fila : grupos) {
        if (Logico(fila[1])) activos.insert(Entero(fila[0]));
    }
    QUIMO_TRY(const auto miembros, LeerTabla(base, "TiposXGrupo_Modificadores",
                                             {"ID_Grupo_Modificadores", "ID_Tipo_Modificador"}));
    for (const Fila& fila : miembros) {
        const auto precio = precios.find(Entero(fila[1]));
        if (precio == precios.end() || !activos.contains(Entero(fila[0]))) continue;
        catalogo.modificadores[Entero(fila[0])].push_back({precio->first, precio->second});
    }
    return {};
}

Result<void> LeerPaquetes(const jet::BaseDatos& base, Catalogo& catalogo) {
    QUIMO_TRY(const auto miembros, LeerMiembros(base, "ProductosXSeccion", "ID_Seccion_Paquete"));
    QUIMO_TRY(const auto secciones, LeerTabla(base, "Secciones_Paquete",
                                              {"Id_Seccion_Paquete", "ID_Producto", "Numero"}));
    for (const Fila& fila : secciones) {
        SeccionDePaquete seccion{.cuantos = Entero(fila[2])};
        const auto productos = miembros.find(Entero(fila[0]));
        if (productos != miembros.end()) {
            for (const int id : productos->second) {
                const auto producto = catalogo.productos.find(id);
                if (producto != catalogo.productos.end() && producto->second.activo)
                    seccion.productos.push_back(id);
            }
        }
        if (!seccion.productos.empty())
            catalogo.paquetes[Entero(fila[1])].push_back(std::move(seccion));
    }
    return {};
}

// Those of the products that the terminal offers.
std::vector<int> EnVenta(const Catalogo& catalogo, const std::vector<int>& productos) {
    std::vector<int> vendibles;
    for (const int id : productos) {
        const auto producto = catalogo.productos.find(id);
        if (producto != catalogo.productos.end() && producto->second.SeVende())
            vendibles.push_back(id);
    }
    return vendibles;
}

Result<void> LeerPromociones(const jet::BaseDatos& base, Catalogo& catalogo) {
    QUIMO_TRY(auto comprados,
              LeerMiembros(base, "Detalle_Gpo_Promocional", "ID_Grupo_Promocional"));
    QUIMO_TRY(auto regalados, LeerMiembros(base, "Detalle_Gpo_Obsequios", "ID_Grupo_Obsequio"));
    QUIMO_TRY(const auto promociones,
              LeerTabla(base, "Promocion", {"ID_Promocion", "CantMesa", "Activo"}));
    std::map<int, int> por_mesa;  // 0: as many as the step gives
    for (const Fila& fila : promociones) {
        if (Logico(fila[2])) por_mesa[Entero(fila[0])] = Entero(fila[1]);
    }
    QUIMO_TRY(const auto pasos,
              LeerTabla(base, "Detalle_Promocion",
                        {"ID_Promocion", "CantMinima", "CantObsequios", "Descuento",
                         "ID_Grupo_Promocional", "ID_Grupo_Obsequios"}));
    for (const Fila& fila : pasos) {
        const auto promocion = por_mesa.find(Entero(fila[0]));
        if (promocion == por_mesa.end()) continue;
        PasoDePromocion paso{.promocion = promocion->first,
                             .minimo = std::clamp(Redondeado(std::ceil(Real(fila[1]))), 1, 12),
                             .obsequios = std::clamp(Redondeado(Real(fila[2])), 0, 12),
                             .descuento = std::clamp(Redondeado(Real(fila[3]) * 100), 0, 10000),
                             .comprados = EnVenta(catalogo, comprados[Entero(fila[4])]),
                             .regalados = EnVenta(catalogo, regalados[Entero(fila[5])])};
        if (promocion->second > 0) paso.obsequios = std::min(paso.obsequios, promocion->second);
        if (paso.obsequios > 0 && !paso.comprados.empty() && !paso.regalados.empty())
            catalogo.promociones.push_back(std::move(paso));
    }
    return {};
}

Result<void> LeerCortesias(const jet::BaseDatos& base, Catalogo& catalogo) {
    QUIMO_TRY(auto productos, LeerMiembros(base, "ProductoXTipo_Cortesia", "ID_Tipo_Cortesia"));
    QUIMO_TRY(const auto tipos, LeerTabla(base, "Tipo_Cortesia",
                                          {"ID_Tipo_Cortesia", "Tipo_Cortesia", "Cantidad_Cortesia",
                                           "Cantidad_Maxima", "Sel_articulo", "Cortesia_Activa"}));
    for (const Fila& fila : tipos) {
        if (!Logico(fila[5])) continue;
        const int id = Entero(fila[0]);
        QUIMO_TRY(const Dinero cantidad, Monto(fila[2], "Tipo_Cortesia", id));
        QUIMO_TRY(const Dinero maximo, Monto(fila[3], "Tipo_Cortesia", id));
        catalogo.cortesias.push_back({.id = id,
                                      .tipo = Letra(fila[1]),
                                      .cantidad = cantidad,
                                      .maximo = maximo,
                                      .por_articulo = Logico(fila[4]),
                                      .productos = std::move(productos[id])});
    }
    return {};
}

Result<void> LeerServicio(const jet::BaseDatos& base, Catalogo& catalogo) {
    QUIMO_TRY(const auto pagos, LeerTabla(base, "Tipo_Pago", {"ID_Tipo_Pago", "Clase"}));
    for (const Fila& fila : pagos)
        catalogo.pagos.push_back({Entero(fila[0]), Letra(fila[1])});
    QUIMO_TRY(const auto anulaciones, LeerTabla(base, "Tipos_Anulacion", {"ID_Tipo_Anulacion"}));
    for (const Fila& fila : anulaciones)
        catalogo.anulaciones.push_back(Entero(fila[0]));
    QUIMO_TRY(const auto modos, LeerTabla(base, "Modo_Preparacion", {"ID_Modo_Preparacion"}));
    for (const Fila& fila : modos)
        catalogo.modos.push_back(Entero(fila[0]));
    std::ranges::sort(catalogo.modos);

    QUIMO_TRY(const auto empleados,
              LeerTabla(base, "Empleado", {"ID_Empleado", "Estado_Empleado"}));
    std::set<int> activos;
    for (const Fila& fila : empleados) {
        if (Letra(fila[1]) == u'A') activos.insert(Entero(fila[0]));
    }
    QUIMO_TRY(const auto grupos,
              LeerTabla(base, "EmpleadosXGrupo", {"ID_Empleado", "ID_Grupo_Trabajo"}));
    for (const Fila& fila : grupos) {
        if (!activos.contains(Entero(fila[0]))) continue;
        if (Entero(fila[1]) == kMeseros) catalogo.meseros.push_back(Entero(fila[0]));
        if (Entero(fila[1]) == kGerencia || Entero(fila[1]) == kCajeros)
            catalogo.responsables.push_back(Entero(fila[0]));
    }
    return {};
}

Result<void> LeerParametros(const jet::BaseDatos& base, Catalogo& catalogo) {
    QUIMO_TRY(const auto parametros, LeerTabla(base, "Parametros", {"ID_Parametro", "Valor_Num"}));
    for (const Fila& fila : parametros) {
        const auto* clave = std::get_if<std::u16string>(&fila[0]);
        if (clave == nullptr) continue;
        if (*clave == u"TERMINAL") catalogo.terminal = Redondeado(Real(fila[1]));
        if (*clave == u"FOLIOPRODUCTOSX") catalogo.siguiente_articulo = Redondeado(Real(fila[1]));
    }
    return {};
}

}  // namespace

Result<Catalogo> LeerCatalogo(const jet::BaseDatos& base) {
    Catalogo catalogo;
    QUIMO_TRY_VOID(LeerProductos(base, catalogo));
    QUIMO_TRY_VOID(LeerModificadores(base, catalogo));
    QUIMO_TRY_VOID(LeerPaquetes(base, catalogo));
    QUIMO_TRY_VOID(LeerPromociones(base, catalogo));
    QUIMO_TRY_VOID(LeerCortesias(base, catalogo));
    QUIMO_TRY_VOID(LeerServicio(base, catalogo));
    QUIMO_TRY_VOID(LeerParametros(base, catalogo));
    const bool con_productos = std::ranges::any_of(
        catalogo.productos, [](const auto& p) { return p.second.SeVende() && !p.second.paquete; });
    if (!con_productos || catalogo.meseros.empty() || catalogo.pagos.empty() ||
        catalogo.terminal < 1 || catalogo.siguiente_articulo < 1) {
        return Error{
            Error::Codigo::Datos,
            "La base de datos de la terminal no tiene con qué vender: faltan productos con "
            "precio, meseros, tipos de pago o el número de la terminal.",
            base.Ruta()};
    }
    // A day more must fit behind the terminal's number in the nine digits of an item number.
    constexpr int kArticulosPorVenir = 100000;
    const std::size_t digitos =
        std::to_string(catalogo.terminal).size() +
        std::to_string(catalogo.siguiente_articulo + kArticulosPorVenir).size();
    if (digitos > 9) {
        return Error{Error::Codigo::Datos,
                     "El contador de artículos de la terminal está por agotarse.", base.Ruta()};
    }
    return catalogo;
}

}  // namespace quimo::demo
