// SPDX-License-Identifier: MIT
// Any text as one of the files of a graphics driver, and as the lines of the names databases.
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/fuzzer.h"
#include "platform/linux/graphics/graphics_files.h"
#include "platform/linux/graphics/graphics_names.h"

using tarnwick::fuzz::require;

namespace {

template <class Search>
void feed(Search search, std::string_view text) {
    bool wantsMore = true;
    while (wantsMore && !text.empty()) {
        const std::size_t end = text.find('\n');
        wantsMore = search.take(text.substr(0, end));
        require(wantsMore || !search.name() || !search.name()->empty());
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tarnwick::platform;
    const std::string_view text(reinterpret_cast<const char*>(data), size);

    const GraphicsIdentity identity = parseGraphicsIdentity(text);
    require(identity.vendor.size() == identity.device.size());
    require(identity.vendor.empty() || identity.vendor.size() == 4);
    require(identity.driver.find('\n') == std::string::npos);

    const auto percentage = parsePercentage(text);
    require(!percentage || (*percentage >= 0 && *percentage <= 100));
    require(!percentage || parseCount(text));
    require(firstLineOf(text).find('\n') == std::string_view::npos);
    require(locationOfSlot(text).has_value() == domainOfSlot(text).has_value());
    parseNamedCount(text, "simd_count");

    const auto activity = parseAverageActivity(text);
    require(!activity || (*activity >= 0 && *activity <= 100));
    if (const auto times = parseClientTimes(text)) {
        for (const EngineTime& engine : times->engines) {
            require(engine.capacity > 0);
            require(engine.engine.find('\n') == std::string::npos);
        }
    }
    for (const EngineTime& queue : parseQueueTimes(text)) {
        require(queue.total > 0 && queue.capacity == 1);
    }

    feed(PciNameSearch("1002", "744c"), text);
    feed(AmdNameSearch("744c", "c8"), text);
    return 0;
}
