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

    /// The utilisation at a moment, seconds of a clock that stands still while the machine sleeps.
    /// Absent where the driver cannot tell.
    virtual std::optional<GpuUtilization> read(double now) = 0;

    /// The model in the driver's own words; empty where it has none. Asked after a successful read.
    virtual std::string modelName() { return {}; }
    /// Absent where the driver does not tell. Asked after a successful read.
    virtual std::optional<std::int64_t> coreCount() { return std::nullopt; }

    /// The card is left alone for a while: lets go of what could keep it awake.
    virtual void rest() {}
    /// The card sleeps: what was measured before says nothing about what comes after.
    virtual void forget() { rest(); }
};

}  // namespace tarnwick::platform
