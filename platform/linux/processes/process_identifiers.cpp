#include "platform/linux/processes/process_identifiers.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <dirent.h>
#include <memory>
#include <system_error>

namespace tarnwick::platform {

std::int32_t parseProcessIdentifier(std::string_view name) {
    if (name.empty() || name.front() < '1' || name.front() > '9') {
        return 0;
    }
    std::int32_t identifier = 0;
    const char* const end = name.data() + name.size();
    const auto [rest, error] = std::from_chars(name.data(), end, identifier);
    return error == std::errc() && rest == end ? identifier : 0;
}

bool listProcessIdentifiers(const std::string& folder, std::vector<std::int32_t>& identifiers) {
    identifiers.clear();
    struct Close {
        void operator()(DIR* opened) const { ::closedir(opened); }
    };
    const std::unique_ptr<DIR, Close> opened(::opendir(folder.c_str()));
    if (!opened) {
        return false;
    }
    errno = 0;
    while (const dirent* entry = ::readdir(opened.get())) {
        if (const std::int32_t identifier = parseProcessIdentifier(entry->d_name)) {
            identifiers.push_back(identifier);
        }
    }
    if (errno != 0) {
        identifiers.clear();
        return false;
    }
    // The kernel lists them in order; other file systems may not.
    if (!std::ranges::is_sorted(identifiers)) {
        std::ranges::sort(identifiers);
    }
    return true;
}

}  // namespace tarnwick::platform
