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
    pthread_setname_np(pthread_self(), "tarnwick-work");
}

/// Keeps every signal from threads made while it lives: signals are the main thread's.
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

/// Shared with the threads, so that one left behind finds it in place.
struct BackgroundWork::State : std::enable_shared_from_this<State> {
    mutable std::mutex lock;
    // All guarded by lock.
    std::condition_variable workAdded;
    std::condition_variable threadEnded;
    std::deque<std::function<void()>> queue;
    std::list<std::thread> threads;
    /// Threads on their way out, to be joined by whoever comes next.
    std::list<std::thread> ended;
    std::size_t waiting = 0;
    bool stopping = false;

    /// The life of one thread.
    void serve();
    /// The lock must be held.
    void addThread();
    void endThisThread();
};

void BackgroundWork::State::addThread() {
    const SignalsBlocked guard;
    try {
        threads.emplace_back([state = shared_from_this()] {
            lowerPriorityOfThisThread();
            state->serve();
        });
    } catch (const std::system_error&) {
        // No thread to be had now: the work stays queued for the next one that is free.
    }
}

void BackgroundWork::State::endThisThread() {
    const auto self = std::find_if(threads.begin(), threads.end(), [](const std::thread& thread) {
        return thread.get_id() == std::this_thread::get_id();
    });
    // One that was left behind is listed no more.
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
            // What the work holds is let go here, not on the thread that added it.
            work = nullptr;
            guard.lock();
        } else if (waiting == 0) {
            ++waiting;
            workAdded.wait(guard, [this] { return stopping || !queue.empty(); });
            --waiting;
        } else {
            break;
        }
    }
    endThisThread();
}

BackgroundWork::BackgroundWork(std::chrono::milliseconds patience)
    : state_(std::make_shared<State>()), patience_(patience) {}

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

void BackgroundWork::run(std::function<void()> work) {
    std::list<std::thread> ended;
    bool isWaitedFor = false;
    {
        const std::lock_guard guard(state_->lock);
        state_->queue.push_back(std::move(work));
        if (state_->waiting >= state_->queue.size()) {
            isWaitedFor = true;
        } else if (state_->threads.size() < kThreadLimit) {
            state_->addThread();
        }
        ended.swap(state_->ended);
    }
    // With the lock let go: the woken thread would only go back to sleep for it.
    if (isWaitedFor) {
        state_->workAdded.notify_one();
    }
    for (std::thread& thread : ended) {
        thread.join();
    }
}

std::size_t BackgroundWork::threadCount() const {
    const std::lock_guard guard(state_->lock);
    return state_->threads.size();
}

}  // namespace tarnwick::platform
