// The lists of processes. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>
#include <functional>

#include "ui/appkit/block_views.h"

/// A TopAppsSection or a TopAppsList. Once the pointer moves over it, processes keep their rows
/// until the pointer leaves or has been at rest for kPagesAtRest + 1 pages. A pointer that is
/// already there when the list appears holds nothing until it moves.
@interface TNWProcessListView : NSStackView <TNWBlockView>
/// `heightChanged` is called when rows come or go because the pointer has left.
- (instancetype)initWithHeightChanged:(std::function<void()>)heightChanged;
@end
