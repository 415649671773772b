// SPDX-License-Identifier: MIT
#include "ui/qt/settings_label.h"

#include <QEvent>
#include <QPainter>
#include <algorithm>

#include "ui/qt/symbols.h"

namespace tarnwick::qt {

namespace {

/// The same text, which breaks neither within a combination of keys nor before its last word.
QString bound(QString text) {
    text.replace(" + ", "\u00A0+\u00A0");
    const qsizetype last = text.lastIndexOf(' ');
    if (text.count(' ') > 1) {
        text[last] = QChar::Nbsp;
    }
    return text;
}

}  // namespace

QString fromUtf8(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

SettingsLabel::SettingsLabel(const Theme& theme, FontRole font, ColorRole color, QWidget* parent,
                             std::string_view text)
    : QLabel(parent), theme_(theme), font_(font), color_(color) {
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    // Otherwise a label on a button would take the colour of the button's own text.
    setForegroundRole(QPalette::WindowText);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setUtf8(text);
    applyTheme();
}

void SettingsLabel::setUtf8(std::string_view text) {
    const QString next = fromUtf8(text);
    if (next != accessibleName()) {
        setAccessibleName(next);
        setText(font_ == FontRole::caption ? bound(next) : next);
    }
}

bool SettingsLabel::event(QEvent* event) {
    const bool isOtherColor = event->type() == QEvent::PaletteChange &&
                              palette().color(QPalette::WindowText) != theme_.color(color_);
    if (isOtherColor || event->type() == QEvent::ApplicationFontChange) {
        applyTheme();
    }
    return QLabel::event(event);
}

void SettingsLabel::applyTheme() {
    QPalette palette;
    palette.setColor(QPalette::WindowText, theme_.color(color_));
    setPalette(palette);
    setFont(theme_.style(font_).font());
}

SymbolWidget::SymbolWidget(const Theme& theme, int size, QWidget* parent)
    : QWidget(parent), theme_(theme), size_(size) {
    applyFont();
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void SymbolWidget::setSymbol(std::string_view name, Color color) {
    if (name_ != name || color_ != color) {
        name_ = name;
        color_ = color;
        update();
    }
}

bool SymbolWidget::event(QEvent* event) {
    if (event->type() == QEvent::ApplicationFontChange) {
        applyFont();
    }
    return QWidget::event(event);
}

void SymbolWidget::applyFont() {
    const int side = theme_.scaled(size_);
    setFixedSize(side, side);
}

void SymbolWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QColor color =
        std::visit([this](const auto& which) { return theme_.color(which); }, color_);
    paintSymbol(painter, name_, color, QPointF(0, 0), width());
}

}  // namespace tarnwick::qt
