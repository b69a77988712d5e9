#pragma once

#include <algorithm>
#include <ctime>

#include <QDateTime>

namespace quimo::data {

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

/// The computer's own clock, in the time zone that it had when the program began.
class RelojSistema final : public Reloj {
public:
    QDateTime Ahora() const override {
        // Not by QDateTime, which asks the file system for the zone at every reading.
        const qint64 ahora_ms = QDateTime::currentMSecsSinceEpoch();
        const auto segundos = static_cast<std::time_t>(ahora_ms / 1000);
        std::tm local{};
        ::localtime_r(&segundos, &local);
        return {QDate(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday),
                QTime(local.tm_hour, local.tm_min, std::min(local.tm_sec, 59),
                      static_cast<int>(ahora_ms % 1000)),
                Qt::UTC};
    }
};

}  // namespace quimo::data
