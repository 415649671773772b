// SPDX-License-Identifier: MIT
#include "tests/platform/linux/desktop/keyboard/scripted_compositor.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <deque>
#include <future>
#include <mutex>
#include <sys/eventfd.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>
#include <vector>
// The two sides of the protocol name some of their types alike.
#include <wayland-client-core.h>
#include <wayland-server.h>

#include "platform/linux/desktop/keyboard/key_text.h"

namespace tarnwick::platform::testing {
namespace {

const wl_interface* kPlain[2] = {};
const wl_message kShellRequests[] = {{"get_gtk_surface", "no", kPlain},
                                     {"set_startup_id", "?s", kPlain},
                                     {"system_bell", "?o", kPlain}};
const wl_message kShellEvents[] = {{"capabilities", "u", kPlain}};
const wl_interface kShellInterface = {"gtk_shell1", 1, 3, kShellRequests, 1, kShellEvents};

}  // namespace

struct ScriptedCompositor::State {
    ::wl_display* display = nullptr;
    int seatVersion = 0;
    bool hasKeyboard = false;
    std::vector<wl_resource*> seats;
    std::vector<wl_resource*> keyboards;
    std::vector<std::string> endedStartups;
    std::uint32_t format = WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1;
    std::string keymap;
    std::uint32_t keymapSize = 0;

    int wakeUp = -1;
    wl_event_source* wakeUpSource = nullptr;
    bool ended = false;
    std::mutex lock;
    /// Guarded by lock.
    std::deque<std::function<void()>> work;

    static State& of(void* data) { return *static_cast<State*>(data); }
    static State& of(wl_resource* resource) { return of(wl_resource_get_user_data(resource)); }

    void addSeat() { wl_global_create(display, &wl_seat_interface, seatVersion, this, &bind); }
    std::uint32_t capabilities() const {
        return hasKeyboard ? std::uint32_t{WL_SEAT_CAPABILITY_KEYBOARD} : 0U;
    }

    void sendKeymap(wl_resource* keyboard) const {
        const int file = ::memfd_create("keymap", MFD_CLOEXEC);
        if (::write(file, keymap.data(), keymap.size()) == static_cast<ssize_t>(keymap.size())) {
            wl_keyboard_send_keymap(keyboard, format, file, keymapSize);
        }
        ::close(file);
    }
    void sendKeymaps() const {
        for (wl_resource* keyboard : keyboards) {
            sendKeymap(keyboard);
        }
    }

    static void bind(wl_client* client, void* data, std::uint32_t version, std::uint32_t id);
    static void getKeyboard(wl_client* client, wl_resource* seat, std::uint32_t id);
    static void getOther(wl_client* client, wl_resource*, std::uint32_t) {
        wl_client_post_implementation_error(client, "there are keyboards only");
    }
    /// The requests of the shell, in the order of its interface.
    struct Shell {
        void (*getSurface)(wl_client* client, wl_resource* shell, std::uint32_t id, wl_resource*);
        void (*setStartupId)(wl_client* client, wl_resource* shell, const char* id);
        void (*ringBell)(wl_client* client, wl_resource* shell, wl_resource* surface);
    };
    static void bindShell(wl_client* client, void* data, std::uint32_t version, std::uint32_t id);
    static void setStartupId(wl_client*, wl_resource* shell, const char* id) {
        of(shell).endedStartups.emplace_back(id == nullptr ? "none" : id);
    }
    static constexpr Shell kShell = {
        .getSurface = nullptr, .setStartupId = &setStartupId, .ringBell = nullptr};
    static void release(wl_client*, wl_resource* resource) { wl_resource_destroy(resource); }
    static void seatGone(wl_resource* resource) { std::erase(of(resource).seats, resource); }
    static void keyboardGone(wl_resource* resource) {
        std::erase(of(resource).keyboards, resource);
    }

    static constexpr struct wl_seat_interface kSeat = {
        .get_pointer = &getOther,
        .get_keyboard = &getKeyboard,
        .get_touch = &getOther,
        .release = &release,
    };
    static constexpr struct wl_keyboard_interface kKeyboard = {.release = &release};
};

void ScriptedCompositor::State::bind(wl_client* client, void* data, std::uint32_t version,
                                     std::uint32_t id) {
    State& state = of(data);
    wl_resource* seat =
        wl_resource_create(client, &wl_seat_interface, static_cast<int>(version), id);
    wl_resource_set_implementation(seat, &kSeat, data, &seatGone);
    state.seats.push_back(seat);
    wl_seat_send_capabilities(seat, state.capabilities());
    if (version >= WL_SEAT_NAME_SINCE_VERSION) {
        wl_seat_send_name(seat, "seat0");
    }
}

void ScriptedCompositor::State::getKeyboard(wl_client* client, wl_resource* seat,
                                            std::uint32_t id) {
    State& state = of(seat);
    wl_resource* keyboard =
        wl_resource_create(client, &wl_keyboard_interface, wl_resource_get_version(seat), id);
    wl_resource_set_implementation(keyboard, &kKeyboard, &state, &keyboardGone);
    state.keyboards.push_back(keyboard);
    state.sendKeymap(keyboard);
}

void ScriptedCompositor::State::bindShell(wl_client* client, void* data, std::uint32_t version,
                                          std::uint32_t id) {
    wl_resource* shell =
        wl_resource_create(client, &kShellInterface, static_cast<int>(version), id);
    wl_resource_set_implementation(shell, &kShell, data, nullptr);
    constexpr std::uint32_t capabilities = 0;
    wl_resource_post_event(shell, 0, capabilities);
}

ScriptedCompositor::ScriptedCompositor(Seat seat, int seatVersion)
    : state_(std::make_unique<State>()) {
    State& state = *state_;
    state.display = wl_display_create();
    state.seatVersion = seatVersion;
    state.hasKeyboard = seat == Seat::withKeyboard;
    if (seat != Seat::none) {
        state.addSeat();
    }
    std::array<int, 2> sockets{};
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets.data()) != 0) {
        return;
    }
    wl_client_create(state.display, sockets[0]);
    client_ = wl_display_connect_to_fd(sockets[1]);

    state.wakeUp = ::eventfd(0, EFD_CLOEXEC);
    const auto serve = [](int descriptor, std::uint32_t, void* data) {
        std::uint64_t count = 0;
        [[maybe_unused]] const ssize_t size = ::read(descriptor, &count, sizeof count);
        std::deque<std::function<void()>> work;
        {
            const std::scoped_lock guard(State::of(data).lock);
            work.swap(State::of(data).work);
        }
        for (const auto& each : work) {
            each();
        }
        return 0;
    };
    state.wakeUpSource = wl_event_loop_add_fd(wl_display_get_event_loop(state.display),
                                              state.wakeUp, WL_EVENT_READABLE, serve, &state);
    thread_ = std::thread([&state] {
        while (!state.ended) {
            wl_display_flush_clients(state.display);
            wl_event_loop_dispatch(wl_display_get_event_loop(state.display), -1);
        }
    });
}

ScriptedCompositor::~ScriptedCompositor() {
    if (client_ != nullptr) {
        wl_display_disconnect(client_);
        act([](State& state) { state.ended = true; });
        thread_.join();
        wl_event_source_remove(state_->wakeUpSource);
        ::close(state_->wakeUp);
    }
    wl_display_destroy_clients(state_->display);
    wl_display_destroy(state_->display);
}

void ScriptedCompositor::act(const std::function<void(State&)>& action) const {
    std::promise<void> done;
    {
        const std::scoped_lock guard(state_->lock);
        state_->work.push_back([&] {
            action(*state_);
            wl_display_flush_clients(state_->display);
            done.set_value();
        });
    }
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t size = ::write(state_->wakeUp, &one, sizeof one);
    done.get_future().wait();
}

void ScriptedCompositor::setLayouts(const std::string& layouts) {
    const XkbKeymap keymap = installedKeymap(layouts.c_str());
    char* text = xkb_keymap_get_as_string(keymap.get(), XKB_KEYMAP_FORMAT_TEXT_V1);
    // The zero at its end is part of it.
    const std::string whole(text, std::strlen(text) + 1);
    std::free(text);
    setKeymap(whole, static_cast<std::uint32_t>(whole.size()));
}

void ScriptedCompositor::setKeymap(const std::string& text, std::uint32_t claimedSize) {
    act([&](State& state) {
        state.format = WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1;
        state.keymap = text;
        state.keymapSize = claimedSize;
        state.sendKeymaps();
    });
}

void ScriptedCompositor::setNoKeymap() {
    act([](State& state) {
        state.format = WL_KEYBOARD_KEYMAP_FORMAT_NO_KEYMAP;
        state.sendKeymaps();
    });
}

void ScriptedCompositor::setLayout(std::uint32_t layout) {
    act([layout](State& state) {
        for (wl_resource* keyboard : state.keyboards) {
            wl_keyboard_send_modifiers(keyboard, wl_display_next_serial(state.display), 0, 0, 0,
                                       layout);
        }
    });
}

void ScriptedCompositor::plugKeyboard(bool isPlugged) {
    act([isPlugged](State& state) {
        state.hasKeyboard = isPlugged;
        for (wl_resource* seat : state.seats) {
            wl_seat_send_capabilities(seat, state.capabilities());
        }
    });
}

void ScriptedCompositor::addSeat() {
    act([](State& state) { state.addSeat(); });
}

void ScriptedCompositor::addGtkShell() {
    act([](State& state) {
        wl_global_create(state.display, &kShellInterface, 1, &state, &State::bindShell);
    });
}

std::vector<std::string> ScriptedCompositor::endedStartups() const {
    std::vector<std::string> ended;
    act([&ended](State& state) { ended = state.endedStartups; });
    return ended;
}

int ScriptedCompositor::keyboards() const {
    int count = 0;
    act([&count](State& state) { count = static_cast<int>(state.keyboards.size()); });
    return count;
}

}  // namespace tarnwick::platform::testing
