// SPDX-License-Identifier: MIT
#include "platform/workers.h"

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <utility>

namespace tarnwick::platform {
namespace {

/// Shared by the one who waits and the work, which may come back when nobody waits any more.
struct Wait {
    std::mutex lock;
    std::condition_variable ended;
    /// Guarded by `lock`.
    bool hasEnded = false;
};

class NoWorkers final : public Workers {
 public:
    Outcome run(std::function<void()> work, double) override {
        work();
        return Outcome::ended;
    }
};

}  // namespace

ThreadWorkers::ThreadWorkers(Start start) : start_(std::move(start)) {}

Workers::Outcome ThreadWorkers::run(std::function<void()> work, double seconds) {
    const auto wait = std::make_shared<Wait>();
    const bool isStarted = start_([wait, work = std::move(work)]() mutable {
        work();
        work = nullptr;
        {
            const std::lock_guard guard(wait->lock);
            wait->hasEnded = true;
        }
        wait->ended.notify_one();
    });
    if (!isStarted) {
        return Outcome::refused;
    }
    std::unique_lock guard(wait->lock);
    const bool hasEnded = wait->ended.wait_for(guard, std::chrono::duration<double>(seconds),
                                               [&wait] { return wait->hasEnded; });
    return hasEnded ? Outcome::ended : Outcome::late;
}

Workers& noWorkers() {
    static NoWorkers& workers = *new NoWorkers();
    return workers;
}

}  // namespace tarnwick::platform
