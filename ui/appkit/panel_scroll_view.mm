// SPDX-License-Identifier: MIT
#include <algorithm>
#include <limits>

#include "settings/key_codes.h"
#include "ui/appkit/grid.h"
#include "ui/appkit/panel_views.h"

namespace {

constexpr CGFloat kLine = tarnwick::appkit::grid::kScrollStep;
/// Higher than any page.
constexpr CGFloat kEverything = std::numeric_limits<CGFloat>::max() / 2;

}  // namespace

@implementation TNWPanelScrollView

- (instancetype)initWithPage:(NSView*)page {
    self = [super initWithFrame:NSZeroRect];
    if (self != nil) {
        self.drawsBackground = NO;
        self.hasVerticalScroller = YES;
        self.autohidesScrollers = YES;
        self.scrollerStyle = NSScrollerStyleOverlay;
        self.verticalScrollElasticity = NSScrollElasticityNone;
        self.translatesAutoresizingMaskIntoConstraints = NO;
        page.translatesAutoresizingMaskIntoConstraints = NO;
        self.documentView = page;
        NSClipView* visible = self.contentView;
        [page.topAnchor constraintEqualToAnchor:visible.topAnchor].active = YES;
        [page.leadingAnchor constraintEqualToAnchor:visible.leadingAnchor].active = YES;
    }
    return self;
}

- (void)scrollBy:(CGFloat)distance {
    NSClipView* visible = self.contentView;
    NSView* page = self.documentView;
    const NSRect bounds = visible.bounds;
    const CGFloat furthest = std::max<CGFloat>(0, page.frame.size.height - bounds.size.height);
    const CGFloat y = std::clamp<CGFloat>(bounds.origin.y + distance, 0, furthest);
    [visible scrollToPoint:NSMakePoint(0, y)];
    [self reflectScrolledClipView:visible];
}

- (void)scrollToTop {
    [self scrollBy:-kEverything];
}

- (BOOL)scrollByKey:(unsigned short)keyCode {
    using namespace tarnwick;
    const CGFloat screenful = self.contentView.bounds.size.height;
    switch (keyCode) {
        case key_code::kUpArrow:
            [self scrollBy:-kLine];
            return YES;
        case key_code::kDownArrow:
            [self scrollBy:kLine];
            return YES;
        case key_code::kPageUp:
            [self scrollBy:-screenful];
            return YES;
        case key_code::kPageDown:
            [self scrollBy:screenful];
            return YES;
        case key_code::kHome:
            [self scrollBy:-kEverything];
            return YES;
        case key_code::kEnd:
            [self scrollBy:kEverything];
            return YES;
        default:
            return NO;
    }
}

/// Gets the keys that a button in the page did not use.
- (void)keyDown:(NSEvent*)event {
    if (![self scrollByKey:event.keyCode]) {
        [super keyDown:event];
    }
}

@end
