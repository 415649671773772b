#include "platform/linux/desktop/session/application_scope.h"

#include <QDBusArgument>
#include <QDBusVirtualObject>
#include <QMap>
#include <QVariant>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vector>

#include "platform/linux/applications/application_unit.h"
#include "tests/platform/linux/desktop/private_bus.h"

namespace tarnwick::platform {
namespace {

using testing::PrivateBus;
using testing::waitUntil;

TEST(ApplicationScope, IsNamedSoThatTheApplicationIsFoundAgain) {
    EXPECT_EQ(applicationScopeName("qps", 4711), "app-tarnwick-qps-4711.scope");
    for (const char* entry : {"qps", "gnome-system-monitor", "org.kde.plasma-systemmonitor",
                              ".hidden", "with space", "back\\slash"}) {
        const std::string cgroup = "0::/user.slice/" + applicationScopeName(entry, 4711) + '\n';
        const auto candidates = desktopEntryCandidates(cgroup);
        ASSERT_FALSE(candidates.empty()) << entry;
        EXPECT_EQ(candidates.front(), entry);
    }
}

/// The session's service manager as far as it is asked here.
class ServiceManager final : public QDBusVirtualObject {
 public:
    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection&) override {
        calls.push_back(message);
        return true;
    }

    std::vector<QDBusMessage> calls;
};

QMap<QString, QVariant> properties(const QVariant& argument) {
    QMap<QString, QVariant> result;
    const auto list = argument.value<QDBusArgument>();
    list.beginArray();
    while (!list.atEnd()) {
        QString name;
        QDBusVariant value;
        list.beginStructure();
        list >> name >> value;
        list.endStructure();
        result.insert(name, value.variant());
    }
    list.endArray();
    return result;
}

TEST(ApplicationScope, IsAskedForFromTheServiceManager) {
    PrivateBus daemon;
    ServiceManager manager;
    QDBusConnection other = daemon.connect();
    ASSERT_TRUE(other.registerVirtualObject("/org/freedesktop/systemd1", &manager));
    ASSERT_TRUE(other.registerService("org.freedesktop.systemd1"));

    moveToApplicationScope(daemon.connect(), "gnome-system-monitor", 4711);
    ASSERT_TRUE(waitUntil([&] { return !manager.calls.empty(); }));
    const QDBusMessage call = manager.calls.front();
    EXPECT_EQ(call.interface(), "org.freedesktop.systemd1.Manager");
    EXPECT_EQ(call.member(), "StartTransientUnit");
    ASSERT_EQ(call.signature(), "ssa(sv)a(sa(sv))");
    EXPECT_EQ(call.arguments()[0].toString().toStdString(),
              applicationScopeName("gnome-system-monitor", 4711));
    EXPECT_EQ(call.arguments()[1].toString(), "fail");
    const auto found = properties(call.arguments()[2]);
    EXPECT_EQ(qdbus_cast<QList<quint32>>(found["PIDs"]), QList<quint32>{4711});
    EXPECT_EQ(found["Slice"].toString(), "app.slice");
    EXPECT_EQ(found["CollectMode"].toString(), "inactive-or-failed");
    EXPECT_EQ(found.size(), 3);
}

TEST(ApplicationScope, IsDoneWithoutWhereThereIsNoServiceManager) {
    PrivateBus daemon;
    const QDBusConnection bus = daemon.connect();
    moveToApplicationScope(bus, "qps", 4711);
    moveToApplicationScope(QDBusConnection("not connected"), "qps", 4711);
    EXPECT_TRUE(bus.isConnected());
}

}  // namespace
}  // namespace tarnwick::platform
