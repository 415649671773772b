// The views of a page's building blocks. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>

#include "ui/appkit/press_button.h"
#include "ui/panel/page.h"

namespace tarnwick::appkit {

/// Points between the panel's edge and its content.
inline constexpr CGFloat kPagePadding = 16;

/// A view that shows the block for good; another block needs another view.
NSView* makeBlockView(const PanelBlock& block, const PressHandler& press);

}  // namespace tarnwick::appkit
