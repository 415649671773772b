// SPDX-License-Identifier: MIT
#include <string>
#include <utility>
#include <vector>

#include "ui/appkit/panel_blocks.h"
#include "ui/appkit/row_view.h"
#include "ui/appkit/style.h"
#include "ui/panel/held_order.h"

namespace {

using tarnwick::ProcessSlots;
using tarnwick::TopAppsList;
using tarnwick::TopAppsSection;

NSString* spokenRow(const tarnwick::appkit::RowContent& row) {
    const std::string& figure = row.trailing.text;
    return tarnwick::appkit::string(row.leading.text + (figure.empty() ? "" : ", ") + figure);
}

}  // namespace

@implementation TNWProcessListView {
    std::function<void()> _heightChanged;
    NSTextField* _title;
    NSMutableArray<TNWRowView*>* _rowViews;
    std::vector<tarnwick::ProcessRow> _rows;
    /// From top to bottom, as shown.
    ProcessSlots _order;
    /// Whether the pointer has moved over the rows.
    BOOL _isHeld;
}

- (instancetype)initWithHeightChanged:(std::function<void()>)heightChanged {
    using namespace tarnwick::appkit;
    self = [super initWithFrame:NSZeroRect];
    if (self != nil) {
        _heightChanged = std::move(heightChanged);
        _title = label({}, FontRole::subheadlineMedium, NSColor.labelColor);
        hideFromScreenReaders(_title);
        _rowViews = [NSMutableArray array];
        makeColumn(self, @[ _title ], tarnwick::kRowSpacing);
        [self addTrackingArea:[[NSTrackingArea alloc]
                                  initWithRect:NSZeroRect
                                       options:NSTrackingMouseEnteredAndExited |
                                               NSTrackingMouseMoved | NSTrackingActiveAlways |
                                               NSTrackingInVisibleRect
                                         owner:self
                                      userInfo:nil]];
    }
    return self;
}

- (BOOL)showBlock:(const tarnwick::PanelBlock&)block {
    if (const auto* section = std::get_if<TopAppsSection>(&block)) {
        _title.stringValue = tarnwick::appkit::string(section->title);
        _rows = section->rows();
    } else if (const auto* list = std::get_if<TopAppsList>(&block)) {
        _title.hidden = YES;
        self.edgeInsets = NSEdgeInsetsMake(0, list->indent, 0, 0);
        _rows = list->rows();
    } else {
        return NO;
    }
    const ProcessSlots latest = [self latestOrder];
    // isUnderPointer, because a resting pointer sends no event when the list moves away from it.
    _isHeld = _isHeld && [self isUnderPointer];
    _order =
        _isHeld && !latest.empty() ? tarnwick::heldOrder(_order, [self latestProcesses]) : latest;
    [self showRows];
    return YES;
}

- (std::vector<tarnwick::AppProcessInfo>)latestProcesses {
    std::vector<tarnwick::AppProcessInfo> processes;
    for (const tarnwick::ProcessRow& row : _rows) {
        processes.push_back(row.process);
    }
    return processes;
}

- (ProcessSlots)latestOrder {
    const std::vector<tarnwick::AppProcessInfo> processes = [self latestProcesses];
    return {processes.begin(), processes.end()};
}

- (BOOL)isUnderPointer {
    if (self.window == nil) {
        return NO;
    }
    const NSPoint pointer = self.window.mouseLocationOutsideOfEventStream;
    return NSPointInRect([self convertPoint:pointer fromView:nil], self.bounds);
}

- (void)mouseMoved:(NSEvent*)event {
    (void)event;
    if (!_isHeld) {
        _isHeld = YES;
        [self forgetEndOfHold];
        [self performSelector:@selector(letGo) withObject:nil afterDelay:tarnwick::kLongestHold];
    }
}

- (void)mouseExited:(NSEvent*)event {
    (void)event;
    [self letGo];
}

- (void)forgetEndOfHold {
    [NSObject cancelPreviousPerformRequestsWithTarget:self selector:@selector(letGo) object:nil];
}

/// Shows the latest order. A pointer that moves on holds that again.
- (void)letGo {
    [self forgetEndOfHold];
    _isHeld = NO;
    ProcessSlots latest = [self latestOrder];
    if (_order == latest) {
        return;
    }
    const bool isOtherHeight = _order.size() != latest.size();
    _order = std::move(latest);
    [self showRows];
    if (isOtherHeight && _heightChanged) {
        _heightChanged();
    }
}

- (std::vector<tarnwick::appkit::RowContent>)contents {
    using namespace tarnwick::appkit;
    if (_order.empty()) {
        return {rowContent(tarnwick::CaptionText{std::string(TopAppsList::kEmptyText)})};
    }
    std::vector<RowContent> contents;
    for (const auto& process : _order) {
        // An empty row keeps the height of a row with text.
        contents.push_back(process
                               ? rowContent(tarnwick::ProcessRow{*process, _rows.front().valueText})
                               : rowContent(tarnwick::CaptionText{}));
    }
    return contents;
}

- (void)showRows {
    const std::vector<tarnwick::appkit::RowContent> contents = [self contents];
    while (_rowViews.count > contents.size()) {
        [_rowViews.lastObject removeFromSuperview];
        [_rowViews removeLastObject];
    }
    while (_rowViews.count < contents.size()) {
        TNWRowView* row = [[TNWRowView alloc] initWithFrame:NSZeroRect];
        [self addArrangedSubview:row];
        [row.trailingAnchor constraintEqualToAnchor:self.trailingAnchor].active = YES;
        row.accessibilityRole = NSAccessibilityStaticTextRole;
        row.accessibilityChildren = @[];
        [_rowViews addObject:row];
    }
    for (std::size_t i = 0; i < contents.size(); ++i) {
        [_rowViews[i] setContent:contents[i]];
        _rowViews[i].accessibilityElement = !contents[i].leading.text.empty();
        _rowViews[i].accessibilityValue = spokenRow(contents[i]);
        NSString* toolTip =
            i < _order.size() && _order[i]
                ? tarnwick::appkit::string(
                      tarnwick::ProcessRow{*_order[i], _rows.front().valueText}.toolTip())
                : nil;
        _rowViews[i].toolTip = toolTip;
        _rowViews[i].accessibilityHelp = toolTip;
    }
}

@end
