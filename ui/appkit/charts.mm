#include "ui/appkit/charts.h"

#include <vector>

#include "ui/appkit/style.h"

namespace {

constexpr CGFloat kBarHeight = 6;
constexpr CGFloat kBarCorner = 3;

}  // namespace

@implementation TNWBarView {
    tarnwick::UsageBar _bar;
}

- (void)setBar:(const tarnwick::UsageBar&)bar {
    _bar = bar;
    self.needsDisplay = YES;
}

- (NSSize)intrinsicContentSize {
    return NSMakeSize(NSViewNoIntrinsicMetric, kBarHeight);
}

- (void)drawRect:(NSRect)dirtyRect {
    (void)dirtyRect;
    NSBezierPath* track = [NSBezierPath bezierPathWithRoundedRect:self.bounds
                                                          xRadius:kBarCorner
                                                          yRadius:kBarCorner];
    [NSColor.quaternaryLabelColor setFill];
    [track fill];
    // Cut out of the same shape, so that a short bar has its round end, too.
    [track addClip];
    NSRect filled = self.bounds;
    filled.size.width *= _bar.fraction();
    [tarnwick::appkit::color(_bar.tint) setFill];
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

- (void)drawRect:(NSRect)dirtyRect {
    (void)dirtyRect;
    const NSSize size = self.bounds.size;
    const std::vector<tarnwick::SparklinePoint> points = _sparkline.points(size.width, size.height);
    if (points.empty()) {
        [self drawPlaceholder];
        return;
    }
    NSBezierPath* line = [NSBezierPath bezierPath];
    line.lineWidth = tarnwick::SparklineView::kLineWidth;
    line.miterLimit = tarnwick::SparklineView::kMiterLimit;
    [line moveToPoint:NSMakePoint(points.front().x, points.front().y)];
    for (const tarnwick::SparklinePoint& point : points) {
        [line lineToPoint:NSMakePoint(point.x, point.y)];
    }
    [tarnwick::appkit::color(_sparkline.color) setStroke];
    [line stroke];
}

- (void)drawPlaceholder {
    using View = tarnwick::SparklineView;
    const NSSize size = self.bounds.size;
    const NSRect bar = NSMakeRect(0, (size.height - View::kPlaceholderHeight) / 2, size.width,
                                  View::kPlaceholderHeight);
    // A corner cannot be rounder than half of the bar.
    NSBezierPath* path = [NSBezierPath bezierPathWithRoundedRect:bar
                                                         xRadius:View::kPlaceholderCorner
                                                         yRadius:View::kPlaceholderCorner];
    [[NSColor.secondaryLabelColor colorWithAlphaComponent:View::kPlaceholderOpacity] setFill];
    [path fill];
}

@end
