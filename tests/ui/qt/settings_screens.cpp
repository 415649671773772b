// SPDX-License-Identifier: MIT
// settings_screens FOLDER: pictures of every tab of the settings window, light and dark, at several
// scales, with larger fonts and with more contrast.
#include <QApplication>
#include <QDir>
#include <QScrollBar>
#include <QTextStream>

#include "platform/testing/manual_dispatch.h"
#include "platform/testing/memory_user_defaults.h"
#include "platform/testing/scripted_keyboard_layout.h"
#include "platform/testing/scripted_login_service.h"
#include "tests/ui/qt/settle.h"
#include "ui/qt/settings_widget.h"

namespace tarnwick::qt {
namespace {

/// Everything that a window runs on, with a shortcut that works.
class Scene {
 public:
    explicit Scene(const Theme& theme) {
        settings_.setShortcutKeyCode(40);
        settings_.setShortcutModifiers(0x120000);
        settings_.setShortcutRegistrationState(RegistrationState::active);
        settings_.setLaunchOnLogin(true);
        widget_ = std::make_unique<SettingsWidget>(
            settings_, theme, SettingsViewEnvironment{dispatch_, layout_, {"1.4", "212"}},
            [](std::uint32_t) { return std::nullopt; });
        widget_->setFixedSize(520, 500);
        widget_->show();
    }

    void select(Tab tab) {
        widget_->view().selectTab(tab);
        dispatch_.runMain();
        settle();
    }
    /// Has a rejected key press and a conflict to tell of.
    void goWrong() {
        settings_.setShortcutRegistrationState(RegistrationState::conflict);
        widget_->view().shortcutField().mouseDown();
        widget_->view().shortcutField().keyDown(40, 0);
        dispatch_.runMain();
        settle();
    }
    void scrollDown() {
        for (QScrollBar* bar : widget_->findChildren<QScrollBar*>()) {
            bar->setValue(bar->maximum());
        }
        settle();
    }
    QImage picture(qreal ratio) {
        QImage image(widget_->size() * ratio, QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(ratio);
        widget_->render(&image);
        return image;
    }

 private:
    platform::testing::MemoryUserDefaults store_;
    platform::testing::ScriptedLoginService loginService_{platform::LoginServiceStatus::enabled};
    platform::testing::ManualDispatch dispatch_;
    platform::testing::ScriptedKeyboardLayout layout_{{{37, "L"}, {40, "K"}}};
    UserSettings settings_{store_, loginService_};
    std::unique_ptr<SettingsWidget> widget_;
};

/// The names of the pictures begin with `prefix`.
bool makePictures(const QDir& folder, const Theme& theme, const QString& prefix, qreal ratio) {
    Scene scene(theme);
    bool isWritten = true;
    const auto keep = [&](const char* name) {
        const QString path = folder.filePath(QString("%1settings_%2_%3_%4x.png")
                                                 .arg(prefix, name)
                                                 .arg(theme.isDark() ? "dark" : "light")
                                                 .arg(ratio));
        if (!scene.picture(ratio).save(path)) {
            QTextStream(stderr) << "cannot write " << path << '\n';
            isWritten = false;
        }
    };
    scene.select(Tab::general);
    keep("general");
    scene.scrollDown();
    keep("general_end");
    scene.goWrong();
    scene.scrollDown();
    keep("general_wrong");
    scene.select(Tab::customize);
    keep("customize");
    scene.scrollDown();
    keep("customize_end");
    scene.select(Tab::about);
    keep("about");
    return isWritten;
}

int makePictures(const QDir& folder, const QFont& font) {
    for (const bool isDark : {false, true}) {
        Theme theme(isDark);
        for (const qreal ratio : {1.0, 1.25, 1.5, 2.0}) {
            if (!makePictures(folder, theme, {}, ratio)) {
                return 1;
            }
        }
        for (const int percent : {125, 150, 200}) {
            QFont large = font;
            large.setPointSizeF(font.pointSizeF() * percent / 100);
            QApplication::setFont(large);
            if (!makePictures(folder, theme, QString("font%1_").arg(percent), 1)) {
                return 1;
            }
        }
        QApplication::setFont(font);
        theme.setHighContrast(true);
        if (!makePictures(folder, theme, "contrast_", 1)) {
            return 1;
        }
    }
    return 0;
}

}  // namespace
}  // namespace tarnwick::qt

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    if (argc != 2 || !QDir().mkpath(argv[1])) {
        QTextStream(stderr) << "usage: settings_screens FOLDER\n";
        return 2;
    }
    QFont font = QApplication::font();
    font.setFamily("Inter");
    font.setPointSizeF(11);
    QApplication::setFont(font);
    return tarnwick::qt::makePictures(QDir(argv[1]), font);
}
