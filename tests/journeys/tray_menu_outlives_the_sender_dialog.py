"""The dialog of a custom sender is opened and closed, and the tray's menu works afterwards as before: Show brings the
window back, Exit ends the program."""

import journey
import optionsdialog as options
from journey import stages

ICON = 24  # pixels, at the right end of the tray
EDITOR = "Add Custom Sender"


def add_sender(stage, child):
    options.open_options(stage, child, options.SENDERS)
    stage.press("alt+a")
    stage.wait_for_window(EDITOR, child)
    options.enter(stage, ("n", "Club"), ("e", "club@corvane.example"))
    options.save_and_close(stage, child, EDITOR)
    journey.check_equal(options.content(stage, "senders.dll"), b"Club\tclub@corvane.example\t\r\n", "senders.dll")
    journey.check_equal(options.setting(stage, "Sender", "Default.EmailAddr"), b"club@corvane.example", "its default")
    options.close_options(stage, child)


def choose_in_tray(stage, child, tray, letter):
    """Sends the window to the tray and picks an entry of the icon's menu."""
    icons = stage.children_of(tray)
    window = stage.wait_for_window(stages.MAIN_TITLE, child)
    stage.press("alt+F4")
    stage.wait("the window to go", lambda: window not in stage.windows(child.pid, stages.MAIN_TITLE), child)
    stage.wait("the icon in the tray", lambda: stage.children_of(tray) > icons, child)

    def click():
        _, _, width, height = stage.geometry(tray)
        stage.click(tray, width - ICON // 2, height // 2, button=3)
    stage.open_popup(child, "the tray's menu", click)
    stage.press(letter)


def outlives(stage, program, build_folder):
    tray = stage.tray()
    child = stage.start("corvane", [program])
    add_sender(stage, child)
    icons = stage.children_of(tray)
    choose_in_tray(stage, child, tray, "s")
    stage.wait_for_window(stages.MAIN_TITLE, child)
    stage.wait("the icon to go", lambda: stage.children_of(tray) == icons, child)
    choose_in_tray(stage, child, tray, "x")
    journey.check_equal(stage.wait_for_end(child, "the end of the program"), 0, "exit code")


journey.set_out(outlives)
