// SPDX-License-Identifier: MIT
#include <Carbon/Carbon.h>
#include <sstream>
#include <utility>

#include "platform/macos/mac_machine.h"

namespace tarnwick::platform {
namespace {

/// The callback finds the handler here, because it is installed without user data.
HotKeyHandler& currentHandler() {
    static HotKeyHandler handler;
    return handler;
}

std::string addressText(const void* address) {
    std::ostringstream text;
    text << address;
    return std::move(text).str();
}

class CarbonEvent final : public HotKeyEvent {
 public:
    explicit CarbonEvent(EventRef event) : event_(event) {}

    std::int32_t hotKeyID(HotKeyID& id) const override {
        EventHotKeyID value{};
        const OSStatus status =
            GetEventParameter(event_, kEventParamDirectObject, typeEventHotKeyID, nullptr,
                              sizeof value, nullptr, &value);
        if (status == noErr) {
            id = {.signature = value.signature, .id = value.id};
        }
        return status;
    }

 private:
    const EventRef event_;
};

OSStatus hotKeyPressed(EventHandlerCallRef, EventRef event, void*) {
    // Calls a copy: the call may remove the handler.
    const HotKeyHandler handler = currentHandler();
    if (!handler) {
        return eventNotHandledErr;
    }
    if (event == nullptr) {
        return handler(nullptr);
    }
    const CarbonEvent pressed(event);
    return handler(&pressed);
}

class InstalledHandler final : public HotKeyHandle {
 public:
    explicit InstalledHandler(EventHandlerRef reference) : reference_(reference) {}
    InstalledHandler(const InstalledHandler&) = delete;
    InstalledHandler& operator=(const InstalledHandler&) = delete;
    ~InstalledHandler() override {
        RemoveEventHandler(reference_);
        currentHandler() = nullptr;
    }

    std::string description() const override { return addressText(reference_); }

 private:
    const EventHandlerRef reference_;
};

class RegisteredHotKey final : public HotKeyHandle {
 public:
    explicit RegisteredHotKey(EventHotKeyRef reference) : reference_(reference) {}
    RegisteredHotKey(const RegisteredHotKey&) = delete;
    RegisteredHotKey& operator=(const RegisteredHotKey&) = delete;
    ~RegisteredHotKey() override { UnregisterEventHotKey(reference_); }

    std::string description() const override { return addressText(reference_); }

 private:
    const EventHotKeyRef reference_;
};

}  // namespace

HotKeys::HandlerResult MacHotKeys::installEventHandler(HotKeyHandler handler) {
    const EventTypeSpec pressed{.eventClass = kEventClassKeyboard,
                                .eventKind = kEventHotKeyPressed};
    EventHandlerRef reference = nullptr;
    const OSStatus status = InstallEventHandler(GetApplicationEventTarget(), hotKeyPressed, 1,
                                                &pressed, nullptr, &reference);
    if (status != noErr || reference == nullptr) {
        return {.status = status};
    }
    currentHandler() = std::move(handler);
    return {.status = status, .handle = std::make_unique<InstalledHandler>(reference)};
}

HotKeys::RegistrationResult MacHotKeys::registerEventHotKey(std::uint32_t keyCode,
                                                            std::uint32_t modifiers, HotKeyID id) {
    const EventHotKeyID identifier{.signature = id.signature, .id = id.id};
    EventHotKeyRef reference = nullptr;
    const OSStatus status =
        RegisterEventHotKey(keyCode, modifiers, identifier, GetApplicationEventTarget(),
                            kEventHotKeyNoOptions, &reference);
    if (status != noErr || reference == nullptr) {
        return {.status = status};
    }
    return {.status = status, .handle = std::make_unique<RegisteredHotKey>(reference)};
}

}  // namespace tarnwick::platform
