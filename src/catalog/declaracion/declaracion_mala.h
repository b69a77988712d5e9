#pragma once

/// What can be wrong with a catalogue's declaration. None of these can run while the program is
/// compiled, and none has a body: calling one is how a declaration that is wrong fails to compile,
/// with a message of the compiler's that names it.
namespace quimo::catalog::declaracion_mala {

// The editor.
void EditorSinNombre();
void EditorSinComando();
void EditorSinTitulo();
void EditorSinTabla();
void EditorSinMensajeDeRepetido();
void EditorSinCamposQueEscribir();
void ElPrimerCampoNoEsLaClave();
void HayOtraClave();
void ControlRepetido();

// A field.
void CampoSinControl();
void CampoSinColumna();
void CampoSinEtiqueta();
void CampoObligatorioSinTexto();
void CampoCodigoSinLista();
void CodigoSinLetraOSinTexto();
void CodigoRepetido();
void ElInicialNoEsDeLaLista();
void CasillaSinInicial();
void CampoListaSinConsulta();
void CampoSinCajaOculta();
void CajaOcultaSinCombo();
void MascaraIncompleta();
void PartesIncompletas();
void PartesSinSegundoCampo();

// The filter.
void FiltroSinBase();
void FiltroSinColumnas();
void ColumnaFiltroIncompleta();
void ElFiltroNoEmpiezaPorLaClave();
void ElFiltroNoUsaLaListaDelCampo();

// A detail grid.
void DetalleSinControl();
void DetalleSinTitulo();
void DetalleSinTabla();
void DetalleSinConsultaHastaLaClave();
void DetalleSinColumnas();
void DetalleSinColumnaDelRegistro();
void DetalleSinColumnaDelRenglon();
void DetalleSinAlta();
void CeldaClaveFueraDeRango();
void CeldaDeCampoFueraDeRango();
void CeldaDelRenglonFueraDeRango();
void CampoDetalleSinColumna();
void CeldaEscritaQuePuedeEstarVacia();
void CeldaSinTitulo();
void CeldaSinAncho();
void CeldaCodigoSinRevision();
void RevisionIncompleta();
void CeldaNombreFueraDeRango();
void CeldaListaSinConsulta();
void LaCeldaListaEsLaClave();

}  // namespace quimo::catalog::declaracion_mala
