// Finding the status item's button among the application's windows. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>

namespace tarnwick::appkit {

/// The first one in a tree of views, each view before its subviews; nil without one.
NSStatusBarButton* statusBarButtonIn(NSView* view);

/// The first one in the application's windows, in the order in which they are listed.
NSStatusBarButton* statusBarButton();

}  // namespace tarnwick::appkit
