// SPDX-License-Identifier: MIT
#include "services/storage_service.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>

namespace tarnwick {
namespace {

/// Stores sizes as the system reports them, bytes. Either may be unknown or nonsense.
void setSizes(StorageInfo& info, std::optional<std::int64_t> total,
              std::optional<std::int64_t> available) {
    info.totalSpace = std::max<std::int64_t>(total.value_or(0), 0);
    info.availableSpace =
        std::min(info.totalSpace, std::max<std::int64_t>(available.value_or(0), 0));
    info.usedSpace = info.totalSpace - info.availableSpace;
}

}  // namespace

StorageService::StorageService(platform::Volumes& volumes, platform::Logger logger)
    : volumes_(volumes), logger_(logger) {}

StorageInfo StorageService::readStorageInfo() {
    StorageInfo info;
    info.id = UUID::random();
    info.name = "Macintosh HD";

    const std::string home = volumes_.homeDirectoryForCurrentUser();
    const auto answer = volumes_.resourceValues(home);
    if (const auto* values = std::get_if<platform::VolumeResourceValues>(&answer)) {
        if (values->name && !values->name->empty()) {
            info.name = *values->name;
        }
        info.mountPoint = values->mountPoint.value_or("");
        // Space that the system would free when needed counts as available, if the system knows it.
        const auto& important = values->availableCapacityForImportantUsage;
        setSizes(info, values->totalCapacity, important ? important : values->availableCapacity);
        return info;
    }

    logger_.error("Failed to get storage resource values: " +
                  std::get<platform::VolumeError>(answer).localizedDescription);
    if (const auto attributes = volumes_.attributesOfFileSystemForPath(home)) {
        setSizes(info, attributes->size, attributes->freeSize);
    }
    return info;
}

}  // namespace tarnwick
