#include "foundation/parametros.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quimo::foundation {

base::Result<QString, data::FalloSql> Parametros::Leer(const QString& columna,
                                                       QStringView clave) const {
    return ValorCampo(ado_, u"Parametros"_s, columna,
                      u"ID_Parametro='"_s + clave.toString() + u'\'');
}

base::Result<QString, data::FalloSql> Parametros::Cadena(QStringView clave) const {
    return Leer(u"Valor_Cad"_s, clave);
}

base::Result<QString, data::FalloSql> Parametros::Numero(QStringView clave) const {
    return Leer(u"Valor_Num"_s, clave);
}

bool EsFechaTrabajo(const QString& texto) {
    return texto.size() == 8 &&
           std::all_of(texto.begin(), texto.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
}

QString FechaTrabajoVisible(const QString& fecha_trabajo) {
    return fecha_trabajo.left(2) + u'/' + fecha_trabajo.mid(2, 2) + u'/' + fecha_trabajo.mid(4);
}

}  // namespace quimo::foundation
