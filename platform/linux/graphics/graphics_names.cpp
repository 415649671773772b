// SPDX-License-Identifier: MIT
#include "platform/linux/graphics/graphics_names.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <unistd.h>

#include "core/records/text.h"
#include "platform/linux/files/kept_file.h"

namespace tarnwick::platform {

namespace {

constexpr std::string_view kAmdVendor = "1002";

bool isSameIgnoringCase(std::string_view text, std::string_view lowerCase) {
    return std::equal(
        text.begin(), text.end(), lowerCase.begin(), lowerCase.end(), [](char one, char lower) {
            return one == lower || (one >= 'A' && one <= 'F' && one - 'A' + 'a' == lower);
        });
}

/// The name after four digits and white space. Absent if the line begins with other digits.
std::optional<std::string_view> nameBehind(std::string_view digits, std::string_view line) {
    if (line.size() < 5 || !isSameIgnoringCase(line.substr(0, 4), digits) ||
        (line[4] != ' ' && line[4] != '\t')) {
        return std::nullopt;
    }
    return trimmed(line.substr(4));
}

/// The name in brackets, under which the chip is sold: "Radeon RX 7900 XTX" of "Navi 31 [Radeon RX
/// 7900 XTX]". Without brackets the whole name.
std::string_view soldAs(std::string_view name) {
    const std::size_t bracket = name.rfind('[');
    if (!name.ends_with(']') || bracket == std::string_view::npos) {
        return name;
    }
    const std::string_view inside = trimmed(name.substr(bracket + 1, name.size() - bracket - 2));
    return inside.empty() ? name : inside;
}

/// Removes the part up to the next comma from the text and returns it.
std::string_view takeField(std::string_view& text) {
    const std::size_t comma = text.find(',');
    const std::string_view field = trimmed(text.substr(0, comma));
    text.remove_prefix(comma == std::string_view::npos ? text.size() : comma + 1);
    return field;
}

/// Passes the lines of a file to a search until the search has finished. A line that is longer than
/// the buffer is skipped; the databases have none.
template <class Search>
void searchFile(const std::string& path, Search& search) {
    const FileDescriptor file(path);
    std::array<char, 16384> buffer;
    std::size_t kept = 0;
    bool isLineTooLong = false;
    while (file.isOpen()) {
        const ssize_t size = ::read(file.get(), buffer.data() + kept, buffer.size() - kept);
        if (size < 0 && errno == EINTR) {
            continue;
        }
        if (size <= 0) {
            return;
        }
        std::string_view text(buffer.data(), kept + static_cast<std::size_t>(size));
        for (std::size_t end = text.find('\n'); end != std::string_view::npos;
             end = text.find('\n')) {
            if (!isLineTooLong && !search.take(text.substr(0, end))) {
                return;
            }
            isLineTooLong = false;
            text.remove_prefix(end + 1);
        }
        if (text.size() == buffer.size()) {
            isLineTooLong = true;
            text.remove_prefix(text.size());
        }
        std::memmove(buffer.data(), text.data(), text.size());
        kept = text.size();
    }
}

}  // namespace

PciNameSearch::PciNameSearch(std::string_view vendor, std::string_view device)
    : vendor_(vendor), device_(device) {}

bool PciNameSearch::take(std::string_view line) {
    if (line.empty() || line.starts_with('#')) {
        return true;
    }
    if (!line.starts_with('\t')) {
        const bool wasInVendor = isInVendor_;
        isInVendor_ = nameBehind(vendor_, line).has_value();
        return !wasInVendor || isInVendor_;
    }
    if (!isInVendor_) {
        return true;
    }
    // Lines of a device's boards have one more tab, so they do not match.
    const std::optional<std::string_view> name = nameBehind(device_, line.substr(1));
    if (!name || name->empty()) {
        return true;
    }
    name_ = soldAs(*name);
    return false;
}

AmdNameSearch::AmdNameSearch(std::string_view device, std::string_view revision)
    : device_(device), revision_(revision) {}

bool AmdNameSearch::take(std::string_view line) {
    if (line.starts_with('#') || !isSameIgnoringCase(takeField(line), device_) ||
        !isSameIgnoringCase(takeField(line), revision_)) {
        return true;
    }
    const std::string_view name = trimmed(line);
    if (name.empty()) {
        return true;
    }
    name_ = name;
    return false;
}

std::string graphicsName(const std::string& root, std::string_view vendor, std::string_view device,
                         std::string_view revision) {
    if (vendor.empty() || device.empty()) {
        return {};
    }
    if (vendor == kAmdVendor && !revision.empty()) {
        AmdNameSearch search(device, revision);
        searchFile(belowRoot(root, "usr/share/libdrm/amdgpu.ids"), search);
        if (search.name()) {
            return *search.name();
        }
    }
    for (const std::string_view place : {"usr/share/misc/pci.ids", "usr/share/hwdata/pci.ids"}) {
        PciNameSearch search(vendor, device);
        searchFile(belowRoot(root, place), search);
        if (search.name()) {
            return *search.name();
        }
    }
    return {};
}

}  // namespace tarnwick::platform
