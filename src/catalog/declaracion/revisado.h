#pragma once

#include "catalog/declaracion/editor_def.h"

namespace quimo::catalog {

/// A declaration in which Revisado() found no mistake. There is no other way to make one, so that
/// the table of editors holds none that a session could stumble over.
class EditorRevisado : public EditorDef {
    constexpr explicit EditorRevisado(const EditorDef& def) : EditorDef(def) {}
    friend consteval EditorRevisado Revisado(const EditorDef& def);
};

namespace revision {

consteval bool Iguales(QStringView uno, QStringView otro) {
    if (uno.size() != otro.size()) return false;
    for (qsizetype i = 0; i < uno.size(); ++i) {
        if (uno.utf16()[i] != otro.utf16()[i]) return false;
    }
    return true;
}

consteval bool TerminaEn(QStringView texto, QStringView final) {
    return texto.size() >= final.size() && Iguales(texto.last(final.size()), final);
}

consteval int VecesControl(const EditorDef& def, QStringView control) {
    int veces = 0;
    for (const CampoDef& campo : def.campos) {
        if (Iguales(campo.control, control)) ++veces;
        if (Iguales(campo.oculto, control)) ++veces;
    }
    for (const DetalleDef& detalle : def.detalles) {
        if (Iguales(detalle.control, control)) ++veces;
    }
    if (!def.detalles.empty() && Iguales(def.pestanas, control)) ++veces;
    return veces;
}

consteval void Controles(const EditorDef& def) {
    for (const CampoDef& campo : def.campos) {
        if (VecesControl(def, campo.control) != 1) declaracion_mala::ControlRepetido();
        if (!campo.oculto.isEmpty() && VecesControl(def, campo.oculto) != 1)
            declaracion_mala::ControlRepetido();
    }
    for (const DetalleDef& detalle : def.detalles) {
        if (VecesControl(def, detalle.control) != 1) declaracion_mala::ControlRepetido();
    }
}

consteval void Codigos(const CampoDef& campo) {
    if (campo.codigos.empty()) declaracion_mala::CampoCodigoSinLista();
    bool hay_inicial = campo.inicial.isEmpty();
    for (const ItemCodigo& item : campo.codigos) {
        if (item.texto.isEmpty() || item.codigo.isEmpty())
            declaracion_mala::CodigoSinLetraOSinTexto();
        int veces = 0;
        for (const ItemCodigo& otro : campo.codigos) {
            if (Iguales(item.texto, otro.texto) || Iguales(item.codigo, otro.codigo)) ++veces;
        }
        if (veces != 1) declaracion_mala::CodigoRepetido();
        hay_inicial = hay_inicial || Iguales(item.codigo, campo.inicial);
    }
    if (!hay_inicial) declaracion_mala::ElInicialNoEsDeLaLista();
}

consteval void Campo(const CampoDef& campo, bool segunda_parte) {
    if (campo.control.isEmpty()) declaracion_mala::CampoSinControl();
    if (campo.etiqueta.isEmpty()) declaracion_mala::CampoSinEtiqueta();
    if (campo.columna.isEmpty() != segunda_parte) declaracion_mala::CampoSinColumna();
    const bool combo = campo.tipo == TipoCampo::Codigo || campo.tipo == TipoCampo::Lista;
    if (combo && campo.oculto.isEmpty()) declaracion_mala::CampoSinCajaOculta();
    if (!combo && !campo.oculto.isEmpty()) declaracion_mala::CajaOcultaSinCombo();
    if (campo.tipo == TipoCampo::Codigo) Codigos(campo);
    if (campo.tipo == TipoCampo::Lista &&
        (campo.lista == nullptr || campo.lista->consulta.isEmpty())) {
        declaracion_mala::CampoListaSinConsulta();
    }
    if (campo.tipo == TipoCampo::Casilla && !Iguales(campo.inicial, u"0") &&
        !Iguales(campo.inicial, u"1")) {
        declaracion_mala::CasillaSinInicial();
    }
    if (campo.mascara != nullptr &&
        (campo.mascara->mostrar == nullptr || campo.mascara->reducir == nullptr ||
         campo.mascara->objecion == nullptr)) {
        declaracion_mala::MascaraIncompleta();
    }
    if (campo.partes != nullptr &&
        (campo.partes->partir == nullptr || campo.partes->unir == nullptr)) {
        declaracion_mala::PartesIncompletas();
    }
}

consteval void Campos(const EditorDef& def) {
    if (def.campos.empty() || def.campos.front().tipo != TipoCampo::Clave)
        declaracion_mala::ElPrimerCampoNoEsLaClave();
    // The focus goes to the one behind the key.
    if (def.campos.size() < 2) declaracion_mala::EditorSinCamposQueEscribir();
    bool segunda_parte = false;
    for (std::size_t i = 0; i < def.campos.size(); ++i) {
        const CampoDef& campo = def.campos[i];
        if (i > 0 && campo.tipo == TipoCampo::Clave) declaracion_mala::HayOtraClave();
        Campo(campo, segunda_parte);
        segunda_parte = campo.partes != nullptr;
    }
    if (segunda_parte) declaracion_mala::PartesSinSegundoCampo();
}

consteval void Filtro(const EditorDef& def) {
    if (def.filtro.base.isEmpty()) declaracion_mala::FiltroSinBase();
    if (def.filtro.columnas.empty()) declaracion_mala::FiltroSinColumnas();
    for (const ColumnaFiltro& columna : def.filtro.columnas) {
        if (columna.titulo.isEmpty() || columna.expresion.isEmpty() || columna.columna.isEmpty())
            declaracion_mala::ColumnaFiltroIncompleta();
        for (const CampoDef& campo : def.campos) {
            // A list of its own would tell other texts than the editor.
            if (!campo.codigos.empty() && Iguales(campo.columna, columna.columna) &&
                campo.codigos.data() != columna.codigos.data()) {
                declaracion_mala::ElFiltroNoUsaLaListaDelCampo();
            }
        }
    }
    if (!TerminaEn(def.filtro.columnas.front().columna, def.ColumnaClave()))
        declaracion_mala::ElFiltroNoEmpiezaPorLaClave();
}

/// Whether a statement can write the cell whatever the user does: empty, it would leave a hole
/// between two commas.
consteval bool SeEscribeSiempre(const EditorDef& def, const DetalleDef& detalle, int celda) {
    // A row in which the key cell is empty is not written.
    if (celda == kClaveDelRegistro || celda == detalle.celda_clave) return true;
    const ColumnaDetalle& columna = detalle.columnas[static_cast<std::size_t>(celda)];
    switch (columna.tipo) {
        case TipoCeldaDetalle::Entero:
        case TipoCeldaDetalle::Fecha:
            return true;  // 0 and NULL
        case TipoCeldaDetalle::Dinero:
        case TipoCeldaDetalle::Numero:
        case TipoCeldaDetalle::Casilla:
            return !columna.inicial.isEmpty() || (columna.exigida && def.revisar != nullptr);
        case TipoCeldaDetalle::Oculta:
        case TipoCeldaDetalle::Nombre:
        case TipoCeldaDetalle::Codigo:
        case TipoCeldaDetalle::Lista:
        case TipoCeldaDetalle::Marca:
            break;
    }
    return false;
}

consteval void Escritos(const EditorDef& def, const DetalleDef& detalle,
                        std::span<const CampoDetalle> campos) {
    for (const CampoDetalle& campo : campos) {
        if (campo.columna.isEmpty()) declaracion_mala::CampoDetalleSinColumna();
        if (campo.celda < kClaveDelRegistro || campo.celda >= std::ssize(detalle.columnas))
            declaracion_mala::CeldaDeCampoFueraDeRango();
        if (!SeEscribeSiempre(def, detalle, campo.celda))
            declaracion_mala::CeldaEscritaQuePuedeEstarVacia();
    }
}

consteval bool EnRango(const DetalleDef& detalle, int celda) {
    return celda >= 0 && celda < std::ssize(detalle.columnas);
}

consteval void CeldaCodigo(const DetalleDef& detalle) {
    const RevisionDef* const revision = detalle.revision;
    if (revision == nullptr) declaracion_mala::CeldaCodigoSinRevision();
    if (revision->tabla.isEmpty() || revision->columna_clave.isEmpty() ||
        revision->columna_nombre.isEmpty() || revision->mensaje.isEmpty()) {
        declaracion_mala::RevisionIncompleta();
    }
    if (!EnRango(detalle, revision->celda_nombre)) declaracion_mala::CeldaNombreFueraDeRango();
}

consteval void Celdas(const DetalleDef& detalle) {
    for (int c = 0; c < std::ssize(detalle.columnas); ++c) {
        const ColumnaDetalle& columna = detalle.columnas[static_cast<std::size_t>(c)];
        if (columna.tipo == TipoCeldaDetalle::Codigo) CeldaCodigo(detalle);
        if (columna.tipo == TipoCeldaDetalle::Lista) {
            if (detalle.lista.isEmpty()) declaracion_mala::CeldaListaSinConsulta();
            if (detalle.celda_clave == c) declaracion_mala::LaCeldaListaEsLaClave();
        }
        if (columna.tipo == TipoCeldaDetalle::Oculta || columna.tipo == TipoCeldaDetalle::Marca)
            continue;
        if (columna.titulo.isEmpty()) declaracion_mala::CeldaSinTitulo();
        if (columna.ancho_mm <= 0) declaracion_mala::CeldaSinAncho();
    }
}

consteval void Detalle(const EditorDef& def, const DetalleDef& detalle) {
    if (detalle.control.isEmpty()) declaracion_mala::DetalleSinControl();
    if (detalle.titulo.isEmpty()) declaracion_mala::DetalleSinTitulo();
    if (detalle.tabla.isEmpty()) declaracion_mala::DetalleSinTabla();
    if (!TerminaEn(detalle.consulta, u"=")) declaracion_mala::DetalleSinConsultaHastaLaClave();
    if (detalle.columnas.empty()) declaracion_mala::DetalleSinColumnas();
    if (detalle.columna_registro.isEmpty()) declaracion_mala::DetalleSinColumnaDelRegistro();
    if (detalle.alta.empty()) declaracion_mala::DetalleSinAlta();
    if (!EnRango(detalle, detalle.celda_clave)) declaracion_mala::CeldaClaveFueraDeRango();
    if (detalle.guardar == GuardarDetalle::EnSitio) {
        if (detalle.columna_renglon.columna.isEmpty())
            declaracion_mala::DetalleSinColumnaDelRenglon();
        if (!EnRango(detalle, detalle.columna_renglon.celda))
            declaracion_mala::CeldaDelRenglonFueraDeRango();
    }
    Celdas(detalle);
    Escritos(def, detalle, detalle.alta);
    Escritos(def, detalle, detalle.cambio);
}

}  // namespace revision

/// The declaration, or no program: whatever a session would stumble over fails to compile here, and
/// the compiler names the function of declaracion_mala.h that says what it is.
consteval EditorRevisado Revisado(const EditorDef& def) {
    if (def.nombre.isEmpty()) declaracion_mala::EditorSinNombre();
    if (def.comando.isEmpty()) declaracion_mala::EditorSinComando();
    if (def.titulo.isEmpty()) declaracion_mala::EditorSinTitulo();
    if (def.tabla.isEmpty()) declaracion_mala::EditorSinTabla();
    if (def.repetido.isEmpty()) declaracion_mala::EditorSinMensajeDeRepetido();
    revision::Campos(def);
    for (const DetalleDef& detalle : def.detalles)
        revision::Detalle(def, detalle);
    revision::Controles(def);
    revision::Filtro(def);
    return EditorRevisado(def);
}

}  // namespace quimo::catalog
