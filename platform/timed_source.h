// SPDX-License-Identifier: MIT
// A source that may hang: read by a worker, waited for a while, and never asked by two.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include "platform/workers.h"

namespace tarnwick::platform {

/// Seconds that a worker is waited for: what a fast refresh reads, and everything else.
inline constexpr double kSensorPatience = 0.25;
inline constexpr double kSourcePatience = 1;

/// Any thread but the main one; calls take turns. `Record` is a value.
template <class Record>
class TimedSource {
 public:
    /// For so many readings in a row the last record stands for one that did not come.
    static constexpr int kReadingsWithoutAnswer = 3;

    /// `patience` is in seconds. With no `readingsWithoutAnswer` only what comes in time counts,
    /// for who has to know whether an answer came. Requires: `workers` outlives this object.
    TimedSource(Workers& workers, double patience,
                int readingsWithoutAnswer = kReadingsWithoutAnswer)
        : workers_(workers), patience_(patience), readingsWithoutAnswer_(readingsWithoutAnswer) {}

    /// What `ask` returns. If it does not return in time or cannot be started: the last record, for
    /// up to `readingsWithoutAnswer` readings in a row; then absent, as where there is none. While
    /// it has not returned, it is not asked again and no longer waited for. What comes late counts
    /// as the last record. What `ask` uses must live until it returns, which may be never.
    std::optional<Record> read(std::function<Record()> ask) {
        const std::lock_guard guard(lock_);
        if (out_ && take()) {
            out_.reset();
        }
        if (!out_) {
            out_ = std::make_shared<Answer>();
            const auto outcome = workers_.run(
                [answer = out_, ask = std::move(ask)] {
                    Record record = ask();
                    const std::lock_guard inner(answer->lock);
                    answer->record = std::move(record);
                },
                patience_);
            const bool isBack = outcome == Workers::Outcome::ended && take();
            if (isBack || outcome == Workers::Outcome::refused) {
                out_.reset();
            }
            if (isBack) {
                return last_;
            }
        }
        if (missed_ == readingsWithoutAnswer_) {
            last_.reset();
        } else {
            ++missed_;
        }
        return last_;
    }

 private:
    struct Answer {
        std::mutex lock;
        /// Guarded by `lock`; absent until the worker is back.
        std::optional<Record> record;
    };

    /// Whether the worker that is out is back; its record is then the last one.
    bool take() {
        const std::lock_guard guard(out_->lock);
        if (!out_->record) {
            return false;
        }
        last_ = std::move(out_->record);
        missed_ = 0;
        return true;
    }

    Workers& workers_;
    const double patience_;
    const int readingsWithoutAnswer_;
    std::mutex lock_;
    // Guarded by lock_.
    /// Where the worker that is out will leave its record; null while none is out.
    std::shared_ptr<Answer> out_;
    std::optional<Record> last_;
    /// Readings in a row that the last record stood for.
    int missed_ = 0;
};

}  // namespace tarnwick::platform
