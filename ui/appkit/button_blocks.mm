// SPDX-License-Identifier: MIT
#include <optional>
#include <utility>
#include <vector>

#include "ui/appkit/grid.h"
#include "ui/appkit/panel_blocks.h"
#include "ui/appkit/style.h"

namespace tarnwick::appkit {
namespace {

struct ButtonsMaker {
    const PressHandler& press;

    NSView* operator()(const NavigationButton& navigation) const {
        return navigationButton(navigation.button, press);
    }
    NSView* operator()(const FooterRow& footer) const {
        NSMutableArray<NSView*>* leading = [NSMutableArray array];
        for (const PanelButton& button : footer.buttons) {
            [leading addObject:titledButton(button, press)];
        }
        NSMutableArray<NSView*>* trailing = [NSMutableArray array];
        if (leading.count > 1) {
            [trailing addObject:leading.lastObject];
            [leading removeLastObject];
        }
        return blockRow(leading, trailing, FooterRow::kSpacing);
    }
    NSView* operator()(const DetailHeader& header) const {
        NSStackView* row =
            blockRow(@[ plainTitledButton(header.back, press) ],
                     @[ plainTitledButton(header.refresh, press) ], grid::kColumnGap);
        NSTextField* title = label(header.title, FontRole::headline, NSColor.labelColor);
        hideFromScreenReaders(title);
        [row addView:title inGravity:NSStackViewGravityCenter];
        return row;
    }
    template <class Block>
    NSView* operator()(const Block&) const {
        return nil;
    }
};

}  // namespace
}  // namespace tarnwick::appkit

@implementation TNWHeaderBlock {
    tarnwick::appkit::PressHandler _press;
    NSTextField* _title;
    NSTextField* _summary;
    NSStackView* _top;
    std::vector<tarnwick::PanelButton> _buttons;
}

- (instancetype)initWithPress:(tarnwick::appkit::PressHandler)press {
    using namespace tarnwick::appkit;
    self = [super initWithFrame:NSZeroRect];
    if (self != nil) {
        _press = std::move(press);
        _title = label({}, FontRole::headline, NSColor.labelColor);
        _summary = [NSTextField wrappingLabelWithString:@""];
        _summary.font = font(FontRole::caption);
        _summary.textColor = NSColor.secondaryLabelColor;
        _summary.selectable = NO;
        _summary.preferredMaxLayoutWidth = grid::kBlockWidth;
        hideFromScreenReaders(_title);
        hideFromScreenReaders(_summary);
        _top = blockRow(@[ _title ], @[], grid::kIconButtonGap);
        makeColumn(self, @[ _top, _summary ], grid::kTitleGap);
        [_top.widthAnchor constraintEqualToAnchor:self.widthAnchor].active = YES;
        [_summary.widthAnchor constraintLessThanOrEqualToAnchor:self.widthAnchor].active = YES;
    }
    return self;
}

- (BOOL)showBlock:(const tarnwick::PanelBlock&)block {
    const auto* header = std::get_if<tarnwick::PanelHeader>(&block);
    if (header == nullptr) {
        return NO;
    }
    _title.stringValue = tarnwick::appkit::string(header->title);
    _summary.stringValue = tarnwick::appkit::string(header->summary);
    if (_buttons != header->buttons) {
        _buttons = header->buttons;
        NSMutableArray<NSView*>* views = [NSMutableArray array];
        for (const tarnwick::PanelButton& button : _buttons) {
            [views addObject:tarnwick::appkit::iconButton(button, _press)];
        }
        [_top setViews:views inGravity:NSStackViewGravityTrailing];
    }
    return YES;
}

@end

@implementation TNWButtonsBlock {
    tarnwick::appkit::PressHandler _press;
    std::optional<tarnwick::PanelBlock> _shown;
}

- (instancetype)initWithPress:(tarnwick::appkit::PressHandler)press {
    self = [super initWithFrame:NSZeroRect];
    if (self != nil) {
        _press = std::move(press);
    }
    return self;
}

- (BOOL)showBlock:(const tarnwick::PanelBlock&)block {
    if (_shown) {
        return _shown == block;
    }
    NSView* body = std::visit(tarnwick::appkit::ButtonsMaker{_press}, block);
    if (body == nil) {
        return NO;
    }
    _shown = block;
    body.translatesAutoresizingMaskIntoConstraints = NO;
    [self addSubview:body];
    [NSLayoutConstraint activateConstraints:@[
        [body.topAnchor constraintEqualToAnchor:self.topAnchor],
        [body.bottomAnchor constraintEqualToAnchor:self.bottomAnchor],
        [body.leadingAnchor constraintEqualToAnchor:self.leadingAnchor],
        [body.trailingAnchor constraintEqualToAnchor:self.trailingAnchor],
    ]];
    return YES;
}

@end
