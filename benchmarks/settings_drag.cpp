// SPDX-License-Identifier: MIT
#include "benchmarks/settings_drag.h"

#include <QApplication>
#include <QMouseEvent>
#include <QTemporaryDir>
#include <stdexcept>

#include "platform/linux/settings/json_user_defaults.h"
#include "platform/testing/manual_dispatch.h"
#include "platform/testing/scripted_keyboard_layout.h"
#include "platform/testing/scripted_login_service.h"
#include "ui/qt/settings_cards.h"
#include "ui/qt/settings_widget.h"

namespace tarnwick::benchmarks {

struct SettingsDrag::Window final : public QObject {
    QTemporaryDir folder;
    platform::testing::ManualDispatch dispatch;
    platform::JsonUserDefaults store{folder.filePath("settings.json").toStdString(), dispatch};
    platform::testing::ScriptedLoginService loginService;
    platform::testing::ScriptedKeyboardLayout layout;
    UserSettings settings{store, loginService};
    qt::Theme theme{false};
    qt::SettingsWidget widget{settings, theme, SettingsViewEnvironment{dispatch, layout}, {}};
    qt::ThresholdSliderWidget* slider = nullptr;
    int paints = 0;

    Window() {
        widget.setFixedSize(520, 500);
        widget.show();
        widget.view().selectTab(Tab::customize);
        paint();
        slider = widget.findChild<qt::ThresholdSliderWidget*>();
        if (slider == nullptr) {
            throw std::logic_error("there is no slider");
        }
        slider->installEventFilter(this);
        mouse(QEvent::MouseButtonPress, settings.cpuNormal());
        paint();
    }

    bool eventFilter(QObject*, QEvent* event) override {
        paints += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }

    void mouse(QEvent::Type type, double percent) {
        const QPointF place(10 + (slider->width() - 20) * percent / 100, slider->height() / 2.0);
        QMouseEvent event(type, place, slider->mapToGlobal(place), Qt::LeftButton, Qt::LeftButton,
                          Qt::NoModifier);
        QApplication::sendEvent(slider, &event);
    }
    void paint() {
        // One turn for what moved, one for what the layout asked for.
        for (int turn = 0; turn < 2; ++turn) {
            dispatch.runMain();
            QApplication::processEvents();
        }
    }
};

SettingsDrag::SettingsDrag() : window_(std::make_unique<Window>()) {}

SettingsDrag::~SettingsDrag() = default;

void SettingsDrag::change() {
    // The value goes up and down between 20 and 79.
    const int step = changes_++ % 118;
    percent_ = 20 + (step < 59 ? step : 118 - step);
    const int before = window_->paints;
    window_->mouse(QEvent::MouseMove, percent_);
    window_->paint();
    if (window_->paints == before) {
        throw std::logic_error("a change is not painted");
    }
}

void SettingsDrag::rest() {
    window_->mouse(QEvent::MouseMove, percent_ + 0.3);
    window_->paint();
}

double SettingsDrag::stored() const {
    return window_->settings.cpuNormal();
}

}  // namespace tarnwick::benchmarks
