#pragma once

#include <span>
#include <string_view>

namespace quimo::demo {

// Keys of the demonstration restaurant that more than one of its files names.

inline constexpr int kMenuRestaurante = 1;
inline constexpr int kMenuBar = 2;

inline constexpr int kIva16 = 1;
inline constexpr int kIva0 = 2;
inline constexpr int kIeps8 = 3;

inline constexpr int kSinImpresora = 0;
inline constexpr int kImpresorasCocina = 1;
inline constexpr int kImpresorasParrilla = 2;
inline constexpr int kImpresorasBarra = 3;
inline constexpr int kImpresorasPostres = 4;

inline constexpr int kSinModificadores = 0;
inline constexpr int kModificadoresHuevos = 1;
inline constexpr int kModificadoresAntojitos = 2;
inline constexpr int kModificadoresCarne = 3;
inline constexpr int kModificadoresCafe = 4;
inline constexpr int kModificadoresBebida = 5;
inline constexpr int kModificadoresDestilado = 6;

inline constexpr int kDesayunos = 1;
inline constexpr int kEntradas = 2;
inline constexpr int kSopas = 3;
inline constexpr int kTlayudas = 4;
inline constexpr int kMoles = 5;
inline constexpr int kParrilla = 6;
inline constexpr int kEnsaladas = 7;
inline constexpr int kPostres = 8;
inline constexpr int kCafe = 9;
inline constexpr int kAguas = 10;
inline constexpr int kCerveza = 11;
inline constexpr int kMezcal = 12;
inline constexpr int kCocteleria = 13;
inline constexpr int kPaquetes = 14;
inline constexpr int kExtras = 15;
inline constexpr int kTienda = 16;
inline constexpr int kServicios = 17;

inline constexpr int kGerencia = 1;
inline constexpr int kCajeros = 2;
inline constexpr int kMeseros = 3;
inline constexpr int kBarman = 4;
inline constexpr int kPersonalCocina = 5;

/// A category and what its products have in common.
struct CategoriaDemo {
    std::u16string_view nombre;
    int id = 0;
    int submenu = 0;
    int grupo_impresoras = kSinImpresora;
    int grupo_modificadores = kSinModificadores;
    char16_t tipo = u'V';
    int existencia = 0;  ///< counted stock of its products; 0: they are not counted
};

/// A product. Its category is its key without the last two digits. A price of 0: that menu does not
/// offer it.
struct ProductoDemo {
    int id = 0;
    std::u16string_view nombre;
    std::u16string_view boton;
    int precio_restaurante = 0;
    int precio_bar = 0;
    int impuesto = kIva16;
    char16_t estado = u'A';
    bool con_modificadores = true;
    bool del_dia = false;

    constexpr int Categoria() const { return id / 100; }
    constexpr bool Paquete() const { return Categoria() == kPaquetes; }

    /// The name on the terminal's button, its second line after "\n".
    constexpr ProductoDemo Boton(std::u16string_view texto) const {
        ProductoDemo otro = *this;
        otro.boton = texto;
        return otro;
    }
    constexpr ProductoDemo Impuesto(int tipo) const {
        ProductoDemo otro = *this;
        otro.impuesto = tipo;
        return otro;
    }
    constexpr ProductoDemo Estado(char16_t codigo) const {
        ProductoDemo otro = *this;
        otro.estado = codigo;
        return otro;
    }
    /// Without the modifiers that its category has.
    constexpr ProductoDemo SinModificadores() const {
        ProductoDemo otro = *this;
        otro.con_modificadores = false;
        return otro;
    }
    /// The price is typed in at the sale; counted among the specials.
    constexpr ProductoDemo DelDia() const {
        ProductoDemo otro = *this;
        otro.del_dia = true;
        return otro;
    }
};

std::span<const CategoriaDemo> CategoriasDemo();
std::span<const ProductoDemo> ProductosDemo();

}  // namespace quimo::demo
