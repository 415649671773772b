// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/session/single_instance.h"

#include <QDBusMessage>
#include <QDeadlineTimer>
#include <algorithm>
#include <iterator>
#include <poll.h>
#include <utility>

#include "platform/linux/desktop/session/bus_calls.h"

namespace tarnwick::platform {
namespace {

/// Pause between two attempts to become or to reach the first instance.
constexpr int kPauseMilliseconds = 20;
/// Time limit for the bus itself, which answers at once unless it hangs.
constexpr int kBusMilliseconds = 5000;
/// Time limit for the lock. An instance that ends releases its lock together with its name; a
/// killed one releases it when its process is gone.
constexpr int kLockMilliseconds = 500;
/// The compositor's permission to come to the front, among what launchers tell.
constexpr auto kTokenKey = "activation-token";

struct Action {
    QLatin1String name;
    Request request;
};
constexpr Action kActions[] = {{QLatin1String("open-panel"), Request::openPanel},
                               {QLatin1String("toggle-panel"), Request::togglePanel},
                               {QLatin1String("settings"), Request::showSettings}};

/// Until when the answer is waited for, ms of the clock that all programs share.
constexpr auto kDeadlineKey = "org.tarnwick.deadline";

/// Asks the running program; the permission to come to the front passes on to it.
QDBusMessage callFor(Request request, const QDeadlineTimer& deadline) {
    QVariantMap platformData{{kDeadlineKey, deadline.deadline()}};
    if (const QString token = qEnvironmentVariable("XDG_ACTIVATION_TOKEN"); !token.isEmpty()) {
        platformData.insert(kTokenKey, token);
    }
    QDBusMessage call =
        QDBusMessage::createMethodCall(SingleInstance::kService, SingleInstance::kPath,
                                       SingleInstance::kInterface, "ActivateAction");
    call.setArguments({QString(std::ranges::find(kActions, request, &Action::request)->name),
                       QVariantList(), platformData});
    call.setAutoStartService(false);
    return call;
}

bool isNumber(QStringView text) {
    return !text.isEmpty() &&
           std::ranges::all_of(text, [](QChar each) { return each >= '0' && each <= '9'; });
}

/// The server of an X display: ":1" of ":1.0", which names its first screen.
QString serverOf(const QString& display) {
    // Not by a regular expression: its library would be loaded for this alone, with half a
    // megabyte.
    const auto colon = display.lastIndexOf(':');
    const auto dot = display.indexOf('.', colon);
    return colon >= 0 && dot > colon && isNumber(display.mid(colon + 1, dot - colon - 1)) &&
                   isNumber(display.mid(dot + 1))
               ? display.left(dot)
               : display;
}

}  // namespace

QString displayName() {
    const QString compositor = qEnvironmentVariable("WAYLAND_DISPLAY");
    return compositor.isEmpty() ? serverOf(qEnvironmentVariable("DISPLAY")) : compositor;
}

SingleInstance::SingleInstance(QDBusConnection bus, const QString& runtimeFolder,
                               const QString& display)
    : bus_(std::move(bus)) {
    if (!runtimeFolder.isEmpty()) {
        // Long names are cut at the start: a display may be named by a path, and such paths differ
        // at the end.
        lock_.emplace(runtimeFolder + "/tarnwick-" + QString(display).replace('/', '_').right(100) +
                      ".lock");
        // The lock never expires by age; it is valid as long as its process lives.
        lock_->setStaleLockTime(0);
    }
}

SingleInstance::~SingleInstance() {
    release();
}

void SingleInstance::release() {
    bus_.unregisterObject(kPath);
    // Releases the lock first, because a new owner of the name takes the lock next.
    if (lock_) {
        lock_->unlock();
    }
    if (std::exchange(ownsName_, false)) {
        bus_.send(busCall("ReleaseName", {QString(kService)}));
    }
}

SingleInstance::Claim SingleInstance::claim(Request request, int answerMilliseconds) {
    // Registered before the name is taken, so that other instances find the object with the name.
    bus_.registerObject(kPath, this, QDBusConnection::ExportScriptableSlots);
    const QDeadlineTimer deadline(answerMilliseconds);
    // An instance that is ending does not answer, but it releases the name.
    while (!takeName()) {
        const QDBusMessage call = callFor(request, deadline);
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
    // If the bus gives no answer, the program runs without the name rather than not at all.
    return ownsName_ || !answer;
}

bool SingleInstance::takeLock() {
    return !lock_ || lock_->tryLock(kLockMilliseconds) ||
           lock_->error() != QLockFile::LockFailedError;
}

void SingleInstance::setPerform(Perform perform) {
    perform_ = std::move(perform);
    if (const auto early = std::exchange(early_, nullptr)) {
        early();
    }
}

void SingleInstance::Activate(const QVariantMap& platformData) {
    perform(Request::openPanel, platformData);
}

void SingleInstance::Open(const QStringList&, const QVariantMap& platformData) {
    perform(Request::openPanel, platformData);
}

void SingleInstance::ActivateAction(const QString& action, const QVariantList&,
                                    const QVariantMap& platformData) {
    const auto known = std::ranges::find(kActions, action, &Action::name);
    if (known != std::end(kActions)) {
        perform(known->request, platformData);
    }
}

void SingleInstance::perform(Request request, const QVariantMap& platformData) {
    // Its user has been told that nobody answers, and has gone on.
    const QVariant deadline = platformData.value(kDeadlineKey);
    if (deadline.isValid() && deadline.toLongLong() < QDeadlineTimer::current().deadline()) {
        return;
    }
    if (!perform_) {
        early_ = [this, request, platformData] { perform(request, platformData); };
        return;
    }
    perform_(request, platformData.value(kTokenKey).toString());
}

}  // namespace tarnwick::platform
