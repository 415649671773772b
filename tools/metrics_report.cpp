// SPDX-License-Identifier: MIT
#include "tools/metrics_report.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <string_view>
#include <vector>

#include "tools/judged_metrics.h"

namespace tarnwick::probe {
namespace {

constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();
constexpr double kSecondsPerMinute = 60;
constexpr double kPercent = 100;

constexpr std::array<std::string_view, 4> kThermalStates = {"nominal", "fair", "serious",
                                                            "critical"};

template <class Value>
double number(const std::optional<Value>& value) {
    return value ? static_cast<double>(*value) : kUnknown;
}

/// A capacity or count of which 0 means that it is unknown.
template <class Value>
double unlessZero(Value value) {
    return value > Value{} ? static_cast<double>(value) : kUnknown;
}

void addVerdicts(Exposition& text, const MachineSample& sample) {
    const auto metrics = judgedMetrics(sample);
    text.gauge("tarnwick_severity", "",
               "0 below the normal threshold, 1 at or above it, 2 at or above the high one.");
    for (const JudgedMetric& metric : metrics) {
        text.sample(metric.severity ? static_cast<double>(*metric.severity) : kUnknown,
                    {{"metric", metric.name}});
    }
    text.gauge("tarnwick_threshold_ratio", "ratio", "Thresholds that the severity is judged by.");
    for (const JudgedMetric& metric : metrics) {
        text.sample(metric.thresholds.normal / kPercent,
                    {{"metric", metric.name}, {"level", "normal"}});
        text.sample(metric.thresholds.high / kPercent,
                    {{"metric", metric.name}, {"level", "high"}});
    }
}

void addGraphics(Exposition& text, const std::vector<GraphicsCardSample>& cards) {
    text.gauge("tarnwick_gpu_utilization_ratio", "ratio", "Use of a graphics card.");
    for (const GraphicsCardSample& card : cards) {
        text.sample(number(card.usagePercentage) / kPercent, {{"gpu", card.id}});
    }
    text.gauge("tarnwick_gpu_asleep", "", "1 while a graphics card sleeps to save power.");
    for (const GraphicsCardSample& card : cards) {
        text.sample(number(card.isAsleep), {{"gpu", card.id}});
    }
    text.info("tarnwick_gpu", "Model and driver of a graphics card.");
    for (const GraphicsCardSample& card : cards) {
        text.sample(1, {{"gpu", card.id}, {"model", card.model}, {"driver", card.driver}});
    }
}

void addMemory(Exposition& text, const MemoryInfo& memory, bool all) {
    const auto bytes = [&](std::string_view name, std::uint64_t value, std::string_view help) {
        text.gauge(name, "bytes", help);
        text.sample(memory.total > 0 ? static_cast<double>(value) : kUnknown);
    };
    text.gauge("tarnwick_memory_used_ratio", "ratio", "Share of the memory that is in use.");
    text.sample(memory.total > 0 ? memory.usagePercentage() / kPercent : kUnknown);
    bytes("tarnwick_memory_compressed_bytes", memory.compressed,
          "Memory that holds compressed pages.");
    if (!all) {
        return;
    }
    bytes("tarnwick_memory_size_bytes", memory.total, "Memory of the machine.");
    bytes("tarnwick_memory_used_bytes", memory.used, "Memory in use.");
    bytes("tarnwick_memory_free_bytes", memory.free, "Memory that holds nothing.");
    bytes("tarnwick_memory_application_bytes", memory.app, "Memory of applications.");
    bytes("tarnwick_memory_wired_bytes", memory.wired, "Memory that cannot be moved.");
    bytes("tarnwick_memory_cached_bytes", memory.cached, "Memory that can be had back at once.");
    bytes("tarnwick_swap_size_bytes", memory.swapTotal, "Swap space of the machine.");
    bytes("tarnwick_swap_used_bytes", memory.swapUsed, "Swap space in use.");
}

void addBattery(Exposition& text, const std::optional<BatteryInfo>& battery) {
    if (!battery || !battery->hasBattery) {
        return;
    }
    // All packs of the machine count as one.
    const Exposition::Label all{"battery", "system"};
    text.gauge("tarnwick_battery_charge_ratio", "ratio", "Charge of the battery.");
    text.sample(
        battery->hasPercentage ? static_cast<double>(battery->percentage) / kPercent : kUnknown,
        {all});
    text.gauge("tarnwick_battery_health_ratio", "ratio",
               "Full capacity of the battery, of its design.");
    text.sample(number(battery->health) / kPercent, {all});
    text.gauge("tarnwick_battery_cycles", "", "Charge cycles of the battery.");
    text.sample(number(battery->cycleCount), {all});
    text.gauge("tarnwick_battery_time_left_seconds", "seconds",
               "Time until the battery is empty, or full while it charges.");
    text.sample(unlessZero(battery->timeRemaining) * kSecondsPerMinute,
                {all, {"state", battery->isCharging ? "charging" : "discharging"}});
}

void addThermalState(Exposition& text, const std::optional<std::int64_t>& current) {
    text.gauge("tarnwick_thermal_state", "", "1 for the state that the machine is in.");
    if (!current || *current < 0 || *current >= std::ssize(kThermalStates)) {
        return;
    }
    for (std::size_t state = 0; state < kThermalStates.size(); ++state) {
        text.sample(static_cast<std::size_t>(*current) == state ? 1 : 0,
                    {{"state", kThermalStates[state]}});
    }
}

/// The first `limit` applications with a known figure, largest first, equal ones by name.
template <class Figure>
std::vector<ApplicationSample> top(std::vector<ApplicationSample> applications, int limit,
                                   Figure figure) {
    std::erase_if(applications, [figure](const ApplicationSample& one) {
        return std::isnan(static_cast<double>(one.*figure));
    });
    const auto count = std::min(static_cast<std::ptrdiff_t>(limit), std::ssize(applications));
    std::partial_sort(applications.begin(), applications.begin() + count, applications.end(),
                      [figure](const ApplicationSample& a, const ApplicationSample& b) {
                          return a.*figure != b.*figure ? a.*figure > b.*figure : a.name < b.name;
                      });
    applications.resize(static_cast<std::size_t>(count));
    return applications;
}

void addApplications(Exposition& text, const std::vector<ApplicationSample>& applications,
                     int limit) {
    text.gauge("tarnwick_application_cpu_ratio", "ratio",
               "Share of all processors that the processes of an application use.");
    for (const ApplicationSample& one : top(applications, limit, &ApplicationSample::cpuUsage)) {
        text.sample(one.cpuUsage / kPercent, {{"application", one.name}});
    }
    text.gauge("tarnwick_application_memory_bytes", "bytes",
               "Resident memory of the processes of an application; shared pages count for each.");
    for (const ApplicationSample& one : top(applications, limit, &ApplicationSample::memoryUsage)) {
        text.sample(static_cast<double>(one.memoryUsage), {{"application", one.name}});
    }
}

void addProcessors(Exposition& text, const CPUInfo& cpu) {
    const bool isKnown = !cpu.coreUsages.empty();
    const auto share = [isKnown](double percentage) {
        return isKnown ? percentage / kPercent : kUnknown;
    };
    text.gauge("tarnwick_cpu_cores", "", "Logical processors.");
    text.sample(unlessZero(cpu.coreCount));
    text.gauge("tarnwick_cpu_used_ratio", "ratio", "Share of the processor time that was used.");
    text.sample(share(cpu.usagePercentage));
    text.gauge("tarnwick_cpu_mode_ratio", "ratio", "Share of the processor time in each mode.");
    text.sample(share(cpu.userPercentage), {{"mode", "user"}});
    text.sample(share(cpu.systemPercentage), {{"mode", "system"}});
    text.sample(share(cpu.idlePercentage), {{"mode", "idle"}});
    text.gauge("tarnwick_cpu_core_used_ratio", "ratio", "The same for each logical processor.");
    for (std::size_t core = 0; core < cpu.coreUsages.size(); ++core) {
        text.sample(cpu.coreUsages[core] / kPercent, {{"cpu", std::to_string(core)}});
    }
}

void addStorage(Exposition& text, const std::optional<std::vector<StorageInfo>>& volumes) {
    const auto family = [&](std::string_view name, std::string_view help,
                            std::int64_t StorageInfo::*bytes) {
        text.gauge(name, "bytes", help);
        for (const StorageInfo& volume : volumes.value_or(std::vector<StorageInfo>{})) {
            text.sample(volume.totalSpace > 0 ? static_cast<double>(volume.*bytes) : kUnknown,
                        {{"volume", volume.name}});
        }
    };
    family("tarnwick_storage_size_bytes", "Capacity of the volume that holds the home folder.",
           &StorageInfo::totalSpace);
    family("tarnwick_storage_used_bytes", "Space in use on it.", &StorageInfo::usedSpace);
    family("tarnwick_storage_available_bytes", "Space that its user may still fill.",
           &StorageInfo::availableSpace);
}

void addNetwork(Exposition& text, const NetworkInfo& network) {
    const auto family = [&](std::string_view name, double value, std::string_view help) {
        text.gauge(name, "", help);
        text.sample(network.hasSample ? value : kUnknown);
    };
    family("tarnwick_network_receive_bytes_per_second", network.downloadBytesPerSecond,
           "Bytes that the links that end at hardware receive in a second.");
    family("tarnwick_network_transmit_bytes_per_second", network.uploadBytesPerSecond,
           "Bytes that they send in a second.");
    family("tarnwick_network_received_bytes", static_cast<double>(network.totalReceivedBytes),
           "Bytes that they have received.");
    family("tarnwick_network_transmitted_bytes", static_cast<double>(network.totalSentBytes),
           "Bytes that they have sent.");
}

}  // namespace

std::string metricsReport(const MachineSample& sample, Exposition::Format format,
                          MetricsScope scope) {
    Exposition text(format);
    text.info("tarnwick_probe", "The program that took these figures.");
    text.sample(1, {{"version", TARNWICK_VERSION}});
    addVerdicts(text, sample);
    addGraphics(text, sample.gpus);
    addMemory(text, sample.memory, scope.all);
    addBattery(text, sample.battery);
    addThermalState(text, sample.thermalState);
    addApplications(text, sample.applications, scope.limit);
    if (scope.all) {
        addProcessors(text, sample.cpu);
        addStorage(text, sample.storage);
        addNetwork(text, sample.network);
        text.gauge("tarnwick_uptime_seconds", "seconds", "Time since the machine started.");
        text.sample(unlessZero(sample.system.uptime));
    }
    return text.finish();
}

}  // namespace tarnwick::probe
