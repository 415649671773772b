// SPDX-License-Identifier: MIT
#include "tools/machine_sample.h"

#include <array>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <optional>
#include <string_view>

#include "tools/judged_metrics.h"

namespace tarnwick::probe {
namespace {

using Json = nlohmann::ordered_json;

template <class Value>
Json orNull(const std::optional<Value>& value) {
    return value ? Json(*value) : Json(nullptr);
}

/// In the usual form, 8-4-4-4-12 digits.
std::string text(const UUID& id) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string result;
    for (std::size_t i = 0; i < id.bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) {
            result += '-';
        }
        result += kDigits[id.bytes[i] >> 4U];
        result += kDigits[id.bytes[i] & 15U];
    }
    return result;
}

std::string_view name(BatteryHealthSource source) {
    switch (source) {
        case BatteryHealthSource::systemProfiler:
            return "systemProfiler";
        case BatteryHealthSource::ioRegistry:
            return "ioRegistry";
        case BatteryHealthSource::qualitative:
            return "qualitative";
    }
    return "";
}

Json json(const CPUInfo& cpu) {
    return {{"usagePercentage", cpu.usagePercentage},
            {"userPercentage", cpu.userPercentage},
            {"systemPercentage", cpu.systemPercentage},
            {"idlePercentage", cpu.idlePercentage},
            {"coreCount", cpu.coreCount},
            {"coreUsages", cpu.coreUsages}};
}

Json json(const GPUInfo& gpu) {
    return {{"usagePercentage", gpu.usagePercentage},
            {"rendererUtilizationPercentage", gpu.rendererUtilizationPercentage},
            {"tilerUtilizationPercentage", gpu.tilerUtilizationPercentage},
            {"modelName", gpu.modelName},
            {"coreCount", gpu.coreCount},
            {"isAvailable", gpu.isAvailable}};
}

Json json(const GraphicsCardSample& card) {
    return {{"id", card.id},
            {"modelName", card.model},
            {"driver", card.driver},
            {"isAsleep", orNull(card.isAsleep)},
            {"usagePercentage", orNull(card.usagePercentage)}};
}

Json json(const MemoryInfo& memory) {
    return {
        {"total", memory.total},   {"used", memory.used},         {"free", memory.free},
        {"app", memory.app},       {"wired", memory.wired},       {"compressed", memory.compressed},
        {"cached", memory.cached}, {"swapUsed", memory.swapUsed}, {"swapTotal", memory.swapTotal}};
}

Json json(const NetworkInfo& network) {
    return {{"downloadBytesPerSecond", network.downloadBytesPerSecond},
            {"uploadBytesPerSecond", network.uploadBytesPerSecond},
            {"totalReceivedBytes", network.totalReceivedBytes},
            {"totalSentBytes", network.totalSentBytes},
            {"hasSample", network.hasSample}};
}

Json json(const StorageInfo& storage) {
    return {{"id", text(storage.id)},
            {"name", storage.name},
            {"totalSpace", storage.totalSpace},
            {"usedSpace", storage.usedSpace},
            {"availableSpace", storage.availableSpace}};
}

Json json(const BatteryInfo& battery) {
    return {
        {"percentage", battery.percentage},
        {"isCharging", battery.isCharging},
        {"isPluggedIn", battery.isPluggedIn},
        {"health", orNull(battery.health)},
        {"healthSource", battery.healthSource ? Json(name(*battery.healthSource)) : Json(nullptr)},
        {"healthCondition", battery.healthCondition},
        {"cycleCount", orNull(battery.cycleCount)},
        {"timeRemaining", battery.timeRemaining},
        {"hasBattery", battery.hasBattery}};
}

Json json(const AppProcessInfo& process) {
    return {{"id", process.id},
            {"name", process.name},
            {"cpuUsage", process.cpuUsage},
            {"memoryUsage", process.memoryUsage}};
}

template <class Record>
Json json(const std::vector<Record>& records) {
    Json result = Json::array();
    for (const Record& record : records) {
        result.push_back(json(record));
    }
    return result;
}

template <class Record>
Json jsonOrNull(const std::optional<Record>& record) {
    return record ? json(*record) : Json(nullptr);
}

Json summary(const MachineSample& sample) {
    const MetricDisplaySummary summary = displaySummary(sample);
    return {{"severity", static_cast<std::int32_t>(summary.severity)},
            {"menuBarText", summary.menuBarText},
            {"popoverText", summary.popoverText}};
}

}  // namespace

std::string reportLine(const MachineSample& sample) {
    const Json report = {{"cpu", json(sample.cpu)},
                         {"gpu", jsonOrNull(sample.gpu)},
                         {"gpus", json(sample.gpus)},
                         {"memory", json(sample.memory)},
                         {"network", json(sample.network)},
                         {"storage", jsonOrNull(sample.storage)},
                         {"battery", jsonOrNull(sample.battery)},
                         {"system", {{"uptime", sample.system.uptime}}},
                         {"topCPUProcesses", json(sample.topCPUProcesses)},
                         {"topMemoryProcesses", json(sample.topMemoryProcesses)},
                         {"thermalState", orNull(sample.thermalState)},
                         {"summary", summary(sample)}};
    return report.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace tarnwick::probe
