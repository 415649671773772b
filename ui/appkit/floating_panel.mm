// SPDX-License-Identifier: MIT
#include "settings/key_codes.h"
#include "ui/appkit/panel_views.h"

namespace {

constexpr CGFloat kCorner = 12;

NSVisualEffectView* makeGround(NSView* content) {
    NSVisualEffectView* ground = [[NSVisualEffectView alloc] initWithFrame:NSZeroRect];
    ground.material = NSVisualEffectMaterialPopover;
    ground.state = NSVisualEffectStateActive;
    ground.wantsLayer = YES;
    ground.layer.cornerRadius = kCorner;
    ground.layer.masksToBounds = YES;
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

- (void)cancelOperation:(id)sender {
    (void)sender;
    // A held Escape key would lead back and close the panel at once.
    NSEvent* event = NSApplication.sharedApplication.currentEvent;
    if (event.type == NSEventTypeKeyDown && event.isARepeat) {
        return;
    }
    const std::function<void()> cancelled = self.cancelled;
    if (cancelled) {
        cancelled();
    }
}

@end
