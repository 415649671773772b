// SPDX-License-Identifier: MIT
// The per-user store in one JSON file, which its user may edit at any time.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "core/records/published.h"
#include "platform/dispatch.h"
#include "platform/linux/events/standard_error.h"
#include "platform/linux/settings/settings_file.h"
#include "platform/user_defaults.h"

namespace tarnwick::platform {

/// Memory is what every reader is answered from; only background work touches the disk, one at a
/// time. What is set in one turn of the main queue goes to the file together, from the next turn
/// on: the file is read, what was set is put into it, and the whole replaces it. So what somebody
/// else has written under other keys stays, and becomes memory's, too.
///
/// What cannot be written stays in memory and is tried again at the next look at the file, the next
/// set() and settle(); where somebody else has changed the same key meanwhile, that edit counts.
/// A file that holds no settings is renamed and a new one begun: at the start and the end at once,
/// else where it still is the same after a moment, since it might be on its way. What is no file or
/// may not be read is left alone. The user is told about each of these in one line, once.
///
/// Dates are stored as numbers, so each number is a date, too. Values: any thread; what else there
/// is: main thread.
class JsonUserDefaults final : public UserDefaults {
 public:
    /// How long the start and the end of the program wait for the disk.
    static constexpr std::chrono::milliseconds kPatience{1000};
    /// Seconds from a change in the folder to a look at the file: editors make several.
    static constexpr double kDelay = 0.1;

    using Notice = std::function<void(std::string_view)>;

    /// Begins to read `file`; empty means that there is no place for one. `dispatch` must outlive
    /// what it is given to run.
    JsonUserDefaults(std::filesystem::path file, Dispatch& dispatch,
                     Notice notice = &platform::notice);
    /// Waits for nothing; settle() does.
    ~JsonUserDefaults() override;

    std::optional<DefaultsValue> object(std::string_view key) override;
    void set(std::string_view key, const DefaultsValue& value) override;
    bool contains(std::string_view key) override;
    /// False until the file has been read; there may be something under every key then.
    bool isComplete() override;
    bool hasAnswered() override;
    std::optional<Date> date(std::string_view key) override;
    [[nodiscard]] Subscription onExternalChange(std::function<void()> observer) override;

    /// For the start and the end of the program: brings what is under way, and what is not written
    /// yet, to its end. False when the disk refused or took longer than `patience`.
    bool settle(std::chrono::milliseconds patience = kPatience);

    /// Readable when folderMayHaveChanged() is to be called; -1 where the system cannot tell.
    int watchDescriptor() const;
    void folderMayHaveChanged();

 private:
    /// What the background holds, too; it may be left behind there.
    struct Channel;

    /// Brings what has been set to the file, which is looked at in any case. Where the system
    /// starts no thread for it, the next call does.
    void exchange(std::unique_lock<std::mutex>& guard, bool isPatient);
    /// What was in flight waits again, but for `yielded` and what has been set since then.
    void putBack(const std::set<std::string>& yielded);
    void takeOutcome();
    void lookLater();
    /// Work for a later turn, unless this is gone by then.
    std::function<void()> later(std::function<void()> work);

    const std::filesystem::path file_;
    Dispatch& dispatch_;
    const Notice notice_;
    const std::shared_ptr<Channel> channel_;
    /// Expires with this.
    const std::shared_ptr<int> self_ = std::make_shared<int>();
    // Main thread.
    Announcer external_;
    std::set<std::string> told_;
    std::string fileName_;
    bool isLookQueued_ = false;

    // Guarded by the channel's lock.
    /// What readers see: what is in the file as last known, over it what waits to be written, over
    /// it what is set in this turn.
    SettingsDocument memory_;
    SettingsDocument base_;
    SettingsValues waiting_;
    /// Keys of what waits and could not be written before.
    std::set<std::string> tried_;
    SettingsValues inFlight_;
    SettingsValues fresh_;
    /// The file has been read, or there was none.
    bool isKnown_ = false;
    /// An exchange has come to its end.
    bool hasAnswered_ = false;
    bool isTurnQueued_ = false;
    bool isRunning_ = false;
    /// What came too late for the exchange that is running.
    bool isAgain_ = false;
    /// Of a file that held no settings when it was looked at; all 0 otherwise.
    FileStamp suspect_;
};

}  // namespace tarnwick::platform
