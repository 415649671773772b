// One Tarnwick a session: the second start asks the first to open its panel.
#pragma once

#include <QDBusConnection>
#include <QLockFile>
#include <QObject>
#include <QString>
#include <functional>
#include <optional>

namespace tarnwick::platform {

/// Names the display of a session: the compositor's where there is one, else the X server's,
/// whichever of its screens.
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
        /// Another one runs and was asked to open its panel: end with status 0.
        handedOver,
        /// Another one runs and was not reached, and did not end either.
        unanswered,
    };

    /// By a name on `bus` where it is connected, and by a lock for `display` in `runtimeFolder`
    /// (private to the user; when empty or not usable there is no lock): it notices an instance
    /// that sees another bus, or none, but cannot reach it.
    SingleInstance(QDBusConnection bus, const QString& runtimeFolder, const QString& display = {});
    ~SingleInstance() override;

    /// Called once, at the start, before anything else is built: this is the one place that waits
    /// for the bus, and a second start for the first, at most `answerMilliseconds`. A first that is
    /// just ending is waited for and followed.
    Claim claim(int answerMilliseconds = 5000);

    /// From now on this process is not the one any more, and whoever starts is. For an end that
    /// takes its time; more often does no harm.
    void release();

    /// `openPanel` runs on the main thread whenever another start asks; one that asked before is
    /// made up for now.
    void setOpenPanel(std::function<void()> openPanel);

    /// What another start calls.
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
