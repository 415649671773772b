// The tabs of the settings window. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>

#include "ui/settings/settings_view.h"

/// A tab for each page, in the window's toolbar. Each page scrolls on its own.
@interface TNWSettingsTabs : NSTabViewController
- (instancetype)initWithView:(tarnwick::SettingsView*)view;
/// Call it before the view is destroyed: from then on this neither reads from the view nor calls
/// it.
- (void)forgetView;
@end
