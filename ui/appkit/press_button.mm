#include "ui/appkit/press_button.h"

#include <utility>

#include "ui/appkit/style.h"
#include "ui/panel/navigation_button.h"

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
    // A copy: what it does may take the button away.
    const std::function<void()> pressed = _pressed;
    if (pressed) {
        pressed();
    }
}

@end

namespace tarnwick::appkit {
namespace {

NSImage* symbol(std::string_view name) {
    return [NSImage imageWithSystemSymbolName:string(name) accessibilityDescription:nil];
}

TNWPressButton* plainButton(const PanelButton& button, const PressHandler& press) {
    TNWPressButton* view = [[TNWPressButton alloc] initWithFrame:NSZeroRect];
    view.buttonType = NSButtonTypeMomentaryPushIn;
    view.title = string(button.title);
    view.accessibilityLabel = string(button.title);
    view.enabled = button.isEnabled;
    [view setPressed:[press, action = button.action] { press(action); }];
    return view;
}

}  // namespace

TNWPressButton* titledButton(const PanelButton& button, const PressHandler& press) {
    TNWPressButton* view = plainButton(button, press);
    view.bezelStyle = NSBezelStyleRounded;
    view.controlSize = NSControlSizeSmall;
    view.font = font(FontRole::caption);
    if (!button.icon.empty()) {
        view.image = symbol(button.icon);
        view.imagePosition = NSImageLeading;
    }
    return view;
}

TNWPressButton* iconButton(const PanelButton& button, const PressHandler& press) {
    TNWPressButton* view = plainButton(button, press);
    view.bordered = NO;
    view.image = symbol(button.icon);
    view.imagePosition = NSImageOnly;
    view.toolTip = string(button.title);
    return view;
}

TNWPressButton* navigationButton(const PanelButton& button, const PressHandler& press) {
    TNWPressButton* view = plainButton(button, press);
    view.bordered = NO;
    view.alignment = NSTextAlignmentNatural;
    view.font = font(FontRole::subheadline);
    view.image = symbol(NavigationButton::kTrailingIcon);
    view.imagePosition = NSImageTrailing;
    view.imageHugsTitle = NO;
    return view;
}

}  // namespace tarnwick::appkit
