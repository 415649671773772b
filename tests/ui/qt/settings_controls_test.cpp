// SPDX-License-Identifier: MIT
// What the controls of the settings window do and show.
#include <QAccessible>
#include <QAccessibleInterface>
#include <QHelpEvent>
#include <QScrollArea>
#include <QScrollBar>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/ui/qt/accessible_events.h"
#include "tests/ui/qt/settings_widget_fixture.h"
#include "ui/qt/settings_buttons.h"
#include "ui/qt/settings_cards.h"
#include "ui/qt/settings_mode_card.h"
#include "ui/qt/shortcut_field_widget.h"
#include "ui/qt/tool_tip.h"

namespace tarnwick::qt {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class SettingsControls : public SettingsWidgetFixture {
 protected:
    QAbstractButton* button(const char* name) {
        auto* found = qobject_cast<QAbstractButton*>(find(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    /// The lines below the shortcut.
    std::vector<std::string> lines() {
        std::vector<std::string> texts;
        const auto* card = visible<ShortcutCardWidget>().at(0);
        const auto labels = card->findChildren<SettingsLabel*>();
        for (qsizetype i = 2; i < labels.size(); ++i) {
            if (labels[i]->isVisible()) {
                texts.push_back(labels[i]->accessibleName().toStdString());
            }
        }
        return texts;
    }
    void toggleByKeys(const char* name, bool (UserSettings::*value)() const) {
        button(name)->setFocus(Qt::TabFocusReason);
        key(Qt::Key_Space);
        EXPECT_TRUE((settings.*value)());
        EXPECT_TRUE(button(name)->isChecked());
        key(Qt::Key_Return);
        EXPECT_FALSE((settings.*value)());
        EXPECT_FALSE(button(name)->isChecked());
    }
    QAccessibleInterface* accessible(QWidget* of) {
        return QAccessible::queryAccessibleInterface(of);
    }
    void press(QWidget* of) {
        accessible(of)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        catchUp();
    }
};

TEST_F(SettingsControls, AModeCardIsPressedAnywhere) {
    QWidget* card = button("mode.iconOnly");
    for (const QPoint place : {QPoint(3, 3), QPoint(20, 25), QPoint(card->width() / 2, 45),
                               QPoint(card->width() / 2, card->height() - 30),
                               QPoint(card->width() - 3, card->height() - 3)}) {
        settings.setMenuBarDisplayMode(MenuBarDisplayMode::advanced);
        catchUp();
        EXPECT_FALSE(button("mode.iconOnly")->isChecked());
        clickAt(card, place);
        EXPECT_EQ(settings.menuBarDisplayMode(), MenuBarDisplayMode::iconOnly);
        EXPECT_TRUE(button("mode.iconOnly")->isChecked());
        EXPECT_FALSE(button("mode.advanced")->isChecked());
    }
}

TEST_F(SettingsControls, ModeCardsStandSideBySideAndAreEquallyLarge) {
    const QWidget* iconOnly = button("mode.iconOnly");
    const QWidget* advanced = button("mode.advanced");
    EXPECT_EQ(iconOnly->y(), advanced->y());
    EXPECT_EQ(iconOnly->size(), advanced->size());
    EXPECT_EQ(advanced->x() - iconOnly->geometry().right() - 1, 12);
    for (const auto* preview : visible<DisplayModePreviewWidget>()) {
        EXPECT_EQ(preview->height(), 56);
    }
}

TEST_F(SettingsControls, AModeCardIsPressedByKeysAndByAssistiveTechnology) {
    button("mode.iconOnly")->setFocus(Qt::TabFocusReason);
    key(Qt::Key_Space);
    EXPECT_EQ(settings.menuBarDisplayMode(), MenuBarDisplayMode::iconOnly);
    button("mode.advanced")->setFocus(Qt::TabFocusReason);
    key(Qt::Key_Return);
    EXPECT_EQ(settings.menuBarDisplayMode(), MenuBarDisplayMode::advanced);
    EXPECT_EQ(accessible(button("mode.iconOnly"))->role(), QAccessible::RadioButton);
    EXPECT_EQ(accessible(button("mode.iconOnly"))->text(QAccessible::Name), "Icon Only");
    EXPECT_EQ(accessible(button("mode.iconOnly"))->text(QAccessible::Description),
              "Show only the status icon in the menu bar.");
    press(button("mode.iconOnly"));
    EXPECT_EQ(settings.menuBarDisplayMode(), MenuBarDisplayMode::iconOnly);
    EXPECT_TRUE(accessible(button("mode.iconOnly"))->state().checked);
    EXPECT_FALSE(accessible(button("mode.advanced"))->state().checked);
}

TEST_F(SettingsControls, TheSelectedModeCardChangesNothing) {
    click(button("mode.advanced"));
    EXPECT_THAT(store.writes(), IsEmpty());
    EXPECT_TRUE(button("mode.advanced")->isChecked());
}

TEST_F(SettingsControls, ASwitchIsPressed) {
    click(button("switch"));
    EXPECT_TRUE(settings.launchOnLogin());
    EXPECT_TRUE(button("switch")->isChecked());
    EXPECT_EQ(loginService.status(), platform::LoginServiceStatus::enabled);
    click(button("switch"));
    EXPECT_FALSE(settings.launchOnLogin());
    EXPECT_FALSE(button("switch")->isChecked());
}

TEST_F(SettingsControls, ASwitchIsPressedAnywhereOnItsCard) {
    QWidget* card = find("switch")->parentWidget();
    const bool before = settings.launchOnLogin();
    mouse(card, QEvent::MouseButtonPress, QPointF(20, 20));
    EXPECT_EQ(settings.launchOnLogin(), before);
    mouse(card, QEvent::MouseButtonRelease, QPointF(20, 20));
    EXPECT_NE(settings.launchOnLogin(), before);
    // Let go outside, it is no press.
    mouse(card, QEvent::MouseButtonPress, QPointF(20, 20));
    mouse(card, QEvent::MouseButtonRelease, QPointF(20, -20));
    EXPECT_NE(settings.launchOnLogin(), before);
}

TEST_F(SettingsControls, TwoPressesInOneTurnAreTwo) {
    const auto pressTwice = [this](const char* name) {
        for (int press = 0; press < 2; ++press) {
            QWidget* target = find(name);
            mouse(target, QEvent::MouseButtonPress, target->rect().center());
            mouse(target, QEvent::MouseButtonRelease, target->rect().center());
        }
    };
    pressTwice("switch");
    EXPECT_FALSE(settings.launchOnLogin());
    click(find("mode.iconOnly"));
    for (const char* name : {"mode.advanced", "mode.iconOnly"}) {
        mouse(find(name), QEvent::MouseButtonPress, QPointF(20, 20));
        mouse(find(name), QEvent::MouseButtonRelease, QPointF(20, 20));
    }
    catchUp();
    EXPECT_EQ(settings.menuBarDisplayMode(), MenuBarDisplayMode::iconOnly);
    select(Tab::customize);
    pressTwice("switch");
    EXPECT_FALSE(settings.remindRestartAfterWeek());
}

TEST_F(SettingsControls, PillsAreTextsToAssistiveTechnology) {
    select(Tab::customize);
    const auto pills = visible<ThresholdPillWidget>();
    ASSERT_EQ(pills.size(), 8);
    EXPECT_EQ(accessible(pills[0])->role(), QAccessible::StaticText);
    EXPECT_EQ(accessible(pills[0])->text(QAccessible::Name), "Normal 80%");
}

TEST_F(SettingsControls, SwitchesArePressedByKeys) {
    toggleByKeys("switch", &UserSettings::launchOnLogin);
    select(Tab::customize);
    toggleByKeys("switch", &UserSettings::remindRestartAfterWeek);
}

TEST_F(SettingsControls, ASwitchIsOneToAssistiveTechnologyToo) {
    QAccessibleInterface* interface = accessible(button("switch"));
    EXPECT_EQ(interface->role(), QAccessible::CheckBox);
    EXPECT_EQ(interface->text(QAccessible::Name), "Launch on login");
    EXPECT_EQ(interface->text(QAccessible::Description),
              "Automatically start Tarnwick when you log in.");
    EXPECT_FALSE(interface->state().checked);
    EXPECT_TRUE(interface->state().checkable);
    interface->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    catchUp();
    EXPECT_TRUE(settings.launchOnLogin());
    EXPECT_TRUE(interface->state().checked);
}

TEST_F(SettingsControls, ARefusedSwitchSnapsBack) {
    loginService.setRegisterError(platform::LoginServiceError{"no"});
    click(button("switch"));
    EXPECT_FALSE(settings.launchOnLogin());
    EXPECT_FALSE(button("switch")->isChecked());
}

TEST_F(SettingsControls, ASwitchFollowsChangesFromElsewhere) {
    select(Tab::customize);
    settings.setRemindRestartAfterWeek(true);
    catchUp();
    EXPECT_TRUE(button("switch")->isChecked());
}

TEST_F(SettingsControls, ASwitchLooksLikeOne) {
    const auto pixels = [this] {
        QWidget* drawn = find("switch");
        QImage image(drawn->size(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        drawn->render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
        return image;
    };
    const QImage off = pixels();
    EXPECT_EQ(off.pixelColor(11, 11), QColor(Qt::white));
    EXPECT_NE(off.pixelColor(28, 11), theme.color(ColorRole::accent));
    click(button("switch"));
    const QImage on = pixels();
    EXPECT_EQ(on.pixelColor(27, 11), QColor(Qt::white));
    EXPECT_EQ(on.pixelColor(9, 11), theme.color(ColorRole::accent));
}

TEST_F(SettingsControls, TabsAreTabsToAssistiveTechnology) {
    QAccessibleInterface* customize = accessible(find("tab.Customize"));
    EXPECT_EQ(customize->role(), QAccessible::PageTab);
    EXPECT_EQ(customize->text(QAccessible::Name), "Customize");
    EXPECT_TRUE(customize->state().selectable);
    EXPECT_FALSE(customize->state().selected);
    EXPECT_EQ(customize->parent()->role(), QAccessible::PageTabList);
    press(find("tab.Customize"));
    EXPECT_EQ(widget->view().selectedTab(), Tab::customize);
    EXPECT_TRUE(customize->state().selected);
    EXPECT_FALSE(accessible(find("tab.General"))->state().selected);
}

TEST_F(SettingsControls, CardsAreReadFromTopToBottom) {
    storeShortcut(37, kCommand);
    settings.setShortcutRegistrationState(RegistrationState::active);
    catchUp();
    for (const TabItem& item : kTabs) {
        select(item.tab);
        std::vector<QWidget*> read;
        const std::function<void(QAccessibleInterface*)> walk = [&](QAccessibleInterface* from) {
            for (int i = 0; i < from->childCount(); ++i) {
                QAccessibleInterface* child = from->child(i);
                auto* found = qobject_cast<QWidget*>(child->object());
                if (found != nullptr && found->isVisible() &&
                    !child->text(QAccessible::Name).isEmpty()) {
                    read.push_back(found);
                }
                walk(child);
            }
        };
        walk(accessible(find("page")));
        ASSERT_GT(read.size(), 7U);
        for (std::size_t i = 1; i < read.size(); ++i) {
            const QRect before(read[i - 1]->mapTo(widget.get(), QPoint()), read[i - 1]->size());
            const QRect after(read[i]->mapTo(widget.get(), QPoint()), read[i]->size());
            EXPECT_TRUE(after.top() >= before.top() || after.left() > before.left() ||
                        after.contains(before.center()))
                << accessible(read[i])->text(QAccessible::Name).toStdString() << " after "
                << accessible(read[i - 1])->text(QAccessible::Name).toStdString();
        }
    }
}

TEST_F(SettingsControls, ClearIsThereOnlyWhileAShortcutIsStored) {
    EXPECT_EQ(find("clear"), nullptr);
    storeShortcut(37, kCommand);
    ASSERT_NE(find("clear"), nullptr);
    click(find("clear"));
    EXPECT_EQ(settings.shortcutKeyCode(), -1);
    EXPECT_EQ(settings.shortcutModifiers(), 0);
    EXPECT_EQ(find("clear"), nullptr);
}

TEST_F(SettingsControls, ClearByTheKeyboardLeavesItAtTheField) {
    storeShortcut(37, kCommand);
    find("clear")->setFocus(Qt::TabFocusReason);
    key(Qt::Key_Space);
    EXPECT_EQ(settings.shortcutKeyCode(), -1);
    EXPECT_EQ(QApplication::focusWidget(), find("shortcut"));
    EXPECT_FALSE(widget->view().shortcutField().isRecording());
}

TEST_F(SettingsControls, TheLinesBelowTheShortcutFollowItsState) {
    EXPECT_THAT(lines(), IsEmpty());
    storeShortcut(37, kCommand);
    settings.setShortcutRegistrationState(RegistrationState::active);
    catchUp();
    EXPECT_THAT(lines(), ElementsAre("Shortcut active: ⌘L"));
    settings.setShortcutRegistrationState(RegistrationState::conflict);
    widget->view().shortcutField().mouseDown();
    widget->view().shortcutField().keyDown(40, 0);
    catchUp();
    EXPECT_THAT(lines(),
                ElementsAre("Shortcut must include Command.",
                            "This shortcut is already in use. Choose a different combination."));
    settings.setShortcutRegistrationState(RegistrationState::inactive);
    catchUp();
    EXPECT_THAT(lines(), ElementsAre("Shortcut must include Command."));
}

class ShortcutFieldControl : public SettingsControls {
 protected:
    ShortcutField& field() { return widget->view().shortcutField(); }
    void startRecording() {
        mouse(find("shortcut"), QEvent::MouseButtonPress, QPointF(10, 10));
        catchUp();
    }
};

TEST_F(ShortcutFieldControl, TheCardTellsWhatTheKeysAreOnThisSystem) {
    auto* card = dynamic_cast<ShortcutCardWidget*>(find("shortcut")->parentWidget());
    ASSERT_NE(card, nullptr);
    const auto tip = [&] {
        hideToolTip();
        QHelpEvent help(QEvent::ToolTip, QPoint(5, 5), card->mapToGlobal(QPoint(5, 5)));
        QApplication::sendEvent(card, &help);
        return shownToolTip();
    };
    EXPECT_EQ(tip(), "");
    card->setEditor({.field = {}, .tip = "⌘ is a key.", .hasClear = false, .lines = {}});
    EXPECT_EQ(tip(), "⌘ is a key.");
    EXPECT_TRUE(find("shortcut")->accessibleDescription().endsWith(". ⌘ is a key."));
    hideToolTip();
}

TEST_F(ShortcutFieldControl, HasItsMeasuresAndItsWords) {
    EXPECT_EQ(find("shortcut")->width(), 220);
    EXPECT_GE(find("shortcut")->height(), 24);
    QAccessibleInterface* interface = accessible(find("shortcut"));
    EXPECT_EQ(interface->role(), QAccessible::PushButton);
    EXPECT_EQ(interface->text(QAccessible::Name), "Global shortcut recorder");
    EXPECT_EQ(interface->text(QAccessible::Description),
              "Click, then press Command and a key. Press Escape to cancel or Delete to clear.");
}

TEST_F(ShortcutFieldControl, RecordsFromTheMomentOfThePress) {
    startRecording();
    EXPECT_TRUE(field().isRecording());
    EXPECT_EQ(QApplication::focusWidget(), find("shortcut"));
    mouse(find("shortcut"), QEvent::MouseButtonRelease, QPointF(10, 10));
    EXPECT_TRUE(field().isRecording());
}

TEST_F(ShortcutFieldControl, RecordsAShortcutByTheKeysThatArePressed) {
    startRecording();
    nativeKey(QEvent::KeyPress, 0x37, Qt::NoModifier, Qt::Key_Super_L);
    EXPECT_THAT(lines(), IsEmpty());
    nativeKey(QEvent::KeyPress, 0x38, Qt::MetaModifier, Qt::Key_Shift);
    nativeKey(QEvent::KeyPress, 40, Qt::MetaModifier | Qt::ShiftModifier, Qt::Key_K);
    EXPECT_FALSE(field().isRecording());
    EXPECT_EQ(settings.shortcutKeyCode(), 40);
    EXPECT_EQ(settings.shortcutModifiers(), kCommand | kShift);
    EXPECT_EQ(field().text().text, "⇧⌘K");
}

TEST_F(ShortcutFieldControl, EveryModifierHasItsFlag) {
    struct Row {
        Qt::KeyboardModifier modifier;
        std::int64_t flag;
    };
    for (const Row row : {Row{Qt::ShiftModifier, 0x20000}, Row{Qt::ControlModifier, 0x40000},
                          Row{Qt::AltModifier, 0x80000}, Row{Qt::KeypadModifier, 0}}) {
        startRecording();
        nativeKey(QEvent::KeyPress, 37, Qt::MetaModifier | row.modifier, Qt::Key_L);
        EXPECT_EQ(settings.shortcutModifiers(), kCommand | row.flag);
    }
}

TEST_F(ShortcutFieldControl, HeldModifiersAreJudgedBeforeAnyKey) {
    startRecording();
    for (const std::uint32_t code : {0x3AU, 0x3DU, 0x38U, 0x3CU, 0x3BU, 0x3EU}) {
        nativeKey(QEvent::KeyPress, code, Qt::NoModifier);
        EXPECT_THAT(lines(), ElementsAre("Shortcut must include Command.")) << code;
        nativeKey(QEvent::KeyRelease, code, Qt::NoModifier);
        EXPECT_THAT(lines(), IsEmpty());
    }
    nativeKey(QEvent::KeyPress, 0x36, Qt::ShiftModifier | Qt::AltModifier);
    EXPECT_THAT(lines(),
                ElementsAre("Use Command by itself or with one of Shift, Option, or Control."));
    // A release with the flags from before it.
    nativeKey(QEvent::KeyRelease, 0x38, Qt::ShiftModifier | Qt::MetaModifier | Qt::AltModifier);
    EXPECT_THAT(lines(), IsEmpty());
    EXPECT_TRUE(field().isRecording());
}

TEST_F(ShortcutFieldControl, AltGrIsNoModifierWhileItIsHeldNorInWhatIsStored) {
    startRecording();
    nativeKey(QEvent::KeyPress, 0x3D, Qt::NoModifier, Qt::Key_AltGr);
    EXPECT_THAT(lines(), IsEmpty());
    nativeKey(QEvent::KeyPress, 0x37, Qt::GroupSwitchModifier, Qt::Key_Super_L);
    nativeKey(QEvent::KeyPress, 0x38, Qt::GroupSwitchModifier | Qt::MetaModifier, Qt::Key_Shift);
    EXPECT_THAT(lines(), IsEmpty());
    nativeKey(QEvent::KeyPress, 37, Qt::GroupSwitchModifier | Qt::MetaModifier | Qt::ShiftModifier,
              Qt::Key_L);
    EXPECT_EQ(settings.shortcutModifiers(), kCommand | kShift);
}

TEST_F(ShortcutFieldControl, APlainKeyIsRejectedAndRecordingGoesOn) {
    startRecording();
    nativeKey(QEvent::KeyPress, 40, Qt::NoModifier, Qt::Key_K);
    EXPECT_THAT(lines(), ElementsAre("Shortcut must include Command."));
    EXPECT_TRUE(field().isRecording());
    EXPECT_EQ(settings.shortcutKeyCode(), -1);
}

TEST_F(ShortcutFieldControl, WhatIsSaidWhileItRecordsIsInView) {
    storeShortcut(37, kCommand);
    settings.setShortcutRegistrationState(RegistrationState::conflict);
    catchUp();
    startRecording();
    nativeKey(QEvent::KeyPress, 40, Qt::NoModifier, Qt::Key_K);
    catchUp();
    const QWidget* card = visible<ShortcutCardWidget>().at(0);
    EXPECT_LE(card->mapTo(widget.get(), QPoint(0, card->height())).y(), widget->height());
    ASSERT_EQ(lines().size(), 2U);
}

TEST_F(ShortcutFieldControl, EscapeCancels) {
    storeShortcut(37, kCommand);
    startRecording();
    nativeKey(QEvent::KeyPress, 53, Qt::MetaModifier, Qt::Key_Escape);
    EXPECT_FALSE(field().isRecording());
    EXPECT_EQ(settings.shortcutKeyCode(), 37);
    // The window that Escape closes otherwise stays.
    EXPECT_TRUE(widget->isVisible());
}

TEST_F(ShortcutFieldControl, DeleteClears) {
    for (const std::uint32_t code : {51U, 117U}) {
        storeShortcut(37, kCommand);
        startRecording();
        nativeKey(QEvent::KeyPress, code, Qt::MetaModifier, Qt::Key_Delete);
        EXPECT_FALSE(field().isRecording());
        EXPECT_EQ(settings.shortcutKeyCode(), -1);
        EXPECT_EQ(settings.shortcutModifiers(), 0);
    }
}

TEST_F(ShortcutFieldControl, WhileItRecordsEveryKeyIsItsOwn) {
    startRecording();
    nativeKey(QEvent::KeyPress, 0x30, Qt::NoModifier, Qt::Key_Tab);
    nativeKey(QEvent::KeyPress, 0x24, Qt::NoModifier, Qt::Key_Return);
    EXPECT_EQ(QApplication::focusWidget(), find("shortcut"));
    EXPECT_TRUE(field().isRecording());
    nativeKey(QEvent::KeyPress, 0x30, Qt::MetaModifier, Qt::Key_Tab);
    EXPECT_EQ(settings.shortcutKeyCode(), 0x30);
    startRecording();
    QKeyEvent override(QEvent::ShortcutOverride, Qt::Key_Tab, Qt::ControlModifier);
    override.ignore();
    QApplication::sendEvent(find("shortcut"), &override);
    EXPECT_TRUE(override.isAccepted());
}

TEST_F(ShortcutFieldControl, KeysWithoutACodeAndRepetitionsAreNoPresses) {
    startRecording();
    QKeyEvent unknown(QEvent::KeyPress, Qt::Key_Print, Qt::MetaModifier, 999, 0, 0);
    QApplication::sendEvent(find("shortcut"), &unknown);
    QKeyEvent repeated(QEvent::KeyPress, Qt::Key_K, Qt::MetaModifier, 340, 0, 0, "k", true);
    QApplication::sendEvent(find("shortcut"), &repeated);
    catchUp();
    EXPECT_TRUE(field().isRecording());
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(ShortcutFieldControl, LosingTheKeyboardCancels) {
    startRecording();
    nativeKey(QEvent::KeyPress, 40, Qt::NoModifier, Qt::Key_K);
    find("switch")->setFocus(Qt::MouseFocusReason);
    catchUp();
    EXPECT_FALSE(field().isRecording());
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(ShortcutFieldControl, APressOnNothingCancels) {
    startRecording();
    nativeKey(QEvent::KeyPress, 40, Qt::NoModifier, Qt::Key_K);
    clickAt(find("page"), QPoint(3, 3));
    EXPECT_FALSE(field().isRecording());
    EXPECT_THAT(lines(), IsEmpty());
    startRecording();
    clickAt(widget.get(), QPoint(3, 3));
    EXPECT_FALSE(field().isRecording());
}

TEST_F(ShortcutFieldControl, APressOnAControlCancelsAndDoesWhatItDoes) {
    storeShortcut(37, kCommand);
    startRecording();
    click(find("switch"));
    EXPECT_FALSE(field().isRecording());
    EXPECT_TRUE(settings.launchOnLogin());
    startRecording();
    click(find("mode.iconOnly"));
    EXPECT_FALSE(field().isRecording());
    EXPECT_EQ(settings.menuBarDisplayMode(), MenuBarDisplayMode::iconOnly);
    EXPECT_EQ(settings.shortcutKeyCode(), 37);
    startRecording();
    click(find("clear"));
    EXPECT_FALSE(field().isRecording());
    EXPECT_EQ(settings.shortcutKeyCode(), -1);
    startRecording();
    click(find("tab.About"));
    EXPECT_FALSE(field().isRecording());
    EXPECT_EQ(widget->view().selectedTab(), Tab::about);
}

TEST_F(ShortcutFieldControl, WhatIsPressedStaysUnderThePointerUntilTheRelease) {
    storeShortcut(37, kCommand);
    settings.setShortcutRegistrationState(RegistrationState::conflict);
    catchUp();
    startRecording();
    nativeKey(QEvent::KeyPress, 40, Qt::NoModifier, Qt::Key_K);
    catchUp();
    ASSERT_THAT(lines(), Not(IsEmpty()));
    QWidget* clear = find("clear");
    QScrollBar* bar = nullptr;
    for (auto* area : widget->findChildren<QScrollArea*>()) {
        bar = area->isAncestorOf(clear) ? area->verticalScrollBar() : bar;
    }
    ASSERT_GT(bar->maximum(), 0);
    bar->setValue(bar->maximum());
    settle();
    const QPoint place = clear->mapTo(widget.get(), clear->rect().center());
    mouse(clear, QEvent::MouseButtonPress, clear->mapFrom(widget.get(), place));
    catchUp();
    settle();
    mouse(clear, QEvent::MouseButtonRelease, clear->mapFrom(widget.get(), place));
    catchUp();
    EXPECT_EQ(settings.shortcutKeyCode(), -1);
    EXPECT_FALSE(field().isRecording());
}

TEST_F(ShortcutFieldControl, APressInAnotherWindowCancels) {
    startRecording();
    QWidget other;
    other.setAttribute(Qt::WA_ShowWithoutActivating);
    other.show();
    ASSERT_TRUE(field().isRecording());
    mouse(&other, QEvent::MouseButtonPress, QPointF(1, 1));
    mouse(&other, QEvent::MouseButtonRelease, QPointF(1, 1));
    settle();
    EXPECT_FALSE(field().isRecording());
    widget->window()->activateWindow();
    settle();
    startRecording();
    ASSERT_TRUE(field().isRecording());
    other.activateWindow();
    settle();
    EXPECT_FALSE(field().isRecording());
}

TEST_F(ShortcutFieldControl, APressOnTheFieldItselfGoesOnRecording) {
    startRecording();
    nativeKey(QEvent::KeyPress, 40, Qt::NoModifier, Qt::Key_K);
    startRecording();
    EXPECT_TRUE(field().isRecording());
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(ShortcutFieldControl, AssistiveTechnologyLearnsWhatItShows) {
    QAccessibleInterface* interface = accessible(find("shortcut"));
    QAccessibleTextInterface* text = interface->textInterface();
    ASSERT_NE(text, nullptr);
    const auto shown = [&] { return text->text(0, text->characterCount()); };
    EXPECT_EQ(shown(), "Click to record");
    EXPECT_EQ(interface->text(QAccessible::Value), "Click to record");
    EXPECT_FALSE(interface->state().pressed);
    const AccessibleEvents events;
    startRecording();
    EXPECT_EQ(shown(), "Press ⌘ + key…");
    EXPECT_EQ(text->text(0, 5), "Press");
    EXPECT_EQ(interface->text(QAccessible::Value), "Press ⌘ + key…");
    // Without the help, which would be said again with each key.
    EXPECT_EQ(interface->text(QAccessible::Description), "Press ⌘ + key…");
    EXPECT_EQ(interface->text(QAccessible::Help), ShortcutField::kAccessibilityHelp);
    EXPECT_TRUE(interface->state().pressed);
    EXPECT_EQ(text->text(5, 2), "");
    for (const auto type :
         {QAccessible::StateChanged, QAccessible::TextUpdated, QAccessible::DescriptionChanged}) {
        EXPECT_GE(events.count(find("shortcut"), type), 1);
    }
    const int before = events.count(find("shortcut"), QAccessible::TextUpdated);
    nativeKey(QEvent::KeyPress, 40, Qt::MetaModifier, Qt::Key_K);
    EXPECT_EQ(shown(), "⌘K");
    EXPECT_EQ(interface->text(QAccessible::Description),
              QString("⌘K. ") + ShortcutField::kAccessibilityHelp);
    EXPECT_FALSE(interface->state().pressed);
    EXPECT_EQ(events.count(find("shortcut"), QAccessible::TextUpdated), before + 1);
}

TEST_F(ShortcutFieldControl, AnotherTabCancels) {
    startRecording();
    select(Tab::about);
    EXPECT_FALSE(field().isRecording());
    EXPECT_EQ(widget->view().shortcutValidationMessage(), std::nullopt);
}

TEST_F(ShortcutFieldControl, BeginsByKeysAndByAssistiveTechnology) {
    find("shortcut")->setFocus(Qt::TabFocusReason);
    EXPECT_FALSE(field().isRecording());
    key(Qt::Key_Space);
    EXPECT_TRUE(field().isRecording());
    nativeKey(QEvent::KeyPress, 53, Qt::NoModifier, Qt::Key_Escape);
    key(Qt::Key_Return);
    EXPECT_TRUE(field().isRecording());
    nativeKey(QEvent::KeyPress, 53, Qt::NoModifier, Qt::Key_Escape);
    find("switch")->setFocus(Qt::TabFocusReason);
    press(find("shortcut"));
    EXPECT_TRUE(field().isRecording());
    EXPECT_EQ(QApplication::focusWidget(), find("shortcut"));
}

TEST_F(SettingsControls, ResetPutsTheThresholdsBack) {
    settings.setCPUNormal(20);
    settings.setStorageHigh(60);
    select(Tab::customize);
    auto* reset = qobject_cast<SettingsButton*>(find("reset"));
    ASSERT_NE(reset, nullptr);
    EXPECT_EQ(reset->text(), "Reset to Defaults");
    press(reset);
    EXPECT_EQ(settings.thresholds(), MetricThresholds());
    EXPECT_EQ(settings.cpuNormal(), 80);
}

}  // namespace
}  // namespace tarnwick::qt
