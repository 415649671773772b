// SPDX-License-Identifier: MIT
#include "platform/qt/text_style.h"

#include <QApplication>
#include <QFontInfo>
#include <QFontMetricsF>
#include <gtest/gtest.h>
#include <string>

namespace tarnwick::qt {
namespace {

class Digits : public testing::TestWithParam<const char*> {};

TEST_P(Digits, AllTakeTheSameRoom) {
    QFont font;
    font.setFamily(GetParam());
    font.setPointSizeF(11);
    ASSERT_EQ(QFontInfo(font).family(), GetParam()) << "is not installed";
    const TextStyle style(font);
    EXPECT_DOUBLE_EQ(style.width("11:11 1%"), style.width("88:80 8%"));
    EXPECT_GT(style.width("111"), style.width("11"));
}

INSTANTIATE_TEST_SUITE_P(, Digits, testing::Values("Inter", "DejaVu Sans", "DejaVu Serif"),
                         [](const auto& row) {
                             std::string name = row.param;
                             std::erase(name, ' ');
                             return name;
                         });

TEST(TextStyle, RemembersEachWidthAsTheFontHasIt) {
    const QFont font = QApplication::font();
    const QFontMetricsF metrics(font);
    const TextStyle style(font);
    const TextStyle copy = style;
    // More texts than it remembers, each asked for twice.
    for (int number = 0; number < 500; ++number) {
        const QString text = QString("Name ") + QChar('a' + number % 26) + QChar('A' + number / 26);
        const qreal expected = metrics.horizontalAdvance(text);
        EXPECT_EQ(style.width(text), expected);
        EXPECT_EQ(copy.width(text), expected);
    }
}

TEST(TextStyle, CutsAtTheEndAndNeverWiderThanAsked) {
    const TextStyle style(QApplication::font());
    const QString text = "A very long name 1111111111 with digits";
    for (int width = 20; width < 300; width += 7) {
        EXPECT_LE(style.width(style.elided(text, width)), width);
    }
    EXPECT_EQ(style.elided(text, style.width(text)), text);
    EXPECT_TRUE(style.elided(text, style.width(text) - 1).endsWith(QChar(0x2026)));
}

}  // namespace
}  // namespace tarnwick::qt
