#include "platform/linux/desktop/session/activity_monitor.h"

#include <system_error>
#include <utility>

#include "platform/linux/applications/system_monitors.h"
#include "platform/linux/desktop/session/application_scope.h"
#include "platform/linux/desktop/session/startup_token.h"
#include "platform/linux/events/detached_program.h"
#include "platform/linux/events/standard_error.h"

namespace tarnwick::platform {

ActivityMonitor::ActivityMonitor(QDBusConnection bus, StartConditions conditions)
    : bus_(std::move(bus)), conditions_(std::move(conditions)) {}

bool ActivityMonitor::open() {
    const auto value = [this](const char* name) {
        return environmentValue(conditions_.environment, name);
    };
    const auto monitor = findSystemMonitor(value);
    if (!monitor) {
        return false;
    }
    const char* const home = value("HOME");
    const DetachedStart start = startDetached(
        {.command = monitor->command,
         .folder = monitor->folder.empty() && home != nullptr ? home : monitor->folder,
         .environment = environmentForOthers(conditions_.environment, startupToken()),
         .descriptorLimit = conditions_.descriptorLimit});
    if (start.id == 0) {
        notice("cannot start " + monitor->command.front() + ": " +
               std::generic_category().message(start.error));
        return false;
    }
    moveToApplicationScope(bus_, monitor->entry, start.id);
    return true;
}

}  // namespace tarnwick::platform
