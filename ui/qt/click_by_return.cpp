// SPDX-License-Identifier: MIT
#include "ui/qt/click_by_return.h"

namespace tarnwick::qt {

bool clickByReturn(QAbstractButton& button, const QKeyEvent& event) {
    if (event.key() != Qt::Key_Return && event.key() != Qt::Key_Enter) {
        return false;
    }
    if (!event.isAutoRepeat()) {
        button.click();
    }
    return true;
}

}  // namespace tarnwick::qt
