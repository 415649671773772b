// SPDX-License-Identifier: MIT
// What the settings window contains. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>

#include "settings/shortcut_field.h"
#include "ui/settings/dual_threshold_slider.h"
#include "ui/settings/settings_view.h"

/// A new page keeps the views of all items that can show their new values.
@interface TNWSettingsPageView : NSStackView
/// `view` must outlive the page's time in a window.
- (instancetype)initWithView:(tarnwick::SettingsView*)view;
- (void)setPage:(const tarnwick::SettingsPage&)page;
@end

/// A tab for each page, in the window's toolbar. Each page scrolls on its own.
@interface TNWSettingsTabs : NSTabViewController
- (instancetype)initWithView:(tarnwick::SettingsView*)view;
/// Call it before the view is destroyed: from then on this neither reads from the view nor calls
/// it.
- (void)forgetView;
@end

/// Passes its events to the field and draws the field's text.
@interface TNWShortcutFieldView : NSView
/// `field` must outlive the view's time in a window.
- (instancetype)initWithField:(tarnwick::ShortcutField*)field;
@end

/// The slider with two thumbs.
@interface TNWThresholdSliderView : NSView
/// `slider` must outlive the view's time in a window.
- (instancetype)initWithSlider:(tarnwick::DualThresholdSlider*)slider;
/// Call it when the thresholds may have changed.
- (void)refresh;
@end
