// SPDX-License-Identifier: MIT
#include "platform/qt/toolkit_files.h"

#include <QDir>
#include <QEvent>
#include <QFileInfo>
#include <QGuiApplication>
#include <QStandardPaths>
#include <QWindow>
#include <fontconfig/fontconfig.h>
#include <utility>

namespace tarnwick::qt {
namespace {

/// Seconds after which the user has gone on and expects no window, and no page, any more.
constexpr double kPatience = 3;

}  // namespace

void stopLookingForFonts() {
    FcConfigSetRescanInterval(nullptr, 0);
}

void loadPointers() {
    QWindow window;
    window.create();
    for (const Qt::CursorShape shape : {Qt::ArrowCursor, Qt::PointingHandCursor, Qt::IBeamCursor}) {
        window.setCursor(shape);
    }
}

FirstWindows::FirstWindows(platform::Dispatch& dispatch) : dispatch_(dispatch) {
    areRead_ = !QGuiApplication::platformName().startsWith("wayland");
    if (!areRead_) {
        QCoreApplication::instance()->installEventFilter(this);
    }
}

void FirstWindows::show(const std::function<void()>& window) {
    if (areRead_) {
        window();
        return;
    }
    if (std::exchange(isAsking_, true)) {
        return;
    }
    const bool isAsked = dispatch_.detached(
        [weak = std::weak_ptr(self_), window, &dispatch = dispatch_, begin = dispatch_.now()] {
            for (const char* file : {".drirc", ".icons"}) {
                QFileInfo::exists(QDir::home().filePath(file));
            }
            dispatch.async([weak, window, &dispatch, begin] {
                if (const auto self = weak.lock()) {
                    (*self)->isAsking_ = false;
                    if (dispatch.now() - begin < kPatience) {
                        window();
                    }
                }
            });
        });
    if (!isAsked) {
        isAsking_ = false;
        window();
    }
}

bool FirstWindows::eventFilter(QObject* watched, QEvent* event) {
    // The pointer has its picture by then.
    if (event->type() == QEvent::Enter) {
        areRead_ = true;
        QCoreApplication::instance()->removeEventFilter(this);
    }
    return QObject::eventFilter(watched, event);
}

void afterFoldersOfPrograms(platform::Dispatch& dispatch, std::function<void()> open) {
    dispatch.detached([&dispatch, open = std::move(open), begin = dispatch.now()]() mutable {
        QStandardPaths::findExecutable("xdg-open");
        dispatch.async([&dispatch, open = std::move(open), begin] {
            if (dispatch.now() - begin < kPatience) {
                open();
            }
        });
    });
}

}  // namespace tarnwick::qt
