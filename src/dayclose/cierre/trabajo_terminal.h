#pragma once

#include "dayclose/cierre/comparacion_terminal.h"
#include "dayclose/cierre/contexto_cierre.h"

namespace quimo::dayclose {

/// What bringing a terminal's file in came to.
struct ResumenTraida {
    QString terminal;
    QString archivo;          ///< its place in the archive
    QStringList fechas;       ///< working dates of its orders, ddmmyyyy
    ValoresCifras cifras;     ///< what the file holds
    Comparacion comparacion;  ///< what was there before
    QVector<TablaCopiada> copiadas;
    bool quedan_distintas = false;  ///< central rows that differ were left as they are
};

/// What is done with one terminal outside of a close: its sales are brought in afterwards, or its
/// database is sent again. Never while a close runs or waits to be gone on with.
class TrabajoTerminal {
public:
    enum class Desenlace { Hecho, Incompleto, ConError, Detenido, SinEmpezar };

    /// As FinDeDia.
    TrabajoTerminal(foundation::ClsAdo& ado, TerminalShare& share, const data::Reloj& reloj,
                    const QString& carpeta, OpcionesCierre opciones = {});

    /// Copies the sales of an archived or found file into the central tables, each for its own
    /// date. Rows that are there with the same content are passed over; those that really differ
    /// are asked about. The file itself is kept in the archive.
    Desenlace Traer(const QString& archivo, const QString& terminal);
    /// Builds a terminal's new database and sends it. What lies there is kept in the archive, and
    /// sales in it that the central tables lack are brought in first.
    Desenlace Enviar(const QString& terminal);

    /// Of the file that was brought in last, if any.
    const std::optional<ResumenTraida>& Traida() const { return traida_; }
    const QStringList& Avisos() const { return contexto_.resumen.avisos; }

private:
    ResultadoCierre<Terminal> Preparar(const QString& terminal);
    ResultadoCierre<void> CorrerTraer(const QString& archivo, const QString& terminal);
    ResultadoCierre<void> CorrerEnviar(const QString& terminal);
    ResultadoCierre<bool> EnviarUnaVez(const Terminal& terminal);
    ResultadoCierre<void> Incorporar(const Terminal& terminal, const QString& ruta);
    ResultadoCierre<void> Revisar(const Terminal& terminal, const QString& ruta,
                                  const QString& fecha);
    ResultadoCierre<OpcionesCopia> Decidir(const Terminal& terminal, const Comparacion& comparacion,
                                           const QString& fecha);
    ResultadoCierre<void> Copiar(const Terminal& terminal, const BaseTerminal& base,
                                 const OpcionesCopia& opciones);
    Desenlace Contar(ResultadoCierre<void> hecho);

    ContextoCierre contexto_;
    std::optional<ResumenTraida> traida_;
};

}  // namespace quimo::dayclose
