// SPDX-License-Identifier: MIT
// A Wayland compositor without a screen: seats with keyboards and Mutter's shell, as a test scripts
// them.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

struct wl_display;
struct wl_client;

namespace tarnwick::platform::testing {

/// Serves one client from a thread of its own, because a real compositor is another process.
class ScriptedCompositor final {
 public:
    enum class Seat { none, withoutKeyboard, withKeyboard };

    /// `seatVersion` is the highest version of the seat protocol that it knows.
    explicit ScriptedCompositor(Seat seat, int seatVersion = 7);
    ~ScriptedCompositor();

    /// The client's end; null when it could not connect.
    wl_display* client() const { return client_; }

    /// Sends a keymap with these layouts, as the machine has them, to existing and future
    /// keyboards.
    void setLayouts(const std::string& layouts);
    /// Sends any text as keymap; `claimedSize` is the size that the compositor gives for it.
    void setKeymap(const std::string& text, std::uint32_t claimedSize);
    /// Says that the keymap is in no known format.
    void setNoKeymap();
    /// Tells which layout is in use, as a focused window is told.
    void setLayout(std::uint32_t layout);
    void plugKeyboard(bool isPlugged);
    void addSeat();
    /// Adds Mutter's own shell.
    void addGtkShell();
    /// The startup identifiers that the client has ended.
    std::vector<std::string> endedStartups() const;
    /// How many keyboards the client holds.
    int keyboards() const;

 private:
    struct State;

    /// Runs `action` in the compositor's thread. When it returns, everything that the action sent
    /// has reached the client's socket.
    void act(const std::function<void(State&)>& action) const;

    std::unique_ptr<State> state_;
    wl_display* client_ = nullptr;
    std::thread thread_;
};

}  // namespace tarnwick::platform::testing
