#include "dayclose/cierre/explicacion.h"

#include <gtest/gtest.h>

#include <QStringList>

#include "support/central_prueba.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {
namespace {

using Valores = QVector<QPair<QString, QString>>;

const QString kSalida =
    u"Para cerrar sin esta terminal: quimoctl cerrar ... --continuar --omitir CAJA2\n"
    u"(sus ventas quedan en el archivo y se traen después con --traer)."_s;
const QString kOtraVez =
    u"Corregido el renglón en CAJA2, siga con: quimoctl cerrar ... --continuar\n"_s;

/// Runs the row's statement, which must be refused, and explains why it was.
QString Explicar(quimo::pruebas::CentralPrueba& central, const QString& tabla,
                 const Valores& valores, const QString& condicion) {
    QStringList columnas;
    QStringList literales;
    for (const auto& [columna, literal] : valores) {
        columnas << columna;
        literales << literal;
    }
    data::SqlConnection& conexion = central.Ado().Conexion();
    const auto respuesta =
        conexion.Ejecutar(u"INSERT INTO "_s + tabla + u" ("_s + columnas.join(u',') +
                          u") VALUES ("_s + literales.join(u',') + u')');
    if (!respuesta.fallo) return u"no fue rechazado"_s;
    return ExplicarRechazo(conexion, {u"CAJA2"_s, tabla, valores, condicion, *respuesta.fallo});
}

Valores Articulo(const QString& orden, const QString& precio, const QString& comentario) {
    return {{u"ID_ProductosXCuenta"_s, u"20001"_s},
            {u"ID_Comanda"_s, orden},
            {u"Num_Cuenta"_s, u"1"_s},
            {u"ID_Producto"_s, u"407"_s},
            {u"Comentario"_s, comentario},
            {u"Preparado"_s, u"1"_s},
            {u"Precio_Venta"_s, precio},
            {u"Precio_Original"_s, u"232.0000"_s},
            {u"Hora_Anulacion"_s, u"NULL"_s}};
}

const QString kArticulo =
    u"Terminal CAJA2, tabla ProductosXCuenta (artículos), clave ID_ProductosXCuenta=20001.\n"_s;
const QString kYaHay = u"La base central ya tiene un artículo con esa clave.\n"_s;

struct Caso {
    const char* nombre = nullptr;
    QStringList preparar;
    QString tabla;
    Valores valores;
    QString condicion;
    QString esperado;  ///< without the way out, which is always the same
};

void Comprobar(const Caso& caso) {
    quimo::pruebas::CentralPrueba central;
    for (const QString& sentencia : caso.preparar)
        central.Ejecutar(sentencia);
    EXPECT_EQ(Explicar(central, caso.tabla, caso.valores, caso.condicion).toStdString(),
              (caso.esperado + kSalida).toStdString())
        << caso.nombre;
}

QString OrdenDeAyer(const QString& fecha) {
    return u"INSERT INTO Comanda (ID_Comanda,Fecha_Trabajo) VALUES (777,'%1')"_s.arg(fecha);
}

const QString kArticuloDeAyer =
    u"INSERT INTO ProductosXCuenta (ID_ProductosXCuenta,ID_Comanda,Num_Cuenta,ID_Producto,"
    u"Comentario,Preparado,Precio_Venta,Precio_Original) VALUES "
    u"(20001,777,1,407,'sin sal',1,232,232)"_s;

TEST(ExplicarRechazo, LaClaveRepetidaMuestraLosDosRenglones) {
    const Caso casos[] = {
        {"iguales, de ayer",
         {OrdenDeAyer(u"13112026"_s), kArticuloDeAyer},
         u"ProductosXCuenta"_s,
         Articulo(u"777"_s, u"232.0000"_s, u"'sin sal'"_s),
         u"ID_ProductosXCuenta=20001"_s,
         kArticulo + kYaHay +
             u"  central: orden 777 (del 13/11/2026), cuenta 1, producto 407, precio $232.00\n"
             u"  CAJA2: orden 777 (del 13/11/2026), cuenta 1, producto 407, precio $232.00\n"
             u"Los dos renglones son iguales: esta venta ya estaba copiada.\n"
             u"Parece que CAJA2 no recibió su base de datos nueva y conserva ventas de otro día.\n"_s},
        {"otra venta, y la orden de la terminal no está",
         {OrdenDeAyer(u"3113"_s), kArticuloDeAyer},
         u"ProductosXCuenta"_s,
         Articulo(u"50902000"_s, u"231.9999"_s, u"NULL"_s),
         u"ID_ProductosXCuenta=20001"_s,
         kArticulo + kYaHay +
             u"  central: orden 777 (del «3113»), cuenta 1, producto 407, precio $232.00\n"
             u"  CAJA2: orden 50902000 (no está en la base central), cuenta 1, producto 407, "
             u"precio $231.9999\n"
             u"No son iguales:\n"
             u"  ID_Comanda: 777 en la central, 50902000 en CAJA2\n"
             u"  Comentario: «sin sal» en la central, sin valor en CAJA2\n"
             u"  Precio_Venta: $232.00 en la central, $231.9999 en CAJA2\n"
             u"Son dos ventas con el mismo número. Avise a soporte.\n"_s},
        {"la misma orden, cambiada",
         {OrdenDeAyer(u"13112026"_s), kArticuloDeAyer},
         u"ProductosXCuenta"_s,
         Articulo(u"777"_s, u"0.0000"_s, u"'sin sal'"_s),
         u"ID_ProductosXCuenta=20001"_s,
         kArticulo + kYaHay +
             u"  central: orden 777 (del 13/11/2026), cuenta 1, producto 407, precio $232.00\n"
             u"  CAJA2: orden 777 (del 13/11/2026), cuenta 1, producto 407, precio $0.00\n"
             u"No son iguales:\n"
             u"  Precio_Venta: $232.00 en la central, $0.00 en CAJA2\n"
             u"Es la misma orden: parece que CAJA2 no recibió su base de datos nueva.\n"
             u"Vea con soporte cuál de los dos renglones vale.\n"_s},
        {"una fecha solo difiere en lo que la copia no guarda",
         {u"INSERT INTO Comanda (ID_Comanda,Fecha_Cierre) VALUES (777,'14/11/2026')"_s},
         u"Comanda"_s,
         {{u"ID_Comanda"_s, u"777"_s}, {u"Fecha_Cierre"_s, u"'14/11/2026 21:00:05'"_s}},
         u"ID_Comanda=777"_s,
         u"Terminal CAJA2, tabla Comanda (órdenes), clave ID_Comanda=777.\n"
         u"La base central ya tiene una orden con esa clave.\n"
         u"  central: orden 777 (del «»), mesa sin valor, abierta el sin valor\n"
         u"  CAJA2: orden 777 (del «»)\n"
         u"Los dos renglones son iguales: esta venta ya estaba copiada.\n"
         u"Parece que CAJA2 no recibió su base de datos nueva y conserva ventas de otro día.\n"_s},
    };
    for (const Caso& caso : casos)
        Comprobar(caso);
}

TEST(ExplicarRechazo, CadaValorQueNoCabeNombraSuColumna) {
    const QString orden = u"Terminal CAJA2, tabla Comanda (órdenes), clave ID_Comanda=777.\n"_s;
    const auto comanda = [](const QString& columna, const QString& literal) {
        return Valores{{u"ID_Comanda"_s, u"777"_s}, {columna, literal}};
    };
    const Caso casos[] = {
        {"sin valor",
         {},
         u"Cuenta"_s,
         {{u"ID_Comanda"_s, u"777"_s}, {u"Num_Cuenta"_s, u"NULL"_s}, {u"Total"_s, u"5"_s}},
         u"ID_Comanda=777 AND Num_Cuenta=NULL"_s,
         u"Terminal CAJA2, tabla Cuenta (cuentas), clave ID_Comanda=777, Num_Cuenta sin valor.\n"
         u"La columna Num_Cuenta no tiene valor, y en la base central es obligatoria.\n"_s},
        {"texto largo",
         {},
         u"Comanda"_s,
         comanda(u"Tipo"_s, u"'mesa d''el \n salón \U0001F600 con un texto larguísimo'"_s),
         u"ID_Comanda=777"_s,
         orden + u"El texto de la columna Tipo es demasiado largo: tiene 43 caracteres y caben "
                 u"10.\n  «mesa d'el · salón \U0001F600 con un te…»\n"_s},
        {"fecha anterior",
         {},
         u"Comanda"_s,
         comanda(u"Fecha_Cierre"_s, u"'31/12/1752 00:00:00'"_s),
         u"ID_Comanda=777"_s,
         orden + u"La fecha de la columna Fecha_Cierre es 31/12/1752, y la base central admite del "
                 u"01/01/1753 al 31/12/9999.\n"_s},
        {"fecha ilegible",
         {},
         u"Comanda"_s,
         comanda(u"Fecha_Apertura"_s, u"'ayer'"_s),
         u"ID_Comanda=777"_s,
         orden + u"La columna Fecha_Apertura tiene «ayer», que no se entiende como fecha.\n"_s},
        {"número grande",
         {},
         u"Comanda"_s,
         comanda(u"Num_Mesa"_s, u"2147483648"_s),
         u"ID_Comanda=777"_s,
         orden + u"El número de la columna Num_Mesa es 2147483648, y la base central admite de "
                 u"-2147483648 a 2147483647.\n"_s},
        {"ningún número",
         {},
         u"Pago"_s,
         {{u"ID_Pago"_s, u"5"_s}, {u"Monto_Pago"_s, u"nan"_s}},
         u"ID_Pago=5"_s,
         u"Terminal CAJA2, tabla Pago (pagos), clave ID_Pago=5.\n"
         u"La columna Monto_Pago tiene «nan» donde va un número.\n"_s},
        {"dinero en texto",
         {},
         u"Comanda"_s,
         comanda(u"Num_Mesa"_s, u"'doce'"_s),
         u"ID_Comanda=777"_s,
         orden + u"La columna Num_Mesa tiene «doce» donde va un número.\n"_s},
        {"otra cosa",
         {},
         u"Comanda"_s,
         comanda(u"Color"_s, u"1"_s),
         u"ID_Comanda=777"_s,
         orden + u"El servidor no aceptó el renglón.\n"_s},
    };
    for (Caso caso : casos) {
        caso.esperado += kOtraVez;
        Comprobar(caso);
    }
}

TEST(ExplicarRechazo, LaReferenciaQueFaltaSeNombra) {
    const Valores articulo = Articulo(u"777"_s, u"1.0000"_s, u"NULL"_s);
    const QString se_refiere =
        u"El renglón se refiere a otro que no existe en la base central:\n"_s;
    const QString quiza = u"Quizá se borró del catálogo, o el archivo es de otro restaurante.\n"_s;
    const Caso casos[] = {
        {"producto",
         {u"DELETE FROM ProductosXCuenta"_s,
          u"ALTER TABLE ProductosXCuenta ADD CONSTRAINT FK_Producto_X FOREIGN KEY (ID_Producto) "
          u"REFERENCES Producto (ID_Producto)"_s},
         u"ProductosXCuenta"_s,
         {{u"ID_ProductosXCuenta"_s, u"20001"_s},
          {u"ID_Comanda"_s, u"777"_s},
          {u"Num_Cuenta"_s, u"1"_s},
          {u"ID_Producto"_s, u"99999"_s}},
         u"ID_ProductosXCuenta=20001"_s,
         kArticulo + se_refiere + u"  tabla Producto, ID_Producto=99999\n"_s + quiza},
        {"cuenta, por dos columnas",
         {u"DELETE FROM ProductosXCuenta"_s,
          u"ALTER TABLE ProductosXCuenta ADD CONSTRAINT FK_Cuenta_X FOREIGN KEY "
          u"(ID_Comanda,Num_Cuenta) REFERENCES Cuenta (ID_Comanda,Num_Cuenta)"_s},
         u"ProductosXCuenta"_s,
         articulo,
         u"ID_ProductosXCuenta=20001"_s,
         kArticulo + se_refiere + u"  tabla Cuenta, ID_Comanda=777, Num_Cuenta=1\n"_s + quiza},
        {"regla de la tabla",
         {u"DELETE FROM ProductosXCuenta"_s,
          u"ALTER TABLE ProductosXCuenta ADD CONSTRAINT CK_Precio CHECK (Precio_Venta>=100)"_s},
         u"ProductosXCuenta"_s,
         articulo,
         u"ID_ProductosXCuenta=20001"_s,
         kArticulo + u"El renglón no cumple la regla CK_Precio de la base central.\n"_s},
        {"regla de una columna",
         {u"DROP TABLE Cortesia"_s,
          u"CREATE TABLE Cortesia (ID_ProductosXCuenta INT,ID_Tipo_Cortesia INT,Monto MONEY "
          u"CONSTRAINT CK_Monto CHECK (Monto<100))"_s},
         u"Cortesia"_s,
         {{u"ID_ProductosXCuenta"_s, u"5"_s}, {u"Monto"_s, u"1234.5000"_s}},
         u"ID_ProductosXCuenta=5 AND ID_Tipo_Cortesia=1"_s,
         u"Terminal CAJA2, tabla Cortesia (cortesías), clave ID_ProductosXCuenta=5, "
         u"ID_Tipo_Cortesia=1.\n"
         u"La columna Monto tiene $1,234.50, y la regla CK_Monto de la base central no lo "
         u"admite.\n"_s},
    };
    for (Caso caso : casos) {
        caso.esperado += kOtraVez;
        Comprobar(caso);
    }
}

TEST(ExplicarRechazo, DentroDeUnaTransaccionNoConsulta) {
    quimo::pruebas::CentralPrueba central;
    central.Ejecutar(OrdenDeAyer(u"13112026"_s));
    central.Ejecutar(kArticuloDeAyer);
    ASSERT_TRUE(central.Ado().Conexion().Iniciar());
    EXPECT_EQ(Explicar(central, u"ProductosXCuenta"_s, Articulo(u"777"_s, u"1"_s, u"NULL"_s),
                       u"ID_ProductosXCuenta=20001"_s)
                  .toStdString(),
              (kArticulo + kYaHay + kSalida).toStdString());
}

TEST(ExplicarRechazo, ElNombreConEspaciosVaEntreComillas) {
    EXPECT_TRUE(SalidaSinTerminal(u"CAJA DOS"_s).contains(u"--omitir \"CAJA DOS\""_s));
}

}  // namespace
}  // namespace quimo::dayclose
