// SPDX-License-Identifier: MIT
// Any text as the hardware profiler's report.
#include <cstdint>
#include <string_view>

#include "fuzz/fuzzer.h"
#include "platform/macos/readers/profiler_health.h"

using tarnwick::fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto reading = tarnwick::decodeProfilerHealth(text);
    if (reading) {
        // A report contains this name, plainly or written with escapes.
        require(text.find("PowerDataType") != std::string_view::npos ||
                text.find('\\') != std::string_view::npos);
        require(!reading->health || (*reading->health >= 1 && *reading->health <= 100));
        require(!reading->condition || reading->condition->size() <= size);
    }
    return 0;
}
