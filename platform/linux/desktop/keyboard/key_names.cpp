// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/keyboard/key_names.h"

#include <QHash>
#include <QRegularExpression>

namespace tarnwick::platform {

QString plainKeys(const QString& text) {
    static const QRegularExpression accelerator(R"((?:^|\s)((?:<\w+>)+)(\S+)$)");
    const QRegularExpressionMatch match = accelerator.match(text.trimmed());
    if (!match.hasMatch()) {
        return text.trimmed();
    }
    QString modifiers = match.captured(1);
    const QString key = match.captured(2);
    return modifiers.remove('<').replace('>', '+') + (key.size() == 1 ? key.toUpper() : key);
}

QStringList keyParts(const QString& text) {
    static const QHash<QString, QString> kNames{
        {"meta", "logo"}, {"super", "logo"}, {"control", "ctrl"}, {"primary", "ctrl"}};
    QStringList parts;
    for (const QString& part : plainKeys(text).toLower().split('+', Qt::SkipEmptyParts)) {
        parts.append(kNames.value(part, part));
    }
    parts.sort();
    return parts;
}

bool isOfGnome(const QByteArray& settings, const QStringList& keyParts) {
    static const QRegularExpression ofShell(
        R"(^org\.gnome\.(?:(?:desktop\.wm|shell|mutter|mutter\.wayland)\.keybindings|)"
        R"(settings-daemon\.plugins\.media-keys) .*$)",
        QRegularExpression::MultilineOption);
    static const QRegularExpression quoted("'(<[^']+)'");
    auto lines = ofShell.globalMatch(QString::fromUtf8(settings));
    while (lines.hasNext()) {
        auto keys = quoted.globalMatch(lines.next().captured());
        while (keys.hasNext()) {
            if (platform::keyParts(keys.next().captured(1)) == keyParts) {
                return true;
            }
        }
    }
    return false;
}

}  // namespace tarnwick::platform
