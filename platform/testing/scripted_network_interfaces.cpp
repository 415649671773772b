// SPDX-License-Identifier: MIT
#include "platform/testing/scripted_network_interfaces.h"

#include <algorithm>

namespace tarnwick::platform::testing {

std::optional<InterfaceTable> ScriptedNetworkInterfaces::interfaceCounters() {
    calls_.add("interfaceCounters");
    return answers.interfaceCounters.take();
}

std::vector<std::int32_t> ScriptedInterfaceCalls::sysctlName() const {
    const std::lock_guard guard(lock_);
    return sysctlName_;
}

SysctlAnswer ScriptedInterfaceCalls::sysctl(std::span<const std::int32_t> name,
                                            std::span<std::byte> buffer) {
    {
        const std::lock_guard guard(lock_);
        sysctlName_.assign(name.begin(), name.end());
    }
    if (buffer.empty()) {
        calls_.add("sysctl size");
        return answers.sysctlSize.take();
    }
    calls_.add("sysctl " + std::to_string(buffer.size()));
    const List list = answers.sysctlList.take();
    const std::size_t size = std::min(list.bytes.size(), buffer.size());
    std::copy_n(list.bytes.begin(), size, buffer.begin());
    return {.error = list.error, .size = size};
}

std::optional<std::vector<InterfaceAddress>> ScriptedInterfaceCalls::getifaddrs() {
    calls_.add("getifaddrs");
    return answers.getifaddrs.take();
}

std::uint32_t ScriptedInterfaceCalls::if_nametoindex(const std::string& name) {
    calls_.add("if_nametoindex " + name);
    return answers.if_nametoindex.take();
}

}  // namespace tarnwick::platform::testing
