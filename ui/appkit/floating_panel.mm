// SPDX-License-Identifier: MIT
#include "settings/key_codes.h"
#include "ui/appkit/grid.h"
#include "ui/appkit/panel_views.h"
#include "ui/appkit/style.h"

namespace {

constexpr CGFloat kCorner = tarnwick::appkit::grid::kPanelCorner;

/// The shape of the panel. Unlike a corner of the layer, a mask of the material shapes the window's
/// shadow, too.
NSImage* roundedMask() {
    constexpr CGFloat kSide = 2 * kCorner + 1;
    NSImage* mask = [NSImage imageWithSize:NSMakeSize(kSide, kSide)
                                   flipped:NO
                            drawingHandler:^BOOL(NSRect frame) {
                              [NSColor.blackColor setFill];
                              [[NSBezierPath bezierPathWithRoundedRect:frame
                                                               xRadius:kCorner
                                                               yRadius:kCorner] fill];
                              return YES;
                            }];
    mask.capInsets = NSEdgeInsetsMake(kCorner, kCorner, kCorner, kCorner);
    mask.resizingMode = NSImageResizingModeStretch;
    return mask;
}

NSVisualEffectView* makeGround(NSView* content) {
    NSVisualEffectView* ground = [[NSVisualEffectView alloc] initWithFrame:NSZeroRect];
    ground.material = NSVisualEffectMaterialPopover;
    ground.state = NSVisualEffectStateActive;
    ground.maskImage = roundedMask();
    [ground addSubview:content];
    [NSLayoutConstraint activateConstraints:@[
        [content.topAnchor constraintEqualToAnchor:ground.topAnchor],
        [content.bottomAnchor constraintEqualToAnchor:ground.bottomAnchor],
        [content.leadingAnchor constraintEqualToAnchor:ground.leadingAnchor],
        [content.trailingAnchor constraintEqualToAnchor:ground.trailingAnchor],
    ]];
    return ground;
}

}  // namespace

@implementation TNWPanel

- (instancetype)initWithPage:(TNWPageView*)page {
    self =
        [super initWithContentRect:NSMakeRect(0, 0, tarnwick::kPanelWidth, 1)
                         styleMask:NSWindowStyleMaskBorderless | NSWindowStyleMaskNonactivatingPanel
                           backing:NSBackingStoreBuffered
                             defer:NO];
    if (self != nil) {
        self.releasedWhenClosed = NO;
        self.autorecalculatesKeyViewLoop = YES;
        self.floatingPanel = YES;
        self.level = NSPopUpMenuWindowLevel;
        self.hidesOnDeactivate = NO;
        self.opaque = NO;
        self.backgroundColor = NSColor.clearColor;
        self.hasShadow = YES;
        self.animationBehavior = NSWindowAnimationBehaviorNone;
        self.collectionBehavior = NSWindowCollectionBehaviorCanJoinAllSpaces |
                                  NSWindowCollectionBehaviorFullScreenAuxiliary;
        self.accessibilityLabel = @"Tarnwick";
        _scroller = [[TNWPanelScrollView alloc] initWithPage:page];
        self.contentView = makeGround(_scroller);
    }
    return self;
}

- (BOOL)canBecomeKeyWindow {
    return YES;
}

- (void)keyDown:(NSEvent*)event {
    if (event.keyCode == tarnwick::key_code::kEscape) {
        [self cancelOperation:self];
    } else if (![_scroller scrollByKey:event.keyCode]) {
        [super keyDown:event];
    }
}

/// A window without a close button would beep.
- (BOOL)validateMenuItem:(NSMenuItem*)item {
    return item.action == @selector(performClose:) || [super validateMenuItem:item];
}

- (void)performClose:(id)sender {
    (void)sender;
    const std::function<void()> closed = self.closed;
    if (closed) {
        closed();
    }
}

- (void)cancelOperation:(id)sender {
    (void)sender;
    // A held Escape key would lead back and close the panel at once.
    NSEvent* event = tarnwick::appkit::application().currentEvent;
    if (event.type == NSEventTypeKeyDown && event.isARepeat) {
        return;
    }
    const std::function<void()> cancelled = self.cancelled;
    if (cancelled) {
        cancelled();
    }
}

@end
