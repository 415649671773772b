#include "platform/linux/desktop/single_instance.h"

#include <QDBusError>
#include <QDeadlineTimer>
#include <algorithm>
#include <poll.h>
#include <utility>

#include "platform/linux/desktop/bus_calls.h"

namespace tarnwick::platform {
namespace {

/// Between two attempts to become the first, or to reach it.
constexpr int kPauseMilliseconds = 20;
/// For the bus itself, which answers at once unless it hangs.
constexpr int kBusMilliseconds = 5000;

constexpr auto kIntrospection = R"xml(
<interface name="org.tarnwick.Tarnwick">
  <method name="OpenPanel"/>
</interface>
)xml";

}  // namespace

std::string displayName(const std::function<const char*(const char*)>& environment) {
    const auto value = [&environment](const char* name) {
        const char* const text = environment(name);
        return std::string(text != nullptr ? text : "");
    };
    std::string name = value("WAYLAND_DISPLAY");
    if (name.empty()) {
        name = value("DISPLAY");
        // A screen's number follows the server's.
        if (const auto colon = name.rfind(':'); colon != std::string::npos) {
            name.resize(std::min(name.find('.', colon), name.size()));
        }
    }
    return name;
}

SingleInstance::SingleInstance(QDBusConnection bus, std::string runtimeFolder,
                               std::string_view display)
    : bus_(std::move(bus)), lock_(std::move(runtimeFolder), display) {}

SingleInstance::~SingleInstance() {
    release();
    bus_.unregisterObject(kPath);
}

void SingleInstance::release() {
    isReleased_ = true;
    if (std::exchange(ownsName_, false)) {
        bus_.send(busCall("ReleaseName", {QString(kService)}));
    }
    lock_.release();
}

SingleInstance::Claim SingleInstance::claim(int answerMilliseconds) {
    // There before the name, so that whoever finds the name finds the object.
    bus_.registerVirtualObject(kPath, this);
    const QDeadlineTimer deadline(answerMilliseconds);
    for (bool isLast = false;;) {
        const Owner owner = take();
        if (owner == Owner::thisProcess) {
            return Claim::first;
        }
        if (isLast) {
            bus_.unregisterObject(kPath);
            return Claim::unanswered;
        }
        if (ask(owner, static_cast<int>(deadline.remainingTime()))) {
            bus_.unregisterObject(kPath);
            return Claim::handedOver;
        }
        // The first may have ended while it was waited for.
        isLast = deadline.hasExpired();
        if (!isLast) {
            ::poll(nullptr, 0, kPauseMilliseconds);
        }
    }
}

SingleInstance::Owner SingleInstance::take() {
    if (bus_.isConnected()) {
        constexpr uint kDoNotQueue = 4;
        constexpr uint kExists = 3;
        const BusArguments granted =
            argumentsOf(bus_.call(busCall("RequestName", {QString(kService), kDoNotQueue}),
                                  QDBus::Block, kBusMilliseconds),
                        "u");
        ownsName_ = granted && granted->first().toUInt() != kExists;
        if (granted && !ownsName_) {
            return Owner::onBus;
        }
    }
    if (lock_.acquire([this] { asked(); })) {
        return Owner::thisProcess;
    }
    // It started when there was no bus, or before this one.
    if (std::exchange(ownsName_, false)) {
        bus_.send(busCall("ReleaseName", {QString(kService)}));
    }
    return Owner::ofLock;
}

bool SingleInstance::ask(Owner owner, int answerMilliseconds) {
    if (owner == Owner::ofLock) {
        return lock_.askOwner();
    }
    QDBusMessage call = QDBusMessage::createMethodCall(kService, kPath, kInterface, "OpenPanel");
    call.setAutoStartService(false);
    return bus_.call(call, QDBus::Block, answerMilliseconds).type() == QDBusMessage::ReplyMessage;
}

void SingleInstance::setOpenPanel(std::function<void()> openPanel) {
    openPanel_ = std::move(openPanel);
    if (openPanel_ && std::exchange(askedEarly_, false)) {
        openPanel_();
    }
}

void SingleInstance::asked() {
    if (openPanel_) {
        openPanel_();
    } else {
        askedEarly_ = true;
    }
}

QString SingleInstance::introspect(const QString& path) const {
    return path == kPath ? QString(kIntrospection) : QString();
}

bool SingleInstance::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
    if (!message.interface().isEmpty() && message.interface() != kInterface) {
        return false;
    }
    const bool isAsked = calledMethod(message) == "OpenPanel()";
    QDBusMessage answer = message.createReply();
    if (!isAsked) {
        answer = noSuchMethod(message);
    } else if (isReleased_) {
        // Whoever asks is to try to be the first.
        answer = message.createErrorReply(QDBusError::ServiceUnknown, "it is ending");
    }
    if (message.isReplyRequired()) {
        connection.send(answer);
    }
    if (isAsked && !isReleased_) {
        asked();
    }
    return true;
}

}  // namespace tarnwick::platform
