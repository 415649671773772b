// SPDX-License-Identifier: MIT
// The settings window's content as a whole: tabs, keyboard, what stands where.
#include "ui/qt/settings_widget.h"

#include <QPointer>
#include <QScrollBar>
#include <QTest>
#include <QWheelEvent>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/ui/qt/settings_widget_fixture.h"
#include "ui/qt/settings_buttons.h"
#include "ui/qt/settings_content.h"
#include "ui/qt/settings_label.h"
#include "ui/qt/symbols.h"
#include "ui/qt/threshold_slider_widget.h"
#include "ui/qt/widget_view.h"

namespace tarnwick::qt {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class SettingsWidgetTest : public SettingsWidgetFixture {
 protected:
    /// What the keyboard comes by from the first tab on, until it is there again.
    std::vector<std::string> tabOrder() {
        std::vector<std::string> names;
        for (int step = 0; step < 40; ++step) {
            QWidget* focused = QApplication::focusWidget();
            names.push_back(focused->objectName().toStdString());
            key(Qt::Key_Tab);
            if (QApplication::focusWidget() == find("tab.General")) {
                return names;
            }
        }
        return {};
    }
    /// A key that the window system has delivered, shortcuts included.
    void typed(Qt::Key key, Qt::KeyboardModifiers modifiers) {
        QTest::keyClick(widget->windowHandle(), key, modifiers);
        catchUp();
    }
    QString focusName() { return QApplication::focusWidget()->objectName(); }
    QScrollBar* scrollBar() { return visible<SettingsPageWidget>().at(0)->verticalScrollBar(); }
};

TEST_F(SettingsWidgetTest, OpensOnTheFirstTabWhichHasTheKeyboard) {
    EXPECT_EQ(focusName(), "tab.General");
    EXPECT_TRUE(qobject_cast<SettingsTabButton*>(find("tab.General"))->isChecked());
    EXPECT_FALSE(qobject_cast<SettingsTabButton*>(find("tab.Customize"))->isChecked());
    EXPECT_NE(find("mode.advanced"), nullptr);
    // A focus that no key has moved is not marked.
    EXPECT_EQ(find("focusRing"), nullptr);
}

TEST_F(SettingsWidgetTest, TheFirstTabWaitsForTheKeyboardOfAWindowBehindOthers) {
    widget = nullptr;
    SettingsWidget behind(settings, theme, SettingsViewEnvironment{dispatch, layout},
                          [](std::uint32_t) { return std::nullopt; });
    behind.setAttribute(Qt::WA_ShowWithoutActivating);
    behind.show();
    ASSERT_NE(behind.focusWidget(), nullptr);
    EXPECT_EQ(behind.focusWidget()->objectName(), "tab.General");
}

TEST_F(SettingsWidgetTest, TextsHaveTheirOwnColourOnButtonsToo) {
    for (const SettingsLabel* label : visible<SettingsLabel>()) {
        EXPECT_EQ(label->foregroundRole(), QPalette::WindowText) << label->text().toStdString();
    }
}

TEST_F(SettingsWidgetTest, TabsStandSideBySideInTheMiddle) {
    const QWidget* general = find("tab.General");
    const QWidget* customize = find("tab.Customize");
    const QWidget* about = find("tab.About");
    EXPECT_LT(general->geometry().right(), customize->geometry().left());
    EXPECT_LT(customize->geometry().right(), about->geometry().left());
    EXPECT_NEAR(general->geometry().left(), 520 - about->geometry().right() - 1, 1);
}

TEST_F(SettingsWidgetTest, APressOnATabShowsIt) {
    click(find("tab.Customize"));
    EXPECT_EQ(widget->view().selectedTab(), Tab::customize);
    EXPECT_NE(find("reset"), nullptr);
    EXPECT_EQ(find("mode.advanced"), nullptr);
    click(find("tab.About"));
    EXPECT_NE(find("link"), nullptr);
    click(find("tab.General"));
    EXPECT_NE(find("mode.advanced"), nullptr);
}

TEST_F(SettingsWidgetTest, KeysSelectTabs) {
    key(Qt::Key_Tab);
    EXPECT_EQ(focusName(), "tab.Customize");
    EXPECT_EQ(widget->view().selectedTab(), Tab::general);
    key(Qt::Key_Space);
    EXPECT_EQ(widget->view().selectedTab(), Tab::customize);
    key(Qt::Key_Right);
    EXPECT_EQ(widget->view().selectedTab(), Tab::about);
    EXPECT_EQ(focusName(), "tab.About");
    key(Qt::Key_Right);
    EXPECT_EQ(widget->view().selectedTab(), Tab::general);
    key(Qt::Key_Left);
    EXPECT_EQ(widget->view().selectedTab(), Tab::about);
    key(Qt::Key_Backtab);
    key(Qt::Key_Return);
    EXPECT_EQ(widget->view().selectedTab(), Tab::customize);
}

TEST_F(SettingsWidgetTest, TheKeyboardWalksTheGeneralTabInReadingOrder) {
    EXPECT_THAT(tabOrder(), ElementsAre("tab.General", "tab.Customize", "tab.About",
                                        "mode.iconOnly", "mode.advanced", "switch", "shortcut"));
    storeShortcut(37, kCommand);
    EXPECT_THAT(tabOrder(),
                ElementsAre("tab.General", "tab.Customize", "tab.About", "mode.iconOnly",
                            "mode.advanced", "switch", "shortcut", "clear"));
}

TEST_F(SettingsWidgetTest, TheKeyboardWalksTheOtherTabsInReadingOrder) {
    select(Tab::customize);
    EXPECT_THAT(tabOrder(),
                ElementsAre("tab.General", "tab.Customize", "tab.About", "switch", "thumb.normal",
                            "thumb.high", "thumb.normal", "thumb.high", "thumb.normal",
                            "thumb.high", "thumb.normal", "thumb.high", "reset"));
    select(Tab::about);
    EXPECT_THAT(tabOrder(),
                ElementsAre("tab.General", "tab.Customize", "tab.About", "link", "link"));
}

TEST_F(SettingsWidgetTest, ThumbsAreReachedCardByCard) {
    select(Tab::customize);
    for (int step = 0; step < 4; ++step) {
        key(Qt::Key_Tab);
    }
    for (const char* card : {"CPU Usage", "GPU Usage", "Memory Usage", "Storage Usage"}) {
        for (const char* thumb : {"thumb.normal", "thumb.high"}) {
            EXPECT_EQ(focusName(), thumb);
            EXPECT_TRUE(find(card)->isAncestorOf(QApplication::focusWidget())) << card;
            key(Qt::Key_Tab);
        }
    }
}

TEST_F(SettingsWidgetTest, WhatTheKeyboardComesToIsMarkedAndScrolledIntoView) {
    select(Tab::customize);
    EXPECT_EQ(scrollBar()->value(), 0);
    for (int step = 0; step < 12; ++step) {
        key(Qt::Key_Tab);
        QWidget* focused = QApplication::focusWidget();
        auto* ring = find("focusRing");
        ASSERT_NE(ring, nullptr) << step;
        const QRect place(focused->mapTo(widget.get(), QPoint()), focused->size());
        const QRect mark(ring->mapTo(widget.get(), QPoint()), ring->size());
        EXPECT_TRUE(mark.contains(place.center()));
        EXPECT_TRUE(widget->rect().contains(place)) << focusName().toStdString();
        EXPECT_EQ(visible<SettingsFocusRing>().size(), 1);
    }
    EXPECT_EQ(focusName(), "reset");
    EXPECT_GT(scrollBar()->value(), 0);
    visible<ThresholdThumbWidget>().at(7)->setFocus(Qt::MouseFocusReason);
    EXPECT_EQ(find("focusRing"), nullptr);
}

TEST_F(SettingsWidgetTest, WhatAssistiveTechnologyGivesTheKeyboardIsScrolledIntoView) {
    select(Tab::customize);
    QWidget* last = visible<ThresholdThumbWidget>().at(7);
    last->setFocus(Qt::OtherFocusReason);
    catchUp();
    EXPECT_TRUE(widget->rect().contains(QRect(last->mapTo(widget.get(), QPoint()), last->size())));
}

TEST_F(SettingsWidgetTest, AShortcutLeadsToTheNextTabFromAnywhere) {
    find("switch")->setFocus(Qt::TabFocusReason);
    typed(Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_EQ(widget->view().selectedTab(), Tab::customize);
    EXPECT_EQ(focusName(), "tab.Customize");
    typed(Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(focusName(), "tab.General");
    typed(Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(widget->view().selectedTab(), Tab::about);
}

TEST_F(SettingsWidgetTest, EachTabScrollsByItself) {
    select(Tab::customize);
    ASSERT_GT(scrollBar()->maximum(), 100);
    scrollBar()->setValue(90);
    select(Tab::general);
    EXPECT_EQ(scrollBar()->value(), 0);
    scrollBar()->setValue(7);
    select(Tab::customize);
    EXPECT_EQ(scrollBar()->value(), 90);
    select(Tab::about);
    EXPECT_EQ(scrollBar()->maximum(), 0);
}

TEST_F(SettingsWidgetTest, APageIsMadeWhenItIsSelectedFirst) {
    EXPECT_EQ(widget->findChildren<SettingsPageWidget*>().size(), 1);
    select(Tab::customize);
    select(Tab::general);
    select(Tab::customize);
    EXPECT_EQ(widget->findChildren<SettingsPageWidget*>().size(), 2);
}

TEST_F(SettingsWidgetTest, AWheelOverASliderIsThePages) {
    select(Tab::customize);
    QWidget* slider = visible<ThresholdSliderWidget>().at(0);
    const QPointF position = slider->rect().center();
    QWheelEvent event(position, slider->mapToGlobal(position), QPoint(), QPoint(0, -120),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(slider, &event);
    EXPECT_FALSE(event.isAccepted());
    EXPECT_EQ(settings.cpuNormal(), 80);
}

TEST_F(SettingsWidgetTest, EverySymbolIsDrawn) {
    for (const TabItem& item : kTabs) {
        EXPECT_TRUE(hasSymbol(item.icon)) << item.icon;
    }
    for (const FeatureRow& row : FeatureList::kRows) {
        EXPECT_TRUE(hasSymbol(row.icon)) << row.icon;
    }
    for (const ThresholdEditor& editor : kThresholdEditors) {
        EXPECT_TRUE(hasSymbol(editor.icon)) << editor.icon;
    }
    for (const MenuBarDisplayMode mode : kMenuBarDisplayModes) {
        for (const MenuBarDisplayMode selection : kMenuBarDisplayModes) {
            EXPECT_TRUE(hasSymbol(DisplayModeCard{mode, selection}.radioIcon()));
        }
        EXPECT_TRUE(hasSymbol(DisplayModePreview{mode}.icon()));
    }
}

/// Sets the application's font and puts the old one back.
class ScaledDesktopFont {
 public:
    explicit ScaledDesktopFont(double factor) : old_(QApplication::font()) {
        QFont font = old_;
        font.setPointSizeF(font.pointSizeF() * factor);
        QApplication::setFont(font);
    }
    ScaledDesktopFont(const ScaledDesktopFont&) = delete;
    ScaledDesktopFont& operator=(const ScaledDesktopFont&) = delete;
    ~ScaledDesktopFont() { QApplication::setFont(old_); }

 private:
    QFont old_;
};

class SettingsFonts : public SettingsWidgetTest, public ::testing::WithParamInterface<double> {};

TEST_P(SettingsFonts, NoTextIsCut) {
    storeShortcut(37, kCommand);
    settings.setShortcutRegistrationState(RegistrationState::conflict);
    // Also pages that were made before.
    for (const TabItem& item : kTabs) {
        select(item.tab);
    }
    const ScaledDesktopFont font(GetParam());
    for (const TabItem& item : kTabs) {
        select(item.tab);
        catchUp();
        for (const SettingsLabel* label : visible<SettingsLabel>()) {
            EXPECT_GE(label->height(), label->heightForWidth(label->width()))
                << label->text().toStdString();
            EXPECT_LE(label->mapTo(widget.get(), QPoint(label->width(), 0)).x(), 500)
                << label->text().toStdString();
        }
        for (const SettingsButton* button : visible<SettingsButton>()) {
            EXPECT_GE(button->width(), button->sizeHint().width());
        }
        for (const SettingsTabButton* button : visible<SettingsTabButton>()) {
            EXPECT_EQ(button->size(), button->sizeHint());
            EXPECT_TRUE(button->parentWidget()->rect().contains(button->geometry()));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(, SettingsFonts, ::testing::Values(1.0, 1.5, 2.0), [](const auto& row) {
    return std::to_string(static_cast<int>(row.param * 100)) + "Percent";
});

TEST_F(SettingsWidgetTest, GoingDarkChangesTheTexts) {
    const auto* label = visible<SettingsLabel>().at(0);
    const QColor light = label->palette().color(QPalette::WindowText);
    EXPECT_EQ(light, theme.color(ColorRole::secondaryText));
    theme.setDark(true);
    settle();
    EXPECT_EQ(label->palette().color(QPalette::WindowText), theme.color(ColorRole::secondaryText));
    EXPECT_NE(label->palette().color(QPalette::WindowText), light);
}

TEST_F(SettingsWidgetTest, AboutSaysWhatTheProgramIs) {
    select(Tab::about);
    std::vector<std::string> texts;
    for (const SettingsLabel* label : visible<SettingsLabel>()) {
        texts.push_back(label->accessibleName().toStdString());
    }
    EXPECT_THAT(texts, ElementsAre("Tarnwick", "Version", "1.4 (212)", "Private by design",
                                   "Quietly in the background", "Resource conscious",
                                   "Privacy & Security", std::string(PrivacyNote::kText)));
}

TEST_F(SettingsWidgetTest, TheGeneralTabOfAFreshStoreFitsIntoItsWindow) {
    widget->resize(520, 500);
    settle();
    const auto* page = qobject_cast<QScrollArea*>(find("page")->parentWidget()->parentWidget());
    ASSERT_NE(page, nullptr);
    EXPECT_EQ(page->verticalScrollBar()->maximum(), 0);
}

TEST_F(SettingsWidgetTest, CaptionsBreakNeitherWithinACombinationNorBeforeTheirLastWord) {
    bool isThere = false;
    for (const SettingsLabel* label : visible<SettingsLabel>()) {
        const QString text = label->text();
        EXPECT_FALSE(text.contains(" +") || text.contains("+ ")) << text.toStdString();
        if (text.startsWith("Show only")) {
            EXPECT_TRUE(text.endsWith(QString("menu") + QChar::Nbsp + "bar."));
            // Screen readers and tests have the text as it is.
            EXPECT_EQ(label->accessibleName(), "Show only the status icon in the menu bar.");
            isThere = true;
        }
    }
    EXPECT_TRUE(isThere);
}

TEST_F(SettingsWidgetTest, EscapeClosesTheWindow) {
    typed(Qt::Key_Escape, Qt::NoModifier);
    EXPECT_FALSE(widget->isVisible());
}

TEST_F(SettingsWidgetTest, TheKeysToCloseAWindowCloseIt) {
    typed(Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(widget->isVisible());
}

TEST_F(SettingsWidgetTest, TheVersionCanBeCopied) {
    select(Tab::about);
    auto* version = widget->findChild<QLabel*>("version");
    ASSERT_NE(version, nullptr);
    QTest::mouseDClick(version, Qt::LeftButton, Qt::NoModifier,
                       QPoint(version->width() - 4, version->height() / 2));
    EXPECT_TRUE(version->hasSelectedText());
    // Other labels are no place to select anything.
    EXPECT_TRUE(
        find("page")->findChild<SettingsLabel*>()->testAttribute(Qt::WA_TransparentForMouseEvents));
}

TEST_F(SettingsWidgetTest, LinksLeadToTheMaker) {
    select(Tab::about);
    const auto links = visible<SettingsButton>();
    ASSERT_EQ(links.size(), 2);
    EXPECT_EQ(links[0]->text(), "Learn More");
    EXPECT_EQ(links[1]->text(), "More from Brantlow");
    for (SettingsButton* link : links) {
        click(link);
    }
    EXPECT_THAT(opened, ElementsAre(std::string(kMakerAddress), std::string(kMakerAddress)));
}

TEST_F(SettingsWidgetTest, GoesInTheMiddleOfARecording) {
    widget->view().shortcutField().mouseDown();
    ASSERT_TRUE(widget->view().shortcutField().isRecording());
    settings.setCPUHigh(95);
    widget.reset();
    // The field no longer waits for a press.
    QWidget other;
    other.show();
    mouse(&other, QEvent::MouseButtonPress, QPointF(1, 1));
    catchUp();
    EXPECT_EQ(dispatch.mainPending(), 0U);
}

TEST_F(SettingsWidgetTest, GoesInTheMiddleOfADrag) {
    select(Tab::customize);
    auto* slider = visible<ThresholdSliderWidget>().at(0);
    mouse(slider, QEvent::MouseButtonPress,
          QPointF(widget->view()
                      .slider(JudgedMetric::cpu)
                      .thumbCenter(DualThresholdSlider::Thumb::normal, slider->width()),
                  slider->height() / 2));
    const QPointer<QWidget> page = find("page");
    ASSERT_NE(page, nullptr);
    settings.setCPUHigh(95);
    widget.reset();
    EXPECT_EQ(page, nullptr);
    catchUp();
    EXPECT_EQ(dispatch.mainPending(), 0U);
}

TEST_F(SettingsWidgetTest, IsTheContentOfAWindow) {
    const auto content =
        makeSettingsContent(settings, theme, {SettingsViewEnvironment{dispatch, layout}, {}});
    auto* made = dynamic_cast<WidgetView&>(*content).widget();
    EXPECT_NE(qobject_cast<SettingsWidget*>(made), nullptr);
}

TEST_F(SettingsWidgetTest, AWindowThatComesBackScrollsNowhere) {
    select(Tab::customize);
    find("switch")->setFocus(Qt::TabFocusReason);
    scrollBar()->setValue(scrollBar()->maximum());
    const int place = scrollBar()->value();
    QWidget other;
    other.show();
    other.activateWindow();
    settle();
    ASSERT_EQ(find("switch")->hasFocus(), false);
    widget->activateWindow();
    settle();
    EXPECT_TRUE(find("switch")->hasFocus());
    EXPECT_EQ(scrollBar()->value(), place);
}

TEST_F(SettingsWidgetTest, TwoStepsInOneTurnAreTwoTabs) {
    for (int press = 0; press < 2; ++press) {
        QKeyEvent event(QEvent::KeyPress, Qt::Key_Right, Qt::NoModifier);
        QApplication::sendEvent(QApplication::focusWidget(), &event);
    }
    catchUp();
    EXPECT_EQ(widget->view().selectedTab(), Tab::about);
    EXPECT_EQ(focusName(), "tab.About");
}

TEST_F(SettingsWidgetTest, TheMarkFollowsWhatTheFocusedControlStandsOn) {
    storeShortcut(37, kCommand);
    find("clear")->setFocus(Qt::TabFocusReason);
    QWidget* ring = find("focusRing");
    ASSERT_NE(ring, nullptr);
    QWidget* card = find("clear")->parentWidget();
    const int before = ring->y();
    card->move(card->x(), card->y() + 9);
    EXPECT_EQ(ring->y(), before + 9);
}

}  // namespace
}  // namespace tarnwick::qt
