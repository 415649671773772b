# SPDX-License-Identifier: MIT
"""Desktops that run without a screen: how each is started, seen, pressed and set."""

import os
import subprocess
import time

from gi.repository import Gio, GLib
from PIL import Image
from private_desktop import hosts

_DISPLAY = ":9"
_SIZE = "1280x800"


class Session:
    """A desktop on an X server in memory: X11 itself, or a compositor in a window of its own."""

    # Whether the host reports one click, or a double click only.
    clicks_to_open = 1
    has_portal_shortcut = False
    has_tray = True
    # The keys of the shortcut, in the order in which they are pressed.
    shortcut_keys = ("super", "shift", "m")
    # Whether the text is beside the icon; elsewhere it is in the tool tip.
    shows_text = False
    wayland_display = None
    # What tells programs which desktop this is.
    environment = {}
    # Height of the strips along the top and the bottom in which the bar lies.
    bar = 48

    def __init__(self, folder):
        self._folder = folder
        self._host = None

    def spawn(self, *argv, **changes):
        name = os.path.basename(argv[0])
        with open(os.path.join(self._folder, name + ".log"), "ab") as log:
            return subprocess.Popen(argv, stdout=log, stderr=log, env={**os.environ, **changes})

    def start(self):
        self._announce(self.environment)
        self.spawn("Xvfb", _DISPLAY, "-screen", "0", _SIZE + "x24", "-nolisten", "tcp")
        time.sleep(1)
        os.environ["DISPLAY"] = _DISPLAY
        if not self.wayland_display:
            self._announce({"DISPLAY": _DISPLAY})
        self.start_desktop()
        if self.wayland_display:
            self._announce({"WAYLAND_DISPLAY": self.wayland_display})
        self.start_host()

    @staticmethod
    def _announce(variables):
        """Sets variables for this process and for what the session bus starts."""
        os.environ.update(variables)
        subprocess.run(["dbus-update-activation-environment", *variables], check=True)

    def start_desktop(self):
        raise NotImplementedError

    def start_host(self):
        pass

    def restart_host(self):
        self._host.kill()
        self._host.wait()
        time.sleep(1)
        self.start_host()

    def program_environment(self):
        """For the program: beside a compositor's display it must not see the X server."""
        return {"DISPLAY": ""} if self.wayland_display else {}

    def shot(self, path):
        subprocess.run(["import", "-display", _DISPLAY, "-window", "root", path], check=True)
        return Image.open(path).convert("RGB")

    def _xdotool(self, *words):
        subprocess.run(["xdotool", *words], env={**os.environ, "DISPLAY": _DISPLAY}, check=True)

    def move(self, place):
        self._xdotool("mousemove", str(place[0]), str(place[1]))

    def click(self, place, times=1):
        self.move(place)
        time.sleep(0.3)
        self._xdotool("click", "--repeat", str(times), "--delay", "120", "1")

    def key(self, *names):
        """Keys by their names in X, held together."""
        self._xdotool("key", "+".join(names))

    def set_dark(self):
        subprocess.run(["gsettings", "set", "org.gnome.desktop.interface", "color-scheme",
                        "prefer-dark"], check=True)

    def agree_to_shortcut(self):
        """Presses what the portal's dialog wants pressed, where there is one."""


class Gnome(Session):
    clicks_to_open = 2
    _extensions = "['ubuntu-appindicators@ubuntu.com']"
    has_portal_shortcut = True
    shows_text = True
    wayland_display = "wayland-0"
    _DEVICES = """
        const {Clutter} = imports.gi;
        const seat = Clutter.get_default_backend().get_default_seat();
        global.tourPointer ||= seat.create_virtual_device(Clutter.InputDeviceType.POINTER_DEVICE);
        global.tourKeys ||= seat.create_virtual_device(Clutter.InputDeviceType.KEYBOARD_DEVICE);
        """
    _KEYS = {"super": "KEY_Super_L", "shift": "KEY_Shift_L"}

    environment = {"XDG_SESSION_TYPE": "wayland", "XDG_CURRENT_DESKTOP": "GNOME"}

    def start(self):
        self._announce({**self.environment, "WAYLAND_DISPLAY": self.wayland_display})
        for schema, key, value in (
                ("org.gnome.shell", "welcome-dialog-last-shown-version", "99"),
                ("org.gnome.shell", "enabled-extensions", self._extensions),
                ("org.gnome.desktop.interface", "enable-animations", "false"),
                ("org.gnome.desktop.session", "idle-delay", "0")):
            subprocess.run(["gsettings", "set", schema, key, value], check=True)
        self.spawn("gnome-shell", "--headless", "--wayland", "--unsafe-mode",
                   "--virtual-monitor", _SIZE)
        time.sleep(10)
        self._bus = Gio.bus_get_sync(Gio.BusType.SESSION)
        self._run("Main.overview.hide()")
        self._run("Main.messageTray.bannerBlocked = true")

    def restart_host(self):
        for value in ("[]", self._extensions):
            subprocess.run(["gsettings", "set", "org.gnome.shell", "enabled-extensions", value],
                           check=True)
            time.sleep(2)

    def program_environment(self):
        return {}

    def _run(self, script):
        answer = self._bus.call_sync(
            "org.gnome.Shell", "/org/gnome/Shell", "org.gnome.Shell", "Eval",
            GLib.Variant("(s)", (script,)), None, 0, 15000, None).unpack()
        if not answer[0]:
            raise RuntimeError(f"the shell refuses {script}: {answer[1]}")
        return answer[1]

    def _device(self, call):
        self._run(self._DEVICES + call.replace("NOW", str(time.monotonic_ns() // 1000)))
        time.sleep(0.06)

    def shot(self, path):
        self._bus.call_sync(
            "org.gnome.Shell.Screenshot", "/org/gnome/Shell/Screenshot",
            "org.gnome.Shell.Screenshot", "Screenshot",
            GLib.Variant("(bbs)", (True, False, path)), None, 0, 15000, None)
        return Image.open(path).convert("RGB")

    def move(self, place):
        self._device(f"global.tourPointer.notify_absolute_motion(NOW, {place[0]}, {place[1]})")

    def click(self, place, times=1, button=1):
        self.move(place)
        for _ in range(times):
            for state in ("PRESSED", "RELEASED"):
                self._device("global.tourPointer.notify_button("
                             f"NOW, {button}, Clutter.ButtonState.{state})")

    def is_busy(self):
        """Whether the shell waits for a window, and shows that by its pointer."""
        return self._run("Shell.WindowTracker.get_default().get_startup_sequences().length") != "0"

    def key(self, *names):
        for state, order in (("PRESSED", names), ("RELEASED", reversed(names))):
            for name in order:
                value = self._KEYS.get(name.lower(), "KEY_" + name)
                self._device("global.tourKeys.notify_keyval("
                             f"NOW, Clutter.{value}, Clutter.KeyState.{state})")

    def agree_to_shortcut(self):
        """Presses the button that agrees, until it has taken the press."""
        pressed = False
        for _ in range(20):
            # Under the pointer the button has another colour.
            self.move((0, 400))
            time.sleep(0.5)
            button = self._button_that_agrees()
            if button:
                self.click(button)
                pressed = True
            elif pressed:
                return
        raise RuntimeError("the portal's dialog stays" if pressed else "the portal shows no dialog")

    def _button_that_agrees(self):
        """The middle of what is in the accent's colour below the bar, if that is so large."""
        picture = self.shot(os.path.join(self._folder, "dialog.png"))
        pixels = picture.load()
        blue = [(x, y) for y in range(60, picture.height) for x in range(picture.width)
                if max(abs(a - b) for a, b in zip(pixels[x, y], (0x35, 0x84, 0xE4))) < 12]
        if len(blue) < 200:
            return None
        return tuple(sorted(place[axis] for place in blue)[len(blue) // 2] for axis in (0, 1))


class GnomeAlone(Gnome):
    """Without an extension that has a tray."""

    has_tray = False
    _extensions = "[]"


class Plasma(Session):
    has_portal_shortcut = True
    wayland_display = "wayland-0"
    _KDE = {"XDG_CURRENT_DESKTOP": "KDE", "KDE_FULL_SESSION": "true", "KDE_SESSION_VERSION": "6",
            "XDG_MENU_PREFIX": "plasma-"}
    environment = {"XDG_SESSION_TYPE": "wayland", "QT_QPA_PLATFORM": "wayland", **_KDE}

    def start_desktop(self):
        os.makedirs(os.path.expanduser("~/.config"), exist_ok=True)
        for name, text in (("kscreenlockerrc", "[Daemon]\nAutolock=false\n"),
                           ("kdeglobals", "[KDE]\nAnimationDurationFactor=0\n")):
            with open(os.path.expanduser("~/.config/" + name), "w", encoding="ascii") as file:
                file.write(text)
        self._start_compositor()
        time.sleep(4)

    def _start_compositor(self):
        self.spawn("kwin_wayland", "--x11-display", _DISPLAY, "--width", "1280", "--height", "800",
                   "--no-lockscreen", "--socket", self.wayland_display, KWIN_COMPOSE="Q",
                   QT_QPA_PLATFORM="")

    def start_host(self):
        if self._host is None:
            self.spawn("kded6")
        self._host = self.spawn("plasmashell")
        time.sleep(12)

    def program_environment(self):
        return {**super().program_environment(), "QT_QPA_PLATFORM": ""}

    def set_dark(self):
        subprocess.run(["plasma-apply-colorscheme", "BreezeDark"], check=True)


class PlasmaX11(Plasma):
    has_portal_shortcut = False
    wayland_display = None
    environment = {"XDG_SESSION_TYPE": "x11", **Plasma._KDE}

    def _start_compositor(self):
        self.spawn("kwin_x11", KWIN_COMPOSE="Q")


class _Waybar(Session):
    shows_text = True
    _edge = "top"

    def start_host(self):
        path = os.path.expanduser("~/.config/waybar/config")
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="ascii") as file:
            file.write(f'{{"position": "{self._edge}", "height": 30, '
                       '"modules-right": ["tray", "clock"]}')
        self._host = self.spawn("waybar")
        time.sleep(3)

    def _start_compositor(self, *argv):
        self.spawn(*argv, WLR_BACKENDS="x11", WLR_RENDERER="pixman", WLR_X11_OUTPUTS="1")
        time.sleep(3)


class Sway(_Waybar):
    wayland_display = "wayland-1"
    environment = {"XDG_SESSION_TYPE": "wayland", "XDG_CURRENT_DESKTOP": "sway"}

    def start_desktop(self):
        path = os.path.expanduser("~/sway.conf")
        with open(path, "w", encoding="ascii") as file:
            file.write(f"output * mode --custom {_SIZE} position 0,0 bg #335577 solid_color\n")
        self._start_compositor("sway", "-c", path)


class Labwc(_Waybar):
    """With its bar at the bottom."""

    wayland_display = "wayland-0"
    environment = {"XDG_SESSION_TYPE": "wayland", "XDG_CURRENT_DESKTOP": "labwc"}
    _edge = "bottom"
    # Of the output, which is smaller than the X server's screen.
    size = (1024, 768)

    def start_desktop(self):
        self._start_compositor("labwc")
        os.environ["WAYLAND_DISPLAY"] = self.wayland_display
        self.spawn("swaybg", "-c", "#335577")

    def shot(self, path):
        super().shot(path).crop((0, 0, *self.size)).save(path)
        return Image.open(path)


class Cinnamon(Session):
    environment = {"XDG_SESSION_TYPE": "x11", "XDG_CURRENT_DESKTOP": "X-Cinnamon"}
    # Its menu takes every key that follows Super.
    shortcut_keys = ("shift", "super", "m")

    def start_desktop(self):
        subprocess.run(["gsettings", "set", "org.cinnamon", "desktop-effects", "false"],
                       check=False)

    def start_host(self):
        self._host = self.spawn("cinnamon", "--replace")
        time.sleep(12)


class Budgie(Session):
    environment = {"XDG_SESSION_TYPE": "x11", "XDG_CURRENT_DESKTOP": "Budgie:GNOME"}

    def start_desktop(self):
        self.spawn("budgie-wm", "--x11")
        time.sleep(4)
        self.spawn("budgie-daemon")
        time.sleep(1)

    def start_host(self):
        self._host = self.spawn("budgie-panel")
        time.sleep(6)


class _Panel(Session):
    """A panel with little but a tray, along the top, beside the window manager of Xfce."""

    _panel = None

    def start_desktop(self):
        self.spawn("xfwm4")
        time.sleep(2)

    def start_host(self):
        host = hosts.configure(self._panel, os.path.expanduser("~/.config"), 1, False)
        self._host = self.spawn(*host.argv, **host.env)
        time.sleep(6)


class Xfce(_Panel):
    environment = {"XDG_SESSION_TYPE": "x11", "XDG_CURRENT_DESKTOP": "XFCE"}
    _panel = "xfce4-panel"


class Lxqt(_Panel):
    environment = {"XDG_SESSION_TYPE": "x11", "XDG_CURRENT_DESKTOP": "LXQt"}
    _panel = "lxqt-panel"


class Mate(_Panel):
    shows_text = True
    environment = {"XDG_SESSION_TYPE": "x11", "XDG_CURRENT_DESKTOP": "MATE"}
    _panel = "mate-panel"


SESSIONS = {"gnome": Gnome, "gnome-alone": GnomeAlone, "plasma": Plasma, "plasma-x11": PlasmaX11,
            "sway": Sway, "labwc": Labwc, "cinnamon": Cinnamon, "budgie": Budgie, "xfce": Xfce,
            "lxqt": Lxqt, "mate": Mate}
