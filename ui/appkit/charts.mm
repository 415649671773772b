// SPDX-License-Identifier: MIT
#include "ui/appkit/charts.h"

#include <cmath>
#include <utility>
#include <vector>

#include "ui/appkit/grid.h"
#include "ui/appkit/style.h"

namespace grid = tarnwick::appkit::grid;

@implementation TNWBarView {
    std::unique_ptr<tarnwick::MovingValue> _fraction;
    tarnwick::Tint _tint;
    BOOL _isBegun;
}

- (instancetype)initWithMotion:(std::shared_ptr<tarnwick::Motion>)motion {
    self = [super initWithFrame:NSZeroRect];
    if (self != nil) {
        __weak TNWBarView* weakSelf = self;
        _fraction = std::make_unique<tarnwick::MovingValue>(
            std::move(motion), [weakSelf] { weakSelf.needsDisplay = YES; });
    }
    return self;
}

- (void)setBar:(const tarnwick::UsageBar&)bar {
    const double next = bar.fraction();
    const CGFloat step = std::abs(next - _fraction->value()) * self.bounds.size.width;
    if (_isBegun && step >= tarnwick::Motion::kLeastStep) {
        _fraction->moveTo(next, tarnwick::Motion::kLeastRest / self.bounds.size.width);
    } else {
        _fraction->jumpTo(next);
    }
    _isBegun = YES;
    _tint = bar.tint;
    self.needsDisplay = YES;
}

- (NSSize)intrinsicContentSize {
    return NSMakeSize(NSViewNoIntrinsicMetric, grid::kBarHeight);
}

- (void)drawRect:(NSRect)dirtyRect {
    (void)dirtyRect;
    NSBezierPath* track = [NSBezierPath bezierPathWithRoundedRect:self.bounds
                                                          xRadius:grid::kBarCorner
                                                          yRadius:grid::kBarCorner];
    [NSColor.quaternaryLabelColor setFill];
    [track fill];
    // Clipped to the shape of the track, so that a short bar has a round end, too.
    [track addClip];
    NSRect filled = self.bounds;
    filled.size.width *= _fraction->value();
    [tarnwick::appkit::color(_tint) setFill];
    NSRectFill(filled);
}

@end

@implementation TNWSparklineView {
    tarnwick::SparklineView _sparkline;
}

- (void)setSparkline:(const tarnwick::SparklineView&)sparkline {
    _sparkline = sparkline;
    self.needsDisplay = YES;
}

- (BOOL)isFlipped {
    return YES;
}

- (NSEdgeInsets)alignmentRectInsets {
    return NSEdgeInsetsMake(grid::kLineOverhang, grid::kLineOverhang, grid::kLineOverhang,
                            grid::kLineOverhang);
}

- (void)drawRect:(NSRect)dirtyRect {
    (void)dirtyRect;
    const NSRect chart = NSInsetRect(self.bounds, grid::kLineOverhang, grid::kLineOverhang);
    const std::vector<tarnwick::SparklinePoint> points =
        _sparkline.points(chart.size.width, chart.size.height);
    if (points.empty()) {
        [self drawPlaceholderIn:chart];
        return;
    }
    NSBezierPath* line = [NSBezierPath bezierPath];
    line.lineWidth = tarnwick::SparklineView::kLineWidth;
    line.miterLimit = tarnwick::SparklineView::kMiterLimit;
    for (const tarnwick::SparklinePoint& point : points) {
        const NSPoint place = NSMakePoint(NSMinX(chart) + point.x, NSMinY(chart) + point.y);
        if (line.empty) {
            [line moveToPoint:place];
        } else {
            [line lineToPoint:place];
        }
    }
    [tarnwick::appkit::color(_sparkline.color) setStroke];
    [line stroke];
}

- (void)drawPlaceholderIn:(NSRect)chart {
    using View = tarnwick::SparklineView;
    const NSRect bar = NSMakeRect(NSMinX(chart), NSMidY(chart) - View::kPlaceholderHeight / 2,
                                  chart.size.width, View::kPlaceholderHeight);
    // The system limits the radius to half of the bar's height.
    NSBezierPath* path = [NSBezierPath bezierPathWithRoundedRect:bar
                                                         xRadius:View::kPlaceholderCorner
                                                         yRadius:View::kPlaceholderCorner];
    tarnwick::appkit::fillFaintly(path, NSColor.secondaryLabelColor, View::kPlaceholderOpacity);
}

@end
