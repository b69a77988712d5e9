#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <span>

#include "base/check.h"

namespace quimo::demo {

/// Random numbers that are the same on every computer for the same seed (the standard library's
/// distributions are not).
class Azar {
public:
    explicit Azar(std::uint64_t semilla) : motor_(semilla) {}

    /// A whole number from `minimo` to `maximo`, both included.
    int Entre(int minimo, int maximo) {
        QUIMO_CHECK(minimo <= maximo);
        const auto ancho =
            static_cast<std::uint64_t>(static_cast<std::int64_t>(maximo) - minimo) + 1;
        return static_cast<int>(minimo + static_cast<std::int64_t>(motor_() % ancho));
    }

    /// True in the given percentage of the cases.
    bool Porciento(int porciento) { return Entre(1, 100) <= porciento; }

    /// A position of `pesos`, each as often as its weight. At least one weight is positive.
    std::size_t Pesado(std::span<const int> pesos) {
        int suma = 0;
        for (const int peso : pesos)
            suma += peso;
        int resto = Entre(1, suma);
        std::size_t posicion = 0;
        while (resto > pesos[posicion]) {
            resto -= pesos[posicion];
            ++posicion;
        }
        return posicion;
    }

    /// One element of a list that is not empty.
    template <typename Lista>
    const auto& Uno(const Lista& lista) {
        QUIMO_CHECK(!std::empty(lista));
        using Indice = decltype(std::size(lista));
        return lista[static_cast<Indice>(Entre(0, static_cast<int>(std::size(lista)) - 1))];
    }

private:
    std::mt19937_64 motor_;
};

}  // namespace quimo::demo
