// SPDX-License-Identifier: MIT
#include <cmath>

#include "ui/appkit/grid.h"
#include "ui/appkit/settings_views.h"
#include "ui/appkit/style.h"

namespace {

using Slider = tarnwick::DualThresholdSlider;
using Thumb = Slider::Thumb;

constexpr CGFloat kDot = tarnwick::appkit::grid::kThumbDot;

}  // namespace

/// One thumb for the keyboard and screen readers. The slider draws it.
@interface TNWThumbView : NSView
- (instancetype)initWithSlider:(Slider*)slider thumb:(Thumb)thumb changed:(void (^)(void))changed;
@end

@implementation TNWThumbView {
    Slider* _slider;
    Thumb _thumb;
    void (^_changed)(void);
}

- (instancetype)initWithSlider:(Slider*)slider thumb:(Thumb)thumb changed:(void (^)(void))changed {
    self = [super initWithFrame:NSMakeRect(0, 0, Slider::kThumbSize, Slider::kThumbSize)];
    if (self != nil) {
        _slider = slider;
        _thumb = thumb;
        _changed = changed;
        self.accessibilityElement = YES;
        self.accessibilityRole = NSAccessibilitySliderRole;
        self.accessibilityLabel = tarnwick::appkit::string(slider->accessibilityLabel(thumb));
    }
    return self;
}

/// Never hit, because the slider handles the pointer.
- (NSView*)hitTest:(NSPoint)point {
    (void)point;
    return nil;
}

- (BOOL)acceptsFirstResponder {
    return _slider->keyboardNavigationEnabled();
}

- (BOOL)canBecomeKeyView {
    return _slider->keyboardNavigationEnabled();
}

- (void)keyDown:(NSEvent*)event {
    [self interpretKeyEvents:@[ event ]];
}

/// Other commands do nothing; unhandled ones would beep.
- (void)doCommandBySelector:(SEL)selector {
    if ([self respondsToSelector:selector]) {
        [super doCommandBySelector:selector];
    }
}

- (void)insertText:(id)text {
    (void)text;
}

- (void)valueChanged {
    _changed();
    NSAccessibilityPostNotification(self, NSAccessibilityValueChangedNotification);
}

- (void)move:(Slider::MoveCommand)command {
    _slider->move(_thumb, command);
    [self valueChanged];
}

- (void)moveUp:(id)sender {
    (void)sender;
    [self move:Slider::MoveCommand::up];
}

- (void)moveDown:(id)sender {
    (void)sender;
    [self move:Slider::MoveCommand::down];
}

- (void)moveLeft:(id)sender {
    (void)sender;
    [self move:Slider::MoveCommand::left];
}

- (void)moveRight:(id)sender {
    (void)sender;
    [self move:Slider::MoveCommand::right];
}

- (void)insertTab:(id)sender {
    (void)sender;
    [self.window selectNextKeyView:self];
}

- (void)insertBacktab:(id)sender {
    (void)sender;
    [self.window selectPreviousKeyView:self];
}

- (id)accessibilityValue {
    return tarnwick::appkit::string(_slider->accessibilityValue(_thumb));
}

- (BOOL)accessibilityPerformIncrement {
    _slider->adjust(_thumb, Slider::Adjustment::increment);
    [self valueChanged];
    return YES;
}

- (BOOL)accessibilityPerformDecrement {
    _slider->adjust(_thumb, Slider::Adjustment::decrement);
    [self valueChanged];
    return YES;
}

- (void)drawFocusRingMask {
    [[NSBezierPath bezierPathWithOvalInRect:self.bounds] fill];
}

- (NSRect)focusRingMaskBounds {
    return self.bounds;
}

@end

@implementation TNWThresholdSliderView {
    Slider* _slider;
    TNWThumbView* _normal;
    TNWThumbView* _high;
}

- (instancetype)initWithSlider:(Slider*)slider {
    self = [super initWithFrame:NSZeroRect];
    if (self != nil) {
        _slider = slider;
        __weak TNWThresholdSliderView* weakSelf = self;
        void (^changed)(void) = ^{
          [weakSelf refresh];
        };
        _normal = [[TNWThumbView alloc] initWithSlider:slider thumb:Thumb::normal changed:changed];
        _high = [[TNWThumbView alloc] initWithSlider:slider thumb:Thumb::high changed:changed];
        [self addSubview:_normal];
        [self addSubview:_high];
        [self.heightAnchor constraintEqualToConstant:Slider::kHitSize].active = YES;
    }
    return self;
}

- (void)refresh {
    self.needsDisplay = YES;
    self.needsLayout = YES;
}

- (NSRect)rectOf:(Thumb)thumb {
    const NSSize size = self.bounds.size;
    const CGFloat middle = _slider->thumbCenter(thumb, size.width);
    return NSMakeRect(middle - Slider::kThumbSize / 2, (size.height - Slider::kThumbSize) / 2,
                      Slider::kThumbSize, Slider::kThumbSize);
}

- (void)layout {
    [super layout];
    _normal.frame = [self rectOf:Thumb::normal];
    _high.frame = [self rectOf:Thumb::high];
}

- (void)drawRect:(NSRect)dirtyRect {
    (void)dirtyRect;
    using tarnwick::Tint;
    using tarnwick::appkit::color;
    const NSSize size = self.bounds.size;
    const CGFloat usable = Slider::usableWidth(size.width);
    NSRect track = NSMakeRect(Slider::kThumbSize / 2, (size.height - Slider::kTrackHeight) / 2,
                              usable, Slider::kTrackHeight);
    NSBezierPath* capsule = [NSBezierPath bezierPathWithRoundedRect:track
                                                            xRadius:Slider::kTrackHeight / 2
                                                            yRadius:Slider::kTrackHeight / 2];
    tarnwick::appkit::fillFaintly(capsule, NSColor.secondaryLabelColor, Slider::kTrackOpacity);

    [NSGraphicsContext saveGraphicsState];
    [capsule addClip];
    const Slider::Segments segments = _slider->segments(size.width);
    [self fill:&track width:segments.green color:color(Tint::green)];
    [self fill:&track width:segments.yellow color:color(Tint::yellow)];
    [self fill:&track width:segments.red color:color(Tint::red)];
    [NSGraphicsContext restoreGraphicsState];

    [NSColor.secondaryLabelColor setFill];
    for (const double tick : _slider->ticks(size.width)) {
        NSRectFill(NSMakeRect(
            std::round(tick) - 0.5,
            size.height / 2 - Slider::kTrackHeight / 2 - Slider::kTickGap - Slider::kTickHeight, 1,
            Slider::kTickHeight));
    }

    // The dragged thumb is drawn above the other one.
    if (_slider->isDraggingNormal()) {
        [self drawThumb:Thumb::high color:color(Tint::red)];
        [self drawThumb:Thumb::normal color:color(Tint::yellow)];
    } else {
        [self drawThumb:Thumb::normal color:color(Tint::yellow)];
        [self drawThumb:Thumb::high color:color(Tint::red)];
    }
}

/// Fills the first `width` points of `track` and removes them from its start.
- (void)fill:(NSRect*)track width:(CGFloat)width color:(NSColor*)color {
    NSRect part = *track;
    part.size.width = width;
    [color setFill];
    NSRectFill(part);
    track->origin.x += width;
}

- (void)drawThumb:(Thumb)thumb color:(NSColor*)color {
    NSAppearanceName appearance = [self.effectiveAppearance
        bestMatchFromAppearancesWithNames:@[ NSAppearanceNameAqua, NSAppearanceNameDarkAqua ]];
    const BOOL isDark = [appearance isEqualToString:NSAppearanceNameDarkAqua];
    const NSRect rect = [self rectOf:thumb];
    NSBezierPath* circle = [NSBezierPath bezierPathWithOvalInRect:NSInsetRect(rect, 0.5, 0.5)];
    [[NSColor colorWithWhite:isDark ? Slider::kDarkThumbLevel : Slider::kLightThumbLevel
                       alpha:1] setFill];
    [circle fill];
    [NSColor.separatorColor setStroke];
    [circle stroke];
    const CGFloat inset = (Slider::kThumbSize - kDot) / 2;
    [color setFill];
    [[NSBezierPath bezierPathWithOvalInRect:NSInsetRect(rect, inset, inset)] fill];
}

- (NSPoint)placeOf:(NSEvent*)event {
    return [self convertPoint:event.locationInWindow fromView:nil];
}

/// A press beside the thumbs is passed on.
- (void)mouseDown:(NSEvent*)event {
    const NSPoint place = [self placeOf:event];
    const NSSize size = self.bounds.size;
    if (!_slider->beginDrag(place.x, std::abs(place.y - size.height / 2), size.width)) {
        [super mouseDown:event];
        return;
    }
    [self dragged];
}

- (void)mouseDragged:(NSEvent*)event {
    _slider->continueDrag([self placeOf:event].x, self.bounds.size.width);
    [self dragged];
}

- (void)mouseUp:(NSEvent*)event {
    (void)event;
    _slider->endDrag();
    [self refresh];
}

/// Gives the focus to the dragged thumb, if thumbs accept the focus.
- (void)dragged {
    TNWThumbView* thumb = _slider->isDraggingNormal() ? _normal
                          : _slider->isDraggingHigh() ? _high
                                                      : nil;
    if (thumb.acceptsFirstResponder && self.window.firstResponder != thumb) {
        [self.window makeFirstResponder:thumb];
    }
    [self refresh];
}

/// Removal from the window ends a drag.
- (void)viewWillMoveToWindow:(NSWindow*)window {
    [super viewWillMoveToWindow:window];
    if (window == nil && self.window != nil) {
        _slider->endDrag();
    }
}

@end
