#include "platform/linux/network/recorded_interfaces.h"

#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/linux/files/kept_file.h"
#include "platform/linux/network/proc_net_dev.h"

namespace tarnwick::platform {

RecordedInterfaces::RecordedInterfaces(std::string root) : root_(std::move(root)) {}

std::optional<InterfaceTable> RecordedInterfaces::interfaceCounters() {
    const std::string folder = belowRoot(root_, "sys/class/net/");
    std::error_code ignored;
    const auto text = readWholeFile(belowRoot(root_, "proc/net/dev"));
    const auto devices = text ? parseNetworkDevices(*text) : std::nullopt;
    if (!devices || !std::filesystem::is_directory(folder, ignored)) {
        return std::nullopt;
    }

    InterfaceTable interfaces;
    for (const NetworkDevice& device : *devices) {
        const std::string own = folder + std::string(device.name);
        const auto index = parseInterfaceIndex(readWholeFile(own + "/ifindex").value_or(""));
        const auto flags = parseInterfaceFlags(readWholeFile(own + "/flags").value_or(""));
        if (index && flags && isCounted(*flags)) {
            interfaces[*index] = {
                .received = device.received, .sent = device.sent, .uses32BitCounters = false};
        }
    }
    return interfaces;
}

}  // namespace tarnwick::platform
