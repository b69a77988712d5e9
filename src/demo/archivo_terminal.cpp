#include "demo/archivo_terminal.h"

#include <algorithm>
#include <string>

#include "dayclose/terminales/valor_terminal.h"

namespace quimo::demo {

using base::Error;
using base::Result;

namespace {

Result<std::vector<std::size_t>> Posiciones(const jet::Tabla& tabla,
                                            const std::vector<std::string>& columnas) {
    std::vector<std::size_t> posiciones;
    for (const std::string& columna : columnas) {
        QUIMO_TRY(const std::size_t posicion, tabla.Columna(columna));
        posiciones.push_back(posicion);
    }
    return posiciones;
}

Result<void> InsertarFilas(jet::BaseDatos& base, const TablaVentas& ventas) {
    QUIMO_TRY(jet::Tabla tabla, base.AbrirTabla(ventas.nombre.toStdString()));
    std::vector<std::string> columnas;
    for (const QString& columna : ventas.columnas)
        columnas.push_back(columna.toStdString());
    QUIMO_TRY(const std::vector<std::size_t> posiciones, Posiciones(tabla, columnas));
    for (const data::Fila& fila : ventas.filas) {
        const std::vector<jet::DefColumna>& definicion = tabla.Definicion().columnas;
        jet::Fila valores(definicion.size());
        for (std::size_t i = 0; i < posiciones.size(); ++i) {
            const QVariant& dato = fila[static_cast<qsizetype>(i)];
            const auto valor = dayclose::AValorTerminal(dato, definicion[posiciones[i]].tipo);
            if (!valor) {
                return Error{Error::Codigo::Datos,
                             "Una venta no cabe en la columna " + columnas[i] + " de la tabla " +
                                 tabla.Nombre() + " de la terminal.",
                             base.Ruta()};
            }
            valores[posiciones[i]] = *valor;
        }
        QUIMO_TRY_VOID(tabla.Insertar(valores));
    }
    return {};
}

Result<void> GuardarContador(jet::BaseDatos& base, int siguiente_articulo) {
    QUIMO_TRY(jet::Tabla tabla, base.AbrirTabla("Parametros"));
    QUIMO_TRY(const std::size_t columna, tabla.Columna("Valor_Num"));
    const jet::Valor clave[] = {std::u16string(u"FOLIOPRODUCTOSX")};
    QUIMO_TRY(const auto fila, tabla.BuscarClave(clave));
    if (!fila) {
        return Error{Error::Codigo::NoEncontrado,
                     "La base de datos de la terminal no tiene el parámetro FOLIOPRODUCTOSX.",
                     base.Ruta()};
    }
    const jet::Cambio cambios[] = {{columna, static_cast<double>(siguiente_articulo)}};
    return tabla.Actualizar(*fila, cambios);
}

Result<int> Maximo(const jet::BaseDatos& base, std::string_view tabla, std::string_view columna) {
    QUIMO_TRY(const auto filas, LeerTabla(base, tabla, {columna}));
    int maximo = 0;
    for (const jet::Fila& fila : filas) {
        if (const auto* numero = std::get_if<std::int32_t>(&fila[0]))
            maximo = std::max(maximo, *numero);
    }
    return maximo;
}

}  // namespace

Result<std::vector<jet::Fila>> LeerTabla(const jet::BaseDatos& base, std::string_view tabla,
                                         std::initializer_list<std::string_view> columnas) {
    QUIMO_TRY(const jet::Tabla abierta, base.AbrirTabla(tabla));
    QUIMO_TRY(const std::vector<std::size_t> posiciones,
              Posiciones(abierta, {columnas.begin(), columnas.end()}));
    QUIMO_TRY(jet::Cursor cursor, abierta.Recorrer());
    std::vector<jet::Fila> filas;
    for (;;) {
        QUIMO_TRY(const bool hay, cursor.Siguiente());
        if (!hay) return filas;
        jet::Fila& fila = filas.emplace_back();
        for (const std::size_t posicion : posiciones)
            fila.push_back(cursor.Valores()[posicion]);
    }
}

Result<NumerosUsados> LeerNumerosUsados(const jet::BaseDatos& base) {
    QUIMO_TRY(const int comanda, Maximo(base, "Comanda", "ID_Comanda"));
    QUIMO_TRY(const int pago, Maximo(base, "Pago", "ID_Pago"));
    return NumerosUsados{comanda, pago};
}

Result<void> VenderEnTerminal(jet::BaseDatos& base, const VentasDia& ventas) {
    QUIMO_TRY(const jet::Tabla comandas, base.AbrirTabla("Comanda"));
    QUIMO_TRY(const std::uint32_t cuantas, comandas.Cuantas());
    if (cuantas > 0) {
        return Error{Error::Codigo::Restriccion, "La base de datos de la terminal ya tiene ventas.",
                     base.Ruta()};
    }
    for (const TablaVentas& tabla : Tablas(ventas))
        QUIMO_TRY_VOID(InsertarFilas(base, tabla));
    QUIMO_TRY_VOID(GuardarContador(base, ventas.siguiente_articulo));
    return base.Guardar();
}

}  // namespace quimo::demo
