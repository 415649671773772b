// SPDX-License-Identifier: MIT
// What holds of every page, whatever the machine is like.
#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

#include "evaluation/metric_summary_resolver.h"
#include "tests/ui/qt/paint_counter.h"
#include "tests/ui/qt/panel_view_fixture.h"
#include "ui/panel/spoken_text.h"
#include "ui/qt/button_widget.h"
#include "ui/qt/grid.h"
#include "ui/qt/row_content.h"
#include "ui/qt/symbols.h"
#include "ui/qt/top_apps_widget.h"

namespace tarnwick::qt {
namespace {

struct State {
    std::string name;
    Page page;
};

class PanelStates : public PanelViewTest {
 protected:
    PanelStates() {
        for (const auto& [name, inputs] : testing::homeStates()) {
            states.push_back({"home " + std::string(name), homePage(inputs, formatter)});
        }
        for (const auto& [name, inputs] : testing::memoryDetailStates()) {
            states.push_back({"memory " + std::string(name), memoryDetailPage(inputs, formatter)});
        }
        for (const auto& [name, inputs] : testing::performanceDetailStates()) {
            states.push_back(
                {"performance " + std::string(name), performanceDetailPage(inputs, formatter)});
        }
    }
    ~PanelStates() override {
        QApplication::setFont(font);
        settle();
    }

    void enlargeFonts(qreal factor) const {
        QFont larger = font;
        larger.setPointSizeF(font.pointSizeF() * factor);
        QApplication::setFont(larger);
        settle();
    }
    BlockWidget* block(const PageItem& item) const {
        return view.findChild<BlockWidget*>(QString::fromStdString(item.id),
                                            Qt::FindDirectChildrenOnly);
    }
    void expectAColumn(const Page& page) const {
        const int width = theme.scaled(kPanelWidth);
        EXPECT_EQ(view.width(), width);
        int bottom = 16;
        const BlockWidget* above = nullptr;
        for (const PageItem& item : page) {
            SCOPED_TRACE(item.id);
            const BlockWidget* widget = block(item);
            ASSERT_NE(widget, nullptr);
            EXPECT_TRUE(widget->isVisible());
            EXPECT_EQ(widget->x() + widget->sideOverhang(), 16);
            EXPECT_EQ(widget->width() - 2 * widget->sideOverhang(), width - 32);
            EXPECT_EQ(widget->y() + widget->overhang(), bottom + item.spaceAbove);
            const int height = widget->height() - 2 * widget->overhang();
            EXPECT_GT(height, 0);
            bottom += item.spaceAbove + height;
            if (above != nullptr) {
                EXPECT_FALSE(widget->geometry().intersects(above->geometry()));
            }
            above = widget;
        }
        EXPECT_EQ(view.height(), bottom + 16);
    }
    void expectButtonsApart() const {
        for (const ButtonWidget* button : view.findChildren<ButtonWidget*>()) {
            SCOPED_TRACE(button->objectName().toStdString());
            EXPECT_TRUE(button->parentWidget()->rect().contains(button->geometry()));
            for (const ButtonWidget* other :
                 button->parentWidget()->findChildren<ButtonWidget*>()) {
                EXPECT_TRUE(other == button || !other->geometry().intersects(button->geometry()));
            }
        }
    }

    const QFont font = QApplication::font();
    std::vector<State> states;
};

TEST_F(PanelStates, BlocksAreInsideInOrderAndApart) {
    for (const State& state : states) {
        SCOPED_TRACE(state.name);
        show(state.page);
        expectAColumn(state.page);
    }
}

TEST_F(PanelStates, ButtonsAreInsideTheirBlocksAndApart) {
    for (const State& state : states) {
        SCOPED_TRACE(state.name);
        show(state.page);
        const bool isHome = std::holds_alternative<PanelHeader>(state.page.front().block);
        EXPECT_EQ(view.findChildren<ButtonWidget*>().size(), isHome ? 6 : 2);
        expectButtonsApart();
    }
}

TEST_F(PanelStates, WithLargerFontsNothingOverlaps) {
    for (const qreal factor : {1.5, 3.3}) {
        SCOPED_TRACE(factor);
        enlargeFonts(factor);
        for (const State& state : states) {
            SCOPED_TRACE(state.name);
            show(state.page);
            expectAColumn(state.page);
            expectButtonsApart();
        }
    }
}

TEST_F(PanelStates, FontsThatGrowWhileItIsOpenMakeTheSamePage) {
    for (const State& state : states) {
        SCOPED_TRACE(state.name);
        show(state.page);
        enlargeFonts(1.5);
        expectAColumn(state.page);
        expectButtonsApart();
        PanelView fresh(
            theme, [](PanelAction) {}, nullptr);
        fresh.setPage(state.page);
        fresh.show();
        settle();
        EXPECT_EQ(view.height(), fresh.height());
        for (const ButtonWidget* button : fresh.findChildren<ButtonWidget*>()) {
            EXPECT_EQ(find(button->objectName().toUtf8())->geometry(), button->geometry())
                << button->objectName().toStdString();
        }
        QApplication::setFont(font);
        settle();
    }
}

TEST_F(PanelStates, TheSummaryOfEveryMetricFitsOneLineInAUsualFont) {
    for (const char* family : {"Inter", "DejaVu Sans"}) {
        QFont usual(family);
        usual.setPointSizeF(11);
        QApplication::setFont(usual);
        settle();
        show(homePage(testing::calmMachine(), formatter));
        const int title = std::max(theme.scaled(grid::kIconButtonSize),
                                   theme.style(FontRole::headline).lineHeight());
        EXPECT_LE(find("header")->height(), title + 2 + theme.style(FontRole::caption).lineHeight())
            << family;
    }
}

TEST_F(PanelStates, TheSummaryIsWholeAndKeepsTheHeightWhicheverMetricItIsAboutInEveryFont) {
    for (const qreal factor : {1.0, 1.25, 1.5, 2.0, 3.0}) {
        enlargeFonts(factor);
        HomePageInputs inputs = testing::calmMachine();
        show(homePage(inputs, formatter));
        const int height = view.height();
        for (const std::string& text : MetricSummaryResolver::longestPopoverTexts()) {
            inputs.displaySummary.popoverText = text;
            show(homePage(inputs, formatter));
            EXPECT_EQ(view.height(), height) << factor << ' ' << text;
            const QRect header = find("header")->rect();
            QHelpEvent help(QEvent::ToolTip, header.bottomLeft(),
                            find("header")->mapToGlobal(header.bottomLeft()));
            hideToolTip();
            QApplication::sendEvent(find("header"), &help);
            EXPECT_EQ(shownToolTip(), "") << factor << ' ' << text;
        }
    }
}

TEST_F(PanelStates, LargeFontsCutNothingThatTheUsualOneDoesNot) {
    const auto cutTexts = [this](qreal points) {
        QFont inter("Inter");
        inter.setPointSizeF(points);
        QApplication::setFont(inter);
        settle();
        std::set<std::string> cut;
        for (const State& state : states) {
            show(state.page);
            for (const PageItem& item : state.page) {
                const auto look = [&](const RowContent& row, const QWidget& widget) {
                    cut.insert(state.name + ", " + item.id + ": " +
                               cutText(row, theme, widget.width()).toStdString());
                };
                std::visit(
                    [&](const auto& value) {
                        if constexpr (requires { rowContent(value, theme); }) {
                            look(rowContent(value, theme), *block(item));
                        }
                    },
                    item.block);
                for (const ListLine* line : block(item)->findChildren<ListLine*>()) {
                    look(line->content(), *line);
                }
                if (std::holds_alternative<PanelHeader>(item.block) ||
                    std::holds_alternative<DetailHeader>(item.block) ||
                    std::holds_alternative<TrendRow>(item.block)) {
                    // The tool tip begins with it.
                    const QPoint place(20, 7);
                    QHelpEvent help(QEvent::ToolTip, place, block(item)->mapToGlobal(place));
                    QApplication::sendEvent(block(item), &help);
                    cut.insert(state.name + ", " + item.id + ": " + shownToolTip().toStdString());
                    hideToolTip();
                }
            }
            for (const ButtonWidget* button : view.findChildren<ButtonWidget*>()) {
                EXPECT_GE(button->width(), button->sizeHint().width())
                    << state.name << ' ' << button->objectName().toStdString();
            }
        }
        return cut;
    };
    const std::set<std::string> usual = cutTexts(11);
    for (const qreal points : {13.75, 16.5, 22.0}) {
        std::set<std::string> more;
        std::ranges::set_difference(cutTexts(points), usual, std::inserter(more, more.end()));
        EXPECT_THAT(more, ::testing::IsEmpty()) << points;
    }
}

TEST_F(PanelStates, TheSamePageIsNotPaintedAgain) {
    for (const State& state : states) {
        SCOPED_TRACE(state.name);
        show(state.page);
        PaintCounter counter;
        show(state.page);
        EXPECT_THAT(counter.paints, ::testing::IsEmpty());
    }
}

TEST_F(PanelStates, EveryBlockIsReadOut) {
    for (const State& state : states) {
        SCOPED_TRACE(state.name);
        show(state.page);
        for (const PageItem& item : state.page) {
            EXPECT_EQ(block(item)->accessibleName().toStdString(), spokenText(item.block));
        }
    }
}

TEST_F(PanelStates, EveryProcessHasItsLine) {
    for (const State& state : states) {
        SCOPED_TRACE(state.name);
        show(state.page);
        for (const PageItem& item : state.page) {
            std::visit(
                [&](const auto& list) {
                    if constexpr (requires { list.processes; }) {
                        constexpr bool hasTitle =
                            std::is_same_v<std::remove_cvref_t<decltype(list)>, TopAppsSection>;
                        const std::size_t lines = std::max<std::size_t>(list.processes.size(), 1);
                        EXPECT_EQ(
                            static_cast<std::size_t>(block(item)->findChildren<ListLine*>().size()),
                            lines + (hasTitle ? 1 : 0));
                    }
                },
                item.block);
        }
    }
}

TEST_F(PanelStates, EverySymbolIsDrawn) {
    const auto expectDrawn = [](const std::string& name) {
        EXPECT_TRUE(name.empty() || hasSymbol(name)) << name;
    };
    for (const State& state : states) {
        for (const PageItem& item : state.page) {
            std::visit(
                [&](const auto& block) {
                    if constexpr (requires { block.icon; }) {
                        EXPECT_NE(block.icon, "");
                        expectDrawn(block.icon);
                    } else if constexpr (requires { block.buttons; }) {
                        for (const PanelButton& button : block.buttons) {
                            expectDrawn(button.icon);
                        }
                    } else if constexpr (requires { block.back; }) {
                        expectDrawn(block.back.icon);
                    }
                },
                item.block);
        }
    }
    EXPECT_TRUE(hasSymbol(NavigationButton::kTrailingIcon));
}

}  // namespace
}  // namespace tarnwick::qt
