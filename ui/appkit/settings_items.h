// SPDX-License-Identifier: MIT
// The views of the items of a settings page. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>

#include "ui/settings/settings_view.h"

@protocol TNWSettingsItemView
/// Shows other values of the same item. If it cannot, changes nothing and returns NO.
- (BOOL)showItem:(const tarnwick::SettingsItem&)item;
@end

/// Draws its body on a rounded card.
@interface TNWCard : NSView
- (void)setBody:(NSView*)body;
@end

namespace tarnwick::appkit {

/// `view` must outlive the item's time in a window.
NSView<TNWSettingsItemView>* makeSettingsItemView(const SettingsItem& item, SettingsView& view);

/// Views from top to bottom, each as wide as the column.
NSStackView* settingsColumn(NSArray<NSView*>* views, CGFloat gap);
/// Views side by side from the leading edge.
NSStackView* settingsRow(NSArray<NSView*>* views, CGFloat gap);
/// Caption, on as many lines as it needs.
NSTextField* captionLabel(std::string_view text);

}  // namespace tarnwick::appkit
