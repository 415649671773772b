// SPDX-License-Identifier: MIT
#include "ui/appkit/titled_window.h"

#include <utility>

#include "ui/appkit/style.h"
#include "ui/appkit/view_holder.h"

/// Passes a window's notifications to a receiver.
@interface TNWWindowDelegate : NSObject <NSWindowDelegate>
@property(nonatomic) tarnwick::platform::WindowDelegate* receiver;
@end

@implementation TNWWindowDelegate

- (void)windowWillClose:(NSNotification*)notification {
    // Keeps the window alive: the receiver may destroy the owner of the window, which is still
    // closing.
    NSWindow* window = notification.object;
    if (self.receiver != nullptr) {
        self.receiver->windowWillClose();
    }
    dispatch_async(dispatch_get_main_queue(), ^{
      (void)window;
    });
}

@end

namespace tarnwick::appkit {
namespace {

class TitledWindow final : public platform::Window {
 public:
    explicit TitledWindow(const platform::WindowOptions& options) {
        NSWindowStyleMask style = NSWindowStyleMaskTitled | NSWindowStyleMaskClosable;
        if (options.isResizable) {
            style |= NSWindowStyleMaskResizable;
        }
        if (options.isMiniaturizable) {
            style |= NSWindowStyleMaskMiniaturizable;
        }
        window_ =
            [[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, options.width, options.height)
                                        styleMask:style
                                          backing:NSBackingStoreBuffered
                                            defer:NO];
        window_.releasedWhenClosed = NO;
        window_.autorecalculatesKeyViewLoop = YES;
        window_.delegate = delegate_;
    }
    TitledWindow(const TitledWindow&) = delete;
    TitledWindow& operator=(const TitledWindow&) = delete;
    ~TitledWindow() override {
        delegate_.receiver = nullptr;
        [window_ orderOut:nil];
    }

    void setTitle(const std::string& title) override { window_.title = string(title); }
    void setContentView(std::unique_ptr<platform::View> view) override {
        const auto* holder = static_cast<ViewHolder*>(view.get());
        if (holder == nullptr) {
            window_.contentView = nil;
        } else {
            // The window would otherwise take the size of its new content.
            const NSSize size = [window_ contentRectForFrameRect:window_.frame].size;
            window_.contentViewController = holder->controller();
            [window_ setContentSize:size];
        }
        view_ = std::move(view);
    }
    void setDelegate(platform::WindowDelegate* delegate) override { delegate_.receiver = delegate; }
    void center() override { [window_ center]; }
    void makeKeyAndOrderFront() override { [window_ makeKeyAndOrderFront:nil]; }

 private:
    NSWindow* window_;
    /// The window holds it weakly.
    TNWWindowDelegate* delegate_ = [[TNWWindowDelegate alloc] init];
    std::unique_ptr<platform::View> view_;
};

}  // namespace

std::unique_ptr<platform::Window> TitledWindows::makeWindow(
    const platform::WindowOptions& options) {
    return std::make_unique<TitledWindow>(options);
}

void TitledWindows::activateIgnoringOtherApps() {
    [application() activateIgnoringOtherApps:YES];
}

}  // namespace tarnwick::appkit
