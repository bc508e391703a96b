"""While a mail is under way the progress dialog stays above the window, a click on the status line gives it the
keyboard, also after it was closed and after the window was in the tray, and Cancel is in reach."""

import os
import re
import subprocess
import time

import journey
from journey import stages

PROGRESS = "Sending Progress"
ICON = 24  # pixels, at the right end of the tray
BODY = (60, 500)  # a place in the message's body


def stacking(stage):
    """The windows from the lowest to the highest."""
    done = subprocess.run(["xprop", "-root", "_NET_CLIENT_LIST_STACKING"], env=stage.environment, capture_output=True,
                          text=True, check=True)
    return [str(int(number, 16)) for number in re.findall(r"0x[0-9a-f]+", done.stdout)]


def is_above(stage, child, window):
    progress = stage.windows(child.pid, PROGRESS)
    order = stacking(stage)
    return bool(progress) and order.index(progress[0]) > order.index(window)


def click_into_body(stage, child, window):
    stage.click(window, *BODY)
    stage.wait("the keyboard in the window", lambda: stage.xdotool("getactivewindow") == window, child)
    journey.check(is_above(stage, child, window), "the progress dialog stays above the window")


def click_on_status_line(stage, child, window):
    _, _, _, height = stage.geometry(window)

    clicked = []

    def answered():
        if stage.xdotool("getactivewindow") in stage.windows(child.pid, PROGRESS):
            return True
        # Again after a while, since the window manager may lose a click while it closes another window.
        if not clicked or time.monotonic() - clicked[-1] > 3:
            stage.click(window, 60, height - 8)
            clicked.append(time.monotonic())
        return False
    stage.wait("the keyboard in the progress dialog", answered, child)


def cancel(stage, child):
    def gone():
        if stage.windows(child.pid, PROGRESS):
            stage.press("alt+c")  # the dialog may be active a moment before it hears keys
        return not stage.windows(child.pid, PROGRESS)
    stage.wait("the dialog to go on Cancel", gone, child)


def through_the_tray(stage, child, tray, window):
    icons = stage.children_of(tray)
    stage.focus(window, child)
    stage.press("alt+F4")
    stage.wait("the icon in the tray", lambda: stage.children_of(tray) > icons, child)

    def back():
        _, _, width, height = stage.geometry(tray)
        stage.click(tray, width - ICON // 2, height // 2)
        return stage.windows(child.pid, stages.MAIN_TITLE)
    stage.wait("the window to come back", back, child)
    stage.wait("the icon to go", lambda: stage.children_of(tray) == icons, child)
    stage.wait("the progress dialog above it", lambda: is_above(stage, child, window), child)


def brought_back(stage, program, build_folder):
    tray = stage.tray()
    child = stage.start("corvane", [program])
    window = stage.wait_for_window(stages.MAIN_TITLE, child)
    stage.fill("a@x.org, b@x.org", "One by one", "Dear,")
    stage.open_menu(child, "f")
    stage.press("b")
    hold = os.path.join(stage.mail_folder, "hold")
    with open(hold, "wb"):
        pass
    stage.press("ctrl+Return")
    stage.wait("the first mail at the server", lambda: any("holding" in line for line in stage.catcher_said), child)
    stage.wait("the progress dialog", lambda: stage.windows(child.pid, PROGRESS), child)

    click_into_body(stage, child, window)
    click_on_status_line(stage, child, window)
    stage.press("alt+F4")
    stage.wait("the dialog to close", lambda: not stage.windows(child.pid, PROGRESS), child)
    click_on_status_line(stage, child, window)
    click_into_body(stage, child, window)
    through_the_tray(stage, child, tray, window)
    click_into_body(stage, child, window)
    click_on_status_line(stage, child, window)
    cancel(stage, child)
    os.remove(hold)
    stage.wait("the end of the run in the log", stage.log_ended, child)
    journey.check_equal(len(stage.mails()), 1, "mails: the one under way")
    journey.check_equal(stage.leave(child), 0, "exit code")


journey.set_out(brought_back)
