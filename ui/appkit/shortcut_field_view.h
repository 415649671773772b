// The control that records a shortcut. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>

#include "settings/shortcut_field.h"

/// Passes its events to the field and draws the field's text.
@interface TNWShortcutFieldView : NSView
/// `field` must outlive the view's time in a window.
- (instancetype)initWithField:(tarnwick::ShortcutField*)field;
@end
