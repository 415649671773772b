// SPDX-License-Identifier: MIT
#include "ui/appkit/settings_items.h"

#include <utility>
#include <variant>

#include "ui/appkit/grid.h"
#include "ui/appkit/press_button.h"
#include "ui/appkit/settings_cards.h"
#include "ui/appkit/style.h"

namespace grid = tarnwick::appkit::grid;

@implementation TNWCard {
    NSView* _body;
}

- (void)setBody:(NSView*)body {
    [_body removeFromSuperview];
    _body = body;
    body.translatesAutoresizingMaskIntoConstraints = NO;
    [self addSubview:body];
    [NSLayoutConstraint activateConstraints:@[
        [body.topAnchor constraintEqualToAnchor:self.topAnchor constant:grid::kCardPadding],
        [body.bottomAnchor constraintEqualToAnchor:self.bottomAnchor constant:-grid::kCardPadding],
        [body.leadingAnchor constraintEqualToAnchor:self.leadingAnchor constant:grid::kCardPadding],
        [body.trailingAnchor constraintEqualToAnchor:self.trailingAnchor
                                            constant:-grid::kCardPadding],
    ]];
}

- (void)drawRect:(NSRect)dirtyRect {
    (void)dirtyRect;
    NSBezierPath* card = [NSBezierPath bezierPathWithRoundedRect:NSInsetRect(self.bounds, 0.5, 0.5)
                                                         xRadius:grid::kCardCorner
                                                         yRadius:grid::kCardCorner];
    [NSColor.controlBackgroundColor setFill];
    [card fill];
    [NSColor.separatorColor setStroke];
    [card stroke];
}

@end

/// A card with an item that never changes.
@interface TNWFixedCard : TNWCard <TNWSettingsItemView>
- (instancetype)initWithItem:(const tarnwick::SettingsItem&)item body:(NSView*)body;
@end

@implementation TNWFixedCard {
    tarnwick::SettingsItem _item;
}

- (instancetype)initWithItem:(const tarnwick::SettingsItem&)item body:(NSView*)body {
    self = [super initWithFrame:NSZeroRect];
    if (self != nil) {
        _item = item;
        [self setBody:body];
    }
    return self;
}

- (BOOL)showItem:(const tarnwick::SettingsItem&)item {
    return _item == item;
}

@end

@interface TNWResetRow : NSStackView <TNWSettingsItemView>
@end

@implementation TNWResetRow

- (BOOL)showItem:(const tarnwick::SettingsItem&)item {
    return std::holds_alternative<tarnwick::ResetButton>(item);
}

@end

namespace tarnwick::appkit {
namespace {

constexpr CGFloat kGap = grid::kPartGap;

NSView<TNWSettingsItemView>* resetRow(SettingsView& view) {
    TNWPressButton* button = [[TNWPressButton alloc] initWithFrame:NSZeroRect];
    button.buttonType = NSButtonTypeMomentaryPushIn;
    button.bezelStyle = NSBezelStyleRounded;
    button.title = string(ResetButton::kTitle);
    [button setPressed:[&view] { view.resetThresholds(); }];
    TNWResetRow* row = [[TNWResetRow alloc] initWithFrame:NSZeroRect];
    [row addView:button inGravity:NSStackViewGravityLeading];
    return row;
}

NSView* bodyOf(const ProgramName& program) {
    NSTextField* value = label(program.version, FontRole::captionMedium, NSColor.labelColor);
    // For bug reports. No other text can be selected.
    value.selectable = YES;
    NSStackView* version = settingsRow(
        @[
            label(std::string(ProgramName::kVersionTitle), FontRole::caption,
                  NSColor.secondaryLabelColor),
            value
        ],
        kGap);
    return settingsColumn(
        @[
            label(std::string(ProgramName::kName), FontRole::headline, NSColor.labelColor), version
        ],
        kGap);
}

NSView* bodyOf(const ItemNotice& notice) {
    return settingsRow(
        @[
            symbolView(std::string(ItemNotice::kIcon), color(ItemNotice::kTint), FontRole::caption),
            captionLabel(notice.text)
        ],
        kGap);
}

NSView* bodyOf(const FeatureList&) {
    NSMutableArray<NSView*>* rows = [NSMutableArray array];
    for (const FeatureRow& feature : FeatureList::kRows) {
        [rows addObject:settingsRow(
                            @[
                                symbolView(std::string(feature.icon), NSColor.controlAccentColor,
                                           FontRole::headline),
                                label(std::string(feature.title), FontRole::headline,
                                      NSColor.labelColor)
                            ],
                            kGap)];
    }
    return settingsColumn(rows, kGap);
}

NSView* privacyBody(SettingsView& view) {
    NSMutableArray<NSView*>* rows =
        [NSMutableArray arrayWithObject:captionLabel(PrivacyNote::kText)];
    for (const std::string_view title : PrivacyNote::kLinks) {
        TNWPressButton* link = [[TNWPressButton alloc] initWithFrame:NSZeroRect];
        link.bordered = NO;
        link.title = string(title);
        link.contentTintColor = NSColor.linkColor;
        link.accessibilityRole = NSAccessibilityLinkRole;
        [link setPressed:[&view] { view.openMakerSite(); }];
        [rows addObject:settingsRow(@[ link ], 0)];
    }
    return settingsColumn(rows, kGap);
}

struct CardMaker {
    const SettingsItem& item;
    SettingsView& view;

    NSView<TNWSettingsItemView>* operator()(const SwitchRow&) const {
        return makeSwitchCard(item, view);
    }
    NSView<TNWSettingsItemView>* operator()(const ShortcutEditor&) const {
        return makeShortcutCard(item, view);
    }
    NSView<TNWSettingsItemView>* operator()(const ProgramName& program) const {
        return [[TNWFixedCard alloc] initWithItem:item body:bodyOf(program)];
    }
    NSView<TNWSettingsItemView>* operator()(const FeatureList& features) const {
        return [[TNWFixedCard alloc] initWithItem:item body:bodyOf(features)];
    }
    NSView<TNWSettingsItemView>* operator()(const ItemNotice& notice) const {
        return [[TNWFixedCard alloc] initWithItem:item body:bodyOf(notice)];
    }
    NSView<TNWSettingsItemView>* operator()(const PrivacyNote&) const {
        return [[TNWFixedCard alloc] initWithItem:item body:privacyBody(view)];
    }
};

struct Maker {
    const SettingsItem& item;
    SettingsView& view;

    NSView<TNWSettingsItemView>* operator()(const DisplayModeCard&) const {
        return makeDisplayModeCard(item, view);
    }
    NSView<TNWSettingsItemView>* operator()(const ThresholdEditorCard&) const {
        return makeThresholdCard(item, view);
    }
    NSView<TNWSettingsItemView>* operator()(const SettingsCard& card) const {
        return std::visit(CardMaker{item, view}, card.content);
    }
    NSView<TNWSettingsItemView>* operator()(const ResetButton&) const { return resetRow(view); }
};

}  // namespace

NSView<TNWSettingsItemView>* makeSettingsItemView(const SettingsItem& item, SettingsView& view) {
    return std::visit(Maker{item, view}, item);
}

NSStackView* settingsColumn(NSArray<NSView*>* views, CGFloat gap) {
    NSStackView* stack = [NSStackView stackViewWithViews:views];
    stack.orientation = NSUserInterfaceLayoutOrientationVertical;
    stack.alignment = NSLayoutAttributeLeading;
    stack.distribution = NSStackViewDistributionFill;
    stack.spacing = gap;
    for (NSView* view in views) {
        [view.widthAnchor constraintEqualToAnchor:stack.widthAnchor].active = YES;
    }
    return stack;
}

NSStackView* settingsRow(NSArray<NSView*>* views, CGFloat gap) {
    NSStackView* stack = [[NSStackView alloc] initWithFrame:NSZeroRect];
    stack.spacing = gap;
    [stack setViews:views inGravity:NSStackViewGravityLeading];
    return stack;
}

NSTextField* captionLabel(std::string_view text) {
    NSTextField* field = [NSTextField wrappingLabelWithString:string(text)];
    field.font = font(FontRole::caption);
    field.textColor = NSColor.secondaryLabelColor;
    field.selectable = NO;
    field.preferredMaxLayoutWidth = grid::kCaptionWidth;
    return field;
}

}  // namespace tarnwick::appkit
