// SPDX-License-Identifier: MIT
// The fonts, colours and symbols that every view draws with. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>
#include <string>
#include <string_view>

#include "core/records/tint.h"

namespace tarnwick::appkit {

/// The application. Here and elsewhere a result of a kind that may be a subclass is first given its
/// own type: the compiler refuses calls that the oldest system lacks only for such.
NSApplication* application();

enum class FontRole {
    headline,
    subheadline,
    subheadlineMedium,
    caption,
    captionMedium,
};

/// Follows the text size that the user has chosen.
NSFont* font(FontRole role);

/// Follows light and dark by itself.
NSColor* color(Tint tint);

/// The system's symbol of that name; nil without one.
NSImage* symbol(std::string_view name);

/// A symbol in one colour, beside text of `role`.
NSImageView* symbolView(const std::string& name, NSColor* color, FontRole role);
NSImageView* emptySymbolView();
void showSymbol(NSImageView* view, const std::string& name, NSColor* color, FontRole role);

/// A symbol as the menu bar shows it: hierarchical, in its tint.
NSImageView* statusSymbolView(std::string_view name, Tint tint);
/// Medium, rounded design.
NSFont* statusFont(CGFloat size);

/// Fills `path` in a system colour, which may be translucent by itself, at `opacity` of it.
void fillFaintly(NSBezierPath* path, NSColor* color, double opacity);

NSString* string(std::string_view utf8);

/// One line, cut at its end with an ellipsis.
NSTextField* label(const std::string& text, FontRole role, NSColor* color);
/// For a picture, and for a text that the view around it says as well.
void hideFromScreenReaders(NSControl* control);
void showText(NSTextField* field, const std::string& text, FontRole role, NSColor* color);

}  // namespace tarnwick::appkit
