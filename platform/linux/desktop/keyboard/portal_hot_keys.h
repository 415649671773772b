// Hot keys of desktops that keep their keys to themselves and give them through a portal.
#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QTimer>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>

#include "platform/hot_keys.h"
#include "platform/linux/desktop/keyboard/hot_key_handlers.h"
#include "platform/linux/desktop/keyboard/keysym_layout.h"
#include "platform/linux/desktop/keyboard/portal_shortcut.h"
#include "platform/linux/desktop/session/service_signals.h"

namespace tarnwick::platform {

/// Why the portal gives no hot key.
namespace portal_hot_key_status {
/// The portal, or its user, has not decided yet.
inline constexpr std::int32_t kAsking = 1;
/// The portal took the shortcut but names no keys for it.
inline constexpr std::int32_t kUnbound = 2;
/// The portal or its user said no, or ended it later.
inline constexpr std::int32_t kRefused = 3;
/// There is no session bus, no portal, or none that has shortcuts.
inline constexpr std::int32_t kUnavailable = 4;
/// No layout in use has anything on the key.
inline constexpr std::int32_t kNoSuchKey = 5;
}  // namespace portal_hot_key_status

/// One hot key at a time. Registering it asks the portal and answers kAsking; once the portal has
/// decided otherwise, registering the same again gives its decision. What nobody registers then,
/// or again after having given it back, is given back to the portal after a moment; what was
/// withdrawn, at once. Also when the portal appears, registering again is suggested: it asks once
/// more. Never waits for the bus; main thread.
class PortalHotKeys final : public QObject, public HotKeys {
    Q_OBJECT

 public:
    /// `layout` outlives the hot keys. A decision of the portal is kept for `patience` for those
    /// who register again.
    PortalHotKeys(QDBusConnection bus, KeysymLayout& layout,
                  std::chrono::milliseconds patience = std::chrono::seconds(1));
    ~PortalHotKeys() override;

    HandlerResult installEventHandler(HotKeyHandler handler) override;
    RegistrationResult registerEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                           HotKeyID id) override;
    void withdrawRegistration() override;
    void setRegistrationChanged(std::function<void()> changed) override;

 private:
    struct Closer {
        void operator()(PortalShortcut* shortcut) const;
    };

    /// What registering the shortcut again would give.
    std::int32_t status() const;
    void begin();
    void stateChanged();
    void pressed();
    void portalChanged(const QString& owner);
    void release(int handle);
    void dropUnclaimed();
    void drop();
    /// Tells when there is a hot key that whoever registers does not know of, or the other way
    /// round.
    void tellIfChanged();
    /// Tells from the event loop, once however often it is called before that.
    void tellLater();
    void tell();

    QDBusConnection bus_;
    KeysymLayout& layout_;
    const std::chrono::milliseconds patience_;
    HotKeyHandlers handlers_;
    std::function<void()> changed_;
    ServiceSignals portal_;
    std::uint32_t keyCode_ = 0;
    std::uint32_t modifiers_ = 0;
    HotKeyID id_;
    /// For the last combination that was asked for; null when it was given back or lost.
    std::unique_ptr<PortalShortcut, Closer> shortcut_;
    /// A combination is asked for in the next turn: in this one another may follow.
    QTimer begin_;
    QTimer drop_;
    /// Outcome of the last registration, as far as whoever registers knows.
    std::int32_t told_ = hot_key_status::kSuccess;
    bool isTelling_ = false;
    /// The last registration came to nothing because the portal was not there.
    bool awaitsPortal_ = false;
    /// The press that proved that there are keys, before whoever registers knew.
    bool hasPress_ = false;
    /// Number of the handle that holds the hot key; 0 when none does.
    int holder_ = 0;
    int handles_ = 0;
};

}  // namespace tarnwick::platform
