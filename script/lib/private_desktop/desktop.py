# SPDX-License-Identifier: MIT
"""The private desktop as a whole."""

import os
import shutil
import signal
import subprocess
import tempfile

from . import hosts
from .accessibility import AccessibilityBus
from .processes import Processes
from .screen import Screen, Window
from .session_bus import SessionBus, Settings, answers
from .wait import until
from .wayland_screen import WaylandScreen

_SIZE = (1280, 800)
_LIGHT_BACKGROUND = ((0x8F, 0xA5, 0xBE), (0x5F, 0x72, 0x8C))
_DARK_BACKGROUND = ((0x2E, 0x38, 0x46), (0x1C, 0x22, 0x2C))

# Inter stands for the desktop's own font, whatever its name is, at the usual size.
_FONTS = """\
<?xml version="1.0"?>
<!DOCTYPE fontconfig SYSTEM "urn:fontconfig:fonts.dtd">
<fontconfig>
  <dir>/usr/share/fonts</dir>
  <cachedir>{cache}</cachedir>
  <include ignore_missing="yes">/etc/fonts/conf.d</include>
  <match target="pattern">
    <test qual="any" name="family" compare="contains"><string>Sans</string></test>
    <edit name="family" mode="prepend" binding="strong"><string>Inter</string></edit>
  </match>
  <match target="pattern">
    <test qual="any" name="family"><string>sans-serif</string></test>
    <edit name="family" mode="prepend" binding="strong"><string>Inter</string></edit>
  </match>
</fontconfig>
"""
_GTK = """\
[Settings]
gtk-font-name=Sans 11
gtk-application-prefer-dark-theme={dark}
"""
# Only the services that the hosts cannot run without are started on demand. No other service of the
# machine may start on this bus.
_BUS = """\
<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-BUS Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path={socket}</listen>
  <auth>EXTERNAL</auth>
  <servicedir>{services}</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
"""
_ACCESSIBILITY_SERVICE = "/usr/share/dbus-1/services/org.a11y.Bus.service"
_SERVICES = (
    "/usr/share/dbus-1/services/org.xfce.Xfconf.service",
    "/usr/share/dbus-1/services/org.mate.panel.applet.NotificationAreaAppletFactory.service",
)


class PrivateDesktop:
    """Display, session bus, window manager, tray host and home folder; a context manager.

    `host` names a tray host or is None; one that needs Wayland makes the whole desktop a Wayland
    session, without a window manager. Everything is twice as large with a `scale` of 2.
    `monitors` are boxes (x, y, width, height) that the screen is divided into, the first of them
    the main one. The host's bar is along the top, or along another `edge`. Screen readers find
    what the programs show where there is `accessibility`.
    """

    def __init__(self, host="xfce4-panel", scale=1, dark=False, monitors=(), edge=None,
                 accessibility=False):
        self.scale = scale
        self._monitors = monitors
        self._edge = edge
        self._has_accessibility = accessibility
        self.dark = dark
        self._host_name = host
        self._host = None
        self._host_process = None
        self._display_process = None
        self._bus_process = None
        self._window_manager = None
        self.screen = None
        self.bus = None
        self.settings = None

    def __enter__(self):
        self.folder = tempfile.mkdtemp(prefix="tarnwick-desktop-")
        try:
            self._open()
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        for each in (self.settings, self.bus, self.screen):
            if each is not None:
                try:
                    each.close()
                except Exception:  # The other end may be gone already.
                    pass
        processes = getattr(self, "processes", None)
        if processes is not None:
            processes.end_all()
        shutil.rmtree(self.folder, ignore_errors=True)

    def path(self, name):
        """A file or folder of this desktop's own temporary folder."""
        return os.path.join(self.folder, name)

    def log(self, name):
        """What a process has printed so far."""
        with open(self.path("log/" + name), encoding="utf-8", errors="replace") as file:
            return file.read()

    @property
    def nowhere(self):
        """A place on the screen without a window."""
        width, height = self.screen.size
        return width // 2, height - 2

    def _open(self):
        for name in ("home", "runtime", "log", "tmp", "services"):
            os.mkdir(self.path(name), 0o700)
        self.processes = Processes(self.path("log"))
        self.env = {
            "PATH": "/usr/local/bin:/usr/bin:/bin",
            "LANG": "C.UTF-8",
            "HOME": self.path("home"),
            "XDG_RUNTIME_DIR": self.path("runtime"),
            "TMPDIR": self.path("tmp"),
            # There is no system bus here, and the machine's own one must not be used.
            "DBUS_SYSTEM_BUS_ADDRESS": "unix:path=" + self.path("runtime/no_system_bus"),
            "FONTCONFIG_FILE": self.path("fonts.conf"),
            # Starts no accessibility bus, settings daemon or virtual file system.
            "NO_AT_BRIDGE": "1",
            "GSETTINGS_BACKEND": "memory",
            "GIO_USE_VFS": "local",
        }
        if "TZ" in os.environ:
            self.env["TZ"] = os.environ["TZ"]
        self._write("fonts.conf", _FONTS.format(cache=self.path("tmp/fontconfig")))
        config = self.path("home/.config")
        os.makedirs(config + "/gtk-3.0")
        self._write("home/.config/gtk-3.0/settings.ini", _GTK.format(dark=int(self.dark)))
        self.is_wayland = self._host_name is not None and hosts.needs_wayland(self._host_name)
        if self.is_wayland:
            self._start_compositor()
            self._start_bus()
        else:
            self._start_display()
            self._divide_screen()
            self._start_bus()
            if self.scale != 1:
                self.env["QT_SCALE_FACTOR"] = str(self.scale)
            self._start_window_manager()
        if self._host_name is not None:
            self.start_host(self._host_name)

    def _write(self, name, text):
        with open(self.path(name), "w", encoding="utf-8") as file:
            file.write(text)

    def _start_display(self):
        width, height = (side * self.scale for side in _SIZE)
        reader, writer = os.pipe()
        self._display_process = self.processes.start(
            ["Xvfb", "-displayfd", str(writer), "-screen", "0", f"{width}x{height}x24",
             "-nolisten", "tcp", "-noreset", "-dpi", "96"],
            {"PATH": self.env["PATH"]}, "xvfb", pass_fds=[writer])
        os.close(writer)
        with open(reader, encoding="ascii") as file:
            number = file.readline().strip()
        if not number:
            raise RuntimeError("Xvfb did not start: " + self.log("xvfb").strip())
        self.env["DISPLAY"] = ":" + number
        self.screen = Screen(self.env["DISPLAY"])
        self.screen.paint_background(*(_DARK_BACKGROUND if self.dark else _LIGHT_BACKGROUND))
        self.screen.move_pointer(self.nowhere)

    def _start_compositor(self):
        background = _DARK_BACKGROUND if self.dark else _LIGHT_BACKGROUND
        self.screen = WaylandScreen(self, tuple(side * self.scale for side in _SIZE),
                                    background[0])
        self._display_process = self.screen.process
        self.screen.move_pointer(self.nowhere)

    def _divide_screen(self):
        for number, (x, y, width, height) in enumerate(self._monitors):
            # The first takes the display's one output, and the star makes it the main one.
            name, output = (f"monitor{number}", "none") if number else ("*monitor0", "screen")
            subprocess.run(
                ["xrandr", "--setmonitor", name,
                 f"{width}/{width * 254 // 960}x{height}/{height * 254 // 960}+{x}+{y}", output],
                env=self.env, check=True, stdout=subprocess.DEVNULL)

    def _start_bus(self):
        services = list(_SERVICES)
        if self._has_accessibility:
            # Otherwise programs would publish nothing, because no screen reader announces itself
            # here.
            self.env["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"
            services.append(_ACCESSIBILITY_SERVICE)
        for service in services:
            if os.path.exists(service):
                os.symlink(service, self.path("services/" + os.path.basename(service)))
        socket = self.path("runtime/bus")
        self._write("bus.conf", _BUS.format(socket=socket, services=self.path("services")))
        address = "unix:path=" + socket
        self.env["DBUS_SESSION_BUS_ADDRESS"] = address
        self._bus_process = self.processes.start(
            ["dbus-daemon", "--nofork", "--nopidfile", "--nosyslog",
             "--config-file=" + self.path("bus.conf")], self.env, "bus")
        until(lambda: answers(address), "the session bus listens")
        self.bus = SessionBus(address)
        self.settings = Settings(address, self.dark)

    def accessibility_bus(self):
        """A connection to what screen readers see of this desktop; a context manager."""
        return AccessibilityBus(self.env["DBUS_SESSION_BUS_ADDRESS"])

    def _start_window_manager(self):
        self._window_manager = self.processes.start(
            ["xfwm4", "--compositor=on", "--vblank=off"], self.env, "xfwm4")
        until(self.screen.window_manager_runs, "the window manager runs")

    def start_host(self, name):
        """Starts a tray host and waits until it takes items."""
        self._host = hosts.configure(name, self.path("home/.config"), self.scale, self.dark,
                                     self._edge)
        env = {**self.env, **self._host.env}
        if self.scale != 1:
            env["GDK_SCALE"] = str(self.scale)
        self._host_process = self.processes.start(self._host.argv, env, name)
        until(self._host_is_ready, f"{name} shows a tray")

    def _host_is_ready(self):
        if self._host_process.poll() is not None:
            raise RuntimeError("the tray host ended: " + self.log(self._host.argv[0]).strip())
        if self._host.watches:
            return self.bus.has_watcher() and self.host_windows()
        return self.screen.tray_owner()

    @property
    def host_watches(self):
        """Whether the host watches for StatusNotifierItems."""
        return self._host is not None and self._host.watches

    def kill_host(self):
        """Kills the tray host, so that it cannot say good-bye, and its separate watcher, if any."""
        watcher = self.bus.watcher()
        self._host_process.kill()
        self._host_process.wait()
        if watcher not in (None, self._host_process.pid):
            try:
                os.kill(watcher, signal.SIGKILL)
            except ProcessLookupError:
                pass

    def kill_display(self):
        """Ends the display while programs still use it. The desktop has no display afterwards."""
        self.screen.close()
        self.screen = None
        self._display_process.kill()
        self._display_process.wait()

    def kill_bus(self):
        """Ends the session bus, and with it the window manager. Both are gone afterwards."""
        self.bus.close()
        self.bus = None
        self._bus_process.kill()
        self._bus_process.wait()
        self._window_manager.wait()

    def host_windows(self):
        """The visible windows of the host."""
        if self.is_wayland:
            # The compositor does not list bars.
            return [Window(0, 0, 0, self.screen.size[0], self._host.bar_height,
                           self._host_process.pid, True)]
        return self.screen.windows(self._host_process.pid)
