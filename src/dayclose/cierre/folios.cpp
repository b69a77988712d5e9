#include "dayclose/cierre/folios.h"

#include "data/consultar.h"
#include "data/valores.h"
#include "foundation/parametros.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

using data::Fila;
using foundation::ClsAdo;

qint64 SiguienteDe(const QVector<Fila>& maximo) {
    const QVariant valor = maximo.value(0).value(0);
    return valor.isValid() ? valor.toLongLong() + 1 : 1;
}

ResultadoCierre<qint64> SiguienteFolioProductos(ClsAdo& ado, int terminal) {
    const QString prefijo = QString::number(terminal);
    QUIMO_TRY(const QVector<Fila> filas,
              data::Consultar(ado.Conexion(),
                              u"SELECT MAX(ID_ProductosXCuenta) AS ID FROM ProductosXCuenta WHERE "
                              u"ID_ProductosXCuenta LIKE '"_s +
                                  prefijo + u"%'"_s));
    const QVariant maximo = filas.value(0).value(0);
    if (!maximo.isValid()) return 1;
    return data::TextoDeValor(maximo).mid(prefijo.size()).toLongLong() + 1;
}

ResultadoCierre<void> PonerFolios(ClsAdo& ado, Folios modo) {
    const QPair<QString, QString> folios[] = {
        {QString::fromUtf16(foundation::parametro::kFolioPago),
         u"SELECT MAX(ID_Pago) AS ID FROM Pago"_s},
        {QString::fromUtf16(foundation::parametro::kFolioComanda),
         u"SELECT MAX(ID_Comanda) AS ID FROM Comanda"_s},
    };
    for (const auto& [parametro, consulta] : folios) {
        QUIMO_TRY(const QVector<Fila> maximo, data::Consultar(ado.Conexion(), consulta));
        const QString siguiente = QString::number(SiguienteDe(maximo));
        QString condicion = u"ID_Parametro='"_s + parametro + u'\'';
        if (modo == Folios::SinBajar) condicion += u" AND Valor_Num<"_s + siguiente;
        if (!ado.Modificar(nullptr, u"Parametros"_s, u"Valor_Num="_s + siguiente, condicion)) {
            return FalloPendiente(ado);
        }
    }
    return {};
}

}  // namespace quimo::dayclose
