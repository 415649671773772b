// SPDX-License-Identifier: MIT
#include "platform/linux/volumes/mountinfo.h"

#include <algorithm>
#include <utility>

namespace tarnwick::platform {

namespace {

// Removes the text up to the next space, and that space, from the front and returns the text.
std::optional<std::string_view> takeField(std::string_view& line) {
    const std::size_t end = line.find(' ');
    if (end == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view field = line.substr(0, end);
    line.remove_prefix(end + 1);
    return field;
}

// "36 35 98:0 /root /mount/point rw,noatime master:1 - ext4 /dev/source rw"
std::optional<Mount> parseLine(std::string_view line) {
    takeField(line);
    takeField(line);
    const std::optional<std::string_view> device = takeField(line);
    takeField(line);
    const std::optional<std::string_view> mountPoint = takeField(line);
    if (!device || !mountPoint || !mountPoint->starts_with('/')) {
        return std::nullopt;
    }
    // Any number of optional fields follows; a single dash ends them.
    std::optional<std::string_view> field;
    do {
        field = takeField(line);
    } while (field && *field != "-");
    takeField(line);
    const std::optional<std::string_view> source = takeField(line);
    if (!field || !source) {
        return std::nullopt;
    }
    return Mount{.mountPoint = decodedOctalEscapes(*mountPoint),
                 .source = decodedOctalEscapes(*source),
                 .device = std::string(*device),
                 .options = std::string(line)};
}

bool holds(std::string_view mountPoint, std::string_view path) {
    return mountPoint == "/" || path == mountPoint ||
           (path.starts_with(mountPoint) && path[mountPoint.size()] == '/');
}

}  // namespace

std::optional<Mount> mountOf(std::string_view mountInfo, std::string_view path) {
    std::optional<Mount> best;
    while (true) {
        const std::size_t end = mountInfo.find('\n');
        if (end == std::string_view::npos) {
            return best;
        }
        std::optional<Mount> mount = parseLine(mountInfo.substr(0, end));
        mountInfo.remove_prefix(end + 1);
        if (mount && holds(mount->mountPoint, path) &&
            (!best || mount->mountPoint.size() >= best->mountPoint.size())) {
            best = std::move(mount);
        }
    }
}

bool hasUserQuota(const Mount& mount) {
    std::string_view rest = mount.options;
    while (!rest.empty()) {
        const std::string_view option = rest.substr(0, rest.find(','));
        rest.remove_prefix(std::min(option.size() + 1, rest.size()));
        if (option == "usrquota" || option == "quota" || option.starts_with("usrjquota=")) {
            return true;
        }
    }
    return false;
}

std::string decodedOctalEscapes(std::string_view text) {
    const auto digit = [](char character) { return character >= '0' && character <= '7'; };
    std::string decoded;
    decoded.reserve(text.size());
    for (std::size_t index = 0; index < text.size(); ++index) {
        if (text[index] == '\\' && index + 3 < text.size() && text[index + 1] <= '3' &&
            digit(text[index + 1]) && digit(text[index + 2]) && digit(text[index + 3])) {
            decoded += static_cast<char>((text[index + 1] - '0') * 64 +
                                         (text[index + 2] - '0') * 8 + (text[index + 3] - '0'));
            index += 3;
        } else {
            decoded += text[index];
        }
    }
    return decoded;
}

}  // namespace tarnwick::platform
