#include "app/escritorio/escritorio.h"

#include "catalog/editores/editores.h"
#include "foundation/conector.h"
#include "foundation/rutas.h"
#include "ui/controles/aspecto.h"
#include "ui/editores/dialogos_de_editor.h"
#include "ui/principal/frm_inicio.h"

using namespace Qt::StringLiterals;

namespace quimo::app {

namespace {

constexpr qsizetype kPalabras = 2;

}  // namespace

std::optional<LineaDeComandos> LeerLineaDeComandos(const QStringList& argumentos) {
    const QStringList palabras =
        argumentos.size() == kPalabras ? argumentos : argumentos.join(u' ').split(u' ');
    if (palabras.size() > kPalabras) return std::nullopt;
    return LineaDeComandos{palabras.value(0), palabras.value(1)};
}

Escritorio::Escritorio(const data::Reloj& reloj) : reloj_(reloj) {}

Escritorio::~Escritorio() = default;

void Escritorio::Iniciar(const QStringList& argumentos) {
    argumentos_ = argumentos;
    auto* const inicio = new ui::frmInicio;
    inicio->setAttribute(Qt::WA_DeleteOnClose);
    connect(inicio, &ui::frmInicio::Terminado, this, &Escritorio::AbrirLogin, Qt::QueuedConnection);
    ui::Centrar(*inicio);
    inicio->show();
}

data::Conector Escritorio::ConectorConMotivo() {
    return [this, conector = foundation::CrearConector(reloj_)](const data::DatosConexion& datos) {
        auto abierta = conector(datos);
        // The user reads a fixed text; whoever is called for help needs the reason.
        if (!abierta) bitacora_->Escribir({u"Conexión"_s, abierta.error().Descripcion()});
        return abierta;
    };
}

void Escritorio::AbrirLogin() {
    const auto linea = LeerLineaDeComandos(argumentos_);
    if (!linea) {
        dialogos_.Avisar(
            u"La línea de comandos lleva dos palabras, SERVIDOR y BASE, y se recibieron más: "_s +
                argumentos_.join(u' '),
            foundation::Icono::Critico);
        emit Termino(1);
        return;
    }
    foundation::OpcionesBitacora opciones;
    opciones.PArchivoLog =
        foundation::RutaFija(foundation::CarpetaInstalacion(), u"C:\\QUIMO.log"_s);
    opciones.PMsgBox = false;
    bitacora_ = std::make_unique<foundation::ClsBitacora>(opciones, dialogos_, reloj_);
    ado_ = std::make_unique<foundation::ClsAdo>(ConectorConMotivo(), dialogos_, *bitacora_);
    ado_->CpsTitulo = u"QUIMO"_s;
    if (!foundation::AbrirConexionDelPrograma(*ado_, linea->servidor, linea->base_de_datos)) {
        emit Termino(1);
        return;
    }
    login_ = std::make_unique<foundation::Login>(*ado_, cifrado_);
    ventana_login_ = std::make_unique<ui::frmLogin>(*login_);
    connect(ventana_login_.get(), &ui::frmLogin::Entro, this, &Escritorio::AbrirPrincipal);
    connect(ventana_login_.get(), &ui::frmLogin::Cancelado, this, [this] { emit Termino(0); });
    ui::Centrar(*ventana_login_);
    ventana_login_->show();
}

void Escritorio::AbrirPrincipal() {
    sesion_ = login_->Sesion();
    ventana_login_->hide();
    principal_ =
        std::make_unique<ui::MDIPrincipal>(ui::Contexto{*ado_, sesion_, reloj_, dialogos_});
    connect(principal_.get(), &ui::MDIPrincipal::Cerrada, this, [this] { emit Termino(0); });
    RegistrarEditores();
    principal_->show();
    ventana_login_->close();
}

void Escritorio::RegistrarEditores() {
    for (const catalog::EditorDef* const def : catalog::Editores()) {
        principal_->RegistrarVentana(def->comando.toString(), [this, def] {
            return ui::VentanaEditor::Abrir(*def, *ado_, ui::DialogosDeBusqueda(*ado_));
        });
    }
}

}  // namespace quimo::app
