"""Exit in the middle of a mail is neither asked about nor waited for: the program ends, the log keeps what it has."""

import os

import journey
from journey import datatree


def exit_in_a_mail(stage, program, build_folder):
    child = stage.start("corvane", [program])
    window = stage.wait_for_window(journey.stages.MAIN_TITLE, child)
    with open(os.path.join(stage.mail_folder, "hold"), "wb"):
        pass
    stage.fill("grace@corvane.example", "Held", "A mail that takes its time.")
    stage.press("ctrl+Return")
    stage.wait("the mail at the server", lambda: any("holding" in line for line in stage.catcher_said), child)
    stage.focus(window, child)
    journey.check_equal(stage.leave(child), 0, "exit code")
    lines = datatree.last_run(stage.data_home)
    journey.check("Subject: Held" in lines, "the log keeps what was begun")
    journey.check(not any(line.startswith(("End: ", "Error: ")) for line in lines), "and says nothing more")


journey.set_out(exit_in_a_mail)
