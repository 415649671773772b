// SPDX-License-Identifier: MIT
#include <algorithm>
#include <utility>
#include <vector>

#include "ui/appkit/grid.h"
#include "ui/appkit/panel_views.h"
#include "ui/appkit/style.h"

namespace {

using tarnwick::appkit::grid::kPagePadding;

struct Row {
    tarnwick::PageItem item;
    NSView<TNWBlockView>* view;
};

}  // namespace

@implementation TNWPageView {
    tarnwick::appkit::BlockEnvironment _environment;
    std::vector<Row> _rows;
}

- (instancetype)initWithEnvironment:(tarnwick::appkit::BlockEnvironment)environment {
    self = [super initWithFrame:NSZeroRect];
    if (self != nil) {
        _environment = std::move(environment);
        __weak TNWPageView* weakSelf = self;
        _environment.press = [weakSelf, press = _environment.press](tarnwick::PanelAction action) {
            [weakSelf showStartOf:action];
            press(action);
        };
        self.orientation = NSUserInterfaceLayoutOrientationVertical;
        self.alignment = NSLayoutAttributeLeading;
        self.distribution = NSStackViewDistributionFill;
        self.edgeInsets = NSEdgeInsetsMake(kPagePadding, kPagePadding, kPagePadding, kPagePadding);
        [self.widthAnchor constraintEqualToConstant:tarnwick::kPanelWidth].active = YES;
    }
    return self;
}

/// Flipped, so that pages scroll from their top.
- (BOOL)isFlipped {
    return YES;
}

/// Finds the view with the item's id, lets it show the item, and moves it out of its row. Nil if
/// there is none or it cannot show the item.
- (NSView<TNWBlockView>*)takeViewOf:(const tarnwick::PageItem&)item {
    const auto row = std::find_if(_rows.begin(), _rows.end(), [&item](const Row& each) {
        return each.view != nil && each.item.id == item.id;
    });
    if (row == _rows.end()) {
        return nil;
    }
    const bool isShown =
        row->item.block == item.block || tarnwick::appkit::showBlock(row->view, item.block);
    return isShown ? std::exchange(row->view, nil) : nil;
}

- (NSView<TNWBlockView>*)makeViewOf:(const tarnwick::PageItem&)item {
    NSView<TNWBlockView>* view = tarnwick::appkit::makeBlockView(item.block, _environment);
    tarnwick::appkit::showBlock(view, item.block);
    return view;
}

- (void)setPage:(const tarnwick::Page&)page {
    std::vector<Row> rows;
    for (const tarnwick::PageItem& item : page) {
        NSView<TNWBlockView>* view = [self takeViewOf:item];
        view = view != nil ? view : [self makeViewOf:item];
        NSString* toolTip = item.toolTip.empty() ? nil : tarnwick::appkit::string(item.toolTip);
        view.toolTip = toolTip;
        view.accessibilityHelp = toolTip;
        rows.push_back({item, view});
    }
    for (const Row& gone : _rows) {
        [gone.view removeFromSuperview];
    }
    _rows = std::move(rows);
    [self placeViews];
}

- (NSMenu*)menuForEvent:(NSEvent*)event {
    (void)event;
    NSMenu* menu = [[NSMenu alloc] initWithTitle:@""];
    for (const tarnwick::PanelMenuEntry& entry : tarnwick::kPanelMenu) {
        NSMenuItem* item = [menu addItemWithTitle:tarnwick::appkit::string(entry.title)
                                           action:@selector(menuChosen:)
                                    keyEquivalent:@""];
        item.target = self;
        item.tag = tarnwick::appkit::tagOf(entry.action);
    }
    return menu;
}

- (void)menuChosen:(NSMenuItem*)item {
    for (const tarnwick::PanelMenuEntry& entry : tarnwick::kPanelMenu) {
        if (tarnwick::appkit::tagOf(entry.action) == item.tag) {
            _environment.press(entry.action);
        }
    }
}

/// Shows that the action is under way, for one that takes time.
- (void)showStartOf:(tarnwick::PanelAction)action {
    if (action == tarnwick::PanelAction::refresh) {
        [[self buttonOf:action] turnSymbolWith:_environment.motion];
    }
}

- (TNWPressButton*)buttonOf:(tarnwick::PanelAction)action {
    return [self viewWithTag:tarnwick::appkit::tagOf(action)];
}

- (void)placeViews {
    for (std::size_t i = 0; i < _rows.size(); ++i) {
        NSView* view = _rows[i].view;
        const auto index = static_cast<NSInteger>(i);
        if (view.superview != self) {
            [self insertArrangedSubview:view atIndex:index];
            [view.widthAnchor constraintEqualToConstant:tarnwick::appkit::grid::kBlockWidth]
                .active = YES;
        } else if (self.arrangedSubviews[i] != view) {
            [self removeArrangedSubview:view];
            [self insertArrangedSubview:view atIndex:index];
        }
    }
    // The space of an item is above it, but a stack stores the space below a view.
    for (std::size_t i = 1; i < _rows.size(); ++i) {
        [self setCustomSpacing:_rows[i].item.spaceAbove afterView:_rows[i - 1].view];
    }
}

@end
