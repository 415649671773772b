# SPDX-License-Identifier: MIT
"""Programs that show a tray, each with a configuration that makes it show little else."""

import dataclasses
import os
import shutil


@dataclasses.dataclass(frozen=True)
class Host:
    """One tray host, ready to start."""

    argv: tuple
    # True if it watches for StatusNotifierItems; otherwise it is an XEmbed tray.
    watches: bool
    # Environment variables in addition to the desktop's.
    env: dict = dataclasses.field(default_factory=dict)
    # Height of its bar along the top, for hosts where no display can be asked for it.
    bar_height: int = 0


def _write(path, text):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)


def _xfce4_panel(config, scale, dark):
    del scale
    _write(os.path.join(config, "xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml"), f"""\
<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="dark-mode" type="bool" value="{str(dark).lower()}"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=6;x=0;y=0"/>
      <property name="output-name" type="string" value="Primary"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="length" type="double" value="100"/>
      <property name="size" type="uint" value="30"/>
      <property name="icon-size" type="uint" value="0"/>
      <property name="plugin-ids" type="array">
        <value type="int" value="1"/>
        <value type="int" value="2"/>
        <value type="int" value="3"/>
        <value type="int" value="4"/>
      </property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="separator">
      <property name="expand" type="bool" value="true"/>
      <property name="style" type="uint" value="0"/>
    </property>
    <property name="plugin-2" type="string" value="systray">
      <property name="square-icons" type="bool" value="true"/>
    </property>
    <property name="plugin-3" type="string" value="clock">
      <property name="mode" type="uint" value="2"/>
      <property name="digital-layout" type="uint" value="3"/>
    </property>
    <property name="plugin-4" type="string" value="separator">
      <property name="style" type="uint" value="0"/>
    </property>
  </property>
</channel>
""")
    return Host(("xfce4-panel", "--disable-wm-check"), True)


def _lxqt_panel(config, scale, dark):
    del dark
    _write(os.path.join(config, "lxqt/panel.conf"), f"""\
panels=panel1

[panel1]
alignment=-1
iconSize={22 * scale}
panelSize={32 * scale}
plugins=spacer, statusnotifier, tray
position=Top
width=100
width-percent=true

[spacer]
expandable=true
type=spacer

[statusnotifier]
type=statusnotifier

[tray]
type=tray
""")
    return Host(("lxqt-panel",), True)


def _mate_panel(config, scale, dark):
    del dark
    _write(os.path.join(config, "glib-2.0/settings/keyfile"), f"""\
[org/mate/panel/general]
toplevel-id-list=['top']
object-id-list=['tray']

[org/mate/panel/toplevels/top]
orientation='top'
expand=true
size={30 * scale}

[org/mate/panel/objects/tray]
object-type='applet'
applet-iid='NotificationAreaAppletFactory::NotificationArea'
toplevel-id='top'
position=0
relative-to-edge='end'
panel-right-stick=true
locked=true
""")
    return Host(("mate-panel",), True, {"GSETTINGS_BACKEND": "keyfile"})


def _waybar(config, scale, dark):
    height = 30
    path = os.path.join(config, "waybar/config")
    _write(path, f"""\
{{"layer": "top", "position": "top", "height": {height},
 "modules-right": ["tray"], "tray": {{"icon-size": 22, "spacing": 8}}}}
""")
    style = os.path.join(config, "waybar/style.css")
    ground = "#26262a" if dark else "#e8e8ec"
    _write(style, f"window#waybar {{ background: {ground}; }}\n#tray {{ margin: 0 8px; }}\n")
    return Host(("waybar", "--config", path, "--style", style), True,
                bar_height=height * scale)


# Where along an edge of the screen a short bar lies.
_TINT2_PLACES = {
    "top": "top right horizontal",
    "bottom": "bottom right horizontal",
    "right": "top right vertical",
}


def _tint2(config, scale, dark, edge="top"):
    del dark
    path = os.path.join(config, "tint2/tint2rc")
    _write(path, f"""\
rounded = 0
border_width = 0
background_color = #3a3a3e 100
panel_items = S
panel_position = {_TINT2_PLACES[edge]}
panel_size = 20% {32 * scale}
panel_background_id = 1
systray_padding = 8 4 4
systray_icon_size = {22 * scale}
""")
    return Host(("tint2", "-c", path), False)


_HOSTS = {
    "xfce4-panel": _xfce4_panel,
    "lxqt-panel": _lxqt_panel,
    "mate-panel": _mate_panel,
    "tint2": _tint2,
    "waybar": _waybar,
}
WATCHING = ("xfce4-panel", "lxqt-panel", "mate-panel", "waybar")
# Programs that a host needs in addition. A host that needs sway runs in a Wayland session.
_COMPANIONS = {"waybar": ("sway", "swaymsg", "grim")}


def needs_wayland(name):
    return "sway" in _COMPANIONS.get(name, ())


def missing(name):
    """The programs that the machine lacks for a host."""
    return [each for each in (name, *_COMPANIONS.get(name, ())) if shutil.which(each) is None]


def configure(name, config, scale, dark, edge=None):
    """Writes the configuration of a host below `config` and tells how to start it.

    The bar is at the top, or at another `edge` where the host can be told so.
    """
    return _HOSTS[name](config, scale, dark, **({"edge": edge} if edge else {}))
