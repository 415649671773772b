// SPDX-License-Identifier: MIT
#include "tests/ui/settings/settings_text.h"

#include <sstream>

namespace tarnwick::testing {

namespace {

const char* word(Tint tint) {
    switch (tint) {
        case Tint::green:
            return "green";
        case Tint::yellow:
            return "yellow";
        case Tint::red:
            return "red";
        case Tint::orange:
            return "orange";
        case Tint::gray:
            return "gray";
    }
    return "?";
}

std::string quoted(std::string_view text) {
    return '"' + std::string(text) + '"';
}

std::string symbol(std::string_view name) {
    return '(' + std::string(name) + ')';
}

struct Writer {
    std::ostringstream& out;

    void operator()(const SwitchRow& row) {
        out << "switch " << quoted(row.title) << ' ' << quoted(row.caption)
            << (row.isOn ? " on" : " off");
    }
    void operator()(const ShortcutEditor& editor) {
        out << "shortcut " << quoted(ShortcutEditor::kTitle) << ' '
            << quoted(ShortcutEditor::kCaption) << "\n        field " << quoted(editor.field.text)
            << (editor.field.isPlaceholder ? " placeholder" : "");
        if (editor.hasClear) {
            out << "\n        [" << ShortcutEditor::kClear << ']';
        }
        for (const StatusLine& line : editor.lines) {
            out << "\n        " << symbol(line.icon) << ' ' << word(line.tint) << ' '
                << quoted(line.text);
        }
    }
    void operator()(const ProgramName& name) {
        out << "program " << quoted(ProgramName::kName) << ' ' << quoted(ProgramName::kVersionTitle)
            << ' ' << quoted(name.version);
    }
    void operator()(const FeatureList&) {
        out << "features";
        for (const FeatureRow& row : FeatureList::kRows) {
            out << "\n        " << symbol(row.icon) << ' ' << quoted(row.title);
        }
    }
    void operator()(const ItemNotice& notice) { out << "! " << notice.text; }
    void operator()(const PrivacyNote&) {
        out << "note " << quoted(PrivacyNote::kText);
        for (const std::string_view link : PrivacyNote::kLinks) {
            out << "\n        [" << link << ']';
        }
    }
    void operator()(const DisplayModeCard& card) {
        const DisplayModePreview preview = card.preview();
        out << "mode " << symbol(card.radioIcon()) << ' ' << quoted(card.title()) << ' '
            << quoted(card.description()) << "\n        preview " << symbol(preview.icon()) << ' '
            << word(preview.tint()) << ' ' << quoted(preview.text());
    }
    void operator()(const ThresholdEditorCard& card) {
        out << "thresholds " << quoted(card.title) << ' ' << symbol(card.icon) << ' ';
        for (const ThresholdValuePill& pill : card.pills()) {
            out << word(pill.color) << ' ' << quoted(pill.text()) << ' ';
        }
        out << card.normalRange.lower << ".." << card.normalRange.upper << ' '
            << card.highRange.lower << ".." << card.highRange.upper;
    }
    void operator()(const SettingsCard& card) {
        out << "card ";
        std::visit(*this, card.content);
    }
    void operator()(const ResetButton&) { out << '[' << ResetButton::kTitle << ']'; }
};

}  // namespace

std::string settingsText(const SettingsPage& page) {
    std::ostringstream out;
    out << "sections " << page.sectionSpacing << " apart\n";
    for (const SettingsSection& section : page.sections) {
        out << "section " << quoted(section.title) << '\n';
        for (const SettingsItem& item : section.content) {
            out << "    ";
            std::visit(Writer{out}, item);
            out << '\n';
        }
    }
    return out.str();
}

}  // namespace tarnwick::testing
