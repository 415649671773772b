// SPDX-License-Identifier: MIT
// Processors and heat of the machine.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/files/kept_file.h"
#include "platform/linux/kernel/clocks.h"
#include "platform/linux/kernel/online_processors.h"
#include "platform/linux/power/thermal_zone.h"
#include "platform/process_info.h"

namespace tarnwick::platform {

/// Reads the tree below a root.
class LinuxProcessInfo final : public ProcessInfo {
 public:
    /// `sinceBoot` returns the time in seconds; the age of readings is measured with it.
    explicit LinuxProcessInfo(std::string root = "/",
                              std::function<double()> sinceBoot = sinceBootSeconds);

    std::int64_t activeProcessorCount() override;
    /// The state of the hottest zone by its own trip points; if several zones are equally hot, the
    /// worst of their states. Only enabled zones with trip points and a believable temperature
    /// count; unknown if there is none. Zones and trip points are searched again every minute.
    std::int64_t thermalState() override;

 private:
    struct Zone {
        KeptFile temperature;
        KeptFile mode;
        TripPoints trips;
    };

    void findZones();

    const std::string root_;
    const std::function<double()> sinceBoot_;
    OnlineProcessors onlineProcessors_;

    std::vector<Zone> zones_;
    std::optional<double> zonesFoundAt_;
};

}  // namespace tarnwick::platform
