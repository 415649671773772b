#include "platform/linux/desktop/session/single_instance.h"

#include <QDBusMessage>
#include <QDeadlineTimer>
#include <QRegularExpression>
#include <poll.h>
#include <utility>

#include "platform/linux/desktop/session/bus_calls.h"

namespace tarnwick::platform {
namespace {

/// Between two attempts to become the first, or to reach it.
constexpr int kPauseMilliseconds = 20;
/// For the bus itself, which answers at once unless it hangs.
constexpr int kBusMilliseconds = 5000;
/// A first that ends lets go of its lock when it lets go of its name; one that was killed, when it
/// is gone.
constexpr int kLockMilliseconds = 500;

}  // namespace

QString displayName() {
    const QString compositor = qEnvironmentVariable("WAYLAND_DISPLAY");
    // A screen's number follows the server's.
    static const QRegularExpression screen(R"((:\d+)\.\d+$)");
    return compositor.isEmpty() ? qEnvironmentVariable("DISPLAY").replace(screen, R"(\1)")
                                : compositor;
}

SingleInstance::SingleInstance(QDBusConnection bus, const QString& runtimeFolder,
                               const QString& display)
    : bus_(std::move(bus)) {
    if (!runtimeFolder.isEmpty()) {
        // A display may be named by a path, and they differ at their ends.
        lock_.emplace(runtimeFolder + "/tarnwick-" + QString(display).replace('/', '_').right(100) +
                      ".lock");
        // However long the program runs: the lock is another's as long as that one lives.
        lock_->setStaleLockTime(0);
    }
}

SingleInstance::~SingleInstance() {
    release();
}

void SingleInstance::release() {
    bus_.unregisterObject(kPath);
    // The lock first: whoever has the name wants it next.
    if (lock_) {
        lock_->unlock();
    }
    if (std::exchange(ownsName_, false)) {
        bus_.send(busCall("ReleaseName", {QString(kService)}));
    }
}

SingleInstance::Claim SingleInstance::claim(int answerMilliseconds) {
    // There before the name, so that whoever finds the name finds the object.
    bus_.registerObject(kPath, this, QDBusConnection::ExportScriptableSlots);
    const QDeadlineTimer deadline(answerMilliseconds);
    // A first that is ending does not answer, and lets go of the name.
    while (!takeName()) {
        QDBusMessage call =
            QDBusMessage::createMethodCall(kService, kPath, kInterface, "OpenPanel");
        call.setAutoStartService(false);
        const int remaining = static_cast<int>(deadline.remainingTime());
        if (remaining == 0) {
            release();
            return Claim::unanswered;
        }
        if (bus_.call(call, QDBus::Block, remaining).type() == QDBusMessage::ReplyMessage) {
            release();
            return Claim::handedOver;
        }
        ::poll(nullptr, 0, kPauseMilliseconds);
    }
    if (takeLock()) {
        return Claim::first;
    }
    release();
    return Claim::unanswered;
}

bool SingleInstance::takeName() {
    if (!bus_.isConnected()) {
        return true;
    }
    constexpr uint kDoNotQueue = 4;
    constexpr uint kExists = 3;
    const BusArguments answer =
        argumentsOf(bus_.call(busCall("RequestName", {QString(kService), kDoNotQueue}),
                              QDBus::Block, kBusMilliseconds),
                    "u");
    ownsName_ = answer && answer->first().toUInt() != kExists;
    // Running unguarded is better than not running.
    return ownsName_ || !answer;
}

bool SingleInstance::takeLock() {
    return !lock_ || lock_->tryLock(kLockMilliseconds) ||
           lock_->error() != QLockFile::LockFailedError;
}

void SingleInstance::setOpenPanel(std::function<void()> openPanel) {
    openPanel_ = std::move(openPanel);
    if (openPanel_ && std::exchange(askedEarly_, false)) {
        openPanel_();
    }
}

void SingleInstance::OpenPanel() {
    if (openPanel_) {
        openPanel_();
    } else {
        askedEarly_ = true;
    }
}

}  // namespace tarnwick::platform
