// SPDX-License-Identifier: MIT
#include "ui/appkit/status_bar_button.h"

#include "ui/appkit/style.h"

namespace tarnwick::appkit {

NSStatusBarButton* statusBarButtonIn(NSView* view) {
    if ([view isKindOfClass:NSStatusBarButton.class]) {
        return static_cast<NSStatusBarButton*>(view);
    }
    for (NSView* each in view.subviews) {
        if (NSStatusBarButton* button = statusBarButtonIn(each)) {
            return button;
        }
    }
    return nil;
}

NSStatusBarButton* statusBarButton() {
    for (NSWindow* window in application().windows) {
        if (NSStatusBarButton* button = statusBarButtonIn(window.contentView)) {
            return button;
        }
    }
    return nil;
}

}  // namespace tarnwick::appkit
