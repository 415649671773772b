// A widget that draws one building block of a page from its value alone.
#pragma once

#include <QAccessible>
#include <QWidget>
#include <functional>
#include <optional>
#include <variant>

#include "ui/panel/page.h"
#include "ui/qt/theme.h"

namespace tarnwick::qt {

/// What a press asks for.
using PressHandler = std::function<void(PanelAction)>;

/// Keeps its height: whoever places it asks heightFor() after each change.
class BlockWidget : public QWidget {
    Q_OBJECT

 public:
    BlockWidget(const Theme& theme, QWidget* parent) : QWidget(parent), theme_(theme) {}

    /// Shows the block, painting again only when it differs from the one shown. False, changing
    /// nothing, when it is of another kind.
    virtual bool setBlock(const PanelBlock& block) = 0;
    virtual int heightFor(int width) const = 0;
    /// Pixels by which what is drawn may reach beyond that height, above as well as below: the
    /// widget is so much higher on both sides, less than the space to its neighbours.
    virtual int overhang() const { return 0; }
    virtual QAccessible::Role accessibleRole() const { return QAccessible::StaticText; }
    /// Somebody is pointing at what must not move.
    virtual bool isHeld() const { return false; }
    /// Nobody holds it any more, until the pointer moves over it again.
    virtual void letGo() {}
    /// Finds out where the pointer is, after a move of what may lie below it: that is no move of
    /// the pointer.
    virtual void lookForPointer() {}
    /// The share that the block shows, percent; absent when it shows none.
    virtual std::optional<double> accessibleValue() const { return std::nullopt; }

 signals:
    /// heightFor() may say something else although no other block was set, or nobody holds it any
    /// more.
    void placeChanged();
    /// accessibleValue() is another one than the last time.
    void accessibleValueChanged(double percent);

 protected:
    /// Tells of accessibleValue() where there is one and it is another one than the last time.
    void announceValue();
    const Theme& theme() const { return theme_; }
    /// The full text of what is cut at this point, for a tool tip.
    virtual QString cutTextAt(const QPoint& position) const;
    bool event(QEvent* event) override;

 private:
    const Theme& theme_;
    std::optional<double> announcedValue_;
};

/// Holds the value.
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
    /// False for a block whose parts see to their painting.
    virtual bool paintsItself() const { return true; }

 private:
    std::optional<Value> value_;
};

}  // namespace tarnwick::qt
