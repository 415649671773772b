#include <algorithm>
#include <charconv>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <map>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/linux/files/kept_file.h"
#include "platform/linux/graphics/graphics_card.h"

namespace tarnwick::platform {

namespace {

constexpr std::uint32_t kDisplayBaseClass = 0x03;

std::vector<std::string> namesIn(const std::string& folder) {
    std::vector<std::string> names;
    std::error_code error;
    std::filesystem::directory_iterator entry(folder, error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        names.push_back(entry->path().filename().native());
    }
    std::sort(names.begin(), names.end());
    return names;
}

/// The parts of a name such as "card3" or its connector "card3-DP-1": the number after "card", and
/// the rest after the number.
struct CardName {
    std::uint32_t number = 0;
    std::string_view rest;
};

std::optional<CardName> parseCardName(std::string_view name) {
    constexpr std::string_view prefix = "card";
    if (!name.starts_with(prefix)) {
        return std::nullopt;
    }
    CardName card;
    const char* const end = name.data() + name.size();
    const auto [rest, error] = std::from_chars(name.data() + prefix.size(), end, card.number);
    if (error != std::errc()) {
        return std::nullopt;
    }
    card.rest = std::string_view(rest, static_cast<std::size_t>(end - rest));
    return card;
}

GraphicsIdentity identityIn(const std::string& folder) {
    return parseGraphicsIdentity(readWholeFile(folder + "/uevent").value_or(""));
}

}  // namespace

std::vector<GraphicsDevice> findGraphicsDevices(const std::string& root) {
    const std::string drm = belowRoot(root, "sys/class/drm");
    std::map<std::uint32_t, GraphicsDevice> cards;
    std::multimap<std::uint32_t, std::string> connectors;
    for (const std::string& name : namesIn(drm)) {
        const std::optional<CardName> card = parseCardName(name);
        if (!card) {
            continue;
        }
        const std::string folder = drm + "/" + name;
        if (card->rest.empty()) {
            cards[card->number] = {.folder = folder + "/device",
                                   .card = folder,
                                   .identity = identityIn(folder + "/device")};
        } else if (card->rest.starts_with('-')) {
            connectors.emplace(card->number, folder);
        }
    }

    std::vector<GraphicsDevice> devices;
    for (auto& [number, card] : cards) {
        const auto [first, last] = connectors.equal_range(number);
        std::transform(first, last, std::back_inserter(card.connectors),
                       [](const auto& connector) { return connector.second; });
        devices.push_back(std::move(card));
    }

    const std::string driver = belowRoot(root, "sys/bus/pci/drivers/nvidia");
    for (const std::string& name : namesIn(driver)) {
        const bool isKnown = std::any_of(
            devices.begin(), devices.end(),
            [&name](const GraphicsDevice& device) { return device.identity.slot == name; });
        if (isKnown || !locationOfSlot(name)) {
            continue;
        }
        GraphicsDevice device{.folder = driver + "/" + name,
                              .identity = identityIn(driver + "/" + name)};
        if (device.identity.deviceClass >> 8 == kDisplayBaseClass) {
            devices.push_back(std::move(device));
        }
    }
    return devices;
}

}  // namespace tarnwick::platform
