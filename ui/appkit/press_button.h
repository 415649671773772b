// A button that runs a function. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>
#include <functional>

#include "ui/panel/blocks.h"

namespace tarnwick::appkit {

/// What a press asks for.
using PressHandler = std::function<void(PanelAction)>;

}  // namespace tarnwick::appkit

@interface TNWPressButton : NSButton
/// A copy is run at each press.
- (void)setPressed:(std::function<void()>)pressed;
@end

namespace tarnwick::appkit {

/// The tag of every button below, by which it is found.
NSInteger tagOf(PanelAction action);

/// A button with its title and the symbol, if any, before it.
TNWPressButton* titledButton(const PanelButton& button, const PressHandler& press);
/// The same without a border.
TNWPressButton* plainTitledButton(const PanelButton& button, const PressHandler& press);
/// Shows the symbol alone; its title is its tool tip and its accessible name.
TNWPressButton* iconButton(const PanelButton& button, const PressHandler& press);
/// As wide as the page, with a symbol at the trailing end.
TNWPressButton* navigationButton(const PanelButton& button, const PressHandler& press);

}  // namespace tarnwick::appkit
