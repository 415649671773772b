// SPDX-License-Identifier: MIT
// Opens the desktop's own system monitor.
#pragma once

#include <QObject>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>

#include "platform/dispatch.h"
#include "platform/linux/desktop/session/activation_token.h"

namespace tarnwick::platform {

/// Conditions that programs started from here inherit: those with which this program was started.
struct StartConditions {
    QProcessEnvironment environment;
    /// Limit of open files; present if this program has raised its own limit.
    std::optional<std::size_t> descriptorLimit{};
};

/// Starts the system monitor that findSystemMonitor() finds, and looks for it in the background.
/// Main thread.
class ActivityMonitor {
 public:
    /// Asks for a token, as requestActivationToken() does.
    using RequestToken = std::function<decltype(requestActivationToken)>;

    /// `opened` is called after each start. Requires: `dispatch` outlives what it is given to run.
    ActivityMonitor(StartConditions conditions, Dispatch& dispatch, std::function<void()> opened,
                    RequestToken requestToken = requestActivationToken);

    /// The monitor is not a child of this process and runs in its own session and, if the user has
    /// a service manager that answers, in its own unit: it does not end with this program and is
    /// not counted as part of it. Nothing happens if there is none, or if it cannot be started,
    /// which the user is told by notice(), or while an earlier call is still looking.
    void open();

 private:
    const StartConditions conditions_;
    Dispatch& dispatch_;
    const std::function<void()> opened_;
    const RequestToken requestToken_;
    /// What to start, once it has been looked for; without arguments if there is no monitor.
    struct Found {
        QStringList arguments;
        QProcessEnvironment environment;
    };

    /// Starts the monitor if it was found and the token is there.
    void start();

    bool isOpening_ = false;
    std::optional<Found> found_;
    /// Of the compositor, for the press that the monitor is opened by; empty if there is none,
    /// absent while the compositor is asked.
    std::optional<QString> token_;
    /// Receives that answer, as long as this exists.
    QObject answers_;
    /// Expires with this.
    const std::shared_ptr<ActivityMonitor*> self_ = std::make_shared<ActivityMonitor*>(this);
};

}  // namespace tarnwick::platform
