// SPDX-License-Identifier: MIT
#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/linux/files/kept_file.h"
#include "platform/linux/graphics/gpu_source.h"

namespace tarnwick::platform {

namespace {

class AmdgpuSource final : public GpuSource {
 public:
    AmdgpuSource(std::string root, const GraphicsDevice& device)
        : root_(std::move(root)),
          folder_(device.folder),
          slot_(device.identity.slot),
          metrics_(folder_ + "/gpu_metrics"),
          busy_(folder_ + "/gpu_busy_percent", 64) {}

    std::optional<GpuUtilization> read(double) override {
        std::optional<double> busy = parseAverageActivity(metrics_.read().value_or(""));
        if (!busy) {
            busy = parsePercentage(busy_.read().value_or(""));
        }
        return busy ? std::optional(GpuUtilization{.device = *busy}) : std::nullopt;
    }

    std::string modelName() override {
        return std::string(firstLineOf(readWholeFile(folder_ + "/product_name").value_or("")));
    }

    std::optional<std::int64_t> coreCount() override {
        const std::optional<std::uint32_t> location = locationOfSlot(slot_);
        if (!location) {
            return std::nullopt;
        }
        std::error_code error;
        std::filesystem::directory_iterator node(
            belowRoot(root_, "sys/class/kfd/kfd/topology/nodes"), error);
        for (; !error && node != std::filesystem::directory_iterator(); node.increment(error)) {
            const std::string properties =
                readWholeFile((node->path() / "properties").native()).value_or("");
            const std::uint64_t units = parseNamedCount(properties, "simd_count").value_or(0);
            const std::uint64_t perCore = parseNamedCount(properties, "simd_per_cu").value_or(0);
            // Nodes without units are processors.
            if (units > 0 && units < 1U << 20 && perCore > 0 &&
                parseNamedCount(properties, "location_id") == *location &&
                parseNamedCount(properties, "domain").value_or(0) == domainOfSlot(slot_)) {
                return static_cast<std::int64_t>(units / perCore);
            }
        }
        return std::nullopt;
    }

 private:
    const std::string root_;
    const std::string folder_;
    const std::string slot_;
    KeptFile metrics_;
    KeptFile busy_;
};

}  // namespace

std::unique_ptr<GpuSource> makeAmdgpuSource(std::string root, const GraphicsDevice& device) {
    return std::make_unique<AmdgpuSource>(std::move(root), device);
}

}  // namespace tarnwick::platform
