// The panel's window. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>
#include <functional>

#include "ui/appkit/page_view.h"
#include "ui/appkit/panel_scroll_view.h"

/// Borderless and above all other windows. Takes the keyboard although it has no title bar.
@interface TNWPanel : NSPanel
- (instancetype)initWithPage:(TNWPageView*)page;
/// Called on Escape.
@property(nonatomic) std::function<void()> cancelled;
@property(nonatomic, readonly) TNWPanelScrollView* scroller;
@end
