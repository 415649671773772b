// SPDX-License-Identifier: MIT
#include "services/application_name.h"

#include <algorithm>
#include <cstddef>

#include "platform/utf8.h"

namespace tarnwick {
namespace {

constexpr std::string_view kBundleSuffix = ".app";

char lowercased(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                                : character;
}

bool isBundle(std::string_view piece) {
    if (piece.size() < kBundleSuffix.size()) {
        return false;
    }
    piece.remove_prefix(piece.size() - kBundleSuffix.size());
    for (std::size_t i = 0; i < piece.size(); ++i) {
        if (lowercased(piece[i]) != kBundleSuffix[i]) {
            return false;
        }
    }
    return true;
}

/// Removes the next non-empty component from the front of the path and returns it; empty at the end
/// of the path.
std::string_view takePiece(std::string_view& path) {
    path.remove_prefix(std::min(path.find_first_not_of('/'), path.size()));
    const std::string_view piece = path.substr(0, path.find('/'));
    path.remove_prefix(piece.size());
    return piece;
}

/// The last piece of the path; "/" for the root.
std::string lastPathComponent(std::string_view path) {
    std::string_view last;
    for (std::string_view piece = takePiece(path); !piece.empty(); piece = takePiece(path)) {
        last = piece;
    }
    return std::string(last.empty() ? "/" : last);
}

}  // namespace

std::optional<std::string> enclosingBundlePath(std::string_view executablePath) {
    std::string growing;
    for (std::string_view piece = takePiece(executablePath); !piece.empty();
         piece = takePiece(executablePath)) {
        growing += '/';
        growing += piece;
        if (isBundle(piece)) {
            return growing;
        }
    }
    return std::nullopt;
}

std::optional<std::string> applicationName(platform::ProcessTable& table, std::int32_t identifier) {
    const std::optional<platform::RunningApplication> application =
        table.runningApplication(identifier);
    std::optional<std::string> localizedName;
    if (application) {
        localizedName = application->localizedName;
    }
    if (localizedName &&
        application->activationPolicy == platform::RunningApplication::kRegularPolicy) {
        return localizedName;
    }
    std::optional<std::string> path = table.executablePath(identifier);
    if (!path) {
        return localizedName;
    }
    path = platform::repairedUTF8(*path);
    const std::optional<std::string> bundle = enclosingBundlePath(*path);
    if (!bundle) {
        return localizedName ? localizedName : lastPathComponent(*path);
    }
    std::string name = table.displayName(*bundle);
    if (name.ends_with(kBundleSuffix)) {
        name.resize(name.size() - kBundleSuffix.size());
    }
    return name;
}

}  // namespace tarnwick
