// SPDX-License-Identifier: MIT
#include "ui/appkit/press_button.h"

#include <cmath>
#include <optional>
#include <utility>

#include "ui/appkit/grid.h"
#include "ui/appkit/style.h"
#include "ui/panel/blocks.h"

namespace {

/// The picture turned clockwise around its middle by a share of a whole turn.
NSImage* turned(NSImage* picture, double share) {
    const NSSize size = picture.size;
    NSImage* result = [NSImage imageWithSize:size
                                     flipped:NO
                              drawingHandler:^BOOL(NSRect frame) {
                                NSAffineTransform* transform = [NSAffineTransform transform];
                                [transform translateXBy:NSMidX(frame) yBy:NSMidY(frame)];
                                [transform rotateByDegrees:-360 * share];
                                [transform translateXBy:-NSMidX(frame) yBy:-NSMidY(frame)];
                                [transform concat];
                                [picture drawInRect:frame];
                                return YES;
                              }];
    [result setTemplate:[picture isTemplate]];
    return result;
}

}  // namespace

@implementation TNWPressButton {
    std::function<void()> _pressed;
    /// The symbol as it stands still.
    NSImage* _symbol;
    /// Whole turns of the symbol so far; set from the first turn on.
    std::optional<tarnwick::MovingValue> _turns;
}

- (void)setPressed:(std::function<void()>)pressed {
    _pressed = std::move(pressed);
    self.target = self;
    self.action = @selector(runPressed:);
}

- (void)runPressed:(id)sender {
    (void)sender;
    // A copy, because the action may destroy the button.
    const std::function<void()> pressed = _pressed;
    if (pressed) {
        pressed();
    }
}

- (void)turnSymbolWith:(std::shared_ptr<tarnwick::Motion>)motion {
    if (self.imagePosition != NSImageOnly || motion == nullptr) {
        return;
    }
    if (!_turns) {
        _symbol = self.image;
        __weak TNWPressButton* weakSelf = self;
        _turns.emplace(
            std::move(motion), [weakSelf] { [weakSelf showTurn]; }, tarnwick::Motion::kTurn);
    }
    _turns->moveTo(_turns->target() + 1);
}

- (void)showTurn {
    const double share = _turns->value() - std::floor(_turns->value());
    self.image = share == 0 ? _symbol : turned(_symbol, share);
}

@end

namespace tarnwick::appkit {
namespace {

TNWPressButton* untitledButton(const PanelButton& button, const PressHandler& press) {
    TNWPressButton* view = [[TNWPressButton alloc] initWithFrame:NSZeroRect];
    view.buttonType = NSButtonTypeMomentaryPushIn;
    view.title = string(button.title);
    view.accessibilityLabel = string(button.title);
    view.enabled = button.isEnabled;
    view.tag = tagOf(button.action);
    [view setPressed:[press, action = button.action] { press(action); }];
    return view;
}

}  // namespace

// Starts at 1, because other controls have the tags 0 and -1.
NSInteger tagOf(PanelAction action) {
    return static_cast<NSInteger>(action) + 1;
}

TNWPressButton* titledButton(const PanelButton& button, const PressHandler& press) {
    TNWPressButton* view = untitledButton(button, press);
    view.bezelStyle = NSBezelStyleRounded;
    view.controlSize = NSControlSizeSmall;
    view.font = font(FontRole::caption);
    if (!button.icon.empty()) {
        view.image = symbol(button.icon);
        view.imagePosition = NSImageLeading;
    }
    return view;
}

TNWPressButton* plainTitledButton(const PanelButton& button, const PressHandler& press) {
    TNWPressButton* view = titledButton(button, press);
    view.bordered = NO;
    return view;
}

TNWPressButton* iconButton(const PanelButton& button, const PressHandler& press) {
    TNWPressButton* view = untitledButton(button, press);
    view.bordered = NO;
    view.image = symbol(button.icon);
    view.imagePosition = NSImageOnly;
    view.toolTip = string(button.title);
    [view.widthAnchor constraintEqualToConstant:grid::kIconButtonSize].active = YES;
    [view.heightAnchor constraintEqualToConstant:grid::kIconButtonSize].active = YES;
    return view;
}

TNWPressButton* navigationButton(const PanelButton& button, const PressHandler& press) {
    TNWPressButton* view = untitledButton(button, press);
    view.bordered = NO;
    view.alignment = NSTextAlignmentNatural;
    view.font = font(FontRole::subheadline);
    view.image = symbol(NavigationButton::kTrailingIcon);
    view.imagePosition = NSImageTrailing;
    view.imageHugsTitle = NO;
    [view.heightAnchor constraintGreaterThanOrEqualToConstant:grid::kNavigationHeight].active = YES;
    return view;
}

}  // namespace tarnwick::appkit
