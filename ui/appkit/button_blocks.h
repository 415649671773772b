// The blocks of the panel that have buttons. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>

#include "ui/appkit/block_views.h"

/// A PanelHeader.
@interface TNWHeaderBlock : NSStackView <TNWBlockView>
- (instancetype)initWithPress:(tarnwick::appkit::PressHandler)press;
@end

/// A NavigationButton, FooterRow or DetailHeader. These never change while they are shown.
@interface TNWButtonsBlock : NSView <TNWBlockView>
- (instancetype)initWithPress:(tarnwick::appkit::PressHandler)press;
@end
