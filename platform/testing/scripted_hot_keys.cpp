// SPDX-License-Identifier: MIT
#include "platform/testing/scripted_hot_keys.h"

#include <utility>

namespace tarnwick::platform::testing {

class ScriptedHotKeys::Handle final : public HotKeyHandle {
 public:
    Handle(std::string description, std::function<void()> giveBack)
        : description_(std::move(description)), giveBack_(std::move(giveBack)) {}
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() override { giveBack_(); }

    std::string description() const override { return description_; }

 private:
    std::string description_;
    std::function<void()> giveBack_;
};

HotKeys::HandlerResult ScriptedHotKeys::installEventHandler(HotKeyHandler handler) {
    calls.add("install");
    const std::int32_t status = installStatus.take();
    if (status != hot_key_status::kSuccess) {
        return {status, nullptr};
    }
    handler_ = std::move(handler);
    return {status, std::make_unique<Handle>("handler", [this] {
                calls.add("remove");
                handler_ = nullptr;
            })};
}

HotKeys::RegistrationResult ScriptedHotKeys::registerEventHotKey(std::uint32_t keyCode,
                                                                 std::uint32_t modifiers,
                                                                 HotKeyID id) {
    calls.add("register " + std::to_string(keyCode) + " " + std::to_string(modifiers));
    const std::int32_t status = registerStatus.take();
    if (status != hot_key_status::kSuccess || !givesHandles) {
        return {status, nullptr};
    }
    const int number = ++lastHandle_;
    held_.emplace_back(number, HotKey{keyCode, modifiers, id});
    return {status, std::make_unique<Handle>("hot key " + std::to_string(number), [this, number] {
                calls.add("unregister");
                std::erase_if(held_, [number](const auto& each) { return each.first == number; });
            })};
}

void ScriptedHotKeys::setRegistrationChanged(std::function<void()> changed) {
    changed_ = std::move(changed);
}

std::vector<ScriptedHotKeys::HotKey> ScriptedHotKeys::held() const {
    std::vector<HotKey> hotKeys;
    for (const auto& [number, hotKey] : held_) {
        hotKeys.push_back(hotKey);
    }
    return hotKeys;
}

std::optional<std::int32_t> ScriptedHotKeys::press() {
    if (held_.size() != 1) {
        return std::nullopt;
    }
    const ScriptedHotKeyEvent event(held_.front().second.id);
    return send(&event);
}

std::optional<std::int32_t> ScriptedHotKeys::send(const HotKeyEvent* event) {
    if (!handler_) {
        return std::nullopt;
    }
    return handler_(event);
}

void ScriptedHotKeys::changeRegistration() {
    if (changed_) {
        changed_();
    }
}

}  // namespace tarnwick::platform::testing
