#include "ui/principal/herramientas.h"

namespace quimo::ui {

namespace {

using Comando = ComandoVentana;

constexpr DefBoton kBotones[] = {
    {u"BotonNuevoModificar", u"Nuevo (INS)", Comando::Nuevo},
    {u"BotonBorrar", u"Borrar (DEL)", Comando::Borrar},
    {u"BotonAceptar", u"Aceptar (F5)", Comando::Aceptar, true},
    {u"BotonCancelar", u"Cancelar (ESC)", Comando::Cancelar},
    {u"BotonBuscar", u"Buscar", Comando::Buscar, true},
    {u"BotonPrimerRegistro", u"Primer registro (Inicio)", Comando::Primero, true},
    {u"BotonRegistroAnterior", u"Registro anterior (Av Pág)", Comando::Anterior},
    {u"BotonRegistroSiguiente", u"Registro siguiente (Re Pág)", Comando::Siguiente},
    {u"BotonUltimoRegistro", u"Último registro (Fin)", Comando::Ultimo},
    {u"BotonImprimir", u"Imprimir", Comando::Imprimir, true},
    {u"BotonFiltro", u"Filtro", Comando::Filtro},
    {u"BotonPreview", u"Vista previa", Comando::Preview},
};

}  // namespace

std::span<const DefBoton> BotonesHerramientas() { return kBotones; }

}  // namespace quimo::ui
