#include "dayclose/terminales/parametros_terminal.h"

#include <algorithm>
#include <cmath>

#include "foundation/parametros.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

std::optional<qint64> EnteroDeTerminal(const jet::Valor& valor) {
    constexpr double kMayor = 9007199254740992.0;  // beyond it a double holds no whole numbers
    if (const auto* entero = std::get_if<std::int32_t>(&valor)) return *entero;
    const auto* doble = std::get_if<double>(&valor);
    if (doble == nullptr || !(std::abs(*doble) <= kMayor)) return std::nullopt;
    if (std::trunc(*doble) < *doble || std::trunc(*doble) > *doble) return std::nullopt;
    return static_cast<qint64>(*doble);
}

base::Result<ParametrosTerminal> LeerParametrosTerminal(const jet::BaseDatos& base) {
    QUIMO_TRY(const jet::Tabla tabla, base.AbrirTabla("Parametros"));
    QUIMO_TRY(const std::size_t llave, tabla.Columna("ID_Parametro"));
    QUIMO_TRY(const std::size_t numero, tabla.Columna("Valor_Num"));
    QUIMO_TRY(const std::size_t cadena, tabla.Columna("Valor_Cad"));
    ParametrosTerminal leidos;
    QUIMO_TRY(jet::Cursor cursor, tabla.Recorrer());
    while (true) {
        QUIMO_TRY(const bool hay, cursor.Siguiente());
        if (!hay) return leidos;
        const jet::Fila& fila = cursor.Valores();
        const auto* texto = std::get_if<std::u16string>(&fila[llave]);
        if (texto == nullptr) continue;
        const QString clave = QString::fromStdU16String(*texto);
        const auto es = [&](const char16_t* otra) {
            return clave.compare(QString::fromUtf16(otra), Qt::CaseInsensitive) == 0;
        };
        if (es(foundation::parametro::kFolioComanda)) {
            leidos.folio_comanda = EnteroDeTerminal(fila[numero]).value_or(0);
        } else if (es(foundation::parametro::kFolioPago)) {
            leidos.folio_pago = EnteroDeTerminal(fila[numero]).value_or(0);
        } else if (es(foundation::parametro::kTerminal)) {
            leidos.terminal = EnteroDeTerminal(fila[numero]).value_or(0);
        } else if (es(foundation::parametro::kFechaTrabajo)) {
            const auto* fecha = std::get_if<std::u16string>(&fila[cadena]);
            if (fecha != nullptr) leidos.fecha_trabajo = QString::fromStdU16String(*fecha);
        }
    }
}

base::Result<QStringList> FechasDeOrdenes(const jet::BaseDatos& base) {
    QUIMO_TRY(const jet::Tabla tabla, base.AbrirTabla("Comanda"));
    QUIMO_TRY(const std::size_t columna, tabla.Columna("Fecha_Trabajo"));
    QUIMO_TRY(jet::Cursor cursor, tabla.Recorrer());
    QStringList fechas;
    while (true) {
        QUIMO_TRY(const bool hay, cursor.Siguiente());
        if (!hay) break;
        const auto* texto = std::get_if<std::u16string>(&cursor.Valores()[columna]);
        if (texto == nullptr) continue;
        const QString fecha = QString::fromStdU16String(*texto);
        if (!fechas.contains(fecha)) fechas << fecha;
    }
    const auto por_dia = [](const QString& fecha) {
        return fecha.mid(4) + fecha.mid(2, 2) + fecha.left(2);
    };
    std::sort(fechas.begin(), fechas.end(),
              [&](const QString& a, const QString& b) { return por_dia(a) < por_dia(b); });
    return fechas;
}

}  // namespace quimo::dayclose
