// The control in which a shortcut is recorded. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>

#include "settings/shortcut_field.h"

/// Passes on what happens to it and draws the field's text.
@interface TNWShortcutFieldView : NSView
/// `field` outlives the view's place in a window.
- (instancetype)initWithField:(tarnwick::ShortcutField*)field;
@end
