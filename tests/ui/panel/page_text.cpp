// SPDX-License-Identifier: MIT
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
    void rows(const std::vector<ProcessRow>& all) {
        for (const ProcessRow& row : all) {
            out << "\n        " << quoted(row.process.name) << ' '
                << quoted(row.valueText(row.process)) << ' ' << quoted(row.toolTip());
        }
        if (all.empty()) {
            out << "\n        " << TopAppsList::kEmptyText;
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
        rows(section.rows());
    }
    void operator()(const PanelDivider&) { out << "divider"; }
    void operator()(const DetailHeader& header) {
        out << "detail " << quoted(header.title);
        buttons({header.back, header.refresh});
    }
    void operator()(const GroupTitle& group) { out << "group " << quoted(group.title); }
    void operator()(const TrendRow& row) {
        out << "trend " << quoted(row.title) << ' ' << quoted(row.value) << ' ' << word(row.color);
        for (const double value : row.values) {
            out << ' ' << value;
        }
    }
    void operator()(const TopAppsList& list) {
        out << "list indented by " << list.indent;
        rows(list.rows());
    }
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
        if (!item.toolTip.empty()) {
            result << "        tip " << quoted(item.toolTip) << '\n';
        }
    }
    return result.str();
}

}  // namespace tarnwick::testing
