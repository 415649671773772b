// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/keyboard/portal_hot_keys.h"

#include <QMetaObject>
#include <QPointer>
#include <array>
#include <string>
#include <utility>

namespace tarnwick::platform {
namespace {

using State = PortalShortcut::State;

/// The combination as the desktops have agreed to write it, such as "SHIFT+LOGO+l". Empty without a
/// key.
QString triggerText(std::uint32_t modifiers, xkb_keysym_t keysym) {
    std::array<char, 64> name{};
    if (keysym == XKB_KEY_NoSymbol || xkb_keysym_get_name(keysym, name.data(), name.size()) < 0) {
        return {};
    }
    QString text;
    for (const auto& [bit, word] : {std::pair(hot_key_modifier::kControl, "CTRL+"),
                                    {hot_key_modifier::kOption, "ALT+"},
                                    {hot_key_modifier::kShift, "SHIFT+"},
                                    {hot_key_modifier::kCommand, "LOGO+"}}) {
        text += (modifiers & bit) != 0 ? word : "";
    }
    return text + name.data();
}

}  // namespace

void PortalHotKeys::Closer::operator()(PortalShortcut* shortcut) const {
    shortcut->close();
    // Deleted later, because the current call may come from the shortcut.
    shortcut->deleteLater();
}

PortalHotKeys::PortalHotKeys(QDBusConnection bus, KeysymLayout& layout, Options options)
    : bus_(std::move(bus)),
      layout_(layout),
      options_(std::move(options)),
      portal_(bus_, kPortalService, [this](const QString& owner) { portalChanged(owner); }) {
    begin_.setSingleShot(true);
    connect(&begin_, &QTimer::timeout, this, &PortalHotKeys::begin);
    drop_.setSingleShot(true);
    connect(&drop_, &QTimer::timeout, this, &PortalHotKeys::dropUnclaimed);
}

PortalHotKeys::~PortalHotKeys() = default;

HotKeys::HandlerResult PortalHotKeys::installEventHandler(HotKeyHandler handler) {
    return {hot_key_status::kSuccess, handlers_.add(std::move(handler))};
}

HotKeys::RegistrationResult PortalHotKeys::registerEventHotKey(std::uint32_t keyCode,
                                                               std::uint32_t modifiers,
                                                               HotKeyID id) {
    id_ = id;
    if (!shortcut_ || keyCode != keyCode_ || modifiers != modifiers_) {
        keyCode_ = keyCode;
        modifiers_ = modifiers;
        holder_ = 0;
        drop();
        awaitsPortal_ = false;
        const QString trigger = triggerText(modifiers, layout_.keysym(keyCode));
        if (trigger.isEmpty()) {
            return {told_ = portal_hot_key_status::kNoSuchKey, nullptr};
        }
        if (!bus_.isConnected()) {
            return {told_ = portal_hot_key_status::kUnavailable, nullptr};
        }
        shortcut_.reset(new PortalShortcut(bus_, trigger, options_.gnomeSettings));
        shortcut_->setParent(this);
        begin_.start(0);
    }
    told_ = status();
    toldKeys_ = shortcut_->otherKeys();
    if (told_ != hot_key_status::kSuccess) {
        return {told_, nullptr};
    }
    holder_ = ++handles_;
    if (std::exchange(hasPress_, false)) {
        QMetaObject::invokeMethod(this, &PortalHotKeys::pressed, Qt::QueuedConnection);
    }
    return {told_, makeHandle("shortcut " + std::to_string(holder_) + " of the portal",
                              [this, handle = holder_] { release(handle); })};
}

void PortalHotKeys::withdrawRegistration() {
    if (holder_ != 0) {
        return;
    }
    drop();
    awaitsPortal_ = false;
    told_ = status();
}

std::string PortalHotKeys::otherKeys() const {
    return shortcut_ ? shortcut_->otherKeys().toStdString() : std::string();
}

void PortalHotKeys::setRegistrationChanged(std::function<void()> changed) {
    changed_ = std::move(changed);
}

std::int32_t PortalHotKeys::status() const {
    if (!shortcut_) {
        return portal_hot_key_status::kUnavailable;
    }
    switch (shortcut_->state()) {
        case State::asking:
            return portal_hot_key_status::kAsking;
        case State::bound:
            return hot_key_status::kSuccess;
        case State::unbound:
            return hot_key_status::kExists;
        case State::refused:
        case State::closed:
            return portal_hot_key_status::kRefused;
        case State::unavailable:
            break;
    }
    return portal_hot_key_status::kUnavailable;
}

void PortalHotKeys::begin() {
    if (shortcut_) {
        shortcut_->start([this] { stateChanged(); }, [this] { pressed(); });
    }
}

void PortalHotKeys::stateChanged() {
    awaitsPortal_ = shortcut_->state() == State::unavailable;
    if (shortcut_->isRefusedByPortal()) {
        noticeRefusal();
    }
    if (holder_ == 0) {
        drop_.start(options_.patience);
    }
    tellIfChanged();
}

void PortalHotKeys::noticeRefusal() {
    // Told once, so one look is enough; a folder that hangs must not keep one thread after another.
    if (!options_.notice || !options_.findEntry || std::exchange(isLookedFor_, true)) {
        return;
    }
    options_.findEntry([self = QPointer(this)](bool isInstalled) {
        if (self && !isInstalled) {
            self->options_.notice(
                "this desktop gives the shortcut to installed programs only: install Tarnwick");
        }
    });
}

void PortalHotKeys::pressed() {
    if (holder_ != 0) {
        handlers_.press(id_);
    } else {
        hasPress_ = isTelling_;
    }
}

void PortalHotKeys::portalChanged(const QString& owner) {
    // An empty name here means that the portal has not answered yet and is only starting.
    if (shortcut_ && shortcut_->portal() != owner &&
        (!shortcut_->portal().isEmpty() || shortcut_->state() == State::unavailable)) {
        if (shortcut_->state() == State::asking && owner.isEmpty() && options_.notice) {
            options_.notice("the desktop's portal has gone while it was asked for the shortcut");
        }
        holder_ = 0;
        drop();
        awaitsPortal_ = true;
        tellIfChanged();
    }
    if (!owner.isEmpty() && !shortcut_ && std::exchange(awaitsPortal_, false)) {
        tellLater();
    }
}

void PortalHotKeys::release(int handle) {
    if (holder_ == handle) {
        holder_ = 0;
        drop_.start(options_.patience);
    }
}

void PortalHotKeys::dropUnclaimed() {
    const bool mayStillBeBound =
        shortcut_ && (shortcut_->state() == State::asking || shortcut_->state() == State::unbound);
    if (holder_ == 0 && !mayStillBeBound) {
        drop();
    }
}

void PortalHotKeys::drop() {
    drop_.stop();
    hasPress_ = false;
    shortcut_.reset();
}

void PortalHotKeys::tellIfChanged() {
    // The caller tells these apart, and the rest from each.
    const auto changed = [this](std::int32_t outcome) {
        return (status() == outcome) != (told_ == outcome);
    };
    const bool hasOtherKeys = holder_ != 0 && shortcut_->otherKeys() != toldKeys_;
    if (changed(hot_key_status::kSuccess) || changed(hot_key_status::kExists) ||
        changed(hot_key_status::kPending) || hasOtherKeys) {
        told_ = status();
        tellLater();
    }
}

void PortalHotKeys::tellLater() {
    if (!std::exchange(isTelling_, true)) {
        QMetaObject::invokeMethod(this, &PortalHotKeys::tell, Qt::QueuedConnection);
    }
}

void PortalHotKeys::tell() {
    // Calls a copy: the callback may replace itself.
    if (const auto changed = changed_) {
        changed();
    }
    isTelling_ = false;
}

}  // namespace tarnwick::platform
