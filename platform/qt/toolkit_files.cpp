// SPDX-License-Identifier: MIT
#include "platform/qt/toolkit_files.h"

#include <QWindow>
#include <fontconfig/fontconfig.h>

namespace tarnwick::qt {

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

}  // namespace tarnwick::qt
