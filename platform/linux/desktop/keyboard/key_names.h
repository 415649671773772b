// SPDX-License-Identifier: MIT
// Combinations of keys as desktops write them.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace tarnwick::platform {

/// The keys that a text such as "SHIFT+LOGO+l", "Meta+Shift+L" or "Press <Shift><Super>l" means:
/// sorted, in lower case, and each modifier under one name. Equal for texts that mean the same,
/// as far as they are in English.
QStringList keyParts(const QString& text);

/// The text without the words and marks of GNOME's portal: "Shift+Super+L".
QString plainKeys(const QString& text);

/// Whether GNOME's shell or its settings daemon has given these `keyParts` to something of its own.
/// `settings`: what `gsettings list-recursively` prints.
bool isOfGnome(const QByteArray& settings, const QStringList& keyParts);

}  // namespace tarnwick::platform
