// SPDX-License-Identifier: MIT
// Any text as one of the kernel's files with a single figure.
#include <cstdint>
#include <string_view>

#include "fuzz/fuzzer.h"
#include "platform/linux/kernel/online_processors.h"
#include "platform/linux/kernel/proc_uptime.h"
#include "platform/linux/power/thermal_zone.h"

using tarnwick::fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto count = tarnwick::platform::parseProcessorList(text);
    require(!count || (*count >= 1 && *count <= 1 << 20));

    const auto uptime = tarnwick::platform::parseUptime(text);
    require(!uptime || (*uptime >= 0 && *uptime <= 1e12));

    const auto temperature = tarnwick::platform::parseTemperature(text);
    require(!temperature || (*temperature >= 1'000 && *temperature < 150'000));
    if (temperature) {
        tarnwick::platform::TripPoints trips;
        trips.add("passive", 60'000);
        trips.add("hot", 80'000);
        trips.add("critical", 100'000);
        const std::int64_t state = tarnwick::platform::thermalStateAt(*temperature, trips);
        require(state ==
                (*temperature >= 60'000) + (*temperature >= 80'000) + (*temperature >= 100'000));
    }
    return 0;
}
