// SPDX-License-Identifier: MIT
// A button that runs a function. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>
#include <functional>
#include <memory>

#include "ui/panel/blocks.h"
#include "ui/panel/motion.h"

namespace tarnwick::appkit {

/// Called with the action of a pressed button.
using PressHandler = std::function<void(PanelAction)>;

}  // namespace tarnwick::appkit

@interface TNWPressButton : NSButton
/// Each press runs a copy of `pressed`.
- (void)setPressed:(std::function<void()>)pressed;
/// Turns the symbol of a button that shows it alone, once. Stands still with a reduced `motion` or
/// none.
- (void)turnSymbolWith:(std::shared_ptr<tarnwick::Motion>)motion;
@end

namespace tarnwick::appkit {

/// Identifies the button of an action: each button below has this tag.
NSInteger tagOf(PanelAction action);

/// A button with its title and the symbol, if any, before it.
TNWPressButton* titledButton(const PanelButton& button, const PressHandler& press);
/// The same without a border.
TNWPressButton* plainTitledButton(const PanelButton& button, const PressHandler& press);
/// Shows only the symbol. The title is the tool tip and the accessible name.
TNWPressButton* iconButton(const PanelButton& button, const PressHandler& press);
/// As wide as the page, with a symbol at the trailing end.
TNWPressButton* navigationButton(const PanelButton& button, const PressHandler& press);

}  // namespace tarnwick::appkit
