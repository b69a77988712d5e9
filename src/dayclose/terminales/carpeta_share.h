#pragma once

#include "dayclose/terminales/terminal_share.h"

namespace quimo::dayclose {

/// Shares that the system has mounted or mapped: "\\NAME\rest" is `raiz`/NAME/rest. Names compare
/// without regard to case, as on the terminals.
class CarpetaShare final : public TerminalShare {
public:
    explicit CarpetaShare(QString raiz) : raiz_(std::move(raiz)) {}

    ResultadoArchivo<bool> Existe(const QString& remoto) override;
    ResultadoArchivo<Copiado> Traer(const QString& remoto, const QString& local) override;
    ResultadoArchivo<void> Llevar(const QString& local, const QString& remoto,
                                  const QString& esperado) override;

private:
    struct Lugar {
        QString carpeta;
        QString archivo;  ///< the whole path; the file itself may be missing
        bool carpeta_existe = false;
    };
    /// 52 for a bad name or a computer that is not there, 76 for a share that is not there.
    ResultadoArchivo<Lugar> Ubicar(const QString& remoto) const;

    QString raiz_;
};

}  // namespace quimo::dayclose
