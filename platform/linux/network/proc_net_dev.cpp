// SPDX-License-Identifier: MIT
#include "platform/linux/network/proc_net_dev.h"

#include <array>
#include <charconv>
#include <system_error>

namespace tarnwick::platform {

namespace {

// Columns of the counters: eight for what was received, eight for what was sent.
constexpr std::size_t kReceivedBytes = 0;
constexpr std::size_t kSentBytes = 8;
constexpr std::size_t kColumnCount = 16;

void skipBlanks(std::string_view& text) {
    while (text.starts_with(' ')) {
        text.remove_prefix(1);
    }
}

// The whole text as one number.
template <class Number>
std::optional<Number> numberIn(std::string_view text, int base) {
    Number number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number, base);
    if (error != std::errc() || rest != end) {
        return std::nullopt;
    }
    return number;
}

std::string_view withoutLineEnd(std::string_view text) {
    if (text.ends_with('\n')) {
        text.remove_suffix(1);
    }
    return text;
}

bool namesAFile(std::string_view name) {
    return !name.empty() && name != "." && name != ".." &&
           name.find_first_of(std::string_view("/ \t\0", 4)) == std::string_view::npos;
}

// A line such as "  eth0: 120 1 0 0 0 0 0 0 85 1 0 0 0 0 0 0". Old kernels put no space behind the
// colon where the number is wide.
std::optional<NetworkDevice> parseDevice(std::string_view line) {
    skipBlanks(line);
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos || !namesAFile(line.substr(0, colon))) {
        return std::nullopt;
    }
    const std::string_view name = line.substr(0, colon);
    line.remove_prefix(colon + 1);

    std::array<std::uint64_t, kColumnCount> columns{};
    for (std::uint64_t& column : columns) {
        skipBlanks(line);
        const char* const end = line.data() + line.size();
        const auto [rest, error] = std::from_chars(line.data(), end, column);
        if (error != std::errc() || (rest != end && *rest != ' ')) {
            return std::nullopt;
        }
        line.remove_prefix(static_cast<std::size_t>(rest - line.data()));
    }
    skipBlanks(line);
    if (!line.empty()) {
        return std::nullopt;
    }
    return NetworkDevice{
        .name = name, .received = columns[kReceivedBytes], .sent = columns[kSentBytes]};
}

}  // namespace

std::optional<std::vector<NetworkDevice>> parseNetworkDevices(std::string_view text) {
    std::vector<NetworkDevice> devices;
    // Two lines of headings, with bars between their columns.
    int headings = 2;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        if (end == std::string_view::npos) {
            return std::nullopt;
        }
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(end + 1);
        if (headings > 0) {
            --headings;
            if (line.find('|') == std::string_view::npos) {
                return std::nullopt;
            }
            continue;
        }
        const std::optional<NetworkDevice> device = parseDevice(line);
        if (!device) {
            return std::nullopt;
        }
        devices.push_back(*device);
    }
    if (headings > 0) {
        return std::nullopt;
    }
    return devices;
}

std::optional<std::uint32_t> parseInterfaceNumber(std::string_view text) {
    const auto index = numberIn<std::uint32_t>(withoutLineEnd(text), 10);
    return index && *index != 0 ? index : std::nullopt;
}

std::optional<std::uint32_t> parseInterfaceFlags(std::string_view text) {
    text = withoutLineEnd(text);
    if (!text.starts_with("0x")) {
        return std::nullopt;
    }
    return numberIn<std::uint32_t>(text.substr(2), 16);
}

}  // namespace tarnwick::platform
