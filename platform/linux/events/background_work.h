// Work outside the main thread, at a low priority that does not disturb other programs.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>

namespace tarnwick::platform {

/// Runs work on at most kThreadLimit threads, at nice +10 under the batch policy; if the system
/// refuses the priority or the policy, the threads run without it. Any thread may add work.
///
/// One thread waits for work without polling. If all threads are busy when work comes, perhaps
/// stuck on a dead network mount, a new thread is made for it; a thread that finds no more work
/// ends, unless it is the only one waiting. So one piece of work does not delay another until
/// kThreadLimit of them are stuck; later work then waits for the first thread that becomes free.
/// The threads receive no signals.
class BackgroundWork {
 public:
    static constexpr std::size_t kThreadLimit = 4;

    /// Makes no thread yet. `patience` is how long the destructor waits for running work.
    explicit BackgroundWork(std::chrono::milliseconds patience = std::chrono::milliseconds(250));
    BackgroundWork(const BackgroundWork&) = delete;
    BackgroundWork& operator=(const BackgroundWork&) = delete;
    /// Drops work that has not begun and joins the threads. If a thread's work does not end within
    /// `patience`, the thread is left behind, because stuck work must not keep the program from
    /// ending. Such a thread no longer uses this object, but its work may still use the objects it
    /// was given. Requires: those objects live as long as the process.
    ~BackgroundWork();

    void run(std::function<void()> work);

    /// Threads that exist now: at work or waiting for some.
    std::size_t threadCount() const;

 private:
    struct State;

    std::shared_ptr<State> state_;
    std::chrono::milliseconds patience_;
};

}  // namespace tarnwick::platform
