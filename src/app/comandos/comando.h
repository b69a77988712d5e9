#pragma once

#include <span>

#include <QHash>
#include <QString>
#include <QStringList>

#include "data/reloj.h"

namespace quimo::app {

/// Exit status of the command line program.
enum Estado : int {
    kHecho = 0,
    kFallo = 1,
    kMalUso = 2,
    kIncompleto = 4,  ///< it came to its end, but something is missing
};

/// What a command was called with: its words and its options.
struct Argumentos {
    QStringList palabras;
    QHash<QString, QStringList> opciones;  ///< a flag has an empty value

    bool Hay(const QString& opcion) const { return opciones.contains(opcion); }
    QString Opcion(const QString& opcion, const QString& si_falta = {}) const {
        return opciones.value(opcion, {si_falta}).value(0);
    }
    /// All values of an option that may be given more than once.
    QStringList Varias(const QString& opcion) const { return opciones.value(opcion); }
};

/// An option of a command. Without `valor` it is a flag.
struct DefOpcion {
    const char16_t* nombre = u"";
    const char16_t* valor = nullptr;  ///< what its value is called in the usage text
    bool repetible = false;
};

/// What commands may ask the world for.
struct Entorno {
    const data::Reloj& reloj;
};

/// One command of quimoctl.
struct DefComando {
    const char16_t* nombre = u"";
    const char16_t* palabras = u"";  ///< as the usage text shows them
    int palabras_min = 0;
    int palabras_max = 0;
    std::span<const DefOpcion> opciones = {};
    const char16_t* descripcion = u"";
    Estado (*ejecutar)(const Argumentos&, const Entorno&) = nullptr;
};

/// All commands, in the order of the usage text.
std::span<const DefComando> Comandos();

Estado ComandoCrear(const Argumentos& argumentos, const Entorno& entorno);
Estado ComandoSql(const Argumentos& argumentos, const Entorno& entorno);
Estado ComandoCerrar(const Argumentos& argumentos, const Entorno& entorno);
Estado ComandoPlantilla(const Argumentos& argumentos, const Entorno& entorno);
Estado ComandoMdb(const Argumentos& argumentos, const Entorno& entorno);
Estado ComandoClave(const Argumentos& argumentos, const Entorno& entorno);
Estado ComandoUsuario(const Argumentos& argumentos, const Entorno& entorno);
Estado ComandoRevisarBase(const Argumentos& argumentos, const Entorno& entorno);
Estado ComandoDemo(const Argumentos& argumentos, const Entorno& entorno);

/// Finds the command, reads its words and options and runs it.
Estado EjecutarComando(const QStringList& argumentos, const Entorno& entorno);

}  // namespace quimo::app
