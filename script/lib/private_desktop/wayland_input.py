# SPDX-License-Identifier: MIT
"""A pointer and a keyboard for a Wayland compositor that has none.

Speaks the few requests that it takes straight over the compositor's socket: no program or library
of Debian's offers a pointer, and one that comes and goes with each click reaches nobody.
"""

import socket
import struct
import tempfile
import time

_DISPLAY = 1
_REGISTRY = 2
# Requests and events are numbered in the order of the protocols' descriptions.
_DISPLAY_SYNC, _DISPLAY_GET_REGISTRY = 0, 1
_REGISTRY_BIND = 0
_POINTER_MOTION_ABSOLUTE, _POINTER_BUTTON, _POINTER_FRAME = 1, 2, 4
_KEYBOARD_KEYMAP, _KEYBOARD_KEY = 0, 1
_KEYMAP_FORMAT_XKB = 1
# Codes from the kernel's list of input events.
_BUTTONS = {1: 0x110, 2: 0x112, 3: 0x111}
_KEYS = {"Escape": 1}
_KEYMAP = b"""\
xkb_keymap {
  xkb_keycodes { include "evdev+aliases(qwerty)" };
  xkb_types { include "complete" };
  xkb_compat { include "complete" };
  xkb_symbols { include "pc+us+inet(evdev)" };
};
\0"""


def _words(*values):
    return struct.pack(f"={len(values)}I", *values)


def _text(text):
    data = text.encode() + b"\0"
    return _words(len(data)) + data + bytes(-len(data) % 4)


class WaylandInput:
    def __init__(self, path, size):
        self._size = size
        self._socket = socket.socket(socket.AF_UNIX)
        self._socket.settimeout(10)
        self._socket.connect(path)
        self._next = _REGISTRY + 1
        self._globals = {}
        self._send(_DISPLAY, _DISPLAY_GET_REGISTRY, _words(_REGISTRY))
        self._wait()
        seat = self._bind("wl_seat")
        self._pointer = self._make("zwlr_virtual_pointer_manager_v1", seat)
        self._keyboard = self._make("zwp_virtual_keyboard_manager_v1", seat)
        self._send_keymap()
        self._wait()

    def close(self):
        self._socket.close()

    def move_pointer(self, place):
        self._send(self._pointer, _POINTER_MOTION_ABSOLUTE,
                   _words(self._now(), int(place[0]), int(place[1]), *self._size))
        self._send(self._pointer, _POINTER_FRAME)
        self._wait()

    def click(self, button, hold):
        for state, pause in ((1, hold), (0, 0)):
            self._send(self._pointer, _POINTER_BUTTON,
                       _words(self._now(), _BUTTONS[button], state))
            self._send(self._pointer, _POINTER_FRAME)
            self._wait()
            time.sleep(pause)

    def press_key(self, name):
        for state in (1, 0):
            self._send(self._keyboard, _KEYBOARD_KEY, _words(self._now(), _KEYS[name], state))
        self._wait()

    @staticmethod
    def _now():
        return int(time.monotonic() * 1000) & 0xFFFFFFFF

    def _new_id(self):
        self._next += 1
        return self._next - 1

    def _bind(self, interface):
        if interface not in self._globals:
            raise RuntimeError(f"the compositor has no {interface}")
        made = self._new_id()
        self._send(_REGISTRY, _REGISTRY_BIND,
                   _words(self._globals[interface]) + _text(interface) + _words(1, made))
        return made

    def _make(self, manager, seat):
        """A device of the seat; making one is the first request of both managers."""
        bound = self._bind(manager)
        made = self._new_id()
        self._send(bound, 0, _words(seat, made))
        return made

    def _send_keymap(self):
        with tempfile.TemporaryFile() as file:
            file.write(_KEYMAP)
            file.flush()
            body = _words(self._keyboard, (16 << 16) | _KEYBOARD_KEYMAP,
                          _KEYMAP_FORMAT_XKB, len(_KEYMAP))
            socket.send_fds(self._socket, [body], [file.fileno()])

    def _send(self, target, request, body=b""):
        self._socket.sendall(_words(target, ((8 + len(body)) << 16) | request) + body)

    def _wait(self):
        """Waits until the compositor has handled all requests; meanwhile records what it offers."""
        done = self._new_id()
        self._send(_DISPLAY, _DISPLAY_SYNC, _words(done))
        while True:
            sender, word = struct.unpack("=II", self._receive(8))
            body = self._receive((word >> 16) - 8)
            event = word & 0xFFFF
            if sender == done:
                return
            if sender == _DISPLAY and event == 0:
                raise RuntimeError("the compositor refuses: "
                                   + body[12:].rstrip(b"\0").decode(errors="replace"))
            if sender == _REGISTRY and event == 0:
                name, length = struct.unpack("=II", body[:8])
                self._globals[body[8:8 + length - 1].decode()] = name

    def _receive(self, length):
        data = b""
        while len(data) < length:
            part = self._socket.recv(length - len(data))
            if not part:
                raise RuntimeError("the compositor has gone")
            data += part
        return data
