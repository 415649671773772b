// SPDX-License-Identifier: MIT
#include "platform/testing/manual_dispatch.h"

#include <algorithm>
#include <utility>

namespace tarnwick::platform::testing {

ManualDispatch::ManualDispatch(Background background, double startTime)
    : now_(startTime), background_(background) {}

void ManualDispatch::async(std::function<void()> work) {
    const std::lock_guard guard(lock_);
    ++asyncCount_;
    main_.push_back(std::move(work));
}

void ManualDispatch::asyncAfter(double seconds, std::function<void()> work) {
    timers_.scheduleOnce(now_ + std::max(0.0, seconds), std::move(work));
}

bool ManualDispatch::detached(std::function<void()> work) {
    if (refusesDetached_) {
        return false;
    }
    const std::lock_guard guard(lock_);
    ++detachedCount_;
    detached_.push_back(std::move(work));
    return true;
}

std::unique_ptr<Timer> ManualDispatch::scheduleRepeating(double interval,
                                                         std::function<void()> handler) {
    return timers_.scheduleRepeating(now_, interval, std::move(handler));
}

void ManualDispatch::runMain() {
    while (mainPending() > 0 || (background_ == Background::automatic && detachedPending() > 0)) {
        runMainTurn();
        if (background_ == Background::automatic) {
            runDetached();
        }
    }
}

void ManualDispatch::runMainTurn() {
    const bool before = std::exchange(inBackground_, false);
    for (std::size_t left = mainPending(); left > 0; --left) {
        if (const auto work = take(main_)) {
            work();
        }
    }
    inBackground_ = before;
}

bool ManualDispatch::runNextDetached() {
    auto work = take(detached_);
    if (!work) {
        return false;
    }
    const bool before = std::exchange(inBackground_, true);
    work();
    // Releases the work's captures in the background, too.
    work = nullptr;
    inBackground_ = before;
    return true;
}

void ManualDispatch::runDetached() {
    for (std::size_t left = detachedPending(); left > 0; --left) {
        runNextDetached();
    }
}

void ManualDispatch::advance(double seconds) {
    const double end = now_ + seconds;
    runMain();
    for (auto wake = timers_.nextWake(); wake && *wake <= end; wake = timers_.nextWake()) {
        now_ = std::max(now_, *wake);
        ++wakeUps_;
        timers_.runDue(now_);
        runMain();
    }
    now_ = end;
}

std::size_t ManualDispatch::mainPending() const {
    const std::lock_guard guard(lock_);
    return main_.size();
}

std::size_t ManualDispatch::detachedPending() const {
    const std::lock_guard guard(lock_);
    return detached_.size();
}

std::size_t ManualDispatch::asyncCount() const {
    const std::lock_guard guard(lock_);
    return asyncCount_;
}

std::size_t ManualDispatch::detachedCount() const {
    const std::lock_guard guard(lock_);
    return detachedCount_;
}

std::function<void()> ManualDispatch::take(Queue& queue) {
    const std::lock_guard guard(lock_);
    if (queue.empty()) {
        return nullptr;
    }
    auto work = std::move(queue.front());
    queue.pop_front();
    return work;
}

}  // namespace tarnwick::platform::testing
