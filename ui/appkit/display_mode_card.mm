// SPDX-License-Identifier: MIT
#include <string>

#include "ui/appkit/grid.h"
#include "ui/appkit/settings_cards.h"
#include "ui/appkit/style.h"

namespace {

using tarnwick::DisplayModeCard;
using tarnwick::DisplayModePreview;
using tarnwick::appkit::FontRole;
using tarnwick::appkit::label;
using tarnwick::appkit::settingsColumn;
using tarnwick::appkit::settingsRow;
using tarnwick::appkit::string;
using tarnwick::appkit::symbolView;

constexpr CGFloat kGap = tarnwick::appkit::grid::kPartGap;

/// The ground of a preview, like a piece of the menu bar.
NSView* groundUnder(NSView* strip) {
    NSBox* ground = [[NSBox alloc] initWithFrame:NSZeroRect];
    ground.boxType = NSBoxCustom;
    ground.borderWidth = 0;
    ground.cornerRadius = tarnwick::appkit::grid::kStripCorner;
    ground.fillColor = NSColor.windowBackgroundColor;
    ground.contentViewMargins = NSZeroSize;
    ground.contentView = strip;
    return ground;
}

NSView* previewOf(const DisplayModePreview& preview) {
    NSMutableArray<NSView*>* views = [NSMutableArray
        arrayWithObject:tarnwick::appkit::statusSymbolView(preview.icon(), preview.tint())];
    if (!preview.text().empty()) {
        NSFont* body = [NSFont preferredFontForTextStyle:NSFontTextStyleBody options:@{}];
        NSTextField* text = [NSTextField labelWithString:string(preview.text())];
        text.font = tarnwick::appkit::statusFont(body.pointSize);
        [views addObject:text];
    }
    NSStackView* strip = [[NSStackView alloc] initWithFrame:NSZeroRect];
    strip.spacing = kGap;
    [strip setViews:views inGravity:NSStackViewGravityCenter];
    NSView* ground = groundUnder(strip);
    [ground.heightAnchor constraintEqualToConstant:DisplayModePreview::kHeight].active = YES;
    return ground;
}

NSView* bodyOf(const DisplayModeCard& card) {
    NSColor* tint = card.isSelected() ? NSColor.controlAccentColor : NSColor.secondaryLabelColor;
    NSImageView* radio = symbolView(std::string(card.radioIcon()), tint, FontRole::headline);
    NSFont* title3 = [NSFont preferredFontForTextStyle:NSFontTextStyleTitle3 options:@{}];
    radio.symbolConfiguration =
        [NSImageSymbolConfiguration configurationWithPointSize:title3.pointSize
                                                        weight:NSFontWeightRegular];
    NSTextField* title = label(std::string(card.title()), FontRole::headline, NSColor.labelColor);
    return settingsColumn(
        @[
            settingsRow(@[ radio, title ], kGap),
            tarnwick::appkit::captionLabel(card.description()), previewOf(card.preview())
        ],
        kGap);
}

}  // namespace

/// A press anywhere on the card, or the space bar, selects its mode.
@interface TNWDisplayModeCard : TNWCard <TNWSettingsItemView>
- (instancetype)initWithView:(tarnwick::SettingsView*)view;
@end

@implementation TNWDisplayModeCard {
    tarnwick::SettingsView* _view;
    std::optional<DisplayModeCard> _card;
}

- (instancetype)initWithView:(tarnwick::SettingsView*)view {
    self = [super initWithFrame:NSZeroRect];
    if (self != nil) {
        _view = view;
        self.accessibilityElement = YES;
        self.accessibilityRole = NSAccessibilityRadioButtonRole;
        self.accessibilityChildren = @[];
    }
    return self;
}

- (BOOL)showItem:(const tarnwick::SettingsItem&)item {
    const auto* card = std::get_if<DisplayModeCard>(&item);
    if (card == nullptr || (_card && _card->mode != card->mode)) {
        return NO;
    }
    if (_card != *card) {
        _card = *card;
        [self setBody:bodyOf(*card)];
        self.accessibilityLabel = string(card->title());
        self.accessibilityHelp = string(card->description());
        self.toolTip = card->toolTip.empty() ? nil : string(card->toolTip);
        self.accessibilityValue = @(card->isSelected());
        NSAccessibilityPostNotification(self, NSAccessibilityValueChangedNotification);
    }
    return YES;
}

- (void)select {
    _view->selectDisplayMode(_card->mode);
}

- (NSView*)hitTest:(NSPoint)point {
    return [super hitTest:point] == nil ? nil : self;
}

- (void)mouseDown:(NSEvent*)event {
    (void)event;
}

- (void)mouseUp:(NSEvent*)event {
    if (NSPointInRect([self convertPoint:event.locationInWindow fromView:nil], self.bounds)) {
        [self select];
    }
}

/// Like a button: only if the system's keyboard navigation reaches all controls.
- (BOOL)acceptsFirstResponder {
    return tarnwick::appkit::application().fullKeyboardAccessEnabled;
}

- (void)keyDown:(NSEvent*)event {
    if ([event.characters isEqualToString:@" "]) {
        [self select];
    } else {
        [super keyDown:event];
    }
}

- (void)drawFocusRingMask {
    NSRectFill(self.bounds);
}

- (NSRect)focusRingMaskBounds {
    return self.bounds;
}

- (BOOL)accessibilityPerformPress {
    [self select];
    return YES;
}

@end

namespace tarnwick::appkit {

NSView<TNWSettingsItemView>* makeDisplayModeCard(const SettingsItem& item, SettingsView& view) {
    TNWDisplayModeCard* card = [[TNWDisplayModeCard alloc] initWithView:&view];
    [card showItem:item];
    return card;
}

}  // namespace tarnwick::appkit
