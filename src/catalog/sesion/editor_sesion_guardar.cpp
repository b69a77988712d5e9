#include <algorithm>

#include "catalog/sesion/editor_sesion.h"
#include "catalog/sesion/valor_columna.h"
#include "data/valores.h"
#include "data/valores_escritos.h"

using namespace Qt::StringLiterals;

namespace quimo::catalog {

using foundation::Botones;
using foundation::Icono;
using foundation::Respuesta;

namespace {

QString BorradoPorOtro() {
    return u"Otro usuario borró este registro mientras se modificaba: no se puede guardar"_s;
}

}  // namespace

bool EditorSesion::Guardar() {
    if (!EnEdicion()) return false;
    const foundation::PunteroOcupado ocupado(ado_.Dialogo());
    Servir();
    for (qsizetype i = 0; i < Campos(); ++i) {
        if (!Dejar(i)) return false;
    }
    if (!Obligatorios() || !Validos()) return false;
    if (def_->revisar != nullptr) {
        const QString objecion = def_->revisar(Detalles());
        if (!objecion.isEmpty()) {
            Avisar(objecion);
            return false;
        }
    }
    const bool alta = estado_ == Estado::Alta;
    if (!(alta ? GuardarAlta() : GuardarCambio())) return false;
    const QString clave = Clave();
    if (!DetallesEnSitio() && !alta && !Reencontrar(clave)) return false;
    if (!GuardarDetalles()) return false;
    if (DetallesEnSitio() && !Reencontrar(clave)) return false;
    Terminar();
    LigarCampos(true);
    return true;
}

bool EditorSesion::DetallesEnSitio() const {
    return std::any_of(detalles_.begin(), detalles_.end(), [](const DetalleSesion& detalle) {
        return detalle.Def().guardar == GuardarDetalle::EnSitio;
    });
}

bool EditorSesion::Reencontrar(const QString& clave) {
    if (!Releer()) return false;
    if (BuscarClave(clave)) return true;
    vieja_ = true;
    Avisar(BorradoPorOtro());
    return false;
}

bool EditorSesion::Obligatorios() {
    for (qsizetype i = 0; i < Campos(); ++i) {
        const CampoDef& def = Campo(i);
        QString falta;
        if (!def.falta.isEmpty()) {
            // What the control shows: of a combo box its text, whatever its hidden box holds.
            const bool combo = !def.oculto.isEmpty();
            if (combo ? elegidos_[i] < 0 : TextoParaGuardar(i).isEmpty())
                falta = def.falta.toString();
        } else if (def.tag.contains(u"NoVacio"_s, Qt::CaseInsensitive) && valores_[i].isEmpty()) {
            falta = u" de "_s + def.etiqueta.toString();
        }
        if (falta.isEmpty()) continue;
        Avisar(u"Falta el campo "_s + falta);
        foco_ = def.control.toString();
        return false;
    }
    return true;
}

bool EditorSesion::Validos() {
    for (qsizetype i = 0; i < Campos(); ++i) {
        const CampoDef& def = Campo(i);
        if (def.columna.isEmpty() || def.tipo == TipoCampo::Clave || EsNulo(i)) continue;
        const qsizetype columna = conjunto_->IndiceDe(def.columna.toString());
        if (columna < 0) continue;
        const auto valor = ValorParaColumna(conjunto_->Columnas()[columna], def.etiqueta.toString(),
                                            TextoParaGuardar(i));
        if (valor) continue;
        Avisar(valor.error().texto);
        foco_ = def.control.toString();
        return false;
    }
    return true;
}

QString EditorSesion::TextoParaGuardar(qsizetype campo) const {
    const CampoDef& def = Campo(campo);
    if (def.mascara != nullptr) return def.mascara->reducir(valores_[campo]);
    if (def.partes != nullptr) return def.partes->unir(valores_[campo], valores_[campo + 1]);
    if (def.tipo != TipoCampo::Numero) return valores_[campo];
    return data::NumeroEscrito(valores_[campo]).value_or(valores_[campo]);
}

bool EditorSesion::EsNulo(qsizetype campo) const {
    const ListaDef* const lista = Campo(campo).lista;
    if (lista == nullptr) return false;
    if (elegidos_[campo] < 0) return valores_[campo].isEmpty();
    const foundation::EntradaCombo entrada = listas_[campo].value(elegidos_[campo]);
    if (lista->ninguno.isEmpty()) return false;
    return lista->nulo_por == NuloPor::Texto ? entrada.texto == lista->ninguno
                                             : entrada.dato == lista->dato_ninguno;
}

QString EditorSesion::Asignaciones() const {
    QStringList asignaciones;
    for (qsizetype i = 1; i < Campos(); ++i) {
        const QStringView columna = Campo(i).columna;
        if (columna.isEmpty()) continue;
        const QString texto = TextoParaGuardar(i);
        const qsizetype lugar = conjunto_->IndiceDe(columna.toString());
        const bool comillas = lugar >= 0 && data::EsTexto(conjunto_->Columnas()[lugar].tipo);
        QString valor = texto.trimmed().isEmpty() ? u"NULL"_s : texto;
        if (comillas) valor = u'\'' + data::DuplicaApostrofes(texto) + u'\'';
        if (EsNulo(i)) valor = u"NULL"_s;
        asignaciones << columna.toString() + u'=' + valor;
    }
    return asignaciones.join(u',');
}

bool EditorSesion::PonerClaveNueva() {
    if (def_->consulta_clave.isEmpty()) return true;
    data::RecordsetPtr respuesta;
    if (!ado_.Consultar(respuesta, def_->consulta_clave.toString())) {
        ContarFallo(ado_);
        return false;
    }
    if (!respuesta->HayActual()) {
        if (!def_->clave_sin_fila.isEmpty()) valores_[0] = def_->clave_sin_fila.toString();
        return true;
    }
    const QVariant clave = respuesta->Filas().front().value(0);
    // The highest key of an empty table is NULL.
    valores_[0] = clave.isValid() ? data::TextoDeValor(clave) : u"1"_s;
    return true;
}

bool EditorSesion::GuardarAlta() {
    if (!PonerClaveNueva()) return false;
    for (qsizetype i = 0; i < Campos(); ++i) {
        const CampoDef& def = Campo(i);
        if (def.columna.isEmpty()) continue;
        if (def.tipo == TipoCampo::Clave && valores_[i].isEmpty()) continue;
        const QString columna = def.columna.toString();
        const qsizetype lugar = conjunto_->IndiceDe(columna);
        if (lugar < 0) continue;
        const auto valor = ValorParaColumna(conjunto_->Columnas()[lugar], def.etiqueta.toString(),
                                            TextoParaGuardar(i));
        QUIMO_CHECK(valor.has_value());
        auto asignado = conjunto_->Asignar(columna, EsNulo(i) ? QVariant() : *valor);
        if (!asignado) return ado_.Reportar(std::move(asignado).error());
    }
    if (!ado_.Reposicionar(conjunto_, true, false)) return false;
    // From here on it is a stored row: what is left to save can be saved again.
    const auto clave = conjunto_->Campo(def_->ColumnaClave().toString());
    if (clave) valores_[0] = data::TextoDeValor(*clave);
    estado_ = Estado::Modificacion;
    ligados_ = false;
    return true;
}

bool EditorSesion::SigueComoEstaba() {
    if (!vista_) return true;
    data::RecordsetPtr ahora;
    if (!ado_.Consultar(ahora, u"SELECT * FROM "_s + def_->tabla.toString() + u" WHERE "_s +
                                   CondicionClave())) {
        ContarFallo(ado_);
        return false;
    }
    if (ahora->Vacio()) {
        vieja_ = true;
        Avisar(BorradoPorOtro());
        return false;
    }
    const data::Fila& fila = ahora->Filas().front();
    bool igual = true;
    for (qsizetype i = 0; i < fila.size(); ++i) {
        igual = igual && data::TextoDeValor(fila[i]) == data::TextoDeValor(vista_->value(i));
    }
    if (igual) return true;
    vieja_ = true;
    if (ado_.Dialogo().Preguntar(
            u"Otro usuario cambió este registro mientras se modificaba. ¿Desea guardar sobre sus "
            u"cambios?"_s,
            Botones::SiNo, Icono::Pregunta, def_->titulo.toString()) != Respuesta::Si) {
        return false;
    }
    vista_ = fila;
    return true;
}

bool EditorSesion::GuardarCambio() {
    if (!SigueComoEstaba()) return false;
    if (!ado_.Modificar(conjunto_, def_->tabla.toString(), Asignaciones(), CondicionClave())) {
        ContarFallo(ado_);
        return false;
    }
    vista_.reset();
    return true;
}

bool EditorSesion::GuardarDetalles() {
    const QString clave = Clave();
    for (DetalleSesion& detalle : detalles_) {
        if (detalle.Guardar(clave) == DetalleSesion::Guardado::Interrumpido) return false;
    }
    return true;
}

}  // namespace quimo::catalog
