// SPDX-License-Identifier: MIT
#include "platform/qt/font_memory.h"

#include <QtGui/private/qfont_p.h>

namespace tarnwick::qt {

void freeUnusedFonts() {
    QFontCache::instance()->clear();
}

}  // namespace tarnwick::qt
