// The column of sections of a settings tab. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>

#include "ui/settings/settings_view.h"

/// A new page keeps the views of all items that can show their new values.
@interface TNWSettingsPageView : NSStackView
/// `view` must outlive the page's time in a window.
- (instancetype)initWithView:(tarnwick::SettingsView*)view;
- (void)setPage:(const tarnwick::SettingsPage&)page;
@end
