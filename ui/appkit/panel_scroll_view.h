// The scrolling area that contains the panel's page. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>

/// Shows a page that may be higher than the screen.
@interface TNWPanelScrollView : NSScrollView
- (instancetype)initWithPage:(NSView*)page;
- (void)scrollToTop;
/// Scrolls the page as the key asks. For any other key, does nothing and returns NO.
- (BOOL)scrollByKey:(unsigned short)keyCode;
@end
