// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/session/session_bus.h"

#include <QFile>
#include <gtest/gtest.h>

#include "tests/platform/linux/desktop/private_bus.h"

namespace tarnwick::platform {
namespace {

/// Each test begins in a session without a bus, and puts back what it changed.
class SessionBus : public ::testing::Test {
 protected:
    SessionBus() { qunsetenv("DBUS_SESSION_BUS_ADDRESS"); }
    ~SessionBus() override {
        qunsetenv("DBUS_SESSION_BUS_ADDRESS");
        QFile::remove(socketPath());
    }
    static QString socketPath() { return qEnvironmentVariable("XDG_RUNTIME_DIR") + "/bus"; }
    static QByteArray address() { return qgetenv("DBUS_SESSION_BUS_ADDRESS"); }
};

TEST_F(SessionBus, IsNotConnectedWhereTheSessionHasNone) {
    EXPECT_FALSE(sessionBus().isConnected());
    EXPECT_FALSE(sessionBus().isConnected());
}

TEST_F(SessionBus, IsNotStartedByAnyLibrary) {
    sessionBus();
    EXPECT_EQ(address(), "disabled:");
    // What libraries do that look for a bus by themselves.
    EXPECT_FALSE(QDBusConnection::connectToBus(QDBusConnection::SessionBus, "own").isConnected());
    QDBusConnection::disconnectFromBus("own");
}

TEST_F(SessionBus, IsLeftAloneWhereTheSessionNamesOne) {
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/some/where");
    keepBusFromBeingStarted();
    EXPECT_EQ(address(), "unix:path=/some/where");
}

TEST_F(SessionBus, IsFoundAtItsUsualPlaceWithoutBeingNamed) {
    const testing::PrivateBus bus;
    const QString path = bus.address().section("path=", 1).section(',', 0, 0);
    ASSERT_TRUE(QFile::link(path, socketPath())) << path.toStdString();
    keepBusFromBeingStarted();
    EXPECT_EQ(address(), "");
}

TEST_F(SessionBus, IsNotTakenForOneBecauseOfAPlainFile) {
    QFile file(socketPath());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    keepBusFromBeingStarted();
    EXPECT_EQ(address(), "disabled:");
}

}  // namespace
}  // namespace tarnwick::platform
