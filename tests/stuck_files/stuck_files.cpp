// SPDX-License-Identifier: MIT
// Preloaded into a program: files that hang as those of a dead disk or driver do, and files of
// another machine.
//
// TARNWICK_STUCK_FILES lists the beginnings of paths, with colons between them, and
// TARNWICK_STUCK_VOLUMES more of them. While the file that TARNWICK_STUCK_WHILE names exists,
// whoever opens one of the former or asks for the file system of one of the latter waits.
//
// TARNWICK_OTHER_FILES names a folder. A file that lies in it under its whole path is opened in the
// place of the machine's own.
#include <cstdarg>
#include <cstdlib>
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <string>
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

std::string placeOf(const char* path) {
    const char* const folder = std::getenv("TARNWICK_OTHER_FILES");
    const std::string other = folder != nullptr ? std::string(folder) + path : "";
    return !other.empty() && ::access(other.c_str(), F_OK) == 0 ? other : path;
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
    return next<int (*)(const char*, int, mode_t)>("open")(placeOf(path).c_str(), flags, mode);
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
