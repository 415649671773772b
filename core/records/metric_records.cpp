// SPDX-License-Identifier: MIT
#include "core/records/metric_records.h"

#include <cstring>
#include <random>

#include "core/records/text.h"

namespace tarnwick {

UUID UUID::random() {
    thread_local std::mt19937_64 generator = [] {
        std::random_device device;
        std::seed_seq seed{device(), device(), device(), device(),
                           device(), device(), device(), device()};
        return std::mt19937_64(seed);
    }();
    UUID id;
    const std::uint64_t halves[2] = {generator(), generator()};
    std::memcpy(id.bytes.data(), halves, sizeof halves);
    id.bytes[6] = static_cast<std::uint8_t>((id.bytes[6] & 0x0F) | 0x40);
    id.bytes[8] = static_cast<std::uint8_t>((id.bytes[8] & 0x3F) | 0x80);
    return id;
}

std::string GPUInfo::displayName() const {
    std::string name{trimmed(modelName)};
    if (coreCount >= 1) {
        if (!name.empty()) {
            name += ' ';
        }
        name += std::to_string(coreCount) + "-core";
    }
    return name.empty() ? "System GPU" : name;
}

double MemoryInfo::usagePercentage() const {
    return total == 0 ? 0 : static_cast<double>(used) / static_cast<double>(total) * 100;
}

double StorageInfo::usagePercentage() const {
    return totalSpace < 1 ? 0
                          : static_cast<double>(usedSpace) / static_cast<double>(totalSpace) * 100;
}

}  // namespace tarnwick

std::size_t std::hash<tarnwick::UUID>::operator()(const tarnwick::UUID& id) const noexcept {
    std::size_t value = 0;
    std::memcpy(&value, id.bytes.data(), sizeof value);
    return value;
}
