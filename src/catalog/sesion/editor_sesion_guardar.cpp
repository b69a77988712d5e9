#include <algorithm>
#include <optional>
#include <span>

#include "catalog/sesion/editor_sesion.h"
#include "data/valores.h"

using namespace Qt::StringLiterals;

namespace quimo::catalog {

using foundation::Botones;
using foundation::Icono;
using foundation::Respuesta;

namespace {

QString BorradoPorOtro() {
    return u"Otro usuario borró este registro mientras se modificaba: no se puede guardar"_s;
}

bool TieneEnSitio(std::span<const DetalleSesion> detalles) {
    return std::any_of(detalles.begin(), detalles.end(), [](const DetalleSesion& detalle) {
        return detalle.Def().guardar == GuardarDetalle::EnSitio;
    });
}

QString CondicionDe(const EditorDef& def, const QString& clave) {
    return def.ColumnaClave().toString() + u'=' + clave;
}

/// The key of a new row: "" for one that the database numbers. Nothing after the failure was told.
std::optional<QString> ClaveNueva(const EditorDef& def, foundation::ClsAdo& ado) {
    if (def.consulta_clave.isEmpty()) return QString();
    data::RecordsetPtr respuesta;
    if (!ado.Consultar(respuesta, def.consulta_clave.toString())) {
        ContarFallo(ado);
        return std::nullopt;
    }
    if (!respuesta->HayActual()) return def.clave_sin_fila.toString();
    const QVariant clave = respuesta->Filas().front().value(0);
    // The highest key of an empty table is NULL.
    return clave.isValid() ? data::TextoDeValor(clave) : u"1"_s;
}

}  // namespace

bool EditorSesion::Guardar() {
    if (!EnEdicion()) return false;
    const foundation::PunteroOcupado ocupado(ado_.Dialogo());
    Servir();
    for (qsizetype i = 0; i < campos_.Cantidad(); ++i) {
        if (!Dejar(i)) return false;
    }
    if (const auto objecion = campos_.Objecion(*conjunto_)) return Objetar(*objecion);
    if (def_->revisar != nullptr) {
        const QString objecion = def_->revisar(Detalles());
        if (!objecion.isEmpty()) {
            Avisar(objecion);
            return false;
        }
    }
    const bool alta = estado_ == Estado::Alta;
    if (alta) {
        if (!GuardarAlta()) return false;
    } else {
        if (!SigueComoEstaba()) return false;
        if (!ado_.Modificar(conjunto_, def_->tabla.toString(), campos_.Asignaciones(*conjunto_),
                            CondicionDe(*def_, Clave()))) {
            ContarFallo(ado_);
            return false;
        }
        vista_.reset();
    }
    const QString clave = Clave();
    const bool en_sitio = TieneEnSitio(detalles_);
    if (!en_sitio && !alta && !Reencontrar(clave)) return false;
    for (DetalleSesion& detalle : detalles_) {
        if (detalle.Guardar(clave) == DetalleSesion::Guardado::Interrumpido) return false;
    }
    if (en_sitio && !Reencontrar(clave)) return false;
    Pasar(Estado::Consulta);
    LigarCampos(true);
    return true;
}

bool EditorSesion::Reencontrar(const QString& clave) {
    if (!Releer()) return false;
    if (BuscarClave(clave)) return true;
    vieja_ = true;
    Avisar(BorradoPorOtro());
    return false;
}

bool EditorSesion::GuardarAlta() {
    const auto nueva = ClaveNueva(*def_, ado_);
    if (!nueva) return false;
    if (!nueva->isEmpty()) campos_.PonerClave(*nueva);
    auto asignado = campos_.Asignar(*conjunto_);
    if (!asignado) return ado_.Reportar(std::move(asignado).error());
    if (!ado_.Reposicionar(conjunto_, true, false)) return false;
    // From here on it is a stored row: what is left to save can be saved again.
    const auto clave = conjunto_->Campo(def_->ColumnaClave().toString());
    if (clave) campos_.PonerClave(data::TextoDeValor(*clave));
    estado_ = Estado::Modificacion;
    ligados_ = false;
    return true;
}

bool EditorSesion::SigueComoEstaba() {
    if (!vista_) return true;
    data::RecordsetPtr ahora;
    if (!ado_.Consultar(ahora, u"SELECT * FROM "_s + def_->tabla.toString() + u" WHERE "_s +
                                   CondicionDe(*def_, Clave()))) {
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

}  // namespace quimo::catalog
