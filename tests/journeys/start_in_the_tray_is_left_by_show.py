"""With the tray as startup position only the icon is there; Show in its menu brings the window, which then stays."""

import journey
import optionsdialog as options
from journey import stages

ICON = 24  # pixels, at the right end of the tray


def start_in_the_tray(stage):
    """Sets the startup position as a user's settings have it."""
    path = options.data_file(stage, "options.dll")
    with open(path, "rb") as file:
        settings = file.read()
    journey.check(b"Startup=Last" in settings, "the settings have a startup position")
    with open(path, "wb") as file:
        file.write(settings.replace(b"Startup=Last", b"Startup=Sys"))


def show(stage, program, build_folder):
    start_in_the_tray(stage)
    tray = stage.tray()
    icons = stage.children_of(tray)
    child = stage.start("corvane", [program])
    stage.wait("the icon in the tray", lambda: stage.children_of(tray) > icons, child)
    journey.check(not stage.windows(child.pid, stages.MAIN_TITLE), "no window is on the screen")

    def click():
        _, _, width, height = stage.geometry(tray)
        stage.click(tray, width - ICON // 2, height // 2, button=3)
    stage.open_popup(child, "the tray's menu", click)
    stage.press("s")
    stage.wait_for_window(stages.MAIN_TITLE, child)
    stage.wait("the icon to go", lambda: stage.children_of(tray) == icons, child)
    # Left by its own menu, which a window that went back to the tray cannot open.
    journey.check_equal(stage.leave(child), 0, "exit code")


journey.set_out(show)
