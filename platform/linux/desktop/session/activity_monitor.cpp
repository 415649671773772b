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

#include "platform/linux/applications/system_monitors.h"
#include "platform/linux/events/standard_error.h"

namespace tarnwick::platform {
namespace {

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

/// The words to put before a command so that it runs in its own unit. applicationUnit() finds the
/// desktop entry in the unit's name. Empty if no service manager of the user is running.
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
    return {program,         "--user", "--scope", "--quiet", "--collect", "--slice=app.slice",
            "--unit=" + unit};
}

}  // namespace

bool openActivityMonitor(const StartConditions& conditions) {
    const auto monitor = findSystemMonitor([](const char* name) { return std::getenv(name); });
    if (!monitor) {
        return false;
    }
    const QProcessEnvironment environment = environmentFrom(conditions);
    // Sets the limit for the shell; the program that replaces it inherits the limit.
    QString script = R"(exec "$@")";
    if (conditions.descriptorLimit) {
        script.prepend(QString("ulimit -Sn %1; ").arg(*conditions.descriptorLimit));
    }
    QStringList arguments{"-c", script, "sh"};
    arguments += scopeCommand(QString::fromStdString(monitor->entry), environment);
    for (const std::string& word : monitor->command) {
        arguments += QFile::decodeName(word.c_str());
    }
    QProcess process;
    process.setProgram("/bin/sh");
    process.setArguments(arguments);
    process.setProcessEnvironment(environment);
    for (const QString& folder :
         {QFile::decodeName(monitor->folder.c_str()), QDir::homePath(), QDir::rootPath()}) {
        if (process.workingDirectory().isEmpty() && QFileInfo(folder).isDir()) {
            process.setWorkingDirectory(folder);
        }
    }
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    if (!process.startDetached()) {
        notice("cannot start " + monitor->command.front() + ": " +
               process.errorString().toStdString());
        return false;
    }
    return true;
}

}  // namespace tarnwick::platform
