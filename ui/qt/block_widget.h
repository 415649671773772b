// SPDX-License-Identifier: MIT
// A widget that draws one building block of a page from its value alone.
#pragma once

#include <QAccessible>
#include <QWidget>
#include <functional>
#include <optional>
#include <string>
#include <variant>

#include "ui/panel/page.h"
#include "ui/qt/theme.h"

namespace tarnwick::qt {

/// Called with the action of a pressed button.
using PressHandler = std::function<void(PanelAction)>;

/// Does not change its own height: the owner asks heightFor() after each change and places it.
class BlockWidget : public QWidget {
    Q_OBJECT

 public:
    BlockWidget(const Theme& theme, QWidget* parent) : QWidget(parent), theme_(theme) {}

    /// Shows the block; paints again only if it differs from the one shown. If the block is of
    /// another kind, changes nothing and returns false.
    virtual bool setBlock(const PanelBlock& block) = 0;
    virtual int heightFor(int width) const = 0;
    /// What the pointer over the block and screen readers are told beyond what it shows; may be
    /// empty. UTF-8.
    void setToolTipText(const std::string& text);
    /// Pixels by which the drawing may reach beyond that height, both above and below. The widget
    /// is higher by this much on both sides. Less than the space to its neighbours.
    virtual int overhang() const { return 0; }
    /// Pixels by which the drawing reaches beyond the column's edges: the widget is wider by this
    /// much on both sides.
    virtual int sideOverhang() const { return 0; }
    virtual QAccessible::Role accessibleRole() const { return QAccessible::StaticText; }
    /// True while the pointer is over something that must not move.
    virtual bool isHeld() const { return false; }
    /// Ends isHeld() until the pointer moves over the block again.
    virtual void letGo() {}
    /// Finds out where the pointer is after the block may have moved below it. This does not count
    /// as a move of the pointer.
    virtual void lookForPointer() {}
    /// The share that the block shows, percent; absent when it shows none.
    virtual std::optional<double> accessibleValue() const { return std::nullopt; }

 signals:
    /// heightFor() may have changed although no other block was set, or isHeld() has ended.
    void placeChanged();
    /// accessibleValue() has changed.
    void accessibleValueChanged(double percent);

 protected:
    /// Emits accessibleValueChanged() if there is a value and it has changed.
    void announceValue();
    const Theme& theme() const { return theme_; }
    /// The full text of the text that is cut at this point, for a tool tip; empty if none is cut
    /// there.
    virtual QString cutTextAt(const QPoint& position) const;
    /// What is told of that point beyond what is shown there: the block's own text, unless one of
    /// its parts has another.
    virtual QString toolTipAt(const QPoint& position) const;
    /// The part of the block that the tool tip for this point belongs to; the tool tip stands
    /// beside it.
    virtual QRect toolTipPlace(const QPoint& position) const;
    bool event(QEvent* event) override;

 private:
    const Theme& theme_;
    std::optional<double> announcedValue_;
    std::string toolTip_;
};

/// Keeps the block's value.
template <class Value>
class ValueBlockWidget : public BlockWidget {
 public:
    ValueBlockWidget(const Theme& theme, QWidget* parent) : BlockWidget(theme, parent) {}

    bool setBlock(const PanelBlock& block) final {
        const Value* value = std::get_if<Value>(&block);
        if (value == nullptr) {
            return false;
        }
        if (value_ != *value) {
            value_ = *value;
            valueChanged();
            if (paintsItself()) {
                update();
            }
        }
        return true;
    }

 protected:
    /// Set from the first setBlock() on.
    const Value& value() const { return *value_; }
    virtual void valueChanged() {}
    /// False for a block with parts that paint themselves.
    virtual bool paintsItself() const { return true; }

 private:
    std::optional<Value> value_;
};

}  // namespace tarnwick::qt
