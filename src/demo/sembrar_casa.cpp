#include <QDateTime>
#include <QStringList>

#include "demo/carta.h"
#include "demo/sembrar.h"
#include "demo/sql_demo.h"
#include "foundation/permisos.h"

namespace quimo::demo {

using namespace Qt::StringLiterals;
using base::Result;
using data::Fila;
using data::SqlConnection;

namespace {

const QVariant kNulo;

Result<void> SembrarTerminales(SqlConnection& conexion) {
    QUIMO_TRY_VOID(
        Insertar(conexion, u"Menu"_s, u"ID_Menu,Nombre_Menu,Descripcion,Menu_Activo"_s,
                 {
                     {kMenuRestaurante, u"Restaurante"_s, u"Carta del salón y del patio"_s, 1},
                     {kMenuBar, u"Bar"_s, u"Barra y terraza"_s, 1},
                 }));
    // The server's own station never sells; the one of the patio waits for a new screen.
    QUIMO_TRY_VOID(Insertar(
        conexion, u"Terminal"_s,
        u"ID_Terminal,Nombre_Terminal,ID_Menu,Direccion_IP,Estado_Terminal,Servidor,Servidor_Backup"_s,
        {
            {1, u"CAJA1"_s, kMenuRestaurante, u"10.0.8.11"_s, u"A"_s, 0, 1},
            {2, u"CAJA2"_s, kMenuRestaurante, u"10.0.8.12"_s, u"A"_s, 0, 0},
            {3, u"BARRA"_s, kMenuBar, u"10.0.8.13"_s, u"A"_s, 0, 0},
            {4, u"PATIO"_s, kMenuRestaurante, u"10.0.8.14"_s, u"D"_s, 0, 0},
            {9, u"SERVIDOR"_s, kMenuRestaurante, u"10.0.8.10"_s, u"R"_s, 1, 0},
        }));
    QUIMO_TRY_VOID(Insertar(conexion, u"Grupo_Impresoras"_s,
                            u"ID_Grupo_Impresoras,Nombre_Grupo_Impresoras"_s,
                            {
                                {kImpresorasCocina, u"Cocina"_s},
                                {kImpresorasParrilla, u"Comal y parrilla"_s},
                                {kImpresorasBarra, u"Barra"_s},
                                {kImpresorasPostres, u"Postres"_s},
                            }));
    QUIMO_TRY_VOID(Insertar(
        conexion, u"Impresora"_s,
        u"ID_Impresora,Nombre_Impresora,Puerto,Modo,Estado_Impresora,Comentario,ID_Terminal,"
        "Redirigido,EsDeCheques,Id_Impresora_Respaldo"_s,
        {
            {1, u"Cocina caliente"_s, u"COM1"_s, u"E"_s, u"A"_s, u"Junto al pase"_s, 1, 1, 0,
             kNulo},
            {2, u"Comal"_s, u"COM2"_s, u"E"_s, u"A"_s, kNulo, 1, 2, 0, 1},
            {3, u"Barra"_s, u"COM1"_s, u"S"_s, u"A"_s, kNulo, 3, 3, 0, kNulo},
            {4, u"Postres"_s, u"COM1"_s, u"E"_s, u"R"_s, u"Rodillo en el taller"_s, 2, 1, 0, 1},
            {5, u"Cuentas caja 1"_s, u"LPT1"_s, u"E"_s, u"A"_s, kNulo, 1, 5, 1, kNulo},
            {6, u"Cuentas caja 2"_s, u"LPT1"_s, u"C"_s, u"A"_s, kNulo, 2, 6, 1, 5},
            {7, u"Cuentas barra"_s, u"LPT1"_s, u"S"_s, u"A"_s, kNulo, 3, 7, 1, 5},
        }));
    return Insertar(conexion, u"ImpresorasXGrupo"_s, u"ID_Impresora,ID_Grupo_Impresoras"_s,
                    {
                        {1, kImpresorasCocina},
                        {2, kImpresorasParrilla},
                        {3, kImpresorasBarra},
                        {4, kImpresorasPostres},
                    });
}

struct EmpleadoDemo {
    int grupo = 0;
    QString nombre;
    QString paterno;
    QString materno;
    QString estado = u"A"_s;
};

QVector<EmpleadoDemo> Empleados() {
    return {
        {kGerencia, u"Zenaida"_s, u"Cruz"_s, u"Villanueva"_s},
        {kGerencia, u"Ángel"_s, u"Carrasco"_s, u"Núñez"_s},
        {kCajeros, u"Brenda Itzel"_s, u"Morales"_s, u"Chávez"_s},
        {kCajeros, u"Sofía"_s, u"D'Acosta"_s, u"Pacheco"_s},
        {kCajeros, u"Germán"_s, u"Toledo"_s, u"Jiménez"_s},
        {kCajeros, u"Liliana"_s, u"Aquino"_s, u"Gómez"_s},
        {kMeseros, u"Eleuterio"_s, u"Bautista"_s, u"López"_s},
        {kMeseros, u"Yolanda"_s, u"Ruiz"_s, u"Santiago"_s},
        {kMeseros, u"Noé"_s, u"Matías"_s, u"Regalado"_s},
        {kMeseros, u"Araceli"_s, u"Cortés"_s, u"Ramírez"_s},
        {kMeseros, u"Joaquín"_s, u"Esteva"_s, u"Robles"_s},
        {kMeseros, u"Maricruz"_s, u"Vásquez"_s, u"Peña"_s},
        {kMeseros, u"Fidel"_s, u"Zárate"_s, u"Avendaño"_s},
        {kMeseros, u"Rocío"_s, u"Altamirano"_s, u"Luis"_s},
        {kMeseros, u"Tomás"_s, u"O'Reilly"_s, u"Guzmán"_s},
        {kMeseros, u"Dulce María"_s, u"Hernández"_s, u"Osorio"_s},
        {kMeseros, u"Abundio"_s, u"García"_s, u"Sosa"_s, u"B"_s},
        {kBarman, u"Héctor"_s, u"Ibarra"_s, u"Méndez"_s},
        {kBarman, u"Paulina"_s, u"Quevedo"_s, u"Ríos"_s},
        {kBarman, u"Samuel"_s, u"Figueroa"_s, u"Castellanos"_s},
        {kPersonalCocina, u"Eufemia"_s, u"Martínez"_s, u"Martínez"_s},
        {kPersonalCocina, u"Crispín"_s, u"Antonio"_s, u"Velasco"_s},
        {kPersonalCocina, u"Remedios"_s, u"Ambrosio"_s, u"Nicolás"_s},
    };
}

// A user name is the first name's beginning and the key: zenai1, noe9.
QString Usuario(const QString& nombre, int id) {
    QString letras;
    for (const QChar letra : nombre.toLower().normalized(QString::NormalizationForm_D)) {
        if (letra >= u'a' && letra <= u'z') letras += letra;
    }
    return letras.left(5) + QString::number(id);
}

Result<void> SembrarEmpleados(SqlConnection& conexion) {
    QUIMO_TRY_VOID(Insertar(conexion, u"Grupo_Trabajo"_s,
                            u"ID_Grupo_Trabajo,Nombre_Grupo_Trabajo"_s,
                            {
                                {kGerencia, u"Gerencia"_s},
                                {kCajeros, u"Cajeros"_s},
                                {kMeseros, u"Meseros"_s},
                                {kBarman, u"Barra"_s},
                                {kPersonalCocina, u"Cocina"_s},
                            }));
    QVector<Fila> empleados;
    QVector<Fila> grupos;
    int id = 0;
    for (const EmpleadoDemo& empleado : Empleados()) {
        ++id;
        const bool con_tarjeta = empleado.grupo <= kCajeros;
        empleados.append(
            {id, Usuario(empleado.nombre, id), empleado.nombre, empleado.paterno, empleado.materno,
             kNulo, con_tarjeta ? QVariant(u";00000077%1=?"_s.arg(id, 4, 10, QChar(u'0'))) : kNulo,
             empleado.estado, QString::number(700 + id), 0, empleado.grupo == kGerencia ? 1 : 0,
             0});
        grupos.append({id, empleado.grupo});
        // Who runs the bar also waits on its tables.
        if (empleado.grupo == kBarman) grupos.append({id, kMeseros});
    }
    QUIMO_TRY_VOID(
        Insertar(conexion, u"Empleado"_s,
                 u"ID_Empleado,Usuario,Nombre_Empleado,Apellido_Paterno,Apellido_Materno,"
                 "Contraseña,Tarjeta_magnetica,Estado_Empleado,Num_Tarjeta,Intentos,"
                 "Admin_Usuarios,Id_Terminal"_s,
                 empleados));
    return Insertar(conexion, u"EmpleadosXGrupo"_s, u"ID_Empleado,ID_Grupo_Trabajo"_s, grupos);
}

Result<void> SembrarPermisos(SqlConnection& conexion) {
    const QStringList nombres = foundation::NombresDePermisos();
    const QStringList de_cajeros{u"REPORTES"_s, u"REPPAGOS"_s, u"REPVENTAS"_s};
    QVector<Fila> permisos;
    QVector<Fila> por_grupo;
    for (int id = 1; id <= nombres.size(); ++id) {
        const QString& nombre = nombres[id - 1];
        permisos.append({id, nombre, 1});
        por_grupo.append({kGerencia, id});
        if (de_cajeros.contains(nombre)) por_grupo.append({kCajeros, id});
    }
    QUIMO_TRY_VOID(
        Insertar(conexion, u"Permisos"_s, u"ID_Permiso,Nombre_Permiso,Activo"_s, permisos));
    return Insertar(conexion, u"PermisosXGrupo_Trabajo"_s, u"ID_Grupo_Trabajo,ID_Permiso"_s,
                    por_grupo);
}

Result<void> SembrarParametros(SqlConnection& conexion, const QDate& fecha_trabajo) {
    return Insertar(conexion, u"Parametros"_s, u"ID_Parametro,Valor_Num,Valor_Cad"_s,
                    {
                        {u"FECHA_TRABAJO"_s, kNulo, fecha_trabajo.toString(u"ddMMyyyy"_s)},
                        {u"DIRTERMBD"_s, kNulo, u"quimo"_s},
                        {u"TERMINAL"_s, 9, kNulo},
                        {u"FOLIOCOMANDA"_s, 1, kNulo},
                        {u"FOLIOPAGO"_s, 1, kNulo},
                        {u"FOLIOPRODUCTOSX"_s, 1, kNulo},
                        {u"CVEEMPRESA"_s, 1, kNulo},
                        {u"SUCURSAL"_s, kNulo, u"El Comal de Zenaida"_s},
                        {u"DIRECCIONCALLE"_s, kNulo, u"Calle de los Hojalateros 27"_s},
                        {u"DIRECCIONCALLE2"_s, kNulo, u"entre Curtidurías y Callejón del Pozo"_s},
                        {u"DIRECCIONCOL"_s, kNulo, u"Barrio de las Tenerías"_s},
                        {u"DIRECCIONDEL"_s, kNulo, u"Oaxaca de Juárez"_s},
                        {u"DIRECCIONCP"_s, kNulo, u"68000"_s},
                        {u"DIRECCIONEYC"_s, kNulo, u"Oaxaca, México"_s},
                        {u"RFC"_s, kNulo, u"XAXX010101000"_s},
                        {u"SERIE"_s, kNulo, u"Z"_s},
                        {u"TC_US"_s, 18.35, kNulo},
                    });
}

// A part of the day as the reports read it: two times on the first day of the calendar.
Fila ParteDelDia(const QString& nombre, const QTime& inicio, const QTime& fin) {
    const QDate dia(1900, 1, 1);
    return {nombre, QDateTime(dia, inicio, Qt::UTC), QDateTime(dia, fin, Qt::UTC)};
}

Result<void> SembrarServicio(SqlConnection& conexion) {
    QUIMO_TRY_VOID(Insertar(conexion, u"Seccion_dia"_s, u"Nombre,Hora_inicio,Hora_Fin"_s,
                            {
                                ParteDelDia(u"Desayuno"_s, QTime(7, 0), QTime(12, 29, 59)),
                                ParteDelDia(u"Comida"_s, QTime(12, 30), QTime(18, 29, 59)),
                                ParteDelDia(u"Cena"_s, QTime(18, 30), QTime(22, 59, 59)),
                                ParteDelDia(u"Noche"_s, QTime(23, 0), QTime(2, 59, 59)),
                            }));
    QUIMO_TRY_VOID(InsertarConClave(conexion, u"Tipo_Pago"_s,
                                    u"ID_Tipo_Pago,Nombre_Tipo_Pago,Clase,Abrir_Gaveta"_s,
                                    {
                                        {1, u"Efectivo"_s, u"E"_s, 1},
                                        {2, u"Tarjeta de crédito"_s, u"T"_s, 0},
                                        {3, u"Tarjeta de débito"_s, u"D"_s, 0},
                                        {4, u"Cheque"_s, u"C"_s, 1},
                                        {5, u"Transferencia"_s, u"O"_s, 0},
                                        {6, u"Dólares"_s, u"E"_s, 1},
                                    }));
    QUIMO_TRY_VOID(
        InsertarConClave(conexion, u"Tipos_Anulacion"_s,
                         u"ID_Tipo_Anulacion,Nombre_Tipos_Anulacion,Regresa_Existencia"_s,
                         {
                             {1, u"Error al teclear"_s, 1},
                             {2, u"El cliente cambió de opinión"_s, 1},
                             {3, u"Ya no había en cocina"_s, 1},
                             {4, u"Devuelto: frío o mal preparado"_s, 0},
                             {5, u"Se cayó o se rompió"_s, 0},
                         }));
    QUIMO_TRY_VOID(Insertar(conexion, u"Modo_Preparacion"_s,
                            u"ID_Modo_Preparacion,Nombre_Modo_Preparacion,Indicador"_s,
                            {
                                {1, u"Normal"_s, u"."_s},
                                {2, u"Para llevar"_s, u">> LLEVAR"_s},
                                {3, u"Primero"_s, u"1er. TIEMPO"_s},
                                {4, u"Al final"_s, u"AL FINAL"_s},
                                {5, u"Alergia"_s, u"!! ALERGIA"_s},
                                {6, u"Al centro"_s, u"AL CENTRO"_s},
                            }));
    return InsertarConClave(
        conexion, u"Mensajes"_s, u"ID_Mensaje,Mensaje,Mensaje_Activo"_s,
        {
            {1, u"Se terminó el caldo de piedra"_s, 1},
            {2, u"Hoy no hay tejate"_s, 1},
            {3, u"Mesa 12: cumpleaños, llevar velita con el postre"_s, 1},
            {4, u"Pasar los pedidos de la parrilla antes de las 22:30"_s, 1},
            {5, u"La terminal \"PATIO\" está en reparación"_s, 1},
            {6, u"Mezcalitas 2x1: cuatro de regalo por mesa, no más"_s, 1},
            {7, u"Noche de Rábanos: carta reducida"_s, 0},
            {8, u"Preguntar siempre por alergias, ¡es la regla de la casa!"_s, 1},
        });
}

}  // namespace

Result<void> SembrarCasa(SqlConnection& conexion, const QDate& fecha_trabajo) {
    QUIMO_TRY_VOID(SembrarParametros(conexion, fecha_trabajo));
    QUIMO_TRY_VOID(SembrarTerminales(conexion));
    QUIMO_TRY_VOID(SembrarEmpleados(conexion));
    QUIMO_TRY_VOID(SembrarPermisos(conexion));
    return SembrarServicio(conexion);
}

Result<void> Sembrar(SqlConnection& conexion, const QDate& fecha_trabajo) {
    QUIMO_TRY_VOID(SembrarCasa(conexion, fecha_trabajo));
    QUIMO_TRY_VOID(SembrarCarta(conexion));
    return SembrarOfertas(conexion);
}

}  // namespace quimo::demo
