// The slider with two thumbs. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>

#include "ui/settings/dual_threshold_slider.h"

@interface TNWThresholdSliderView : NSView
/// `slider` must outlive the view's time in a window.
- (instancetype)initWithSlider:(tarnwick::DualThresholdSlider*)slider;
/// Call it when the thresholds may have changed.
- (void)refresh;
@end
