// SPDX-License-Identifier: MIT
// The plain records that samplers fill, the stats manager publishes and the views read.
//
// All are values: a copy shares nothing with its original. Percentages are doubles from 0 to 100.
// Byte counts are unsigned 64-bit unless a record says otherwise. Texts are UTF-8. A default
// constructed record is the empty value that stands for "no data yet".
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tarnwick {

/// A random (version 4) 128-bit identity, used only to tell records apart.
struct UUID {
    std::array<std::uint8_t, 16> bytes{};

    /// A fresh identity. Safe to call from any thread.
    static UUID random();

    bool operator==(const UUID&) const = default;
};

/// One point of a usage history; told apart by `id`.
struct UsageSample {
    UUID id;
    /// Wall-clock seconds since 1970 at the moment the sample was appended, not measured.
    double timestamp = 0;
    /// The usage recorded, percent.
    double value = 0;
};

/// What is known of the machine as a whole.
struct SystemInfo {
    /// Seconds since the machine booted; 0 when unknown.
    double uptime = 0;
};

/// The processors. The empty value is idle, not busy.
struct CPUInfo {
    /// Busy share of the whole machine over the last sampling interval, percent.
    double usagePercentage = 0;
    /// Share spent in user mode, percent.
    double userPercentage = 0;
    /// Share spent in kernel mode, percent.
    double systemPercentage = 0;
    /// Idle share, percent.
    double idlePercentage = 100;
    /// Number of logical processors. Above 0 once CPU data has been collected.
    std::int64_t coreCount = 0;
    /// Busy share of each logical processor in processor order, percent.
    std::vector<double> coreUsages;
};

/// The graphics processor.
struct GPUInfo {
    /// Overall utilisation, percent.
    double usagePercentage = 0;
    /// Utilisation of the renderer, percent.
    double rendererUtilizationPercentage = 0;
    /// Utilisation of the tiler, percent.
    double tilerUtilizationPercentage = 0;
    /// Name of the model as the driver gives it; may be empty.
    std::string modelName;
    /// Number of GPU cores; 0 when unknown.
    std::int64_t coreCount = 0;
    /// True when a GPU was found and its statistics could be read. While false, nothing judges the
    /// GPU.
    bool isAvailable = false;

    /// The text that views show for the GPU: the trimmed model name and "N-core", joined by a
    /// space. An unknown part is left out; "System GPU" when both are unknown.
    std::string displayName() const;
};

/// All counts are bytes.
struct MemoryInfo {
    /// Physical memory. Not 0 once memory data has been collected.
    std::uint64_t total = 0;
    /// Memory counted as in use.
    std::uint64_t used = 0;
    std::uint64_t free = 0;
    /// Held by applications.
    std::uint64_t app = 0;
    /// Held by the kernel and not to be moved.
    std::uint64_t wired = 0;
    /// Held by the memory compressor.
    std::uint64_t compressed = 0;
    /// File-backed and purgeable memory.
    std::uint64_t cached = 0;
    std::uint64_t swapUsed = 0;
    std::uint64_t swapTotal = 0;

    /// used / total, percent; 0 when the total is 0.
    double usagePercentage() const;
};

/// One volume; told apart by `id`. Its byte counts are signed, unlike those of memory and network.
struct StorageInfo {
    /// Fresh for every record, so that two readings of one volume are two items.
    UUID id;
    std::string name;
    /// Capacity, bytes.
    std::int64_t totalSpace = 0;
    /// In use, bytes.
    std::int64_t usedSpace = 0;
    /// Available, bytes.
    std::int64_t availableSpace = 0;
    /// Where the file system is mounted; empty when unknown.
    std::string mountPoint{};

    /// usedSpace / totalSpace, percent; 0 when the total is below 1.
    double usagePercentage() const;
};

/// Where a battery's health or condition came from.
enum class BatteryHealthSource {
    /// The system's hardware report gave figure and condition.
    systemProfiler,
    /// The battery's device registry entry gave the figure.
    ioRegistry,
    /// A condition word without a figure.
    qualitative,
};

/// The battery of the machine itself, not of a device beside it.
struct BatteryInfo {
    /// Charge level, percent; 0 when unknown.
    std::int64_t percentage = 0;
    bool isCharging = false;
    /// External power is connected.
    bool isPluggedIn = false;
    /// Capacity relative to the design, percent; absent when unknown.
    std::optional<std::int64_t> health;
    /// Absent when unknown.
    std::optional<BatteryHealthSource> healthSource;
    /// The condition word or phrase as read; empty when unknown.
    std::string healthCondition;
    /// Charge cycles; absent when unknown.
    std::optional<std::int64_t> cycleCount;
    /// Minutes to empty while discharging, to full while charging; 0 when unknown.
    std::int64_t timeRemaining = 0;
    /// The machine has a battery. While false no other field means anything.
    bool hasBattery = false;
    /// Watts that it gives while discharging or takes while charging; absent when unknown.
    std::optional<double> power{};
    /// False when the charge level is unknown.
    bool hasPercentage = true;
};

/// The sum of the network interfaces that are up and count, never of the loopback.
struct NetworkInfo {
    /// Receive rate over the last interval, bytes per second.
    double downloadBytesPerSecond = 0;
    /// Send rate over the last interval, bytes per second.
    double uploadBytesPerSecond = 0;
    /// Bytes received since the counters started.
    std::uint64_t totalReceivedBytes = 0;
    /// Bytes sent since the counters started.
    std::uint64_t totalSentBytes = 0;
    /// True when there was an earlier reading to compare with. While false, the rates mean nothing.
    bool hasSample = false;
};

/// One row of a top-process list; told apart by `id`, equal when all fields are.
struct AppProcessInfo {
    /// Process identifier.
    std::int32_t id = 0;
    /// Display name of the process or of the application it belongs to.
    std::string name;
    /// CPU use over the last interval, percent.
    double cpuUsage = 0;
    /// Resident memory, bytes.
    std::uint64_t memoryUsage = 0;
    /// The command that it was started with, cut if it is long; empty when unknown.
    std::string command{};

    bool operator==(const AppProcessInfo&) const = default;
};

/// What one fast refresh measures in the background and hands to the main thread in one piece.
/// The two process lists are both present or both absent.
struct FastRefreshSnapshot {
    CPUInfo cpu;
    GPUInfo gpu;
    MemoryInfo memory;
    NetworkInfo network;
    /// Absent when process lists were not gathered on this refresh.
    std::optional<std::vector<AppProcessInfo>> topCPUProcesses;
    std::optional<std::vector<AppProcessInfo>> topMemoryProcesses;
    /// As ProcessInfo::thermalState() tells it; absent when it was not asked for.
    std::optional<std::int64_t> thermalState{};
};

}  // namespace tarnwick

template <>
struct std::hash<tarnwick::UUID> {
    std::size_t operator()(const tarnwick::UUID& id) const noexcept;
};
