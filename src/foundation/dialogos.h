#pragma once

#include <optional>

#include <QString>
#include <QVector>

namespace quimo::foundation {

enum class Icono { Ninguno, Informacion, Exclamacion, Critico, Pregunta };
enum class Botones {
    Aceptar,
    AceptarCancelar,
    SiNo,
    SiNoCancelar,
    AbortarReintentarIgnorar,
    TerminarApartar,  ///< leave the work here, or set aside what it is about and go on
};
enum class Respuesta { Aceptar, Cancelar, Si, No, Abortar, Reintentar, Ignorar, Terminar, Apartar };

/// What an answer is called on its button.
QString NombreDeRespuesta(Respuesta respuesta);
/// The answers that a set of buttons offers, in their order.
QVector<Respuesta> RespuestasDe(Botones botones);

/// Everything the program has to say to its user or ask them, and the moments in which a window may
/// be redrawn. The only way to the user below ui/: windows there, an answer policy in quimoctl, a
/// script in tests.
class Dialogos {
public:
    Dialogos() = default;
    Dialogos(const Dialogos&) = delete;
    Dialogos& operator=(const Dialogos&) = delete;
    virtual ~Dialogos() = default;

    /// Shows a message with one button and waits until it was read. An empty title is the
    /// program's name.
    virtual void Avisar(const QString& texto, Icono icono, const QString& titulo) = 0;
    void Avisar(const QString& texto, Icono icono) { Avisar(texto, icono, QString()); }

    /// Asks, and returns one of the answers that the buttons offer.
    virtual Respuesta Preguntar(const QString& texto, Botones botones, Icono icono,
                                const QString& titulo) = 0;
    Respuesta Preguntar(const QString& texto, Botones botones, Icono icono) {
        return Preguntar(texto, botones, icono, QString());
    }

    /// Asks for one line of text; nothing when the user cancels.
    virtual std::optional<QString> PedirTexto(const QString& texto, const QString& titulo) = 0;

    /// Tells what is being done now. It is not kept on the screen: what must be read is a message.
    virtual void Progreso(const QString& texto) = 0;

    /// Shows or takes away the busy pointer. Calls nest.
    virtual void Ocupado(bool ocupado) = 0;

    /// Lets pending events of the user interface run.
    virtual void ProcesarEventos() = 0;
};

/// The busy pointer for as long as it lives.
class PunteroOcupado {
public:
    explicit PunteroOcupado(Dialogos& dialogos) : dialogos_(dialogos) { dialogos_.Ocupado(true); }
    PunteroOcupado(const PunteroOcupado&) = delete;
    PunteroOcupado& operator=(const PunteroOcupado&) = delete;
    ~PunteroOcupado() { dialogos_.Ocupado(false); }

private:
    Dialogos& dialogos_;
};

}  // namespace quimo::foundation
