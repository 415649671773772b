// SPDX-License-Identifier: MIT
// How the settings window is drawn: which symbol, text and measure stands where, in which colour.
#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>

#include "tests/ui/qt/drawn.h"
#include "tests/ui/qt/pointer.h"
#include "tests/ui/qt/settings_widget_fixture.h"
#include "ui/qt/settings_buttons.h"
#include "ui/qt/settings_cards.h"
#include "ui/qt/settings_label.h"
#include "ui/qt/settings_mode_card.h"
#include "ui/qt/settings_tab_bar.h"
#include "ui/settings/threshold_editor_card.h"

namespace tarnwick::qt {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

class SettingsDrawing : public SettingsWidgetFixture {
 protected:
    SettingsDrawing() { movePointer(kElsewhere); }

    QImage picture(QWidget* of) const { return drawn(of, theme.color(ColorRole::card)); }
    template <class Color>
    bool shows(SymbolWidget* symbol, std::string_view name, Color color) const {
        return symbol->width() == symbol->height() &&
               showsSymbol(picture(symbol), name, theme.color(color), QPoint(0, 0), symbol->width(),
                           theme.color(ColorRole::card));
    }
    /// Below a widget, from top to bottom.
    static std::vector<SymbolWidget*> symbols(const QWidget* below) {
        std::vector<SymbolWidget*> found;
        for (SymbolWidget* each : below->findChildren<SymbolWidget*>()) {
            if (each->isVisible()) {
                found.push_back(each);
            }
        }
        const auto y = [](const QWidget* each) {
            return each->mapTo(each->window(), QPoint()).y();
        };
        std::sort(found.begin(), found.end(),
                  [&](const QWidget* one, const QWidget* other) { return y(one) < y(other); });
        return found;
    }
    /// The free room between each two rows of the page, from top to bottom.
    std::vector<int> gaps() const {
        QList<QRect> places;
        for (QWidget* each :
             find("page")->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
            if (each->isVisible()) {
                places << each->geometry();
            }
        }
        std::sort(places.begin(), places.end(),
                  [](const QRect& one, const QRect& other) { return one.top() < other.top(); });
        std::vector<int> found;
        for (qsizetype i = 1; i < places.size(); ++i) {
            if (places[i].top() != places[i - 1].top()) {
                found.push_back(places[i].top() - places[i - 1].bottom() - 1);
            }
        }
        return found;
    }
    /// The texts that stand on the page itself and on no card.
    std::vector<std::string> headings() const {
        std::vector<std::string> found;
        for (SettingsLabel* label :
             find("page")->findChildren<SettingsLabel*>(QString(), Qt::FindDirectChildrenOnly)) {
            EXPECT_EQ(label->palette().color(QPalette::WindowText),
                      theme.color(ColorRole::secondaryText));
            found.push_back(label->text().toStdString());
        }
        return found;
    }
    const SettingsLabel* heading(const char* text) const {
        for (const SettingsLabel* label : visible<SettingsLabel>()) {
            if (label->text() == text && label->parentWidget() == find("page")) {
                return label;
            }
        }
        ADD_FAILURE() << text;
        return nullptr;
    }
    /// Nothing but the heading's distance lies between it and an item below.
    void expectAbove(const char* text, const QWidget* item) const {
        const SettingsLabel* label = heading(text);
        ASSERT_NE(label, nullptr);
        EXPECT_EQ(item->y() - label->geometry().bottom() - 1, 6) << text;
        EXPECT_EQ(label->x(), item->x()) << text;
    }
};

TEST_F(SettingsDrawing, TheSelectedModeHasAFilledRadioInTheAccentColour) {
    const auto radio = [this](const char* card) { return symbols(find(card)).at(0); };
    const auto expectSelected = [&](const char* selected, const char* other) {
        EXPECT_TRUE(shows(radio(selected), "largecircle.fill.circle", ColorRole::accent));
        EXPECT_TRUE(shows(radio(other), "circle", ColorRole::secondaryText));
    };
    settings.setMenuBarDisplayMode(MenuBarDisplayMode::iconOnly);
    catchUp();
    expectSelected("mode.iconOnly", "mode.advanced");
    settings.setMenuBarDisplayMode(MenuBarDisplayMode::advanced);
    catchUp();
    expectSelected("mode.advanced", "mode.iconOnly");
}

TEST_F(SettingsDrawing, EachModeHasAStripThatShowsTheItemInIt) {
    struct Strip {
        const char* card;
        const char* symbol;
        Tint tint;
        const char* text;
    };
    for (const bool isDark : {false, true}) {
        theme.setDark(isDark);
        catchUp();
        const TextStyle& style = theme.style(FontRole::subheadlineMedium);
        for (const Strip& each :
             {Strip{"mode.iconOnly", "checkmark.circle.fill", Tint::green, ""},
              Strip{"mode.advanced", "info.circle.fill", Tint::yellow, "RAM 80%"}}) {
            SCOPED_TRACE(each.card);
            auto* strip = find(each.card)->findChild<DisplayModePreviewWidget*>();
            ASSERT_NE(strip, nullptr);
            const QImage seen = picture(strip);
            const QColor ground = seen.pixelColor(20, 4);
            const QString text = each.text;
            const int size = theme.scaled(15);
            const int x = static_cast<int>(
                (strip->width() - size - (text.isEmpty() ? 0 : 6 + style.width(text))) / 2);
            EXPECT_TRUE(showsSymbol(seen, each.symbol, theme.color(each.tint),
                                    QPoint(x, (strip->height() - size) / 2), size, ground));
            EXPECT_EQ(baselineOf(seen, style, theme.color(ColorRole::text), "RAM 80%", x + size + 6,
                                 ground)
                          .has_value(),
                      !text.isEmpty());
        }
    }
}

TEST_F(SettingsDrawing, TitlesOfCardsAreHeadlinesAndWhatExplainsThemAreCaptions) {
    const std::set<std::string> headlines = {
        "Icon Only",          "Advanced",
        "Launch on login",    "Global Shortcut",
        "CPU Usage",          "GPU Usage",
        "Memory Usage",       "Storage Usage",
        "Tarnwick",           "Remind restart after a week",
        "Private by design",  "Quietly in the background",
        "Resource conscious",
    };
    std::set<std::string> found;
    for (const TabItem& item : kTabs) {
        select(item.tab);
        for (const SettingsLabel* label : visible<SettingsLabel>()) {
            const std::string text = label->accessibleName().toStdString();
            if (headlines.contains(text)) {
                found.insert(text);
                EXPECT_EQ(label->font(), theme.style(FontRole::headline).font()) << text;
            } else if (text.ends_with('.')) {
                EXPECT_EQ(label->font(), theme.style(FontRole::caption).font()) << text;
            }
        }
    }
    EXPECT_EQ(found, headlines);
}

TEST_F(SettingsDrawing, ResetAndClearHaveABorderAndLinksHaveNone) {
    storeShortcut(37, kCommand);
    const auto hasBorder = [this](QWidget* button) {
        const QImage seen = picture(button);
        const QColor ground = theme.color(ColorRole::card);
        return seen.pixelColor(seen.width() / 2, 0) != ground &&
               seen.pixelColor(0, seen.height() / 2) != ground;
    };
    EXPECT_TRUE(hasBorder(find("clear")));
    select(Tab::customize);
    EXPECT_TRUE(hasBorder(find("reset")));
    select(Tab::about);
    for (SettingsButton* link : visible<SettingsButton>()) {
        EXPECT_FALSE(hasBorder(link));
    }
}

TEST_F(SettingsDrawing, EveryTabHasItsSymbolAboveItsLabel) {
    for (const TabItem& item : kTabs) {
        select(item.tab);
        for (SettingsTabButton* button : visible<SettingsTabButton>()) {
            const bool isSelected = button->tab() == item.tab;
            const QColor colour =
                theme.color(isSelected ? ColorRole::accent : ColorRole::secondaryText);
            const QImage seen = picture(button);
            const QColor ground = seen.pixelColor(button->width() / 2, 2);
            const int size = theme.scaled(20);
            EXPECT_TRUE(showsSymbol(seen, kTabs.at(static_cast<std::size_t>(button->tab())).icon,
                                    colour, QPoint((button->width() - size) / 2, 5), size, ground))
                << button->text().toStdString();
            const TextStyle& style = theme.style(FontRole::subheadline);
            const auto baseline =
                baselineOf(seen, style, colour, button->text(),
                           (button->width() - style.width(button->text())) / 2, ground);
            ASSERT_TRUE(baseline.has_value()) << button->text().toStdString();
            EXPECT_GT(*baseline - style.ascent(), 5 + size);
        }
    }
}

TEST_F(SettingsDrawing, EveryFeatureHasItsSymbol) {
    select(Tab::about);
    const std::vector<SymbolWidget*> shown = symbols(find("page"));
    ASSERT_EQ(shown.size(), 3U);
    const char* names[] = {"hand.raised.fill", "moon.fill", "leaf.fill"};
    for (std::size_t i = 0; i < shown.size(); ++i) {
        EXPECT_TRUE(shows(shown[i], names[i], ColorRole::text)) << names[i];
    }
}

TEST_F(SettingsDrawing, EveryThresholdCardHasItsSymbol) {
    select(Tab::customize);
    for (const auto& [card, name] : {std::pair{"CPU Usage", "cpu"},
                                     {"GPU Usage", "display.2"},
                                     {"Memory Usage", "memorychip"},
                                     {"Storage Usage", "internaldrive"}}) {
        const std::vector<SymbolWidget*> shown = symbols(find(card));
        ASSERT_EQ(shown.size(), 1U);
        EXPECT_TRUE(shows(shown[0], name, ColorRole::text)) << card;
    }
}

TEST_F(SettingsDrawing, ItemsOfTheGeneralTabStandTwelvePointsApart) {
    EXPECT_THAT(gaps(), ElementsAre(6, 12, 6, 12));
    EXPECT_THAT(headings(), ElementsAre("Appearance", "System"));
    expectAbove("Appearance", find("mode.iconOnly"));
    expectAbove("System", find("switch")->parentWidget());
}

TEST_F(SettingsDrawing, ANoticeAboutTheItemTakesRoomOnlyWhileThereIsOne) {
    platform::StatusItemNotice notice;
    widget.reset();
    SettingsViewEnvironment environment{dispatch, layout};
    environment.itemNotice = &notice;
    widget = std::make_unique<SettingsWidget>(settings, theme, environment, KeyCodes());
    widget->setFixedSize(520, 500);
    widget->show();
    catchUp();
    const auto card = [this] { return visible<NoticeCardWidget>(); };
    EXPECT_TRUE(card().isEmpty());
    const int top = find("mode.iconOnly")->y();
    notice.text.set("no tray");
    catchUp();
    ASSERT_EQ(card().size(), 1);
    EXPECT_TRUE(shows(symbols(card()[0]).at(0), "exclamationmark.triangle.fill", Tint::orange));
    EXPECT_GT(find("mode.iconOnly")->y(), top);
    notice.text.set({});
    catchUp();
    EXPECT_TRUE(card().isEmpty());
    EXPECT_EQ(find("mode.iconOnly")->y(), top);
    widget.reset();
}

TEST_F(SettingsDrawing, SectionsOfTheCustomizeTabStandFurtherApart) {
    select(Tab::customize);
    EXPECT_THAT(gaps(), ElementsAre(6, 18, 6, 12, 12, 12, 12));
    EXPECT_THAT(headings(), ElementsAre("Reminders", "Thresholds"));
    expectAbove("Reminders", find("switch")->parentWidget());
    expectAbove("Thresholds", find("CPU Usage"));
}

TEST_F(SettingsDrawing, ItemsOfTheAboutTabStandTwelvePointsApart) {
    select(Tab::about);
    EXPECT_THAT(gaps(), ElementsAre(12, 12, 6));
    EXPECT_THAT(headings(), ElementsAre("Privacy & Security"));
    expectAbove("Privacy & Security", find("link")->parentWidget());
}

TEST_F(SettingsDrawing, ThePillsOfACardStandTenPointsApart) {
    select(Tab::customize);
    const auto pills = visible<ThresholdPillWidget>();
    ASSERT_EQ(pills.size(), 8);
    for (qsizetype i = 0; i < pills.size(); i += 2) {
        EXPECT_EQ(pills[i + 1]->x() - pills[i]->geometry().right() - 1, 10);
        EXPECT_EQ(pills[i + 1]->y(), pills[i]->y());
    }
}

TEST_F(SettingsDrawing, APillHasADotOfEightPointsInItsColour) {
    select(Tab::customize);
    const auto pills = visible<ThresholdPillWidget>();
    ASSERT_EQ(pills.size(), 8);
    for (const bool isDark : {false, true}) {
        theme.setDark(isDark);
        catchUp();
        for (qsizetype i = 0; i < pills.size(); ++i) {
            const QColor tint = theme.color(i % 2 == 0 ? Tint::yellow : Tint::red);
            const QImage seen = picture(pills[i]);
            // By how much of each pixel the dot covers; it alone is coloured.
            const auto saturation = [](const QColor& color) {
                return std::max({color.red(), color.green(), color.blue()}) -
                       std::min({color.red(), color.green(), color.blue()});
            };
            double area = 0;
            double width = 0;
            double height = 0;
            QRect covered;
            for (int y = 0; y < seen.height(); ++y) {
                for (int x = 0; x < seen.width(); ++x) {
                    const double share =
                        static_cast<double>(saturation(seen.pixelColor(x, y))) / saturation(tint);
                    area += share > 0.08 ? share : 0;
                    covered |= share > 0.08 ? QRect(x, y, 1, 1) : QRect();
                }
            }
            const QPoint middle = covered.center();
            for (int x = covered.left(); x <= covered.right(); ++x) {
                width += static_cast<double>(saturation(seen.pixelColor(x, middle.y()))) /
                         saturation(tint);
            }
            for (int y = covered.top(); y <= covered.bottom(); ++y) {
                height += static_cast<double>(saturation(seen.pixelColor(middle.x(), y))) /
                          saturation(tint);
            }
            EXPECT_EQ(seen.pixelColor(middle), tint);
            EXPECT_NEAR(width, 8, 0.4);
            EXPECT_NEAR(height, 8, 0.4);
            EXPECT_NEAR(area, 50.3, 2.5);
        }
    }
}

TEST_F(SettingsDrawing, TheLinesBelowTheShortcutHaveTheirSymbolsAndColours) {
    storeShortcut(37, kCommand);
    const auto shown = [this] { return symbols(visible<ShortcutCardWidget>().at(0)); };
    for (const RegistrationState state : {RegistrationState::conflict, RegistrationState::failed}) {
        settings.setShortcutRegistrationState(state);
        catchUp();
        ASSERT_EQ(shown().size(), 1U);
        EXPECT_TRUE(shows(shown()[0], "exclamationmark.triangle.fill", Tint::orange));
    }
    settings.setShortcutRegistrationState(RegistrationState::active);
    catchUp();
    ASSERT_EQ(shown().size(), 1U);
    EXPECT_TRUE(shows(shown()[0], "checkmark.circle.fill", Tint::green));
    // A rejection above the shortcut that stays.
    widget->view().shortcutField().mouseDown();
    widget->view().shortcutField().keyDown(40, 0);
    catchUp();
    ASSERT_EQ(shown().size(), 2U);
    EXPECT_TRUE(shows(shown()[0], "exclamationmark.triangle.fill", Tint::orange));
    EXPECT_TRUE(shows(shown()[1], "checkmark.circle.fill", Tint::green));
    for (const SettingsLabel* label : visible<SettingsLabel>()) {
        if (label->accessibleName().startsWith("Shortcut active: ") ||
            label->accessibleName() == "Shortcut must include Command.") {
            EXPECT_EQ(label->font(), theme.style(FontRole::caption).font());
        }
    }
}

TEST_F(SettingsDrawing, TheRecordersTextIsCentredAndPaleWhileItIsNoShortcut) {
    const auto baseline = [this](const char* text, ColorRole colour) {
        QWidget* field = find("shortcut");
        const QImage seen = picture(field);
        const TextStyle& style = theme.style(FontRole::subheadline);
        const QString shown = QString::fromUtf8(text);
        return baselineOf(seen, style, theme.color(colour), shown,
                          (field->width() - style.width(shown)) / 2, seen.pixelColor(110, 4));
    };
    const auto expectText = [&](const char* text, ColorRole colour) {
        const auto found = baseline(text, colour);
        ASSERT_TRUE(found.has_value()) << text;
        const TextStyle& style = theme.style(FontRole::subheadline);
        const double middle = *found - style.ascent() + style.lineHeight() / 2.0;
        EXPECT_NEAR(middle, find("shortcut")->height() / 2.0, 1) << text;
    };
    for (const bool isDark : {false, true}) {
        theme.setDark(isDark);
        catchUp();
        storeShortcut(-1, 0);
        expectText("Click to record", ColorRole::secondaryText);
        widget->view().shortcutField().mouseDown();
        catchUp();
        expectText("Press ⌘ + key…", ColorRole::secondaryText);
        widget->view().shortcutField().resignFirstResponder();
        storeShortcut(37, kCommand);
        expectText("⌘L", ColorRole::text);
        EXPECT_FALSE(baseline("⌘L", ColorRole::secondaryText).has_value());
    }
}

}  // namespace
}  // namespace tarnwick::qt
