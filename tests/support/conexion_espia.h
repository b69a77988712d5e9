#pragma once

#include <functional>
#include <memory>

#include <QStringList>

#include "foundation/cls_ado.h"

namespace quimo::pruebas {

/// What a connection was asked, and which of it is to fail.
struct Cinta {
    QStringList sentencias = {};
    /// A failure for a statement, instead of running it.
    std::function<std::optional<data::FalloSql>(const QString& sentencia)> falla = {};
    /// Called instead of a commit; nothing: the commit is made as always.
    std::function<std::optional<data::FalloSql>(data::SqlConnection& dentro)> al_confirmar = {};

    /// The statements that begin with one of these words, and no longer those before.
    QStringList Tomar(const QStringList& principios);
};

/// A connector whose connections keep every statement on the tape.
data::Conector ConEspia(data::Conector conector, std::shared_ptr<Cinta> cinta);

/// The failure of a connection that broke.
data::FalloSql ConexionRota();

}  // namespace quimo::pruebas
