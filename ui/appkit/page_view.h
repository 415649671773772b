// The column of building blocks of a page. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>

#include "ui/appkit/press_button.h"
#include "ui/panel/page.h"

/// kPanelWidth wide and as high as its page. A page that follows another gives new views only to
/// the items that differ.
@interface TNWPageView : NSStackView
- (instancetype)initWithPress:(tarnwick::appkit::PressHandler)press;
- (void)setPage:(const tarnwick::Page&)page;
@end
