// SPDX-License-Identifier: MIT
#include <array>
#include <string>

#include "ui/appkit/grid.h"
#include "ui/appkit/settings_cards.h"
#include "ui/appkit/settings_views.h"
#include "ui/appkit/style.h"

/// A dot in the colour of the threshold.
@interface TNWDotView : NSView
@property(nonatomic) NSColor* color;
@end

@implementation TNWDotView

- (NSSize)intrinsicContentSize {
    return NSMakeSize(tarnwick::ThresholdValuePill::kDotSize,
                      tarnwick::ThresholdValuePill::kDotSize);
}

- (void)drawRect:(NSRect)dirtyRect {
    (void)dirtyRect;
    [self.color setFill];
    [[NSBezierPath bezierPathWithOvalInRect:self.bounds] fill];
}

@end

@interface TNWThresholdCard : TNWCard <TNWSettingsItemView>
- (instancetype)initWithCard:(const tarnwick::ThresholdEditorCard&)card
                        view:(tarnwick::SettingsView*)view;
@end

@implementation TNWThresholdCard {
    tarnwick::JudgedMetric _metric;
    NSMutableArray<NSTextField*>* _pillTexts;
    TNWThresholdSliderView* _slider;
}

- (instancetype)initWithCard:(const tarnwick::ThresholdEditorCard&)card
                        view:(tarnwick::SettingsView*)view {
    using namespace tarnwick::appkit;
    self = [super initWithFrame:NSZeroRect];
    if (self != nil) {
        _metric = card.metric;
        _pillTexts = [NSMutableArray array];
        _slider = [[TNWThresholdSliderView alloc] initWithSlider:&view->slider(card.metric)];
        NSStackView* title = settingsRow(
            @[
                symbolView(std::string(card.icon), NSColor.labelColor, FontRole::headline),
                label(std::string(card.title), FontRole::headline, NSColor.labelColor)
            ],
            grid::kPartGap);
        NSMutableArray<NSView*>* pills = [NSMutableArray array];
        for (const tarnwick::ThresholdValuePill& pill : card.pills()) {
            TNWDotView* dot = [[TNWDotView alloc] initWithFrame:NSZeroRect];
            dot.color = color(pill.color);
            NSTextField* text = label(pill.text(), FontRole::captionMedium, NSColor.labelColor);
            [_pillTexts addObject:text];
            [pills addObject:settingsRow(@[ dot, text ], grid::kPillGap)];
        }
        NSStackView* values = settingsRow(pills, tarnwick::ThresholdEditorCard::kPillSpacing);
        [self setBody:settingsColumn(@[ title, values, _slider ], grid::kPartGap)];
    }
    return self;
}

- (BOOL)showItem:(const tarnwick::SettingsItem&)item {
    const auto* card = std::get_if<tarnwick::ThresholdEditorCard>(&item);
    if (card == nullptr || card->metric != _metric) {
        return NO;
    }
    const auto pills = card->pills();
    for (std::size_t i = 0; i < pills.size(); ++i) {
        _pillTexts[i].stringValue = tarnwick::appkit::string(pills[i].text());
    }
    [_slider refresh];
    return YES;
}

@end

namespace tarnwick::appkit {

NSView<TNWSettingsItemView>* makeThresholdCard(const SettingsItem& item, SettingsView& view) {
    return [[TNWThresholdCard alloc] initWithCard:std::get<ThresholdEditorCard>(item) view:&view];
}

}  // namespace tarnwick::appkit
