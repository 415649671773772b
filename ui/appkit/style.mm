// SPDX-License-Identifier: MIT
#include "ui/appkit/style.h"

namespace tarnwick::appkit {
namespace {

NSFont* preferred(NSFontTextStyle style) {
    return [NSFont preferredFontForTextStyle:style options:@{}];
}

NSFont* medium(NSFontTextStyle style) {
    return [NSFont systemFontOfSize:preferred(style).pointSize weight:NSFontWeightMedium];
}

}  // namespace

NSApplication* application() {
    return NSApplication.sharedApplication;
}

NSFont* font(FontRole role) {
    switch (role) {
        case FontRole::headline:
            return preferred(NSFontTextStyleHeadline);
        case FontRole::subheadline:
            return preferred(NSFontTextStyleSubheadline);
        case FontRole::subheadlineMedium:
            return medium(NSFontTextStyleSubheadline);
        case FontRole::caption:
            return preferred(NSFontTextStyleCaption1);
        case FontRole::captionMedium:
            return medium(NSFontTextStyleCaption1);
    }
}

NSColor* color(Tint tint) {
    switch (tint) {
        case Tint::green:
            return NSColor.systemGreenColor;
        case Tint::yellow:
            return NSColor.systemYellowColor;
        case Tint::red:
            return NSColor.systemRedColor;
        case Tint::orange:
            return NSColor.systemOrangeColor;
        case Tint::gray:
            return NSColor.systemGrayColor;
    }
}

// Another alpha would replace the colour's own and make it stronger.
void fillFaintly(NSBezierPath* path, NSColor* color, double opacity) {
    [NSGraphicsContext saveGraphicsState];
    CGContextSetAlpha(NSGraphicsContext.currentContext.CGContext, opacity);
    [color setFill];
    [path fill];
    [NSGraphicsContext restoreGraphicsState];
}

NSString* string(std::string_view utf8) {
    NSString* text = [[NSString alloc] initWithBytes:utf8.data()
                                              length:utf8.size()
                                            encoding:NSUTF8StringEncoding];
    return text == nil ? @"" : text;
}

NSImage* symbol(std::string_view name) {
    return [NSImage imageWithSystemSymbolName:string(name) accessibilityDescription:nil];
}

NSImageView* emptySymbolView() {
    NSImageView* view = [[NSImageView alloc] initWithFrame:NSZeroRect];
    [view setContentHuggingPriority:NSLayoutPriorityRequired
                     forOrientation:NSLayoutConstraintOrientationHorizontal];
    // The system would say the name of the symbol.
    hideFromScreenReaders(view);
    return view;
}

NSImageView* symbolView(const std::string& name, NSColor* color, FontRole role) {
    NSImageView* view = emptySymbolView();
    showSymbol(view, name, color, role);
    return view;
}

void showSymbol(NSImageView* view, const std::string& name, NSColor* color, FontRole role) {
    view.image = symbol(name);
    view.contentTintColor = color;
    view.symbolConfiguration =
        [NSImageSymbolConfiguration configurationWithPointSize:font(role).pointSize
                                                        weight:NSFontWeightRegular];
}

NSImageView* statusSymbolView(std::string_view name, Tint tint) {
    NSImageView* view = emptySymbolView();
    view.image = symbol(name);
    view.symbolConfiguration =
        [NSImageSymbolConfiguration configurationWithHierarchicalColor:color(tint)];
    return view;
}

NSFont* statusFont(CGFloat size) {
    NSFont* plain = [NSFont systemFontOfSize:size weight:NSFontWeightMedium];
    NSFontDescriptor* rounded =
        [plain.fontDescriptor fontDescriptorWithDesign:NSFontDescriptorSystemDesignRounded];
    return rounded == nil ? plain : [NSFont fontWithDescriptor:rounded size:size];
}

NSTextField* label(const std::string& text, FontRole role, NSColor* color) {
    NSTextField* field = [NSTextField labelWithString:@""];
    field.lineBreakMode = NSLineBreakByTruncatingTail;
    field.allowsExpansionToolTips = YES;
    showText(field, text, role, color);
    return field;
}

void hideFromScreenReaders(NSControl* control) {
    control.accessibilityElement = NO;
    // What stands for a control in the tree is its cell.
    NSCell* cell = control.cell;
    cell.accessibilityElement = NO;
}

void showText(NSTextField* field, const std::string& text, FontRole role, NSColor* color) {
    field.stringValue = string(text);
    field.font = font(role);
    field.textColor = color;
}

}  // namespace tarnwick::appkit
