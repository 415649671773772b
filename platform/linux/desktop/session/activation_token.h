// SPDX-License-Identifier: MIT
// Tokens by which a compositor lets another program's window come to the front.
#pragma once

#include <QObject>
#include <QString>
#include <functional>

namespace tarnwick::platform {

/// Asks the compositor for a token for the last press in the active window. False without a
/// compositor, an active window or a toolkit of version 6.5. `made` is called from the event loop;
/// never if the compositor has no tokens, and not after `owner` is destroyed. Main thread.
bool requestActivationToken(QObject* owner, std::function<void(const QString& token)> made);

}  // namespace tarnwick::platform
