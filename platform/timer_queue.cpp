// SPDX-License-Identifier: MIT
#include "platform/timer_queue.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace tarnwick::platform {
namespace {

/// Shortest interval of a timer, seconds.
constexpr double kShortestInterval = 0.0001;

}  // namespace

struct TimerQueue::Entry {
    std::function<void()> handler;
    /// Seconds between fire times; 0 for a single firing.
    double interval = 0;
    /// The fire times are anchor + n × interval: counted, never summed up, so that they do not
    /// drift.
    double anchor = 0;
    double count = 0;
    double tolerance = 0;
    bool valid = true;

    double fireTime() const { return anchor + count * interval; }

    void moveTo(double time) {
        anchor = time;
        count = 0;
    }

    /// To the first fire time after `now`.
    void moveOn(double now) {
        count = std::max(count + 1, std::floor((now - anchor) / interval));
        while (fireTime() <= now) {
            ++count;
        }
    }
};

struct TimerQueue::State {
    /// In the order of creation.
    std::vector<std::shared_ptr<Entry>> entries;
    std::function<void()> nextWakeChanged;

    void changed() const {
        if (nextWakeChanged) {
            nextWakeChanged();
        }
    }

    void remove(Entry& entry) {
        entry.valid = false;
        std::erase_if(entries, [&entry](const auto& other) { return other.get() == &entry; });
    }
};

class TimerQueue::Handle final : public Timer {
 public:
    Handle(std::weak_ptr<State> state, std::shared_ptr<Entry> entry)
        : state_(std::move(state)), entry_(std::move(entry)) {}
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() override { invalidateEntry(); }

    double fireTime() const override { return entry_->fireTime(); }
    void setFireTime(double seconds) override {
        entry_->moveTo(seconds);
        changed();
    }
    double tolerance() const override { return entry_->tolerance; }
    void setTolerance(double seconds) override {
        entry_->tolerance = std::max(0.0, seconds);
        changed();
    }
    void invalidate() override { invalidateEntry(); }

 private:
    void changed() {
        if (const auto state = state_.lock(); state && entry_->valid) {
            state->changed();
        }
    }
    void invalidateEntry() {
        if (const auto state = state_.lock(); state && entry_->valid) {
            state->remove(*entry_);
            state->changed();
        }
    }

    std::weak_ptr<State> state_;
    std::shared_ptr<Entry> entry_;
};

TimerQueue::TimerQueue(std::function<void()> nextWakeChanged) : state_(std::make_shared<State>()) {
    state_->nextWakeChanged = std::move(nextWakeChanged);
}

TimerQueue::~TimerQueue() {
    state_->nextWakeChanged = nullptr;
    for (const auto& entry : state_->entries) {
        entry->valid = false;
    }
}

std::unique_ptr<Timer> TimerQueue::scheduleRepeating(double now, double interval,
                                                     std::function<void()> handler) {
    auto entry = std::make_shared<Entry>();
    entry->handler = std::move(handler);
    entry->interval = std::max(interval, kShortestInterval);
    entry->anchor = now + entry->interval;
    state_->entries.push_back(entry);
    state_->changed();
    return std::make_unique<Handle>(state_, std::move(entry));
}

void TimerQueue::scheduleOnce(double fireTime, std::function<void()> handler) {
    auto entry = std::make_shared<Entry>();
    entry->handler = std::move(handler);
    entry->anchor = fireTime;
    state_->entries.push_back(std::move(entry));
    state_->changed();
}

std::optional<double> TimerQueue::nextWake() const {
    std::optional<double> wake;
    for (const auto& entry : state_->entries) {
        const double latest = entry->fireTime() + entry->tolerance;
        if (!wake || latest < *wake) {
            wake = latest;
        }
    }
    return wake;
}

void TimerQueue::runDue(double now) {
    // A handler may destroy the queue.
    const auto state = state_;
    std::vector<std::shared_ptr<Entry>> due;
    for (const auto& entry : state->entries) {
        if (entry->fireTime() <= now) {
            due.push_back(entry);
        }
    }
    std::stable_sort(due.begin(), due.end(),
                     [](const auto& a, const auto& b) { return a->fireTime() < b->fireTime(); });
    for (const auto& entry : due) {
        // An earlier handler may have invalidated, moved or fired it.
        if (!entry->valid || entry->fireTime() > now) {
            continue;
        }
        if (entry->interval > 0) {
            entry->moveOn(now);
        } else {
            state->remove(*entry);
        }
        // Called before the handler, because the handler may run the event loop itself.
        state->changed();
        entry->handler();
    }
}

}  // namespace tarnwick::platform
