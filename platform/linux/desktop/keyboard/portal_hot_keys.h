// SPDX-License-Identifier: MIT
// Hot keys of desktops that do not let programs grab keys and grant shortcuts through a portal
// instead.
#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QStringList>
#include <QTimer>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/hot_keys.h"
#include "platform/linux/desktop/keyboard/hot_key_handlers.h"
#include "platform/linux/desktop/keyboard/keysym_layout.h"
#include "platform/linux/desktop/keyboard/portal_shortcut.h"
#include "platform/linux/desktop/session/service_signals.h"

namespace tarnwick::platform {

/// Why the portal gives no hot key. A shortcut that the portal took without naming keys for it
/// counts as hot_key_status::kExists: another program, or the desktop itself, has its keys.
namespace portal_hot_key_status {
/// The portal, or its user, has not decided yet.
inline constexpr std::int32_t kAsking = hot_key_status::kPending;
/// The portal or its user said no, or ended it later.
inline constexpr std::int32_t kRefused = 2;
/// There is no session bus, no portal, or none that has shortcuts.
inline constexpr std::int32_t kUnavailable = 3;
/// No layout in use has anything on the key.
inline constexpr std::int32_t kNoSuchKey = 4;
}  // namespace portal_hot_key_status

/// One hot key at a time. Main thread. Never waits for the bus.
///
/// A registration asks the portal and returns kAsking. When the portal grants the shortcut, with or
/// without keys, or takes it back, the function of setRegistrationChanged() is called; the same
/// registration then returns the portal's decision. The function is also called when a portal
/// appears after the last registration failed, or was lost, for lack of one: the next registration
/// asks again.
///
/// A decided shortcut that is not claimed within `patience`, or not claimed again after its handle
/// was destroyed, is given back to the portal; one without keys is kept, because a press may still
/// prove that it has some. A withdrawn shortcut is given back at once.
class PortalHotKeys final : public QObject, public HotKeys {
    Q_OBJECT

 public:
    struct Options {
        /// How long a decision of the portal waits for the next registration.
        std::chrono::milliseconds patience = std::chrono::seconds(1);
        /// Prints one line for the user.
        std::function<void(std::string_view)> notice{};
        /// Tells later, on the main thread, whether the portal can find the program's desktop
        /// entry. Asked when the portal gives nothing; empty if that cannot be known.
        std::function<void(std::function<void(bool isInstalled)> found)> findEntry{};
        /// The command that prints the settings of GNOME.
        QStringList gnomeSettings{"gsettings", "list-recursively"};
    };

    /// Requires: `layout` outlives this object.
    PortalHotKeys(QDBusConnection bus, KeysymLayout& layout, Options options);
    ~PortalHotKeys() override;

    HandlerResult installEventHandler(HotKeyHandler handler) override;
    RegistrationResult registerEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                           HotKeyID id) override;
    void withdrawRegistration() override;
    std::string otherKeys() const override;
    void setRegistrationChanged(std::function<void()> changed) override;

 private:
    struct Closer {
        void operator()(PortalShortcut* shortcut) const;
    };

    /// The status that the same registration would return now.
    std::int32_t status() const;
    void begin();
    void stateChanged();
    void pressed();
    void portalChanged(const QString& owner);
    void release(int handle);
    void dropUnclaimed();
    void drop();
    /// Reports a change if the portal decided, or a hot key became available, was lost, lacks its
    /// keys or has other keys, since the last status that the caller has seen.
    void tellIfChanged();
    /// Reports from the event loop, once for all calls before that.
    void tellLater();
    void tell();
    /// Says once why an installation would help.
    void noticeRefusal();

    QDBusConnection bus_;
    KeysymLayout& layout_;
    const Options options_;
    HotKeyHandlers handlers_;
    std::function<void()> changed_;
    ServiceSignals portal_;
    std::uint32_t keyCode_ = 0;
    std::uint32_t modifiers_ = 0;
    HotKeyID id_;
    /// For the last combination that was asked for; null when it was given back or lost.
    std::unique_ptr<PortalShortcut, Closer> shortcut_;
    /// Asks for a combination in the next turn, because another one may follow in this turn.
    QTimer begin_;
    QTimer drop_;
    /// Outcome of the last registration, as far as the caller knows.
    std::int32_t told_ = hot_key_status::kSuccess;
    QString toldKeys_;
    bool isTelling_ = false;
    /// The last registration failed because the portal was not there.
    bool awaitsPortal_ = false;
    /// A press arrived before the caller knew of the keys. The next registration delivers it.
    bool hasPress_ = false;
    bool isLookedFor_ = false;
    /// Number of the handle that holds the hot key; 0 when none does.
    int holder_ = 0;
    int handles_ = 0;
};

}  // namespace tarnwick::platform
