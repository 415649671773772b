// The calls behind the byte counters of the network interfaces.
#pragma once

#include "platform/network_interfaces.h"

namespace tarnwick::platform {

class MacInterfaceCalls final : public InterfaceCalls {
 public:
    SysctlAnswer sysctl(std::span<const std::int32_t> name, std::span<std::byte> buffer) override;
    std::optional<std::vector<InterfaceAddress>> getifaddrs() override;
    std::uint32_t if_nametoindex(const std::string& name) override;
};

}  // namespace tarnwick::platform
