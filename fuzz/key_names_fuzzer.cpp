// SPDX-License-Identifier: MIT
// Any text as the keys that a portal tells, and as the settings of GNOME.
#include <QByteArray>
#include <QString>
#include <QStringList>
#include <algorithm>

#include "fuzz/fuzzer.h"
#include "platform/linux/desktop/keyboard/key_names.h"

using tarnwick::fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tarnwick::platform;
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const QString text = QString::fromUtf8(bytes);

    const QStringList parts = keyParts(text);
    require(std::ranges::is_sorted(parts) && !parts.contains(QString()));
    const QString plain = plainKeys(text);
    require(plain.size() <= 2 * text.size() && plain == plain.trimmed());
    require(keyParts(plain) == parts || text.contains('<'));

    const bool isTaken = isOfGnome(bytes, {"l", "logo"});
    require(!isTaken || (bytes.contains("org.gnome.") && bytes.contains('<')));
    // GNOME's own settings may hold any accelerator, and it is found there.
    const bool isPlain =
        std::ranges::all_of(bytes, [](char each) { return each >= ' ' && each <= '~'; });
    if (isPlain && size > 1 && bytes.startsWith('<') && !bytes.contains('\'')) {
        require(isOfGnome("org.gnome.shell.keybindings a ['" + bytes + "']", parts));
    }
    return 0;
}
