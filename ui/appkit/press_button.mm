// SPDX-License-Identifier: MIT
#include "ui/appkit/press_button.h"

#include <utility>

#include "ui/appkit/style.h"
#include "ui/panel/blocks.h"

@implementation TNWPressButton {
    std::function<void()> _pressed;
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

@end

namespace tarnwick::appkit {
namespace {

/// Side of the area that a press must hit, for a button without border and title; points.
constexpr CGFloat kIconButtonSize = 26;
constexpr CGFloat kNavigationHeight = 28;

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
    [view.widthAnchor constraintEqualToConstant:kIconButtonSize].active = YES;
    [view.heightAnchor constraintEqualToConstant:kIconButtonSize].active = YES;
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
    [view.heightAnchor constraintGreaterThanOrEqualToConstant:kNavigationHeight].active = YES;
    return view;
}

}  // namespace tarnwick::appkit
