// Work off the main thread, at a priority that never gets in anybody's way.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>

namespace tarnwick::platform {

/// One thread waits for work, without any polling, and runs it at nice +10 under the batch policy
/// (both only asked for: a system that refuses is not argued with). Work that comes while every
/// thread is busy, perhaps stuck on a dead network mount, gets a thread made for it; a thread that
/// finds nothing left to do ends, unless it is the only one waiting. So pieces of work do not hold
/// each other up until kThreadLimit of them are stuck; what comes then waits for the first that
/// gets through. The threads take no signals. Any thread may add work.
class BackgroundWork {
 public:
    static constexpr std::size_t kThreadLimit = 4;

    /// Makes no thread yet. `patience` is how long the destructor waits for running work.
    explicit BackgroundWork(std::chrono::milliseconds patience = std::chrono::milliseconds(250));
    BackgroundWork(const BackgroundWork&) = delete;
    BackgroundWork& operator=(const BackgroundWork&) = delete;
    /// Drops the work that has not begun and joins the threads. A thread whose work does not end
    /// within `patience` is left to itself, for stuck work must not keep the program from ending;
    /// it touches nothing of this object any more, but its work may still touch what it was given,
    /// which therefore has to live as long as the process.
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
