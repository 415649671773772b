// SPDX-License-Identifier: MIT
#include "platform/linux/files/folders.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/files/last_error.h"

namespace tarnwick::platform {

void makeLasting(const std::filesystem::path& folder) {
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor >= 0) {
        ::fsync(descriptor);
        ::close(descriptor);
    }
}

std::error_code makeFolder(const std::filesystem::path& folder) {
    if (::mkdir(folder.c_str(), 0700) == 0) {
        makeLasting(folder.parent_path());
        return {};
    }
    std::error_code error = lastError();
    if (error == std::errc::file_exists) {
        return {};
    }
    if (error == std::errc::no_such_file_or_directory && folder.has_relative_path()) {
        error = makeFolder(folder.parent_path());
        if (!error && ::mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) {
            error = lastError();
        }
        makeLasting(folder.parent_path());
    }
    return error;
}

}  // namespace tarnwick::platform
