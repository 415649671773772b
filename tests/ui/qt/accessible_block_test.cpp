// SPDX-License-Identifier: MIT
#include "ui/qt/accessible_block.h"

#include <QAccessible>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/ui/panel/detail_fixtures.h"
#include "tests/ui/panel/home_fixtures.h"
#include "tests/ui/qt/accessible_events.h"
#include "tests/ui/qt/settle.h"
#include "ui/qt/button_widget.h"
#include "ui/qt/panel_popup.h"
#include "ui/qt/panel_view.h"
#include "ui/qt/top_apps_widget.h"

namespace tarnwick::qt {
namespace {

class AccessibleBlockTest : public ::testing::Test {
 protected:
    void show(const Page& page) {
        view.setPage(page);
        settle();
    }
    QAccessibleInterface* find(const char* name) const {
        return QAccessible::queryAccessibleInterface(view.findChild<QWidget*>(name));
    }

    Theme theme;
    tarnwick::testing::PlainByteCountFormatter formatter;
    PanelView view{theme, [](PanelAction) {}, nullptr};
};

TEST_F(AccessibleBlockTest, ABarHasAValueAndADescription) {
    HomePageInputs inputs = tarnwick::testing::calmMachine();
    show(homePage(inputs, formatter));
    QAccessibleInterface* bar = find("bar.cpu");
    // No progress bar: screen readers would say its value every ten seconds, without its name.
    EXPECT_EQ(bar->role(), QAccessible::StaticText);
    EXPECT_EQ(bar->text(QAccessible::Name), "CPU, 42.0%, normal");
    EXPECT_EQ(bar->text(QAccessible::Description), "CPU, 42.0%, normal");
    ASSERT_NE(bar->valueInterface(), nullptr);
    EXPECT_EQ(bar->valueInterface()->currentValue().toDouble(), 42);
    EXPECT_EQ(bar->valueInterface()->minimumValue().toDouble(), 0);
    EXPECT_EQ(bar->valueInterface()->maximumValue().toDouble(), 100);

    inputs.cpuInfo.usagePercentage = 1e300;
    show(homePage(inputs, formatter));
    EXPECT_EQ(bar->valueInterface()->currentValue().toDouble(), 100);
    EXPECT_EQ(bar->text(QAccessible::Description), "CPU, 100.0%, high");
    // It cannot be set.
    bar->valueInterface()->setCurrentValue(5);
    EXPECT_EQ(bar->valueInterface()->currentValue().toDouble(), 100);
}

TEST_F(AccessibleBlockTest, ABarWithoutDataHasNoValue) {
    HomePageInputs inputs = tarnwick::testing::calmMachine();
    inputs.storageInfo.clear();
    show(homePage(inputs, formatter));
    QAccessibleInterface* bar = find("bar.storage");
    EXPECT_EQ(bar->text(QAccessible::Name), "Storage (Main Disk), Loading...");
    EXPECT_EQ(bar->valueInterface(), nullptr);
}

TEST_F(AccessibleBlockTest, ARowThatComesBetweenIsReadThere) {
    const auto row = [](const char* id) { return PageItem{id, 0, GroupTitle{id}}; };
    show({row("first"), row("last")});
    show({row("first"), row("between"), row("last")});
    std::vector<std::string> names;
    for (const BlockWidget* block : view.findChildren<BlockWidget*>(Qt::FindDirectChildrenOnly)) {
        names.push_back(block->objectName().toStdString());
    }
    EXPECT_EQ(names, (std::vector<std::string>{"first", "between", "last"}));
}

TEST_F(AccessibleBlockTest, ASparklineHasItsLatestValueAndADescription) {
    view.setPage({{"trend", 0, TrendRow{"Memory", "84%", {80, 90, 84.5}, Tint::yellow}},
                  {"none", 0, TrendRow{"CPU", "0%", {}, Tint::green}}});
    settle();
    QAccessibleInterface* trend = find("trend");
    EXPECT_EQ(trend->role(), QAccessible::Chart);
    EXPECT_EQ(trend->text(QAccessible::Description), "Memory, 84%, elevated");
    ASSERT_NE(trend->valueInterface(), nullptr);
    EXPECT_EQ(trend->valueInterface()->currentValue().toDouble(), 84.5);
    EXPECT_EQ(find("none")->valueInterface(), nullptr);
    EXPECT_EQ(find("none")->text(QAccessible::Name), "CPU, 0%, normal");
}

TEST_F(AccessibleBlockTest, EveryBlockHasItsRole) {
    HomePageInputs inputs = tarnwick::testing::calmMachine();
    inputs.cpuInfo.usagePercentage = 99;
    show(homePage(inputs, formatter));
    EXPECT_EQ(find("header")->role(), QAccessible::Heading);
    EXPECT_EQ(find("uptime")->role(), QAccessible::StaticText);
    EXPECT_EQ(find("battery")->role(), QAccessible::Heading);
    EXPECT_EQ(find("battery.cycles")->role(), QAccessible::StaticText);
    EXPECT_EQ(find("battery.cycles")->valueInterface(), nullptr);
    EXPECT_EQ(find("navigation.memory")->role(), QAccessible::Grouping);
    EXPECT_EQ(find("button.quit")->role(), QAccessible::Button);
    EXPECT_EQ(find("divider")->role(), QAccessible::Separator);
    QAccessibleInterface* section = find("topCPU");
    EXPECT_EQ(section->role(), QAccessible::List);
    EXPECT_EQ(section->text(QAccessible::Name), "Top CPU Apps");
    ASSERT_EQ(section->childCount(), 4);
    EXPECT_EQ(section->child(0)->role(), QAccessible::Heading);
    EXPECT_EQ(section->child(0)->text(QAccessible::Name), "Top CPU Apps");
    EXPECT_EQ(section->child(1)->role(), QAccessible::ListItem);
    EXPECT_EQ(section->child(1)->text(QAccessible::Name), "Firefox, 112.5%");

    show(performanceDetailPage(tarnwick::testing::performanceDetailStates().front().inputs,
                               formatter));
    EXPECT_EQ(find("trends")->role(), QAccessible::Heading);
    EXPECT_EQ(find("header")->text(QAccessible::Name), "Performance");
}

TEST_F(AccessibleBlockTest, ThePanelIsADialogWithAName) {
    PanelPopup popup(
        theme, homePage(tarnwick::testing::calmMachine(), formatter), [](PanelAction) {},
        PanelSurface::popUp, true);
    QAccessibleInterface* panel = QAccessible::queryAccessibleInterface(&popup);
    EXPECT_EQ(panel->role(), QAccessible::Dialog);
    EXPECT_EQ(panel->text(QAccessible::Name), "Tarnwick");
}

TEST_F(AccessibleBlockTest, ThePanelHasTheFocusWhenItOpensAndTellsSo) {
    PanelPopup popup(
        theme, homePage(tarnwick::testing::calmMachine(), formatter), [](PanelAction) {},
        PanelSurface::popUp, true);
    const AccessibleEvents events;
    popup.popUp(QRect(400, 0, 20, 20));
    settle();
    EXPECT_GE(events.count(&popup, QAccessible::Focus), 1);
    const QAccessible::State state = QAccessible::queryAccessibleInterface(&popup)->state();
    EXPECT_TRUE(state.focusable);
    EXPECT_TRUE(state.focused);
    popup.hide();
}

TEST_F(AccessibleBlockTest, ANewValueIsAnnouncedAndANewTextAloneIsNot) {
    const AccessibleEvents events;
    const auto bar = [](double value, const char* detail, Tint tint) {
        return Page{{"bar", 0, UsageBar{"Storage", "internaldrive", value, detail, tint}}};
    };
    show(bar(40, "a", Tint::green));
    const auto* widget = view.findChild<QWidget*>("bar");
    const auto told = [&] { return events.count(widget, QAccessible::ValueChanged); };
    const int before = told();
    show(bar(40, "b", Tint::green));
    show(bar(40, "b", Tint::red));
    EXPECT_EQ(told(), before);
    show(bar(41, "b", Tint::red));
    EXPECT_EQ(told(), before + 1);
    // Nothing is known any more, and nothing is not a share of 0.
    show(bar(0, "Loading...", Tint::gray));
    EXPECT_EQ(told(), before + 1);
    show(bar(41, "b", Tint::red));
    EXPECT_EQ(told(), before + 2);
}

TEST_F(AccessibleBlockTest, AnotherDescriptionIsAnnounced) {
    HomePageInputs inputs = tarnwick::testing::calmMachine();
    show(homePage(inputs, formatter));
    const AccessibleEvents events;
    const auto told = [&](const char* name) {
        return events.count(view.findChild<QWidget*>(name), QAccessible::DescriptionChanged);
    };
    show(homePage(inputs, formatter));
    EXPECT_EQ(told("bar.cpu"), 0);
    inputs.cpuInfo.usagePercentage = 99;
    show(homePage(inputs, formatter));
    EXPECT_EQ(told("bar.cpu"), 1);
    EXPECT_EQ(told("bar.memory"), 0);
}

TEST_F(AccessibleBlockTest, EveryButtonOffersToBePressed) {
    show(homePage(tarnwick::testing::calmMachine(), formatter));
    for (ButtonWidget* button : view.findChildren<ButtonWidget*>()) {
        QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(button);
        EXPECT_EQ(interface->role(), QAccessible::Button);
        ASSERT_NE(interface->actionInterface(), nullptr);
        // What is disabled cannot be pressed.
        EXPECT_EQ(interface->actionInterface()->actionNames().contains(
                      QAccessibleActionInterface::pressAction()),
                  button->isEnabled());
    }
}

}  // namespace
}  // namespace tarnwick::qt
