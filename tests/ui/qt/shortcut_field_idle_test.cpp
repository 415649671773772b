// SPDX-License-Identifier: MIT
// The shortcut's field while it has the keyboard and records nothing.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vector>

#include "tests/ui/qt/settings_widget_fixture.h"

namespace tarnwick::qt {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// The keys that come to an object.
class KeyWatcher final : public QObject {
 public:
    std::vector<int> keys;

    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::KeyPress) {
            keys.push_back(static_cast<QKeyEvent*>(event)->key());
        }
        return false;
    }
};

class IdleShortcutField : public SettingsWidgetFixture {
 protected:
    IdleShortcutField() {
        storeShortcut(37, kCommand);
        find("shortcut")->setFocus(Qt::TabFocusReason);
        catchUp();
        find("shortcut")->parentWidget()->installEventFilter(&parent);
    }
    void press(Qt::MouseButton button) {
        QWidget* field = find("shortcut");
        const QPointF position = field->rect().center();
        for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            QMouseEvent event(type, position, field->mapToGlobal(position), button,
                              type == QEvent::MouseButtonPress ? button : Qt::NoButton,
                              Qt::NoModifier);
            QApplication::sendEvent(field, &event);
        }
        catchUp();
    }
    bool isRecording() { return widget->view().shortcutField().isRecording(); }
    void expectNothingHappened() {
        EXPECT_FALSE(isRecording());
        EXPECT_EQ(settings.shortcutKeyCode(), 37);
        EXPECT_EQ(settings.shortcutModifiers(), kCommand);
        EXPECT_EQ(widget->view().shortcutField().text().text, "⌘L");
        EXPECT_EQ(widget->view().shortcutValidationMessage(), std::nullopt);
    }

    KeyWatcher parent;
};

TEST_F(IdleShortcutField, KeysThatItKnowsWhileItRecordsGoOnToItsParent) {
    struct Row {
        std::uint32_t code;
        Qt::KeyboardModifiers modifiers;
        Qt::Key key;
    };
    const Row rows[] = {{51, Qt::NoModifier, Qt::Key_Backspace},
                        {117, Qt::NoModifier, Qt::Key_Delete},
                        {40, Qt::MetaModifier, Qt::Key_K},
                        {40, Qt::NoModifier, Qt::Key_K},
                        {0x38, Qt::NoModifier, Qt::Key_Shift}};
    ASSERT_EQ(QApplication::focusWidget(), find("shortcut"));
    for (const Row& row : rows) {
        SCOPED_TRACE(row.code);
        parent.keys.clear();
        nativeKey(QEvent::KeyPress, row.code, row.modifiers, row.key);
        nativeKey(QEvent::KeyRelease, row.code, row.modifiers, row.key);
        EXPECT_THAT(parent.keys, ElementsAre(row.key));
        expectNothingHappened();
        EXPECT_EQ(QApplication::focusWidget(), find("shortcut"));
    }
}

TEST_F(IdleShortcutField, WhileItRecordsNoKeyGoesOn) {
    press(Qt::LeftButton);
    ASSERT_TRUE(isRecording());
    nativeKey(QEvent::KeyPress, 40, Qt::NoModifier, Qt::Key_K);
    nativeKey(QEvent::KeyPress, 53, Qt::NoModifier, Qt::Key_Escape);
    EXPECT_THAT(parent.keys, IsEmpty());
    EXPECT_FALSE(isRecording());
}

TEST_F(IdleShortcutField, OnlyTheLeftButtonStartsToRecord) {
    for (const Qt::MouseButton button : {Qt::RightButton, Qt::MiddleButton, Qt::BackButton}) {
        press(button);
        expectNothingHappened();
    }
    press(Qt::LeftButton);
    EXPECT_TRUE(isRecording());
}

}  // namespace
}  // namespace tarnwick::qt
