#include "ui/appkit/page_view.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "ui/appkit/block_views.h"

namespace {

using tarnwick::appkit::kPagePadding;

struct Row {
    tarnwick::PageItem item;
    NSView* view;
};

}  // namespace

@implementation TNWPageView {
    tarnwick::appkit::PressHandler _press;
    std::vector<Row> _rows;
}

- (instancetype)initWithPress:(tarnwick::appkit::PressHandler)press {
    self = [super initWithFrame:NSZeroRect];
    if (self != nil) {
        _press = std::move(press);
        self.orientation = NSUserInterfaceLayoutOrientationVertical;
        self.alignment = NSLayoutAttributeLeading;
        self.distribution = NSStackViewDistributionFill;
        self.edgeInsets = NSEdgeInsetsMake(kPagePadding, kPagePadding, kPagePadding, kPagePadding);
        [self.widthAnchor constraintEqualToConstant:tarnwick::kPanelWidth].active = YES;
    }
    return self;
}

/// The view of an equal item, which the page then no longer has; nil without one.
- (NSView*)takeViewOf:(const tarnwick::PageItem&)item {
    const auto row = std::find_if(_rows.begin(), _rows.end(), [&item](const Row& each) {
        return each.view != nil && each.item.id == item.id && each.item.block == item.block;
    });
    return row == _rows.end() ? nil : std::exchange(row->view, nil);
}

- (void)setPage:(const tarnwick::Page&)page {
    std::vector<Row> rows;
    for (const tarnwick::PageItem& item : page) {
        NSView* view = [self takeViewOf:item];
        rows.push_back(
            {item, view != nil ? view : tarnwick::appkit::makeBlockView(item.block, _press)});
    }
    for (const Row& gone : _rows) {
        [gone.view removeFromSuperview];
    }
    _rows = std::move(rows);
    [self placeViews];
}

- (void)placeViews {
    for (std::size_t i = 0; i < _rows.size(); ++i) {
        NSView* view = _rows[i].view;
        const auto index = static_cast<NSInteger>(i);
        if (view.superview != self) {
            [self insertArrangedSubview:view atIndex:index];
            [view.widthAnchor constraintEqualToConstant:tarnwick::kPanelWidth - 2 * kPagePadding]
                .active = YES;
        } else if (self.arrangedSubviews[i] != view) {
            [self removeArrangedSubview:view];
            [self insertArrangedSubview:view atIndex:index];
        }
    }
    // A stack knows the space below a view, an item the space above it.
    for (std::size_t i = 1; i < _rows.size(); ++i) {
        [self setCustomSpacing:_rows[i].item.spaceAbove afterView:_rows[i - 1].view];
    }
}

@end
