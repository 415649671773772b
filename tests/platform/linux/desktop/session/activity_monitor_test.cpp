// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/session/activity_monitor.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QTemporaryDir>
#include <functional>
#include <gtest/gtest.h>

#include "platform/testing/manual_dispatch.h"
#include "tests/platform/linux/desktop/private_bus.h"

namespace tarnwick::platform {
namespace {

using testing::ManualDispatch;
using testing::waitUntil;

/// A session whose own system monitor, which comes before any other that the machine may have,
/// writes down the token that it is started with.
class ActivityMonitorTest : public ::testing::Test {
 protected:
    void SetUp() override {
        write("applications/mate-system-monitor.desktop",
              "[Desktop Entry]\nType=Application\nName=Monitor\nExec=" + path("monitor") + "\n");
        write("monitor", "#!/bin/sh\necho \"token:$XDG_ACTIVATION_TOKEN\" >'" + path("written") +
                             ".part'\nmv '" + path("written") + ".part' '" + path("written") +
                             "'\n");
        QFile::setPermissions(path("monitor"), QFile::ReadOwner | QFile::ExeOwner);
        change("XDG_DATA_HOME", folder_.path());
        change("XDG_DATA_DIRS", folder_.path());
        change("XDG_CURRENT_DESKTOP", "MATE");
    }
    void TearDown() override {
        for (auto each = kept_.begin(); each != kept_.end(); ++each) {
            if (each.value().isNull()) {
                qunsetenv(each.key().toUtf8());
            } else {
                qputenv(each.key().toUtf8(), each.value());
            }
        }
    }

    void change(const char* variable, const QString& value) {
        kept_.insert(variable, qgetenv(variable));
        qputenv(variable, value.toUtf8());
    }
    QString path(const QString& name) const { return folder_.filePath(name); }
    void write(const QString& name, const QString& text) const {
        QDir().mkpath(QFileInfo(path(name)).path());
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text.toUtf8());
    }
    QString written() {
        EXPECT_TRUE(waitUntil([this] { return QFile::exists(path("written")); }));
        QFile file(path("written"));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }
    /// Opens the monitor and looks for it.
    void open() {
        monitor_.open();
        dispatch_.runDetached();
        dispatch_.runMain();
    }

    QTemporaryDir folder_;
    QMap<QString, QByteArray> kept_;
    ManualDispatch dispatch_;
    bool hasCompositor_ = true;
    std::function<void(const QString& token)> made_;
    int opened_ = 0;
    ActivityMonitor monitor_{{.environment =
                                  [] {
                                      QProcessEnvironment environment;
                                      environment.insert("PATH", "/usr/bin:/bin");
                                      environment.insert("XDG_ACTIVATION_TOKEN",
                                                         "of an earlier press");
                                      return environment;
                                  }()},
                             dispatch_,
                             [this] { ++opened_; },
                             [this](QObject*, std::function<void(const QString& token)> made) {
                                 made_ = std::move(made);
                                 return hasCompositor_;
                             }};
};

TEST_F(ActivityMonitorTest, IsStartedWithTheTokenOfTheCompositor) {
    open();
    EXPECT_EQ(opened_, 0) << "the compositor was not waited for";
    made_("of this press");
    EXPECT_EQ(opened_, 1);
    EXPECT_EQ(written(), "token:of this press\n");
}

TEST_F(ActivityMonitorTest, IsStartedWithATokenThatComesBeforeItIsFound) {
    monitor_.open();
    made_("of this press");
    EXPECT_EQ(opened_, 0);
    dispatch_.runDetached();
    dispatch_.runMain();
    EXPECT_EQ(opened_, 1);
    EXPECT_EQ(written(), "token:of this press\n");
}

TEST_F(ActivityMonitorTest, IsStartedWithoutATokenByACompositorThatGivesNone) {
    open();
    dispatch_.advance(1);
    EXPECT_EQ(opened_, 1);
    EXPECT_EQ(written(), "token:\n");
    made_("too late");
    EXPECT_EQ(opened_, 1);
}

TEST_F(ActivityMonitorTest, IsStartedAtOnceWithoutACompositor) {
    hasCompositor_ = false;
    open();
    EXPECT_EQ(opened_, 1);
    EXPECT_EQ(written(), "token:\n");
}

}  // namespace
}  // namespace tarnwick::platform
