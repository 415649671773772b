// SPDX-License-Identifier: MIT
// Any text as the kernel's statistics: either there are processors, in ascending order, or the
// parser reports none.
#include <cstdint>
#include <string_view>
#include <vector>

#include "fuzz/fuzzer.h"
#include "platform/linux/kernel/proc_stat.h"
#include "platform/linux/kernel/processor_counts.h"

using tarnwick::fuzz::require;
using tarnwick::platform::ProcessorTicks;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    std::vector<ProcessorTicks> processors;
    require(tarnwick::platform::parseProcessorTicks(text, processors) == !processors.empty());
    for (std::size_t index = 1; index < processors.size(); ++index) {
        require(processors[index - 1].processor < processors[index].processor);
    }

    // Half of the text stands for another machine, or for the same one with fewer processors.
    std::vector<ProcessorTicks> fewer;
    require(tarnwick::platform::parseProcessorTicks(text.substr(0, size / 2), fewer) ==
            !fewer.empty());
    tarnwick::platform::ProcessorCounts counts;
    for (const auto* reading : {&processors, &fewer, &processors}) {
        require(counts.words(*reading).size() == reading->size() * 4);
    }

    const auto bootTime = tarnwick::platform::parseBootTime(text);
    require(!bootTime || *bootTime >= 0);
    return 0;
}
