// SPDX-License-Identifier: MIT
#include "platform/linux/events/background_work.h"

#include <algorithm>
#include <condition_variable>
#include <csignal>
#include <deque>
#include <list>
#include <mutex>
#include <sched.h>
#include <sys/resource.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>

namespace tarnwick::platform {
namespace {

constexpr int kNiceness = 10;

void lowerPriorityOfThisThread() {
    // On Linux niceness belongs to a thread, not to its process.
    setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), kNiceness);
    const sched_param parameters{};
    sched_setscheduler(0, SCHED_BATCH, &parameters);
}

/// Threads that start while this object lives receive no signals; the main thread handles them.
class SignalsBlocked {
 public:
    SignalsBlocked() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before_);
    }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

 private:
    sigset_t before_;
};

}  // namespace

/// The threads share ownership, so a thread that is left behind still finds its state.
struct BackgroundWork::State : std::enable_shared_from_this<State> {
    mutable std::mutex lock;
    // `lock` guards all members below.
    std::condition_variable workAdded;
    std::condition_variable threadEnded;
    std::deque<std::function<void()>> queue;
    std::list<std::thread> threads;
    /// Threads that have ended or are about to; the next caller of run() or the destructor joins
    /// them.
    std::list<std::thread> ended;
    std::size_t waiting = 0;
    MakeThread makeThread;
    Priority priority = Priority::low;
    bool stopping = false;

    /// The main loop of each thread.
    void serve();
    /// False if the system refuses. Requires: the caller holds the lock.
    bool addThread();
    void endThisThread();
};

bool BackgroundWork::State::addThread() {
    const SignalsBlocked guard;
    try {
        threads.push_back(makeThread([state = shared_from_this()] {
            pthread_setname_np(pthread_self(), "tarnwick-work");
            if (state->priority == Priority::low) {
                lowerPriorityOfThisThread();
            }
            state->serve();
        }));
    } catch (const std::system_error&) {
        return false;
    }
    return true;
}

void BackgroundWork::State::endThisThread() {
    const auto self = std::find_if(threads.begin(), threads.end(), [](const std::thread& thread) {
        return thread.get_id() == std::this_thread::get_id();
    });
    // A thread that was left behind is no longer in the list.
    if (self != threads.end()) {
        ended.splice(ended.end(), threads, self);
    }
    threadEnded.notify_all();
}

void BackgroundWork::State::serve() {
    std::unique_lock guard(lock);
    while (!stopping) {
        if (!queue.empty()) {
            auto work = std::move(queue.front());
            queue.pop_front();
            guard.unlock();
            work();
            // Releases the work's captures on this thread instead of the one that added the work.
            work = nullptr;
            guard.lock();
        } else if (waiting < kIdleLimit) {
            ++waiting;
            workAdded.wait(guard, [this] { return stopping || !queue.empty(); });
            --waiting;
        } else {
            break;
        }
    }
    endThisThread();
}

BackgroundWork::BackgroundWork(std::chrono::milliseconds patience, MakeThread makeThread,
                               Priority priority)
    : state_(std::make_shared<State>()), patience_(patience) {
    state_->makeThread = std::move(makeThread);
    state_->priority = priority;
}

std::thread BackgroundWork::makeSystemThread(std::function<void()> body) {
    return std::thread(std::move(body));
}

BackgroundWork::~BackgroundWork() {
    std::deque<std::function<void()>> dropped;
    std::list<std::thread> ended;
    {
        std::unique_lock guard(state_->lock);
        state_->stopping = true;
        dropped.swap(state_->queue);
        state_->workAdded.notify_all();
        state_->threadEnded.wait_for(guard, patience_, [this] { return state_->threads.empty(); });
        for (std::thread& stuck : state_->threads) {
            stuck.detach();
        }
        state_->threads.clear();
        ended.swap(state_->ended);
    }
    for (std::thread& thread : ended) {
        thread.join();
    }
}

bool BackgroundWork::run(std::function<void()> work) {
    std::list<std::thread> ended;
    bool isWaitedFor = false;
    bool isRefused = false;
    {
        const std::lock_guard guard(state_->lock);
        state_->queue.push_back(std::move(work));
        if (state_->waiting >= state_->queue.size()) {
            isWaitedFor = true;
        } else if (state_->threads.size() < kThreadLimit && !state_->addThread()) {
            // Nobody may ever come back for it: all threads may be stuck.
            work = std::move(state_->queue.back());
            state_->queue.pop_back();
            isRefused = true;
        }
        ended.swap(state_->ended);
    }
    // Notifies after the lock is released: otherwise the woken thread would have to wait for it.
    if (isWaitedFor) {
        state_->workAdded.notify_one();
    }
    for (std::thread& thread : ended) {
        thread.join();
    }
    return !isRefused;
}

std::size_t BackgroundWork::threadCount() const {
    const std::lock_guard guard(state_->lock);
    return state_->threads.size();
}

}  // namespace tarnwick::platform
