#include "catalog/sesion/editor_sesion.h"

#include <algorithm>

#include "data/valores.h"

using namespace Qt::StringLiterals;

namespace quimo::catalog {

using foundation::Botones;
using foundation::Icono;
using foundation::Respuesta;

EditorSesion::EditorSesion(const EditorDef& def, foundation::ClsAdo& ado)
    : def_(&def), ado_(ado), campos_(def) {
    for (const DetalleDef& detalle : def.detalles)
        detalles_.emplace_back(detalle, ado);
}

void EditorSesion::Servir() {
    ado_.CpsTitulo = def_->titulo.toString();
    ado_.CpsMen_LLave_Repetida = def_->repetido.toString();
}

void EditorSesion::Avisar(const QString& texto, Icono icono) {
    ado_.Dialogo().Avisar(texto, icono, def_->titulo.toString());
}

bool EditorSesion::Abrir() {
    Servir();
    if (!ado_.Consultar(conjunto_, u"SELECT * FROM "_s + def_->tabla.toString())) {
        ContarFallo(ado_);
        return false;
    }
    if (!campos_.CargarListas(ado_)) return false;
    for (DetalleSesion& detalle : detalles_) {
        if (!detalle.CargarLista()) return false;
    }
    if (conjunto_->Vacio()) {
        // The grids learn their columns even while there is nothing to show.
        for (DetalleSesion& detalle : detalles_) {
            if (!detalle.Cargar(u"0"_s)) return false;
        }
    }
    LigarCampos(true);
    return true;
}

void EditorSesion::LigarCampos(bool ligar) {
    ligados_ = ligar;
    if (ligar) MostrarActual();
}

void EditorSesion::MostrarActual() {
    if (!ligados_) return;
    campos_.Mostrar(conjunto_);
    CargarDetalles();
}

void EditorSesion::CargarDetalles() {
    for (DetalleSesion& detalle : detalles_) {
        if (Clave().isEmpty()) {
            detalle.Vaciar();
        } else if (!detalle.Cargar(Clave())) {
            return;
        }
    }
}

bool EditorSesion::Objetar(const ObjecionDeCampo& objecion) {
    foco_ = objecion.control;
    Avisar(objecion.texto);
    return false;
}

void EditorSesion::Pasar(Estado estado) {
    estado_ = estado;
    al_empezar_ = campos_.Valores();
    vista_.reset();
    vieja_ = false;
    foco_ = campos_.Def(1).control.toString();
}

void EditorSesion::Nuevo() {
    if (EnEdicion() || conjunto_ == nullptr) return;
    Servir();
    auto agregado = conjunto_->AddNew();
    if (!agregado) {
        ado_.Reportar(std::move(agregado).error());
        return;
    }
    campos_.PonerIniciales();
    for (DetalleSesion& detalle : detalles_)
        detalle.Vaciar();
    Pasar(Estado::Alta);
}

void EditorSesion::Modificar() {
    if (EnEdicion() || Clave().isEmpty() || Clave() == u"0"_s) return;
    Servir();
    // Rows that could not be read must not be taken for rows that are not there.
    for (DetalleSesion& detalle : detalles_) {
        if (!detalle.Cargado() && !detalle.Cargar(Clave())) return;
    }
    LigarCampos(false);
    Pasar(Estado::Modificacion);
    vista_ = conjunto_->Filas().value(conjunto_->Bookmark() ? *conjunto_->Bookmark() - 1 : -1);
}

void EditorSesion::Cancelar() {
    if (!EnEdicion()) return;
    const QString clave = Clave();
    const bool releer = vieja_;
    if (estado_ == Estado::Alta) conjunto_->CancelUpdate();
    Pasar(Estado::Consulta);
    if (releer && Releer()) BuscarClave(clave);
    LigarCampos(true);
}

bool EditorSesion::Mover(const QString& direccion) {
    if (EnEdicion()) return false;
    Servir();
    const bool movido = ado_.Desplazar(conjunto_, direccion, posicion_);
    MostrarActual();
    return movido;
}

bool EditorSesion::Releer() {
    auto releido = conjunto_->Requery();
    if (releido) return true;
    if (releido.error().numero == data::FalloSql::kConexionCerrada) {
        Avisar(u"Se perdio la conexión con el servidor"_s, Icono::Critico);
    }
    return ado_.Reportar(std::move(releido).error());
}

bool EditorSesion::BuscarClave(const QString& clave) {
    const qsizetype columna = conjunto_->IndiceDe(def_->ColumnaClave().toString());
    const auto& filas = conjunto_->Filas();
    for (qsizetype i = 0; i < filas.size(); ++i) {
        if (data::TextoDeValor(filas[i].value(columna)) != clave) continue;
        return conjunto_->IrA(i + 1).has_value();
    }
    return false;
}

bool EditorSesion::IrAClave(const QString& clave) {
    if (EnEdicion()) return false;
    // A row that somebody else added since this set was opened.
    const bool hallada = BuscarClave(clave) || (Releer() && BuscarClave(clave));
    MostrarActual();
    return hallada;
}

bool EditorSesion::Borrar() {
    if (EnEdicion() || Clave().isEmpty()) return false;
    const foundation::PunteroOcupado ocupado(ado_.Dialogo());
    Servir();
    if (ado_.Dialogo().Preguntar(u"¿Esta seguro de borrar el registro?"_s, Botones::SiNo,
                                 Icono::Pregunta, def_->titulo.toString()) != Respuesta::Si) {
        return false;
    }
    const QString clave = Clave();
    // A record that cannot go keeps its details.
    if (!detalles_.empty()) ado_.Inicia_Transaccion();
    const bool borrado =
        std::all_of(detalles_.begin(), detalles_.end(),
                    [&clave](DetalleSesion& detalle) { return detalle.BorrarTodos(clave); }) &&
        ado_.Reposicionar(conjunto_, false, true);
    if (!detalles_.empty()) {
        borrado ? ado_.Termina_Transaccion() : ado_.Cancela_Transaccion();
    }
    if (!borrado && Releer()) BuscarClave(clave);
    MostrarActual();
    return borrado;
}

QString EditorSesion::TextoTeclas() const {
    return EnEdicion() ? u"F5=Aceptar ESC=Cancelar"_s : u"INS=Nuevo,F6=Modificar,DEL=Borrar"_s;
}

bool EditorSesion::HayCambios() const {
    return EnEdicion() && (campos_.Valores() != al_empezar_ ||
                           std::any_of(detalles_.begin(), detalles_.end(),
                                       [](const DetalleSesion& d) { return d.Cambiado(); }));
}

bool EditorSesion::PuedeCerrar() {
    if (!HayCambios()) {
        Cancelar();
        return true;
    }
    const Respuesta respuesta =
        ado_.Dialogo().Preguntar(u"Hay cambios sin guardar. ¿Desea guardarlos?"_s,
                                 Botones::SiNoCancelar, Icono::Pregunta, def_->titulo.toString());
    if (respuesta == Respuesta::Si) return Guardar();
    if (respuesta != Respuesta::No) return false;
    Cancelar();
    return true;
}

QString EditorSesion::TomarFoco() {
    QString foco;
    foco.swap(foco_);
    return foco;
}

bool EditorSesion::Bloqueado(qsizetype campo) const {
    return !EnEdicion() || campos_.Def(campo).tipo == TipoCampo::Clave;
}

void EditorSesion::Escribir(qsizetype campo, const QString& texto) {
    if (!Bloqueado(campo)) campos_.Escribir(campo, texto);
}

void EditorSesion::Elegir(qsizetype campo, int entrada) {
    if (!Bloqueado(campo)) campos_.Elegir(campo, entrada);
}

bool EditorSesion::Dejar(qsizetype campo) {
    if (Bloqueado(campo)) return true;
    const auto objecion = campos_.Dejar(campo);
    return !objecion || Objetar(*objecion);
}

}  // namespace quimo::catalog
