// Which tables a close copies: those whose number of rows or whose total differs from the central
// figures, and the checks always.

#include <gtest/gtest.h>

#include <QFile>

#include "restaurante_prueba.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose::pruebas {
namespace {

/// Closes the same day with the same file of the only terminal, again and again.
class MarcasTest : public ::testing::Test {
protected:
    void SetUp() override {
        restaurante_.Mandar(
            u"UPDATE Terminal SET Estado_Terminal='I' WHERE Nombre_Terminal<>'BARRA'"_s);
        for (const DefCopia& copia : Copias())
            restaurante_.Mandar(u"DELETE FROM "_s + QString::fromUtf16(copia.tabla));
        ASSERT_TRUE(QFile::copy(restaurante_.Terminal(u"BARRA"_s), vendido_));
    }

    /// The tables that were copied.
    QStringList Cerrar() {
        QFile::remove(restaurante_.Terminal(u"BARRA"_s));
        EXPECT_TRUE(QFile::copy(vendido_, restaurante_.Terminal(u"BARRA"_s)));
        restaurante_.Mandar(
            u"UPDATE Parametros SET Valor_Cad='14112026' WHERE ID_Parametro='FECHA_TRABAJO'"_s);
        EXPECT_EQ(restaurante_.Cerrar(), FinDeDia::Desenlace::Terminado);
        QStringList tablas;
        for (const TablaCopiada& tabla : restaurante_.Resumen().copiadas)
            tablas << tabla.tabla;
        return tablas;
    }

    Restaurante restaurante_;
    QString vendido_ = restaurante_.Raiz() + u"/barra.mdb"_s;
};

struct CasoMarca {
    QStringList cambios;  ///< done centrally after the close before
    QString copiadas;
};

TEST_F(MarcasTest, SeCopiaLoQueDifiereEnNumeroOEnTotal) {
    const QString item = u"ProductosXCuenta SET %1 WHERE ID_ProductosXCuenta="_s;
    const QString ultimo = u"(SELECT MAX(ID_ProductosXCuenta) FROM %1)"_s;
    const CasoMarca casos[] = {
        {{}, u"Comanda Cuenta ProductosXCuenta Cortesia ImpuestosXCuenta Modificador Pago"_s},
        // What no figure counts is not noticed; the checks' figures always differ.
        {{u"UPDATE Comanda SET Num_Mesa=99"_s, u"UPDATE Cuenta SET Total=Total+1"_s}, u"Cuenta"_s},
        {{u"UPDATE Cortesia SET Monto=Monto-1"_s,
          u"DELETE FROM Pago WHERE ID_Pago=(SELECT MAX(ID_Pago) FROM Pago)"_s},
         u"Cuenta Cortesia Pago"_s},
        {{u"DELETE FROM Cortesia"_s, u"UPDATE Modificador SET Precio_Modificador=77"_s},
         u"Cuenta Cortesia Modificador"_s},
        {{u"DELETE FROM Modificador WHERE ID_ProductosXCuenta="_s + ultimo.arg(u"Modificador"_s),
          u"UPDATE "_s + item.arg(u"Precio_Venta=Precio_Venta+0.0001"_s) +
              ultimo.arg(u"ProductosXCuenta"_s)},
         u"Cuenta ProductosXCuenta Modificador"_s},
        {{u"UPDATE "_s + item.arg(u"ID_Tipo_Anulacion=1"_s) +
          ultimo.arg(u"ProductosXCuenta WHERE ID_Tipo_Anulacion IS NULL"_s)},
         u"Cuenta ProductosXCuenta"_s},
        {{u"UPDATE ImpuestosXCuenta SET Monto_ImpuestosXCuenta=NULL WHERE ID_ProductosXCuenta="_s +
              ultimo.arg(u"ImpuestosXCuenta"_s),
          u"UPDATE Pago SET Monto_Pago=0 WHERE ID_Pago=(SELECT MAX(ID_Pago) FROM Pago)"_s},
         u"Cuenta ImpuestosXCuenta Pago"_s},
        {{u"INSERT INTO Comanda (ID_Comanda,Fecha_Trabajo) VALUES (1,'14112026')"_s,
          u"DELETE FROM ImpuestosXCuenta WHERE ID_ProductosXCuenta="_s +
              ultimo.arg(u"ImpuestosXCuenta"_s)},
         u"Comanda Cuenta ImpuestosXCuenta"_s},
    };
    for (const CasoMarca& caso : casos) {
        for (const QString& cambio : caso.cambios)
            restaurante_.Mandar(cambio);
        EXPECT_EQ(Cerrar().join(u' '), caso.copiadas) << caso.cambios.join(u';').toStdString();
    }
}

}  // namespace
}  // namespace quimo::dayclose::pruebas
