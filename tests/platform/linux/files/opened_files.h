// SPDX-License-Identifier: MIT
// Which files were opened.
#pragma once

#include <array>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <sys/inotify.h>
#include <unistd.h>

namespace tarnwick::platform::testing {

/// Notices when files are opened, by any process.
class OpenedFiles {
 public:
    OpenedFiles() : watcher_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {}
    OpenedFiles(const OpenedFiles&) = delete;
    OpenedFiles& operator=(const OpenedFiles&) = delete;
    ~OpenedFiles() {
        if (watcher_ >= 0) {
            ::close(watcher_);
        }
    }

    /// False if the machine does not support it.
    bool watch(const std::string& root, std::string_view path) {
        const std::string file = root + "/" + std::string(path);
        return watcher_ >= 0 &&
               ::inotify_add_watch(watcher_, file.c_str(), IN_OPEN | IN_ACCESS) >= 0;
    }

    /// Whether a watched file was opened or read since the last call.
    bool any() {
        alignas(inotify_event) std::array<char, 4096> events;
        bool seen = false;
        while (::read(watcher_, events.data(), events.size()) > 0) {
            seen = true;
        }
        return seen;
    }

 private:
    const int watcher_;
};

}  // namespace tarnwick::platform::testing
