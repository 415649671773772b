// SPDX-License-Identifier: MIT
#include "platform/qt/toolkit_memory.h"

#include <QPixmapCache>
#include <QtGui/private/qfont_p.h>

namespace tarnwick::qt {

void freeUnusedFonts() {
    // With the cache itself: fonts that live on, such as a theme's, keep what they loaded after a
    // mere clear(), because the cache then knows nothing of it any more. They load again for a new
    // cache, and let go of what they had.
    QFontCache::cleanup();
}

void freeUnusedPictures() {
    QPixmapCache::clear();
}

}  // namespace tarnwick::qt
