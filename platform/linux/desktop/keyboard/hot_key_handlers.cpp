// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/keyboard/hot_key_handlers.h"

#include <utility>

namespace tarnwick::platform {
namespace {

class Press final : public HotKeyEvent {
 public:
    explicit Press(HotKeyID id) : id_(id) {}

    std::int32_t hotKeyID(HotKeyID& id) const override {
        id = id_;
        return hot_key_status::kSuccess;
    }

 private:
    HotKeyID id_;
};

class Handle final : public HotKeyHandle {
 public:
    Handle(std::string description, std::function<void()> gone)
        : description_(std::move(description)), gone_(std::move(gone)) {}
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() override { gone_(); }

    std::string description() const override { return description_; }

 private:
    const std::string description_;
    const std::function<void()> gone_;
};

}  // namespace

std::unique_ptr<HotKeyHandle> makeHandle(std::string description, std::function<void()> gone) {
    return std::make_unique<Handle>(std::move(description), std::move(gone));
}

std::unique_ptr<HotKeyHandle> HotKeyHandlers::add(HotKeyHandler handler) {
    auto kept = std::make_shared<HotKeyHandler>(std::move(handler));
    handler_ = kept;
    return makeHandle("handler of hot keys", [kept = std::move(kept)] {});
}

void HotKeyHandlers::press(HotKeyID id) const {
    if (const auto handler = handler_.lock()) {
        const Press event(id);
        (*handler)(&event);
    }
}

}  // namespace tarnwick::platform
