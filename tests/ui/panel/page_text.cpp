#include "tests/ui/panel/page_text.h"

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

std::string quoted(const std::string& text) {
    return '"' + text + '"';
}

std::string text(const PanelButton& button) {
    return "[" + button.title + "]" + (button.icon.empty() ? "" : " (" + button.icon + ")") +
           (button.isEnabled ? "" : " disabled");
}

struct Writer {
    std::ostringstream out;

    void buttons(const std::vector<PanelButton>& all) {
        for (const PanelButton& button : all) {
            out << "\n        " << text(button);
        }
    }
    void operator()(const PanelHeader& header) {
        out << "header " << quoted(header.title) << ' ' << quoted(header.summary);
        buttons(header.buttons);
    }
    void operator()(const StatusRow& row) {
        out << "status " << quoted(row.title) << " (" << row.icon << ") " << quoted(row.value)
            << (row.isProminent ? " prominent" : "");
    }
    void operator()(const NoticeRow& row) {
        out << "notice (" << row.icon << ") " << word(row.tint) << ' ' << quoted(row.text);
    }
    void operator()(const UsageBar& bar) {
        out << "bar " << quoted(bar.title) << " (" << bar.icon << ") " << bar.value << ' '
            << quoted(bar.detail) << ' ' << word(bar.tint);
    }
    void operator()(const SectionHeader& header) {
        out << "section " << quoted(header.title) << " (" << header.icon << ")";
    }
    void operator()(const CaptionText& caption) { out << "caption " << quoted(caption.text); }
    void operator()(const InfoRow& row) {
        out << "info " << quoted(row.label) << ' ' << quoted(row.value);
    }
    void operator()(const NavigationButton& navigation) {
        out << "navigation " << text(navigation.button);
    }
    void operator()(const TopAppsSection& section) {
        out << "apps " << quoted(section.title);
        for (const ProcessRow& row : section.rows()) {
            out << "\n        " << quoted(row.process.name) << ' '
                << quoted(row.valueText(row.process));
        }
    }
    void operator()(const PanelDivider&) { out << "divider"; }
    void operator()(const FooterRow& footer) {
        out << "footer";
        buttons(footer.buttons);
    }
};

}  // namespace

std::string pageText(const Page& page) {
    std::ostringstream result;
    for (const PageItem& item : page) {
        Writer writer;
        std::visit(writer, item.block);
        result << item.spaceAbove << ' ' << item.id << ": " << writer.out.str() << '\n';
    }
    return result.str();
}

}  // namespace tarnwick::testing
