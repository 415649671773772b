// SPDX-License-Identifier: MIT
#include "ui/qt/accessible_block.h"

#include <QAccessible>
#include <QAccessibleWidget>

#include "ui/qt/block_widget.h"
#include "ui/qt/panel_popup.h"
#include "ui/qt/top_apps_widget.h"

namespace tarnwick::qt {
namespace {

constexpr double kLeast = 0;
constexpr double kGreatest = 100;

/// The description of a block that shows a share begins with its name. So where a screen reader
/// reads only the value and the description, the user still hears which figure it is and how high.
class AccessibleBlock final : public QAccessibleWidget, public QAccessibleValueInterface {
 public:
    explicit AccessibleBlock(BlockWidget* block)
        : QAccessibleWidget(block, block->accessibleRole()) {}

    QString text(QAccessible::Text kind) const override {
        if (kind == QAccessible::Description && hasValue()) {
            QStringList texts{widget()->accessibleName(), widget()->accessibleDescription()};
            texts.removeAll(QString());
            return texts.join(". ");
        }
        return QAccessibleWidget::text(kind);
    }
    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ValueInterface && hasValue()
                   ? static_cast<QAccessibleValueInterface*>(this)
                   : QAccessibleWidget::interface_cast(type);
    }
    QVariant currentValue() const override { return block().accessibleValue().value_or(kLeast); }
    void setCurrentValue(const QVariant&) override {}
    QVariant minimumValue() const override { return kLeast; }
    QVariant maximumValue() const override { return kGreatest; }
    QVariant minimumStepSize() const override { return 0.0; }

 private:
    const BlockWidget& block() const { return *static_cast<BlockWidget*>(widget()); }
    bool hasValue() const { return block().accessibleValue().has_value(); }
};

/// The panel has the focus until a key gives it to a button. Some screen readers say nothing about
/// what cannot have it.
class AccessiblePanel final : public QAccessibleWidget {
 public:
    explicit AccessiblePanel(PanelPopup* panel) : QAccessibleWidget(panel, QAccessible::Dialog) {}

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.focusable = true;
        return state;
    }
};

QAccessibleInterface* makeBlock(const QString&, QObject* object) {
    if (auto* block = qobject_cast<BlockWidget*>(object)) {
        return new AccessibleBlock(block);
    }
    if (auto* line = qobject_cast<ListLine*>(object)) {
        return new QAccessibleWidget(line, line->accessibleRole());
    }
    auto* panel = qobject_cast<PanelPopup*>(object);
    return panel == nullptr ? nullptr : new AccessiblePanel(panel);
}

}  // namespace

void describeBlocksForScreenReaders() {
    QAccessible::installFactory(makeBlock);
}

void announceValue(BlockWidget& block, double percent) {
    if (QAccessible::isActive()) {
        QAccessibleValueChangeEvent change(&block, percent);
        QAccessible::updateAccessibility(&change);
    }
}

void announceDescription(BlockWidget& block) {
    if (QAccessible::isActive() && block.accessibleValue()) {
        QAccessibleEvent change(&block, QAccessible::DescriptionChanged);
        QAccessible::updateAccessibility(&change);
    }
}

}  // namespace tarnwick::qt
