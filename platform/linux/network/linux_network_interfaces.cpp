#include "platform/linux/network/linux_network_interfaces.h"

#include <utility>

#include "platform/linux/network/interface_addresses.h"
#include "platform/linux/network/link_statistics.h"
#include "platform/linux/network/recorded_interfaces.h"

namespace tarnwick::platform {

namespace {

LinuxNetworkInterfaces::Sources sourcesOf(const std::string& root) {
    LinuxNetworkInterfaces::Sources sources;
    if (root == "/") {
        sources.push_back(std::make_unique<LinkStatistics>());
        sources.push_back(std::make_unique<InterfaceAddresses>());
    } else {
        sources.push_back(std::make_unique<RecordedInterfaces>(root));
    }
    return sources;
}

}  // namespace

LinuxNetworkInterfaces::LinuxNetworkInterfaces(const std::string& root)
    : LinuxNetworkInterfaces(sourcesOf(root)) {}

LinuxNetworkInterfaces::LinuxNetworkInterfaces(Sources sources) : sources_(std::move(sources)) {}

std::optional<InterfaceTable> LinuxNetworkInterfaces::interfaceCounters() {
    const std::lock_guard guard(lock_);
    for (const auto& source : sources_) {
        if (auto interfaces = source->interfaceCounters()) {
            return interfaces;
        }
    }
    return std::nullopt;
}

}  // namespace tarnwick::platform
