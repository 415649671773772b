// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/tray/embedded_tray.h"

#include <QAction>
#include <QApplication>
#include <QSystemTrayIcon>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/platform/linux/desktop/private_bus.h"

namespace tarnwick::platform {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using testing::waitUntil;

class EmbeddedTrayTest : public ::testing::Test {
 protected:
    IconPainter painter() {
        return [this](const std::string& symbol, Tint, bool, int pixels) {
            drawn.push_back(symbol);
            QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
            image.fill(Qt::red);
            return image;
        };
    }

    /// The menu of the item, which is the only one.
    static QMenu* menu() {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (auto* found = qobject_cast<QMenu*>(widget)) {
                return found;
            }
        }
        return nullptr;
    }

    /// Symbols that were asked for since they were cleared.
    std::vector<std::string> drawn;
    std::vector<std::string> chosen;
    EmbeddedTray tray{{{.label = "First", .chosen = [this] { chosen.push_back("first"); }},
                       {.label = {}, .chosen = nullptr},
                       {.label = "Last", .chosen = [this] { chosen.push_back("last"); }}},
                      [] {},
                      [] {},
                      [] {}};
};

TEST_F(EmbeddedTrayTest, DrawsAnIconOnceHoweverOftenItIsSet) {
    const ItemIcon green{.symbol = "check", .tint = Tint::green};
    tray.setIcon(painter(), green);
    EXPECT_THAT(drawn, Not(IsEmpty()));
    EXPECT_THAT(drawn, Each("check"));
    drawn.clear();
    tray.setIcon(painter(), green);
    EXPECT_THAT(drawn, IsEmpty());
}

TEST_F(EmbeddedTrayTest, DrawsTheIconAnewWhenAnyPartOfItDiffers) {
    tray.setIcon(painter(), {.symbol = "check", .tint = Tint::green});
    for (const ItemIcon& icon : {ItemIcon{.symbol = "triangle", .tint = Tint::green},
                                 ItemIcon{.symbol = "triangle", .tint = Tint::red},
                                 ItemIcon{.symbol = "triangle", .tint = Tint::red, .dark = true},
                                 ItemIcon{.symbol = "check", .tint = Tint::green}}) {
        drawn.clear();
        tray.setIcon(painter(), icon);
        EXPECT_THAT(drawn, Not(IsEmpty()));
    }
}

TEST_F(EmbeddedTrayTest, IsNowhereWithoutATray) {
    tray.setIcon(painter(), {.symbol = "check"});
    tray.setText("Tarnwick status: CPU 12%");
    EXPECT_FALSE(tray.inTray());
    EXPECT_EQ(tray.place(), std::nullopt);
}

TEST(EmbeddedTrayPlace, IsNoneWhileTheTrayHasTheWindowInTheCorner) {
    EXPECT_FALSE(isPlaced(QRect(0, 0, 22, 22)));
    EXPECT_TRUE(isPlaced(QRect(0, 4, 22, 22)));
    EXPECT_TRUE(isPlaced(QRect(1200, 0, 22, 22)));
}

TEST_F(EmbeddedTrayTest, HasAMenuOfTheEntries) {
    ASSERT_NE(menu(), nullptr);
    const QList<QAction*> actions = menu()->actions();
    ASSERT_EQ(actions.size(), 3);
    EXPECT_EQ(actions[0]->text(), "First");
    EXPECT_TRUE(actions[1]->isSeparator());
    actions[2]->trigger();
    EXPECT_TRUE(waitUntil([&] { return !chosen.empty(); }));
    EXPECT_THAT(chosen, ElementsAre("last"));
}

}  // namespace
}  // namespace tarnwick::platform
