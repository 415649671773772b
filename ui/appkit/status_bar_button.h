// SPDX-License-Identifier: MIT
// Finding the status item's button among the application's windows. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>

namespace tarnwick::appkit {

/// The first one in a tree of views, each view before its subviews; nil without one.
NSStatusBarButton* statusBarButtonIn(NSView* view);

/// The first such button in the application's windows, in their listed order; nil without one.
NSStatusBarButton* statusBarButton();

}  // namespace tarnwick::appkit
