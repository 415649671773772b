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

NSString* string(std::string_view utf8) {
    NSString* text = [[NSString alloc] initWithBytes:utf8.data()
                                              length:utf8.size()
                                            encoding:NSUTF8StringEncoding];
    return text == nil ? @"" : text;
}

NSImageView* symbolView(const std::string& name, NSColor* color, FontRole role) {
    NSImage* image = [NSImage imageWithSystemSymbolName:string(name) accessibilityDescription:nil];
    NSImageView* view = [[NSImageView alloc] initWithFrame:NSZeroRect];
    view.image = image;
    view.contentTintColor = color;
    view.symbolConfiguration =
        [NSImageSymbolConfiguration configurationWithPointSize:font(role).pointSize
                                                        weight:NSFontWeightRegular];
    [view setContentHuggingPriority:NSLayoutPriorityRequired
                     forOrientation:NSLayoutConstraintOrientationHorizontal];
    return view;
}

NSTextField* label(const std::string& text, FontRole role, NSColor* color) {
    NSTextField* field = [NSTextField labelWithString:string(text)];
    field.font = font(role);
    field.textColor = color;
    field.lineBreakMode = NSLineBreakByTruncatingTail;
    field.allowsExpansionToolTips = YES;
    return field;
}

}  // namespace tarnwick::appkit
