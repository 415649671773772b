// Utilisation of a card of the i915 or xe driver.
#pragma once

#include <string>
#include <vector>

#include "platform/linux/files/kept_file.h"
#include "platform/linux/graphics/gpu_source.h"
#include "platform/linux/graphics/idle_residency.h"

namespace tarnwick::platform {

/// The share of time that the card's engines were powered, from the drivers' counters of sleep
/// time. It is never below the real work, because engines stay awake a little longer than they
/// work. Per-client counters would be exact, but only for processes that this user may inspect, and
/// finding those costs more than everything else together.
class IntelSource final : public GpuSource {
 public:
    /// `card` is the folder of the DRM device.
    explicit IntelSource(const std::string& card);

    /// False if the driver has no working counter.
    bool isUsable() const { return !groups_.empty(); }

    /// `device` is the busiest engine group of the card, `renderer` the first one.
    std::optional<GpuUtilization> read(double now) override;
    void rest() override {}
    void forget() override;

 private:
    /// A group of engines that goes to sleep as a whole: the first one renders, a second one is for
    /// media.
    struct EngineGroup {
        KeptFile idle;
        IdleResidency residency;
    };

    void add(const std::string& counter);

    std::vector<EngineGroup> groups_;
};

}  // namespace tarnwick::platform
