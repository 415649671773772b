// SPDX-License-Identifier: MIT
#include "tests/platform/linux/desktop/random_bodies.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusSignature>
#include <QDBusVariant>
#include <QList>
#include <QMap>
#include <QStringList>
#include <random>
#include <utility>

#include "platform/linux/desktop/keyboard/portal_types.h"
#include "platform/linux/desktop/tray/dbus_types.h"

namespace tarnwick::platform::testing {
namespace {

constexpr unsigned kSeed = 20'240'517;
/// Of values in values.
constexpr int kDepth = 3;

QVariant inVariant(const QVariant& value) {
    return QVariant::fromValue(QDBusVariant(value));
}

}  // namespace

QString signatureOf(const QVariantList& body) {
    QDBusArgument argument;
    for (const QVariant& each : body) {
        argument.appendVariant(each);
    }
    return argument.currentSignature();
}

RandomBodies::RandomBodies()
    : RandomBodies(
          [random = std::mt19937(kSeed)]() mutable { return static_cast<unsigned>(random()); }) {}

RandomBodies::RandomBodies(Source source) : random_(std::move(source)) {
    registerBusTypes();
    registerPortalTypes();
    qDBusRegisterMetaType<QList<QVariantMap>>();
    qDBusRegisterMetaType<QMap<QString, QVariantMap>>();
    qDBusRegisterMetaType<QMap<uint, QString>>();
}

int RandomBodies::roll(int limit) {
    return static_cast<int>(random_() % static_cast<unsigned>(limit));
}

QVariantList RandomBodies::next(const QVariantList& truth) {
    QVariantList body;
    if (roll(2) == 0) {
        for (int count = roll(5); count > 0; --count) {
            body.append(value(kDepth));
        }
        return body;
    }
    body = truth;
    const qsizetype place = body.isEmpty() ? 0 : roll(static_cast<int>(body.size()));
    switch (body.isEmpty() ? 0 : roll(4)) {
        case 0:
            body.insert(place, value(kDepth));
            break;
        case 1:
            body.removeAt(place);
            break;
        case 2:
            body[place] = value(kDepth);
            break;
        default:
            for (QVariant& each : body) {
                each = withOtherContent(each);
            }
    }
    return body;
}

QVariant RandomBodies::value(int depth) {
    switch (roll(depth > 0 ? 24 : 8)) {
        case 8:
            return QStringList{"a", "b"};
        case 9:
            return QByteArray("bytes");
        case 10:
            return QVariant::fromValue(QList<int>{1, 2, 3});
        case 11:
            return QVariant::fromValue(QList<QDBusObjectPath>{QDBusObjectPath("/a")});
        case 12:
            return QVariantList{value(depth - 1), value(depth - 1)};
        case 13:
        case 14:
            return dictionary(depth);
        case 15:
            return QVariant::fromValue(QMap<uint, QString>{{1, "a"}});
        case 16:
            return QVariant::fromValue(QMap<QString, QVariantMap>{{"a", dictionary(depth - 1)}});
        case 17:
            return QVariant::fromValue(QList<QVariantMap>{dictionary(depth - 1)});
        case 18:
            return QVariant::fromValue(PortalShortcutEntries{{"panel", dictionary(depth - 1)}});
        case 19:
            return QVariant::fromValue(
                MenuEvents{{.id = 1, .type = "clicked", .data = QDBusVariant(1), .timestamp = 0}});
        case 20:
        case 21:
            return inVariant(value(depth - 1));
        case 22:
        case 23:
            return structure(depth);
        default:
            return basic();
    }
}

QVariant RandomBodies::basic() {
    switch (roll(12)) {
        case 0:
            return roll(2) == 0;
        case 1:
            return QVariant::fromValue(static_cast<uchar>(roll(256)));
        case 2:
            return QVariant::fromValue(static_cast<short>(roll(9)));
        case 3:
            return QVariant::fromValue(static_cast<ushort>(roll(9)));
        case 4:
            return roll(9) - 4;
        case 5:
            return static_cast<uint>(roll(9));
        case 6:
            return qlonglong{-1};
        case 7:
            return qulonglong{1};
        case 8:
            return 0.5;
        case 9:
            return QVariant::fromValue(QDBusObjectPath("/a/path"));
        case 10:
            return QVariant::fromValue(QDBusSignature("a{sv}"));
        default:
            return QString("text");
    }
}

QVariant RandomBodies::structure(int depth) {
    QDBusArgument argument;
    argument.beginStructure();
    for (int count = 1 + roll(3); count > 0; --count) {
        argument.appendVariant(value(depth - 1));
    }
    argument.endStructure();
    return QVariant::fromValue(argument);
}

QVariantMap RandomBodies::dictionary(int depth) {
    QVariantMap map;
    for (int count = roll(3); count > 0; --count) {
        map.insert(QString("key%1").arg(count), value(depth - 1));
    }
    return map;
}

QVariant RandomBodies::withOtherContent(const QVariant& original) {
    if (original.metaType() == QMetaType::fromType<QDBusVariant>()) {
        return inVariant(value(kDepth));
    }
    const auto changed = [this](QVariantMap map) {
        for (QVariant& each : map) {
            each = value(kDepth);
        }
        return map;
    };
    if (original.metaType() == QMetaType::fromType<QVariantMap>()) {
        return changed(original.toMap());
    }
    if (original.metaType() == QMetaType::fromType<PortalShortcutEntries>()) {
        auto entries = original.value<PortalShortcutEntries>();
        for (PortalShortcutEntry& each : entries) {
            each.properties = changed(each.properties);
        }
        return QVariant::fromValue(entries);
    }
    return original;
}

}  // namespace tarnwick::platform::testing
