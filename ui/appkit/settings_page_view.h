// The column of sections of a settings tab. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>

#include "ui/settings/settings_view.h"

/// A page that follows another keeps the views of all items that can show their new values.
@interface TNWSettingsPageView : NSStackView
/// `view` outlives the page's place in a window.
- (instancetype)initWithView:(tarnwick::SettingsView*)view;
- (void)setPage:(const tarnwick::SettingsPage&)page;
@end
