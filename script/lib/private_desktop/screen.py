# SPDX-License-Identifier: MIT
"""The X display: its windows, a pointer and a keyboard, pictures of what is on it."""

import contextlib
import dataclasses
import threading
import time

from PIL import Image
from Xlib import X, XK, Xatom, display, error
from Xlib.ext import record, res, xtest

_GONE = (error.BadWindow, error.BadDrawable, error.BadMatch, error.BadAccess)


@dataclasses.dataclass(frozen=True)
class Window:
    """A window that can be seen, in pixels of the whole screen."""

    id: int
    x: int
    y: int
    width: int
    height: int
    pid: int
    # True for a window directly below the root or the window manager's frame; false for a part of
    # another program's window.
    top_level: bool

    @property
    def centre(self):
        return self.x + self.width // 2, self.y + self.height // 2

    @property
    def box(self):
        return self.x, self.y, self.x + self.width, self.y + self.height

    def without(self, margin):
        """The same window less a margin on each side."""
        return dataclasses.replace(self, x=self.x + margin, y=self.y + margin,
                                   width=self.width - 2 * margin,
                                   height=self.height - 2 * margin)


class Screen:
    def __init__(self, name):
        self._display = display.Display(name)
        self._root = self._display.screen().root
        self._background = None

    def close(self):
        self._display.close()

    @property
    def size(self):
        geometry = self._root.get_geometry()
        return geometry.width, geometry.height

    def paint_background(self, top, bottom):
        """A calm gradient from the colour `top` to `bottom`, as (red, green, blue)."""
        width, height = self.size
        column = Image.new("RGB", (1, height))
        for y in range(height):
            share = y / height
            column.putpixel((0, y), tuple(
                round(a + (b - a) * share) for a, b in zip(top, bottom)))
        pixmap = self._root.create_pixmap(width, height, self._display.screen().root_depth)
        pixmap.put_pil_image(pixmap.create_gc(), 0, 0, column.resize((width, height)))
        self._root.change_attributes(background_pixmap=pixmap)
        # Compositors look for the picture here.
        for name in ("_XROOTPMAP_ID", "ESETROOT_PMAP_ID"):
            self._root.change_property(
                self._display.intern_atom(name), Xatom.PIXMAP, 32, [pixmap.id])
        self._root.clear_area()
        self._display.sync()
        self._background = pixmap

    def _pid(self, window):
        answer = self._display.res_query_client_ids(
            [{"client": window.id, "mask": res.LocalClientPIDMask}])
        for each in answer.ids:
            if each.value:
                return each.value[0]
        return 0

    def windows(self, pid):
        """The visible windows of one process. Windows inside one of them are not listed."""
        found = []
        strangers = [(self._root, 0)]
        while strangers:
            parent, depth = strangers.pop()
            try:
                children = parent.query_tree().children
            except _GONE:
                continue
            for child in children:
                try:
                    attributes = child.get_attributes()
                    if attributes.map_state != X.IsViewable or attributes.win_class != X.InputOutput:
                        continue
                    owner = self._pid(child)
                    if owner != pid:
                        strangers.append((child, depth + 1))
                        continue
                    geometry = child.get_geometry()
                    corner = child.translate_coords(self._root, 0, 0)
                    framed = depth == 1 and self._is_frame(parent)
                    found.append(Window(child.id, -corner.x, -corner.y, geometry.width,
                                        geometry.height, pid, depth == 0 or framed))
                except _GONE:
                    continue
        return found

    def pop_ups(self):
        """The visible windows without a window manager's frame: menus, tool tips, some bars."""
        found = []
        for child in self._root.query_tree().children:
            try:
                attributes = child.get_attributes()
                if attributes.map_state == X.IsViewable and attributes.override_redirect:
                    geometry = child.get_geometry()
                    found.append(Window(child.id, geometry.x, geometry.y, geometry.width,
                                        geometry.height, self._pid(child), True))
            except _GONE:
                continue
        return found

    def _is_frame(self, window):
        """Whether a window is the frame of the window manager around a client."""
        manager = self._root.get_full_property(
            self._display.intern_atom("_NET_SUPPORTING_WM_CHECK"), Xatom.WINDOW)
        if manager is None:
            return False
        return self._pid(window) == self._pid(
            self._display.create_resource_object("window", manager.value[0]))

    def window_manager_runs(self):
        return self._root.get_full_property(
            self._display.intern_atom("_NET_SUPPORTING_WM_CHECK"), Xatom.WINDOW) is not None

    def tray_owner(self):
        """Whether any program owns the XEmbed tray."""
        return self._display.get_selection_owner(
            self._display.intern_atom("_NET_SYSTEM_TRAY_S0")) != X.NONE

    def window_name(self, window):
        """The title of a window."""
        handle = self._display.create_resource_object("window", window.id)
        for atom in ("_NET_WM_NAME", "WM_NAME"):
            try:
                value = handle.get_full_property(
                    self._display.intern_atom(atom), X.AnyPropertyType)
            except _GONE:
                return ""
            if value is not None:
                text = value.value
                return text.decode("utf-8", "replace") if isinstance(text, bytes) else text
        return ""

    def move_pointer(self, place):
        xtest.fake_input(self._display, X.MotionNotify, x=int(place[0]), y=int(place[1]))
        self._display.sync()

    def click(self, place, button=1, hold=0):
        """A press and, `hold` seconds later, a release of a button at a place of the screen."""
        self.move_pointer(place)
        xtest.fake_input(self._display, X.ButtonPress, button)
        self._display.sync()
        time.sleep(hold)
        xtest.fake_input(self._display, X.ButtonRelease, button)
        self._display.sync()

    def double_click(self, place):
        """Two clicks at a place of the screen, a tenth of a second apart."""
        self.move_pointer(place)
        for wait in (0, 100):
            # The X server does the waiting, so that a busy machine cannot turn this into two single
            # clicks.
            xtest.fake_input(self._display, X.ButtonPress, 1, time=wait)
            xtest.fake_input(self._display, X.ButtonRelease, 1)
        self._display.sync()

    @contextlib.contextmanager
    def dragged(self, start, *places):
        """A press of the main button, moves with it, and its release at the end of the context."""
        self.move_pointer(start)
        xtest.fake_input(self._display, X.ButtonPress, 1)
        self._display.sync()
        try:
            for place in places:
                self.move_pointer(place)
            yield
        finally:
            xtest.fake_input(self._display, X.ButtonRelease, 1)
            self._display.sync()

    def press_key(self, *names):
        """Presses keys by their X names one after the other, and lets go of the last one first."""
        codes = [self._display.keysym_to_keycode(XK.string_to_keysym(name)) for name in names]
        for code in codes:
            xtest.fake_input(self._display, X.KeyPress, code)
        for code in reversed(codes):
            xtest.fake_input(self._display, X.KeyRelease, code)
        self._display.sync()

    def open_window(self):
        """Opens a window of another program, which the window manager makes the active one."""
        window = self._root.create_window(
            40, 400, 200, 100, 0, self._display.screen().root_depth,
            background_pixel=self._display.screen().white_pixel)
        window.set_wm_name("another program")
        window.map()
        self._display.sync()
        return window.id

    def active_window(self):
        """What the window manager says is the active window; 0 for none."""
        value = self._root.get_full_property(
            self._display.intern_atom("_NET_ACTIVE_WINDOW"), Xatom.WINDOW)
        return value.value[0] if value is not None and value.value else 0

    def hold_pointer(self):
        """Grabs the pointer, so that no other program gets its events, as a menu does."""
        status = self._root.grab_pointer(False, X.ButtonPressMask, X.GrabModeAsync,
                                         X.GrabModeAsync, X.NONE, X.NONE, X.CurrentTime)
        return status == X.GrabSuccess

    def release_pointer(self):
        self._display.ungrab_pointer(X.CurrentTime)
        self._display.sync()

    @contextlib.contextmanager
    def counted_requests(self, number):
        """Counts the requests with this number of the core protocol that programs make meanwhile.

        Gives a function that says how many there have been.
        """
        made = []
        # The connection that listens can do nothing else.
        listener = display.Display(self._display.get_display_name())
        no_range = (0, 0)
        context = listener.record_create_context(0, [record.AllClients], [{
            "core_requests": (number, number), "core_replies": no_range,
            "ext_requests": (0, 0, 0, 0), "ext_replies": (0, 0, 0, 0),
            "delivered_events": no_range, "device_events": no_range, "errors": no_range,
            "client_started": False, "client_died": False}])
        thread = threading.Thread(target=listener.record_enable_context, args=(
            context, lambda each: made.append(each) if each.category == record.FromClient else None))
        thread.start()
        try:
            yield lambda: len(made)
        finally:
            self._display.record_disable_context(context)
            self._display.sync()
            thread.join()
            listener.close()

    def picture(self, box=None):
        """A picture of the whole screen or of (left, top, right, bottom)."""
        width, height = self.size
        left, top, right, bottom = box or (0, 0, width, height)
        left, top = max(left, 0), max(top, 0)
        size = max(min(right, width) - left, 0), max(min(bottom, height) - top, 0)
        if 0 in size:
            return Image.new("RGB", size)
        raw = self._root.get_image(left, top, *size, X.ZPixmap, 0xFFFFFFFF)
        return Image.frombytes("RGB", size, raw.data, "raw", "BGRX")
