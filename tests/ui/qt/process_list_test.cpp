// SPDX-License-Identifier: MIT
// Lists of processes, and what they do under the pointer.
#include <QApplication>
#include <QHelpEvent>
#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/ui/panel/detail_fixtures.h"
#include "tests/ui/panel/home_fixtures.h"
#include "tests/ui/qt/paint_counter.h"
#include "tests/ui/qt/pointer.h"
#include "tests/ui/qt/settle.h"
#include "ui/qt/panel_view.h"
#include "ui/qt/tool_tip.h"
#include "ui/qt/top_apps_widget.h"

namespace tarnwick::qt {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class ProcessListTest : public ::testing::Test {
 protected:
    ProcessListTest() {
        inputs.memoryInfo.total = 100;
        movePointer(kElsewhere);
    }
    ~ProcessListTest() override { movePointer(kElsewhere); }

    void show(const std::vector<AppProcessInfo>& processes) {
        inputs.topMemoryProcesses = processes;
        view.setPage(memoryDetailPage(inputs, formatter));
        view.show();
        settle();
    }
    QWidget* list() const { return view.findChild<QWidget*>("topMemory.list"); }
    std::vector<ListLine*> lines() const {
        const QList<ListLine*> found = list()->findChildren<ListLine*>();
        std::vector<ListLine*> all(found.begin(), found.end());
        std::sort(all.begin(), all.end(),
                  [](const QWidget* a, const QWidget* b) { return a->y() < b->y(); });
        return all;
    }
    std::vector<std::string> texts() const {
        std::vector<std::string> all;
        for (const ListLine* line : lines()) {
            all.push_back(line->accessibleName().toStdString());
        }
        return all;
    }
    void enter() const { movePointer(list()->mapToGlobal(list()->rect().center())); }
    static void leave() { movePointer(kElsewhere); }
    static AppProcessInfo process(int id, std::uint64_t bytes) {
        return {.id = id, .name = "app " + std::to_string(id), .memoryUsage = bytes};
    }

    Theme theme;
    testing::PlainByteCountFormatter formatter;
    MemoryDetailInputs inputs;
    PanelView view{theme, [](PanelAction) {}, nullptr};
};

TEST_F(ProcessListTest, ReadsARowAsNameAndFigure) {
    show({process(1, 50), process(2, 25)});
    EXPECT_THAT(texts(), ElementsAre("app 1, 50.0% (50 bytes)", "app 2, 25.0% (25 bytes)"));
    show({});
    EXPECT_THAT(texts(), ElementsAre("Collecting data..."));
}

TEST_F(ProcessListTest, WithoutProcessesAListSaysThatItIsCollectingThem) {
    const TopAppsSection section{"Top CPU Apps", {}, [](const AppProcessInfo&) { return ""; }};
    const TopAppsList list{{}, 0, section.valueText};
    view.setPage({{"section", 0, section}, {"list", 0, list}});
    view.show();
    settle();
    const auto linesOf = [this](const char* name) {
        return view.findChild<QWidget*>(name)->findChildren<ListLine*>();
    };
    ASSERT_THAT(linesOf("section"), SizeIs(2));
    ASSERT_THAT(linesOf("list"), SizeIs(1));
    EXPECT_TRUE(linesOf("section")[0]->content() == rowContent(GroupTitle{"Top CPU Apps"}, theme));
    for (const ListLine* line : {linesOf("section")[1], linesOf("list")[0]}) {
        EXPECT_TRUE(line->content() == rowContent(CaptionText{"Collecting data..."}, theme));
        EXPECT_EQ(line->accessibleName(), "Collecting data...");
        EXPECT_TRUE(line->isVisible());
    }
}

TEST_F(ProcessListTest, RowsAreIndentedAndReachTheOtherEdge) {
    view.setPage(
        {{"list", 0, TopAppsList{{process(1, 1), process(2, 1)}, 12, [](const AppProcessInfo&) {
                                     return "1%";
                                 }}}});
    view.show();
    settle();
    const QWidget* indented = view.findChild<QWidget*>("list");
    ASSERT_THAT(indented->findChildren<ListLine*>(), SizeIs(2));
    for (const ListLine* line : indented->findChildren<ListLine*>()) {
        EXPECT_EQ(line->x(), 12);
        EXPECT_EQ(line->geometry().right(), indented->rect().right());
    }
}

TEST_F(ProcessListTest, FollowsTheLatestOrder) {
    show({process(1, 50), process(2, 25)});
    show({process(2, 60), process(1, 40), process(3, 1)});
    EXPECT_THAT(texts(), ElementsAre("app 2, 60.0% (60 bytes)", "app 1, 40.0% (40 bytes)",
                                     "app 3, 1.0% (1 bytes)"));
}

TEST_F(ProcessListTest, RowsStayUnderThePointerAndTheirFiguresAreNew) {
    show({process(1, 50), process(2, 25), process(3, 10)});
    enter();
    show({process(2, 60), process(3, 30), process(4, 5)});
    EXPECT_THAT(texts(), ElementsAre("app 4, 5.0% (5 bytes)", "app 2, 60.0% (60 bytes)",
                                     "app 3, 30.0% (30 bytes)"));
    leave();
    EXPECT_THAT(texts(), ElementsAre("app 2, 60.0% (60 bytes)", "app 3, 30.0% (30 bytes)",
                                     "app 4, 5.0% (5 bytes)"));
}

TEST_F(ProcessListTest, APointerThatLiesWhereTheListAppearsHoldsNothing) {
    show({process(1, 50), process(2, 25), process(3, 10)});
    const QPoint place = list()->mapToGlobal(list()->rect().center());
    view.setPage({});
    movePointer(place);
    show({process(1, 50), process(2, 25), process(3, 10)});
    ASSERT_TRUE(list()->geometry().contains(view.mapFromGlobal(place)));
    // A window that appears is told, too, where the pointer is.
    movePointer(place);
    show({process(2, 60), process(3, 30), process(1, 5)});
    EXPECT_THAT(texts(), ElementsAre("app 2, 60.0% (60 bytes)", "app 3, 30.0% (30 bytes)",
                                     "app 1, 5.0% (5 bytes)"));
    movePointer(place + QPoint(1, 0));
    show({process(1, 50), process(2, 25), process(3, 10)});
    EXPECT_THAT(texts(), ElementsAre("app 2, 25.0% (25 bytes)", "app 3, 10.0% (10 bytes)",
                                     "app 1, 50.0% (50 bytes)"));
}

TEST_F(ProcessListTest, ARowWhoseProcessHasGoneIsEmptyUntilThePointerLeaves) {
    show({process(1, 50), process(2, 25), process(3, 10)});
    const int height = view.height();
    const int second = lines()[1]->y();
    enter();
    show({process(2, 60)});
    EXPECT_THAT(texts(), ElementsAre("", "app 2, 60.0% (60 bytes)", ""));
    EXPECT_EQ(lines()[1]->y(), second);
    // Empty lines are hidden, also from screen readers.
    EXPECT_FALSE(lines()[0]->isVisible());
    EXPECT_TRUE(lines()[1]->isVisible());
    EXPECT_FALSE(lines()[2]->isVisible());
    EXPECT_EQ(view.height(), height);
    leave();
    EXPECT_THAT(texts(), ElementsAre("app 2, 60.0% (60 bytes)"));
    EXPECT_LT(view.height(), height);
    EXPECT_EQ(view.height(), list()->geometry().bottom() + 1 + 16);
}

TEST_F(ProcessListTest, ThePointerElsewhereHoldsNothing) {
    show({process(1, 50), process(2, 25)});
    enter();
    leave();
    show({process(2, 60), process(1, 40)});
    EXPECT_THAT(texts(), ElementsAre("app 2, 60.0% (60 bytes)", "app 1, 40.0% (40 bytes)"));
}

TEST_F(ProcessListTest, LeavingChangesNothingWhenTheOrderIsTheLatest) {
    show({process(1, 50), process(2, 25)});
    enter();
    PaintCounter counter;
    leave();
    EXPECT_THAT(counter.paints, IsEmpty());
}

TEST_F(ProcessListTest, OnlyTheRowsThatChangedArePainted) {
    show({process(1, 50), process(2, 25), process(3, 10)});
    PaintCounter counter;
    show({process(1, 50), process(2, 30), process(3, 10)});
    const QRect row = lines()[1]->geometry();
    EXPECT_EQ(counter.paints["tarnwick::qt::ListLine"], 1);
    EXPECT_EQ(counter.regions["topMemory.list"].boundingRect(), row);
}

TEST_F(ProcessListTest, ALongNameIsWholeInTheToolTip) {
    AppProcessInfo endless = process(1, 50);
    endless.name = std::string(300, 'W');
    show({process(2, 60), endless});
    const auto tip = [](QWidget* line) {
        const QPoint position = line->rect().center();
        QHelpEvent help(QEvent::ToolTip, position, line->mapToGlobal(position));
        QApplication::sendEvent(line, &help);
        return shownToolTip();
    };
    EXPECT_TRUE(tip(lines()[1]).contains(QString(300, 'W')));
    EXPECT_EQ(lines()[1]->accessibleName(), QString(300, 'W') + ", 50.0% (50 bytes)");
    // Beside its own line, with what is told of that process alone.
    EXPECT_TRUE(tip(lines()[0]).startsWith("Process 2"));
    EXPECT_EQ(lines()[0]->accessibleDescription(), shownToolTip());
    EXPECT_TRUE(tip(lines()[1]).contains("\nProcess 1"));
    hideToolTip();
}

TEST_F(ProcessListTest, TheSectionOfTheHomePageHoldsItsRowsToo) {
    HomePageInputs home = testing::calmMachine();
    home.cpuInfo.usagePercentage = 99;
    const auto showHome = [&](const std::vector<AppProcessInfo>& processes) {
        home.topCPUProcesses = processes;
        view.setPage(homePage(home, formatter));
        view.show();
        settle();
    };
    showHome({{.id = 1, .name = "a", .cpuUsage = 20}, {.id = 2, .name = "b", .cpuUsage = 10}});
    QWidget* section = view.findChild<QWidget*>("topCPU");
    EXPECT_EQ(section->accessibleName(), "Top CPU Apps");
    movePointer(section->mapToGlobal(section->rect().center()));
    showHome({{.id = 2, .name = "b", .cpuUsage = 90}, {.id = 1, .name = "a", .cpuUsage = 30}});
    const QList<ListLine*> found = section->findChildren<ListLine*>();
    ASSERT_THAT(found, SizeIs(3));
    EXPECT_EQ(found[0]->content().leading.text, "Top CPU Apps");
    EXPECT_EQ(found[0]->accessibleName(), "Top CPU Apps");
    EXPECT_EQ(found[1]->accessibleName(), "a, 30.0%");
    EXPECT_EQ(found[2]->accessibleName(), "b, 90.0%");
}

}  // namespace
}  // namespace tarnwick::qt
