// Utilisation of a card of NVIDIA's driver.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/linux/graphics/gpu_source.h"
#include "platform/linux/graphics/nvml.h"

namespace tarnwick::platform {

/// Reads from NVIDIA's management library. After a failure it waits a minute before the next
/// attempt.
class NvidiaSource final : public GpuSource {
 public:
    /// `slot` is the card's place on the bus. Requires: `nvml` outlives the source.
    NvidiaSource(Nvml& nvml, std::string slot);

    std::optional<GpuUtilization> read(double now) override;
    std::string modelName() override;
    std::optional<std::int64_t> coreCount() override;
    void rest() override { session_.reset(); }

 private:
    Nvml& nvml_;
    const std::string slot_;
    std::unique_ptr<Nvml::Session> session_;
    std::optional<double> failedAt_;
};

}  // namespace tarnwick::platform
