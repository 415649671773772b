#include "platform/linux/settings/start_command.h"

#include <algorithm>
#include <string_view>
#include <system_error>
#include <utility>

namespace tarnwick::platform {
namespace {

bool isBelow(const std::filesystem::path& path, const std::filesystem::path& folder) {
    if (!folder.is_absolute()) {
        return false;
    }
    const std::filesystem::path above = folder.lexically_normal() / "";
    const auto [end, ignored] =
        std::mismatch(above.begin(), std::prev(above.end()), path.begin(), path.end());
    return end == std::prev(above.end());
}

/// Where `program` is found by its name in the folders of `list`: there itself or else by a link,
/// or through a folder that is one. Empty when it is not.
std::filesystem::path foundIn(std::string_view list, const std::filesystem::path& program) {
    std::filesystem::path link;
    while (!list.empty()) {
        const std::filesystem::path folder = list.substr(0, list.find(':'));
        list.remove_prefix(std::min(folder.native().size() + 1, list.size()));
        std::filesystem::path candidate = (folder / program.filename()).lexically_normal();
        if (!folder.is_absolute()) {
            continue;
        }
        if (candidate == program) {
            return program;
        }
        std::error_code error;
        if (link.empty() && std::filesystem::canonical(candidate, error) == program && !error) {
            link = std::move(candidate);
        }
    }
    return link;
}

}  // namespace

std::filesystem::path runningProgram(const std::filesystem::path& link) {
    std::error_code error;
    std::string path = std::filesystem::read_symlink(link, error).native();
    // What the kernel appends when the file was replaced by an update.
    if (const std::string_view deleted = " (deleted)";
        path.ends_with(deleted) && !std::filesystem::exists(path, error)) {
        path.resize(path.size() - deleted.size());
    }
    return std::filesystem::exists(path, error) ? std::filesystem::path(path)
                                                : std::filesystem::path();
}

std::vector<std::string> startCommand(const std::filesystem::path& program,
                                      const std::function<const char*(const char*)>& environment,
                                      const std::filesystem::path& root) {
    const auto value = [&environment](const char* name) {
        const char* const text = environment(name);
        return std::string(text != nullptr ? text : "");
    };
    if (program.empty()) {
        return {};
    }
    std::error_code ignored;
    const std::string flatpak = value("FLATPAK_ID");
    if (!flatpak.empty() && std::filesystem::exists(root / ".flatpak-info", ignored)) {
        return {"flatpak", "run", flatpak};
    }
    // The variables of an image or a snap are those of the terminal, too, that this program was
    // started from: they count only where they say where this program lies.
    const std::filesystem::path image = value("APPIMAGE");
    if (image.is_absolute() && isBelow(program, value("APPDIR"))) {
        return {image.native()};
    }
    const std::string snap = value("SNAP_INSTANCE_NAME");
    if (!snap.empty() && isBelow(program, value("SNAP"))) {
        return {"/snap/bin/" + snap};
    }
    const std::filesystem::path link = foundIn(value("PATH"), program);
    return {link.empty() ? program.native() : link.native()};
}

}  // namespace tarnwick::platform
