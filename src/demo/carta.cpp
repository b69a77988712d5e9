#include "demo/carta.h"

namespace quimo::demo {
namespace {

constexpr CategoriaDemo kCategorias[] = {
    {u"Desayunos", kDesayunos, 1, kImpresorasCocina, kModificadoresHuevos},
    {u"Entradas y botanas", kEntradas, 2, kImpresorasCocina, kModificadoresAntojitos},
    {u"Sopas y caldos", kSopas, 3, kImpresorasCocina},
    {u"Tlayudas y antojitos", kTlayudas, 2, kImpresorasParrilla, kModificadoresAntojitos},
    {u"Moles y guisos", kMoles, 3, kImpresorasCocina, kModificadoresAntojitos},
    {u"De la parrilla", kParrilla, 3, kImpresorasParrilla, kModificadoresCarne},
    {u"Ensaladas", kEnsaladas, 3, kImpresorasCocina},
    {u"Postres", kPostres, 6, kImpresorasPostres, kSinModificadores, u'S'},
    {u"Café y chocolate", kCafe, 4, kImpresorasBarra, kModificadoresCafe},
    {u"Aguas y refrescos", kAguas, 4, kImpresorasBarra, kModificadoresBebida},
    {u"Cerveza", kCerveza, 5, kImpresorasBarra, kModificadoresBebida, u'V', 240},
    {u"Mezcal y destilados", kMezcal, 5, kImpresorasBarra, kModificadoresDestilado, u'V', 60},
    {u"Coctelería", kCocteleria, 5, kImpresorasBarra, kModificadoresBebida},
    {u"Paquetes", kPaquetes, 7, kImpresorasCocina},
    {u"Extras", kExtras, 7, kImpresorasCocina, kSinModificadores, u'S'},
    {u"De la tienda", kTienda, 8, kSinImpresora, kSinModificadores, u'R', 36},
    {u"Servicios", kServicios, 8, kSinImpresora, kSinModificadores, u'N'},
};

constexpr ProductoDemo Producto(int id, std::u16string_view nombre, int precio_restaurante,
                                int precio_bar = 0) {
    ProductoDemo producto;
    producto.id = id;
    producto.nombre = nombre;
    producto.boton = nombre;
    producto.precio_restaurante = precio_restaurante;
    producto.precio_bar = precio_bar;
    return producto;
}

constexpr ProductoDemo kProductos[] = {
    Producto(101, u"Huevos al gusto", 98),
    Producto(102, u"Huevos rancheros", 108),
    Producto(103, u"Omelette de quesillo y flor de calabaza", 132).Boton(u"Omelette\\nde flor"),
    Producto(104, u"Chilaquiles rojos", 118),
    Producto(105, u"Chilaquiles verdes con pollo", 138).Boton(u"Chilaquiles\\nverdes pollo"),
    Producto(106, u"Enfrijoladas con tasajo", 155),
    Producto(107, u"Entomatadas con huevo", 128),
    Producto(108, u"Molletes con chorizo istmeño", 105),
    Producto(109, u"Tamal de mole en hoja de plátano", 62)
        .Boton(u"Tamal\\nde mole")
        .SinModificadores(),
    Producto(110, u"Hot cakes de elote", 96).SinModificadores(),
    Producto(111, u"Plato de fruta con granola", 84).SinModificadores(),
    Producto(112, u"Pan de yema con nata", 48).SinModificadores(),

    Producto(201, u"Guacamole con chapulines", 135, 145),
    Producto(202, u"Quesillo asado con hierba santa", 128, 138).Boton(u"Quesillo\\nasado"),
    Producto(203, u"Chapulines tostados", 89, 89),
    Producto(204, u"Memelitas de asiento (3 pzas.)", 86, 92).Boton(u"Memelitas"),
    Producto(205, u"Molotes de plátano macho", 98, 104),
    Producto(206, u"Garnachas istmeñas", 112, 118),
    Producto(207, u"Totopos con frijol y queso", 72, 75),
    Producto(208, u"Cacahuates enchilados", 0, 45),

    Producto(301, u"Sopa de guías", 98),
    Producto(302, u"Fideo seco con crema y queso", 84),
    Producto(303, u"Caldo de piedra", 198),
    Producto(304, u"Crema de elote con epazote", 92),
    Producto(305, u"Sopa azteca", 96),
    Producto(306, u"Caldo de gallina con menudencias", 118).Boton(u"Caldo\\nde gallina"),

    Producto(401, u"Tlayuda sencilla con asiento", 110, 118).Boton(u"Tlayuda\\nsencilla"),
    Producto(402, u"Tlayuda con tasajo", 168, 178),
    Producto(403, u"Tlayuda con cecina enchilada", 168, 178).Boton(u"Tlayuda\\ncecina"),
    Producto(404, u"Tlayuda mixta", 195, 205),
    Producto(405, u"Tlayuda de flor de calabaza", 152).Boton(u"Tlayuda\\nde flor"),
    Producto(406, u"Empanadas de amarillo", 118),
    Producto(407, u"Tostadas de tinga (2 pzas.)", 92, 98).Boton(u"Tostadas\\nde tinga"),
    Producto(408, u"Quesadillas de huitlacoche", 118),
    Producto(409, u"Enchiladas de coloradito", 158),
    Producto(410, u"Tacos de lechón (3 pzas.)", 128, 134).Boton(u"Tacos\\nde lechón"),

    Producto(501, u"Mole negro con guajolote", 245),
    Producto(502, u"Mole coloradito con pollo", 198),
    Producto(503, u"Mole amarillo con res", 205),
    Producto(504, u"Mole verde con espinazo", 198),
    Producto(505, u"Estofado de lengua", 235),
    Producto(506, u"Manchamanteles de cerdo", 205),
    Producto(507, u"Chichilo de res", 238),
    Producto(508, u"Chile relleno de picadillo", 172),
    Producto(509, u"Barbacoa de borrego al horno", 228).Boton(u"Barbacoa"),
    Producto(510, u"Guiso del día", 145).DelDia(),

    Producto(601, u"Tasajo asado con guarnición", 225),
    Producto(602, u"Cecina enchilada con nopales", 218),
    Producto(603, u"Arrachera a las brasas", 298),
    Producto(604, u"Chuletón de cerdo ahumado", 248),
    Producto(605, u"Parrillada del zaguán para dos", 495).Boton(u"Parrillada\\npara dos"),
    Producto(606, u"Mojarra al mojo de ajo", 232).SinModificadores(),
    Producto(607, u"Camarones a la diabla", 268).SinModificadores(),
    Producto(608, u"Robalo en hierba santa", 285).Estado(u'S').SinModificadores(),
    Producto(609, u"Brocheta de pollo y verduras", 178).SinModificadores(),

    Producto(701, u"Ensalada de nopales", 88),
    Producto(702, u"Ensalada de berros y jícama", 96),
    Producto(703, u"Ensalada de betabel con queso de cabra", 118).Boton(u"Ensalada\\nde betabel"),
    Producto(704, u"Ensalada César de la casa", 124),

    Producto(801, u"Flan de cajeta", 72, 72),
    Producto(802, u"Pastel de tres leches", 84, 84),
    Producto(803, u"Plátanos asados con rompope", 78),
    Producto(804, u"Nicuatole de tuna", 58),
    Producto(805, u"Buñuelos de rodilla", 64),
    Producto(806, u"Nieve de leche quemada con tuna", 62, 62).Boton(u"Nieve\\nleche quemada"),
    Producto(807, u"Pay de requesón", 76),

    Producto(901, u"Café de olla", 42, 42),
    Producto(902, u"Café americano", 40, 40),
    Producto(903, u"Café con leche", 52),
    Producto(904, u"Capuchino", 58),
    Producto(905, u"Chocolate de agua", 48),
    Producto(906, u"Chocolate de leche", 56),
    Producto(907, u"Té de poleo", 38),
    Producto(908, u"Atole de panela", 45).Estado(u'D'),
    Producto(909, u"Champurrado", 52),

    Producto(1001, u"Agua de chilacayota", 46, 50),
    Producto(1002, u"Agua de horchata con tuna", 46, 50),
    Producto(1003, u"Agua de jamaica", 38, 42),
    Producto(1004, u"Limonada mineral", 48, 52),
    Producto(1005, u"Tejate", 52),
    Producto(1006, u"Refresco 355 ml", 38, 42),
    Producto(1007, u"Agua mineral 355 ml", 36, 40),
    Producto(1008, u"Agua natural 600 ml", 28, 32),
    Producto(1009, u"Jugo de naranja", 52),
    Producto(1010, u"Jugo verde de nopal y piña", 58).Boton(u"Jugo verde"),

    Producto(1101, u"Cerveza clara 355 ml", 48, 45),
    Producto(1102, u"Cerveza oscura 355 ml", 48, 45),
    Producto(1103, u"Cerveza artesanal de maíz", 92, 88),
    Producto(1104, u"Michelada", 68, 64),
    Producto(1105, u"Chelada", 58, 54),
    Producto(1106, u"Cubeta de seis cervezas", 0, 240),
    Producto(1107, u"Tarro de barril", 62, 58),

    Producto(1201, u"Mezcal espadín", 95, 88),
    Producto(1202, u"Mezcal tobalá", 165, 155),
    Producto(1203, u"Mezcal cuishe", 158, 148),
    Producto(1204, u"Mezcal de pechuga", 190, 180),
    Producto(1205, u"Mezcal ensamble de la casa", 120, 112).Boton(u"Ensamble\\nde la casa"),
    Producto(1206, u"Tequila blanco", 98, 92),
    Producto(1207, u"Tequila reposado", 112, 105),
    Producto(1208, u"Ron añejo", 88, 82).Estado(u'B'),
    Producto(1209, u"Cata de cuatro mezcales", 0, 320),

    Producto(1301, u"Mezcalita de jamaica", 128, 118),
    Producto(1302, u"Mezcalita de tamarindo", 128, 118),
    Producto(1303, u"Margarita de limón", 125, 115),
    Producto(1304, u"Paloma", 112, 104),
    Producto(1305, u"Carajillo", 118, 110),
    Producto(1306, u"Cuba libre", 98, 90),
    Producto(1307, u"Piña colada", 118, 110),
    Producto(1308, u"Sangría de la casa", 98, 90),
    Producto(1309, u"Donají", 132, 122),

    Producto(1401, u"Desayuno del mercado", 168),
    Producto(1402, u"Comida corrida del día", 189),
    Producto(1403, u"Banquete de moles para dos", 520).Boton(u"Banquete\\nde moles"),
    Producto(1404, u"Menú infantil", 138),
    Producto(1405, u"Botanero de barra", 0, 295),

    Producto(1501, u"Orden de tortillas hechas a mano", 22, 22).Boton(u"Tortillas"),
    Producto(1502, u"Porción de quesillo", 38, 38),
    Producto(1503, u"Frijoles de la olla", 32),
    Producto(1504, u"Guarnición de arroz", 30),
    Producto(1505, u"Salsa de chile pasilla mixe", 18, 18).Boton(u"Salsa\\npasilla"),
    Producto(1506, u"Huevo extra", 20),
    Producto(1507, u"Sal de gusano", 25, 25),

    Producto(1601, u"Mole negro en pasta 500 g", 165).Impuesto(kIva0),
    Producto(1602, u"Café de Pluma molido 250 g", 145).Impuesto(kIva0),
    Producto(1603, u"Tabletas de chocolate 400 g", 128).Impuesto(kIeps8),
    Producto(1604, u"Frasco de sal de gusano 60 g", 70, 70).Impuesto(kIva0),
    Producto(1605, u"Cocadas y dulces regionales", 95).Impuesto(kIeps8),
    Producto(1606, u"Botella de mezcal espadín 750 ml", 680, 680).Boton(u"Mezcal\\nbotella"),
    Producto(1607, u"Bolsa de totopos del Istmo", 58).Impuesto(kIva0),
    Producto(1608, u"Taza de barro negro", 180),

    Producto(1701, u"Descorche", 180, 180),
    Producto(1702, u"Servicio de pastel", 120),
};

}  // namespace

std::span<const CategoriaDemo> CategoriasDemo() { return kCategorias; }
std::span<const ProductoDemo> ProductosDemo() { return kProductos; }

}  // namespace quimo::demo
