// One graphics card: whether it may be read, its figures and its name.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/accelerators.h"
#include "platform/linux/graphics/gpu_source.h"
#include "platform/linux/graphics/graphics_files.h"
#include "platform/linux/graphics/runtime_power.h"

namespace tarnwick::platform {

/// Identity of a card, and the places of its files.
struct GraphicsDevice {
    /// The device's folder.
    std::string folder;
    /// The DRM device's folder; empty where there is none.
    std::string card{};
    /// The folders of the connectors for screens.
    std::vector<std::string> connectors{};
    GraphicsIdentity identity{};

    bool operator==(const GraphicsDevice&) const = default;
};

/// A sleeping card is never read and gives no statistics. An idle card that could sleep is left
/// alone until it has had time to fall asleep; its last figure is valid meanwhile. Reading it at
/// every tick would keep it awake for ever. One thread at a time.
class GraphicsCard {
 public:
    /// `root` is the root of the tree; `source` is null for drivers that report nothing.
    GraphicsCard(std::string root, GraphicsDevice device, std::unique_ptr<GpuSource> source);

    const GraphicsDevice& device() const { return device_; }
    bool hasSource() const { return source_ != nullptr; }

    /// The known properties among "model", "gpu-core-count" and "PerformanceStatistics" at `now`,
    /// in seconds of a clock that stands still while the machine sleeps.
    PropertyDictionary properties(double now);

 private:
    std::optional<GpuUtilization> utilization(double now);
    /// Asked once, when the card has first given a figure.
    void lookUpName();

    const std::string root_;
    const GraphicsDevice device_;
    const std::unique_ptr<GpuSource> source_;
    RuntimePower power_;

    std::optional<GpuUtilization> last_;
    /// The card is not read before this time.
    std::optional<double> restsUntil_;
    std::optional<std::string> modelName_;
    std::optional<std::int64_t> coreCount_;
};

}  // namespace tarnwick::platform
