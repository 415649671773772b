// SPDX-License-Identifier: MIT
// Preloaded into a program: files that hang as those of a dead disk or driver do.
//
// TARNWICK_STUCK_FILES lists the beginnings of paths, with colons between them, and
// TARNWICK_STUCK_VOLUMES more of them. While the file that TARNWICK_STUCK_WHILE names exists,
// whoever opens one of the former or asks for the file system of one of the latter waits.
#include <cstdarg>
#include <cstdlib>
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <string_view>
#include <sys/statvfs.h>
#include <unistd.h>

namespace {

template <class Function>
Function next(const char* name) {
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

bool isStuck(std::string_view path, const char* variable) {
    const char* const list = std::getenv(variable);
    std::string_view left = list != nullptr ? list : "";
    while (!left.empty()) {
        const std::string_view one = left.substr(0, left.find(':'));
        if (path.substr(0, one.size()) == one) {
            return true;
        }
        left.remove_prefix(one.size() == left.size() ? one.size() : one.size() + 1);
    }
    return false;
}

void waitWhileStuck(const char* path, const char* variable = "TARNWICK_STUCK_FILES") {
    const char* const condition = std::getenv("TARNWICK_STUCK_WHILE");
    if (condition == nullptr || !isStuck(path, variable)) {
        return;
    }
    while (::access(condition, F_OK) == 0) {
        ::usleep(10'000);
    }
}

mode_t modeOf(int flags, va_list arguments) {
    return (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    waitWhileStuck(path);
    return next<int (*)(const char*, int, mode_t)>("open")(path, flags, mode);
}

int openat(int folder, const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    waitWhileStuck(path);
    return next<int (*)(int, const char*, int, mode_t)>("openat")(folder, path, flags, mode);
}

DIR* opendir(const char* path) {
    waitWhileStuck(path);
    return next<DIR* (*)(const char*)>("opendir")(path);
}

int statvfs(const char* path, struct statvfs* figures) noexcept {
    waitWhileStuck(path, "TARNWICK_STUCK_VOLUMES");
    return next<int (*)(const char*, struct statvfs*)>("statvfs")(path, figures);
}

}  // extern "C"
