// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/tray/notifier_registration.h"

#include <QCoreApplication>
#include <QTimer>
#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/linux/desktop/session/bus_calls.h"

namespace tarnwick::platform {
namespace {

constexpr auto kWatcherService = "org.kde.StatusNotifierWatcher";
constexpr auto kWatcherPath = "/StatusNotifierWatcher";
constexpr auto kWatcherInterface = "org.kde.StatusNotifierWatcher";

}  // namespace

std::string programOfProcess(unsigned processId) {
    std::error_code error;
    const auto path =
        std::filesystem::read_symlink("/proc/" + std::to_string(processId) + "/exe", error);
    std::string name = error ? std::string() : path.filename().string();
    // What the kernel appends when the program was replaced by an update while it ran.
    if (const std::string deleted = " (deleted)"; name.ends_with(deleted)) {
        name.resize(name.size() - deleted.size());
    }
    return name;
}

int NotifierRegistration::RetryDelays::after(int attempt) const {
    int delay = std::min(first, longest);
    for (int i = 1; i < attempt && delay < longest; ++i) {
        delay = delay < longest / 2 ? 2 * delay : longest;
    }
    return delay;
}

NotifierRegistration::NotifierRegistration(QDBusConnection bus, ProgramOf programOf,
                                           RetryDelays retryDelays)
    : bus_(std::move(bus)), programOf_(std::move(programOf)), retryDelays_(retryDelays) {}

NotifierRegistration::~NotifierRegistration() {
    if (bus_.isConnected() && service_.startsWith("org.")) {
        bus_.send(busCall("ReleaseName", {service_}));
    }
}

void NotifierRegistration::start(std::function<void()> changed) {
    changed_ = std::move(changed);
    if (!bus_.isConnected()) {
        ownerChanged(QString());
        return;
    }
    watcher_.emplace(bus_, kWatcherService, [this](const QString& owner) { ownerChanged(owner); });
    // Some watchers give the host's name as an argument, others give none.
    watcher_->hear({.path = kWatcherPath,
                    .interface = kWatcherInterface,
                    .member = "StatusNotifierHostRegistered"},
                   [this](const QDBusMessage&) { hostRegistered(); });
    watcher_->hear({.path = kWatcherPath,
                    .interface = kWatcherInterface,
                    .member = "StatusNotifierHostUnregistered"},
                   [this](const QDBusMessage&) { hostUnregistered(); });

    const QString name =
        QString("org.kde.StatusNotifierItem-%1-1").arg(QCoreApplication::applicationPid());
    constexpr uint kDoNotQueue = 4;
    constexpr uint kPrimaryOwner = 1;
    callAsync(bus_, busCall("RequestName", {name, kDoNotQueue}), "u", this,
              [this, name](const BusArguments& answer) {
                  const bool granted = answer && answer->first().toUInt() == kPrimaryOwner;
                  service_ = granted ? name : bus_.baseService();
                  publish();
              });
}

void NotifierRegistration::ownerChanged(const QString& owner) {
    ++generation_;
    owner_ = owner;
    askedProgram_.reset();
    hasHost_.reset();
    isAsked_ = false;
    isTaken_ = false;
    if (owner.isEmpty()) {
        publish();
    } else {
        ask(owner);
    }
}

void NotifierRegistration::ask(const QString& owner) {
    const int asked = generation_;
    callAsync(bus_, busCall("GetConnectionUnixProcessID", {owner}), "u", this,
              [this, asked](const BusArguments& answer) {
                  if (asked == generation_) {
                      askedProgram_ = answer ? programOf_(answer->first().toUInt()) : std::string();
                      publish();
                  }
              });
    QDBusMessage call = QDBusMessage::createMethodCall(owner, kWatcherPath,
                                                       "org.freedesktop.DBus.Properties", "Get");
    call.setArguments({QString(kWatcherInterface), QString("IsStatusNotifierHostRegistered")});
    callAsync(bus_, call, "v", this, [this, asked](const BusArguments& answer) {
        if (asked == generation_ && !hasHost_) {
            // A watcher that gives no answer is assumed to be a host itself, as most are.
            hasHost_ = !answer || variantIn(answer->first()).toBool();
            publish();
        }
    });
}

void NotifierRegistration::hostRegistered() {
    if (!owner_.isEmpty()) {
        hasHost_ = true;
        publish();
    }
}

void NotifierRegistration::hostUnregistered() {
    // There may be other hosts, so asks the watcher again.
    if (!owner_.isEmpty()) {
        hasHost_.reset();
        ask(owner_);
    }
}

void NotifierRegistration::publish() {
    State state = State::unknown;
    if (generation_ > 0 && owner_.isEmpty()) {
        state = State::absent;
    } else if (askedProgram_ && hasHost_) {
        state = !*hasHost_ ? State::absent : isTaken_ ? State::present : State::registering;
    } else {
        // The answers are still on their way. The previous state stays until they arrive.
        return;
    }
    const std::string program = askedProgram_.value_or(std::string());
    if (state != state_ || program != program_) {
        state_ = state;
        program_ = program;
        if (changed_) {
            changed_();
        }
    }
    if (!owner_.isEmpty() && !service_.isEmpty() && !isAsked_) {
        isAsked_ = true;
        registerItem(1);
    }
}

void NotifierRegistration::registerItem(int attempt) {
    QDBusMessage call = QDBusMessage::createMethodCall(owner_, kWatcherPath, kWatcherInterface,
                                                       "RegisterStatusNotifierItem");
    call.setArguments({service_});
    const int asked = generation_;
    callAsync(bus_, call, "", this, [this, asked, attempt](const BusArguments& answer) {
        if (asked != generation_) {
            return;
        }
        if (answer) {
            isTaken_ = true;
            publish();
            return;
        }
        // A watcher may own its name a moment before it answers calls.
        QTimer::singleShot(retryDelays_.after(attempt), this, [this, asked, attempt] {
            if (asked == generation_) {
                registerItem(attempt + 1);
            }
        });
    });
}

}  // namespace tarnwick::platform
