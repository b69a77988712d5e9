#pragma once

#include <functional>
#include <memory>
#include <optional>

#include <QObject>
#include <QStringList>

#include "data/reloj.h"
#include "foundation/cls_ado.h"
#include "foundation/login.h"
#include "security/cifrado_rc4.h"
#include "ui/controles/dialogos_qt.h"
#include "ui/editores/ventana_editor.h"
#include "ui/principal/frm_login.h"
#include "ui/principal/mdi_principal.h"

namespace quimo::app {

/// The two words that the program is started with.
struct LineaDeComandos {
    QString servidor;
    QString base_de_datos;
};

/// Reads them. Two arguments are taken as they are (a path may hold blanks); otherwise all of them
/// are one text split on single blanks, and a word that is missing is empty. Nothing when there are
/// more than two words.
std::optional<LineaDeComandos> LeerLineaDeComandos(const QStringList& argumentos);

/// The desktop program's life: splash, login, main window, end. Builds the objects that they share
/// and owns them.
class Escritorio final : public QObject {
    Q_OBJECT
public:
    /// The clock must outlive it.
    explicit Escritorio(const data::Reloj& reloj);
    ~Escritorio() override;

    /// Shows the splash window; the rest follows from the event loop.
    void Iniciar(const QStringList& argumentos);

signals:
    /// The program ends with this status: 0, or 1 when nobody could be let in.
    void Termino(int estado);

private:
    void AbrirLogin();
    void AbrirPrincipal();
    void RegistrarEditores();
    data::Conector ConectorConMotivo();

    const data::Reloj& reloj_;
    ui::DialogosQt dialogos_;
    QStringList argumentos_;
    std::unique_ptr<foundation::ClsBitacora> bitacora_;
    std::unique_ptr<foundation::ClsAdo> ado_;
    security::CifradoRc4 cifrado_;
    std::unique_ptr<foundation::Login> login_;
    foundation::EstadoSesion sesion_;
    std::unique_ptr<ui::frmLogin> ventana_login_;
    std::unique_ptr<ui::MDIPrincipal> principal_;
};

}  // namespace quimo::app
