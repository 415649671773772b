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
    /// `sinceBoot` gives the time in seconds by which the age of readings is judged.
    explicit LinuxProcessInfo(std::string root = "/",
                              std::function<double()> sinceBoot = sinceBootSeconds);

    std::int64_t activeProcessorCount() override;
    /// The hottest of the zones that are enabled and have trip points, judged by its own; of
    /// equally hot ones the worst. Nominal where there is none. The answer holds for two seconds,
    /// and zones with their trip points are looked for again every minute.
    std::int64_t thermalState() override;

 private:
    struct Zone {
        KeptFile temperature;
        KeptFile mode;
        TripPoints trips;
    };

    void findZones();
    std::int64_t readThermalState();

    const std::string root_;
    const std::function<double()> sinceBoot_;
    OnlineProcessors onlineProcessors_;

    // Main thread only.
    std::vector<Zone> zones_;
    std::optional<double> zonesFoundAt_;
    std::optional<double> stateReadAt_;
    std::int64_t state_ = 0;
};

}  // namespace tarnwick::platform
