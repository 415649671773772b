// The views that draw figures. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>

#include "ui/panel/sparkline_view.h"
#include "ui/panel/usage_bar.h"

/// The filled part of a bar.
@interface TNWBarView : NSView
- (void)setBar:(const tarnwick::UsageBar&)bar;
@end

/// A small line chart.
@interface TNWSparklineView : NSView
- (void)setSparkline:(const tarnwick::SparklineView&)sparkline;
@end
