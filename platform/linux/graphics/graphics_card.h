// SPDX-License-Identifier: MIT
// One graphics card: whether it may be read, its figures and its name.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/accelerators.h"
#include "platform/linux/graphics/gpu_source.h"
#include "platform/linux/graphics/runtime_power.h"

namespace tarnwick::platform {

/// The devices of the DRM cards below `root`, in the order of their numbers. Graphics processors of
/// NVIDIA's driver without a DRM card follow, in the order of their places on the bus. Wakes no
/// card.
std::vector<GraphicsDevice> findGraphicsDevices(const std::string& root);

/// A sleeping card is never touched and gives no statistics. An idle card that could sleep is left
/// alone until it has had time to fall asleep, or until somebody uses it; its last figure is valid
/// meanwhile. Reading it at every tick would keep it awake for ever. One thread at a time.
class GraphicsCard {
 public:
    /// `root` is the root of the tree; `source` is null for drivers that report nothing.
    GraphicsCard(std::string root, GraphicsDevice device, std::unique_ptr<GpuSource> source);

    const GraphicsDevice& device() const { return device_; }
    bool hasSource() const { return source_ != nullptr; }
    /// Whether the card is asked only while it is awake.
    bool maySleep() const { return source_ && source_->touchesCard(); }

    /// The known properties among "model", "gpu-core-count" and "PerformanceStatistics" at `now`,
    /// in seconds of a clock that stands still while the machine sleeps.
    PropertyDictionary properties(double now);

 private:
    /// A time in which the card is left alone.
    struct Rest {
        double from;
        double until;
        /// Milliseconds that the card had been awake.
        std::optional<std::uint64_t> awake;
    };

    std::optional<GpuUtilization> utilization(double now);
    std::optional<GpuUtilization> readSource(double now);
    /// Whether the rest has lasted long enough, or somebody else uses the card.
    bool isOver(const Rest& rest, double now);
    /// Asked once, when the card has first given a figure.
    void lookUpName();

    const std::string root_;
    const GraphicsDevice device_;
    const std::unique_ptr<GpuSource> source_;
    RuntimePower power_;

    std::optional<GpuUtilization> last_;
    std::optional<Rest> rest_;
    std::optional<std::string> modelName_;
    std::optional<std::int64_t> coreCount_;
};

}  // namespace tarnwick::platform
