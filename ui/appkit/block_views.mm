// SPDX-License-Identifier: MIT
#include "ui/appkit/block_views.h"

#include <variant>

#include "ui/appkit/grid.h"
#include "ui/appkit/panel_blocks.h"
#include "ui/appkit/row_view.h"
#include "ui/appkit/style.h"
#include "ui/panel/spoken_text.h"

/// A block that is one row.
@interface TNWRowBlock : TNWRowView <TNWBlockView>
@end

@implementation TNWRowBlock

- (BOOL)showBlock:(const tarnwick::PanelBlock&)block {
    const auto content = tarnwick::appkit::rowContent(block);
    if (!content) {
        return NO;
    }
    [self setContent:*content];
    return YES;
}

@end

/// A hairline.
@interface TNWDividerBlock : NSBox <TNWBlockView>
@end

@implementation TNWDividerBlock

- (instancetype)initWithFrame:(NSRect)frame {
    self = [super initWithFrame:frame];
    if (self != nil) {
        self.boxType = NSBoxSeparator;
        self.accessibilityElement = NO;
        // A separator stands upright while it is not wider than high.
        [self.heightAnchor constraintEqualToConstant:tarnwick::appkit::grid::kHairline].active =
            YES;
    }
    return self;
}

- (BOOL)showBlock:(const tarnwick::PanelBlock&)block {
    return std::holds_alternative<tarnwick::PanelDivider>(block);
}

@end

namespace tarnwick::appkit {
namespace {

template <class View>
NSView<TNWBlockView>* made() {
    return [[View alloc] initWithFrame:NSZeroRect];
}

struct Maker {
    const BlockEnvironment& environment;

    NSView<TNWBlockView>* operator()(const PanelHeader&) const {
        return [[TNWHeaderBlock alloc] initWithPress:environment.press];
    }
    NSView<TNWBlockView>* operator()(const StatusRow&) const { return made<TNWRowBlock>(); }
    NSView<TNWBlockView>* operator()(const NoticeRow&) const { return made<TNWRowBlock>(); }
    NSView<TNWBlockView>* operator()(const UsageBar&) const {
        return [[TNWUsageBarBlock alloc] initWithMotion:environment.motion];
    }
    NSView<TNWBlockView>* operator()(const SectionHeader&) const { return made<TNWRowBlock>(); }
    NSView<TNWBlockView>* operator()(const CaptionText&) const { return made<TNWRowBlock>(); }
    NSView<TNWBlockView>* operator()(const InfoRow&) const { return made<TNWRowBlock>(); }
    NSView<TNWBlockView>* operator()(const NavigationButton&) const { return buttons(); }
    NSView<TNWBlockView>* operator()(const TopAppsSection&) const { return processes(); }
    NSView<TNWBlockView>* operator()(const PanelDivider&) const { return made<TNWDividerBlock>(); }
    NSView<TNWBlockView>* operator()(const FooterRow&) const { return buttons(); }
    NSView<TNWBlockView>* operator()(const DetailHeader&) const { return buttons(); }
    NSView<TNWBlockView>* operator()(const GroupTitle&) const { return made<TNWRowBlock>(); }
    NSView<TNWBlockView>* operator()(const TrendRow&) const { return made<TNWTrendBlock>(); }
    NSView<TNWBlockView>* operator()(const TopAppsList&) const { return processes(); }

    NSView<TNWBlockView>* buttons() const {
        return [[TNWButtonsBlock alloc] initWithPress:environment.press];
    }
    NSView<TNWBlockView>* processes() const {
        return [[TNWProcessListView alloc] initWithHeightChanged:environment.heightChanged];
    }
};

/// Whether a block has parts with names of their own: its buttons, or the rows of its list.
bool hasSpeakingParts(const PanelBlock& block) {
    return std::holds_alternative<PanelHeader>(block) ||
           std::holds_alternative<DetailHeader>(block) ||
           std::holds_alternative<TopAppsSection>(block);
}

void describe(NSView* view, const PanelBlock& block) {
    const std::string spoken = spokenText(block);
    if (spoken.empty()) {
        return;
    }
    view.accessibilityElement = YES;
    if (hasSpeakingParts(block)) {
        view.accessibilityRole = NSAccessibilityGroupRole;
        view.accessibilityLabel = string(spoken);
        return;
    }
    // What a static text says is its value.
    view.accessibilityRole = NSAccessibilityStaticTextRole;
    view.accessibilityValue = string(spoken);
    view.accessibilityChildren = @[];
}

}  // namespace

NSView<TNWBlockView>* makeBlockView(const PanelBlock& block, const BlockEnvironment& environment) {
    return std::visit(Maker{environment}, block);
}

bool showBlock(NSView<TNWBlockView>* view, const PanelBlock& block) {
    if (![view showBlock:block]) {
        return false;
    }
    describe(view, block);
    return true;
}

NSStackView* blockRow(NSArray<NSView*>* leading, NSArray<NSView*>* trailing, CGFloat gap) {
    NSStackView* stack = [[NSStackView alloc] initWithFrame:NSZeroRect];
    stack.orientation = NSUserInterfaceLayoutOrientationHorizontal;
    stack.alignment = NSLayoutAttributeCenterY;
    stack.spacing = gap;
    [stack setViews:leading inGravity:NSStackViewGravityLeading];
    [stack setViews:trailing inGravity:NSStackViewGravityTrailing];
    return stack;
}

void makeColumn(NSStackView* stack, NSArray<NSView*>* views, CGFloat gap) {
    stack.orientation = NSUserInterfaceLayoutOrientationVertical;
    stack.alignment = NSLayoutAttributeLeading;
    stack.distribution = NSStackViewDistributionFill;
    stack.spacing = gap;
    for (NSView* view in views) {
        [stack addArrangedSubview:view];
    }
}

}  // namespace tarnwick::appkit
