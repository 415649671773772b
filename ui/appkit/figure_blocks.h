// The blocks of the panel that draw figures. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>
#include <memory>

#include "ui/appkit/block_views.h"
#include "ui/panel/motion.h"

/// A UsageBar.
@interface TNWUsageBarBlock : NSStackView <TNWBlockView>
- (instancetype)initWithMotion:(std::shared_ptr<tarnwick::Motion>)motion;
@end

/// A TrendRow.
@interface TNWTrendBlock : NSStackView <TNWBlockView>
@end
