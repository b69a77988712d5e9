// Not a program: no declaration here but the first may compile. declaraciones_malas.cmake compiles
// it and expects each refusal by the name that follows it.

#include <array>

#include "catalog/declaracion/revisado.h"

namespace quimo::catalog {
namespace {

constexpr ItemCodigo kTipos[] = {{u"Ventas", u"V"}, {u"Retail", u"R"}};
constexpr ItemCodigo kLetras[] = {{u"Ventas", u"V"}, {u"", u"R"}};
constexpr ItemCodigo kMudos[] = {{u"Ventas", u"V"}, {u"Retail", u""}};
constexpr ItemCodigo kDobles[] = {{u"Ventas", u"V"}, {u"Retail", u"V"}};
constexpr ListaDef kLista = {.consulta = u"SELECT Nombre,ID FROM Otra"};
constexpr ListaDef kSinConsulta = {};
constexpr MascaraDef kMascara = {};
constexpr PartesDef kPartes = {};
constexpr PartesDef kBuenasPartes = {
    [](const QString& /*guardado*/, QString& /*primera*/, QString& /*segunda*/) {},
    [](const QString& primera, const QString& /*segunda*/) { return primera; }};
constexpr RevisionDef kRevision = {u"Otra", u"ID_Otra", u"Nombre", u"No existe", 1};
constexpr RevisionDef kSinMensaje = {u"Otra", u"ID_Otra", u"Nombre", u"", 1};
constexpr RevisionDef kSinNombre = {u"Otra", u"ID_Otra", u"Nombre", u"No existe", 7};

constexpr int kCodigo = 0;
constexpr int kNombre = 1;
constexpr int kImporte = 2;
constexpr int kMarca = 3;

/// The parts of a declaration, which each case changes.
struct Partes {
    std::array<CampoDef, 6> campos = {
        Clave(u"txtId", u"ID_Cosa"),
        Texto(u"TxtNombre", u"Nombre", u"Nombre").Obligatorio(u"de Nombre"),
        Codigo(u"cmbTipo", u"TxtTipo", u"Tipo", u"Tipo", kTipos),
        Lista(u"cmbOtra", u"TxtOtra", u"ID_Otra", u"Otra", kLista),
        Casilla(u"chkActivo", u"Activo", u"Activo"),
        Numero(u"txtPrecio", u"Precio", u"Precio")};
    std::size_t cuantos = 6;
    std::array<ColumnaFiltro, 2> columnas_filtro = {
        {{u"Id", u"ID_Cosa", u"Cosa.ID_Cosa"}, {u"Tipo", u"Tipo", u"Tipo", kTipos}}};
    std::array<ColumnaDetalle, 4> columnas = {{
        {.tipo = TipoCeldaDetalle::Codigo, .titulo = u"Clave"},
        {.tipo = TipoCeldaDetalle::Nombre, .titulo = u"Otra"},
        {.tipo = TipoCeldaDetalle::Dinero, .titulo = u"Importe", .inicial = u"0"},
        {.tipo = TipoCeldaDetalle::Marca},
    }};
    std::array<CampoDetalle, 3> alta = {{{u"ID_Cosa"}, {u"ID_Otra", kCodigo}, {u"I", kImporte}}};
    std::array<CampoDetalle, 1> cambio = {{{u"I", kImporte}}};
    DetalleDef detalle = {.control = u"sprOtras",
                          .titulo = u"Otras",
                          .tabla = u"OtrasXCosa",
                          .consulta = u"SELECT ID_Otra,Nombre,I,' ' FROM OtrasXCosa WHERE ID_Cosa=",
                          .revision = &kRevision,
                          .columna_registro = u"ID_Cosa",
                          .columna_renglon = {u"ID_Otra", kCodigo}};
    bool sin_columnas_filtro = false;
    bool sin_columnas = false;
    bool sin_alta = false;
    EditorDef editor = {.nombre = u"OpCosa",
                        .comando = u"mnuOpCosa",
                        .titulo = u"Cosas",
                        .tabla = u"Cosa",
                        .repetido = u"Ya existe la cosa",
                        .filtro = {u"Cosa WHERE", {}}};
};

template <typename Cambiar>
consteval bool Compila(Cambiar cambiar) {
    Partes partes;
    cambiar(partes);
    if (!partes.sin_columnas) partes.detalle.columnas = partes.columnas;
    if (!partes.sin_alta) partes.detalle.alta = partes.alta;
    partes.detalle.cambio = partes.cambio;
    partes.editor.detalles = std::span(&partes.detalle, 1);
    partes.editor.campos = std::span(partes.campos).first(partes.cuantos);
    if (!partes.sin_columnas_filtro) partes.editor.filtro.columnas = partes.columnas_filtro;
    static_cast<void>(Revisado(partes.editor));
    return true;
}

static_assert(Compila([](Partes&) {}));

constexpr ColumnaDetalle SinInicial(TipoCeldaDetalle tipo) {
    return {.tipo = tipo, .titulo = u"Importe"};
}

#define MALA(cambio) static_assert(Compila([](Partes& p) { cambio; }))

MALA(p.editor.nombre = {});                              // -> EditorSinNombre
MALA(p.editor.comando = {});                             // -> EditorSinComando
MALA(p.editor.titulo = {});                              // -> EditorSinTitulo
MALA(p.editor.tabla = {});                               // -> EditorSinTabla
MALA(p.editor.repetido = {});                            // -> EditorSinMensajeDeRepetido
MALA(p.cuantos = 0);                                     // -> ElPrimerCampoNoEsLaClave
MALA(p.cuantos = 1);                                     // -> EditorSinCamposQueEscribir
MALA(p.campos[0].tipo = TipoCampo::Numero);              // -> ElPrimerCampoNoEsLaClave
MALA(p.campos[5].tipo = TipoCampo::Clave);               // -> HayOtraClave
MALA(p.campos[5].control = u"TxtNombre");                // -> ControlRepetido
MALA(p.campos[3].oculto = u"TxtTipo");                   // -> ControlRepetido
MALA(p.detalle.control = u"TxtNombre");                  // -> ControlRepetido
MALA(p.editor.pestanas = u"sprOtras");                   // -> ControlRepetido
MALA(p.campos[1].control = {});                          // -> CampoSinControl
MALA(p.campos[1].columna = {});                          // -> CampoSinColumna
MALA(p.campos[0].columna = {});                          // -> CampoSinColumna
MALA(p.campos[1].etiqueta = {});                         // -> CampoSinEtiqueta
MALA(p.campos[2].codigos = {});                          // -> CampoCodigoSinLista
MALA(p.campos[2].codigos = kLetras);                     // -> CodigoSinLetraOSinTexto
MALA(p.campos[2].codigos = kMudos);                      // -> CodigoSinLetraOSinTexto
MALA(p.campos[2].codigos = kDobles);                     // -> CodigoRepetido
MALA(p.campos[2].inicial = u"X");                        // -> ElInicialNoEsDeLaLista
MALA(p.campos[4].inicial = {});                          // -> CasillaSinInicial
MALA(p.campos[3].lista = nullptr);                       // -> CampoListaSinConsulta
MALA(p.campos[3].lista = &kSinConsulta);                 // -> CampoListaSinConsulta
MALA(p.campos[2].oculto = {});                           // -> CampoSinCajaOculta
MALA(p.campos[1].oculto = u"txtOculto");                 // -> CajaOcultaSinCombo
MALA(p.campos[5].mascara = &kMascara);                   // -> MascaraIncompleta
MALA(p.campos[1].partes = &kPartes);                     // -> PartesIncompletas
MALA(p.campos[1].partes = &kBuenasPartes);               // -> CampoSinColumna
MALA(p.campos[5].partes = &kBuenasPartes);               // -> PartesSinSegundoCampo
MALA(p.editor.filtro.base = {});                         // -> FiltroSinBase
MALA(p.sin_columnas_filtro = true);                      // -> FiltroSinColumnas
MALA(p.columnas_filtro[1].expresion = {});               // -> ColumnaFiltroIncompleta
MALA(p.columnas_filtro[0].columna = u"Nombre");          // -> ElFiltroNoEmpiezaPorLaClave
MALA(p.columnas_filtro[1].codigos = kDobles);            // -> ElFiltroNoUsaLaListaDelCampo
MALA(p.detalle.control = {});                            // -> DetalleSinControl
MALA(p.detalle.titulo = {});                             // -> DetalleSinTitulo
MALA(p.detalle.tabla = {});                              // -> DetalleSinTabla
MALA(p.detalle.consulta = u"SELECT * FROM OtrasXCosa");  // -> DetalleSinConsultaHastaLaClave
MALA(p.sin_columnas = true);                             // -> DetalleSinColumnas
MALA(p.detalle.columna_registro = {});                   // -> DetalleSinColumnaDelRegistro
MALA(p.sin_alta = true);                                 // -> DetalleSinAlta
MALA(p.detalle.celda_clave = 4);                         // -> CeldaClaveFueraDeRango
MALA(p.detalle.celda_clave = -1);                        // -> CeldaClaveFueraDeRango
MALA(p.detalle.columna_renglon = {});                    // -> DetalleSinColumnaDelRenglon
MALA(p.detalle.columna_renglon = {u"ID_Otra"});          // -> CeldaDelRenglonFueraDeRango
MALA(p.alta[1].celda = 4);                               // -> CeldaDeCampoFueraDeRango
MALA(p.cambio[0].celda = -2);                            // -> CeldaDeCampoFueraDeRango
MALA(p.alta[2].columna = {});                            // -> CampoDetalleSinColumna
MALA(p.columnas[kImporte].inicial = {});                 // -> CeldaEscritaQuePuedeEstarVacia
MALA(p.columnas[kImporte] =
         SinInicial(TipoCeldaDetalle::Numero));  // -> CeldaEscritaQuePuedeEstarVacia
MALA(p.columnas[kImporte] =
         SinInicial(TipoCeldaDetalle::Casilla));  // -> CeldaEscritaQuePuedeEstarVacia
MALA(p.columnas[kImporte] = SinInicial(TipoCeldaDetalle::Numero);
     p.columnas[kImporte].exigida = true);                 // -> CeldaEscritaQuePuedeEstarVacia
MALA(p.alta[2].celda = kNombre);                           // -> CeldaEscritaQuePuedeEstarVacia
MALA(p.alta[2].celda = kMarca);                            // -> CeldaEscritaQuePuedeEstarVacia
MALA(p.columnas[kNombre].titulo = {});                     // -> CeldaSinTitulo
MALA(p.columnas[kNombre].ancho_mm = 0);                    // -> CeldaSinAncho
MALA(p.detalle.revision = nullptr);                        // -> CeldaCodigoSinRevision
MALA(p.detalle.revision = &kSinMensaje);                   // -> RevisionIncompleta
MALA(p.detalle.revision = &kSinNombre);                    // -> CeldaNombreFueraDeRango
MALA(p.columnas[kNombre].tipo = TipoCeldaDetalle::Lista);  // -> CeldaListaSinConsulta
MALA(p.columnas[kCodigo].tipo = TipoCeldaDetalle::Lista;
     p.detalle.lista = u"SELECT 1,'a'");  // -> LaCeldaListaEsLaClave

constexpr CampoDef kSinFalta =
    Texto(u"TxtNombre", u"Nombre", u"Nombre").Obligatorio(u"");  // -> CampoObligatorioSinTexto
// There is no way round the checks.
constexpr EditorRevisado kSinRevisar = EditorRevisado(EditorDef());  // -> EditorRevisado

}  // namespace
}  // namespace quimo::catalog
