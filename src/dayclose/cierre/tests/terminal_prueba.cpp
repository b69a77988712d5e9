#include "terminal_prueba.h"

#include <gtest/gtest.h>

#include "jet/base_datos.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose::pruebas {

namespace {

jet::Valor Texto(const QString& texto) { return texto.toStdU16String(); }

jet::Valor Hora(int dia, int hora) {
    return *jet::Fecha::DeCivil({2026, 11, dia, hora, 15, 30, 0});
}

jet::Valor Pesos(const char* texto) { return *base::Dinero::DeTexto(texto); }

template <typename Trabajo>
void EnTabla(const QString& archivo, const QString& nombre, Trabajo trabajo) {
    auto base = jet::BaseDatos::Abrir(archivo.toStdString(), jet::Modo::Escritura);
    ASSERT_TRUE(base) << base.error().mensaje;
    auto tabla = base->AbrirTabla(nombre.toStdString());
    ASSERT_TRUE(tabla) << tabla.error().mensaje;
    trabajo(*tabla);
    const auto guardada = base->Guardar();
    ASSERT_TRUE(guardada) << guardada.error().mensaje;
}

}  // namespace

void AgregarFila(const QString& archivo, const QString& nombre,
                 const QVector<QPair<QString, jet::Valor>>& valores) {
    EnTabla(archivo, nombre, [&](jet::Tabla& tabla) {
        jet::Fila fila;
        for (const jet::DefColumna& columna : tabla.Definicion().columnas) {
            const bool logico = columna.tipo == jet::TipoColumna::Logico;
            fila.push_back(logico ? jet::Valor(false) : jet::Valor(std::monostate()));
        }
        for (const auto& [columna, valor] : valores) {
            const auto lugar = tabla.Columna(columna.toStdString());
            ASSERT_TRUE(lugar) << columna.toStdString();
            fila[*lugar] = valor;
        }
        const auto id = tabla.Insertar(fila);
        ASSERT_TRUE(id) << id.error().mensaje;
    });
}

void CambiarDato(const QString& archivo, const QString& nombre, const QString& clave, int numero,
                 const QString& columna, const jet::Valor& valor) {
    EnTabla(archivo, nombre, [&](jet::Tabla& tabla) {
        const auto llave = tabla.Columna(clave.toStdString());
        const auto lugar = tabla.Columna(columna.toStdString());
        ASSERT_TRUE(llave && lugar);
        auto cursor = tabla.Recorrer();
        ASSERT_TRUE(cursor);
        while (true) {
            const auto hay = cursor->Siguiente();
            ASSERT_TRUE(hay && *hay) << "no row " << numero;
            const auto* entero = std::get_if<std::int32_t>(&cursor->Valores()[*llave]);
            if (entero == nullptr || *entero != numero) continue;
            const jet::Cambio cambio{*lugar, valor};
            const auto hecho = tabla.Actualizar(cursor->Id(), std::span(&cambio, 1));
            ASSERT_TRUE(hecho) << hecho.error().mensaje;
            return;
        }
    });
}

void Vender(const QString& archivo, const Venta& venta) {
    const int dia = venta.fecha.left(2).toInt();
    AgregarFila(archivo, u"Comanda"_s,
                {{u"ID_Comanda"_s, venta.orden},
                 {u"ID_Empleado"_s, 7},
                 {u"Num_Mesa"_s, 4},
                 {u"Fecha_Apertura"_s, Hora(dia, 22)},
                 {u"Fecha_Cierre"_s, Hora(dia, 23)},
                 {u"Tipo"_s, Texto(u"MESA"_s)},
                 {u"Fecha_Trabajo"_s, Texto(venta.fecha)},
                 {u"Control"_s, 0},
                 {u"CantHuespedes"_s, 2}});
    AgregarFila(archivo, u"Cuenta"_s,
                {{u"ID_Comanda"_s, venta.orden},
                 {u"Num_Cuenta"_s, 1},
                 {u"Pagada"_s, true},
                 {u"Num_Impresiones"_s, 1},
                 {u"Total"_s, Pesos("92.0000")},
                 {u"Control"_s, 0}});
    AgregarFila(archivo, u"ProductosXCuenta"_s,
                {{u"ID_ProductosXCuenta"_s, venta.articulo},
                 {u"ID_Comanda"_s, venta.orden},
                 {u"Num_Cuenta"_s, 1},
                 {u"ID_Producto"_s, 202},
                 {u"Preparado"_s, true},
                 {u"Precio_Venta"_s, Pesos("92.0000")},
                 {u"Precio_Original"_s, Pesos("92.0000")},
                 {u"Control"_s, 0}});
    AgregarFila(archivo, u"Pago"_s,
                {{u"ID_Pago"_s, venta.pago},
                 {u"ID_comanda"_s, venta.orden},
                 {u"Num_Cuenta"_s, 1},
                 {u"ID_Tipo_Pago"_s, 1},
                 {u"Monto_Pago"_s, Pesos("92.0000")},
                 {u"Propina"_s, Pesos("9.2000")},
                 {u"Control"_s, 0}});
}

}  // namespace quimo::dayclose::pruebas
