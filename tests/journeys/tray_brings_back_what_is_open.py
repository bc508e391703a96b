"""The window goes into the tray while the options are open: a click on the icon brings both back, in a tray that takes
in windows and in one on the session bus, and the options have the keyboard. The icon's menu does the same."""

import os
import subprocess

import journey
import optionsdialog as options
from journey import stages

ICON = 24  # pixels, at the right end of the tray


class WindowTray:
    """A tray of the X desktop."""

    def __init__(self, stage):
        self.stage = stage
        self.window = stage.tray()
        self.before = stage.children_of(self.window)

    def holds(self):
        return self.stage.children_of(self.window) > self.before

    def click(self, button=1):
        _, _, width, height = self.stage.geometry(self.window)
        self.stage.click(self.window, width - ICON // 2, height // 2, button)


class BusTray:
    """A tray on a session bus of its own."""

    def __init__(self, stage):
        self.stage = stage
        bus = stage.start("bus", ["dbus-daemon", "--session", "--nofork", "--print-address=1"], stdout=subprocess.PIPE,
                          text=True)
        with bus.stdout as pipe:
            stage.environment["DBUS_SESSION_BUS_ADDRESS"] = pipe.readline().strip()
        watcher = stage.start("watcher", [stages.PYTHON, "-B",
                                          os.path.join(os.path.dirname(os.path.abspath(__file__)), "statusnotifier.py")])
        stage.wait("the tray on the bus", lambda: "ready" in self.said(), watcher)
        self.used = 0

    def said(self):
        with open(self.stage.path("watcher.log"), encoding="utf-8") as file:
            return file.read().splitlines()

    def items(self):
        return [line.split()[1] for line in self.said() if line.startswith("item ")]

    def holds(self):
        return len(self.items()) > self.used

    def click(self):
        self.used = len(self.items())
        done = subprocess.run(["gdbus", "call", "--session", "--dest", self.items()[-1], "--object-path",
                               "/StatusNotifierItem", "--method", "org.kde.StatusNotifierItem.Activate", "0", "0"],
                              env=self.stage.environment, stdin=subprocess.DEVNULL, capture_output=True, check=False)
        journey.check_equal(done.returncode, 0, "exit code of the click: " + done.stderr.decode())


def go_to_tray(stage, child, tray, window):
    """By the window manager, since a modal form keeps the close box from working."""
    stage.xdotool("windowminimize", window)
    stage.wait("the window to go", lambda: not stage.windows(child.pid, stages.MAIN_TITLE), child)
    stage.wait("the icon in the tray", tray.holds, child)


def both_are_back(stage, child, click=lambda: None):
    def back():
        shown = [stage.windows(child.pid, title) for title in (stages.MAIN_TITLE, options.TITLE)]
        if not shown[0]:
            click()  # again, since a tray may still be moving its icons at the first one
        return all(shown) and stage.xdotool("getactivewindow") == shown[1][0]
    stage.wait("the window and the options", back, child)


def come_back(stage, program, tray):
    child = stage.start("corvane", [program])
    window = stage.wait_for_window(stages.MAIN_TITLE, child)
    options.open_options(stage, child)
    for _ in range(2):
        go_to_tray(stage, child, tray, window)
        both_are_back(stage, child, tray.click)
    if isinstance(tray, WindowTray):
        go_to_tray(stage, child, tray, window)
        stage.open_popup(child, "the tray's menu", lambda: tray.click(button=3))
        stage.press("s")
        both_are_back(stage, child)
    options.close_options(stage, child)
    journey.check_equal(stage.leave(child), 0, "exit code")


def both_trays(stage, program, build_folder):
    come_back(stage, program, WindowTray(stage))
    come_back(stage, program, BusTray(stage))


journey.set_out(both_trays)
