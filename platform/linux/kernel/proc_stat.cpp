// SPDX-License-Identifier: MIT
#include "platform/linux/kernel/proc_stat.h"

#include <charconv>
#include <system_error>

namespace tarnwick::platform {

namespace {

// The line after "cpu", such as "0 8857 0 5712 279498 2482 0 131 360 0 0". Old kernels have fewer
// columns, but never fewer than four.
bool parseProcessor(std::string_view line, ProcessorTicks& ticks) {
    const char* const end = line.data() + line.size();
    const auto [rest, error] = std::from_chars(line.data(), end, ticks.processor);
    if (error != std::errc()) {
        return false;
    }
    line.remove_prefix(static_cast<std::size_t>(rest - line.data()));

    std::size_t column = 0;
    while (!line.empty()) {
        if (line.front() != ' ') {
            return false;
        }
        line.remove_prefix(1);
        if (line.empty()) {
            break;
        }
        std::uint64_t counter = 0;
        const auto [next, fault] = std::from_chars(line.data(), end, counter);
        if (fault != std::errc()) {
            return false;
        }
        line.remove_prefix(static_cast<std::size_t>(next - line.data()));
        if (column < ticks.columns.size()) {
            ticks.columns[column] = counter;
        }
        ++column;
    }
    return column > ProcessorTicks::idle;
}

}  // namespace

bool parseProcessorTicks(std::string_view text, std::vector<ProcessorTicks>& processors) {
    processors.clear();
    while (text.starts_with("cpu")) {
        const std::size_t end = text.find('\n');
        if (end == std::string_view::npos) {
            processors.clear();
            return false;
        }
        const std::string_view line = text.substr(3, end - 3);
        text.remove_prefix(end + 1);
        // The first line sums all processors up.
        if (line.starts_with(' ')) {
            continue;
        }
        ProcessorTicks ticks;
        if (!parseProcessor(line, ticks) ||
            (!processors.empty() && ticks.processor <= processors.back().processor)) {
            processors.clear();
            return false;
        }
        processors.push_back(ticks);
    }
    return !processors.empty();
}

std::optional<std::int64_t> parseBootTime(std::string_view text) {
    constexpr std::string_view key = "btime ";
    std::size_t start = 0;
    if (!text.starts_with(key)) {
        start = text.find("\nbtime ");
        if (start == std::string_view::npos) {
            return std::nullopt;
        }
        ++start;
    }
    text.remove_prefix(start + key.size());
    std::int64_t seconds = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, seconds);
    if (error != std::errc() || rest == end || *rest != '\n' || seconds < 0) {
        return std::nullopt;
    }
    return seconds;
}

}  // namespace tarnwick::platform
