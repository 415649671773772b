// SPDX-License-Identifier: MIT
// The views of a page's building blocks. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>
#include <functional>
#include <memory>

#include "ui/appkit/press_button.h"
#include "ui/panel/motion.h"
#include "ui/panel/page.h"

@protocol TNWBlockView
/// Shows another value of the same block. If it cannot, changes nothing and returns NO.
- (BOOL)showBlock:(const tarnwick::PanelBlock&)block;
@end

namespace tarnwick::appkit {

/// What the blocks of a page share.
struct BlockEnvironment {
    PressHandler press{};
    /// Bars move and the symbol of a refresh turns with it; without one they do not.
    std::shared_ptr<Motion> motion{};
    /// Called when a block changes its height without a new value.
    std::function<void()> heightChanged{};
};

/// The view shows nothing until the first showBlock().
NSView<TNWBlockView>* makeBlockView(const PanelBlock& block, const BlockEnvironment& environment);

/// Shows the block and names it for screen readers. If the view cannot show it, changes nothing and
/// returns false.
bool showBlock(NSView<TNWBlockView>* view, const PanelBlock& block);

/// Views side by side, some at the leading and some at the trailing edge.
NSStackView* blockRow(NSArray<NSView*>* leading, NSArray<NSView*>* trailing, CGFloat gap);
/// Turns `stack` into a column from top to bottom.
void makeColumn(NSStackView* stack, NSArray<NSView*>* views, CGFloat gap);

}  // namespace tarnwick::appkit
