// The room in which the panel's page lies. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>

/// Shows a page that may be higher than the screen.
@interface TNWPanelScrollView : NSScrollView
- (instancetype)initWithPage:(NSView*)page;
- (void)scrollToTop;
/// What a key does that moves the page; NO, and nothing happens, for any other key.
- (BOOL)scrollByKey:(unsigned short)keyCode;
@end
