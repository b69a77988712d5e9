#pragma once

#include <memory>
#include <optional>

#include <QString>
#include <QStringList>
#include <QVector>

#include "app/comandos/comando.h"
#include "foundation/cls_ado.h"
#include "foundation/conector.h"
#include "foundation/dialogos.h"

namespace quimo::app {

/// One line on standard output, in UTF-8, written out at once.
void Escribir(const QString& linea);
/// Whether whoever read the standard output has gone: nothing written there is seen any more.
bool SalidaCerrada();
/// One line on standard error.
void EscribirError(const QString& linea);
/// Tells a failure, which is the command's.
Estado Fallar(const base::Error& error);
/// A whole file of UTF-8 text; nothing after telling why it cannot be read.
std::optional<QString> LeerTexto(const QString& archivo);

/// Rows of cells as a text table: columns as wide as their widest cell, the named ones to the
/// right.
QString TablaDeTexto(const QStringList& titulos, const QVector<QStringList>& filas,
                     const QVector<bool>& a_la_derecha);

/// What quimoctl answers when the process asks.
struct Respuestas {
    foundation::Respuesta ante_falla = foundation::Respuesta::Abortar;
    foundation::Respuesta si_no = foundation::Respuesta::No;
    foundation::Respuesta aceptar = foundation::Respuesta::Cancelar;
};

/// Dialogs without a screen: messages and progress go to the output, failures to standard error,
/// questions are told together with the answer that the options chose.
class DialogosConsola final : public foundation::Dialogos {
public:
    using Dialogos::Avisar;
    using Dialogos::Preguntar;

    explicit DialogosConsola(Respuestas respuestas = {}) : respuestas_(respuestas) {}

    void Avisar(const QString& texto, foundation::Icono icono, const QString& titulo) override;
    foundation::Respuesta Preguntar(const QString& texto, foundation::Botones botones,
                                    foundation::Icono icono, const QString& titulo) override;
    std::optional<QString> PedirTexto(const QString& texto, const QString& titulo) override;
    void Progreso(const QString& texto) override;
    void Ocupado(bool /*ocupado*/) override {}
    void ProcesarEventos() override {}

private:
    Respuestas respuestas_;
};

/// A data-access object with its log and connection, for one command.
struct Sesion {
    std::unique_ptr<DialogosConsola> dialogos;
    std::unique_ptr<foundation::ClsBitacora> bitacora;
    std::unique_ptr<foundation::ClsAdo> ado;
};

/// Opens the connection of SERVIDOR BASE. The log is `bitacora`, or none when that is empty. The
/// pointer is empty after telling why it could not be opened.
std::unique_ptr<Sesion> AbrirSesion(const Argumentos& argumentos, const Entorno& entorno,
                                    foundation::SiFalta si_falta, const QString& bitacora,
                                    Respuestas respuestas = {});

/// A failure for people: what the database said and its number.
QString TextoDeFallo(const data::FalloSql& fallo);

}  // namespace quimo::app
