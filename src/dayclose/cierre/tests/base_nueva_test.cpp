// What a terminal's new database holds: the numbers it goes on from, today's catalogues to the
// minute, and the prices of its own menu.

#include "dayclose/cierre/base_nueva.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "dayclose/cierre/folios.h"
#include "restaurante_prueba.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose::pruebas {
namespace {

using data::Fila;

/// One column of a terminal's table as text, by the number in another, ordered.
QStringList Columna(const QString& archivo, const std::string& nombre, const std::string& clave,
                    const std::string& columna) {
    const auto base = jet::BaseDatos::Abrir(archivo.toStdString());
    if (!base) return {QString::fromStdString(base.error().mensaje)};
    const auto tabla = base->AbrirTabla(nombre);
    if (!tabla) return {QString::fromStdString(tabla.error().mensaje)};
    const std::size_t llave = tabla->Columna(clave).value();
    const std::size_t lugar = tabla->Columna(columna).value();
    auto cursor = tabla->Recorrer();
    QStringList valores;
    while (cursor && cursor->Siguiente().value()) {
        const jet::Valor& valor = cursor->Valores()[lugar];
        const auto* dinero = std::get_if<base::Dinero>(&valor);
        const QString texto = dinero != nullptr ? QString::fromStdString(dinero->ATexto())
                              : std::holds_alternative<std::int32_t>(valor)
                                  ? QString::number(std::get<std::int32_t>(valor))
                                  : u"otra cosa"_s;
        valores << QString::number(std::get<std::int32_t>(cursor->Valores()[llave])) + u' ' + texto;
    }
    std::sort(valores.begin(), valores.end());
    return valores;
}

TEST(BaseNueva, ElNumeroDeArticuloSigueAlMayorDeLaTerminal) {
    Restaurante restaurante;
    restaurante.Mandar(u"DELETE FROM ProductosXCuenta"_s);
    for (const QString& numero : {u"300041"_s, u"300009"_s, u"1200007"_s, u"4100999"_s}) {
        restaurante.Mandar(
            u"INSERT INTO ProductosXCuenta (ID_ProductosXCuenta,ID_Comanda,Num_Cuenta,ID_Producto) "
            u"VALUES (%1,1,1,1)"_s.arg(numero));
    }
    const std::pair<int, qint64> casos[] = {{3, 42}, {12, 8}, {41, 1000}, {2, 1}, {127, 1}};
    for (const auto& [terminal, siguiente] : casos) {
        const auto folio = SiguienteFolioProductos(restaurante.Ado(), terminal);
        ASSERT_TRUE(folio);
        EXPECT_EQ(*folio, siguiente) << terminal;
    }
}

TEST(BaseNueva, UnaBaseSinVentasEmpiezaEnUno) {
    EXPECT_EQ(SiguienteDe({}), 1);
    EXPECT_EQ(SiguienteDe({Fila{QVariant()}}), 1);
    EXPECT_EQ(SiguienteDe({Fila{QVariant(0)}}), 1);
    EXPECT_EQ(SiguienteDe({Fila{QVariant(94590)}}), 94591);
    Restaurante restaurante;
    restaurante.Mandar(u"UPDATE Terminal SET Estado_Terminal='D'"_s);
    for (const DefCopia& copia : Copias())
        restaurante.Mandar(u"DELETE FROM "_s + QString::fromUtf16(copia.tabla));
    restaurante.Mandar(
        u"UPDATE Parametros SET Valor_Num=77 WHERE ID_Parametro IN ('FOLIOPAGO','FOLIOCOMANDA')"_s);
    ASSERT_EQ(restaurante.Cerrar(), FinDeDia::Desenlace::Terminado);
    for (const QString& folio : {u"FOLIOPAGO"_s, u"FOLIOCOMANDA"_s}) {
        EXPECT_EQ(
            restaurante
                .Valor(u"SELECT Valor_Num FROM Parametros WHERE ID_Parametro='"_s + folio + u'\'')
                .toDouble(),
            1);
    }
}

/// What begins and ends today does so at its hour, not at midnight. It is half past one.
TEST(BaseNueva, LoQueTieneVigenciaSeMiraALaHoraQueEs) {
    Restaurante restaurante;
    struct Catalogo {
        QString tabla;
        QString clave;
        QString fin_de_columnas;  ///< Fecha_Inicio_<this>, Fecha_Fin_<this>
        std::string destino;
    };
    const Catalogo catalogos[] = {
        {u"Promocion"_s, u"ID_Promocion"_s, u"Promocion"_s, "Promocion"},
        {u"Tipo_Cortesia"_s, u"ID_Tipo_Cortesia"_s, u"Cortesia"_s, "Tipo_Cortesia"},
        {u"PorcentajeXTipo_Impuesto"_s, u"ID_Tipo_Impuesto"_s, u"Impuesto"_s, "Tipos_Impuesto"},
    };
    const std::pair<QString, QString> vigencias[] = {
        {u"01/01/2020"_s, u"15/11/2026 01:00:00"_s},           // 1: over since half an hour ago
        {u"15/11/2026 01:00:00"_s, u"15/11/2026 02:00:00"_s},  // 2: since half an hour ago
        {u"15/11/2026 02:00:00"_s, u"31/12/2098"_s},           // 3: from two o'clock on
    };
    restaurante.Mandar(
        u"DELETE FROM PorcentajeXTipo_Impuesto WHERE Fecha_Inicio_Impuesto<'01/01/2020'"_s);
    for (const QString& tipo : {u"2"_s, u"3"_s}) {
        restaurante.Mandar(
            u"INSERT INTO ProductoXTipo_Cortesia (ID_Tipo_Cortesia,ID_Producto) VALUES (%1,801)"_s
                .arg(tipo));
    }
    for (const Catalogo& catalogo : catalogos) {
        // The last one is that of all others too.
        for (int i = 2; i >= 0; --i) {
            restaurante.Mandar(
                u"UPDATE %1 SET Fecha_Inicio_%2='%3',Fecha_Fin_%2='%4' WHERE %5%6%7"_s.arg(
                    catalogo.tabla, catalogo.fin_de_columnas, vigencias[i].first,
                    vigencias[i].second, catalogo.clave, i == 2 ? u">="_s : u"="_s,
                    QString::number(i + 1)));
        }
    }
    auto nueva = BaseNueva::Preparar(restaurante.Ado(), restaurante.Programa());
    ASSERT_TRUE(nueva) << nueva.error().descripcion.toStdString();
    ASSERT_TRUE(nueva->Adaptar({1, u"CAJA1"_s, 1}));
    for (const Catalogo& catalogo : catalogos) {
        const std::string clave = catalogo.clave.toStdString();
        EXPECT_EQ(Columna(nueva->Archivo(), catalogo.destino, clave, clave), QStringList{u"2 2"_s})
            << catalogo.destino;
    }
    const QStringList productos =
        Columna(nueva->Archivo(), "ProductoXTipo_Cortesia", "ID_Tipo_Cortesia", "ID_Producto");
    EXPECT_EQ(productos, QStringList{u"2 801"_s});
}

TEST(BaseNueva, CadaMenuTieneSusPreciosYNingunoDelAnterior) {
    Restaurante restaurante;
    restaurante.Mandar(u"DELETE FROM PreciosXMenu WHERE ID_Producto IN (101,102,103)"_s);
    restaurante.Mandar(
        u"INSERT INTO PreciosXMenu (ID_Menu,ID_Producto,Precio) VALUES (1,101,95)"_s);
    restaurante.Mandar(
        u"INSERT INTO PreciosXMenu (ID_Menu,ID_Producto,Precio) VALUES (1,102,-7.5)"_s);
    restaurante.Mandar(u"INSERT INTO PreciosXMenu (ID_Menu,ID_Producto,Precio) VALUES (2,103,8)"_s);
    auto nueva = BaseNueva::Preparar(restaurante.Ado(), restaurante.Programa());
    ASSERT_TRUE(nueva);
    const std::pair<int, QString> casos[] = {{1, u"101 95.0000 102 -7.5000 103 0.0000"_s},
                                             {2, u"101 0.0000 102 0.0000 103 8.0000"_s},
                                             {1, u"101 95.0000 102 -7.5000 103 0.0000"_s}};
    for (const auto& [menu, precios] : casos) {
        ASSERT_TRUE(nueva->Adaptar({menu, u"CAJA"_s, menu}));
        const QStringList puestos =
            Columna(nueva->Archivo(), "Producto", "ID_Producto", "Precio_Producto");
        QStringList estos;
        for (const QString& puesto : puestos) {
            if (puesto >= u"101 "_s && puesto < u"104 "_s && puesto[3] == u' ') estos << puesto;
        }
        EXPECT_EQ(estos.join(u' '), precios);
    }
}

TEST(BaseNueva, LosContadoresDeUnaTerminalNoPasanALaSiguiente) {
    Restaurante restaurante;
    restaurante.Mandar(u"UPDATE Parametros SET Valor_Num=500 WHERE ID_Parametro='FOLIOCOMANDA'"_s);
    restaurante.Mandar(u"UPDATE Parametros SET Valor_Num=600 WHERE ID_Parametro='FOLIOPAGO'"_s);
    auto nueva = BaseNueva::Preparar(restaurante.Ado(), restaurante.Programa());
    ASSERT_TRUE(nueva);
    struct Caso {
        ContadoresMinimos minimos;
        qint64 comanda;
        qint64 pago;
    };
    const Caso casos[] = {
        {{0, 0}, 500, 600},   {{800, 900}, 800, 900}, {{0, 0}, 500, 600},
        {{501, 1}, 501, 600}, {{499, 601}, 500, 601}, {{500, 600}, 500, 600},
    };
    for (const Caso& caso : casos) {
        ASSERT_TRUE(nueva->Adaptar({3, u"BARRA"_s, 2}, caso.minimos));
        const auto base = jet::BaseDatos::Abrir(nueva->Archivo().toStdString());
        ASSERT_TRUE(base);
        const auto leidos = LeerParametrosTerminal(*base);
        ASSERT_TRUE(leidos);
        EXPECT_EQ(leidos->folio_comanda, caso.comanda);
        EXPECT_EQ(leidos->folio_pago, caso.pago);
        EXPECT_EQ(leidos->terminal, 3);
    }
}

}  // namespace
}  // namespace quimo::dayclose::pruebas
