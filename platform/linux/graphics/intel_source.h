// Utilisation of a card of the i915 or xe driver.
#pragma once

#include <string>
#include <vector>

#include "platform/linux/files/kept_file.h"
#include "platform/linux/graphics/gpu_source.h"
#include "platform/linux/graphics/idle_residency.h"

namespace tarnwick::platform {

/// The share of time that the card's engines were powered, from the drivers' counters of the time
/// asleep. It is never below the work that was done; engines stay awake a little longer than they
/// work. Per-client counters would be exact, but only for the processes that one may look into,
/// and finding those costs more than everything else together.
class IntelSource final : public GpuSource {
 public:
    /// `card` is the folder of the DRM device.
    explicit IntelSource(const std::string& card);

    /// False where the driver has no counter that counts.
    bool isUsable() const { return !groups_.empty(); }

    /// The most awake of the card's engine groups is the device, the first group the renderer.
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
