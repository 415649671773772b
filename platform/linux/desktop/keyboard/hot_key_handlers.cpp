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

}  // namespace

class HotKeyHandlers::Handle final : public HotKeyHandle {
 public:
    Handle(HotKeyHandlers& owner, std::shared_ptr<HotKeyHandler> handler)
        : owner_(owner), handler_(std::move(handler)) {}
    ~Handle() override { owner_.handlers_.remove(handler_); }

    std::string description() const override { return "handler of hot keys"; }

 private:
    HotKeyHandlers& owner_;
    std::shared_ptr<HotKeyHandler> handler_;
};

std::unique_ptr<HotKeyHandle> HotKeyHandlers::add(HotKeyHandler handler) {
    handlers_.push_front(std::make_shared<HotKeyHandler>(std::move(handler)));
    return std::make_unique<Handle>(*this, handlers_.front());
}

void HotKeyHandlers::press(HotKeyID id) const {
    const Press event(id);
    const auto handlers = handlers_;
    for (const auto& handler : handlers) {
        if ((*handler)(&event) != hot_key_status::kEventNotHandled) {
            return;
        }
    }
}

}  // namespace tarnwick::platform
