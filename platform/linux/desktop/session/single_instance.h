// SPDX-License-Identifier: MIT
// One Tarnwick per session: a second start asks the first one to open its panel.
#pragma once

#include <QDBusConnection>
#include <QLockFile>
#include <QObject>
#include <QString>
#include <functional>
#include <optional>

namespace tarnwick::platform {

/// Name of the session's display: that of the compositor if there is one, else that of the X server
/// without the screen number.
QString displayName();

/// Main thread.
class SingleInstance final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.tarnwick.Tarnwick")

 public:
    static constexpr auto kService = "org.tarnwick.Tarnwick";
    static constexpr auto kPath = "/org/tarnwick/Tarnwick";
    static constexpr auto kInterface = "org.tarnwick.Tarnwick";

    enum class Claim {
        /// This process is the one.
        first,
        /// Another instance runs and was asked to open its panel. This process should end with
        /// status 0.
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
    /// for the bus. A second start waits at most `answerMilliseconds` for the first one; if the
    /// first one is just ending, this process takes its place.
    Claim claim(int answerMilliseconds = 5000);

    /// Gives up the claim: from now on a new start becomes the owner. For an exit that takes some
    /// time; further calls do no harm.
    void release();

    /// `openPanel` is called on the main thread for each request of another start. A request from
    /// before this call is fulfilled now.
    void setOpenPanel(std::function<void()> openPanel);

    /// Other starts call this over the bus.
 public Q_SLOTS:
    Q_SCRIPTABLE void OpenPanel();

 private:
    bool takeName();
    bool takeLock();

    QDBusConnection bus_;
    std::optional<QLockFile> lock_;
    std::function<void()> openPanel_;
    bool askedEarly_ = false;
    bool ownsName_ = false;
};

}  // namespace tarnwick::platform
