"""The close box sends the window to the tray, also while a mail is under way: the run goes on, a second start stays
silent, and a click on the icon brings the window back."""

import os

import journey

ICON = 24  # pixels, at the right end of the tray


def close_box(stage, program, build_folder):
    tray = stage.tray()
    child = stage.start("corvane", [program])
    window = stage.wait_for_window(journey.stages.MAIN_TITLE, child)
    icons = stage.children_of(tray)
    hold = os.path.join(stage.mail_folder, "hold")
    with open(hold, "wb"):
        pass
    stage.fill("grace@corvane.example", "Held", "A mail that takes its time.")
    stage.press("ctrl+Return")
    stage.wait("the mail at the server", lambda: any("holding" in line for line in stage.catcher_said), child)

    stage.focus(window, child)
    close(stage, child, window)
    stage.wait("the icon in the tray", lambda: stage.children_of(tray) > icons, child)

    second = stage.start("second", [program])
    stage.wait("the end of the second start", lambda: second.poll() is not None)
    journey.check_equal(second.returncode, 0, "exit code of the second start")
    journey.check(not stage.windows(child.pid, journey.stages.MAIN_TITLE), "the first did not come to the front")

    journey.check_equal(stage.mails(), [], "mails before the server lets go")
    os.remove(hold)

    def ended():
        stage.answer_boxes(child)
        return stage.log_ended()
    stage.wait("the end of the run in the log", ended, child)
    journey.check_equal(len(stage.mails()), 1, "mails")
    journey.check(not stage.windows(child.pid, journey.stages.MAIN_TITLE), "the window stayed in the tray")

    bring_back(stage, child, tray)
    stage.wait("the icon to go", lambda: stage.children_of(tray) == icons, child)
    close(stage, child, stage.wait_for_window(journey.stages.MAIN_TITLE, child))
    stage.wait("the icon in the tray again", lambda: stage.children_of(tray) > icons, child)
    bring_back(stage, child, tray)
    journey.check_equal(stage.leave(child), 0, "exit code")


def close(stage, child, window):
    stage.press("alt+F4")
    stage.wait("the window to go", lambda: window not in stage.windows(child.pid, journey.stages.MAIN_TITLE), child)


def bring_back(stage, child, tray):
    def back():
        _, _, width, height = stage.geometry(tray)
        stage.click(tray, width - ICON // 2, height // 2)
        return stage.windows(child.pid, journey.stages.MAIN_TITLE)
    stage.wait("the window to come back", back, child)


journey.set_out(close_box)
