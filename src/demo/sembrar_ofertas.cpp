#include <QDateTime>

#include "demo/carta.h"
#include "demo/sembrar.h"
#include "demo/sql_demo.h"

namespace quimo::demo {

using namespace Qt::StringLiterals;
using base::Dinero;
using base::Result;
using data::Fila;
using data::SqlConnection;

namespace {

const QVariant kNulo;

QVariant Pesos(int pesos) { return QVariant::fromValue(Dinero::DeEntero(pesos)); }
QVariant Dia(int ano, int mes, int dia) {
    return QDateTime(QDate(ano, mes, dia), QTime(0, 0), Qt::UTC);
}

// One row per member: the key of the group, then the member's.
QVector<Fila> Miembros(int grupo, const QVector<int>& miembros) {
    QVector<Fila> filas;
    for (const int miembro : miembros)
        filas.append({grupo, miembro});
    return filas;
}

struct SeccionDemo {
    int paquete = 0;
    QString nombre;
    int cuantos = 1;
    QVector<int> productos;
};

QVector<SeccionDemo> Secciones() {
    return {
        {1401, u"PLATO"_s, 1, {101, 102, 104, 107, 108, 109}},
        {1401, u"FRUTA O PAN"_s, 1, {111, 112}},
        {1401, u"BEBIDA CALIENTE"_s, 1, {901, 902, 905, 906}},
        {1402, u"PRIMER TIEMPO"_s, 1, {301, 302, 304, 306}},
        {1402, u"GUISADO"_s, 1, {408, 409, 502, 504, 508, 510}},
        {1402, u"AGUA FRESCA"_s, 1, {1001, 1002, 1003}},
        {1402, u"POSTRE"_s, 1, {801, 804}},
        {1403, u"MOLES – DOS A ELEGIR"_s, 2, {501, 502, 503, 504, 506, 507}},
        {1403, u"GUARNICIÓN"_s, 1, {1503, 1504}},
        {1403, u"BEBIDAS"_s, 2, {1002, 1003, 1101, 1102}},
        {1404, u"PLATO INFANTIL"_s, 1, {110, 408, 410}},
        {1404, u"BEBIDA"_s, 1, {1002, 1003, 1009}},
        {1404, u"POSTRE"_s, 1, {801, 806}},
        {1405, u"BOTANAS"_s, 2, {201, 202, 203, 205, 206, 207, 208}},
        {1405, u"CERVEZAS"_s, 2, {1101, 1102, 1107}},
    };
}

Result<void> SembrarPaquetes(SqlConnection& conexion) {
    QVector<Fila> secciones;
    QVector<Fila> productos;
    int id = 0;
    for (const SeccionDemo& seccion : Secciones()) {
        ++id;
        secciones.append({id, seccion.nombre, seccion.paquete, seccion.cuantos});
        productos += Miembros(id, seccion.productos);
    }
    QUIMO_TRY_VOID(Insertar(conexion, u"Secciones_Paquete"_s,
                            u"ID_Seccion_Paquete,Nombre_Seccion,ID_Producto,Numero"_s, secciones));
    return Insertar(conexion, u"ProductosXSeccion"_s, u"ID_Seccion_Paquete,ID_Producto"_s,
                    productos);
}

constexpr int kMezcalitas = 1;
constexpr int kCervezas = 2;
constexpr int kPostresDeCasa = 3;
constexpr int kMezcalitaDeRegalo = 1;
constexpr int kCervezaRebajada = 2;
constexpr int kCafeDelPostre = 3;

Result<void> SembrarGruposDePromocion(SqlConnection& conexion) {
    QUIMO_TRY_VOID(InsertarConClave(conexion, u"Grupo_Promocional"_s,
                                    u"ID_Grupo_Promocional,Nombre_Gpo_Promocional"_s,
                                    {
                                        {kMezcalitas, u"Mezcalitas"_s},
                                        {kCervezas, u"Cervezas"_s},
                                        {kPostresDeCasa, u"Postres de la casa"_s},
                                    }));
    QUIMO_TRY_VOID(Insertar(conexion, u"Detalle_Gpo_Promocional"_s,
                            u"ID_Grupo_Promocional,ID_Producto"_s,
                            Miembros(kMezcalitas, {1301, 1302, 1309}) +
                                Miembros(kCervezas, {1101, 1102, 1103, 1104, 1107}) +
                                Miembros(kPostresDeCasa, {801, 802, 803, 804, 805, 806, 807})));
    QUIMO_TRY_VOID(InsertarConClave(conexion, u"Grupo_Obsequios"_s,
                                    u"ID_Grupo_Obsequio,Nombre_Gpo_Obsequio"_s,
                                    {
                                        {kMezcalitaDeRegalo, u"Mezcalita de regalo"_s},
                                        {kCervezaRebajada, u"Cerveza rebajada"_s},
                                        {kCafeDelPostre, u"Café del postre"_s},
                                    }));
    return Insertar(conexion, u"Detalle_Gpo_Obsequios"_s, u"ID_Grupo_Obsequio,ID_Producto"_s,
                    Miembros(kMezcalitaDeRegalo, {1301, 1302}) +
                        Miembros(kCervezaRebajada, {1101, 1102}) +
                        Miembros(kCafeDelPostre, {901, 902}));
}

Result<void> SembrarPromociones(SqlConnection& conexion) {
    QUIMO_TRY_VOID(SembrarGruposDePromocion(conexion));
    QUIMO_TRY_VOID(InsertarConClave(
        conexion, u"Promocion"_s,
        u"ID_Promocion,ClaveUsr,Nombre_Promocion,Tipo_Promocion,CantMesa,Fecha_Inicio_Promocion,"
        "Fecha_Fin_Promocion,Activo"_s,
        {
            {1, u"2X1MEZ"_s, u"Mezcalitas 2x1"_s, u"M"_s, 4, Dia(2024, 1, 1), Dia(2099, 12, 31), 1},
            {2, u"CERVEZA3"_s, u"Tercera cerveza a mitad"_s, u"R"_s, kNulo, Dia(2024, 1, 1), kNulo,
             1},
            {3, u"POSTRE+CAFE"_s, u"Café con tu postre, 60 % menos"_s, u"P"_s, 2, Dia(2024, 1, 1),
             kNulo, 1},
            {4, u"VERANO23"_s, u"Verano '23"_s, u"P"_s, kNulo, Dia(2023, 6, 1), Dia(2023, 8, 31),
             0},
        }));
    return InsertarConClave(
        conexion, u"Detalle_Promocion"_s,
        u"ID_Detalle_Promocion,ID_Promocion,CantMinima,CantMaxima,CantObsequios,"
        "Descuento,ID_Grupo_Promocional,ID_Grupo_Obsequios"_s,
        {
            {1, 1, 1, 4, 1, 100, kMezcalitas, kMezcalitaDeRegalo},
            {2, 2, 2, 4, 1, 50, kCervezas, kCervezaRebajada},
            {3, 2, 5, 10, 2, 50, kCervezas, kCervezaRebajada},
            {4, 3, 1, kNulo, 1, 60, kPostresDeCasa, kCafeDelPostre},
            {5, 4, 1, 1, 1, 25, kCervezas, kCervezaRebajada},
        });
}

Result<void> SembrarCortesias(SqlConnection& conexion) {
    QUIMO_TRY_VOID(Insertar(
        conexion, u"Tipo_Cortesia"_s,
        u"ID_Tipo_Cortesia,Nombre_Tipo_Cortesia,Tipo_Cortesia,Cantidad_Cortesia,Cantidad_Maxima,"
        "Sel_articulo,Fecha_Inicio_Cortesia,Fecha_Fin_Cortesia,Cortesia_Activa"_s,
        {
            {1, u"Invita la casa"_s, u"P"_s, Pesos(100), Pesos(400), 1, Dia(2024, 1, 1), kNulo, 1},
            {2, u"Empleados, 30 %"_s, u"P"_s, Pesos(30), Pesos(250), 0, Dia(2024, 1, 1), kNulo, 1},
            {3, u"Tarjeta de la tercera edad, 10 %"_s, u"P"_s, Pesos(10), Pesos(150), 0,
             Dia(2024, 1, 1), Dia(2099, 12, 31), 1},
            {4, u"Café de bienvenida"_s, u"F"_s, Pesos(40), Pesos(40), 1, Dia(2024, 1, 1), kNulo,
             1},
            {5, u"Disculpa de gerencia"_s, u"A"_s, Pesos(0), Pesos(300), 0, Dia(2024, 1, 1), kNulo,
             1},
            {6, u"Aniversario 2023"_s, u"P"_s, Pesos(15), Pesos(100), 0, Dia(2023, 9, 1),
             Dia(2023, 9, 30), 0},
        }));
    return Insertar(
        conexion, u"ProductoXTipo_Cortesia"_s, u"ID_Tipo_Cortesia,ID_Producto"_s,
        Miembros(1, {203, 801, 802, 804, 806, 1003, 1101, 1201, 1308}) + Miembros(4, {901, 902}));
}

}  // namespace

Result<void> SembrarOfertas(SqlConnection& conexion) {
    QUIMO_TRY_VOID(SembrarPaquetes(conexion));
    QUIMO_TRY_VOID(SembrarPromociones(conexion));
    return SembrarCortesias(conexion);
}

}  // namespace quimo::demo
