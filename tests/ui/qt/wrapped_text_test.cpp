// SPDX-License-Identifier: MIT
#include "ui/qt/wrapped_text.h"

#include <QApplication>
#include <gtest/gtest.h>

namespace tarnwick::qt {
namespace {

class WrappedText : public ::testing::Test {
 protected:
    QStringList wrap(const QString& text, qreal width, int lines) const {
        const QStringList result = wrapped(text, style, width, lines);
        EXPECT_GE(result.size(), 1);
        EXPECT_LE(result.size(), lines);
        for (const QString& line : result) {
            EXPECT_LE(style.width(line), width);
        }
        return result;
    }

    TextStyle style{QApplication::font()};
};

TEST_F(WrappedText, StaysOnOneLineWhereItFits) {
    EXPECT_EQ(wrap("All is well.", 500, 2), QStringList("All is well."));
    EXPECT_EQ(wrap("", 500, 2), QStringList(""));
}

TEST_F(WrappedText, BreaksIntoLinesOfAboutTheSameLength) {
    const QString text = "aaaa bbbb cccc dddd eeee ffff";
    const qreal justTooNarrow = style.width(text) - 1;
    EXPECT_EQ(wrap(text, justTooNarrow, 2), QStringList({"aaaa bbbb cccc", "dddd eeee ffff"}));
}

TEST_F(WrappedText, CutsTheLastLine) {
    const QStringList lines = wrap("aaaa bbbb cccc dddd eeee ffff", style.width("aaaa bbbb c"), 2);
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines[0], "aaaa bbbb");
    EXPECT_TRUE(lines[1].endsWith(QChar(0x2026)));
}

TEST_F(WrappedText, CutsAWordThatIsWiderThanALine) {
    const QStringList lines = wrap("aaaaaaaaaaaaaaaaaaaaaaaa b", style.width("aaaaaaaa"), 2);
    ASSERT_EQ(lines.size(), 1);
    EXPECT_TRUE(lines[0].endsWith(QChar(0x2026)));
}

}  // namespace
}  // namespace tarnwick::qt
