// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/session/activity_monitor.h"

#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QProcess>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <cstdlib>
#include <qpa/qplatformnativeinterface.h>
#include <string>
#include <utility>

#include "platform/linux/applications/system_monitors.h"
#include "platform/linux/events/standard_error.h"

namespace tarnwick::platform {
namespace {

/// Milliseconds that the service manager has for an answer.
constexpr int kPatience = 2000;

/// Seconds that the compositor has for a token.
constexpr double kTokenPatience = 0.3;

/// Variables that are different for each start of a program.
constexpr const char* kOfOneStart[] = {"DESKTOP_STARTUP_ID",
                                       "XDG_ACTIVATION_TOKEN",
                                       "GIO_LAUNCHED_DESKTOP_FILE",
                                       "GIO_LAUNCHED_DESKTOP_FILE_PID",
                                       "INVOCATION_ID",
                                       "JOURNAL_STREAM",
                                       "NOTIFY_SOCKET",
                                       "MANAGERPID",
                                       "SYSTEMD_EXEC_PID",
                                       "LISTEN_FDS",
                                       "LISTEN_FDNAMES",
                                       "LISTEN_PID"};

/// A startup token with the time of the last press on X11; empty elsewhere. From the time a window
/// manager knows that the user asked for the new window.
QString startupToken() {
    QPlatformNativeInterface* const native = QGuiApplication::platformNativeInterface();
    if (native == nullptr || QGuiApplication::platformName() != "xcb") {
        return {};
    }
    // The interface hands the server's time out as an address.
    const auto time = reinterpret_cast<quintptr>(
        native->nativeResourceForScreen("appusertime", QGuiApplication::primaryScreen()));
    return time == 0 ? QString()
                     : QString("tarnwick-%1-%2_TIME%3")
                           .arg(QCoreApplication::applicationPid())
                           .arg(QRandomGenerator::global()->generate())
                           .arg(time);
}

QProcessEnvironment environmentFrom(const StartConditions& conditions) {
    QProcessEnvironment environment = conditions.environment;
    for (const char* const name : kOfOneStart) {
        environment.remove(name);
    }
    if (const QString token = startupToken(); !token.isEmpty()) {
        environment.insert("DESKTOP_STARTUP_ID", token);
    }
    return environment;
}

/// Whether the service manager makes a unit when it is asked.
bool makesUnits(const QStringList& command, const QProcessEnvironment& environment) {
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(command.front(), command.mid(1) + QStringList("true"));
    if (!process.waitForFinished(kPatience)) {
        process.kill();
        process.waitForFinished(kPatience);
        return false;
    }
    return process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

/// The words to put before a command so that it runs in its own unit. applicationUnit() finds the
/// desktop entry in the unit's name. Empty if no service manager of the user answers.
QStringList scopeCommand(const QString& entry, const QProcessEnvironment& environment) {
    const QString runtime = environment.value("XDG_RUNTIME_DIR");
    const QString program = QStandardPaths::findExecutable(
        "systemd-run", environment.value("PATH").split(':', Qt::SkipEmptyParts));
    if (runtime.isEmpty() || program.isEmpty() ||
        !QFileInfo::exists(runtime + "/systemd/private")) {
        return {};
    }
    // Escapes dashes, because a dash separates the parts of the name.
    const QString unit = QString("app-tarnwick-%1-%2.scope")
                             .arg(QString(entry).replace("-", "\\x2d"))
                             .arg(QRandomGenerator::global()->generate());
    const QStringList command{program,   "--user",    "--scope",
                              "--quiet", "--collect", "--slice=app.slice"};
    return makesUnits(command, environment) ? command + QStringList("--unit=" + unit)
                                            : QStringList();
}

/// Arguments for a shell that becomes the monitor. Empty if there is none. Any thread.
QStringList monitorArguments(const StartConditions& conditions) {
    const auto monitor = findSystemMonitor([](const char* name) { return std::getenv(name); });
    if (!monitor) {
        return {};
    }
    QString folder;
    for (const QString& each :
         {QFile::decodeName(monitor->folder.c_str()), QDir::homePath(), QDir::rootPath()}) {
        if (folder.isEmpty() && QFileInfo(each).isDir()) {
            folder = each;
        }
    }
    // The shell sets the limit and the folder; the program that replaces it inherits both.
    QString script = R"(cd "$0"; exec "$@")";
    if (conditions.descriptorLimit) {
        script.prepend(QString("ulimit -Sn %1; ").arg(*conditions.descriptorLimit));
    }
    QStringList arguments{"-c", script, folder};
    arguments += scopeCommand(QString::fromStdString(monitor->entry), conditions.environment);
    for (const std::string& word : monitor->command) {
        arguments += QFile::decodeName(word.c_str());
    }
    return arguments;
}

/// False if it cannot be started. Not in the background, whose priority it would inherit.
bool startShell(const QStringList& arguments, const QProcessEnvironment& environment) {
    QProcess process;
    process.setProgram("/bin/sh");
    process.setArguments(arguments);
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(QDir::rootPath());
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    if (!process.startDetached()) {
        notice("cannot start " + arguments.back().toStdString() + ": " +
               process.errorString().toStdString());
        return false;
    }
    return true;
}

}  // namespace

ActivityMonitor::ActivityMonitor(StartConditions conditions, Dispatch& dispatch,
                                 std::function<void()> opened, RequestToken requestToken)
    : conditions_(std::move(conditions)),
      dispatch_(dispatch),
      opened_(std::move(opened)),
      requestToken_(std::move(requestToken)) {}

void ActivityMonitor::open() {
    if (isOpening_) {
        return;
    }
    token_ = QString();
    // The startup token says when the user has pressed.
    isOpening_ =
        dispatch_.detached([weak = std::weak_ptr(self_), conditions = conditions_,
                            &dispatch = dispatch_, environment = environmentFrom(conditions_)] {
            dispatch.async([weak, environment, arguments = monitorArguments(conditions)] {
                if (const auto self = weak.lock()) {
                    (*self)->found_ = {arguments, environment};
                    (*self)->start();
                }
            });
        });
    if (isOpening_ && requestToken_(&answers_, [this](const QString& token) {
            token_ = token;
            start();
        })) {
        token_.reset();
        dispatch_.asyncAfter(kTokenPatience, [weak = std::weak_ptr(self_)] {
            const auto self = weak.lock();
            if (self && !(*self)->token_) {
                (*self)->token_ = QString();
                (*self)->start();
            }
        });
    }
}

void ActivityMonitor::start() {
    if (!isOpening_ || !token_ || !found_) {
        return;
    }
    isOpening_ = false;
    Found found = *std::exchange(found_, std::nullopt);
    if (!token_->isEmpty()) {
        found.environment.insert("XDG_ACTIVATION_TOKEN", *token_);
    }
    if (!found.arguments.isEmpty() && startShell(found.arguments, found.environment)) {
        opened_();
    }
}

}  // namespace tarnwick::platform
