"""A window that started maximised, or for the first time, is made smaller, moved and put into the tray: it comes back
where it was, twice, and that is what is stored."""

import journey
import optionsdialog as options
from journey import stages

ICON = 24  # pixels, at the right end of the tray
PLACE = (150, 100, 700, 600)


def moved(stage, child, window):
    left, top, _, _ = stage.geometry(window)
    stage.xdotool("mousemove", left + 300, top - 10, "click", "--repeat", 2, "--delay", 60, 1)  # the title bar
    stage.wait("the normal size", lambda: stage.geometry(window)[0] > 0, child)
    stage.xdotool("windowsize", window, *PLACE[2:])
    stage.xdotool("windowmove", window, *PLACE[:2])
    stage.wait("the place", lambda: stage.geometry(window) == PLACE, child)


def through_the_tray(stage, child, tray, icons):
    stage.wait_for_window(stages.MAIN_TITLE, child)
    stage.press("alt+F4")
    stage.wait("the icon in the tray", lambda: stage.children_of(tray) > icons, child)
    stored = [options.setting(stage, "Position", key) for key in ("Width", "Height")]
    journey.check_equal(stored, [b"10500", b"9000"], "the stored size")

    def back():
        _, _, width, height = stage.geometry(tray)
        stage.click(tray, width - ICON // 2, height // 2)
        return stage.windows(child.pid, stages.MAIN_TITLE)
    window = stage.wait("the window to come back", back, child)[0]
    stage.wait("the icon to go", lambda: stage.children_of(tray) == icons, child)
    stage.wait("the place of before", lambda: stage.geometry(window) == PLACE, child)


def both_starts(stage, program, build_folder):
    tray = stage.tray()
    icons = stage.children_of(tray)
    path = options.data_file(stage, "options.dll")
    before = options.content(stage, "options.dll")
    for startup in (b"Max", b"Last"):
        with open(path, "wb") as file:
            file.write(before.replace(b"Startup=Last", b"Startup=" + startup))
        child = stage.start("corvane", [program])
        moved(stage, child, stage.wait_for_window(stages.MAIN_TITLE, child))
        for _ in range(2):
            through_the_tray(stage, child, tray, icons)
        journey.check_equal(stage.leave(child), 0, "exit code")


journey.set_out(both_starts)
