#include "demo/central.h"

#include <algorithm>

#include "data/valores.h"
#include "demo/carta.h"
#include "demo/sql_demo.h"

namespace quimo::demo {

using namespace Qt::StringLiterals;
using base::Error;
using base::Result;
using data::Fila;

Central::Central(foundation::SiFalta si_falta, foundation::Dialogos& dialogos,
                 const data::Reloj& reloj)
    // Setting the stage is no operation of the restaurant: nothing goes into a log file.
    : bitacora_({.Parchivo = false, .PMsgBox = false}, dialogos, reloj),
      ado_(foundation::CrearConector(reloj, si_falta), dialogos, bitacora_) {}

Result<std::unique_ptr<Central>> Central::Abrir(const QString& archivo,
                                                foundation::SiFalta si_falta,
                                                foundation::Dialogos& dialogos,
                                                const data::Reloj& reloj) {
    std::unique_ptr<Central> central(new Central(si_falta, dialogos, reloj));
    QString servidor = QString::fromUtf16(foundation::kServidorEmbebido);
    QString base_de_datos = archivo;
    QString usuario;
    QString clave;
    if (!central->ado_.Conectar(servidor, base_de_datos, usuario, clave)) {
        return Error{Error::Codigo::Archivo,
                     "No se pudo abrir la base de datos central de la demostración.",
                     archivo.toStdString()};
    }
    return central;
}

Result<QVariant> Central::Parametro(const QString& columna, const QString& clave) {
    QUIMO_TRY(const QVector<Fila> filas,
              Consultar(Conexion(),
                        u"SELECT %1 FROM Parametros WHERE ID_Parametro=?"_s.arg(columna), {clave}));
    if (filas.isEmpty()) {
        return Error{
            Error::Codigo::NoEncontrado,
            u"Falta el parámetro %1 en la base de datos central."_s.arg(clave).toStdString()};
    }
    return filas.first().first();
}

Result<DiaDeTrabajo> Central::FechaTrabajo() {
    QUIMO_TRY(const QVariant valor, Parametro(u"Valor_Cad"_s, u"FECHA_TRABAJO"_s));
    if (const auto dia = LeerFechaTrabajo(valor.toString())) return *dia;
    return Error{
        Error::Codigo::Datos,
        u"La fecha de trabajo '%1' no es una fecha."_s.arg(valor.toString()).toStdString()};
}

Result<QString> Central::DirectorioTerminal() {
    QUIMO_TRY(const QVariant valor, Parametro(u"Valor_Cad"_s, u"DIRTERMBD"_s));
    return valor.toString().replace(u'\\', u'/');
}

Result<QVector<dayclose::Terminal>> Central::Terminales() {
    QUIMO_TRY(const QVector<Fila> filas,
              Consultar(Conexion(),
                        u"SELECT ID_Terminal,Nombre_Terminal,ID_Menu FROM Terminal WHERE "
                        "Estado_Terminal='A' ORDER BY ID_Terminal"_s));
    QVector<dayclose::Terminal> terminales;
    for (const Fila& fila : filas) {
        const QString nombre = fila[1].toString();
        if (!dayclose::EsNombreDeEquipo(nombre)) {
            return Error{Error::Codigo::Datos,
                         u"'%1' no es un nombre de terminal."_s.arg(nombre).toStdString()};
        }
        terminales.append({fila[0].toInt(), nombre, fila[2].toInt()});
    }
    return terminales;
}

Result<Folios> Central::LeerFolios() {
    const auto siguiente = [this](const QString& parametro, const QString& tabla,
                                  const QString& columna) -> Result<int> {
        QUIMO_TRY(const QVariant folio, Parametro(u"Valor_Num"_s, parametro));
        QUIMO_TRY(const QVector<Fila> filas,
                  Consultar(Conexion(), u"SELECT MAX(%1) AS ID FROM %2"_s.arg(columna, tabla)));
        const double contador = data::TextoDeValor(folio).toDouble();
        const int maximo = filas.isEmpty() ? 0 : filas.first().first().toInt();
        constexpr double kTope = 1e9;
        if (contador > kTope || maximo > static_cast<int>(kTope)) {
            return Error{Error::Codigo::Datos,
                         u"El contador %1 está por agotarse."_s.arg(parametro).toStdString()};
        }
        return std::max({1, static_cast<int>(contador), maximo + 1});
    };
    QUIMO_TRY(const int comanda, siguiente(u"FOLIOCOMANDA"_s, u"Comanda"_s, u"ID_Comanda"_s));
    QUIMO_TRY(const int pago, siguiente(u"FOLIOPAGO"_s, u"Pago"_s, u"ID_Pago"_s));
    return Folios{comanda, pago};
}

Result<void> Central::GuardarFolios(const Folios& folios) {
    const QString tsql = u"UPDATE Parametros SET Valor_Num=? WHERE ID_Parametro=?"_s;
    QUIMO_TRY_VOID(Ejecutar(Conexion(), tsql, {folios.comanda, u"FOLIOCOMANDA"_s}));
    return Ejecutar(Conexion(), tsql, {folios.pago, u"FOLIOPAGO"_s});
}

Result<void> Central::Agregar(const VentasDia& ventas) {
    for (const TablaVentas& tabla : Tablas(ventas)) {
        QUIMO_TRY_VOID(
            Insertar(Conexion(), tabla.nombre, tabla.columnas.join(u","_s), tabla.filas));
    }
    return {};
}

Ritmo RitmoDe(const dayclose::Terminal& terminal) {
    return terminal.menu == kMenuBar ? Ritmo::Bar : Ritmo::Salon;
}

}  // namespace quimo::demo
