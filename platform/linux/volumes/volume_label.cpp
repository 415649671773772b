// SPDX-License-Identifier: MIT
#include "platform/linux/volumes/volume_label.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <sstream>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/linux/files/kept_file.h"

namespace tarnwick::platform {

std::string decodedHexEscapes(std::string_view text) {
    std::string decoded;
    decoded.reserve(text.size());
    for (std::size_t index = 0; index < text.size(); ++index) {
        unsigned char byte = 0;
        if (text.substr(index).starts_with("\\x") && index + 3 < text.size()) {
            const char* const digits = text.data() + index + 2;
            const auto [rest, error] = std::from_chars(digits, digits + 2, byte, 16);
            if (error == std::errc() && rest == digits + 2) {
                decoded += static_cast<char>(byte);
                index += 3;
                continue;
            }
        }
        decoded += text[index];
    }
    return decoded;
}

std::optional<std::string> labelOf(const std::string& root, const Mount& mount) {
    std::vector<std::filesystem::path> devices;
    std::istringstream sources(mount.source);
    for (std::string source; std::getline(sources, source, ':');) {
        std::error_code missing;
        auto device = std::filesystem::canonical(belowRoot(root, source), missing);
        if (source.starts_with('/') && !missing) {
            devices.push_back(std::move(device));
        }
    }
    // The source may be no device, as "/dev/root" is none.
    const auto isDevice = [&](const std::filesystem::path& target) {
        const std::string numbers =
            belowRoot(root, "sys/class/block/" + target.filename().native() + "/dev");
        return std::ranges::find(devices, target) != devices.end() ||
               (!mount.device.starts_with("0:") && readWholeFile(numbers) == mount.device + "\n");
    };
    std::error_code error;
    std::optional<std::string> label;
    std::filesystem::directory_iterator entry(belowRoot(root, "dev/disk/by-label"), error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        std::error_code broken;
        if (!isDevice(std::filesystem::canonical(entry->path(), broken)) || broken) {
            continue;
        }
        std::string name = decodedHexEscapes(entry->path().filename().native());
        if (!label || name < *label) {
            label = std::move(name);
        }
    }
    return label;
}

}  // namespace tarnwick::platform
