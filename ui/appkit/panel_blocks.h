// SPDX-License-Identifier: MIT
// The blocks of the panel that are more than one row of text. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>
#include <functional>
#include <memory>

#include "ui/appkit/block_views.h"
#include "ui/panel/motion.h"

/// A PanelHeader.
@interface TNWHeaderBlock : NSStackView <TNWBlockView>
- (instancetype)initWithPress:(tarnwick::appkit::PressHandler)press;
@end

/// A NavigationButton, FooterRow or DetailHeader. These never change while they are shown.
@interface TNWButtonsBlock : NSView <TNWBlockView>
- (instancetype)initWithPress:(tarnwick::appkit::PressHandler)press;
@end

/// A UsageBar.
@interface TNWUsageBarBlock : NSStackView <TNWBlockView>
- (instancetype)initWithMotion:(std::shared_ptr<tarnwick::Motion>)motion;
@end

/// A TrendRow.
@interface TNWTrendBlock : NSStackView <TNWBlockView>
@end

/// A TopAppsSection or a TopAppsList. Once the pointer moves over it, processes keep their rows
/// until the pointer leaves, kLongestHold seconds at most. A pointer that is already there when the
/// list appears holds nothing until it moves.
@interface TNWProcessListView : NSStackView <TNWBlockView>
/// `heightChanged` is called when rows come or go because the pointer has left.
- (instancetype)initWithHeightChanged:(std::function<void()>)heightChanged;
@end
