// SPDX-License-Identifier: MIT
// Where the utilisation of one graphics card comes from.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/linux/graphics/graphics_files.h"

namespace tarnwick::platform {

class Nvml;

/// Identity of a card, and the places of its files.
struct GraphicsDevice {
    /// The device's folder.
    std::string folder;
    /// The DRM device's folder; empty where there is none.
    std::string card{};
    GraphicsIdentity identity{};

    bool operator==(const GraphicsDevice&) const = default;
};

/// Percentages 0...100.
struct GpuUtilization {
    double device = 0;
    /// Absent where the driver does not tell it apart.
    std::optional<double> renderer{};

    bool operator==(const GpuUtilization&) const = default;
};

/// How busy a card is. One thread at a time.
class GpuSource {
 public:
    virtual ~GpuSource() = default;

    /// Whether asking touches the card: it would wake it, or keep it awake. Then the card is asked
    /// only while it is awake.
    virtual bool touchesCard() const { return true; }

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

/// amdgpu: the firmware's own figure, averaged where the driver has such a one. The compute units
/// come from the topology of the compute driver. `root` is the root of the tree.
std::unique_ptr<GpuSource> makeAmdgpuSource(std::string root, const GraphicsDevice& device);

/// Any driver that tells how long the engines worked, for the whole card (v3d) or for each client:
/// i915, xe and most drivers of small machines. The use is the share of the time in which the
/// busiest class of engines worked. Absent where the work of the card's main user cannot be seen.
std::unique_ptr<GpuSource> makeEngineTimeSource(std::string root, const GraphicsDevice& device);

/// NVIDIA's driver: its management library. After a failure it waits a minute before the next
/// attempt. `slot` is the card's place on the bus. Requires: `nvml` outlives the source.
std::unique_ptr<GpuSource> makeNvidiaSource(Nvml& nvml, std::string slot);

}  // namespace tarnwick::platform
