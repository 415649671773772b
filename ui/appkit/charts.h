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
/// The first bar is there at once, later ones are moved to.
- (void)setBar:(const tarnwick::UsageBar&)bar;
@end

/// A small line chart. Layout sees its frame; it draws a little beyond, where the line has a peak.
@interface TNWSparklineView : NSView
- (void)setSparkline:(const tarnwick::SparklineView&)sparkline;
@end
