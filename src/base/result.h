#pragma once

#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>

#include "base/check.h"

namespace quimo::base {

/// What went wrong outside the program: a code for the caller, a Spanish text for the screen and a
/// detail for the log. Texts are UTF-8.
struct Error {
    enum class Codigo {
        NoEncontrado,  ///< the file, table, column or row is not there
        Formato,       ///< damaged, cut short or of another format
        NoSoportado,   ///< valid, but this program does not write or read it
        Restriccion,   ///< a unique, required or reference rule refuses the change
        Datos,         ///< a value that does not fit: too long, out of range, wrong type
        Archivo,       ///< the system refused to read or write
        DiscoLleno,    ///< no room left
        Bloqueado,     ///< somebody else holds it
        Interno,       ///< a limit of this program was reached
    };
    Codigo codigo = Codigo::Interno;
    std::string mensaje;
    std::string detalle = {};
};

/// An error of a lower layer that the error E takes by an implicit constructor: QUIMO_TRY passes it
/// on as an E.
template <typename F, typename T, typename E>
concept FalloDeOtraCapa = std::is_class_v<F> && !std::is_same_v<F, E> &&
                          std::is_convertible_v<F, E> && !std::is_convertible_v<F, T>;

/// A value of type T, or the error E that took its place. The compiler does not let it be ignored.
/// Implicit from both, so that `return value;` and `return Error{...};` read plainly.
template <typename T, typename E = Error>
class [[nodiscard]] Result {
public:
    // NOLINTNEXTLINE(google-explicit-constructor)
    Result(T valor) : contenido_(std::in_place_index<0>, std::move(valor)) {}
    // NOLINTNEXTLINE(google-explicit-constructor)
    Result(E fallo) : contenido_(std::in_place_index<1>, std::move(fallo)) {}
    template <FalloDeOtraCapa<T, E> F>
    // NOLINTNEXTLINE(google-explicit-constructor)
    Result(F fallo) : contenido_(std::in_place_index<1>, std::move(fallo)) {}

    bool has_value() const { return contenido_.index() == 0; }
    explicit operator bool() const { return has_value(); }

    /// The value. Asking for it when there is none is a mistake of ours and ends the program.
    const T& value() const& {
        QUIMO_CHECK(has_value());
        return *std::get_if<0>(&contenido_);
    }
    T& value() & {
        QUIMO_CHECK(has_value());
        return *std::get_if<0>(&contenido_);
    }
    T&& value() && {
        QUIMO_CHECK(has_value());
        return std::move(*std::get_if<0>(&contenido_));
    }
    const E& error() const& {
        QUIMO_CHECK(!has_value());
        return *std::get_if<1>(&contenido_);
    }
    E&& error() && {
        QUIMO_CHECK(!has_value());
        return std::move(*std::get_if<1>(&contenido_));
    }
    const T* operator->() const { return &value(); }
    T* operator->() { return &value(); }
    const T& operator*() const& { return value(); }
    T& operator*() & { return value(); }

private:
    std::variant<T, E> contenido_;
};

/// Success without a value, or an error.
template <typename E>
class [[nodiscard]] Result<void, E> {
public:
    Result() = default;
    // NOLINTNEXTLINE(google-explicit-constructor)
    Result(E fallo) : fallo_(std::move(fallo)) {}
    template <FalloDeOtraCapa<void, E> F>
    // NOLINTNEXTLINE(google-explicit-constructor)
    Result(F fallo) : fallo_(E(std::move(fallo))) {}

    bool has_value() const { return !fallo_.has_value(); }
    explicit operator bool() const { return has_value(); }
    const E& error() const& {
        QUIMO_CHECK(fallo_.has_value());
        return *fallo_;
    }
    E&& error() && {
        QUIMO_CHECK(fallo_.has_value());
        return std::move(*fallo_);
    }
    /// Lets QUIMO_TRY treat both kinds alike.
    void value() const { QUIMO_CHECK(has_value()); }

private:
    std::optional<E> fallo_;
};

}  // namespace quimo::base

#define QUIMO_UNIR_(a, b) a##b
#define QUIMO_UNIR(a, b) QUIMO_UNIR_(a, b)

/// QUIMO_TRY(const Filas filas, Leer()); declares filas, or returns Leer()'s error to the caller.
#define QUIMO_TRY(declaracion, ...)                                 \
    auto QUIMO_UNIR(resultado_, __LINE__) = (__VA_ARGS__);          \
    if (!QUIMO_UNIR(resultado_, __LINE__))                          \
        return std::move(QUIMO_UNIR(resultado_, __LINE__)).error(); \
    declaracion = std::move(QUIMO_UNIR(resultado_, __LINE__)).value()

/// QUIMO_TRY_VOID(Escribir()); returns Escribir()'s error to the caller, if there is one.
#define QUIMO_TRY_VOID(...)                                                  \
    do {                                                                     \
        auto resultado_interno = (__VA_ARGS__);                              \
        if (!resultado_interno) return std::move(resultado_interno).error(); \
    } while (false)
