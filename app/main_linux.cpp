// The program on a Linux desktop: puts the machine, the toolkit and the shell together.
#include <QApplication>
#include <QDesktopServices>
#include <QLoggingCategory>
#include <QProcessEnvironment>
#include <QScreen>
#include <QSessionManager>
#include <QTimer>
#include <QUrl>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

#include "app/tarnwick_app.h"
#include "platform/byte_count_text.h"
#include "platform/linux/desktop/keyboard/key_codes.h"
#include "platform/linux/desktop/keyboard/session_keyboard.h"
#include "platform/linux/desktop/session/activity_monitor.h"
#include "platform/linux/desktop/session/color_scheme.h"
#include "platform/linux/desktop/session/display_end.h"
#include "platform/linux/desktop/session/interface_font.h"
#include "platform/linux/desktop/session/portal_introduction.h"
#include "platform/linux/desktop/session/qt_dispatch.h"
#include "platform/linux/desktop/session/quit_signals.h"
#include "platform/linux/desktop/session/reduced_motion.h"
#include "platform/linux/desktop/session/session_bus.h"
#include "platform/linux/desktop/session/single_instance.h"
#include "platform/linux/desktop/session/sleep_signals.h"
#include "platform/linux/desktop/session/toolkit_environment.h"
#include "platform/linux/desktop/tray/linux_status_item.h"
#include "platform/linux/events/descriptor_limit.h"
#include "platform/linux/events/freed_memory.h"
#include "platform/linux/events/standard_error.h"
#include "platform/linux/graphics/linux_accelerators.h"
#include "platform/linux/kernel/linux_kernel.h"
#include "platform/linux/kernel/linux_process_info.h"
#include "platform/linux/network/linux_network_interfaces.h"
#include "platform/linux/power/linux_power_sources.h"
#include "platform/linux/processes/linux_process_table.h"
#include "platform/linux/settings/autostart_login_service.h"
#include "platform/linux/settings/sqlite_user_defaults.h"
#include "platform/linux/volumes/linux_volumes.h"
#include "platform/platform.h"
#include "platform/qt/font_memory.h"
#include "ui/panel/menu_bar_view.h"
#include "ui/qt/accessible_application.h"
#include "ui/qt/panel_placement.h"
#include "ui/qt/panel_window.h"
#include "ui/qt/settings_content.h"
#include "ui/qt/symbols.h"
#include "ui/qt/theme.h"
#include "ui/qt/titled_window.h"

namespace tarnwick {
namespace {

/// After this time the item is in its tray, and memory that only the start needed has been freed.
constexpr std::chrono::seconds kStartIsOver(15);

const char* environment(const char* name) {
    return std::getenv(name);
}

bool hasDisplay() {
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        const char* value = environment(name);
        if (value && *value) {
            return true;
        }
    }
    return false;
}

/// Empty where the system does not tell.
std::filesystem::path runningProgram() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error);
}

/// Installs the machine's objects. They are never destroyed: background work that is stuck when the
/// program ends may still use them.
void installPlatform(platform::UserDefaults& userDefaults, const QDBusConnection& bus) {
    auto* powerSources = new platform::LinuxPowerSources();
    auto* dispatch = new platform::QtDispatch();
    auto* keyboardLayout = platform::makeKeyboardLayout().release();
    platform::install({
        .kernel = new platform::LinuxKernel(),
        .volumes = new platform::LinuxVolumes(),
        .networkInterfaces = new platform::LinuxNetworkInterfaces(),
        .accelerators = new platform::LinuxAccelerators(),
        .processInfo = new platform::LinuxProcessInfo(),
        .powerSources = powerSources,
        .batteryHealth = powerSources,
        .processTable = new platform::LinuxProcessTable(),
        .userDefaults = &userDefaults,
        .loginService = new platform::AutostartLoginService(
            platform::startCommand(runningProgram(), environment), environment),
        .hotKeys = platform::makeHotKeys(bus, *keyboardLayout, *dispatch).release(),
        .keyboardLayout = keyboardLayout,
        .byteCountFormatter = new platform::PlainByteCountFormatter(),
        .dispatch = dispatch,
    });
}

QImage paintIcon(const std::string& symbol, Tint tint, bool dark, int pixels) {
    return qt::drawnSymbol(symbol, qt::Theme::color(tint, dark), pixels);
}

/// Returns the place of the item; if that is unknown, a corner of the screen. The panel opens
/// there.
QRect panelAnchor(const platform::LinuxStatusItem& item) {
    if (const auto place = item.anchor()) {
        return *place;
    }
    const QScreen* screen = QGuiApplication::primaryScreen();
    return qt::cornerAnchor(screen->geometry(), screen->availableGeometry());
}

qt::SettingsContentEnvironment settingsEnvironment() {
    const platform::Platform& platform = platform::current();
    return {.view = {.dispatch = *platform.dispatch,
                     .keyboardLayout = *platform.keyboardLayout,
                     .program = {TARNWICK_VERSION, TARNWICK_BUILD_VERSION},
                     .openAddress =
                         [](const std::string& address) {
                             QDesktopServices::openUrl(QUrl(QString::fromStdString(address)));
                         }},
            .keyCodes = platform::virtualKeyCode};
}

int run(QApplication& application, const platform::StartConditions& conditions) {
    const QDBusConnection bus = platform::sessionBus();
    platform::SingleInstance instance(bus, qEnvironmentVariable("XDG_RUNTIME_DIR"),
                                      platform::displayName());
    switch (instance.claim()) {
        case platform::SingleInstance::Claim::first:
            break;
        case platform::SingleInstance::Claim::handedOver:
            return EXIT_SUCCESS;
        case platform::SingleInstance::Claim::unanswered:
            platform::notice("another Tarnwick is running and does not answer");
            return EXIT_FAILURE;
    }
    if (!bus.isConnected()) {
        platform::notice("there is no session bus: only a tray of the older kind can be used");
    }
    // From here on a new start becomes the owner instead of asking this exiting process for its
    // panel.
    const auto quit = [&application, &instance] {
        instance.release();
        application.quit();
    };
    const platform::QuitSignals quitSignals(quit);

    auto& userDefaults = *new platform::SqliteUserDefaults(platform::userDefaultsFile(environment));
    // The last chance to write changes that could not be written earlier.
    const platform::DisplayEnd displayEnd([&userDefaults] { userDefaults.close(); });
    installPlatform(userDefaults, bus);
    platform::applyInterfaceFont();

    qt::Theme theme;
    platform::LinuxStatusItem item(
        bus, platform::LinuxStatusItem::sessionOptions(paintIcon, theme.isDark()));
    const platform::ColorScheme colorScheme(bus, [&theme, &item](bool dark) {
        theme.setDark(dark);
        item.setDark(dark);
    });

    const auto giveBackMemory = [] {
        qt::freeUnusedFonts();
        platform::giveBackFreedMemory();
    };
    qt::TitledWindows windows(giveBackMemory);
    TarnwickApp app(TarnwickAppDesktop{item, windows, [&theme](UserSettings& settings) {
                                           return qt::makeSettingsContent(settings, theme,
                                                                          settingsEnvironment());
                                       }});
    // Set below: the panel is made after the view, but a button of the view closes it.
    std::function<void()> closePanel;
    MenuBarView view(app.statsManager(), {.showSettings =
                                              [&app, &closePanel] {
                                                  // Show settings first: activation passes on only
                                                  // while the panel is still active.
                                                  app.showSettingsWindow();
                                                  closePanel();
                                              },
                                          .openActivityMonitor =
                                              [&conditions, &closePanel] {
                                                  // An open panel would cover the monitor and hold
                                                  // the pointer.
                                                  if (platform::openActivityMonitor(conditions)) {
                                                      closePanel();
                                                  }
                                              },
                                          .quit = quit});
    qt::PanelWindow panel(view, theme, *platform::current().dispatch);
    closePanel = [&panel] { panel.close(); };
    const platform::ReducedMotion reducedMotion(
        bus, [&panel](bool isReduced) { panel.setMotionReduced(isReduced); });
    QObject::connect(&panel, &qt::PanelWindow::widgetsFreed, giveBackMemory);
    QTimer::singleShot(kStartIsOver, &application, &platform::giveBackFreedMemory);
    const auto openPanel = [&app, &panel, &item] {
        app.appDelegate().panelWasAskedFor();
        panel.open(panelAnchor(item));
    };
    item.setActions({.click =
                         [&app, &panel, &item] {
                             app.appDelegate().panelWasAskedFor();
                             panel.click(panelAnchor(item));
                         },
                     .toggle = [&panel, &item] { panel.toggle(panelAnchor(item)); },
                     .refresh = [&app] { app.statsManager().refreshNow(); },
                     .openPanel = openPanel,
                     .showSettings = [&app] { app.showSettingsWindow(); },
                     .quit = quit});
    instance.setOpenPanel(openPanel);

    const platform::SleepSignals sleepSignals(QDBusConnection::systemBus(),
                                              [&app] { app.machineDidWake(); });

    // Only the autostart entry may start the program at login. A session that restores its programs
    // would start it even if start at login is off.
    QObject::connect(
        &application, &QGuiApplication::saveStateRequest, &application,
        [](QSessionManager& session) { session.setRestartHint(QSessionManager::RestartNever); });

    app.appDelegate().applicationDidFinishLaunching();
    const int status = application.exec();
    // The session can also end the program, without a call of quit().
    instance.release();
    userDefaults.close();
    return status;
}

}  // namespace
}  // namespace tarnwick

int main(int argc, char* argv[]) {
    using namespace tarnwick;
    if (!hasDisplay()) {
        platform::notice("there is no display: neither DISPLAY nor WAYLAND_DISPLAY is set");
        return EXIT_FAILURE;
    }
    const platform::StartConditions conditions{QProcessEnvironment::systemEnvironment(),
                                               platform::raiseDescriptorLimit()};
    auto environment = std::make_optional<platform::ToolkitEnvironment>();
    qt::listPopUpsForScreenReaders();
    // Newer toolkits print a line whenever assistive technology asks for a widget that has gone.
    QLoggingCategory::setFilterRules("qt.accessibility.atspi.warning=false");
    QApplication application(argc, argv);
    environment.reset();
    QApplication::setApplicationName("tarnwick");
    QApplication::setApplicationVersion(TARNWICK_VERSION);
    QApplication::setDesktopFileName(platform::kDesktopEntryName);
    QApplication::setQuitOnLastWindowClosed(false);
    return run(application, conditions);
}
