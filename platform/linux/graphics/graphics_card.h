// One graphics card: whether it may be asked, what it says, what it is called.
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

/// What tells one card from another, and where its files are.
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

/// A card that sleeps is never asked anything, and gives no statistics. A card that is idle and
/// could sleep is left alone for as long as that takes, and its last figure stands meanwhile:
/// asking it at every tick would keep it awake for good. One thread at a time.
class GraphicsCard {
 public:
    /// `root` is that of the tree; `source` is null for drivers that tell nothing.
    GraphicsCard(std::string root, GraphicsDevice device, std::unique_ptr<GpuSource> source);

    const GraphicsDevice& device() const { return device_; }
    bool hasSource() const { return source_ != nullptr; }

    /// "model", "gpu-core-count" and "PerformanceStatistics" as far as they are known at a moment,
    /// seconds of a clock that stands still while the machine sleeps.
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
    /// Until then the card is left alone.
    std::optional<double> restsUntil_;
    std::optional<std::string> modelName_;
    std::optional<std::int64_t> coreCount_;
};

}  // namespace tarnwick::platform
