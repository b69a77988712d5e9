#include "catalog/consulta/buscador.h"

#include <gtest/gtest.h>

#include "support/central_prueba.h"

using namespace Qt::StringLiterals;

namespace quimo::catalog {
namespace {

using enum ModoBusqueda;
using enum Hallazgo;

class BuscadorTest : public testing::Test {
protected:
    void SetUp() override {
        central_.Ejecutar(
            u"CREATE TABLE Cosa (ID INT NOT NULL PRIMARY KEY, Nombre VARCHAR(30) "
            u"NULL, Precio MONEY NULL, Alta DATETIME NULL, Activa BIT NOT NULL, "
            u"Clase CHAR(1) NULL)"_s);
        for (const QString& valores :
             {u"1,'Café de olla',1234.5,'05/03/2026',1,'E'"_s, u"2,'Piña colada',80,NULL,0,'T'"_s,
              u"3,'PINA suelta',12.75,'29/02/2024 13:05:00',1,NULL"_s, u"4,NULL,NULL,NULL,0,'E'"_s,
              u"10,'té de cafeto',1234,'15/03/2026',0,'T'"_s}) {
            central_.Ejecutar(u"INSERT INTO Cosa VALUES ("_s + valores + u')');
        }
        filas_ = central_.Abrir(u"SELECT * FROM Cosa"_s);
    }
    Buscador Nuevo() const {
        return {filas_,
                {{u"Clave"_s, u"ID"_s},
                 {u"Nombre"_s, u"nombre"_s},
                 {u"Precio"_s, u"Precio"_s},
                 {u"Alta"_s, u"Alta"_s},
                 {u"Activa"_s, u"Activa"_s},
                 {u"Ajena"_s, u"No_Existe"_s},
                 {u"Clase"_s, u"Clase"_s, [](const QVariant& valor) {
                      return valor.toString() == u"E"_s ? u"Efectivo"_s : u"Tarjeta Crédito"_s;
                  }}}};
    }
    int Actual() const {
        const auto clave = filas_->Campo(u"ID"_s);
        return clave ? clave->toInt() : 0;
    }

    pruebas::CentralPrueba central_;
    data::RecordsetPtr filas_;
};

TEST_F(BuscadorTest, HallaPorLoQueSeMuestra) {
    struct Caso {
        const char16_t* texto;
        ModoBusqueda modo;
        qsizetype campo;
        QVector<int> claves;
    };
    constexpr qsizetype kTodos = CriterioBusqueda::kTodos;
    const Caso casos[] = {
        {u"CAFE", Contiene, kTodos, {1, 10}},
        {u"cafe", Empieza, kTodos, {1}},
        {u"café de olla", Igual, kTodos, {1}},
        {u"pina", Contiene, kTodos, {3}},
        {u"PIÑA", Contiene, kTodos, {2}},
        {u"pin\u0303a", Contiene, kTodos, {2}},
        {u" 10 ", Igual, 0, {10}},
        {u"1", Empieza, 0, {1, 10}},
        {u"1234.5", Igual, kTodos, {1}},
        {u"1234,5", Igual, kTodos, {1}},
        {u"$1,234.50", Igual, 2, {1}},
        {u"1,234", Empieza, 2, {1, 10}},
        {u"12.7", Empieza, 2, {3}},
        {u"1.2.3", Contiene, kTodos, {}},
        {u",", Contiene, 2, {}},
        {u"5/3/2026", Igual, kTodos, {1}},
        {u"/03/2026", Contiene, 3, {1, 10}},
        {u"29/2/2024", Igual, 3, {3}},
        {u"29/2/2024", Empieza, 3, {3}},
        {u"30/02/2024", Contiene, kTodos, {}},
        {u"sí", Igual, 4, {1, 3}},
        {u"no", Igual, kTodos, {}},  // flags only by name
        {u"efec", Empieza, kTodos, {1, 4}},
        {u"credito", Contiene, 5, {2, 10}},
        {u"😀", Contiene, kTodos, {}},
        {u"%", Contiene, kTodos, {}},
        {u"'", Contiene, kTodos, {}},
    };
    Buscador buscador = Nuevo();
    EXPECT_EQ(buscador.Campos().size(), 6);  // the one without a column is left out
    for (const Caso& caso : casos) {
        const CriterioBusqueda criterio{QString::fromUtf16(caso.texto), caso.modo, caso.campo};
        QVector<int> claves;
        auto hallazgo = buscador.Primero(criterio);
        while (hallazgo == Hallado) {
            claves << Actual();
            hallazgo = buscador.Siguiente(criterio);
        }
        EXPECT_EQ(claves, caso.claves) << criterio.texto.toStdString();
        EXPECT_EQ(hallazgo, caso.claves.isEmpty()     ? Nada
                            : caso.claves.size() == 1 ? Unico
                                                      : DesdePrincipio);
    }
}

TEST_F(BuscadorTest, SiguienteDaUnaVueltaYLoDice) {
    Buscador buscador = Nuevo();
    const CriterioBusqueda cafe{u"cafe"_s};
    ASSERT_TRUE(filas_->IrA(2));
    EXPECT_EQ(buscador.Siguiente(cafe), Hallado);
    EXPECT_EQ(Actual(), 10);
    EXPECT_EQ(buscador.Siguiente(cafe), DesdePrincipio);
    EXPECT_EQ(Actual(), 1);
    EXPECT_EQ(buscador.Mensaje(DesdePrincipio, cafe),
              u"Se siguió desde el principio.\nClave: 1   Nombre: Café de olla"_s);
    EXPECT_EQ(buscador.Siguiente({u"zzz"_s}), Nada);
    EXPECT_EQ(Actual(), 1) << "a search without a find must not move";
    EXPECT_EQ(buscador.Mensaje(Nada, {u" zzz "_s}), u"No se encontró «zzz»."_s);
    EXPECT_EQ(buscador.Siguiente({u"  "_s}), SinTexto);
    EXPECT_EQ(buscador.Siguiente({u"colada"_s}), Hallado);
    EXPECT_EQ(buscador.Siguiente({u"colada"_s}), Unico);
}

TEST_F(BuscadorTest, SinFilasOSinActual) {
    filas_ = central_.Abrir(u"SELECT * FROM Cosa WHERE ID=0"_s);
    EXPECT_EQ(Nuevo().Primero({u"a"_s}), Nada);
    EXPECT_EQ(Nuevo().Siguiente({u"a"_s}), Nada);
    filas_ = central_.Abrir(u"SELECT * FROM Cosa"_s);
    ASSERT_TRUE(filas_->MoveLast());
    ASSERT_TRUE(filas_->MoveNext());
    EXPECT_EQ(Nuevo().Siguiente({u"olla"_s}), Hallado);
    EXPECT_EQ(Actual(), 1);
}

}  // namespace
}  // namespace quimo::catalog
