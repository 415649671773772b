// SPDX-License-Identifier: MIT
#include <string>

#include "ui/appkit/grid.h"
#include "ui/appkit/settings_cards.h"
#include "ui/appkit/style.h"

@interface TNWSwitchCard : TNWCard <TNWSettingsItemView>
- (instancetype)initWithRow:(const tarnwick::SwitchRow&)row view:(tarnwick::SettingsView*)view;
@end

@implementation TNWSwitchCard {
    tarnwick::SettingsView* _view;
    tarnwick::SettingsSwitch _setting;
    NSSwitch* _switch;
}

- (instancetype)initWithRow:(const tarnwick::SwitchRow&)row view:(tarnwick::SettingsView*)view {
    using namespace tarnwick::appkit;
    self = [super initWithFrame:NSZeroRect];
    if (self != nil) {
        _view = view;
        _setting = row.setting;
        _switch = [[NSSwitch alloc] initWithFrame:NSZeroRect];
        _switch.target = self;
        _switch.action = @selector(switched:);
        _switch.accessibilityLabel = string(row.title);
        _switch.accessibilityHelp = string(row.caption);
        NSTextField* title = label(std::string(row.title), FontRole::headline, NSColor.labelColor);
        NSTextField* caption = captionLabel(row.caption);
        hideFromScreenReaders(title);
        hideFromScreenReaders(caption);
        NSStackView* top = settingsRow(@[ title ], grid::kPartGap);
        [top addView:_switch inGravity:NSStackViewGravityTrailing];
        [self setBody:settingsColumn(@[ top, caption ], grid::kTextGap)];
        [self showState:row.isOn];
    }
    return self;
}

- (void)showState:(bool)isOn {
    _switch.state = isOn ? NSControlStateValueOn : NSControlStateValueOff;
}

- (BOOL)showItem:(const tarnwick::SettingsItem&)item {
    const auto* card = std::get_if<tarnwick::SettingsCard>(&item);
    const auto* row = card == nullptr ? nullptr : std::get_if<tarnwick::SwitchRow>(&card->content);
    if (row == nullptr || row->setting != _setting) {
        return NO;
    }
    [self showState:row->isOn];
    return YES;
}

/// The card is pressed as a whole: its texts are part of it.
- (NSView*)hitTest:(NSPoint)point {
    NSView* hit = [super hitTest:point];
    return hit == nil || [hit isDescendantOf:_switch] ? hit : self;
}

// Without it the release would not come here.
- (void)mouseDown:(NSEvent*)event {
    (void)event;
}

- (void)mouseUp:(NSEvent*)event {
    if (NSPointInRect([self convertPoint:event.locationInWindow fromView:nil], self.bounds)) {
        [_switch performClick:self];
    }
}

- (void)switched:(id)sender {
    (void)sender;
    _view->toggleSwitch(_setting);
    // If the system refuses, the preference has been reset at once: show the stored value.
    [self showState:_setting == tarnwick::SettingsSwitch::launchOnLogin
                        ? _view->settings().launchOnLogin()
                        : _view->settings().remindRestartAfterWeek()];
}

@end

namespace tarnwick::appkit {

NSView<TNWSettingsItemView>* makeSwitchCard(const SettingsItem& item, SettingsView& view) {
    const auto& row = std::get<SwitchRow>(std::get<SettingsCard>(item).content);
    return [[TNWSwitchCard alloc] initWithRow:row view:&view];
}

}  // namespace tarnwick::appkit
