// SPDX-License-Identifier: MIT
// Network interfaces with answers from a test.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/network_interfaces.h"
#include "platform/testing/answers.h"

namespace tarnwick::platform::testing {

/// Until a test says otherwise no source works. Any thread.
class ScriptedNetworkInterfaces final : public NetworkInterfaces {
 public:
    /// One member for each operation.
    struct {
        Answers<std::optional<InterfaceTable>> interfaceCounters{std::nullopt};
    } answers;

    /// Names of the operations called since the start or the last clearCalls(), in order.
    std::vector<std::string> calls() const { return calls_.all(); }
    void clearCalls() { calls_.clear(); }

    std::optional<InterfaceTable> interfaceCounters() override;
    bool mayHang() const override { return hangs; }

    std::atomic<bool> hangs = false;

 private:
    CallRecord calls_;
};

/// Until a test says otherwise every operation fails. Any thread.
class ScriptedInterfaceCalls final : public InterfaceCalls {
 public:
    struct List {
        /// 0 on success.
        std::int32_t error = 0;
        /// Written to the buffer as far as it goes.
        std::vector<std::byte> bytes{};
    };

    /// One member for each operation; `sysctl` has one for each of its two uses.
    struct {
        Answers<SysctlAnswer> sysctlSize{SysctlAnswer{.error = 1}};
        Answers<List> sysctlList{List{.error = 1}};
        Answers<std::optional<std::vector<InterfaceAddress>>> getifaddrs{std::nullopt};
        Answers<std::uint32_t> if_nametoindex{0};
    } answers;

    /// Operations called so far, in order: "sysctl size", "sysctl BYTES" with the size of the
    /// buffer, "getifaddrs", "if_nametoindex NAME".
    std::vector<std::string> calls() const { return calls_.all(); }
    /// The name of the last `sysctl`.
    std::vector<std::int32_t> sysctlName() const;

    SysctlAnswer sysctl(std::span<const std::int32_t> name, std::span<std::byte> buffer) override;
    std::optional<std::vector<InterfaceAddress>> getifaddrs() override;
    std::uint32_t if_nametoindex(const std::string& name) override;

 private:
    CallRecord calls_;
    mutable std::mutex lock_;
    std::vector<std::int32_t> sysctlName_;
};

}  // namespace tarnwick::platform::testing
