// SPDX-License-Identifier: MIT
// Any bytes as a value of an accelerator's properties.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/fuzzer.h"
#include "services/gpu_candidate.h"
#include "services/property_text.h"

using tarnwick::fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using tarnwick::platform::PropertyDictionary;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    require(!std::isnan(tarnwick::numberAtStart(text)));
    if (const auto integer = tarnwick::wholeDecimalInteger(text)) {
        require(std::abs(static_cast<double>(*integer) - tarnwick::numberAtStart(text)) <=
                std::abs(static_cast<double>(*integer)) * 1e-15);
    }
    const auto bytes = std::as_bytes(std::span(text));
    const auto decoded = tarnwick::textFromUTF8(bytes);
    require(!decoded || *decoded == text);

    const auto info = tarnwick::gpuCandidate(
        {{"PerformanceStatistics", PropertyDictionary{{"Renderer Utilization %", std::string(text)},
                                                      {"Tiler Utilization %", 35.0}}},
         {"model", std::vector<std::byte>(bytes.begin(), bytes.end())},
         {"gpu-core-count", std::string(text)}});
    require(info && info->isAvailable);
    require(info->usagePercentage >= 0 && info->usagePercentage <= 100);
    require(info->rendererUtilizationPercentage >= 0 && info->rendererUtilizationPercentage <= 100);
    require(info->modelName.find('\0') == std::string::npos);
    return 0;
}
