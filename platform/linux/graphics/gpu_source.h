// Where the utilisation of one graphics card comes from.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tarnwick::platform {

/// Percentages 0...100.
struct GpuUtilization {
    double device = 0;
    /// Absent where the driver does not tell it apart.
    std::optional<double> renderer{};

    bool operator==(const GpuUtilization&) const = default;
};

/// Asked only while the card is awake. One thread at a time.
class GpuSource {
 public:
    virtual ~GpuSource() = default;

    /// The utilisation at `now`, in seconds of a clock that stands still while the machine sleeps.
    /// Absent if the driver cannot tell.
    virtual std::optional<GpuUtilization> read(double now) = 0;

    /// The model's name from the driver; empty if it has none. Requires: a successful read()
    /// before.
    virtual std::string modelName() { return {}; }
    /// Number of cores; absent if the driver does not tell. Requires: a successful read() before.
    virtual std::optional<std::int64_t> coreCount() { return std::nullopt; }

    /// The card will not be read for a while: releases resources that could keep it awake.
    virtual void rest() {}
    /// The card sleeps: drops earlier samples, because they do not apply after the sleep.
    virtual void forget() { rest(); }
};

}  // namespace tarnwick::platform
