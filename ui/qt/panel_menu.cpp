// SPDX-License-Identifier: MIT
#include "ui/qt/panel_menu.h"

#include <QMenu>

namespace tarnwick::qt {

namespace {

// Logical pixels.
constexpr int kCorner = 8;
constexpr int kEntryCorner = 5;

QString cssColor(const QColor& color) {
    return color.name(QColor::HexArgb);
}

QString look(const Theme& theme, bool isRound) {
    return QString(
               "QMenu { background: %1; border: 1px solid %2; border-radius: %3px;"
               " padding: 4px }"
               "QMenu::item { color: %4; padding: 5px 40px 5px 12px; border-radius: %5px }"
               "QMenu::item:selected { background: %6 }")
        .arg(cssColor(theme.color(ColorRole::card)), cssColor(theme.color(ColorRole::hairline)))
        .arg(isRound ? kCorner : 0)
        .arg(cssColor(theme.color(ColorRole::text)))
        .arg(kEntryCorner)
        .arg(cssColor(theme.color(ColorRole::controlHovered)));
}

}  // namespace

QMenu* makePanelMenu(QWidget& owner, const Theme& theme, const PressHandler& press) {
    auto* menu = new QMenu(&owner);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setObjectName("menu");
    menu->setWindowFlag(Qt::FramelessWindowHint);
    menu->setWindowFlag(Qt::NoDropShadowWindowHint);
    const bool isRound = owner.window()->testAttribute(Qt::WA_TranslucentBackground);
    menu->setAttribute(Qt::WA_TranslucentBackground, isRound);
    menu->setFont(theme.style(FontRole::subheadline).font());
    menu->setStyleSheet(look(theme, isRound));
    for (const PanelMenuEntry& entry : kPanelMenu) {
        menu->addAction(
            QString::fromUtf8(entry.title.data(), static_cast<qsizetype>(entry.title.size())),
            &owner, [press, action = entry.action] { press(action); });
    }
    return menu;
}

}  // namespace tarnwick::qt
