#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "demo/azar.h"

namespace quimo::demo {

/// What every day of a terminal shows at least once.
enum class Rasgo {
    Paquete,
    Promocion,
    Modificador,
    Comentario,
    Cortesia,
    Anulacion,
    CuentaDividida,
    PagoMixto,
    PropinaNula,
    SinPropina,
};

constexpr std::size_t kRasgos = static_cast<std::size_t>(Rasgo::SinPropina) + 1;

/// Chance with a memory: a trait that has not come up by itself comes up once one insists.
class Suerte {
public:
    explicit Suerte(std::uint64_t semilla) : azar_(semilla) {}

    Azar& Dado() { return azar_; }
    /// From now on a trait that was never seen is seen at the first occasion.
    void Insistir() { insistir_ = true; }
    /// Whether the trait comes up on this occasion.
    bool Toca(Rasgo rasgo, int porciento) {
        bool& visto = vistos_[static_cast<std::size_t>(rasgo)];
        const bool toca = azar_.Porciento(porciento) || (insistir_ && !visto);
        visto = visto || toca;
        return toca;
    }

private:
    Azar azar_;
    bool insistir_ = false;
    std::array<bool, kRasgos> vistos_{};
};

}  // namespace quimo::demo
