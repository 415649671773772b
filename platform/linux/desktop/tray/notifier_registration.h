// SPDX-License-Identifier: MIT
// Keeps the status item registered with the StatusNotifier watcher of the session.
#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <functional>
#include <optional>
#include <string>

#include "platform/linux/desktop/session/service_signals.h"

namespace tarnwick::platform {

/// File name of the executable of a process; empty when it cannot be read.
std::string programOfProcess(unsigned processId);

/// Registers again whenever a watcher appears or is replaced. Everything is asynchronous; main
/// thread.
class NotifierRegistration final : public QObject {
    Q_OBJECT

 public:
    enum class State {
        /// The bus has not answered yet.
        unknown,
        /// There is no watcher, it has no host that would draw the item, or there is no bus.
        absent,
        /// There is a host that has not accepted the item yet. It may read the item's content
        /// already.
        registering,
        /// A host draws the item.
        present,
    };
    using ProgramOf = std::function<std::string(unsigned processId)>;

    /// Milliseconds from a refusal to the next attempt: twice as long after each, up to a limit.
    struct RetryDelays {
        int first = 300;
        int longest = 10'000;

        /// The delay after attempt number `attempt`, from 1.
        int after(int attempt) const;
    };

    NotifierRegistration(QDBusConnection bus, ProgramOf programOf, RetryDelays retryDelays);
    /// Releases the item's bus name; hosts then remove the item.
    ~NotifierRegistration() override;

    State state() const { return state_; }
    /// The executable's file name of the program that owns the watcher; empty when not known.
    const std::string& program() const { return program_; }

    /// Begins to follow. `changed` is called for every change of state or program, with
    /// `registering` before the item is registered, so that the host's first look finds the right
    /// content. A watcher that refuses the item is asked again for as long as it is there.
    void start(std::function<void()> changed);

 private:
    void ownerChanged(const QString& owner);
    void hostRegistered();
    void hostUnregistered();
    void ask(const QString& owner);
    void registerItem(int attempt);
    void publish();

    QDBusConnection bus_;
    ProgramOf programOf_;
    RetryDelays retryDelays_;
    std::function<void()> changed_;
    /// Absent until start().
    std::optional<ServiceSignals> watcher_;
    /// The name hosts know the item by; empty until the bus has granted one.
    QString service_;
    QString owner_;
    /// Number of owners so far. It identifies answers about an earlier owner.
    int generation_ = 0;
    std::optional<std::string> askedProgram_;
    std::optional<bool> hasHost_;
    /// Whether the watcher was asked to accept the item.
    bool isAsked_ = false;
    /// Whether the watcher has accepted it.
    bool isTaken_ = false;
    State state_ = State::unknown;
    std::string program_;
};

}  // namespace tarnwick::platform
