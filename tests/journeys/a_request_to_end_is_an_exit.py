"""SIGTERM and SIGINT end the program as Exit does, wherever it is: with a mail under way, with a dialog or a box open,
while the splash shows. The exit code is 0, the settings are kept, and a second request changes nothing."""

import os
import signal

import journey
import optionsdialog as options
from journey import datatree


def settings(stage):
    """The settings as they lie on the disk, without the window's place, which a timer writes."""
    lines = options.content(stage, "options.dll").decode().split("\r\n")
    return [line for line in lines if not line.startswith(("Left=", "Top=", "Width=", "Height=", "[Position]"))]


def request_end(stage, child, number):
    child.send_signal(number)
    child.send_signal(number)
    journey.check_equal(stage.wait_for_end(child, "the end of the program"), 0, "exit code")


def during_a_mail(stage, program):
    child = stage.start("corvane", [program])
    stage.wait_for_window(journey.stages.MAIN_TITLE, child)
    before = settings(stage)
    journey.check("Startup=Last" in before, "there are settings")
    hold = os.path.join(stage.mail_folder, "hold")
    with open(hold, "wb"):
        pass
    stage.fill("grace@corvane.example", "Held", "A mail that takes its time.")
    stage.press("ctrl+Return")
    stage.wait("the mail at the server", lambda: any("holding" in line for line in stage.catcher_said), child)
    request_end(stage, child, signal.SIGTERM)
    os.remove(hold)
    lines = datatree.last_run(stage.data_home)
    journey.check("Subject: Held" in lines, "the log keeps what was begun")
    journey.check(not any(line.startswith(("End: ", "Error: ")) for line in lines), "and says nothing more")
    journey.check_equal(settings(stage), before, "the settings after the end")


def with_a_dialog(stage, program):
    child = stage.start("corvane", [program])
    stage.wait_for_window(journey.stages.MAIN_TITLE, child)
    options.open_options(stage, child)
    request_end(stage, child, signal.SIGINT)


def with_a_box(stage, program):
    child = stage.start("corvane", [program])
    stage.wait_for_window(journey.stages.MAIN_TITLE, child)
    options.press_for_box(stage, child, "ctrl+Return")  # there is no recipient
    request_end(stage, child, signal.SIGTERM)


def with_the_first_question(stage, program):
    """No account is there: its question comes while the main window loads, behind the splash."""
    for name in ("smtp.dll", "options.dll"):
        with open(options.data_file(stage, name), "wb"):
            pass
    child = stage.start("corvane", [program])
    # The splash bears the title of the boxes; the second window of that title is the question.
    stage.wait("the question", lambda: len(stage.windows(child.pid, journey.stages.BOX_TITLE)) > 1, child)
    request_end(stage, child, signal.SIGTERM)


def with_the_splash(stage, program):
    child = stage.start("corvane", [program])
    stage.wait("the splash", lambda: stage.windows(child.pid), child)
    request_end(stage, child, signal.SIGTERM)


def requests(stage, program, build_folder):
    for place in (during_a_mail, with_a_dialog, with_a_box, with_the_splash, with_the_first_question):
        place(stage, program)


journey.set_out(requests)
