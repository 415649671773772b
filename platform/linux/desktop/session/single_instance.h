// SPDX-License-Identifier: MIT
// One Tarnwick per session: other starts, launchers and keys ask the one that runs.
#pragma once

#include <QDBusConnection>
#include <QLockFile>
#include <QObject>
#include <QString>
#include <QVariant>
#include <functional>
#include <optional>

#include "platform/linux/desktop/session/command_line.h"
#include "platform/linux/identifier.h"

namespace tarnwick::platform {

/// Name of the session's display: that of the compositor if there is one, else that of the X server
/// without the screen number.
QString displayName();

/// The running program does what is asked of it. `activationToken` is the compositor's permission
/// to come to the front; empty if there is none.
using Perform = std::function<void(Request request, const QString& activationToken)>;

/// Main thread.
class SingleInstance final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

 public:
    static constexpr auto kService = kIdentifier;
    static constexpr auto kPath = "/org/tarnwick/Tarnwick";
    static constexpr auto kInterface = "org.freedesktop.Application";

    enum class Claim {
        /// This process is the one.
        first,
        /// Another instance runs and was asked. This process should end with status 0.
        handedOver,
        /// Another instance runs, could not be reached and did not end.
        unanswered,
    };

    /// Claims by a name on `bus`, if that is connected, and by a lock for `display` in
    /// `runtimeFolder`. The folder is private to the user; without a usable folder there is no
    /// lock. The lock detects an instance on another bus or without a bus, but cannot reach it.
    SingleInstance(QDBusConnection bus, const QString& runtimeFolder, const QString& display = {});
    ~SingleInstance() override;

    /// Call this once at the start, before anything else is made. It is the only place that waits
    /// for the bus. A second start passes `request` on and waits at most `answerMilliseconds` for
    /// the first one; if the first one is just ending, this process takes its place.
    Claim claim(Request request = Request::openPanel, int answerMilliseconds = 5000);

    /// Gives up the claim: from now on a new start becomes the owner. For an exit that takes some
    /// time; further calls do no harm.
    void release();

    /// `perform` is called on the main thread for each request. The last request from before this
    /// call is fulfilled now.
    void setPerform(Perform perform);

    /// Other starts and the desktop's launchers call these over the bus.
 public Q_SLOTS:
    Q_SCRIPTABLE void Activate(const QVariantMap& platformData);
    /// The program has no documents: the same as Activate.
    Q_SCRIPTABLE void Open(const QStringList& addresses, const QVariantMap& platformData);
    /// `action` is "open-panel", "toggle-panel" or "settings"; others are passed over.
    Q_SCRIPTABLE void ActivateAction(const QString& action, const QVariantList& parameters,
                                     const QVariantMap& platformData);

 private:
    bool takeName();
    bool takeLock();
    void perform(Request request, const QVariantMap& platformData);

    QDBusConnection bus_;
    std::optional<QLockFile> lock_;
    Perform perform_;
    /// What was asked for during the start.
    std::function<void()> early_;
    bool ownsName_ = false;
};

}  // namespace tarnwick::platform
