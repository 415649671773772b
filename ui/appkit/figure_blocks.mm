// SPDX-License-Identifier: MIT
#include <utility>

#include "ui/appkit/charts.h"
#include "ui/appkit/grid.h"
#include "ui/appkit/panel_blocks.h"
#include "ui/appkit/row_view.h"
#include "ui/appkit/style.h"

namespace {

using tarnwick::TrendRow;
using tarnwick::UsageBar;

}  // namespace

@implementation TNWUsageBarBlock {
    TNWRowView* _row;
    TNWBarView* _bar;
}

- (instancetype)initWithMotion:(std::shared_ptr<tarnwick::Motion>)motion {
    self = [super initWithFrame:NSZeroRect];
    if (self != nil) {
        _row = [[TNWRowView alloc] initWithFrame:NSZeroRect];
        _bar = [[TNWBarView alloc] initWithMotion:std::move(motion)];
        tarnwick::appkit::makeColumn(self, @[ _row, _bar ], tarnwick::appkit::grid::kBarGap);
        [_row.widthAnchor constraintEqualToAnchor:self.widthAnchor].active = YES;
        [_bar.widthAnchor constraintEqualToAnchor:self.widthAnchor].active = YES;
    }
    return self;
}

- (BOOL)showBlock:(const tarnwick::PanelBlock&)block {
    const auto* bar = std::get_if<UsageBar>(&block);
    if (bar == nullptr) {
        return NO;
    }
    [_row setContent:tarnwick::appkit::rowContent(*bar)];
    [_bar setBar:*bar];
    return YES;
}

@end

@implementation TNWTrendBlock {
    NSTextField* _title;
    NSTextField* _value;
    NSImageView* _mark;
    TNWSparklineView* _line;
    TrendRow _trend;
}

- (instancetype)initWithFrame:(NSRect)frame {
    using namespace tarnwick::appkit;
    self = [super initWithFrame:frame];
    if (self != nil) {
        _title = label({}, FontRole::caption, NSColor.secondaryLabelColor);
        _value = label({}, FontRole::captionMedium, NSColor.labelColor);
        _mark = emptySymbolView();
        _line = [[TNWSparklineView alloc] initWithFrame:NSZeroRect];
        [_line.widthAnchor constraintEqualToConstant:TrendRow::kSparklineWidth].active = YES;
        [_line.heightAnchor constraintEqualToConstant:TrendRow::kSparklineHeight].active = YES;
        // The view is larger than the line by these.
        const NSEdgeInsets around = _line.alignmentRectInsets;
        [_line addToolTipRect:NSMakeRect(around.left, around.bottom, TrendRow::kSparklineWidth,
                                         TrendRow::kSparklineHeight)
                        owner:self
                     userData:nullptr];
        NSStackView* texts = [[NSStackView alloc] initWithFrame:NSZeroRect];
        makeColumn(texts, @[ _title, blockRow(@[ _mark, _value ], @[], grid::kMarkGap) ],
                   TrendRow::kTextSpacing);
        self.orientation = NSUserInterfaceLayoutOrientationHorizontal;
        self.alignment = NSLayoutAttributeCenterY;
        self.spacing = TrendRow::kSpacing;
        [self setViews:@[ texts ] inGravity:NSStackViewGravityLeading];
        [self setViews:@[ _line ] inGravity:NSStackViewGravityTrailing];
    }
    return self;
}

- (BOOL)showBlock:(const tarnwick::PanelBlock&)block {
    const auto* trend = std::get_if<TrendRow>(&block);
    if (trend == nullptr) {
        return NO;
    }
    _trend = *trend;
    _title.stringValue = tarnwick::appkit::string(trend->title);
    _value.stringValue = tarnwick::appkit::string(trend->value);
    tarnwick::appkit::showLevelMark(_mark, trend->color);
    [_line setSparkline:trend->sparkline()];
    return YES;
}

/// Over the line: the value there, too.
- (NSString*)view:(NSView*)view
    stringForToolTip:(NSToolTipTag)tag
               point:(NSPoint)point
            userData:(void*)data {
    (void)tag;
    (void)data;
    const CGFloat x = point.x - view.alignmentRectInsets.left;
    return tarnwick::appkit::string(_trend.toolTip(x / TrendRow::kSparklineWidth));
}

@end
