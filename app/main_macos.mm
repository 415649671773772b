// SPDX-License-Identifier: MIT
// The program on macOS: puts the machine, the toolkit and the shell together.
#import <AppKit/AppKit.h>

#include "app/tarnwick_app.h"
#include "platform/macos/mac_platform.h"
#include "platform/macos/mac_workspace.h"
#include "ui/appkit/mac_status_item.h"
#include "ui/appkit/panel_window.h"
#include "ui/appkit/settings_window_view.h"
#include "ui/appkit/style.h"
#include "ui/appkit/titled_window.h"
#include "ui/panel/menu_bar_view.h"

namespace tarnwick {
namespace {

/// Everything that lives as long as the program.
class Program {
 public:
    Program()
        : app_(TarnwickAppDesktop{item_, windows_,
                                  [](UserSettings& settings) {
                                      return appkit::makeSettingsView(
                                          settings, *platform::current().dispatch,
                                          *platform::current().keyboardLayout);
                                  }}),
          view_(app_.statsManager(), {.showSettings = [this] { showSettings(); },
                                      .openActivityMonitor = platform::openActivityMonitor,
                                      .quit = quit,
                                      .copyText = copyText}),
          panel_(view_, *platform::current().dispatch),
          wakeNotification_([this] { app_.machineDidWake(); }) {
        item_.setActions({.click =
                              [this] {
                                  app_.appDelegate().panelWasAskedFor();
                                  panel_.toggle(item_.frame());
                              },
                          .toggle = [this] { panel_.toggle(item_.frame()); },
                          .refresh = [this] { app_.statsManager().refreshNow(); },
                          .openPanel = [this] { openPanel(); },
                          .showSettings = [this] { showSettings(); },
                          .quit = quit});
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    void didFinishLaunching() { app_.appDelegate().applicationDidFinishLaunching(); }
    void openPanel() {
        app_.appDelegate().panelWasAskedFor();
        panel_.open(item_.frame());
    }

 private:
    void showSettings() {
        panel_.close();
        app_.showSettingsWindow();
    }
    static void copyText(const std::string& text) {
        NSPasteboard* clipboard = NSPasteboard.generalPasteboard;
        [clipboard clearContents];
        [clipboard setString:appkit::string(text) forType:NSPasteboardTypeString];
    }
    static void quit() { [appkit::application() terminate:nil]; }

    appkit::MacStatusItem item_;
    appkit::TitledWindows windows_;
    TarnwickApp app_;
    MenuBarView view_;
    appkit::PanelWindow panel_;
    platform::WakeNotification wakeNotification_;
};

/// A menu that is never seen, because the application has no menu bar. It gives every window the
/// keys to close and to quit.
NSMenu* makeMenu() {
    NSMenu* commands = [[NSMenu alloc] initWithTitle:@"Tarnwick"];
    [commands addItemWithTitle:@"Close" action:@selector(performClose:) keyEquivalent:@"w"];
    [commands addItemWithTitle:@"Quit" action:@selector(terminate:) keyEquivalent:@"q"];
    NSMenuItem* item = [[NSMenuItem alloc] initWithTitle:@"Tarnwick" action:nil keyEquivalent:@""];
    item.submenu = commands;
    NSMenu* menu = [[NSMenu alloc] initWithTitle:@""];
    [menu addItem:item];
    return menu;
}

}  // namespace
}  // namespace tarnwick

@interface TNWAppDelegate : NSObject <NSApplicationDelegate>
@property(nonatomic) tarnwick::Program* program;
@end

@implementation TNWAppDelegate

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
    (void)notification;
    self.program->didFinishLaunching();
}

/// Nothing of a window is restored at the next start, so reading the restored state is secure.
- (BOOL)applicationSupportsSecureRestorableState:(NSApplication*)sender {
    (void)sender;
    return YES;
}

/// The user started the program again while it runs: opens the panel, even if the menu bar has no
/// room for the item.
- (BOOL)applicationShouldHandleReopen:(NSApplication*)sender hasVisibleWindows:(BOOL)hasWindows {
    (void)sender;
    (void)hasWindows;
    self.program->openPanel();
    return NO;
}

@end

int main() {
    @autoreleasepool {
        NSApplication* application = tarnwick::appkit::application();
        application.activationPolicy = NSApplicationActivationPolicyAccessory;
        application.mainMenu = tarnwick::makeMenu();
        tarnwick::platform::install(tarnwick::platform::makeMacPlatform());
        // The application holds it weakly.
        NS_VALID_UNTIL_END_OF_SCOPE TNWAppDelegate* delegate = [[TNWAppDelegate alloc] init];
        // Never destroyed: the application ends by ending its process.
        delegate.program = new tarnwick::Program();
        application.delegate = delegate;
        [application run];
    }
    return 0;
}
