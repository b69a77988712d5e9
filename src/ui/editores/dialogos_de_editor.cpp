#include "ui/editores/dialogos_de_editor.h"

#include "data/valores.h"
#include "ui/editores/dlg_buscar.h"
#include "ui/editores/dlg_consulta.h"

using namespace Qt::StringLiterals;

namespace quimo::ui {

namespace {

QVector<catalog::CampoBusqueda> CamposDe(const catalog::EditorSesion& sesion) {
    QVector<catalog::CampoBusqueda> campos;
    const auto declarados = sesion.Def().campos;
    for (qsizetype i = 0; i < std::ssize(declarados); ++i) {
        const catalog::CampoDef& def = declarados[static_cast<std::size_t>(i)];
        if (def.columna.isEmpty()) continue;
        catalog::CampoBusqueda campo{def.etiqueta.toString(), def.columna.toString()};
        const bool con_lista =
            def.tipo == catalog::TipoCampo::Codigo || def.tipo == catalog::TipoCampo::Lista;
        if (con_lista) {
            campo.visible = [&sesion, i](const QVariant& guardado) {
                return sesion.Campos().Visible(i, guardado);
            };
        }
        campos.append(campo);
    }
    return campos;
}

void Buscar(VentanaEditor& editor) {
    catalog::EditorSesion& sesion = editor.Sesion();
    catalog::Buscador buscador(sesion.Conjunto(), CamposDe(sesion));
    DlgBuscar dialogo(buscador, &editor);
    QObject::connect(&dialogo, &DlgBuscar::Hallado, &editor, [&editor] {
        editor.Sesion().MostrarActual();
        editor.Refrescar();
    });
    dialogo.exec();
}

void Consultar(VentanaEditor& editor, foundation::ClsAdo& ado) {
    catalog::EditorSesion& sesion = editor.Sesion();
    catalog::Consulta consulta(sesion.Def().filtro, ado);
    DlgConsulta dialogo(consulta, ado.Dialogo(), &editor);
    const auto clave = dialogo.Elegir();
    if (!clave || sesion.IrAClave(data::TextoDeValor(*clave))) return;
    ado.Dialogo().Avisar(
        u"El registro ya no está en el catálogo abierto: alguien lo agregó o lo borró después."_s,
        foundation::Icono::Exclamacion, sesion.Def().titulo.toString());
}

}  // namespace

DialogosDeEditor DialogosDeBusqueda(foundation::ClsAdo& ado) {
    return {.buscar = Buscar,
            .consulta = [&ado](VentanaEditor& editor) { Consultar(editor, ado); }};
}

}  // namespace quimo::ui
