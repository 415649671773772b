// SPDX-License-Identifier: MIT
#include "platform/linux/kernel/online_processors.h"

#include <charconv>
#include <system_error>
#include <vector>

#include "platform/linux/kernel/proc_stat.h"

namespace tarnwick::platform {

namespace {

// Greater than the limit of any kernel.
constexpr std::int32_t kLargestProcessor = (1 << 20) - 1;

// Removes a processor's number from the front of the text and returns it.
std::optional<std::int32_t> takeProcessor(std::string_view& text) {
    std::int32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || number < 0 || number > kLargestProcessor) {
        return std::nullopt;
    }
    text.remove_prefix(static_cast<std::size_t>(rest - text.data()));
    return number;
}

bool take(std::string_view& text, char character) {
    if (!text.starts_with(character)) {
        return false;
    }
    text.remove_prefix(1);
    return true;
}

}  // namespace

std::optional<std::int32_t> parseProcessorList(std::string_view text) {
    std::int32_t count = 0;
    std::int32_t next = 0;
    do {
        const std::optional<std::int32_t> first = takeProcessor(text);
        if (!first || *first < next) {
            return std::nullopt;
        }
        std::optional<std::int32_t> last = first;
        if (take(text, '-')) {
            last = takeProcessor(text);
        }
        if (!last || *last < *first) {
            return std::nullopt;
        }
        count += *last - *first + 1;
        next = *last + 1;
    } while (take(text, ','));
    if (text != "\n") {
        return std::nullopt;
    }
    return count;
}

OnlineProcessors::OnlineProcessors(const std::string& root)
    : list_(belowRoot(root, "sys/devices/system/cpu/online"), 256),
      statistics_(belowRoot(root, "proc/stat")) {}

std::optional<std::int32_t> OnlineProcessors::count() {
    const std::lock_guard guard(lock_);
    if (const std::optional<std::string_view> text = list_.read()) {
        if (const std::optional<std::int32_t> count = parseProcessorList(*text)) {
            return count;
        }
    }
    const std::optional<std::string_view> text = statistics_.read();
    std::vector<ProcessorTicks> processors;
    if (!text || !parseProcessorTicks(*text, processors)) {
        return std::nullopt;
    }
    return static_cast<std::int32_t>(processors.size());
}

}  // namespace tarnwick::platform
