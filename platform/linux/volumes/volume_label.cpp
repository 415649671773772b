#include "platform/linux/volumes/volume_label.h"

#include <charconv>
#include <filesystem>
#include <system_error>

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

std::optional<std::string> labelOfDevice(const std::string& root, const std::string& device) {
    std::error_code error;
    const std::filesystem::path target = std::filesystem::canonical(belowRoot(root, device), error);
    if (error) {
        return std::nullopt;
    }
    std::optional<std::string> label;
    std::filesystem::directory_iterator entry(belowRoot(root, "dev/disk/by-label"), error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        std::error_code broken;
        if (std::filesystem::canonical(entry->path(), broken) != target) {
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
