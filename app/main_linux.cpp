// SPDX-License-Identifier: MIT
// The program on a Linux desktop: puts the machine, the toolkit and the shell together.
#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QIcon>
#include <QLoggingCategory>
#include <QProcessEnvironment>
#include <QScreen>
#include <QSessionManager>
#include <QSocketNotifier>
#include <QTimer>
#include <QUrl>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

#include "app/tarnwick_app.h"
#include "platform/byte_count_text.h"
#include "platform/linux/desktop/keyboard/key_codes.h"
#include "platform/linux/desktop/keyboard/session_keyboard.h"
#include "platform/linux/desktop/session/activity_monitor.h"
#include "platform/linux/desktop/session/appearance.h"
#include "platform/linux/desktop/session/command_line.h"
#include "platform/linux/desktop/session/display_end.h"
#include "platform/linux/desktop/session/portal_introduction.h"
#include "platform/linux/desktop/session/qt_dispatch.h"
#include "platform/linux/desktop/session/quit_signals.h"
#include "platform/linux/desktop/session/session_bus.h"
#include "platform/linux/desktop/session/single_instance.h"
#include "platform/linux/desktop/session/sleep_signals.h"
#include "platform/linux/desktop/session/toolkit_setup.h"
#include "platform/linux/desktop/tray/linux_status_item.h"
#include "platform/linux/events/process_limits.h"
#include "platform/linux/events/standard_error.h"
#include "platform/linux/graphics/linux_accelerators.h"
#include "platform/linux/identifier.h"
#include "platform/linux/kernel/linux_kernel.h"
#include "platform/linux/network/linux_network_interfaces.h"
#include "platform/linux/power/linux_power_sources.h"
#include "platform/linux/power/linux_process_info.h"
#include "platform/linux/processes/linux_process_table.h"
#include "platform/linux/settings/autostart_login_service.h"
#include "platform/linux/settings/json_user_defaults.h"
#include "platform/linux/settings/patient_login_service.h"
#include "platform/linux/volumes/linux_volumes.h"
#include "platform/platform.h"
#include "platform/qt/toolkit_files.h"
#include "platform/qt/toolkit_memory.h"
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

/// After this time the item is in its tray; memory that only the start needed is given back then.
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

/// The machine and the user's settings, installed as the current platform.
class Machine {
 public:
    explicit Machine(const QDBusConnection& bus) {
        if (userDefaults_.watchDescriptor() >= 0) {
            settingsWatch_.setSocket(userDefaults_.watchDescriptor());
            settingsWatch_.setEnabled(true);
        }
        QObject::connect(&settingsWatch_, &QSocketNotifier::activated,
                         [this] { userDefaults_.folderMayHaveChanged(); });
        install(bus);
        // What is first shown is shown as its user has set it, unless the disk is stuck.
        settle();
    }

    /// Waits until the settings are on the disk, one second at most.
    void settle() { userDefaults_.settle(); }

 private:
    void install(const QDBusConnection& bus) {
        auto* powerSources = new platform::LinuxPowerSources();
        auto* keyboardLayout = platform::makeKeyboardLayout().release();
        platform::install({
            .kernel = new platform::LinuxKernel(),
            .volumes = new platform::LinuxVolumes(),
            .networkInterfaces = new platform::LinuxNetworkInterfaces(),
            .accelerators = new platform::LinuxAccelerators("/", workers_),
            .processInfo = new platform::LinuxProcessInfo(),
            .powerSources = powerSources,
            .batteryHealth = powerSources,
            .processTable = new platform::LinuxProcessTable("/", workers_),
            .userDefaults = &userDefaults_,
            .loginService = new platform::PatientLoginService(
                std::make_shared<platform::AutostartLoginService>(runningProgram(), environment),
                workers_, dispatch_),
            .hotKeys = platform::makeHotKeys(bus, *keyboardLayout, dispatch_).release(),
            .keyboardLayout = keyboardLayout,
            .byteCountFormatter = new platform::PlainByteCountFormatter(),
            .dispatch = &dispatch_,
            .workers = &workers_,
        });
    }

    // The platform is never destroyed: background work that is stuck when the program ends may
    // still use it.
    platform::QtDispatch& dispatch_ = *new platform::QtDispatch();
    platform::Workers& workers_ = *new platform::ThreadWorkers(
        [&dispatch = dispatch_](auto work) { return dispatch.detached(std::move(work)); });
    platform::JsonUserDefaults& userDefaults_ =
        *new platform::JsonUserDefaults(platform::settingsFile(environment), dispatch_);
    QSocketNotifier settingsWatch_{QSocketNotifier::Read};
    /// The last chance for settings that are not written yet.
    const platform::DisplayEnd displayEnd_{[this] { settle(); }};
};

QImage paintIcon(const std::string& symbol, Tint tint, bool dark, int pixels) {
    return qt::drawnSymbol(symbol, qt::Theme::color(tint, dark), pixels);
}

/// The free combinations are checked with the default keys of GNOME 48, Plasma 6.3 and sway 1.10.
constexpr auto kShortcutTip =
    "⌘ is the Super key, which may show a window, and Option is the Alt key.\n"
    "⌘ + L locks the screen on many desktops. ⌘ + Shift + M and ⌘ + Control + M are usually free.\n"
    "On Cinnamon press ⌘ last, because its menu waits for that key.";

qt::SettingsContentEnvironment settingsEnvironment(platform::LinuxStatusItem& item) {
    const platform::Platform& platform = platform::current();
    return {.view = {.dispatch = *platform.dispatch,
                     .keyboardLayout = *platform.keyboardLayout,
                     .program = {TARNWICK_VERSION, TARNWICK_BUILD_VERSION},
                     .openAddress =
                         [](const std::string& address) {
                             qt::afterFoldersOfPrograms(*platform::current().dispatch, [address] {
                                 QDesktopServices::openUrl(QUrl(QString::fromStdString(address)));
                             });
                         },
                     .itemNotice = &item.notice(),
                     .shortcutTip = kShortcutTip,
                     .itemIsIconOnly = [&item] { return item.isIconOnly(); },
                     .otherShortcutKeys = [&keys = *platform.hotKeys] { return keys.otherKeys(); }},
            .keyCodes = platform::virtualKeyCode};
}

void giveBackMemory() {
    qt::freeUnusedFonts();
    qt::freeUnusedPictures();
    platform::giveBackFreedMemory();
}

/// For window managers that do not look into the desktop entry.
QIcon windowIcon() {
    QIcon icon;
    for (const char* picture : {":/16.png", ":/32.png", ":/48.png", ":/64.png", ":/128.png"}) {
        icon.addFile(picture);
    }
    return icon;
}

/// The running program; the one of the session. Its members stand in the order of their lives.
class Program {
 public:
    /// `conditions` are those that other programs are started under. All arguments must outlive the
    /// program.
    Program(QApplication& application, const platform::StartConditions& conditions,
            const QDBusConnection& bus, platform::SingleInstance& instance);

    /// Fulfils `request` and returns the exit status when the user, a signal or the session has
    /// ended the program.
    int run(std::optional<platform::Request> request);

 private:
    PanelTargets panelTargets();
    platform::StatusItemActions itemActions();
    /// At the item or, where its place is not known, in a corner.
    QRect panelAnchor() const;
    /// Calls `window`, which shows one, now or as soon as the files that it needs answer.
    void show(const std::function<void()>& window);
    void openPanel();
    void perform(platform::Request request);
    void quit();

    QApplication& application_;
    platform::SingleInstance& instance_;
    const platform::QuitSignals quitSignals_{[this] { quit(); }};
    Machine machine_;
    qt::Theme theme_;
    platform::LinuxStatusItem item_;
    const platform::ColorScheme colorScheme_;
    const platform::HighContrast highContrast_;
    qt::TitledWindows windows_{giveBackMemory, windowIcon};
    TarnwickApp app_;
    MenuBarView view_;
    qt::PanelWindow panel_;
    qt::FirstWindows firstWindows_;
    platform::ActivityMonitor activityMonitor_;
    const platform::ReducedMotion reducedMotion_;
    const platform::SleepSignals sleepSignals_;
};

Program::Program(QApplication& application, const platform::StartConditions& conditions,
                 const QDBusConnection& bus, platform::SingleInstance& instance)
    : application_(application),
      instance_(instance),
      machine_(bus),
      item_(bus, platform::LinuxStatusItem::sessionOptions(paintIcon, theme_.isDark(),
                                                           *platform::current().dispatch)),
      colorScheme_(bus,
                   [this](bool dark) {
                       theme_.setDark(dark);
                       item_.setDark(dark);
                   }),
      highContrast_(bus, [this](bool isHigh) { theme_.setHighContrast(isHigh); }),
      app_(TarnwickAppDesktop{item_, windows_,
                              [this](UserSettings& settings) {
                                  return qt::makeSettingsContent(settings, theme_,
                                                                 settingsEnvironment(item_));
                              }}),
      view_(app_.statsManager(), panelTargets()),
      panel_(view_, theme_, *platform::current().dispatch),
      firstWindows_(*platform::current().dispatch),
      // An open panel would lie over the monitor and hold the pointer.
      activityMonitor_(conditions, *platform::current().dispatch, [this] { panel_.close(); }),
      reducedMotion_(bus, [this](bool isReduced) { panel_.setMotionReduced(isReduced); }),
      sleepSignals_(QDBusConnection::systemBus(), [this] { app_.machineDidWake(); }) {
    item_.setActions(itemActions());
    instance_.setPerform([this](platform::Request request, const QString& activationToken) {
        item_.keepActivationToken(activationToken);
        show([this, request] { perform(request); });
        item_.giveActivationTokenBack();
    });
    QObject::connect(&panel_, &qt::PanelWindow::widgetsFreed, giveBackMemory);
    // Once the item is on its way.
    QTimer::singleShot(0, &application_, &qt::loadPointers);
    QTimer::singleShot(kStartIsOver, &application_, &platform::giveBackFreedMemory);
    // Only the entry at login starts the program again: a session that restores what ran in it
    // would do so, too, even where start at login is off.
    QObject::connect(
        &application_, &QGuiApplication::saveStateRequest, &application_,
        [](QSessionManager& session) { session.setRestartHint(QSessionManager::RestartNever); });
}

int Program::run(std::optional<platform::Request> request) {
    app_.appDelegate().applicationDidFinishLaunching();
    if (request) {
        // After the greeting of a first start: its settings would close a panel that is open
        // before. The greeting may have opened the panel, and it has to stay open.
        platform::current().dispatch->async([this, request] {
            perform(*request == platform::Request::togglePanel ? platform::Request::openPanel
                                                               : *request);
        });
    }
    const int status = application_.exec();
    // A session's end comes without a call of quit().
    instance_.release();
    machine_.settle();
    return status;
}

PanelTargets Program::panelTargets() {
    return {.showSettings =
                [this] {
                    // Settings first: activation passes on only while the panel is still active.
                    app_.showSettingsWindow();
                    panel_.close();
                },
            .openActivityMonitor = [this] { activityMonitor_.open(); },
            .quit = [this] { quit(); },
            .copyText =
                [](const std::string& text) {
                    QGuiApplication::clipboard()->setText(QString::fromStdString(text));
                }};
}

platform::StatusItemActions Program::itemActions() {
    const auto shown = [this](std::function<void()> window) {
        return [this, window = std::move(window)] { show(window); };
    };
    return {.click = shown([this] {
                app_.appDelegate().panelWasAskedFor();
                panel_.click(panelAnchor());
            }),
            .toggle = shown([this] { panel_.toggle(panelAnchor()); }),
            .refresh = [this] { app_.statsManager().refreshNow(); },
            .openPanel = shown([this] { openPanel(); }),
            .showSettings = shown([this] { app_.showSettingsWindow(); }),
            .quit = [this] { quit(); }};
}

QRect Program::panelAnchor() const {
    if (const auto place = item_.anchor()) {
        return *place;
    }
    const QScreen* screen = QGuiApplication::primaryScreen();
    return qt::cornerAnchor(screen->geometry(), screen->availableGeometry(),
                            item_.isUsuallyAtTheBottom());
}

void Program::show(const std::function<void()>& window) {
    // An open panel has had what the first window needs; to close it must not wait.
    if (firstWindows_.areRead() || panel_.isOpen()) {
        window();
        return;
    }
    // The permission to come to the front waits with the window.
    firstWindows_.show([this, window, token = item_.takeActivationToken()] {
        item_.keepActivationToken(token);
        window();
        item_.giveActivationTokenBack();
    });
}

void Program::openPanel() {
    app_.appDelegate().panelWasAskedFor();
    panel_.open(panelAnchor());
}

void Program::perform(platform::Request request) {
    switch (request) {
        case platform::Request::openPanel:
            openPanel();
            break;
        case platform::Request::togglePanel:
            app_.appDelegate().panelWasAskedFor();
            panel_.toggle(panelAnchor());
            break;
        case platform::Request::showSettings:
            app_.showSettingsWindow();
            break;
    }
}

void Program::quit() {
    // From here on a new start becomes the owner instead of asking this exiting process for its
    // panel.
    instance_.release();
    application_.quit();
}

/// Returns the exit status.
int print(const std::string& text) {
    if (std::fputs(text.c_str(), stdout) == EOF || std::fflush(stdout) == EOF) {
        platform::notice("the output cannot be written");
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}

int run(QApplication& application, const platform::StartConditions& conditions,
        std::optional<platform::Request> request) {
    const QDBusConnection bus = platform::sessionBus();
    platform::SingleInstance instance(bus, qEnvironmentVariable("XDG_RUNTIME_DIR"),
                                      platform::displayName());
    switch (instance.claim(request.value_or(platform::Request::openPanel))) {
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
    platform::applyInterfaceFont();
    return Program(application, conditions, bus, instance).run(request);
}

}  // namespace
}  // namespace tarnwick

int main(int argc, char* argv[]) {
    using namespace tarnwick;
    const platform::CommandLine commandLine =
        platform::parseCommandLine(argc, argv, TARNWICK_VERSION);
    if (commandLine.text) {
        return print(*commandLine.text);
    }
    platform::shareOneHeap();
    if (!hasDisplay()) {
        platform::notice("there is no display: neither DISPLAY nor WAYLAND_DISPLAY is set");
        return EXIT_FAILURE;
    }
    if (!platform::displayAnswers()) {
        platform::notice("the display cannot be reached: " + platform::displayName().toStdString());
        return EXIT_FAILURE;
    }
    platform::surviveFileSizeLimit();
    const platform::StartConditions conditions{QProcessEnvironment::systemEnvironment(),
                                               platform::raiseDescriptorLimit()};
    auto environment = std::make_optional<platform::ToolkitEnvironment>();
    qt::listPopUpsForScreenReaders();
    // Newer toolkits print a line whenever assistive technology asks for a widget that has gone.
    // They also print one whenever the compositor takes the keyboard from a window that has closed.
    QLoggingCategory::setFilterRules(
        "qt.accessibility.atspi.warning=false\nqt.qpa.wayland.textinput.warning=false");
    // The name alone: the toolkit would end the program at an option of its own that makes no
    // sense.
    int count = argc < 1 ? argc : 1;
    QApplication application(count, argv);
    environment.reset();
    qt::stopLookingForFonts();
    QApplication::setApplicationName(platform::kIdentifier);
    QApplication::setApplicationVersion(TARNWICK_VERSION);
    QApplication::setDesktopFileName(platform::kIdentifier);
    QApplication::setQuitOnLastWindowClosed(false);
    return run(application, conditions, commandLine.request);
}
