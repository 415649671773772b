// SPDX-License-Identifier: MIT
// The views that draw figures. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>
#include <memory>

#include "ui/panel/blocks.h"
#include "ui/panel/motion.h"
#include "ui/panel/sparkline_view.h"

/// The bar itself, filled from the left.
@interface TNWBarView : NSView
/// The end of the filled part moves with `motion`; without one it jumps.
- (instancetype)initWithMotion:(std::shared_ptr<tarnwick::Motion>)motion;
/// Shows the first bar at once, and moves to later ones.
- (void)setBar:(const tarnwick::UsageBar&)bar;
@end

/// A small line chart. Layout uses its frame; a line with a peak is drawn a little beyond it.
@interface TNWSparklineView : NSView
- (void)setSparkline:(const tarnwick::SparklineView&)sparkline;
@end
