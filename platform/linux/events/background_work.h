// SPDX-License-Identifier: MIT
// Work outside the main thread, as a rule at a low priority that does not disturb other programs.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <thread>

namespace tarnwick::platform {

/// Runs work on at most kThreadLimit threads. Any thread may add work.
///
/// Up to kIdleLimit threads wait for work without polling: a refresh, and a worker that it waits
/// for. If all threads are busy when work comes, perhaps stuck on a dead network mount, a new
/// thread is made for it; a thread that finds no more work ends, unless it is one of those that
/// wait. So one piece of work does not delay another until kThreadLimit of them are stuck, which is
/// more than there are sources; later work then waits for the first thread that becomes free. The
/// threads receive no signals.
class BackgroundWork {
 public:
    static constexpr std::size_t kThreadLimit = 32;
    static constexpr std::size_t kIdleLimit = 2;
    static constexpr std::chrono::milliseconds kPatience{250};

    enum class Priority {
        /// Nice +10 under the batch policy, for work that nobody waits for; threads run without
        /// either where the system refuses it.
        low,
        /// That of the thread that adds work and waits for it.
        inherited,
    };

    /// Starts a thread; throws std::system_error where the system refuses.
    using MakeThread = std::function<std::thread(std::function<void()>)>;

    /// Makes no thread yet. `patience` is how long the destructor waits for running work.
    explicit BackgroundWork(std::chrono::milliseconds patience = kPatience,
                            MakeThread makeThread = makeSystemThread,
                            Priority priority = Priority::low);
    explicit BackgroundWork(Priority priority)
        : BackgroundWork(kPatience, makeSystemThread, priority) {}
    BackgroundWork(const BackgroundWork&) = delete;
    BackgroundWork& operator=(const BackgroundWork&) = delete;
    /// Drops work that has not begun and joins the threads. If a thread's work does not end within
    /// `patience`, the thread is left behind, because stuck work must not keep the program from
    /// ending. Such a thread no longer uses this object, but its work may still use the objects it
    /// was given. Requires: those objects live as long as the process.
    ~BackgroundWork();

    /// False if a thread is needed and none can be started now: the work is dropped.
    bool run(std::function<void()> work);

    /// Threads that exist now: at work or waiting for some.
    std::size_t threadCount() const;

 private:
    struct State;

    static std::thread makeSystemThread(std::function<void()> body);

    std::shared_ptr<State> state_;
    std::chrono::milliseconds patience_;
};

}  // namespace tarnwick::platform
