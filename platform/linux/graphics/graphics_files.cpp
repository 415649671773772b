// SPDX-License-Identifier: MIT
#include "platform/linux/graphics/graphics_files.h"

#include <algorithm>
#include <charconv>
#include <cstring>
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

/// The part of a text up to `separator`, which is removed from the text with the separator.
std::string_view takeUntil(std::string_view& text, char separator) {
    const std::size_t end = text.find(separator);
    const std::string_view part = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return part;
}

/// The number in two bytes of a table that the kernel wrote.
std::uint16_t pairAt(std::string_view table, std::size_t offset) {
    std::uint16_t number = 0;
    std::memcpy(&number, table.data() + offset, sizeof number);
    return number;
}

/// An engine class while its lines are collected.
struct EngineLines {
    std::string_view engine;
    std::optional<std::uint64_t> nanoseconds{};
    std::optional<std::uint64_t> cycles{};
    std::uint64_t totalCycles = 0;
    std::uint64_t capacity = 1;
};

void takeLine(std::vector<EngineLines>& lines, std::string_view key, std::string_view value) {
    constexpr std::string_view kinds[] = {"drm-engine-capacity-", "drm-engine-",
                                          "drm-total-cycles-", "drm-cycles-"};
    const auto* const kind = std::ranges::find_if(
        kinds, [key](std::string_view prefix) { return key.starts_with(prefix); });
    if (kind == std::end(kinds)) {
        return;
    }
    const std::optional<std::uint64_t> number = wholeNumber(takeUntil(value, ' '), 10);
    if (!number) {
        return;
    }
    const std::string_view engine = key.substr(kind->size());
    auto known = std::ranges::find(lines, engine, &EngineLines::engine);
    if (known == lines.end()) {
        known = lines.insert(lines.end(), {.engine = engine});
    }
    switch (kind - kinds) {
        case 0:
            known->capacity = std::max<std::uint64_t>(*number, 1);
            break;
        case 1:
            known->nanoseconds = value == "ns" ? number : std::nullopt;
            break;
        case 2:
            known->totalCycles = *number;
            break;
        default:
            known->cycles = number;
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

std::optional<double> percentageOf(double figure) {
    constexpr double greatestOvershoot = 120;
    if (!(figure >= 0 && figure <= greatestOvershoot)) {
        return std::nullopt;
    }
    return std::min(figure, 100.0);
}

std::optional<double> parsePercentage(std::string_view text) {
    const std::optional<std::uint64_t> number = parseCount(text);
    return number ? percentageOf(static_cast<double>(*number)) : std::nullopt;
}

std::optional<double> parseAverageActivity(std::string_view table) {
    // Size of the table, two bytes, and two numbers of its layout.
    constexpr std::size_t header = 4;
    if (table.size() < header || table[2] != 1) {
        return std::nullopt;
    }
    const int layout = static_cast<unsigned char>(table[3]);
    if (layout > 8) {
        return std::nullopt;
    }
    const std::size_t offset = layout == 0 ? 28 : layout <= 3 ? 16 : 12;
    const std::size_t size = pairAt(table, 0);
    if (size < offset + 2 || table.size() < size) {
        return std::nullopt;
    }
    return percentageOf(pairAt(table, offset));
}

std::optional<ClientTimes> parseClientTimes(std::string_view fdinfo) {
    std::optional<std::uint64_t> client;
    std::vector<EngineLines> lines;
    forEachLine(fdinfo, [&](std::string_view line) {
        const std::string_view key = takeUntil(line, ':');
        const std::string_view value =
            line.substr(std::min(line.find_first_not_of("\t "), line.size()));
        if (key == "drm-client-id") {
            client = wholeNumber(value, 10);
        } else {
            takeLine(lines, key, value);
        }
    });
    if (!client) {
        return std::nullopt;
    }
    ClientTimes times{.client = *client};
    for (const EngineLines& line : lines) {
        const bool isByCycles = !line.nanoseconds && line.cycles && line.totalCycles > 0;
        if (line.nanoseconds || isByCycles) {
            times.engines.push_back({.engine = std::string(line.engine),
                                     .busy = isByCycles ? *line.cycles : *line.nanoseconds,
                                     .total = isByCycles ? line.totalCycles : 0,
                                     .capacity = line.capacity});
        }
    }
    return times;
}

std::vector<EngineTime> parseQueueTimes(std::string_view stats) {
    std::vector<EngineTime> queues;
    forEachLine(stats, [&queues](std::string_view line) {
        const std::string_view queue = takeUntil(line, '\t');
        const auto moment = wholeNumber(takeUntil(line, '\t'), 10);
        takeUntil(line, '\t');
        const auto busy = wholeNumber(line, 10);
        if (queue != "cpu" && moment.value_or(0) > 0 && busy) {
            queues.push_back({.engine = std::string(queue), .busy = *busy, .total = *moment});
        }
    });
    return queues;
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
