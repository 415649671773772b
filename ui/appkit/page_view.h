// The column of building blocks of a page. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>

#include "ui/appkit/block_views.h"
#include "ui/appkit/press_button.h"
#include "ui/panel/page.h"

/// kPanelWidth wide and as high as its page. A page that follows another touches only the items
/// that differ; a view stays as long as an item of its id and kind does.
@interface TNWPageView : NSStackView
- (instancetype)initWithEnvironment:(tarnwick::appkit::BlockEnvironment)environment;
- (void)setPage:(const tarnwick::Page&)page;
/// The button of an action; nil when there is none on the page.
- (TNWPressButton*)buttonOf:(tarnwick::PanelAction)action;
@end
