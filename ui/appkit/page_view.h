// The column of building blocks of a page. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>

#include "ui/appkit/block_views.h"
#include "ui/appkit/press_button.h"
#include "ui/panel/page.h"

/// kPanelWidth wide and as high as its page. A new page changes only the items that differ. A view
/// is kept as long as an item of its id and kind exists.
@interface TNWPageView : NSStackView
- (instancetype)initWithEnvironment:(tarnwick::appkit::BlockEnvironment)environment;
- (void)setPage:(const tarnwick::Page&)page;
/// The button for an action; nil if the page has none.
- (TNWPressButton*)buttonOf:(tarnwick::PanelAction)action;
@end
