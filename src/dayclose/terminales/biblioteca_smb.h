#pragma once

#include <libsmbclient.h>

namespace quimo::dayclose {

// What is used of libsmbclient, each without its prefix smbc_.
#define QUIMO_FUNCIONES_SMB(HACER)        \
    HACER(free_context)                   \
    HACER(getFunctionClose)               \
    HACER(getFunctionFstat)               \
    HACER(getFunctionOpen)                \
    HACER(getFunctionRead)                \
    HACER(getFunctionRename)              \
    HACER(getFunctionStat)                \
    HACER(getFunctionUnlink)              \
    HACER(getFunctionWrite)               \
    HACER(getOptionUserData)              \
    HACER(init_context)                   \
    HACER(new_context)                    \
    HACER(setDebug)                       \
    HACER(setFunctionAuthDataWithContext) \
    HACER(setFunctionCheckServer)         \
    HACER(setLogCallback)                 \
    HACER(setOptionNoAutoAnonymousLogin)  \
    HACER(setOptionOpenShareMode)         \
    HACER(setOptionProtocols)             \
    HACER(setOptionUseCCache)             \
    HACER(setOptionUseKerberos)           \
    HACER(setOptionUserData)              \
    HACER(setPort)                        \
    HACER(setTimeout)

/// The functions of libsmbclient. The library is loaded when a network share is first opened: with
/// all that it needs it would take most of the time in which any command of the program starts.
struct BibliotecaSmb {
#define QUIMO_DECLARAR(nombre) decltype(&::smbc_##nombre) nombre = nullptr;
    QUIMO_FUNCIONES_SMB(QUIMO_DECLARAR)
#undef QUIMO_DECLARAR

    /// Null where the library is not installed, or is too old for what is used of it.
    static const BibliotecaSmb* Cargar();
};

}  // namespace quimo::dayclose
