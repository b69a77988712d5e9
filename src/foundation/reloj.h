#pragma once

#include <QDateTime>

namespace quimo::foundation {

/// The clock as a port, so that everything that depends on today can be tested.
class Reloj {
public:
    Reloj() = default;
    Reloj(const Reloj&) = delete;
    Reloj& operator=(const Reloj&) = delete;
    virtual ~Reloj() = default;

    /// Local date and time of the restaurant, marked as UTC: it is a wall-clock reading without a
    /// zone, so that no hour is missing when the clocks change.
    virtual QDateTime Ahora() const = 0;
};

/// The computer's own clock.
class RelojSistema final : public Reloj {
public:
    QDateTime Ahora() const override {
        const QDateTime local = QDateTime::currentDateTime();
        return {local.date(), local.time(), Qt::UTC};
    }
};

}  // namespace quimo::foundation
