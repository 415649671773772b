// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/session/qt_dispatch.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QTimer>
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <ctime>
#include <deque>
#include <mutex>
#include <optional>
#include <utility>

namespace tarnwick::platform {
namespace {

/// Longest time for the event loop's timer, seconds: a much longer one does not fit into an int of
/// milliseconds. For later moments the timer is armed again on the way.
constexpr double kLongestAlarm = 86400;

double monotonicSeconds() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

}  // namespace

/// Runs queued work from the event loop. One posted event serves all work that waits.
class QtDispatch::MainQueue final : public QObject {
 public:
    void add(std::function<void()> work) {
        bool mustPost = false;
        {
            const std::lock_guard guard(lock_);
            queue_.push_back(std::move(work));
            mustPost = !std::exchange(posted_, true);
        }
        // Posts after the lock is released: otherwise the woken main thread would have to wait for
        // it. If the main thread takes the work in between, the event finds an empty queue.
        if (mustPost) {
            post();
        }
    }

 protected:
    bool event(QEvent* event) override {
        if (event->type() != kind()) {
            return QObject::event(event);
        }
        runTurn();
        return true;
    }

 private:
    static QEvent::Type kind() {
        static const int type = QEvent::registerEventType();
        return static_cast<QEvent::Type>(type);
    }

    void post() { QCoreApplication::postEvent(this, new QEvent(kind())); }

    /// The next work of this turn; empty when there is none.
    std::function<void()> take() {
        const std::lock_guard guard(lock_);
        if (queue_.empty()) {
            return nullptr;
        }
        auto work = std::move(queue_.front());
        queue_.pop_front();
        // The work may run the event loop itself; the rest of the queue then runs there.
        if (!queue_.empty() && !std::exchange(posted_, true)) {
            post();
        }
        return work;
    }

    /// Runs the work that is queued now. Work that is added meanwhile waits for the next turn.
    void runTurn() {
        std::size_t left = 0;
        {
            const std::lock_guard guard(lock_);
            posted_ = false;
            left = queue_.size();
        }
        for (; left > 0; --left) {
            if (const auto work = take()) {
                work();
            }
        }
        const std::lock_guard guard(lock_);
        if (queue_.empty() && std::exchange(posted_, false)) {
            QCoreApplication::removePostedEvents(this, kind());
        }
    }

    std::mutex lock_;
    // Guarded by lock_.
    std::deque<std::function<void()>> queue_;
    /// An event is on its way, or about to be.
    bool posted_ = false;
};

/// The one timer of the event loop.
class QtDispatch::Alarm final {
 public:
    explicit Alarm(std::function<void()> handler) {
        timer_.setSingleShot(true);
        timer_.setTimerType(Qt::PreciseTimer);
        QObject::connect(&timer_, &QTimer::timeout, &timer_, std::move(handler));
    }

    /// Arms the timer for `time`; without a time, stops it.
    void set(std::optional<double> time) {
        if (!time) {
            timer_.stop();
            return;
        }
        // Rounded up, because the timer counts whole milliseconds and must not fire early.
        const double seconds = std::clamp(*time - monotonicSeconds(), 0.0, kLongestAlarm);
        timer_.start(static_cast<int>(std::ceil(seconds * 1000)));
    }

 private:
    QTimer timer_;
};

QtDispatch::QtDispatch(std::chrono::milliseconds patience)
    : mainQueue_(std::make_unique<MainQueue>()),
      alarm_(std::make_unique<Alarm>([this] {
          // If the alarm fires early, nothing is due and it is only armed again.
          timers_.runDue(now());
          alarm_->set(timers_.nextWake());
      })),
      timers_([this] { alarm_->set(timers_.nextWake()); }),
      background_(patience) {}

QtDispatch::~QtDispatch() = default;

double QtDispatch::now() const {
    return monotonicSeconds();
}

void QtDispatch::async(std::function<void()> work) {
    mainQueue_->add(std::move(work));
}

void QtDispatch::asyncAfter(double seconds, std::function<void()> work) {
    timers_.scheduleOnce(now() + std::max(0.0, seconds), std::move(work));
}

bool QtDispatch::detached(std::function<void()> work) {
    return background_.run(std::move(work));
}

std::unique_ptr<Timer> QtDispatch::scheduleRepeating(double interval,
                                                     std::function<void()> handler) {
    return timers_.scheduleRepeating(now(), interval, std::move(handler));
}

}  // namespace tarnwick::platform
