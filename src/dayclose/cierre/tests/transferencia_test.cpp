// The copy of a terminal's rows: what is written, in which form and order, what is passed over, and
// what is known of a row that is refused. Real terminal files, whole tables compared.

#include "dayclose/cierre/transferencia.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include "data/transaccion.h"
#include "dayclose/cierre/comparacion_terminal.h"
#include "restaurante_prueba.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose::pruebas {
namespace {

using data::Transaccion;
using Presentes = OpcionesCopia::Presentes;
using Distintas = OpcionesCopia::Distintas;

jet::Valor Texto(const char16_t* texto) { return std::u16string(texto); }
jet::Valor Pesos(qint64 diezmilesimas) { return base::Dinero::DeDiezmilesimas(diezmilesimas); }
jet::Valor Momento(int hora, int minuto, int segundo) {
    return *jet::Fecha::DeCivil({2026, 11, 14, hora, minuto, segundo, 0});
}
constexpr std::monostate kNulo;

using Filas = QVector<QPair<std::string, std::vector<jet::Valor>>>;

/// What a terminal sold: an order that is open and one that is closed, with everything on it.
Filas Vendido() {
    return {
        {"Comanda",
         {900001, 7, 12, false, Momento(20, 1, 2), Momento(21, 36, 8), Texto(u"M'1"),
          Texto(u"14112026"), 5, 4}},
        {"Comanda",
         {900002, 7, -3, true, Momento(20, 1, 2), kNulo, Texto(u"B"), Texto(u"14112026"), 0,
          kNulo}},
        {"Cuenta", {900001, 1, true, 2, Pesos(-1234567), 5}},
        {"Cuenta", {900001, 2, false, 0, kNulo, 5}},
        {"ProductosXCuenta",
         {9100001, 900001, 1, 55, Texto(u"sin 'ajo'; -- ?"), true, Pesos(-12345), Pesos(990000), 3,
          kNulo, 2, 8, 7, Momento(21, 17, 45), 5}},
        {"ProductosXCuenta",
         {9100002, 900002, 1, 56, kNulo, false, Pesos(0), Pesos(1), kNulo, 4, kNulo, kNulo, kNulo,
          kNulo, 5}},
        {"Cortesia", {9100001, 6, Pesos(-50000)}},
        {"ImpuestosXCuenta", {9100001, 1, Pesos(16)}},
        {"Modificador", {9100001, 30, Pesos(-1)}},
        {"Pago", {94999, 900001, 1, 2, Pesos(9223372036854775807), kNulo, Texto(u"x"), 5}},
    };
}

class TransferenciaTest : public ::testing::Test {
protected:
    /// A terminal's file with these rows and no others.
    QString Archivo(const QString& nombre, const Filas& filas) const {
        QString ruta = restaurante_.Raiz() + u'/' + nombre;
        auto base = jet::BaseDatos::Abrir(
            (restaurante_.Programa() + u"/Plantilla.mdb"_s).toStdString(), jet::Modo::Escritura);
        EXPECT_TRUE(base);
        for (const auto& [nombre_tabla, valores] : filas) {
            auto tabla = base->AbrirTabla(nombre_tabla);
            EXPECT_TRUE(tabla) << nombre_tabla;
            const auto puesta = tabla->Insertar(valores);
            EXPECT_TRUE(puesta) << nombre_tabla << ' ' << puesta.error().mensaje;
        }
        EXPECT_TRUE(base->GuardarComo(ruta.toStdString()));
        return ruta;
    }

    OpcionesCopia Opciones(const QString& fecha = u"14112026"_s) const { return {fecha, todas_}; }

    /// Copies in a transaction of its own, confirmed when the copy succeeds.
    base::Result<QVector<TablaCopiada>, FallaCopia> Copiar(const QString& archivo,
                                                           const OpcionesCopia& opciones) {
        const auto base = BaseTerminal::Abrir(archivo, u"CAJA9"_s);
        EXPECT_TRUE(base);
        auto transaccion = Transaccion::Iniciar(restaurante_.Ado().Conexion());
        EXPECT_TRUE(transaccion);
        auto copiadas = CopiarTerminal(restaurante_.Ado(), *base, opciones);
        if (copiadas) {
            EXPECT_TRUE(transaccion->Confirmar());
        }
        return copiadas;
    }

    /// Inserted, updated, equal and different rows, over all tables.
    static QString Cuenta(const base::Result<QVector<TablaCopiada>, FallaCopia>& copiadas) {
        if (!copiadas) return u"falla: "_s + copiadas.error().interrupcion.descripcion;
        TablaCopiada suma;
        for (const TablaCopiada& tabla : *copiadas) {
            suma.insertadas += tabla.insertadas;
            suma.modificadas += tabla.modificadas;
            suma.iguales += tabla.iguales;
            suma.distintas += tabla.distintas;
        }
        return u"%1 %2 %3 %4"_s.arg(suma.insertadas)
            .arg(suma.modificadas)
            .arg(suma.iguales)
            .arg(suma.distintas);
    }

    /// The statements of the operation log since the last time, without the line's beginning.
    QStringList Bitacora() {
        QFile archivo(restaurante_.Raiz() + u"/QUIMO.log"_s);
        EXPECT_TRUE(archivo.open(QIODevice::ReadOnly));
        QStringList lineas;
        for (const QString& linea : QString::fromUtf8(archivo.readAll()).split(u'\n')) {
            const QString partes = linea.section(u'\t', 5);
            if (partes.startsWith(u"Valor insertado") || partes.startsWith(u"Modificacion"))
                lineas << partes;
        }
        QStringList nuevas = lineas.mid(leidas_);
        leidas_ = lineas.size();
        return nuevas;
    }

    Restaurante restaurante_;
    const QStringList todas_ = TablasDeVentas();
    qsizetype leidas_ = 0;
};

/// What the log says when Vendido() is inserted, and when it is copied once more.
QStringList Inserciones() {
    const QString comanda =
        u"Valor insertado en \tComanda\t campos: \tID_Comanda,ID_Empleado,Num_Mesa,Abierta,"
        "Fecha_Apertura,Fecha_Cierre,Tipo,Fecha_Trabajo\t valores: \t"_s;
    const QString producto =
        u"Valor insertado en \tProductosXCuenta\t campos: \tID_ProductosXCuenta,ID_Comanda,"
        "Num_Cuenta,ID_Producto,Comentario,Preparado,Precio_Venta,Precio_Original,"
        "ID_Tipo_Anulacion,ID_Modo_Preparacion,ID_Promocion,ID_Paquete,Empleado_Anulacion,"
        "Hora_Anulacion\t valores: \t"_s;
    return {
        comanda +
            u"900001,7,12,0,'14/11/2026 20:01:02','14/11/2026 21:36:08','M''1',"
            "'14112026'\t"_s,
        comanda + u"900002,7,-3,1,'14/11/2026 20:01:02',NULL,'B','14112026'\t"_s,
        u"Valor insertado en \tCuenta\t campos: \tID_Comanda,Num_Cuenta,Pagada,"
        "Num_Impresiones,Total\t valores: \t900001,1,1,2,-123.4567\t"_s,
        u"Valor insertado en \tCuenta\t campos: \tID_Comanda,Num_Cuenta,Pagada,"
        "Num_Impresiones,Total\t valores: \t900001,2,0,0,NULL\t"_s,
        producto +
            u"9100001,900001,1,55,'sin ''ajo''; -- ?',1,-1.2345,99.0000,3,NULL,2,8,7,"
            "'14/11/2026 21:17:17'\t"_s,
        producto + u"9100002,900002,1,56,NULL,0,0.0000,0.0001,NULL,4,NULL,NULL,NULL,NULL\t"_s,
        u"Valor insertado en \tCortesia\t campos: \tID_ProductosXCuenta,ID_Tipo_Cortesia,"
        "Monto\t valores: \t9100001,6,-5.0000\t"_s,
        u"Valor insertado en \tImpuestosXCuenta\t campos: \tID_ProductosXCuenta,"
        "ID_Tipo_Impuesto,Monto_ImpuestosXCuenta\t valores: \t9100001,1,0.0016\t"_s,
        u"Valor insertado en \tModificador\t campos: \tID_ProductosXCuenta,"
        "ID_Tipo_Modificador,Precio_Modificador\t valores: \t9100001,30,-0.0001\t"_s,
        u"Valor insertado en \tPago\t campos: \tID_Pago,ID_comanda,Num_Cuenta,ID_Tipo_Pago,"
        "Monto_Pago,Propina\t valores: \t94999,900001,1,2,922337203685477.5807,NULL\t"_s,
    };
}

QStringList Modificaciones() {
    return {
        u"Modificacion en \tComanda\t Valor: \tID_Empleado=7,Num_Mesa=12,Abierta=0,"
        "Fecha_Cierre='14/11/2026 00:00:00',Tipo='M''1'\t"_s,
        u"Modificacion en \tComanda\t Valor: \tID_Empleado=7,Num_Mesa=-3,Abierta=1,"
        "Fecha_Cierre=NULL,Tipo='B'\t"_s,
        u"Modificacion en \tCuenta\t Valor: \tID_Comanda=900001,Num_Cuenta=1,Pagada=1,"
        "Num_Impresiones=2,Total=-123.4567\t"_s,
        u"Modificacion en \tCuenta\t Valor: \tID_Comanda=900001,Num_Cuenta=2,Pagada=0,"
        "Num_Impresiones=0,Total=NULL\t"_s,
        u"Modificacion en \tProductosXCuenta\t Valor: \tComentario='sin ''ajo''; -- ?',"
        "Preparado=1,Precio_Venta=-1.2345,Precio_Original=99.0000,ID_Tipo_Anulacion=3,"
        "ID_Modo_Preparacion=NULL,ID_Promocion=2,Empleado_Anulacion=7,"
        "Hora_Anulacion='14/11/2026 21:17:45'\t"_s,
        u"Modificacion en \tProductosXCuenta\t Valor: \tComentario=NULL,Preparado=0,"
        "Precio_Venta=0.0000,Precio_Original=0.0001,ID_Tipo_Anulacion=NULL,"
        "ID_Modo_Preparacion=4,ID_Promocion=NULL,Empleado_Anulacion=NULL,"
        "Hora_Anulacion=NULL\t"_s,
        u"Modificacion en \tCortesia\t Valor: \tMonto=-5.0000\t"_s,
        u"Modificacion en \tImpuestosXCuenta\t Valor: \tMonto_ImpuestosXCuenta=0.0016\t"_s,
        u"Modificacion en \tModificador\t Valor: \tPrecio_Modificador=-0.0001\t"_s,
        u"Modificacion en \tPago\t Valor: \tID_Tipo_Pago=2,"
        "Monto_Pago=922337203685477.5807,Propina=NULL\t"_s,
    };
}

TEST_F(TransferenciaTest, CadaFilaSeInsertaYSeActualizaConLasPalabrasDeSiempre) {
    const QString archivo = Archivo(u"a.mdb"_s, Vendido());
    Bitacora();
    ASSERT_EQ(Cuenta(Copiar(archivo, Opciones())), u"10 0 0 0"_s);
    EXPECT_EQ(Bitacora(), Inserciones());
    const QStringList insertadas = Ventas(restaurante_);
    EXPECT_EQ(insertadas.filter(u"900001"_s),
              (QStringList{
                  u"Comanda|900001|7|12|0|'14/11/2026 20:01:02'|'14/11/2026 21:36:08'|'M''1'|"
                  "'14112026'|0|NULL"_s,
                  u"Cuenta|900001|1|1|2|-123.4567|0"_s,
                  u"Cuenta|900001|2|0|0|NULL|0"_s,
                  u"ProductosXCuenta|9100001|900001|1|55|'sin ''ajo''; -- ?'|1|-1.2345|99.0000|3|"
                  "NULL|2|8|7|'14/11/2026 21:17:17'|0"_s,
                  u"Pago|94999|900001|1|2|922337203685477.5807|NULL|NULL|0"_s,
              }));

    ASSERT_EQ(Cuenta(Copiar(archivo, Opciones())), u"0 10 0 0"_s);
    EXPECT_EQ(Bitacora(), Modificaciones());
    // The two asymmetries, and nothing else, tell a second copy from the first.
    QStringList esperadas = insertadas;
    esperadas.replaceInStrings(u"|'14/11/2026 21:36:08'|'M''1'"_s, u"|'14/11/2026'|'M''1'"_s);
    esperadas.replaceInStrings(u"14/11/2026 21:17:17"_s, u"14/11/2026 21:17:45"_s);
    EXPECT_EQ(Ventas(restaurante_), esperadas);
}

TEST_F(TransferenciaTest, LoQueYaTrajoEsteCierreNoVuelveAEscribirse) {
    const QString primero = Archivo(u"1.mdb"_s, Vendido());
    Filas despues = Vendido();
    despues[1].second[3] = false;  // the open order was closed
    despues[1].second[5] = Momento(23, 5, 6);
    despues[4].second[13] = Momento(21, 17, 46);  // a second that an insert does not write
    despues.append({"Pago", {95000, 900002, 1, 1, Pesos(10000), Pesos(0), kNulo, 0}});
    const QString segundo = Archivo(u"2.mdb"_s, despues);

    // The items' order belongs to another day: only the earlier file tells that they are there.
    OpcionesCopia otro_dia = Opciones(u"01012020"_s);
    ASSERT_EQ(Cuenta(Copiar(primero, otro_dia)), u"10 0 0 0"_s);
    const QStringList antes = Ventas(restaurante_);
    Bitacora();
    otro_dia.anteriores = {{primero, todas_}};
    EXPECT_EQ(Cuenta(Copiar(primero, otro_dia)), u"0 0 10 0"_s);
    EXPECT_EQ(Bitacora(), QStringList());
    EXPECT_EQ(Ventas(restaurante_), antes);
    EXPECT_EQ(Cuenta(Copiar(segundo, otro_dia)), u"1 2 8 0"_s);
    QStringList esperadas = antes;
    esperadas.replaceInStrings(u"Comanda|900002|7|-3|1|'14/11/2026 20:01:02'|NULL"_s,
                               u"Comanda|900002|7|-3|0|'14/11/2026 20:01:02'|'14/11/2026'"_s);
    esperadas.replaceInStrings(u"14/11/2026 21:17:17"_s, u"14/11/2026 21:17:46"_s);
    esperadas << u"Pago|95000|900002|1|1|1.0000|0.0000|NULL|0"_s;
    EXPECT_EQ(Ventas(restaurante_), esperadas);

    // The last of several files counts, a table that was not copied of it does not, and what
    // somebody deleted comes back.
    restaurante_.Mandar(u"DELETE FROM Cortesia WHERE ID_ProductosXCuenta=9100001"_s);
    otro_dia.anteriores = {{primero, todas_}, {segundo, {u"Comanda"_s, u"Cortesia"_s}}};
    otro_dia.tablas = QStringList{u"pago"_s, u"Cortesia"_s, u"COMANDA"_s};
    EXPECT_EQ(Cuenta(Copiar(segundo, otro_dia)), u"1 1 3 0"_s);
}

struct CasoIgual {
    QString cambio;  ///< what somebody does centrally to the copied rows
    QString tabla;   ///< the table with a row that differs then; empty: none
};

TEST_F(TransferenciaTest, SoloLoQueDeVerdadDifiereCuentaComoDistinto) {
    const QString archivo = Archivo(u"a.mdb"_s, Vendido());
    const auto base = BaseTerminal::Abrir(archivo, u"CAJA9"_s);
    ASSERT_TRUE(base);
    const auto comparar = [&] {
        const auto comparacion = CompararTerminal(restaurante_.Ado(), *base);
        EXPECT_TRUE(comparacion);
        return *comparacion;
    };
    EXPECT_EQ(comparar().Nuevas(), 10);
    OpcionesCopia opciones = Opciones(u"01012020"_s);
    opciones.presentes = Presentes::PasarIguales;
    ASSERT_EQ(Cuenta(Copiar(archivo, opciones)), u"10 0 0 0"_s);
    const QString pago = u"UPDATE Pago SET %1 WHERE ID_Pago=94999"_s;
    const QString comanda = u"UPDATE Comanda SET %1 WHERE ID_Comanda=900001"_s;
    const QString abierta = u"UPDATE Comanda SET %1 WHERE ID_Comanda=900002"_s;
    const QString cuenta = u"UPDATE Cuenta SET %1 WHERE ID_Comanda=900001 AND Num_Cuenta=2"_s;
    const QString producto = u"UPDATE ProductosXCuenta SET %1 WHERE ID_ProductosXCuenta=9100001"_s;
    const CasoIgual casos[] = {
        {comanda.arg(u"Fecha_Cierre='14/11/2026 00:00:00',Control=9,CantHuespedes=1"_s), {}},
        {comanda.arg(u"Fecha_Cierre='14/11/2026 21:36:09'"_s), u"Comanda"_s},
        {comanda.arg(u"Fecha_Apertura='14/11/2026 00:00:00'"_s), u"Comanda"_s},
        {comanda.arg(u"Fecha_Trabajo='15112026'"_s), u"Comanda"_s},
        {abierta.arg(u"Fecha_Cierre='14/11/2026'"_s), u"Comanda"_s},
        {abierta.arg(u"Abierta=0"_s), u"Comanda"_s},
        {abierta.arg(u"Tipo='B  '"_s), {}},  // blanks at the end are none to the server
        {cuenta.arg(u"Total=0"_s), u"Cuenta"_s},
        {cuenta.arg(u"Num_Impresiones=NULL"_s), u"Cuenta"_s},
        {producto.arg(u"Hora_Anulacion='14/11/2026 21:17:45'"_s), {}},
        {producto.arg(u"Hora_Anulacion='14/11/2026 21:17:46'"_s), u"ProductosXCuenta"_s},
        {producto.arg(u"Comentario='Sin ''ajo''; -- ?'"_s), u"ProductosXCuenta"_s},
        {producto.arg(u"Precio_Venta=-1.2346"_s), u"ProductosXCuenta"_s},
        {producto.arg(u"ID_Paquete=99"_s), u"ProductosXCuenta"_s},
        // No update fills it: what a first copy left empty makes no difference.
        {producto.arg(u"ID_Paquete=NULL"_s), QString()},
        {u"UPDATE Cortesia SET Monto=5 WHERE ID_ProductosXCuenta=9100001"_s, u"Cortesia"_s},
        {u"UPDATE ImpuestosXCuenta SET Monto_ImpuestosXCuenta=0 WHERE "
         "ID_ProductosXCuenta=9100001"_s,
         u"ImpuestosXCuenta"_s},
        {u"UPDATE Modificador SET Precio_Modificador=NULL WHERE ID_ProductosXCuenta=9100001"_s,
         u"Modificador"_s},
        {pago.arg(u"Monto_Pago=922337203685477.5806"_s), u"Pago"_s},
        {pago.arg(u"Propina=0"_s), u"Pago"_s},
        {pago.arg(u"Referencia='otra'"_s), {}},
    };
    for (const CasoIgual& caso : casos) {
        auto transaccion = Transaccion::Iniciar(restaurante_.Ado().Conexion());
        ASSERT_TRUE(transaccion);
        restaurante_.Mandar(caso.cambio);
        const Comparacion comparacion = comparar();
        EXPECT_EQ(comparacion.Nuevas(), 0);
        EXPECT_EQ(comparacion.Distintas(), caso.tabla.isEmpty() ? 0 : 1)
            << caso.cambio.toStdString();
        EXPECT_EQ(comparacion.Iguales() + comparacion.Distintas(), 10);
        for (const ComparacionTabla& tabla : comparacion.tablas) {
            EXPECT_EQ(tabla.distintas, tabla.tabla == caso.tabla ? 1 : 0)
                << caso.cambio.toStdString();
        }
    }
    restaurante_.Mandar(pago.arg(u"Propina=3"_s));
    EXPECT_EQ(comparar().ejemplos,
              QStringList{u"Pago (ID_Pago=94999): Propina es NULL en la terminal y 3.0000 en la "
                          "base central"_s});
    opciones.distintas = Distintas::Pasar;
    EXPECT_EQ(Cuenta(Copiar(archivo, opciones)), u"0 0 9 1"_s);
    opciones.distintas = Distintas::Actualizar;
    EXPECT_EQ(Cuenta(Copiar(archivo, opciones)), u"0 1 9 0"_s);
    EXPECT_EQ(comparar().Iguales(), 10);
}

/// Several rows of one key in a file, as one without its key has them: as if one by one.
TEST_F(TransferenciaTest, LaClaveRepetidaEnElArchivoSeInsertaYSeActualiza) {
    const QString archivo = restaurante_.Raiz() + u"/sin-clave.mdb"_s;
    auto base = jet::BaseDatos::Crear(archivo.toStdString());
    ASSERT_TRUE(base);
    using Tipo = jet::TipoColumna;
    auto tabla = base->CrearTabla({"Cortesia",
                                   {{"ID_ProductosXCuenta", Tipo::Doble},
                                    {"ID_Tipo_Cortesia", Tipo::Largo},
                                    {"Monto", Tipo::Moneda}},
                                   {}});
    ASSERT_TRUE(tabla);
    // A whole number that is kept as a fraction is one for the server too.
    for (const double clave : {9100001.0, 9100002.0, 9100001.0}) {
        const auto puesta = tabla->Insertar(std::vector<jet::Valor>{clave, 6, Pesos(10000)});
        ASSERT_TRUE(puesta) << puesta.error().mensaje;
    }
    ASSERT_TRUE(base->Guardar());
    OpcionesCopia opciones = Opciones();
    opciones.tablas = QStringList{u"Cortesia"_s};
    EXPECT_EQ(Cuenta(Copiar(archivo, opciones)), u"2 1 0 0"_s);

    auto otra = base->CrearTabla({"Pago",
                                  {{"ID_Pago", Tipo::Largo},
                                   {"ID_comanda", Tipo::Largo},
                                   {"Num_Cuenta", Tipo::Largo},
                                   {"ID_Tipo_Pago", Tipo::Largo},
                                   {"Monto_Pago", Tipo::Moneda},
                                   {"Propina", Tipo::Moneda}},
                                  {}});
    ASSERT_TRUE(otra);
    for (int vez = 1; vez <= 3; ++vez)
        ASSERT_TRUE(otra->Insertar(
            std::vector<jet::Valor>{95001, 900001, 1, 2, Pesos(10000L * vez), Pesos(0)}));
    ASSERT_TRUE(base->Guardar());
    opciones.tablas = QStringList{u"Pago"_s};
    EXPECT_EQ(Cuenta(Copiar(archivo, opciones)), u"1 2 0 0"_s);
    EXPECT_EQ(restaurante_.Valor(u"SELECT Monto_Pago FROM Pago WHERE ID_Pago=95001"_s),
              u"3.0000"_s);
}

// Among the rows of the day that are there already, one that belongs to another day.
TEST_F(TransferenciaTest, LoDeOtroDiaNoSeActualiza) {
    const QString archivo = Archivo(u"vendido.mdb"_s, Vendido());
    ASSERT_TRUE(Copiar(archivo, Opciones()));
    restaurante_.Mandar(u"UPDATE Comanda SET Fecha_Trabajo='13112026' WHERE ID_Comanda=900002"_s);
    restaurante_.Mandar(
        u"UPDATE ProductosXCuenta SET ID_Producto=77 WHERE ID_ProductosXCuenta=9100002"_s);
    OpcionesCopia opciones = Opciones();
    opciones.tablas = {u"ProductosXCuenta"_s};
    const auto copiadas = Copiar(archivo, opciones);
    ASSERT_FALSE(copiadas);
    ASSERT_TRUE(copiadas.error().renglon);
    EXPECT_EQ(copiadas.error().renglon->condicion, u"ID_ProductosXCuenta=9100002"_s);
    EXPECT_EQ(restaurante_.Valor(
                  u"SELECT ID_Producto FROM ProductosXCuenta WHERE ID_ProductosXCuenta=9100002"_s),
              u"77"_s);
}

TEST_F(TransferenciaTest, LaFilaRechazadaSeConoceYNadaQueda) {
    // An item that is central already, of an order of another day: in the middle of many.
    Filas filas;
    for (int i = 0; i < 600; ++i) {
        filas.append({"ProductosXCuenta",
                      {9200000 + i, 900001, 1, 55, Texto(u"it's"), true, Pesos(10000), Pesos(10000),
                       kNulo, kNulo, kNulo, kNulo, kNulo, kNulo, 0}});
    }
    const QString archivo = Archivo(u"a.mdb"_s, filas);
    restaurante_.Mandar(
        u"INSERT INTO ProductosXCuenta (ID_ProductosXCuenta,ID_Comanda,Num_Cuenta,ID_Producto) "
        "VALUES (9200437,1,1,1)"_s);
    const QStringList antes = Ventas(restaurante_);
    Bitacora();
    const auto copiadas = Copiar(archivo, Opciones());
    ASSERT_FALSE(copiadas);
    ASSERT_TRUE(copiadas.error().renglon);
    const RenglonRechazado& renglon = *copiadas.error().renglon;
    EXPECT_EQ(renglon.condicion, u"ID_ProductosXCuenta=9200437"_s);
    EXPECT_EQ(renglon.terminal + u' ' + renglon.tabla, u"CAJA9 ProductosXCuenta"_s);
    EXPECT_EQ(renglon.valores.size(), 14);
    EXPECT_EQ(renglon.valores[4], (QPair<QString, QString>(u"Comentario"_s, u"'it''s'"_s)));
    EXPECT_EQ(renglon.fallo.Nativo(), 2627);
    EXPECT_EQ(copiadas.error().interrupcion.descripcion, renglon.fallo.Descripcion());
    EXPECT_EQ(Ventas(restaurante_), antes);
    EXPECT_EQ(Bitacora(), QStringList());
}

TEST_F(TransferenciaTest, LoQueNingunaSentenciaPuedeLlevarDiceSuLugar) {
    const jet::Valor buena = Momento(20, 1, 2);
    const jet::Fecha mala{1e12};
    const QString archivo = Archivo(u"a.mdb"_s, {Vendido()[0]});
    const auto bytes = [](const jet::Fecha& fecha) {
        return QByteArray(reinterpret_cast<const char*>(&fecha.dias), sizeof fecha.dias);
    };
    QFile crudo(archivo);
    ASSERT_TRUE(crudo.open(QIODevice::ReadWrite));
    QByteArray todo = crudo.readAll();
    ASSERT_EQ(todo.count(bytes(std::get<jet::Fecha>(buena))), 1);
    todo.replace(bytes(std::get<jet::Fecha>(buena)), bytes(mala));
    ASSERT_TRUE(crudo.seek(0));
    ASSERT_EQ(crudo.write(todo), todo.size());
    crudo.close();
    const auto copiadas = Copiar(archivo, Opciones());
    ASSERT_FALSE(copiadas);
    EXPECT_FALSE(copiadas.error().renglon);
    EXPECT_EQ(
        copiadas.error().interrupcion.descripcion,
        u"Base de datos de la terminal CAJA9: tabla Comanda, renglón ID_Comanda=900001, columna "
        "Fecha_Apertura: La terminal guarda una fecha imposible."_s);
}

TEST_F(TransferenciaTest, DetenerTerminaSinEsperarAlFinal) {
    OpcionesCopia opciones = Opciones();
    int preguntas = 0;
    opciones.detener = [&] { return ++preguntas == 3; };
    const auto copiadas = Copiar(restaurante_.Terminal(u"CAJA1"_s), opciones);
    ASSERT_FALSE(copiadas);
    EXPECT_EQ(copiadas.error().interrupcion.motivo, Interrupcion::Motivo::Detenido);
    EXPECT_EQ(preguntas, 3);
}

TEST_F(TransferenciaTest, LasCifrasCuentanLoNegativoYLoQueNoTieneMonto) {
    const auto base = BaseTerminal::Abrir(Archivo(u"a.mdb"_s, Vendido()), u"CAJA9"_s);
    ASSERT_TRUE(base);
    const auto cifras = base->Contar();
    ASSERT_TRUE(cifras);
    QStringList textos;
    for (const DefCifra& cifra : Cifras()) {
        const auto lugar = static_cast<std::size_t>(cifra.cifra);
        textos << QString::fromUtf16(cifra.registros) + u' ' +
                      QString::number(cifras->registros[lugar]) + u' ' +
                      QString::fromStdString(cifras->totales[lugar].ATexto());
    }
    EXPECT_EQ(textos,
              (QStringList{u"RegistrosPXC 2 -1.2345"_s, u"RegistrosCta 2 -123.4567"_s,
                           u"RegistrosCmd 2 0.0000"_s, u"RegistrosP 1 922337203685477.5807"_s,
                           u"RegistrosCt 1 -5.0000"_s, u"RegistrosM 1 -0.0001"_s,
                           u"RegistrosIXC 1 0.0016"_s, u"RegistrosA 1 0.0000"_s}));
}

TEST_F(TransferenciaTest, LaSumaQueNoCabeEsUnErrorConSuLugar) {
    const Filas pagos = {
        {"Pago", {1, 900001, 1, 2, Pesos(9223372036854775807), kNulo, kNulo, 0}},
        {"Pago", {2, 900001, 1, 2, Pesos(1), kNulo, kNulo, 0}},
    };
    const auto base = BaseTerminal::Abrir(Archivo(u"a.mdb"_s, pagos), u"CAJA9"_s);
    ASSERT_TRUE(base);
    const auto cifras = base->Contar();
    ASSERT_FALSE(cifras);
    EXPECT_EQ(cifras.error().numero, kDatoNoCabe);
    EXPECT_EQ(
        cifras.error().descripcion,
        u"Base de datos de la terminal CAJA9: la suma de la columna Monto_Pago de la tabla Pago "
        "no cabe. Tiene un monto imposible: 922337203685477.5807"_s);
    // The whole close says so too, and stands as before.
    ASSERT_TRUE(QFile::remove(restaurante_.Terminal(u"BARRA"_s)));
    ASSERT_TRUE(QFile::copy(restaurante_.Raiz() + u"/a.mdb"_s, restaurante_.Terminal(u"BARRA"_s)));
    restaurante_.dialogos.ResponderSi({u"BARRA"_s, u"Monto_Pago de la tabla Pago"_s},
                                      foundation::Respuesta::Terminar);
    EXPECT_EQ(restaurante_.Cerrar(), FinDeDia::Desenlace::ConError);
}

}  // namespace
}  // namespace quimo::dayclose::pruebas
