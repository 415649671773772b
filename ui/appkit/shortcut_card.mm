// SPDX-License-Identifier: MIT
#include <string>
#include <vector>

#include "ui/appkit/grid.h"
#include "ui/appkit/press_button.h"
#include "ui/appkit/settings_cards.h"
#include "ui/appkit/settings_views.h"
#include "ui/appkit/style.h"

namespace {

using tarnwick::ShortcutEditor;
using tarnwick::appkit::FontRole;

constexpr CGFloat kGap = tarnwick::appkit::grid::kPartGap;

NSView* lineView(const tarnwick::StatusLine& line) {
    NSTextField* text = tarnwick::appkit::captionLabel(line.text);
    return tarnwick::appkit::settingsRow(
        @[
            tarnwick::appkit::symbolView(std::string(line.icon), tarnwick::appkit::color(line.tint),
                                         FontRole::caption),
            text
        ],
        kGap);
}

}  // namespace

@interface TNWShortcutCard : TNWCard <TNWSettingsItemView>
- (instancetype)initWithView:(tarnwick::SettingsView*)view;
@end

@implementation TNWShortcutCard {
    NSTextField* _caption;
    TNWPressButton* _clear;
    NSStackView* _column;
    NSMutableArray<NSView*>* _lineViews;
    std::vector<tarnwick::StatusLine> _lines;
}

- (instancetype)initWithView:(tarnwick::SettingsView*)view {
    using namespace tarnwick::appkit;
    self = [super initWithFrame:NSZeroRect];
    if (self != nil) {
        _lineViews = [NSMutableArray array];
        TNWShortcutFieldView* field =
            [[TNWShortcutFieldView alloc] initWithField:&view->shortcutField()];
        [field.widthAnchor constraintEqualToConstant:ShortcutEditor::kFieldWidth].active = YES;
        _clear = [[TNWPressButton alloc] initWithFrame:NSZeroRect];
        _clear.buttonType = NSButtonTypeMomentaryPushIn;
        _clear.bezelStyle = NSBezelStyleRounded;
        _clear.title = string(ShortcutEditor::kClear);
        [_clear setPressed:[view] { view->clearShortcut(); }];
        NSTextField* title =
            label(std::string(ShortcutEditor::kTitle), FontRole::headline, NSColor.labelColor);
        _caption = captionLabel(ShortcutEditor::kCaption);
        _column = settingsColumn(@[ title, _caption, settingsRow(@[ field, _clear ], kGap) ], kGap);
        [self setBody:_column];
    }
    return self;
}

- (BOOL)showItem:(const tarnwick::SettingsItem&)item {
    const auto* card = std::get_if<tarnwick::SettingsCard>(&item);
    const auto* editor = card == nullptr ? nullptr : std::get_if<ShortcutEditor>(&card->content);
    if (editor == nullptr) {
        return NO;
    }
    // The field draws its text by itself.
    _clear.hidden = !editor->hasClear;
    _caption.toolTip = editor->tip.empty() ? nil : tarnwick::appkit::string(editor->tip);
    if (_lines != editor->lines) {
        [self showLines:editor->lines];
    }
    return YES;
}

- (void)showLines:(const std::vector<tarnwick::StatusLine>&)lines {
    _lines = lines;
    for (NSView* view in _lineViews) {
        [view removeFromSuperview];
    }
    [_lineViews removeAllObjects];
    for (const tarnwick::StatusLine& line : lines) {
        NSView* view = lineView(line);
        [_column addArrangedSubview:view];
        [view.widthAnchor constraintEqualToAnchor:_column.widthAnchor].active = YES;
        [_lineViews addObject:view];
    }
}

@end

namespace tarnwick::appkit {

NSView<TNWSettingsItemView>* makeShortcutCard(const SettingsItem& item, SettingsView& view) {
    TNWShortcutCard* card = [[TNWShortcutCard alloc] initWithView:&view];
    [card showItem:item];
    return card;
}

}  // namespace tarnwick::appkit
