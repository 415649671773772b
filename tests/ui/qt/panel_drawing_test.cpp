// SPDX-License-Identifier: MIT
// How the panel's blocks are drawn: which text stands where, in which font and colour.
#include <gtest/gtest.h>

#include "tests/ui/qt/drawn.h"
#include "tests/ui/qt/panel_view_fixture.h"
#include "tests/ui/qt/pointer.h"
#include "ui/qt/button_widget.h"
#include "ui/qt/grid.h"
#include "ui/qt/symbols.h"

namespace tarnwick::qt {
namespace {

class PanelDrawing : public PanelViewTest {
 protected:
    PanelDrawing() {
        movePointer(kElsewhere);
        for (const PanelAction action :
             {PanelAction::refresh, PanelAction::showSettings, PanelAction::openActivityMonitor,
              PanelAction::quit, PanelAction::showMemoryDetail, PanelAction::showPerformanceDetail,
              PanelAction::goBack}) {
            home.enabledActions.insert(action);
            memory.enabledActions.insert(action);
        }
    }

    QColor ground() const { return theme.color(ColorRole::panel); }
    QImage picture(QWidget* widget) const { return drawn(widget, ground()); }
    std::optional<int> baseline(const QImage& seen, FontRole font, ColorRole colour,
                                const QString& text, qreal x) const {
        return baselineOf(seen, theme.style(font), theme.color(colour), text, x, ground());
    }
    /// The same of a text that ends at the picture's trailing edge.
    std::optional<int> trailingBaseline(const QImage& seen, FontRole font, ColorRole colour,
                                        const QString& text) const {
        return baseline(seen, font, colour, text, seen.width() - theme.style(font).width(text));
    }
    bool shows(QWidget* widget, const char* symbol, ColorRole colour, const QPoint& position,
               const QColor& below) const {
        return showsSymbol(picture(widget), symbol, theme.color(colour), position,
                           grid::kSymbolSize, below);
    }
    /// The leading edge of a link, where its symbol is.
    QImage symbolIn(QWidget* link) const {
        return picture(link).copy(0, (link->height() - grid::kSymbolSize) / 2,
                                  grid::kSymbolSize - grid::kLinkSymbolEdge, grid::kSymbolSize);
    }
    /// A symbol in the accent colour without so much of its leading edge.
    QImage cutSymbol(const char* name, int edge) const {
        QImage image(grid::kSymbolSize - edge, grid::kSymbolSize, QImage::Format_RGB32);
        image.fill(ground());
        QPainter painter(&image);
        paintSymbol(painter, name, theme.color(ColorRole::accent), QPointF(-edge, 0),
                    grid::kSymbolSize);
        painter.end();
        return image;
    }
    /// The ground of a button on the panel.
    QColor control() const {
        QImage mixed(1, 1, QImage::Format_RGB32);
        mixed.fill(ground());
        QPainter(&mixed).fillRect(mixed.rect(), theme.color(ColorRole::control));
        return mixed.pixelColor(0, 0);
    }

    HomePageInputs home = testing::calmMachine();
    MemoryDetailInputs memory = testing::memoryDetailStates()[1].inputs;
};

/// Between an icon button's edge and its symbol.
constexpr int kSide = (grid::kIconButtonSize - grid::kSymbolSize) / 2;

TEST_F(PanelDrawing, TheHeaderHasItsTitleAtTheLeftAndItsButtonsAtTheRightAboveTheSummary) {
    for (const bool isDark : {false, true}) {
        theme.setDark(isDark);
        show(home);
        QWidget* header = find("header");
        const QImage seen = picture(header);
        const auto title = baseline(seen, FontRole::headline, ColorRole::text, "Tarnwick", kSide);
        const auto summary = baseline(seen, FontRole::caption, ColorRole::secondaryText,
                                      "No metrics are above thresholds.", kSide);
        ASSERT_TRUE(title.has_value());
        ASSERT_TRUE(summary.has_value());
        const int startOfSummary = *summary - theme.style(FontRole::caption).ascent();
        const QRect settings = find("button.showSettings")->geometry();
        const QRect refresh = find("button.refresh")->geometry();
        EXPECT_GT(settings.left(), theme.style(FontRole::headline).width("Tarnwick"));
        EXPECT_GT(refresh.left(), settings.right());
        // The symbol ends where the column does.
        EXPECT_EQ(header->x() + refresh.right() + 1 - kSide, grid::kPadding + 288);
        for (const QRect& button : {settings, refresh}) {
            EXPECT_GT(*title, button.top());
            EXPECT_LT(*title, button.bottom());
            EXPECT_LT(button.bottom(), startOfSummary);
        }
    }
}

TEST_F(PanelDrawing, ADetailPageHasItsTitleBetweenTheWayBackAndTheRefresh) {
    show(memory);
    QWidget* header = find("header");
    const qreal width = theme.style(FontRole::headline).width("Memory Details");
    const QRect back = find("button.goBack")->geometry();
    const QRect refresh = find("button.refresh")->geometry();
    const qreal left = (header->width() - width) / 2;
    EXPECT_TRUE(
        baseline(picture(header), FontRole::headline, ColorRole::text, "Memory Details", left)
            .has_value());
    EXPECT_EQ(back.left(), 0);
    EXPECT_GE(left, back.right() + 1);
    EXPECT_LE(left + width, refresh.left());
    EXPECT_EQ(refresh.right(), header->rect().right());
    EXPECT_TRUE(baseline(picture(find("button.goBack")), FontRole::subheadline, ColorRole::accent,
                         "Back", grid::kSymbolSize - grid::kLinkSymbolEdge + grid::kLinkGap)
                    .has_value());
    EXPECT_TRUE(baseline(picture(find("button.refresh")), FontRole::subheadline, ColorRole::accent,
                         "Refresh", 0)
                    .has_value());
}

TEST_F(PanelDrawing, ATrendHasItsValueTwoPointsBelowItsTitleAtTheLeft) {
    show({{"trend", 0, TrendRow{"Memory", "57%", {1, 2, 3}, Tint::green}}});
    const QImage seen = picture(find("trend"));
    const auto title = baseline(seen, FontRole::caption, ColorRole::secondaryText, "Memory", 0);
    const auto value = baseline(seen, FontRole::captionMedium, ColorRole::text, "57%", 0);
    ASSERT_TRUE(title.has_value());
    ASSERT_TRUE(value.has_value());
    const int endOfTitle = *title + theme.style(FontRole::caption).descent();
    const int startOfValue = *value - theme.style(FontRole::captionMedium).ascent();
    EXPECT_EQ(startOfValue - endOfTitle, 2);
}

TEST_F(PanelDrawing, ALevelHasItsMarkBeforeItsFigureInBarsAndTrends) {
    const auto isMarked = [this](const QImage& seen, std::string_view mark, Tint tint, int x) {
        for (int y = 0; y + grid::kMarkSize <= seen.height(); ++y) {
            if (showsSymbol(seen, mark, theme.color(tint), QPoint(x, y), grid::kMarkSize,
                            ground())) {
                return true;
            }
        }
        return false;
    };
    constexpr int room = grid::kMarkSize + grid::kMarkGap;
    for (const auto& [tint, mark] : {std::pair{Tint::yellow, "info.circle.fill"},
                                     {Tint::red, "exclamationmark.triangle.fill"}}) {
        show({{"bar", 0, UsageBar{"CPU", "cpu", 91, "91.0%", tint}},
              {"trend", 12, TrendRow{"CPU", "91%", {1, 2, 3}, tint}}});
        const QImage trend = picture(find("trend"));
        EXPECT_TRUE(isMarked(trend, mark, tint, 0)) << mark;
        EXPECT_TRUE(baseline(trend, FontRole::captionMedium, ColorRole::text, "91%", room)) << mark;
        const QImage bar = picture(find("bar"));
        const qreal figure = bar.width() - theme.style(FontRole::caption).width("91.0%");
        EXPECT_TRUE(isMarked(bar, mark, tint, static_cast<int>(figure - room))) << mark;
        EXPECT_TRUE(showsSymbol(bar, "cpu", theme.color(ColorRole::text), QPoint(0, 0),
                                grid::kSymbolSize, ground()));
    }
}

TEST_F(PanelDrawing, EveryButtonShowsItsSymbol) {
    show(home);
    for (const auto& [name, symbol] :
         {std::pair{"button.showSettings", "gearshape"}, {"button.refresh", "arrow.clockwise"}}) {
        QWidget* button = find(name);
        const QPoint middle((button->width() - grid::kSymbolSize) / 2,
                            (button->height() - grid::kSymbolSize) / 2);
        EXPECT_TRUE(shows(button, symbol, ColorRole::secondaryText, middle, ground())) << name;
    }
    for (const char* name : {"button.showMemoryDetail", "button.showPerformanceDetail"}) {
        QWidget* button = find(name);
        const QPoint trailing(button->width() - grid::kButtonPaddingX - grid::kSymbolSize,
                              (button->height() - grid::kSymbolSize) / 2);
        EXPECT_TRUE(shows(button, "chevron.right", ColorRole::secondaryText, trailing, control()))
            << name;
        EXPECT_EQ(button->width(), 288);
    }
    show(memory);
    QWidget* back = find("button.goBack");
    // What is drawn of it begins at the edge of the column.
    const QImage seen = picture(back);
    int first = seen.width();
    for (int y = 0; y < seen.height(); ++y) {
        for (int x = 0; x < first; ++x) {
            first = seen.pixelColor(x, y) == ground() ? first : x;
        }
    }
    EXPECT_LE(first, 1);
    EXPECT_EQ(symbolIn(back), cutSymbol("chevron.left", grid::kLinkSymbolEdge));
}

TEST_F(PanelDrawing, TheTitlesOfButtonsStandAtTheirLeadingEnd) {
    show(home);
    for (const auto& [name, title] : {std::pair{"button.showMemoryDetail", "What's Using Memory?"},
                                      {"button.showPerformanceDetail", "Performance & Network"},
                                      {"button.openActivityMonitor", "Activity Monitor"},
                                      {"button.quit", "Quit"}}) {
        EXPECT_TRUE(baselineOf(picture(find(name)), theme.style(FontRole::subheadline),
                               theme.color(ColorRole::text), title, grid::kButtonPaddingX,
                               control())
                        .has_value())
            << name;
    }
}

TEST_F(PanelDrawing, TheFooterKeepsToBothEdgesAndItsButtonsApart) {
    const QFont font = QApplication::font();
    for (const qreal factor : {1.0, 1.5, 3.3}) {
        SCOPED_TRACE(factor);
        QFont larger = font;
        larger.setPointSizeF(font.pointSizeF() * factor);
        QApplication::setFont(larger);
        settle();
        show(home);
        const QRect first = find("button.openActivityMonitor")->geometry();
        const QRect quit = find("button.quit")->geometry();
        EXPECT_EQ(first.left(), 0);
        EXPECT_EQ(quit.right(), find("footer")->rect().right());
        EXPECT_GE(quit.left() - first.right() - 1, 12);
        EXPECT_EQ(first.top(), quit.top());
    }
    QApplication::setFont(font);
    settle();
}

TEST_F(PanelDrawing, FiguresEndAtOneTrailingEdgeOnEveryPage) {
    const auto expectEnding = [this](const char* block, FontRole font, ColorRole colour,
                                     const QString& text) {
        QWidget* widget = find(block);
        ASSERT_NE(widget, nullptr) << block;
        EXPECT_EQ(widget->x() + widget->width(), 304) << block;
        EXPECT_TRUE(trailingBaseline(picture(widget), font, colour, text).has_value())
            << block << " " << text.toStdString();
    };
    home.cpuInfo.usagePercentage = 95;
    show(home);
    expectEnding("uptime", FontRole::caption, ColorRole::secondaryText, "3d 4h 12m");
    expectEnding("thermals", FontRole::captionMedium, ColorRole::text, "Nominal");
    expectEnding("bar.gpu", FontRole::caption, ColorRole::secondaryText, "17.3%");
    expectEnding("battery.cycles", FontRole::captionMedium, ColorRole::text, "412");
    for (const char* value : {"112.5%", "61.1%", "8.0%"}) {
        expectEnding("topCPU", FontRole::caption, ColorRole::secondaryText, value);
    }
    show(memory);
    expectEnding("pressure", FontRole::captionMedium, ColorRole::text, "Good");
    expectEnding("breakdown.physical", FontRole::captionMedium, ColorRole::text, "16 GB");
    expectEnding("breakdown.swap", FontRole::captionMedium, ColorRole::text, "412 MB");
    for (const char* value : {"12.5% (2 GB)", "9.4% (1.5 GB)", "3.2% (524 MB)"}) {
        expectEnding("topMemory.list", FontRole::caption, ColorRole::secondaryText, value);
    }
    show(testing::performanceDetailStates().front().inputs);
    expectEnding("gpu.device", FontRole::captionMedium, ColorRole::text, "17%");
    expectEnding("network.download", FontRole::captionMedium, ColorRole::text, "1.8 MB/s");
    expectEnding("thermal", FontRole::captionMedium, ColorRole::text, "Nominal");
}

}  // namespace
}  // namespace tarnwick::qt
