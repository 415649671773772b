// SPDX-License-Identifier: MIT
#include "services/gpu_candidate.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>
#include <variant>
#include <vector>

#include "core/records/percentage.h"
#include "services/property_text.h"

namespace tarnwick {

namespace {

using platform::PropertyDictionary;
using platform::PropertyValue;
using platform::propertyValue;

/// A number, or the number at the start of a text. Absent for a value of any other type.
std::optional<double> statistic(const PropertyValue& value) {
    if (const auto* integer = std::get_if<std::int64_t>(&value)) {
        return static_cast<double>(*integer);
    }
    if (const auto* number = std::get_if<double>(&value)) {
        return *number;
    }
    if (const auto* text = std::get_if<std::string>(&value)) {
        return numberAtStart(*text);
    }
    return std::nullopt;
}

/// The value of the first key that has a usable one.
std::optional<double> firstStatistic(const PropertyDictionary& statistics,
                                     std::initializer_list<std::string_view> keys) {
    for (const std::string_view key : keys) {
        if (const PropertyValue* value = propertyValue(statistics, key)) {
            if (const std::optional<double> number = statistic(*value)) {
                return number;
            }
        }
    }
    return std::nullopt;
}

}  // namespace

std::string gpuModelName(const PropertyValue* model) {
    if (model == nullptr) {
        return {};
    }
    if (const auto* text = std::get_if<std::string>(model)) {
        return *text;
    }
    if (const auto* bytes = std::get_if<std::vector<std::byte>>(model)) {
        std::string name = textFromUTF8(*bytes).value_or("");
        std::erase(name, '\0');
        return name;
    }
    return {};
}

std::int64_t gpuCoreCount(const PropertyValue* count) {
    if (count == nullptr) {
        return 0;
    }
    if (const auto* integer = std::get_if<std::int64_t>(count)) {
        return *integer;
    }
    if (const auto* number = std::get_if<double>(count)) {
        // Any value that fits after rounding towards 0. Both bounds are powers of two and so exact.
        const bool fits = *number >= -0x1p63 && *number < 0x1p63;
        return fits ? static_cast<std::int64_t>(*number) : 0;
    }
    if (const auto* text = std::get_if<std::string>(count)) {
        return wholeDecimalInteger(*text).value_or(0);
    }
    return 0;
}

std::optional<GPUInfo> gpuCandidate(const PropertyDictionary& service) {
    const PropertyValue* property = propertyValue(service, "PerformanceStatistics");
    const auto* statistics = property ? std::get_if<PropertyDictionary>(property) : nullptr;
    if (statistics == nullptr) {
        return std::nullopt;
    }
    // The keys differ between generations of processors.
    const auto device = firstStatistic(*statistics, {"Device Utilization %", "GPU Activity(%)"});
    const auto renderer =
        firstStatistic(*statistics, {"Renderer Utilization %", "GPU Activity(%)"});
    const auto tiler = firstStatistic(*statistics, {"Tiler Utilization %"});
    const double usage = device.value_or(std::max(renderer.value_or(0), tiler.value_or(0)));

    GPUInfo info;
    info.usagePercentage = clampedPercentage(usage);
    info.rendererUtilizationPercentage = clampedPercentage(renderer.value_or(usage));
    info.tilerUtilizationPercentage = clampedPercentage(tiler.value_or(usage));
    info.modelName = gpuModelName(propertyValue(service, "model"));
    info.coreCount = gpuCoreCount(propertyValue(service, "gpu-core-count"));
    info.isAvailable = true;
    return info;
}

bool isBetterGPU(const GPUInfo& candidate, const GPUInfo& best) {
    if (candidate.usagePercentage != best.usagePercentage) {
        return candidate.usagePercentage > best.usagePercentage;
    }
    if (candidate.rendererUtilizationPercentage != best.rendererUtilizationPercentage) {
        return candidate.rendererUtilizationPercentage > best.rendererUtilizationPercentage;
    }
    return best.modelName.empty() && !candidate.modelName.empty();
}

}  // namespace tarnwick
