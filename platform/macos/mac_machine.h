// SPDX-License-Identifier: MIT
// The machine on macOS: each class answers one interface by the system's calls of the same names.
#pragma once

#include "platform/accelerators.h"
#include "platform/byte_count_formatter.h"
#include "platform/dispatch.h"
#include "platform/hot_keys.h"
#include "platform/kernel.h"
#include "platform/keyboard_layout.h"
#include "platform/login_service.h"
#include "platform/macos/readers/raw_process_table.h"
#include "platform/network_interfaces.h"
#include "platform/power_sources.h"
#include "platform/process_info.h"
#include "platform/user_defaults.h"
#include "platform/volumes.h"

namespace tarnwick::platform {

class MacAccelerators final : public Accelerators {
 public:
    MatchingServices matchingServices() override;
};

class MacByteCountFormatter final : public ByteCountFormatter {
 public:
    std::string stringFromByteCount(std::int64_t byteCount, CountStyle style) const override;
};

/// Requires: the main thread runs the application's event loop. Timers are `NSTimer`s in its
/// default mode.
class MacDispatch final : public Dispatch {
 public:
    /// Seconds since the start of the machine without the time asleep. Clock changes do not affect
    /// it.
    double now() const override;
    void async(std::function<void()> work) override;
    void asyncAfter(double seconds, std::function<void()> work) override;
    /// Never refused: the system keeps the work until it has a thread.
    bool detached(std::function<void()> work) override;
    std::unique_ptr<Timer> scheduleRepeating(double interval,
                                             std::function<void()> handler) override;
};

/// One handler at a time. The outcome of a registration is final: there is never one to withdraw,
/// and no change to report.
class MacHotKeys final : public HotKeys {
 public:
    HandlerResult installEventHandler(HotKeyHandler handler) override;
    RegistrationResult registerEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                           HotKeyID id) override;
    void withdrawRegistration() override {}
    void setRegistrationChanged(std::function<void()>) override {}
};

class MacInterfaceCalls final : public InterfaceCalls {
 public:
    SysctlAnswer sysctl(std::span<const std::int32_t> name, std::span<std::byte> buffer) override;
    std::optional<std::vector<InterfaceAddress>> getifaddrs() override;
    std::uint32_t if_nametoindex(const std::string& name) override;
};

class MacKernel final : public Kernel {
 public:
    std::optional<std::int32_t> logicalCPUCount() override;
    std::optional<std::uint64_t> memorySize() override;
    std::optional<SwapUsage> swapUsage() override;
    HostProcessorInfo hostProcessorInfo() override;
    HostStatistics hostStatistics64() override;
    std::optional<TimeValue> bootTime() override;
    std::uint64_t pageSize() override;
    /// `clock_gettime_nsec_np` of the raw monotonic clock.
    double monotonicSeconds() override;
    double wallClockSeconds() override;
};

class MacKeyboardLayout final : public KeyboardLayout {
 public:
    std::optional<std::string> displayText(std::uint16_t virtualKeyCode) override;
};

/// `SMAppService` `mainAppService`.
class MacLoginService final : public LoginService {
 public:
    LoginServiceStatus status() override;
    std::optional<LoginServiceError> registerService() override;
    std::optional<LoginServiceError> unregisterService() override;
};

class MacPowerSources final : public PowerSources {
 public:
    std::optional<std::vector<PowerSourceDescription>> descriptions() override;
    std::optional<std::int64_t> cycleCount() override;
};

class MacProcessInfo final : public ProcessInfo {
 public:
    std::int64_t activeProcessorCount() override;
    std::int64_t thermalState() override;
};

class MacRawProcessTable final : public RawProcessTable {
 public:
    std::int32_t ownIdentifier() override;
    std::int64_t processorCount() override;
    std::optional<TimebaseInfo> timebaseInfo() override;
    std::optional<RunningApplication> runningApplication(std::int32_t identifier) override;
    std::string displayName(const std::string& path) override;

    std::optional<std::size_t> sysctl(std::span<const std::int32_t> name,
                                      std::optional<std::span<std::byte>> buffer) override;
    std::int32_t procPidInfo(std::int32_t identifier, std::int32_t flavour, std::uint64_t argument,
                             std::span<std::byte> buffer) override;
    std::int32_t procPidPath(std::int32_t identifier, std::span<std::byte> buffer) override;
};

/// `NSUserDefaults` `standardUserDefaults`.
class MacUserDefaults final : public UserDefaults {
 public:
    std::optional<DefaultsValue> object(std::string_view key) override;
    void set(std::string_view key, const DefaultsValue& value) override;
    bool contains(std::string_view key) override;
};

class MacVolumes final : public Volumes {
 public:
    std::string homeDirectoryForCurrentUser() override;
    std::variant<VolumeResourceValues, VolumeError> resourceValues(
        const std::string& path) override;
    std::optional<FileSystemAttributes> attributesOfFileSystemForPath(
        const std::string& path) override;
};

}  // namespace tarnwick::platform
