// SPDX-License-Identifier: MIT
#include <string>
#include <utility>
#include <vector>

#include "ui/appkit/grid.h"
#include "ui/appkit/settings_items.h"
#include "ui/appkit/settings_views.h"
#include "ui/appkit/style.h"

namespace {

constexpr CGFloat kPadding = tarnwick::appkit::grid::kSettingsPadding;

/// One row of the page: a heading or an item.
struct Row {
    std::string title;
    NSView<TNWSettingsItemView>* item;
    NSView* view;
    int spaceAbove;
};

}  // namespace

@implementation TNWSettingsPageView {
    tarnwick::SettingsView* _view;
    std::vector<Row> _rows;
}

- (instancetype)initWithView:(tarnwick::SettingsView*)view {
    self = [super initWithFrame:NSZeroRect];
    if (self != nil) {
        _view = view;
        self.orientation = NSUserInterfaceLayoutOrientationVertical;
        self.alignment = NSLayoutAttributeLeading;
        self.distribution = NSStackViewDistributionFill;
        self.edgeInsets = NSEdgeInsetsMake(kPadding, kPadding, kPadding, kPadding);
        self.translatesAutoresizingMaskIntoConstraints = NO;
    }
    return self;
}

- (BOOL)isFlipped {
    return YES;
}

/// The existing row at this index if it shows this heading, otherwise a new one.
- (Row)headingAt:(std::size_t)index title:(std::string_view)title {
    if (index < _rows.size() && _rows[index].item == nil && _rows[index].title == title) {
        return _rows[index];
    }
    NSTextField* heading = tarnwick::appkit::label(
        std::string(title), tarnwick::appkit::FontRole::headline, NSColor.labelColor);
    return {std::string(title), nil, heading, 0};
}

/// The existing row at this index if it can show the item, otherwise a new one.
- (Row)itemAt:(std::size_t)index item:(const tarnwick::SettingsItem&)item {
    if (index < _rows.size() && _rows[index].item != nil && [_rows[index].item showItem:item]) {
        return _rows[index];
    }
    NSView<TNWSettingsItemView>* view = tarnwick::appkit::makeSettingsItemView(item, *_view);
    return {{}, view, view, 0};
}

- (void)setPage:(const tarnwick::SettingsPage&)page {
    std::vector<Row> rows;
    for (const tarnwick::SettingsSection& section : page.sections) {
        int space = page.sectionSpacing;
        if (!section.title.empty()) {
            rows.push_back([self headingAt:rows.size() title:section.title]);
            rows.back().spaceAbove = std::exchange(space, tarnwick::SettingsPage::kItemSpacing);
        }
        for (const tarnwick::SettingsItem& item : section.content) {
            rows.push_back([self itemAt:rows.size() item:item]);
            rows.back().spaceAbove = std::exchange(space, tarnwick::SettingsPage::kItemSpacing);
        }
    }
    std::swap(_rows, rows);
    [self placeViewsOf:_rows instead:rows];
}

- (void)placeViewsOf:(const std::vector<Row>&)rows instead:(const std::vector<Row>&)before {
    for (std::size_t i = 0; i < before.size(); ++i) {
        if (i >= rows.size() || rows[i].view != before[i].view) {
            [before[i].view removeFromSuperview];
        }
    }
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (rows[i].view.superview != self) {
            [self insertArrangedSubview:rows[i].view atIndex:static_cast<NSInteger>(i)];
            if (rows[i].item != nil) {
                [rows[i].view.widthAnchor constraintEqualToAnchor:self.widthAnchor
                                                         constant:-2 * kPadding]
                    .active = YES;
            }
        }
        if (i > 0) {
            [self setCustomSpacing:rows[i].spaceAbove afterView:rows[i - 1].view];
        }
    }
}

@end
