// Utilisation of a card of the amdgpu driver.
#pragma once

#include <string>

#include "platform/linux/files/kept_file.h"
#include "platform/linux/graphics/gpu_source.h"

namespace tarnwick::platform {

/// The firmware's own figure, `gpu_busy_percent`. The compute units come from the topology of the
/// compute driver.
class AmdgpuSource final : public GpuSource {
 public:
    /// `folder` is the device's, below `root`; `slot` its place on the bus.
    AmdgpuSource(std::string root, std::string folder, std::string slot);

    std::optional<GpuUtilization> read(double now) override;
    std::string modelName() override;
    std::optional<std::int64_t> coreCount() override;

 private:
    const std::string root_;
    const std::string folder_;
    const std::string slot_;
    KeptFile busy_;
};

}  // namespace tarnwick::platform
