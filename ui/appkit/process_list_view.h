// The lists of processes. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>
#include <functional>

#include "ui/appkit/block_views.h"

/// A TopAppsSection or a TopAppsList. While the pointer is over it nobody changes places.
@interface TNWProcessListView : NSStackView <TNWBlockView>
/// `heightChanged` is called when rows come or go because the pointer has left.
- (instancetype)initWithHeightChanged:(std::function<void()>)heightChanged;
@end
