// SPDX-License-Identifier: MIT
#include "tests/platform/linux/desktop/private_bus.h"

#include <QCoreApplication>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QDeadlineTimer>
#include <QFile>
#include <QTimer>
#include <csignal>
#include <sys/prctl.h>

namespace tarnwick::platform::testing {
namespace {

constexpr int kLimitMilliseconds = 30'000;

constexpr auto kConfiguration = R"(<busconfig>
  <type>session</type>
  <listen>unix:dir=%1</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

}  // namespace

bool waitUntil(const std::function<bool()>& condition) {
    const QDeadlineTimer deadline(kLimitMilliseconds);
    QTimer pulse;
    pulse.start(5);
    while (!condition()) {
        if (deadline.hasExpired()) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    }
    return true;
}

QDBusMessage ask(const QDBusConnection& bus, const QDBusMessage& call) {
    // The watcher hears of the answer through this thread's event queue, behind every signal that
    // came before it; the pending call itself would know sooner.
    const QDBusPendingCallWatcher watcher(bus.asyncCall(call));
    bool finished = false;
    QObject::connect(&watcher, &QDBusPendingCallWatcher::finished, [&] { finished = true; });
    return waitUntil([&] { return finished; })
               ? watcher.reply()
               : QDBusMessage::createError("test.NoAnswer", "no answer");
}

PrivateBus::PrivateBus() {
    QFile configuration(folder_.filePath("bus.conf"));
    if (configuration.open(QIODevice::WriteOnly)) {
        configuration.write(QString(kConfiguration).arg(folder_.path()).toUtf8());
        configuration.close();
    }
    daemon_.setProcessChannelMode(QProcess::SeparateChannels);
    // Also where a test crashes.
    daemon_.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
    daemon_.start("dbus-daemon", {"--config-file=" + configuration.fileName(), "--nofork",
                                  "--nopidfile", "--print-address=1"});
    while (!daemon_.canReadLine() && daemon_.waitForReadyRead(kLimitMilliseconds)) {
    }
    address_ = QString::fromUtf8(daemon_.readLine()).trimmed();
}

PrivateBus::~PrivateBus() {
    for (const QString& name : connections_) {
        QDBusConnection::disconnectFromBus(name);
    }
    end();
}

QDBusConnection PrivateBus::connect() {
    static int count = 0;
    connections_.append(QString("test-%1").arg(++count));
    return QDBusConnection::connectToBus(address_, connections_.last());
}

void PrivateBus::end() {
    if (daemon_.state() != QProcess::NotRunning) {
        daemon_.kill();
        daemon_.waitForFinished();
    }
}

}  // namespace tarnwick::platform::testing
