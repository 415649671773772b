// SPDX-License-Identifier: MIT
// Any calls, signals and answers, with arguments of any types, over a bus of its own: to the item,
// its menu and the program's object, from strangers and from the services that the program listens
// to, and as answers to what the program asks them.
//
// Each message is a byte for its kind, one for which, and those that its arguments are made from.
#include <QCoreApplication>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <utility>

#include "fuzz/fuzzer.h"
#include "platform/linux/desktop/keyboard/portal_hot_keys.h"
#include "platform/linux/desktop/keyboard/portal_types.h"
#include "platform/linux/desktop/session/appearance.h"
#include "platform/linux/desktop/session/bus_calls.h"
#include "platform/linux/desktop/session/single_instance.h"
#include "platform/linux/desktop/session/sleep_signals.h"
#include "platform/linux/desktop/tray/dbus_menu.h"
#include "platform/linux/desktop/tray/dbus_types.h"
#include "platform/linux/desktop/tray/notifier_registration.h"
#include "platform/linux/desktop/tray/status_notifier_item.h"
#include "tests/platform/linux/desktop/keyboard/installed_layout.h"
#include "tests/platform/linux/desktop/private_bus.h"
#include "tests/platform/linux/desktop/random_bodies.h"

namespace {

using namespace tarnwick::platform;
using tarnwick::fuzz::require;
using testing::ask;
using testing::RandomBodies;
using testing::signatureOf;

constexpr int kMostMessages = 256;
constexpr std::uint32_t kKeyL = 37;
constexpr auto kMenuPath = "/Menu";
constexpr auto kSession = "/a/session";
constexpr auto kPortal = "/org/freedesktop/portal/desktop";
constexpr const char* kServices[] = {"org.freedesktop.portal.Desktop", "org.freedesktop.login1",
                                     "org.kde.StatusNotifierWatcher", "org.kde.kglobalaccel"};

/// The bytes of an input, then zeros.
class Bytes final {
 public:
    Bytes(const std::uint8_t* data, std::size_t size) : at_(data), end_(data + size) {}
    bool atEnd() const { return at_ == end_; }
    unsigned next() { return atEnd() ? 0 : *at_++; }

 private:
    const std::uint8_t* at_;
    const std::uint8_t* end_;
};

struct Message {
    QString path;
    QString interface;
    QString member;
    QVariantList body;
};

QVariant inVariant(const QVariant& value) {
    return QVariant::fromValue(QDBusVariant(value));
}

QVariant path(const QString& text) {
    return QVariant::fromValue(QDBusObjectPath(text));
}

/// Not in the words of GNOME, after which a process is started.
PortalShortcutEntries shortcuts() {
    return {{"panel-LOGO-l", {{"trigger_description", "Meta+K"}}}};
}

QList<Message> calls() {
    const QString item = StatusNotifierItem::kInterface;
    const QString menu = DBusMenu::kInterface;
    const QString itemPath = StatusNotifierItem::kPath;
    const QString properties = "org.freedesktop.DBus.Properties";
    const QVariant ids = QVariant::fromValue(QList<int>{0, 1, 7});
    return {
        {itemPath, item, "Activate", {1, 2}},
        {itemPath, item, "SecondaryActivate", {1, 2}},
        {itemPath, item, "XAyatanaSecondaryActivate", {1U}},
        {itemPath, item, "ProvideXdgActivationToken", {"token"}},
        {itemPath, item, "Scroll", {1, "vertical"}},
        {itemPath, properties, "Get", {item, "Title"}},
        {itemPath, properties, "GetAll", {item}},
        {itemPath, properties, "Set", {item, "Title", inVariant("a")}},
        {itemPath, "org.freedesktop.DBus.Introspectable", "Introspect", {}},
        {kMenuPath, menu, "GetLayout", {0, -1, QStringList{"label"}}},
        {kMenuPath, menu, "GetGroupProperties", {ids, QStringList{"label"}}},
        {kMenuPath, menu, "GetProperty", {1, "label"}},
        {kMenuPath, menu, "Event", {1, "clicked", inVariant(""), 0U}},
        {kMenuPath,
         menu,
         "EventGroup",
         {QVariant::fromValue(
             MenuEvents{{.id = 1, .type = "clicked", .data = QDBusVariant(""), .timestamp = 0}})}},
        {kMenuPath, menu, "AboutToShow", {0}},
        {kMenuPath, menu, "AboutToShowGroup", {ids}},
        {SingleInstance::kPath, SingleInstance::kInterface, "Activate", {QVariantMap()}},
        {SingleInstance::kPath,
         SingleInstance::kInterface,
         "Open",
         {QStringList{"address"}, QVariantMap()}},
        {SingleInstance::kPath,
         SingleInstance::kInterface,
         "ActivateAction",
         {"settings", QVariantList(), QVariantMap{{"activation-token", "a"}}}},
    };
}

const Message kWoke{
    "/org/freedesktop/login1", "org.freedesktop.login1.Manager", "PrepareForSleep", {false}};

QList<Message> signalsOfServices() {
    const auto setting = [](const char* space, const char* key, const QVariant& value) {
        return Message{kPortal,
                       "org.freedesktop.portal.Settings",
                       "SettingChanged",
                       {space, key, inVariant(value)}};
    };
    const QString keys = "org.freedesktop.portal.GlobalShortcuts";
    const QString watcher = "org.kde.StatusNotifierWatcher";
    return {
        kWoke,
        setting("org.freedesktop.appearance", "color-scheme", 1U),
        setting("org.freedesktop.appearance", "contrast", 1U),
        setting("org.gnome.desktop.interface", "enable-animations", false),
        setting("org.kde.kdeglobals.KDE", "AnimationDurationFactor", "0"),
        {kPortal,
         keys,
         "Activated",
         {path(kSession), "panel-LOGO-l", qulonglong{1}, QVariantMap()}},
        {kPortal, keys, "ShortcutsChanged", {path(kSession), QVariant::fromValue(shortcuts())}},
        {kSession, "org.freedesktop.portal.Session", "Closed", {QVariantMap()}},
        {"/kglobalaccel",
         "org.kde.KGlobalAccel",
         "yourShortcutsChanged",
         {QStringList{"org.tarnwick.Tarnwick", "panel-LOGO-l"},
          QVariant::fromValue(QList<QList<int>>())}},
        {"/StatusNotifierWatcher", watcher, "StatusNotifierHostRegistered", {}},
        {"/StatusNotifierWatcher", watcher, "StatusNotifierHostUnregistered", {}},
        {"/org/freedesktop/DBus",
         "org.freedesktop.DBus",
         "NameOwnerChanged",
         {kServices[0], "", ":1.99"}},
    };
}

/// Owns the names of all services and answers anything.
class Liar final : public QDBusVirtualObject {
 public:
    explicit Liar(QDBusConnection bus) : bus_(std::move(bus)) {
        qDBusRegisterMetaType<QList<QList<int>>>();
        bus_.registerVirtualObject("/", this, QDBusConnection::SubPath);
        own(true);
    }
    void own(bool owns) {
        for (const char* service : kServices) {
            owns ? bus_.registerService(service) : bus_.unregisterService(service);
        }
    }
    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& call, const QDBusConnection&) override {
        const QVariantList truth = truthFor(call);
        bus_.send(call.createReply(lieOr(truth)));
        if (!truth.isEmpty() &&
            truth.first().metaType() == QMetaType::fromType<QDBusObjectPath>()) {
            QDBusMessage response = QDBusMessage::createTargetedSignal(
                call.service(), truth.first().value<QDBusObjectPath>().path(),
                "org.freedesktop.portal.Request", "Response");
            response.setArguments(
                lieOr({0U, QVariantMap{{"session_handle", QString(kSession)},
                                       {"shortcuts", QVariant::fromValue(shortcuts())}}}));
            bus_.send(response);
        }
        return true;
    }

    /// Tells the truth while null.
    RandomBodies* bodies = nullptr;

 private:
    static QVariantList truthFor(const QDBusMessage& call) {
        const QString member = call.member();
        if (member == "Get") {
            return {call.path() == "/StatusNotifierWatcher" ? inVariant(true) : inVariant(1U)};
        }
        if (member == "Read") {
            return {inVariant(inVariant(1U))};
        }
        if (member == "globalShortcutAvailable") {
            return {true};
        }
        if (call.interface() == "org.freedesktop.portal.GlobalShortcuts") {
            const auto options =
                qdbus_cast<QVariantMap>(call.arguments().value(call.arguments().size() - 1));
            return {path("/org/freedesktop/portal/desktop/request/" +
                         call.service().mid(1).replace('.', '_') + '/' +
                         options.value("handle_token").toString())};
        }
        return {};
    }
    QVariantList lieOr(const QVariantList& truth) {
        return bodies != nullptr && bodies->roll(3) == 0 ? bodies->next(truth) : truth;
    }

    QDBusConnection bus_;
};

/// The bus and what stays between inputs; ends with the process.
struct Surroundings {
    static Surroundings& get() {
        static Surroundings* const made = [] {
            auto* surroundings = new Surroundings();
            // Before the library of the bus ends.
            std::atexit([] { delete &get(); });
            return surroundings;
        }();
        return *made;
    }

    int count = 1;
    char name[8] = "fuzz";
    char* arguments[1] = {name};
    QCoreApplication application{count, arguments};
    testing::PrivateBus daemon;
    QDBusConnection bus = daemon.connect();
    QDBusConnection service = daemon.connect();
    QDBusConnection stranger = daemon.connect();
    testing::InstalledLayout layout{"us"};
    Liar liar{service};
};

/// All of the program that is on the bus.
struct Program {
    explicit Program(Surroundings& around)
        : instance(around.bus, {}), keys(around.bus, around.layout, keyOptions()) {
        require(instance.claim() == SingleInstance::Claim::first);
        instance.setPerform([this](Request, const QString&) { ++actions; });
        registration.start({});
        handler =
            keys.installEventHandler([](const HotKeyEvent*) { return hot_key_status::kSuccess; })
                .handle;
        keys.setRegistrationChanged([this] { addKeys(); });
        addKeys();
    }
    static PortalHotKeys::Options keyOptions() {
        return {.patience = std::chrono::hours(1), .gnomeSettings = {"/bin/true"}};
    }
    void addKeys() {
        handle.reset();
        handle = keys.registerEventHotKey(kKeyL, hot_key_modifier::kCommand, {1, 1}).handle;
    }

    QDBusConnection bus = Surroundings::get().bus;
    /// What calls have made the program do.
    int actions = 0;
    int woken = 0;
    SingleInstance instance;
    DBusMenu menu{bus,
                  kMenuPath,
                  {{.label = "Open_Panel", .chosen = [this] { ++actions; }},
                   {.label = {}, .chosen = nullptr}},
                  [this] { ++actions; }};
    StatusNotifierItem item{bus,
                            kMenuPath,
                            {.activate = [this](const QPoint&) { ++actions; },
                             .secondaryActivate = [this] { ++actions; },
                             .activationToken = [this](const QString&) { ++actions; }}};
    ColorScheme scheme{bus, {}};
    HighContrast contrast{bus, {}};
    ReducedMotion motion{bus, {}};
    SleepSignals sleep{bus, [this] { ++woken; }};
    NotifierRegistration registration{
        bus, [](unsigned) { return "a host"; }, {.first = 1, .longest = 1}};
    PortalHotKeys keys;
    std::unique_ptr<HotKeyHandle> handler;
    std::unique_ptr<HotKeyHandle> handle;
};

class Run final {
 public:
    explicit Run(Bytes& bytes) : bytes_(bytes) {
        // The portal is asked for its version, a session and the keys.
        for (int i = 0; i < 3; ++i) {
            settle();
        }
        around_.liar.bodies = &bodies_;
    }
    ~Run() { around_.liar.bodies = nullptr; }

    void send() {
        switch (bytes_.next() % 8) {
            case 0:
            case 1:
            case 2:
                call(calls_[bytes_.next() % calls_.size()]);
                break;
            case 3:
            case 4:
                signal(around_.service, signals_[bytes_.next() % signals_.size()]);
                break;
            case 5:
                signal(around_.stranger, signals_[bytes_.next() % signals_.size()]);
                break;
            case 6:
                program_.keys.withdrawRegistration();
                program_.addKeys();
                settle();
                break;
            default:
                around_.liar.own(false);
                around_.liar.own(true);
                settle();
        }
    }
    void check() {
        settle();
        require(program_.woken <= wakings_);
        require(wellFormed_ > 0 || program_.actions == 0);
    }

 private:
    void call(const Message& method) {
        QDBusMessage message = QDBusMessage::createMethodCall(
            around_.bus.baseService(), method.path, method.interface, method.member);
        const QVariantList body = bodies_.next(method.body);
        wellFormed_ += signatureOf(body) == signatureOf(method.body);
        message.setArguments(body);
        around_.stranger.send(message);
    }
    void signal(const QDBusConnection& from, const Message& of) {
        // To the program alone, which needs no subscription to reach it.
        QDBusMessage message = QDBusMessage::createTargetedSignal(around_.bus.baseService(),
                                                                  of.path, of.interface, of.member);
        const QVariantList body = bodies_.next(of.body);
        message.setArguments(body);
        wakings_ +=
            of.member == kWoke.member && &from == &around_.service && signatureOf(body) == "b";
        from.send(message);
    }
    /// Calls that go through the program's event loop, behind all that was sent before.
    void settle() {
        QDBusMessage layout = QDBusMessage::createMethodCall(around_.bus.baseService(), kMenuPath,
                                                             DBusMenu::kInterface, "GetLayout");
        layout.setArguments({0, -1, QStringList()});
        for (const QDBusConnection& each : {around_.service, around_.stranger}) {
            require(ask(each, layout).signature() == "u(ia{sv}av)");
        }
    }

    Bytes& bytes_;
    RandomBodies bodies_{[this] { return bytes_.next(); }};
    Surroundings& around_ = Surroundings::get();
    const QList<Message> calls_ = calls();
    const QList<Message> signals_ = signalsOfServices();
    Program program_{around_};
    int wellFormed_ = 0;
    int wakings_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Bytes bytes(data, size);
    Run run(bytes);
    for (int i = 0; i < kMostMessages && !bytes.atEnd(); ++i) {
        run.send();
    }
    run.check();
    return 0;
}
