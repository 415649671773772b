// SPDX-License-Identifier: MIT
#include "platform/linux/processes/proc_pid_stat.h"

#include <charconv>
#include <system_error>

namespace tarnwick::platform {

namespace {

// Numbers of the fields as the kernel's manual counts them; the state follows the command.
constexpr int kStateField = 3;
constexpr int kUserField = 14;
constexpr int kSystemField = 15;
constexpr int kResidentField = 24;

// Removes a space and the word after it from the front and returns the word. Empty if there is no
// complete word.
std::string_view takeWord(std::string_view& text) {
    if (!text.starts_with(' ')) {
        return {};
    }
    text.remove_prefix(1);
    std::size_t length = 0;
    while (length < text.size() && text[length] != ' ' && text[length] != '\n') {
        ++length;
    }
    if (length == text.size()) {
        return {};
    }
    const std::string_view word = text.substr(0, length);
    text.remove_prefix(length);
    return word;
}

std::optional<std::uint64_t> parseCount(std::string_view word) {
    std::uint64_t count = 0;
    const char* const end = word.data() + word.size();
    const auto [rest, error] = std::from_chars(word.data(), end, count);
    if (error != std::errc() || rest != end) {
        return std::nullopt;
    }
    return count;
}

}  // namespace

std::int32_t parseProcessIdentifier(std::string_view name) {
    if (name.empty() || name.front() < '1' || name.front() > '9') {
        return 0;
    }
    std::int32_t identifier = 0;
    const char* const end = name.data() + name.size();
    const auto [rest, error] = std::from_chars(name.data(), end, identifier);
    return error == std::errc() && rest == end ? identifier : 0;
}

std::optional<ProcessStat> parseProcessStat(std::string_view text) {
    const std::size_t open = text.find('(');
    // The command may contain brackets; the fields after it contain none.
    const std::size_t close = text.rfind(')');
    if (open == std::string_view::npos || close == std::string_view::npos || close < open) {
        return std::nullopt;
    }
    std::string_view rest = text.substr(close + 1);
    std::optional<std::uint64_t> user;
    std::optional<std::uint64_t> system;
    std::optional<std::uint64_t> pages;
    for (int field = kStateField; field <= kResidentField; ++field) {
        const std::string_view word = takeWord(rest);
        if (word.empty()) {
            return std::nullopt;
        }
        if (field == kUserField) {
            user = parseCount(word);
        } else if (field == kSystemField) {
            system = parseCount(word);
        } else if (field == kResidentField) {
            pages = parseCount(word);
        }
    }
    if (!user || !system || !pages) {
        return std::nullopt;
    }
    return ProcessStat{.command = text.substr(open + 1, close - open - 1),
                       .userTicks = *user,
                       .systemTicks = *system,
                       .residentPages = *pages};
}

}  // namespace tarnwick::platform
