// SPDX-License-Identifier: MIT
#include "platform/linux/settings/json_user_defaults.h"

#include <condition_variable>
#include <set>
#include <string>
#include <utility>

namespace tarnwick::platform {

struct JsonUserDefaults::Channel {
    const SettingsWatch watch{};
    std::mutex lock{};
    std::condition_variable done{};
    /// Of the exchange that is running, when it has ended.
    std::optional<SettingsOutcome> outcome{};
};

JsonUserDefaults::JsonUserDefaults(std::filesystem::path file, Dispatch& dispatch, Notice notice)
    : file_(std::move(file)),
      dispatch_(dispatch),
      notice_(std::move(notice)),
      channel_(std::make_shared<Channel>()) {
    std::unique_lock guard(channel_->lock);
    exchange(guard, false);
}

JsonUserDefaults::~JsonUserDefaults() = default;

std::optional<DefaultsValue> JsonUserDefaults::object(std::string_view key) {
    const std::lock_guard guard(channel_->lock);
    return memory_.value(key);
}

bool JsonUserDefaults::contains(std::string_view key) {
    const std::lock_guard guard(channel_->lock);
    return !isKnown_ || memory_.contains(key);
}

bool JsonUserDefaults::isComplete() {
    const std::lock_guard guard(channel_->lock);
    return isKnown_;
}

bool JsonUserDefaults::hasAnswered() {
    const std::lock_guard guard(channel_->lock);
    return hasAnswered_;
}

std::optional<Date> JsonUserDefaults::date(std::string_view key) {
    const auto seconds = number(key);
    return seconds ? std::optional(Date{*seconds}) : std::nullopt;
}

void JsonUserDefaults::set(std::string_view key, const DefaultsValue& value) {
    const std::lock_guard guard(channel_->lock);
    if (memory_.set(key, value)) {
        fresh_.insert_or_assign(std::string(key), value);
    } else if (fresh_.empty() && waiting_.empty()) {
        return;
    }
    if (!std::exchange(isTurnQueued_, true)) {
        dispatch_.async(later([this] {
            std::unique_lock turn(channel_->lock);
            isTurnQueued_ = false;
            exchange(turn, true);
        }));
    }
}

Subscription JsonUserDefaults::onExternalChange(std::function<void()> observer) {
    return external_.observe(std::move(observer));
}

void JsonUserDefaults::exchange(std::unique_lock<std::mutex>& guard, bool isPatient) {
    // What is set from here on belongs to another turn.
    for (auto& [key, value] : std::exchange(fresh_, {})) {
        waiting_.insert_or_assign(key, std::move(value));
        tried_.erase(key);
    }
    if (std::exchange(isRunning_, true)) {
        isAgain_ = true;
        return;
    }
    inFlight_ = std::exchange(waiting_, {});
    SettingsExchange work{file_, base_, inFlight_, isKnown_ ? tried_ : std::set<std::string>(),
                          isPatient && isKnown_ ? std::optional(suspect_) : std::nullopt};
    guard.unlock();
    const bool isStarted =
        dispatch_.detached([channel = channel_, &dispatch = dispatch_, work = std::move(work),
                            take = later([this] { takeOutcome(); })] {
            auto outcome = work.perform(channel->watch);
            {
                const std::lock_guard done(channel->lock);
                channel->outcome = std::move(outcome);
            }
            channel->done.notify_all();
            dispatch.async(take);
        });
    guard.lock();
    if (!isStarted) {
        isRunning_ = false;
        putBack({});
    }
}

void JsonUserDefaults::putBack(const std::set<std::string>& yielded) {
    for (auto& [key, value] : std::exchange(inFlight_, {})) {
        if (yielded.count(key) == 0 && waiting_.try_emplace(key, std::move(value)).second) {
            tried_.insert(key);
        }
    }
}

void JsonUserDefaults::takeOutcome() {
    std::unique_lock guard(channel_->lock);
    if (!channel_->outcome) {
        return;
    }
    const SettingsOutcome outcome = *std::exchange(channel_->outcome, std::nullopt);
    isRunning_ = false;
    fileName_ = outcome.fileName;
    suspect_ = outcome.suspect.value_or(FileStamp{});
    const bool isFirst = !std::exchange(hasAnswered_, true) || (outcome.contents && !isKnown_);
    if (outcome.contents) {
        isKnown_ = true;
        base_ = *outcome.contents;
    }
    tried_.clear();
    if (!outcome.isWritten) {
        putBack(outcome.yielded);
    }
    inFlight_.clear();
    SettingsDocument next = base_;
    for (const SettingsValues* values : {&waiting_, &fresh_}) {
        for (const auto& [key, value] : *values) {
            next.set(key, value);
        }
    }
    const bool isOther = isFirst || !next.readsAs(memory_);
    memory_ = std::move(next);
    if (std::exchange(isAgain_, false)) {
        exchange(guard, true);
    }
    guard.unlock();
    if (outcome.suspect) {
        lookLater();
    }
    for (const std::string& line : outcome.lines) {
        if (told_.insert(line).second) {
            notice_(line);
        }
    }
    if (isOther) {
        external_.announce();
    }
}

bool JsonUserDefaults::settle(std::chrono::milliseconds patience) {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    std::unique_lock guard(channel_->lock);
    for (bool isTried = false;;) {
        if (!isRunning_) {
            const bool isDone = fresh_.empty() && waiting_.empty() && suspect_ == FileStamp{};
            if (isDone || std::exchange(isTried, true)) {
                return isDone && isKnown_;
            }
            exchange(guard, false);
            if (!isRunning_) {
                return false;
            }
        }
        if (!channel_->done.wait_until(guard, deadline,
                                       [this] { return channel_->outcome.has_value(); })) {
            return false;
        }
        guard.unlock();
        takeOutcome();
        guard.lock();
    }
}

int JsonUserDefaults::watchDescriptor() const {
    return channel_->watch.descriptor();
}

void JsonUserDefaults::folderMayHaveChanged() {
    // The folders above the file count, too: one of them may have been made.
    std::set<std::string> names(file_.begin(), file_.end());
    names.insert(fileName_);
    if (channel_->watch.concerns(names)) {
        lookLater();
    }
}

void JsonUserDefaults::lookLater() {
    if (!std::exchange(isLookQueued_, true)) {
        dispatch_.asyncAfter(kDelay, later([this] {
                                 isLookQueued_ = false;
                                 std::unique_lock guard(channel_->lock);
                                 exchange(guard, true);
                             }));
    }
}

std::function<void()> JsonUserDefaults::later(std::function<void()> work) {
    return [weak = std::weak_ptr(self_), work = std::move(work)] {
        if (const auto self = weak.lock()) {
            work();
        }
    };
}

}  // namespace tarnwick::platform
