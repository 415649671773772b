// SPDX-License-Identifier: MIT
// The panel's window and what it contains. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>
#include <functional>

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

/// Shows a page that may be higher than the screen.
@interface TNWPanelScrollView : NSScrollView
- (instancetype)initWithPage:(NSView*)page;
- (void)scrollToTop;
/// Scrolls the page as the key asks. For any other key, does nothing and returns NO.
- (BOOL)scrollByKey:(unsigned short)keyCode;
@end

/// Borderless and above all other windows. Takes the keyboard although it has no title bar.
@interface TNWPanel : NSPanel
- (instancetype)initWithPage:(TNWPageView*)page;
/// Called on Escape.
@property(nonatomic) std::function<void()> cancelled;
/// Called on Command-W.
@property(nonatomic) std::function<void()> closed;
@property(nonatomic, readonly) TNWPanelScrollView* scroller;
@end
