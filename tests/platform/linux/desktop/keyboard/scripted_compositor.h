// A Wayland compositor without a screen: seats with keyboards, as a test scripts them.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <thread>

struct wl_display;
struct wl_client;

namespace tarnwick::platform::testing {

/// Serves one client from a thread of its own, as a compositor is another process.
class ScriptedCompositor final {
 public:
    enum class Seat { none, withoutKeyboard, withKeyboard };

    /// Which of the protocol's versions of a seat it knows.
    explicit ScriptedCompositor(Seat seat, int seatVersion = 7);
    ~ScriptedCompositor();

    /// The client's end; null when it could not connect.
    wl_display* client() const { return client_; }

    /// A keymap with these layouts, as the machine has them; sent to keyboards that exist and to
    /// those that will.
    void setLayouts(const std::string& layouts);
    /// Any text as keymap, with the size that the compositor claims.
    void setKeymap(const std::string& text, std::uint32_t claimedSize);
    /// Says that the keymap is in no known format.
    void setNoKeymap();
    /// Which layout is in use, as it is told to a window that has the focus.
    void setLayout(std::uint32_t layout);
    void plugKeyboard(bool isPlugged);
    void addSeat();
    /// How many keyboards the client holds.
    int keyboards() const;

 private:
    struct State;

    /// Runs in the compositor's thread; everything that it sent has reached the client's socket
    /// when it returns.
    void act(const std::function<void(State&)>& action) const;

    std::unique_ptr<State> state_;
    wl_display* client_ = nullptr;
    std::thread thread_;
};

}  // namespace tarnwick::platform::testing
