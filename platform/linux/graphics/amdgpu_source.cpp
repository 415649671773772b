#include "platform/linux/graphics/amdgpu_source.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/linux/graphics/graphics_files.h"

namespace tarnwick::platform {

AmdgpuSource::AmdgpuSource(std::string root, std::string folder, std::string slot)
    : root_(std::move(root)),
      folder_(std::move(folder)),
      slot_(std::move(slot)),
      busy_(folder_ + "/gpu_busy_percent", 64) {}

std::optional<GpuUtilization> AmdgpuSource::read(double) {
    const std::optional<double> busy = parsePercentage(busy_.read().value_or(""));
    if (!busy) {
        return std::nullopt;
    }
    return GpuUtilization{.device = *busy};
}

std::string AmdgpuSource::modelName() {
    return std::string(firstLineOf(readWholeFile(folder_ + "/product_name").value_or("")));
}

std::optional<std::int64_t> AmdgpuSource::coreCount() {
    const std::optional<std::uint32_t> location = locationOfSlot(slot_);
    if (!location) {
        return std::nullopt;
    }
    std::error_code error;
    std::filesystem::directory_iterator node(belowRoot(root_, "sys/class/kfd/kfd/topology/nodes"),
                                             error);
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

}  // namespace tarnwick::platform
