// SPDX-License-Identifier: MIT
#include <algorithm>
#include <charconv>
#include <cstdint>
#include <filesystem>
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

/// The number of "card3"; absent for its connectors, such as "card3-DP-1", and other names.
std::optional<std::uint32_t> cardNumber(std::string_view name) {
    constexpr std::string_view prefix = "card";
    std::uint32_t number = 0;
    const char* const end = name.data() + name.size();
    if (!name.starts_with(prefix)) {
        return std::nullopt;
    }
    const auto [rest, error] = std::from_chars(name.data() + prefix.size(), end, number);
    return error == std::errc() && rest == end ? std::optional(number) : std::nullopt;
}

GraphicsIdentity identityIn(const std::string& folder) {
    return parseGraphicsIdentity(readWholeFile(folder + "/uevent").value_or(""));
}

}  // namespace

std::vector<GraphicsDevice> findGraphicsDevices(const std::string& root) {
    const std::string drm = belowRoot(root, "sys/class/drm");
    std::map<std::uint32_t, GraphicsDevice> cards;
    for (const std::string& name : namesIn(drm)) {
        if (const std::optional<std::uint32_t> number = cardNumber(name)) {
            const std::string folder = drm + "/" + name;
            cards[*number] = {.folder = folder + "/device",
                              .card = folder,
                              .identity = identityIn(folder + "/device")};
        }
    }

    std::vector<GraphicsDevice> devices;
    for (auto& [number, card] : cards) {
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
