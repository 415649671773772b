#include "platform/linux/graphics/graphics_files.h"

#include <algorithm>
#include <charconv>
#include <system_error>

#include "core/records/text.h"

namespace tarnwick::platform {

namespace {

std::optional<std::uint64_t> wholeNumber(std::string_view text, int base) {
    std::uint64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number, base);
    if (error != std::errc() || rest != end) {
        return std::nullopt;
    }
    return number;
}

std::optional<std::uint32_t> hexadecimal(std::string_view text, std::size_t digits) {
    const std::optional<std::uint64_t> number = wholeNumber(text, 16);
    if (text.size() != digits || !number) {
        return std::nullopt;
    }
    return static_cast<std::uint32_t>(*number);
}

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                                    : character;
    });
    return lower;
}

void takeLine(GraphicsIdentity& identity, std::string_view name, std::string_view value) {
    if (name == "DRIVER") {
        identity.driver = value;
    } else if (name == "PCI_SLOT_NAME") {
        identity.slot = value;
    } else if (name == "PCI_CLASS") {
        // The last two digits are the programming interface.
        identity.deviceClass = static_cast<std::uint32_t>(wholeNumber(value, 16).value_or(0) >> 8);
    } else if (name == "PCI_ID" && value.size() == 9 && value[4] == ':' &&
               hexadecimal(value.substr(0, 4), 4) && hexadecimal(value.substr(5), 4)) {
        identity.vendor = lowerCase(value.substr(0, 4));
        identity.device = lowerCase(value.substr(5));
    }
}

/// Calls `take` with every finished line, without its line break.
template <class Take>
void forEachLine(std::string_view text, Take take) {
    for (std::size_t end = text.find('\n'); end != std::string_view::npos; end = text.find('\n')) {
        take(text.substr(0, end));
        text.remove_prefix(end + 1);
    }
}

struct SlotParts {
    std::uint32_t domain;
    std::uint32_t location;
};

std::optional<SlotParts> partsOfSlot(std::string_view slot) {
    if (slot.size() != 12 || slot[4] != ':' || slot[7] != ':' || slot[10] != '.') {
        return std::nullopt;
    }
    const auto domain = hexadecimal(slot.substr(0, 4), 4);
    const auto bus = hexadecimal(slot.substr(5, 2), 2);
    const auto device = hexadecimal(slot.substr(8, 2), 2);
    const auto function = hexadecimal(slot.substr(11), 1);
    if (!domain || !bus || !device || !function || *device > 0x1F || *function > 7) {
        return std::nullopt;
    }
    return SlotParts{.domain = *domain, .location = *bus << 8 | *device << 3 | *function};
}

}  // namespace

GraphicsIdentity parseGraphicsIdentity(std::string_view uevent) {
    GraphicsIdentity identity;
    forEachLine(uevent, [&identity](std::string_view line) {
        if (const std::size_t equals = line.find('='); equals != std::string_view::npos) {
            takeLine(identity, line.substr(0, equals), line.substr(equals + 1));
        }
    });
    return identity;
}

std::optional<std::uint64_t> parseCount(std::string_view text) {
    if (!text.ends_with('\n')) {
        return std::nullopt;
    }
    return wholeNumber(text.substr(0, text.size() - 1), 10);
}

std::optional<double> parsePercentage(std::string_view text) {
    const std::optional<std::uint64_t> number = parseCount(text);
    if (!number || *number > 100) {
        return std::nullopt;
    }
    return static_cast<double>(*number);
}

std::string_view firstLineOf(std::string_view text) {
    return trimmed(text.substr(0, text.find('\n')));
}

std::optional<std::uint32_t> locationOfSlot(std::string_view slot) {
    const std::optional<SlotParts> parts = partsOfSlot(slot);
    return parts ? std::optional(parts->location) : std::nullopt;
}

std::optional<std::uint32_t> domainOfSlot(std::string_view slot) {
    const std::optional<SlotParts> parts = partsOfSlot(slot);
    return parts ? std::optional(parts->domain) : std::nullopt;
}

std::optional<std::uint64_t> parseNamedCount(std::string_view text, std::string_view name) {
    std::optional<std::uint64_t> count;
    forEachLine(text, [&count, name](std::string_view line) {
        if (line.starts_with(name) && line.substr(name.size()).starts_with(' ')) {
            count = wholeNumber(line.substr(name.size() + 1), 10);
        }
    });
    return count;
}

}  // namespace tarnwick::platform
