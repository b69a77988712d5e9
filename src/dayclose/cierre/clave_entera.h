#pragma once

#include <cstddef>

#include <QtGlobal>

namespace quimo::dayclose {

/// A row's key of one or two whole numbers as one number, the first of them in its upper half.
constexpr quint64 UnirClave(qint64 primera, qint64 segunda) {
    constexpr int kBits = 32;
    return static_cast<quint64>(primera) << kBits | static_cast<quint32>(segunda);
}

/// The first (0) or second (1) number of such a key.
constexpr qint32 ParteDeClave(quint64 clave, std::size_t cual) {
    constexpr int kBits = 32;
    return static_cast<qint32>(static_cast<quint32>(cual == 0 ? clave >> kBits : clave));
}

}  // namespace quimo::dayclose
