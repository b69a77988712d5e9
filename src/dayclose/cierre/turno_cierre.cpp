#include "dayclose/cierre/turno_cierre.h"

#include "data/valores.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

using data::Candado;
using data::DuenoCandado;

namespace {

const QString& Nombre() {
    static const QString kNombre = u"QUIMO cierre"_s;
    return kNombre;
}

Interrupcion Ocupado(const DuenoCandado& dueno) {
    const QString quien = dueno.quien.isEmpty() ? u"otro programa"_s : dueno.quien;
    QString texto =
        u"Ya hay un cierre en marcha, o un trabajo con las terminales: lo hace "_s + quien;
    if (dueno.desde.isValid()) {
        texto += u", desde el "_s + data::TextoDeFecha(dueno.desde.date()) + u" a las "_s +
                 dueno.desde.toString(u"HH:mm"_s);
    }
    return {Interrupcion::Motivo::SinEmpezar, 0,
            texto + u". Espere a que termine; no se cambió nada."_s};
}

}  // namespace

ResultadoCierre<TurnoCierre> TurnoCierre::Tomar(data::SqlConnection& conexion, const QString& quien,
                                                const QDateTime& ahora) {
    QUIMO_TRY(auto tomado, Candado::Tomar(conexion, Nombre(), quien, ahora));
    if (const auto* dueno = std::get_if<DuenoCandado>(&tomado)) return Ocupado(*dueno);
    return TurnoCierre(std::get<Candado>(std::move(tomado)), ahora);
}

ResultadoCierre<void> TurnoCierre::Mantener(const QDateTime& ahora) {
    constexpr qint64 kCada_s = 20;
    if (renovado_.secsTo(ahora) < kCada_s) return {};
    renovado_ = ahora;
    if (candado_.Renovar(ahora)) return {};
    return Interrupcion{
        Interrupcion::Motivo::Error, data::FalloSql::kConexionPerdida,
        u"Se perdió la conexión con el servidor, y con ella el turno del cierre."_s};
}

}  // namespace quimo::dayclose
