"""A program that is killed in the middle of personal mails leaves a log that shows what was begun, and starts again."""

import os

import journey
from journey import datatree


def killed(stage, program, build_folder):
    child = stage.start("corvane", [program])
    stage.wait_for_window(journey.stages.MAIN_TITLE, child)
    stage.fill("a@x.org, b@x.org, c@x.org", "Personal", "Dear {Full Name of The Recipient},")
    stage.open_menu(child, "f")
    stage.press("b")
    hold = os.path.join(stage.mail_folder, "hold")
    with open(hold, "wb"):
        pass
    stage.press("ctrl+Return")
    stage.wait("the first mail at the server", lambda: any("holding" in line for line in stage.catcher_said), child)
    child.kill()
    stage.wait("the end of the program", lambda: child.poll() is not None)
    os.remove(hold)

    lines = datatree.last_run(stage.data_home)
    for line in ("To: a@x.org, b@x.org, c@x.org", "One By One: Yes", "Subject: Personal", "Content: ",
                 "Dear {Full Name of The Recipient},"):
        journey.check(line in lines, f"the log has the line '{line}'")
    journey.check(not any(line.startswith("End: ") for line in lines), "and no end")

    again = stage.start("corvane", [program])
    stage.wait_for_window(journey.stages.MAIN_TITLE, again)
    journey.check_equal(stage.leave(again), 0, "exit code of the next start")


journey.set_out(killed)
