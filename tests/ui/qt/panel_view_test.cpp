#include "ui/qt/panel_view.h"

#include <QApplication>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>
#include <QToolTip>
#include <QtMath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>

#include "tests/ui/panel/home_fixtures.h"
#include "tests/ui/qt/paint_counter.h"
#include "tests/ui/qt/settle.h"
#include "ui/panel/spoken_text.h"
#include "ui/qt/button_widget.h"
#include "ui/qt/row_content.h"
#include "ui/qt/symbols.h"

namespace tarnwick::qt {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;
using ::testing::UnorderedElementsAre;

class PanelViewTest : public ::testing::Test {
 protected:
    PanelViewTest() { view.setObjectName("view"); }

    void show(const HomePageInputs& inputs) {
        view.setPage(homePage(inputs, formatter));
        view.show();
        settle();
    }
    QWidget* find(const char* name) const { return view.findChild<QWidget*>(name); }
    QList<BlockWidget*> blocks() const {
        return view.findChildren<BlockWidget*>(QString(), Qt::FindDirectChildrenOnly);
    }
    /// What hovering over the middle of a widget shows.
    QString toolTip(QWidget* widget) const {
        // Hiding would take a while.
        for (QWidget* each : QApplication::topLevelWidgets()) {
            if (each->inherits("QTipLabel")) {
                delete each;
            }
        }
        const QPoint position = widget->rect().center();
        QHelpEvent help(QEvent::ToolTip, position, widget->mapToGlobal(position));
        QApplication::sendEvent(widget, &help);
        return QToolTip::text();
    }
    void press(QWidget* widget, Qt::Key key) const {
        QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(widget, &down);
        QKeyEvent up(QEvent::KeyRelease, key, Qt::NoModifier);
        QApplication::sendEvent(widget, &up);
    }
    void click(QWidget* widget) const {
        const QPointF position = widget->rect().center();
        for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            QMouseEvent event(type, position, widget->mapToGlobal(position), Qt::LeftButton,
                              type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton,
                              Qt::NoModifier);
            QApplication::sendEvent(widget, &event);
        }
    }

    Theme theme;
    testing::PlainByteCountFormatter formatter;
    std::vector<PanelAction> pressed;
    PanelView view{theme, [this](PanelAction action) { pressed.push_back(action); }, nullptr};
};

TEST_F(PanelViewTest, HasAWidgetForEachItemInOrder) {
    show(testing::calmMachine());
    const Page page = homePage(testing::calmMachine(), formatter);
    QList<BlockWidget*> widgets = blocks();
    ASSERT_EQ(widgets.size(), static_cast<int>(page.size()));
    std::sort(widgets.begin(), widgets.end(),
              [](const QWidget* a, const QWidget* b) { return a->y() < b->y(); });
    for (std::size_t i = 0; i < page.size(); ++i) {
        const QWidget* widget = widgets[static_cast<int>(i)];
        EXPECT_EQ(widget->objectName().toStdString(), page[i].id);
        EXPECT_TRUE(widget->isVisible());
    }
}

class PanelViewStates : public PanelViewTest,
                        public ::testing::WithParamInterface<testing::HomeState> {};

TEST_P(PanelViewStates, BlocksAreInsideInOrderAndApart) {
    show(GetParam().inputs);
    const Page page = homePage(GetParam().inputs, formatter);
    EXPECT_EQ(view.width(), kPanelWidth);
    int bottom = 16;
    for (const PageItem& item : page) {
        const QWidget* widget = find(item.id.c_str());
        ASSERT_NE(widget, nullptr) << item.id;
        EXPECT_EQ(widget->x(), 16) << item.id;
        EXPECT_EQ(widget->width(), 288) << item.id;
        EXPECT_EQ(widget->y(), bottom + item.spaceAbove) << item.id;
        EXPECT_GT(widget->height(), 0) << item.id;
        bottom = widget->y() + widget->height();
    }
    EXPECT_EQ(view.height(), bottom + 16);
}

TEST_P(PanelViewStates, ButtonsAreInsideTheirBlocksAndApart) {
    show(GetParam().inputs);
    const QList<ButtonWidget*> buttons = view.findChildren<ButtonWidget*>();
    EXPECT_EQ(buttons.size(), 6);
    for (const ButtonWidget* button : buttons) {
        EXPECT_TRUE(button->parentWidget()->rect().contains(button->geometry()));
        for (const ButtonWidget* other : buttons) {
            if (other != button && other->parentWidget() == button->parentWidget()) {
                EXPECT_FALSE(other->geometry().intersects(button->geometry()));
            }
        }
    }
}

TEST_P(PanelViewStates, WithLargerFontsNothingOverlaps) {
    const QFont old = QApplication::font();
    QFont larger = old;
    larger.setPointSizeF(old.pointSizeF() * 1.5);
    QApplication::setFont(larger);
    show(GetParam().inputs);
    int bottom = 16;
    for (const PageItem& item : homePage(GetParam().inputs, formatter)) {
        const QWidget* widget = find(item.id.c_str());
        EXPECT_EQ(widget->y(), bottom + item.spaceAbove) << item.id;
        bottom = widget->y() + widget->height();
        EXPECT_LE(widget->geometry().right(), kPanelWidth - 16) << item.id;
    }
    EXPECT_EQ(view.height(), bottom + 16);
    const QList<ButtonWidget*> buttons = view.findChildren<ButtonWidget*>();
    for (const ButtonWidget* button : buttons) {
        EXPECT_TRUE(button->parentWidget()->rect().contains(button->geometry()));
        for (const ButtonWidget* other : buttons) {
            if (other != button && other->parentWidget() == button->parentWidget()) {
                EXPECT_FALSE(other->geometry().intersects(button->geometry()));
            }
        }
    }
    QApplication::setFont(old);
    settle();
}

TEST_P(PanelViewStates, EveryBlockIsReadOut) {
    show(GetParam().inputs);
    for (const PageItem& item : homePage(GetParam().inputs, formatter)) {
        EXPECT_EQ(find(item.id.c_str())->accessibleName().toStdString(), spokenText(item.block));
    }
}

TEST_P(PanelViewStates, EverySymbolIsDrawn) {
    for (const PageItem& item : homePage(GetParam().inputs, formatter)) {
        std::visit(
            [](const auto& block) {
                if constexpr (requires { block.icon; }) {
                    EXPECT_TRUE(hasSymbol(block.icon)) << block.icon;
                }
            },
            item.block);
    }
    EXPECT_TRUE(hasSymbol(NavigationButton::kTrailingIcon));
}

INSTANTIATE_TEST_SUITE_P(, PanelViewStates, ::testing::ValuesIn(testing::homeStates()),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(PanelViewTest, OnlyWhatChangedIsPaintedAgain) {
    HomePageInputs inputs = testing::calmMachine();
    show(inputs);
    PaintCounter counter;
    inputs.cpuInfo.usagePercentage = 43;
    show(inputs);
    EXPECT_THAT(counter.paints, UnorderedElementsAre(Pair("bar.cpu", 1), Pair("view", 1)));
    // The ground behind it, and nothing of any other block.
    EXPECT_EQ(counter.regions["view"].boundingRect(), find("bar.cpu")->geometry());
}

TEST_F(PanelViewTest, TheSamePageIsNotPaintedAgain) {
    show(testing::calmMachine());
    PaintCounter counter;
    show(testing::calmMachine());
    EXPECT_THAT(counter.paints, IsEmpty());
}

TEST_F(PanelViewTest, WidgetsOfItemsThatStayAreKept) {
    HomePageInputs inputs = testing::calmMachine();
    show(inputs);
    const QWidget* cpu = find("bar.cpu");
    const QWidget* memory = find("bar.memory");
    inputs.gpuInfo.isAvailable = false;
    inputs.cpuInfo.usagePercentage = 99;
    show(inputs);
    EXPECT_EQ(find("bar.cpu"), cpu);
    EXPECT_EQ(find("bar.memory"), memory);
    EXPECT_EQ(find("bar.gpu"), nullptr);
    EXPECT_NE(find("topCPU"), nullptr);
}

TEST_F(PanelViewTest, AnItemOfAnotherKindGetsANewWidget) {
    view.setPage({{"a", 0, CaptionText{"text"}}});
    settle();
    view.setPage({{"a", 0, InfoRow{"label", "value"}}});
    settle();
    ASSERT_EQ(blocks().size(), 1);
    EXPECT_EQ(blocks()[0]->accessibleName(), "label, value");
}

TEST_F(PanelViewTest, GoingDarkPaintsEverythingAgain) {
    show(testing::calmMachine());
    PaintCounter counter;
    theme.setDark(true);
    settle();
    for (const BlockWidget* block : blocks()) {
        EXPECT_GE(counter.paints[block->objectName().toStdString()], 1)
            << block->objectName().toStdString();
    }
}

TEST_F(PanelViewTest, LargerFontsMakeItHigherAtTheSameWidth) {
    show(testing::calmMachine());
    const int height = view.height();
    const QFont old = QApplication::font();
    QFont larger = old;
    larger.setPointSizeF(old.pointSizeF() * 1.6);
    QApplication::setFont(larger);
    settle();
    EXPECT_GT(view.height(), height);
    EXPECT_EQ(view.width(), kPanelWidth);
    EXPECT_EQ(find("bar.cpu")->width(), 288);
    QApplication::setFont(old);
    settle();
    EXPECT_EQ(view.height(), height);
}

TEST_F(PanelViewTest, LevelsAreToldApartByMoreThanTheirColour) {
    const auto mark = [this](Tint tint) {
        const auto found = rowContent(UsageBar{"CPU", "cpu", 42, "42.0%", tint}, theme).mark;
        return found ? found->name : std::string();
    };
    EXPECT_EQ(mark(Tint::green), "");
    EXPECT_EQ(mark(Tint::yellow), "info.circle.fill");
    EXPECT_EQ(mark(Tint::red), "exclamationmark.triangle.fill");
    EXPECT_EQ(mark(Tint::gray), "");

    // The same in a trend: what stands behind its figure.
    const auto inkBehindFigure = [this](Tint tint) {
        view.setPage({{"trend", 0, TrendRow{"CPU", "42%", {1, 2}, tint}}});
        view.show();
        settle();
        QWidget* trend = find("trend");
        QImage image(trend->size(), QImage::Format_RGB32);
        image.fill(theme.color(ColorRole::panel));
        trend->render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
        const int left = qCeil(theme.style(FontRole::captionMedium).width("42%")) + 3;
        int count = 0;
        for (int x = left; x < left + 16; ++x) {
            for (int y = image.height() / 2; y < image.height(); ++y) {
                count += image.pixel(x, y) != theme.color(ColorRole::panel).rgb() ? 1 : 0;
            }
        }
        return count;
    };
    EXPECT_EQ(inkBehindFigure(Tint::green), 0);
    EXPECT_GT(inkBehindFigure(Tint::yellow), 40);
    EXPECT_GT(inkBehindFigure(Tint::red), 40);
}

TEST_F(PanelViewTest, CutTextsAreWholeInTheToolTip) {
    HomePageInputs inputs = testing::calmMachine();
    const std::string name = "a volume with a name that no panel of this width could ever show";
    inputs.storageInfo.front().name = name;
    show(inputs);
    EXPECT_TRUE(toolTip(find("bar.storage")).contains(QString::fromStdString(name)));
    EXPECT_FALSE(toolTip(find("bar.storage")).contains("494.38 GB"));
}

TEST_F(PanelViewTest, TextsThatFitHaveNoToolTip) {
    show(testing::calmMachine());
    for (const char* id : {"bar.storage", "uptime", "battery.cycles", "battery"}) {
        EXPECT_EQ(toolTip(find(id)), "") << id;
    }
}

TEST_F(PanelViewTest, NamesAreNeverMarkup) {
    HomePageInputs inputs = testing::calmMachine();
    inputs.storageInfo.front().name = "<b>bold</b> and a name that is too long to be shown whole";
    show(inputs);
    EXPECT_TRUE(toolTip(find("bar.storage")).contains("&lt;b&gt;bold&lt;/b&gt;"));
}

TEST_F(PanelViewTest, IconButtonsSayTheirNameInAToolTip) {
    show(testing::calmMachine());
    EXPECT_EQ(toolTip(find("button.refresh")), "Refresh");
    EXPECT_EQ(toolTip(find("button.quit")), "");
}

TEST_F(PanelViewTest, ClicksAskForTheActionOfTheButton) {
    HomePageInputs inputs = testing::calmMachine();
    inputs.enabledActions = {
        PanelAction::refresh, PanelAction::showSettings,     PanelAction::openActivityMonitor,
        PanelAction::quit,    PanelAction::showMemoryDetail, PanelAction::showPerformanceDetail};
    show(inputs);
    for (const char* name :
         {"button.refresh", "button.showSettings", "button.openActivityMonitor", "button.quit",
          "button.showMemoryDetail", "button.showPerformanceDetail"}) {
        click(find(name));
    }
    EXPECT_THAT(pressed,
                ElementsAre(PanelAction::refresh, PanelAction::showSettings,
                            PanelAction::openActivityMonitor, PanelAction::quit,
                            PanelAction::showMemoryDetail, PanelAction::showPerformanceDetail));
}

TEST_F(PanelViewTest, DisabledButtonsAreThereAndDoNothing) {
    show(testing::calmMachine());
    for (const char* name : {"button.showSettings", "button.openActivityMonitor",
                             "button.showMemoryDetail", "button.showPerformanceDetail"}) {
        ASSERT_NE(find(name), nullptr);
        EXPECT_TRUE(find(name)->isVisible());
        EXPECT_FALSE(find(name)->isEnabled());
        click(find(name));
        press(find(name), Qt::Key_Return);
    }
    EXPECT_THAT(pressed, IsEmpty());
}

TEST_F(PanelViewTest, ButtonsAreEnabledOnceTheirTargetIsThere) {
    HomePageInputs inputs = testing::calmMachine();
    show(inputs);
    const QWidget* settings = find("button.showSettings");
    inputs.enabledActions.insert(PanelAction::showSettings);
    show(inputs);
    EXPECT_EQ(find("button.showSettings"), settings);
    EXPECT_TRUE(settings->isEnabled());
}

TEST_F(PanelViewTest, KeysPressTheFocusedButton) {
    show(testing::calmMachine());
    press(find("button.quit"), Qt::Key_Space);
    press(find("button.quit"), Qt::Key_Return);
    press(find("button.quit"), Qt::Key_Enter);
    EXPECT_THAT(pressed, ElementsAre(PanelAction::quit, PanelAction::quit, PanelAction::quit));
}

TEST_F(PanelViewTest, AHeldKeyPressesOnce) {
    show(testing::calmMachine());
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        for (const bool isRepeated : {false, true, true}) {
            QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, QString(), isRepeated);
            QApplication::sendEvent(find("button.quit"), &event);
        }
    }
    EXPECT_THAT(pressed, ElementsAre(PanelAction::quit, PanelAction::quit));
}

TEST_F(PanelViewTest, TabWalksThroughTheEnabledButtonsInPageOrder) {
    HomePageInputs inputs = testing::calmMachine();
    inputs.enabledActions.insert(PanelAction::showPerformanceDetail);
    show(inputs);
    view.activateWindow();
    find("button.quit")->setFocus();
    settle();
    std::vector<std::string> walked;
    for (int i = 0; i < 4; ++i) {
        ASSERT_NE(QApplication::focusWidget(), nullptr);
        press(QApplication::focusWidget(), Qt::Key_Tab);
        ASSERT_NE(QApplication::focusWidget(), nullptr);
        walked.push_back(QApplication::focusWidget()->objectName().toStdString());
    }
    EXPECT_THAT(walked, ElementsAre("button.refresh", "button.showPerformanceDetail", "button.quit",
                                    "button.refresh"));
}

TEST_F(PanelViewTest, TabFollowsThePageWhenAButtonComesBetween) {
    const auto item = [](const char* id, PanelAction action) {
        return PageItem{id, 0, NavigationButton{{id, "", action, true}}};
    };
    const PageItem first = item("first", PanelAction::showMemoryDetail);
    const PageItem second = item("second", PanelAction::showPerformanceDetail);
    const PageItem third = item("third", PanelAction::quit);
    view.setPage({first, third});
    view.show();
    settle();
    view.setPage({first, second, third});
    settle();
    view.activateWindow();
    find("button.showMemoryDetail")->setFocus();
    settle();
    press(find("button.showMemoryDetail"), Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), find("button.showPerformanceDetail"));
}

TEST_F(PanelViewTest, TheFocusRingSurroundsAButtonFocusedByKey) {
    show(testing::calmMachine());
    view.activateWindow();
    settle();
    QWidget* quit = find("button.quit");
    quit->setFocus(Qt::TabFocusReason);
    settle();
    const QWidget* ring = find("focusRing");
    EXPECT_TRUE(ring->isVisible());
    const QRect button(quit->mapTo(&view, QPoint()), quit->size());
    EXPECT_EQ(ring->geometry(), button.adjusted(-3, -3, 3, 3));
    EXPECT_TRUE(view.rect().contains(ring->geometry()));

    find("button.refresh")->setFocus(Qt::MouseFocusReason);
    settle();
    EXPECT_FALSE(ring->isVisible());
}

TEST_F(PanelViewTest, ButtonsHaveAccessibleNames) {
    show(testing::calmMachine());
    EXPECT_EQ(find("button.refresh")->accessibleName(), "Refresh");
    EXPECT_EQ(find("button.showSettings")->accessibleName(), "Settings");
    EXPECT_EQ(find("button.showMemoryDetail")->accessibleName(), "What's Using Memory?");
}

/// The panel's pixels at a device pixel ratio, on its own ground.
QImage pixels(QWidget& widget, const Theme& theme, int ratio) {
    QImage image(widget.size() * ratio, QImage::Format_RGB32);
    image.setDevicePixelRatio(ratio);
    image.fill(theme.color(ColorRole::panel));
    widget.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image;
}

class PanelViewScales : public PanelViewTest, public ::testing::WithParamInterface<int> {};

TEST_P(PanelViewScales, BarsAreCrispAndAsLongAsTheirShare) {
    const int ratio = GetParam();
    HomePageInputs inputs = testing::calmMachine();
    inputs.cpuInfo.usagePercentage = 50;
    show(inputs);
    QWidget* bar = find("bar.cpu");
    const QImage image = pixels(*bar, theme, ratio);
    const QRgb green = theme.color(Tint::green).rgb();
    const int bottom = image.height();
    // Six points high, every pixel of it in the full colour.
    for (int y = bottom - 6 * ratio; y < bottom; ++y) {
        EXPECT_EQ(image.pixel(60 * ratio, y), green);
    }
    EXPECT_EQ(image.pixel(60 * ratio, bottom - 6 * ratio - 1), theme.color(ColorRole::panel).rgb());
    // Half of 288 points, the last of them the round end, and the track from there on.
    const int middle = bottom - 3 * ratio;
    EXPECT_EQ(image.pixel(143 * ratio - 1, middle), green);
    EXPECT_NE(image.pixel(144 * ratio, middle), green);
    EXPECT_NE(image.pixel(287 * ratio, middle), theme.color(ColorRole::panel).rgb());
}

TEST_P(PanelViewScales, SymbolsAreDrawnInEveryPixel) {
    const int ratio = GetParam();
    show(testing::calmMachine());
    const QImage image = pixels(*find("uptime"), theme, ratio);
    const QImage symbol = symbolImage("clock", theme.color(ColorRole::secondaryText), 16 * ratio);
    QImage expected(symbol.size(), image.format());
    expected.fill(theme.color(ColorRole::panel));
    QPainter(&expected).drawImage(0, 0, symbol);
    const int top = (image.height() / ratio - 16) / 2 * ratio;
    EXPECT_EQ(image.copy(QRect(QPoint(0, top), symbol.size())), expected);
}

TEST_P(PanelViewScales, TheDividerIsAHairlineAcrossThePage) {
    const int ratio = GetParam();
    show(testing::calmMachine());
    const QImage image = pixels(*find("divider"), theme, ratio);
    EXPECT_EQ(image.size(), QSize(288, 1) * ratio);
    const QRgb first = image.pixel(0, 0);
    EXPECT_NE(first, theme.color(ColorRole::panel).rgb());
    for (int x = 0; x < image.width(); ++x) {
        EXPECT_EQ(image.pixel(x, 0), first);
    }
}

TEST_P(PanelViewScales, ValuesAtTheRightShareOneEdge) {
    const int ratio = GetParam();
    HomePageInputs inputs = testing::calmMachine();
    // The same last sign in every row.
    inputs.batteryInfo.cycleCount = 7;
    inputs.systemInfo.uptime = 3600;
    show(inputs);
    const auto lastInk = [&](const char* id) {
        const QImage image = pixels(*find(id), theme, ratio);
        const int height = image.height() - (std::string(id) == "bar.cpu" ? 8 * ratio : 0);
        for (int x = image.width() - 1; x >= 0; --x) {
            for (int y = 0; y < height; ++y) {
                if (image.pixel(x, y) != theme.color(ColorRole::panel).rgb()) {
                    return image.width() - x;
                }
            }
        }
        return -1;
    };
    for (const char* id : {"uptime", "thermals", "bar.cpu", "bar.gpu", "battery.capacity",
                           "battery.cycles", "battery.condition"}) {
        EXPECT_GE(lastInk(id), 1) << id;
        EXPECT_LE(lastInk(id), 3 * ratio) << id;
    }
}

TEST_P(PanelViewScales, ALongNameLeavesRoomBeforeTheValue) {
    const int ratio = GetParam();
    HomePageInputs inputs = testing::calmMachine();
    inputs.storageInfo.front().name = std::string(200, 'W');
    show(inputs);
    const QImage image = pixels(*find("bar.storage"), theme, ratio);
    const qreal valueWidth = theme.style(FontRole::caption).width("267.12 GB / 494.38 GB");
    const int valueStart = qFloor((288 - valueWidth) * ratio);
    // Without the points where the two texts' own anti-aliasing may reach.
    for (int x = valueStart - 11 * ratio; x < valueStart - ratio; ++x) {
        for (int y = 0; y < image.height() - 12 * ratio; ++y) {
            ASSERT_EQ(image.pixel(x, y), theme.color(ColorRole::panel).rgb()) << x << ' ' << y;
        }
    }
}

/// How much of a column's height the line covers, in points: 1 for a pixel of its full colour.
double covered(const QImage& image, int x, const QColor& ground, const QColor& line) {
    double sum = 0;
    for (int y = 0; y < image.height(); ++y) {
        const QColor color = image.pixelColor(x, y);
        sum += static_cast<double>(ground.blue() - color.blue()) / (ground.blue() - line.blue());
    }
    return sum / image.devicePixelRatio();
}

TEST_P(PanelViewScales, TheTrendsLineIsWholeAtTheEdgesOfItsFrame) {
    const int ratio = GetParam();
    const QFont old = QApplication::font();
    QFont small = old;
    // Texts lower than the sparkline leave it the height of the row.
    small.setPointSizeF(6);
    QApplication::setFont(small);
    view.setPage({{"trend", 0, TrendRow{"CPU", "11%", {0, 100, 100, 0, 0}, Tint::red}}});
    view.show();
    settle();
    const QImage image = pixels(*find("trend"), theme, ratio);
    const QColor ground = theme.color(ColorRole::panel);
    const QColor red = theme.color(Tint::red);
    // Along the upper edge, then along the lower one.
    const int left = 288 - TrendRow::kSparklineWidth;
    EXPECT_NEAR(covered(image, (left + 45) * ratio, ground, red), SparklineView::kLineWidth, 0.1);
    EXPECT_NEAR(covered(image, (left + 110) * ratio, ground, red), SparklineView::kLineWidth, 0.1);
    QApplication::setFont(old);
    settle();
}

INSTANTIATE_TEST_SUITE_P(, PanelViewScales, ::testing::Values(1, 2),
                         [](const auto& row) { return std::to_string(row.param) + "x"; });

TEST_F(PanelViewTest, ATinyShareIsStillASliverAndNoneIsNothing) {
    HomePageInputs inputs = testing::calmMachine();
    inputs.cpuInfo.usagePercentage = 0;
    show(inputs);
    const auto greenPixels = [&] {
        const QImage image = pixels(*find("bar.cpu"), theme, 2);
        int count = 0;
        for (int y = image.height() - 12; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QColor pixel = image.pixelColor(x, y);
                count += pixel.green() > pixel.red() + 40 ? 1 : 0;
            }
        }
        return count;
    };
    EXPECT_EQ(greenPixels(), 0);
    inputs.cpuInfo.usagePercentage = 1;
    show(inputs);
    EXPECT_GT(greenPixels(), 10);
    // No more than its share of the track.
    EXPECT_LE(greenPixels(), 6 * 12);
}

}  // namespace
}  // namespace tarnwick::qt
