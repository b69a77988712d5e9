#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

#include "base/result.h"
#include "data/reloj.h"
#include "demo/acceso.h"
#include "demo/ventas.h"
#include "foundation/dialogos.h"

namespace quimo::demo {

/// What one terminal did in this call.
struct VentasDeTerminal {
    enum class Estado {
        Vendio,
        YaTeniaVentas,   ///< its file waits for the close
        SinBaseDeDatos,  ///< its file is not there
    };
    QString terminal;
    Estado estado = Estado::Vendio;
    CifrasVentas cifras = {};
};

struct ResumenDemo {
    bool nueva = false;  ///< the restaurant was set up in this call
    QString fecha_trabajo = {};
    int dias_de_historia = 0;
    CifrasVentas historia = {};
    QVector<VentasDeTerminal> terminales = {};
    Acceso acceso = {};
    QString archivo_clave = {};  ///< of the key that the password is stored with
};

/// How much past a new restaurant gets.
inline constexpr int kDiasDeHistoria = 30;

/// Sets up the demonstration restaurant in `carpeta`: central.db (embedded engine) with
/// `dias_de_historia` days of sales before today, quimo/ as the program's folder with the template
/// and the key that the first manager's password is stored with,
/// red/NAME/quimo/ as the terminals' shares, each with today's sales. A folder that already holds
/// it is kept, and every terminal without sales sells the current working date, so that another
/// close can follow. A new restaurant comes into being whole or not at all; a folder with other
/// contents is refused (Restriccion).
base::Result<ResumenDemo> PrepararDemo(const QString& carpeta, foundation::Dialogos& dialogos,
                                       const data::Reloj& reloj,
                                       int dias_de_historia = kDiasDeHistoria);

/// The summary for people, line by line.
QStringList Lineas(const ResumenDemo& resumen);

}  // namespace quimo::demo
