// SPDX-License-Identifier: MIT
// Capacity of the volume that holds the user's home directory.
#pragma once

#include "core/records/metric_records.h"
#include "platform/log.h"
#include "platform/volumes.h"

namespace tarnwick {

/// Keeps nothing between calls. Any thread.
class StorageService {
 public:
    explicit StorageService(platform::Volumes& volumes,
                            platform::Logger logger = platform::Logger());

    /// Never fails: without any source the record is named "Macintosh HD" with all sizes 0. Every
    /// record has an identity of its own. Whatever the system reports, the available space never
    /// exceeds the total, and no size is negative.
    StorageInfo readStorageInfo();

 private:
    platform::Volumes& volumes_;
    platform::Logger logger_;
};

}  // namespace tarnwick
