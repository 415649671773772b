// SPDX-License-Identifier: MIT
// A thread that is joined when it goes out of scope.
#pragma once

#include <thread>
#include <utility>

namespace tarnwick::platform::testing {

/// In place of std::jthread, which the C++ library of macOS lacks.
class JoinedThread {
 public:
    JoinedThread() = default;
    template <class Work>
    explicit JoinedThread(Work work) : thread_(std::move(work)) {}
    JoinedThread(JoinedThread&&) noexcept = default;
    /// Requires: this has no thread.
    JoinedThread& operator=(JoinedThread&&) noexcept = default;
    ~JoinedThread() {
        if (thread_.joinable()) {
            thread_.join();
        }
    }

 private:
    std::thread thread_;
};

}  // namespace tarnwick::platform::testing
