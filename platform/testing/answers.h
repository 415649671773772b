// SPDX-License-Identifier: MIT
// Answers of scripted operations, and a record of the calls.
#pragma once

#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace tarnwick::platform::testing {

/// The answers of one operation: first the queued ones, each once, then the standing one for every
/// further call. Any thread.
template <class T>
class Answers {
 public:
    explicit Answers(T standing) { set(std::move(standing)); }

    /// Sets the answer for every call that finds no queued answer.
    void set(T standing) {
        compute([standing = std::move(standing)] { return standing; });
    }
    /// Computes the standing answer at each call, on the caller's thread, one call at a time.
    void compute(std::function<T()> standing) {
        const std::lock_guard guard(lock_);
        standing_ = std::move(standing);
    }
    /// Answers one call, after those that were queued before.
    void queue(T once) {
        const std::lock_guard guard(lock_);
        queued_.push_back(std::move(once));
    }
    /// Forgets the queued answers that no call has taken.
    void dropQueued() {
        const std::lock_guard guard(lock_);
        queued_.clear();
    }

    /// The next answer. Only the scripted operation calls this.
    T take() {
        const std::lock_guard guard(lock_);
        if (queued_.empty()) {
            return standing_();
        }
        T answer = std::move(queued_.front());
        queued_.pop_front();
        return answer;
    }

 private:
    std::mutex lock_;
    std::deque<T> queued_;
    std::function<T()> standing_;
};

/// The calls that were made, in order. Any thread.
class CallRecord {
 public:
    void add(std::string call) {
        const std::lock_guard guard(lock_);
        calls_.push_back(std::move(call));
    }
    std::vector<std::string> all() const {
        const std::lock_guard guard(lock_);
        return calls_;
    }
    void clear() {
        const std::lock_guard guard(lock_);
        calls_.clear();
    }

 private:
    mutable std::mutex lock_;
    std::vector<std::string> calls_;
};

}  // namespace tarnwick::platform::testing
