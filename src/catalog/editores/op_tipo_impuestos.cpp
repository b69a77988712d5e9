#include "catalog/editores/editores.h"
#include "catalog/sesion/detalle_sesion.h"
#include "data/valores.h"

using namespace Qt::StringLiterals;

namespace quimo::catalog {

namespace {

using Celda = TipoCeldaDetalle;

// The cells of the grid.
constexpr int kInicio = 1;
constexpr int kFin = 2;
constexpr int kPorcentaje = 3;
constexpr int kInicioCargado = 5;

QString RevisarPorcentajes(std::span<const DetalleSesion> detalles) {
    for (const Renglon& renglon : detalles.front().Renglones()) {
        if (renglon.marca == Marca::Borrada) continue;
        const QString& inicio = renglon.celdas[kInicio];
        const QString& fin = renglon.celdas[kFin];
        if (inicio.isEmpty()) return u"Datos de porcentajes incompletos"_s;
        if (!fin.isEmpty() && data::FechaDeTexto(fin) < data::FechaDeTexto(inicio)) {
            return u"La fecha final no puede ser anterior a la fecha inicial"_s;
        }
        if (renglon.celdas[kPorcentaje].isEmpty()) return u"Datos de porcentajes incompletos"_s;
    }
    return {};
}

constexpr CampoDef kCampos[] = {
    Clave(u"txtId", u"ID_Tipo_Impuesto"),
    Texto(u"TxtNombre", u"Nombre_Tipo_Impuesto", u"Nombre").Tag(u"NoVacio"),
    Casilla(u"chkActivo", u"Tipo_Imp_Activo", u"Activo").Inicial(u"1"),
};

constexpr ColumnaFiltro kFiltro[] = {
    {u"Id Tipo", u"Tipos_Impuesto.ID_Tipo_Impuesto", u"Tipos_Impuesto.ID_Tipo_Impuesto"},
    {u"Nombre", u"Nombre_Tipo_Impuesto", u"Nombre_Tipo_Impuesto"},
    {u"Activo", u"Tipo_Imp_Activo", u"Tipo_Imp_Activo"},
    {u"Fecha Inicio", u"Fecha_Inicio_Impuesto", u"Fecha_Inicio_Impuesto"},
    {u"Fecha Fin", u"Fecha_Fin_Impuesto", u"Fecha_Fin_Impuesto"},
};

constexpr ColumnaDetalle kColumnas[] = {
    {.tipo = Celda::Oculta},
    {.tipo = Celda::Fecha,
     .titulo = u"Fecha inicio",
     .ancho_mm = 30,
     .cambiable = Cambiable::Siempre},
    {.tipo = Celda::Fecha, .titulo = u"Fecha fin", .ancho_mm = 30, .cambiable = Cambiable::Siempre},
    {.tipo = Celda::Numero,
     .titulo = u"Porcentaje",
     .ancho_mm = 28,
     .cambiable = Cambiable::Siempre,
     .decimales = 4,
     .exigida = true},
    {.tipo = Celda::Marca},
    {.tipo = Celda::Oculta},
};
constexpr CampoDetalle kAlta[] = {{u"ID_Tipo_Impuesto"},
                                  {u"Fecha_Inicio_Impuesto", kInicio},
                                  {u"Fecha_Fin_Impuesto", kFin},
                                  {u"Porcentaje", kPorcentaje}};
constexpr CampoDetalle kCambio[] = {{u"Fecha_Inicio_Impuesto", kInicio},
                                    {u"Fecha_Fin_Impuesto", kFin},
                                    {u"Porcentaje", kPorcentaje}};

constexpr DetalleDef kDetalles[] = {{
    .control = u"sprPorcentajes",
    .titulo = u"Porcentajes",
    .tabla = u"PorcentajeXTipo_Impuesto",
    .consulta = u"SELECT *,' ' AS Modificar,Fecha_Inicio_Impuesto FROM PorcentajeXTipo_Impuesto "
                u"WHERE ID_Tipo_Impuesto=",
    .columnas = kColumnas,
    .celda_clave = kInicio,
    .alta = kAlta,
    .cambio = kCambio,
    .columna_registro = u"ID_Tipo_Impuesto",
    .columna_renglon = {u"Fecha_Inicio_Impuesto", kInicioCargado},
    .repetido = u"Ya existe el porcentaje para la fecha dada",
    .alta_solo_al_final = true,
}};

}  // namespace

constexpr EditorRevisado kOpTipoImpuestos = Revisado({
    .nombre = u"OpTipoImpuestos",
    .comando = u"mnuOpTipoImpuesto",
    .titulo = u"Tipos de impuesto",
    .tabla = u"Tipos_Impuesto",
    .consulta_clave = u"SELECT MAX(ID_Tipo_Impuesto)+1 AS Clave FROM Tipos_Impuesto",
    .campos = kCampos,
    .repetido = u"Ya existe el tipo de impuesto",
    .detalles = kDetalles,
    .filtro = {u"Tipos_Impuesto,PorcentajeXTipo_Impuesto WHERE Tipos_Impuesto.ID_Tipo_Impuesto="
               u"PorcentajeXTipo_Impuesto.ID_Tipo_Impuesto",
               kFiltro},
    .revisar = &RevisarPorcentajes,
});

}  // namespace quimo::catalog
