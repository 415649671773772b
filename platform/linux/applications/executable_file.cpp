// SPDX-License-Identifier: MIT
#include "platform/linux/applications/executable_file.h"

#include <algorithm>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/files/list_items.h"

namespace tarnwick::platform {

namespace {

// Whether this user may execute the file.
bool isExecutable(const std::filesystem::path& file) {
    struct stat found {};
    return ::stat(file.c_str(), &found) == 0 && S_ISREG(found.st_mode) &&
           ::access(file.c_str(), X_OK) == 0;
}

}  // namespace

std::filesystem::path findExecutable(std::string_view name, std::string_view list,
                                     const std::filesystem::path& root) {
    const std::filesystem::path program = name;
    const auto below = [&root](const std::filesystem::path& path) {
        return root / path.relative_path();
    };
    if (program.is_absolute()) {
        return isExecutable(below(program)) ? below(program) : std::filesystem::path();
    }
    if (program.empty() || program.has_parent_path()) {
        return {};
    }
    for (const std::filesystem::path folder : listItems(list)) {
        if (folder.is_absolute() && isExecutable(below(folder / program))) {
            return below(folder / program);
        }
    }
    return {};
}

}  // namespace tarnwick::platform
