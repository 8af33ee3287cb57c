// What of a film could not be read as it should: told for the first places, counted for all.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "host/report.h"

namespace clarivex {

class DamageLog {
public:
    explicit DamageLog(Report& report) : told(report) {}

    /// Counts a place; seconds from the film's first moment on, where they are known.
    void Add(std::optional<double> seconds, const std::string& what);

    uint64_t Count() const { return count; }

private:
    Report& told;
    uint64_t count = 0;
};

/// A time for messages: 0:04.200, 1:02:03.000.
std::string TimeText(double seconds);

}  // namespace clarivex
