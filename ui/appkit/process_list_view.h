// The lists of processes. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>
#include <functional>

#include "ui/appkit/block_views.h"

/// A TopAppsSection or a TopAppsList. Once the pointer moves over it nobody changes places until it
/// has left or has been at rest for some pages. A pointer that lies where the list appears holds
/// nothing.
@interface TNWProcessListView : NSStackView <TNWBlockView>
/// `heightChanged` is called when rows come or go because the pointer has left.
- (instancetype)initWithHeightChanged:(std::function<void()>)heightChanged;
@end
