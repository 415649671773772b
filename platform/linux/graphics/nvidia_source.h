// Utilisation of a card of NVIDIA's driver.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/linux/graphics/gpu_source.h"
#include "platform/linux/graphics/nvml.h"

namespace tarnwick::platform {

/// Asks NVIDIA's management library. After a failure the card is asked again after a minute.
class NvidiaSource final : public GpuSource {
 public:
    /// `nvml` must outlive the source; `slot` is the card's place on the bus.
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
