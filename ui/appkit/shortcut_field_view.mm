// SPDX-License-Identifier: MIT
#include "ui/appkit/settings_views.h"
#include "ui/appkit/style.h"

@implementation TNWShortcutFieldView {
    tarnwick::ShortcutField* _field;
    NSTextField* _textField;
}

- (instancetype)initWithField:(tarnwick::ShortcutField*)field {
    self = [super initWithFrame:NSZeroRect];
    if (self != nil) {
        _field = field;
        [self addTextField];
        self.accessibilityElement = YES;
        self.accessibilityRole = NSAccessibilityButtonRole;
        self.accessibilityLabel =
            tarnwick::appkit::string(tarnwick::ShortcutField::kAccessibilityLabel);
        self.accessibilityHelp =
            tarnwick::appkit::string(tarnwick::ShortcutField::kAccessibilityHelp);
        self.accessibilityChildren = @[];
        __weak TNWShortcutFieldView* weakSelf = self;
        field->makeFirstResponder = [weakSelf] {
            TNWShortcutFieldView* view = weakSelf;
            [view.window makeFirstResponder:view];
        };
        field->onRefresh = [weakSelf] { [weakSelf refresh]; };
        [self refresh];
    }
    return self;
}

- (void)addTextField {
    _textField = [NSTextField labelWithString:@""];
    _textField.editable = NO;
    _textField.selectable = NO;
    _textField.bezeled = YES;
    _textField.bezelStyle = NSTextFieldRoundedBezel;
    _textField.alignment = NSTextAlignmentCenter;
    _textField.font = [NSFont systemFontOfSize:tarnwick::ShortcutField::kFontSize];
    _textField.translatesAutoresizingMaskIntoConstraints = NO;
    [self addSubview:_textField];
    [_textField.topAnchor constraintEqualToAnchor:self.topAnchor].active = YES;
    [_textField.bottomAnchor constraintEqualToAnchor:self.bottomAnchor].active = YES;
    [_textField.leadingAnchor constraintEqualToAnchor:self.leadingAnchor].active = YES;
    [_textField.trailingAnchor constraintEqualToAnchor:self.trailingAnchor].active = YES;
    [self.heightAnchor constraintEqualToConstant:tarnwick::ShortcutField::kHeight].active = YES;
}

- (void)refresh {
    const tarnwick::ShortcutFieldText& shown = _field->text();
    _textField.stringValue = tarnwick::appkit::string(shown.text);
    _textField.textColor = shown.isPlaceholder ? NSColor.placeholderTextColor : NSColor.labelColor;
    self.accessibilityValue = _textField.stringValue;
}

- (NSView*)hitTest:(NSPoint)point {
    return [super hitTest:point] == nil ? nil : self;
}

- (BOOL)acceptsFirstResponder {
    return YES;
}

- (void)mouseDown:(NSEvent*)event {
    (void)event;
    _field->mouseDown();
}

- (BOOL)accessibilityPerformPress {
    _field->mouseDown();
    return YES;
}

- (std::int64_t)flagsOf:(NSEvent*)event {
    return static_cast<std::int64_t>(event.modifierFlags &
                                     NSEventModifierFlagDeviceIndependentFlagsMask);
}

- (void)flagsChanged:(NSEvent*)event {
    if (!_field->flagsChanged([self flagsOf:event])) {
        [super flagsChanged:event];
    }
}

/// The space bar presses the field, as it presses other buttons; held down, it is not recorded.
- (void)keyDown:(NSEvent*)event {
    if (_field->isRecording() && event.isARepeat) {
        return;
    }
    if (!_field->isRecording() && [event.characters isEqualToString:@" "]) {
        _field->mouseDown();
    } else if (!_field->keyDown(event.keyCode, [self flagsOf:event])) {
        [super keyDown:event];
    }
}

/// Keys with Command come here before any menu gets them. If they are held after they were
/// recorded, they must not trigger a menu either.
- (BOOL)performKeyEquivalent:(NSEvent*)event {
    if (self.window.firstResponder != self) {
        return [super performKeyEquivalent:event];
    }
    if (event.isARepeat && (event.modifierFlags & NSEventModifierFlagCommand) != 0) {
        return YES;
    }
    return _field->isRecording() ? _field->keyDown(event.keyCode, [self flagsOf:event])
                                 : [super performKeyEquivalent:event];
}

/// Removal from the window, for example with its tab, also counts as losing the focus.
- (void)viewWillMoveToWindow:(NSWindow*)window {
    [super viewWillMoveToWindow:window];
    if (window == nil && self.window != nil && _field->isRecording()) {
        _field->resignFirstResponder();
    }
}

- (BOOL)resignFirstResponder {
    _field->resignFirstResponder();
    return [super resignFirstResponder];
}

- (void)drawFocusRingMask {
    NSRectFill(self.bounds);
}

- (NSRect)focusRingMaskBounds {
    return self.bounds;
}

@end
