// The tabs of the settings window. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>

#include "ui/settings/settings_view.h"

/// A tab for each page, in the window's toolbar; every page scrolls by itself.
@interface TNWSettingsTabs : NSTabViewController
- (instancetype)initWithView:(tarnwick::SettingsView*)view;
/// The view goes: neither reads from it any more nor tells it anything.
- (void)forgetView;
@end
