// The slider with two thumbs. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>

#include "ui/settings/dual_threshold_slider.h"

@interface TNWThresholdSliderView : NSView
/// `slider` outlives the view's place in a window.
- (instancetype)initWithSlider:(tarnwick::DualThresholdSlider*)slider;
/// The thresholds may be others now.
- (void)refresh;
@end
