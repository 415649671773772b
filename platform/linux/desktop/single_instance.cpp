#include "platform/linux/desktop/single_instance.h"

#include <QDBusError>
#include <utility>

#include "platform/linux/desktop/bus_calls.h"

namespace tarnwick::platform {
namespace {

constexpr auto kIntrospection = R"xml(
<interface name="org.tarnwick.Tarnwick">
  <method name="OpenPanel"/>
</interface>
)xml";

}  // namespace

SingleInstance::SingleInstance(QDBusConnection bus, std::string runtimeFolder)
    : bus_(std::move(bus)), lock_(std::move(runtimeFolder)) {}

SingleInstance::~SingleInstance() {
    if (ownsName_) {
        bus_.send(busCall("ReleaseName", {QString(kService)}));
    }
    bus_.unregisterObject(kPath);
}

SingleInstance::Claim SingleInstance::claim(int answerMilliseconds) {
    if (bus_.isConnected()) {
        return claimOnBus(answerMilliseconds);
    }
    if (lock_.acquire([this] { asked(); })) {
        return Claim::first;
    }
    return lock_.askOwner(answerMilliseconds) ? Claim::handedOver : Claim::unanswered;
}

SingleInstance::Claim SingleInstance::claimOnBus(int answerMilliseconds) {
    // There before the name, so that whoever finds the name finds the object.
    bus_.registerVirtualObject(kPath, this);
    constexpr uint kDoNotQueue = 4;
    constexpr uint kExists = 3;
    const QDBusMessage granted = bus_.call(busCall("RequestName", {QString(kService), kDoNotQueue}),
                                           QDBus::Block, answerMilliseconds);
    if (granted.type() != QDBusMessage::ReplyMessage ||
        granted.arguments().value(0).toUInt() != kExists) {
        ownsName_ = granted.type() == QDBusMessage::ReplyMessage;
        // For those who start when the bus has gone. Whoever holds the lock is in another session.
        lock_.acquire([this] { asked(); });
        return Claim::first;
    }
    bus_.unregisterObject(kPath);
    const QDBusMessage answer =
        bus_.call(QDBusMessage::createMethodCall(kService, kPath, kInterface, "OpenPanel"),
                  QDBus::Block, answerMilliseconds);
    return answer.type() == QDBusMessage::ReplyMessage ? Claim::handedOver : Claim::unanswered;
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
    const bool ours = message.interface().isEmpty() || message.interface() == kInterface;
    if (!ours || message.member() != "OpenPanel") {
        return false;
    }
    if (message.isReplyRequired()) {
        connection.send(message.createReply());
    }
    asked();
    return true;
}

}  // namespace tarnwick::platform
