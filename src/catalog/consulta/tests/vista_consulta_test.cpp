#include "catalog/consulta/vista_consulta.h"

#include <gtest/gtest.h>

#include <QDateTime>
#include <QUuid>

#include "grid/exportar.h"
#include "grid/tabulado.h"

using namespace Qt::StringLiterals;

namespace quimo::catalog {
namespace {

using data::TipoSql;
using grid::TipoCelda;

class VistaConsultaTest : public testing::Test {
protected:
    VistaConsultaTest()
        : tabla_({u"Clave"_s, u"Texto"_s, u"Precio"_s, u"Alta"_s, u"Activo"_s, u"Tasa"_s, u"Real"_s,
                  u"Uno"_s},
                 {{{u"i"_s, TipoSql::Int},
                   {u"t"_s, TipoSql::VarChar},
                   {u"m"_s, TipoSql::Money},
                   {u"f"_s, TipoSql::DateTime},
                   {u"b"_s, TipoSql::Bit},
                   {u"n"_s, TipoSql::Numeric},
                   {u"r"_s, TipoSql::Float},
                   {u"u"_s, TipoSql::UniqueIdentifier}},
                  {{-7, u"=a"_s, QVariant::fromValue(base::Dinero::DeDiezmilesimas(12345678)),
                    QDateTime({2026, 11, 14}, {0, 0}, Qt::UTC), true,
                    QVariant::fromValue(base::Decimal{4250, 2}), 12.5,
                    QUuid(u"{0b1c2d3e-0000-0000-0000-00000000000a}"_s)},
                   {4, u"a\tz"_s, {}, {}, false, {}, {}, {}}}}) {}

    TablaConsulta tabla_;
};

TEST_F(VistaConsultaTest, CadaCeldaDiceLoQueEs) {
    const VistaConsulta vista(tabla_);
    const struct {
        TipoCelda tipo;
        QString texto;
        QString plano;
    } casos[] = {
        {TipoCelda::Entero, u"-7"_s, u"-7"_s},
        {TipoCelda::Texto, u"=a"_s, u"=a"_s},
        {TipoCelda::Moneda, u"$1,234.57"_s, u"1234.5678"_s},
        {TipoCelda::Fecha, u"14/11/2026"_s, u"14/11/2026"_s},
        {TipoCelda::Casilla, u"Sí"_s, u"Sí"_s},
        {TipoCelda::Numero, u"42.50"_s, u"42.50"_s},
        {TipoCelda::Numero, u"12.5"_s, u"12.5"_s},
        {TipoCelda::Texto, u"0B1C2D3E-0000-0000-0000-00000000000A"_s,
         u"0B1C2D3E-0000-0000-0000-00000000000A"_s},
    };
    ASSERT_EQ(vista.Columnas(), std::ssize(casos));
    for (qsizetype c = 0; c < vista.Columnas(); ++c) {
        const grid::Celda celda = vista.En(vista.FilasDeTitulos(), c);
        EXPECT_EQ(celda.tipo, casos[c].tipo) << c;
        EXPECT_EQ(celda.texto, casos[c].texto);
        EXPECT_EQ(celda.plano, casos[c].plano);
        EXPECT_EQ(celda.valor, tabla_.Valor(0, c));
        EXPECT_TRUE(vista.En(0, c).negrita);
        EXPECT_EQ(vista.En(0, c).texto, tabla_.Titulo(c));
    }
}

TEST_F(VistaConsultaTest, ElOrdenEsElMostradoYElTabuladoEsDeUnRenglonPorLinea) {
    tabla_.Ordenar(0, Sentido::Descendente);
    const VistaConsulta vista(tabla_);
    EXPECT_EQ(vista.Filas(), 3);
    EXPECT_EQ(grid::TextoTabulado(vista, {2, 1}),
              u"-7\t=a\t1234.5678\t14/11/2026\tSí\t42.50\t12.5\t"
              u"0B1C2D3E-0000-0000-0000-00000000000A\n4\ta z\t\t\tNo\t\t\t"_s);
    const QList<QByteArray> lineas = grid::TextoCsv(vista).split('\n');
    EXPECT_TRUE(lineas[1].startsWith("4,")) << lineas[1].toStdString();
    EXPECT_TRUE(lineas[2].startsWith("-7,'=a,1234.5678,14/11/2026,")) << lineas[2].toStdString();
}

}  // namespace
}  // namespace quimo::catalog
