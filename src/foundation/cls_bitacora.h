#pragma once

#include <memory>
#include <optional>
#include <span>

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QVariant>
#include <QVector>

#include "data/reloj.h"
#include "foundation/dialogos.h"

namespace quimo::foundation {

/// How the operation log is initialised. What is not given takes its default.
struct OpcionesBitacora {
    /// Log file; by default QUIMO.log in the installation folder.
    std::optional<QString> PArchivoLog = {};
    QString PSistema = QStringLiteral("QUIMO");
    QString PPrograma = QStringLiteral("QUIMO");
    /// By default the program's own version.
    std::optional<QString> PVersion = {};
    /// By default the operating-system user of the session.
    std::optional<QString> PUsuario = {};
    bool PCrearArchivo = true;  ///< make the file when it is missing
    bool Parchivo = true;       ///< append every entry to the file
    bool PMsgBox = true;        ///< show every entry in a plain message box
    bool PDebug = true;
    QString PUsuarioApp = QStringLiteral("Desconocido");
};

/// The operating-system user of this session.
QString UsuarioDelSistema();

/// The operation log: one line per event, appended to a text file. Also the upkeep of log files.
/// A file that cannot be written is told to the user once, not at every entry.
class ClsBitacora {
public:
    /// Writes the entry "Iniciando", "...Log Iniciado...". The ports must outlive the log.
    ClsBitacora(const OpcionesBitacora& opciones, Dialogos& dialogos, const data::Reloj& reloj);

    /// Appends one line: date and time, program, version, both users and the parts, each part
    /// followed by a tab. Line breaks inside a part become blanks, so that one event stays one
    /// line.
    void Escribir(const QVector<QVariant>& partes) { EscribirLineas(Linea(partes)); }
    /// The line, with its end, that Escribir would append now: for events of which it is not known
    /// yet whether they will have happened.
    QByteArray Linea(const QVector<QVariant>& partes) const;
    /// Appends the line of parts that are texts already to others, behind its `principio`.
    static void AgregarLinea(QByteArray& lineas, const QByteArray& principio,
                             std::span<const QStringView> partes);
    /// What a line of now begins with: date, time, program and users.
    const QByteArray& Principio() const;
    /// Appends lines that Linea made, in one opening of the file.
    void EscribirLineas(const QByteArray& lineas);

    /// Who is working from now on; stands in every later line.
    void PonerUsuarioApp(const QString& usuario) {
        usuario_app_ = usuario;
        principio_.clear();
    }
    const QString& Archivo() const { return archivo_; }

    /// Copies a log file; false after telling why not.
    bool CopiarLog(const QString& origen, const QString& destino);
    /// Gives a log file another name in its folder; false after telling why not.
    bool RenombrarLog(const QString& origen, const QString& nombre_nuevo);
    /// True when the log file exists; otherwise tells so.
    bool LocalizarLog(const QString& archivo);

    /// Opens the dated log file for appending, under `raiz` (the "current drive"), after making
    /// sure of the folder \norsa\log\. Empty after telling why not.
    std::unique_ptr<QFile> AbrirFechado(const QString& raiz,
                                        const QString& texto_base = QStringLiteral("/QuimoComTra"));

private:
    enum class Traslado { Copiar, Mover };
    bool Trasladar(const QString& origen, const QString& destino, Traslado traslado);
    void Anexar(const QByteArray& lineas);

    Dialogos& dialogos_;
    const data::Reloj& reloj_;
    QString archivo_;
    QString programa_;
    QString version_;
    QString usuario_;
    QString usuario_app_;
    bool crear_;
    bool a_archivo_;
    bool a_mensaje_;
    bool fallo_avisado_ = false;
    mutable QByteArray principio_;  ///< of every line of the second below; empty: to be made
    mutable qint64 segundo_del_principio_ = 0;
};

}  // namespace quimo::foundation
