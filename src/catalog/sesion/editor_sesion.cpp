#include "catalog/sesion/editor_sesion.h"

#include <algorithm>

#include "catalog/sesion/valor_columna.h"
#include "data/valores.h"

using namespace Qt::StringLiterals;

namespace quimo::catalog {

using foundation::Botones;
using foundation::Icono;
using foundation::Respuesta;

EditorSesion::EditorSesion(const EditorDef& def, foundation::ClsAdo& ado)
    : def_(&def), ado_(ado), elegidos_(Campos(), -1), listas_(Campos()) {
    for (qsizetype i = 0; i < Campos(); ++i)
        valores_ << QString();
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
    if (!CargarListas()) return false;
    if (conjunto_->Vacio()) {
        // The grids learn their columns even while there is nothing to show.
        for (DetalleSesion& detalle : detalles_) {
            if (!detalle.Cargar(u"0"_s)) return false;
        }
    }
    LigarCampos(true);
    return true;
}

bool EditorSesion::CargarListas() {
    for (qsizetype i = 0; i < Campos(); ++i) {
        const ListaDef* const lista = Campo(i).lista;
        if (lista == nullptr) continue;
        auto entradas = foundation::LlenaCombo(ado_, lista->consulta.toString());
        if (!entradas) return ado_.Reportar(std::move(entradas).error());
        listas_[i] = *std::move(entradas);
        if (!lista->ninguno.isEmpty()) {
            listas_[i].append({lista->ninguno.toString(), lista->dato_ninguno});
        }
    }
    return std::all_of(detalles_.begin(), detalles_.end(),
                       [](DetalleSesion& detalle) { return detalle.CargarLista(); });
}

void EditorSesion::LigarCampos(bool ligar) {
    ligados_ = ligar;
    if (ligar) MostrarActual();
}

void EditorSesion::MostrarActual() {
    if (!ligados_) return;
    const bool hay = conjunto_ != nullptr && conjunto_->HayActual();
    for (qsizetype i = 0; i < Campos(); ++i) {
        if (Campo(i).columna.isEmpty()) continue;
        QVariant guardado;
        if (hay) {
            auto leido = conjunto_->Campo(Campo(i).columna.toString());
            if (leido) guardado = *std::move(leido);
        }
        MostrarCampo(i, guardado);
        if (!hay) elegidos_[i] = -1;
    }
    CargarDetalles();
}

void EditorSesion::MostrarCampo(qsizetype campo, const QVariant& guardado) {
    const CampoDef& def = Campo(campo);
    QString texto = data::TextoDeValor(guardado);
    if (def.tipo == TipoCampo::Casilla) texto = texto == u"1"_s ? u"1"_s : u"0"_s;
    if (def.mascara != nullptr) texto = def.mascara->mostrar(guardado);
    valores_[campo] = texto;
    if (def.partes != nullptr) def.partes->partir(texto, valores_[campo], valores_[campo + 1]);
    ElegirPorValor(campo);
}

int EditorSesion::EntradaDe(qsizetype campo, const QString& valor) const {
    const CampoDef& def = Campo(campo);
    if (def.tipo == TipoCampo::Codigo) {
        const auto hallado =
            std::find_if(def.codigos.begin(), def.codigos.end(),
                         [&](const ItemCodigo& item) { return item.codigo == valor; });
        return hallado == def.codigos.end() ? -1 : static_cast<int>(hallado - def.codigos.begin());
    }
    if (def.tipo != TipoCampo::Lista) return -1;
    const auto& lista = listas_[campo];
    if (valor.isEmpty() && !def.lista->ninguno.isEmpty()) return static_cast<int>(lista.size()) - 1;
    int entrada = -1;
    for (int i = 0; i < lista.size(); ++i) {
        if (QString::number(lista[i].dato) == valor) entrada = i;
    }
    return entrada;
}

void EditorSesion::ElegirPorValor(qsizetype campo) {
    elegidos_[campo] = EntradaDe(campo, valores_[campo]);
}

QString EditorSesion::Visible(qsizetype campo, const QVariant& guardado) const {
    const CampoDef& def = Campo(campo);
    if (def.mascara != nullptr) return def.mascara->mostrar(guardado);
    const QString valor = data::TextoDeValor(guardado);
    if (def.tipo != TipoCampo::Codigo && def.tipo != TipoCampo::Lista) return valor;
    return Entradas(campo).value(EntradaDe(campo, valor));
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

void EditorSesion::Empezar(Estado estado) {
    estado_ = estado;
    al_empezar_ = valores_;
    foco_ = Campo(1).control.toString();
}

void EditorSesion::Terminar() {
    estado_ = Estado::Consulta;
    vista_.reset();
    vieja_ = false;
    foco_ = Campo(1).control.toString();
}

void EditorSesion::Nuevo() {
    if (EnEdicion() || conjunto_ == nullptr) return;
    Servir();
    auto agregado = conjunto_->AddNew();
    if (!agregado) {
        ado_.Reportar(std::move(agregado).error());
        return;
    }
    for (qsizetype i = 0; i < Campos(); ++i) {
        valores_[i] = Campo(i).inicial.toString();
        ElegirPorValor(i);
        // Nothing chosen yet is not the same as the entry for NULL.
        if (Campo(i).tipo == TipoCampo::Lista) elegidos_[i] = -1;
    }
    for (DetalleSesion& detalle : detalles_)
        detalle.Vaciar();
    Empezar(Estado::Alta);
}

void EditorSesion::Modificar() {
    if (EnEdicion() || Clave().isEmpty() || Clave() == u"0"_s) return;
    Servir();
    // Rows that could not be read must not be taken for rows that are not there.
    for (DetalleSesion& detalle : detalles_) {
        if (!detalle.Cargado() && !detalle.Cargar(Clave())) return;
    }
    vista_ = conjunto_->Filas().value(conjunto_->Bookmark() ? *conjunto_->Bookmark() - 1 : -1);
    LigarCampos(false);
    Empezar(Estado::Modificacion);
}

void EditorSesion::Cancelar() {
    if (!EnEdicion()) return;
    const QString clave = Clave();
    const bool releer = vieja_;
    if (estado_ == Estado::Alta) conjunto_->CancelUpdate();
    Terminar();
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
    return EnEdicion() && (valores_ != al_empezar_ ||
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

qsizetype EditorSesion::IndiceDe(QStringView control) const {
    for (qsizetype i = 0; i < Campos(); ++i) {
        if (Campo(i).control == control || Campo(i).oculto == control) return i;
    }
    return -1;
}

bool EditorSesion::Bloqueado(qsizetype campo) const {
    return !EnEdicion() || Campo(campo).tipo == TipoCampo::Clave;
}

int EditorSesion::LargoMaximo(qsizetype campo) const {
    const CampoDef& def = Campo(campo);
    if (conjunto_ == nullptr || def.tipo != TipoCampo::Texto || def.columna.isEmpty()) return 0;
    const qsizetype columna = conjunto_->IndiceDe(def.columna.toString());
    return columna < 0 ? 0 : std::max(conjunto_->Columnas()[columna].longitud, 0);
}

void EditorSesion::Escribir(qsizetype campo, const QString& texto) {
    if (Bloqueado(campo)) return;
    valores_[campo] = Compuesto(texto);
    if (!Campo(campo).oculto.isEmpty()) ElegirPorValor(campo);
}

bool EditorSesion::Dejar(qsizetype campo) {
    const MascaraDef* const mascara = Campo(campo).mascara;
    if (mascara == nullptr || Bloqueado(campo)) return true;
    const QString reducido = mascara->reducir(valores_[campo]);
    const QString objecion = mascara->objecion(reducido);
    if (objecion.isEmpty()) {
        valores_[campo] = mascara->mostrar(reducido);
        return true;
    }
    valores_[campo].clear();
    foco_ = Campo(campo).control.toString();
    Avisar(objecion);
    return false;
}

QStringList EditorSesion::Entradas(qsizetype campo) const {
    QStringList textos;
    for (const ItemCodigo& item : Campo(campo).codigos)
        textos << item.texto.toString();
    for (const foundation::EntradaCombo& entrada : listas_[campo])
        textos << entrada.texto;
    return textos;
}

void EditorSesion::Elegir(qsizetype campo, int entrada) {
    if (Bloqueado(campo)) return;
    const CampoDef& def = Campo(campo);
    elegidos_[campo] = entrada;
    valores_[campo].clear();
    if (entrada < 0) return;
    if (def.tipo == TipoCampo::Codigo) {
        valores_[campo] = def.codigos[static_cast<std::size_t>(entrada)].codigo.toString();
    } else if (!EsNulo(campo)) {
        valores_[campo] = QString::number(listas_[campo].value(entrada).dato);
    }
}

}  // namespace quimo::catalog
