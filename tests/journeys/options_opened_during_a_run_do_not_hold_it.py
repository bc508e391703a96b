"""Five people, one by one, a second between two mails: the options are opened while the first mail is under way, and all
five arrive while they stand open. They close, and the run has ended with all five told."""

import json
import os

import journey
import optionsdialog as options
from journey import datatree

PEOPLE = [f"n{number}@x.org" for number in range(1, 6)]
INTERVAL = 1  # seconds


def set_interval(stage):
    """Before the program starts: the interval between two mails of a run."""
    path = options.data_file(stage, "options.dll")
    lines = options.content(stage, "options.dll").decode().split("\r\n")
    at = next(index for index, line in enumerate(lines) if line.startswith("OBO Interval="))
    lines[at] = f"OBO Interval={INTERVAL}"
    datatree.write_text(path, lines[:-1])


def receivers(stage):
    found = []
    for path in stage.mails():
        with open(path.removesuffix(".eml") + ".json", encoding="utf-8") as file:
            found += json.load(file)["to"]
    return found


def is_open(stage, child):
    return bool(stage.windows(child.pid, options.TITLE))


def options_meanwhile(stage, program, build_folder):
    set_interval(stage)
    child = stage.start("corvane", [program])
    stage.wait_for_window(journey.stages.MAIN_TITLE, child)
    stage.fill(", ".join(PEOPLE), "One by one", "Dear {Email Address of The Recipient},")
    stage.open_menu(child, "f")
    stage.press("b")
    hold = os.path.join(stage.mail_folder, "hold")  # so that no mail has arrived before the options are open
    with open(hold, "wb"):
        pass
    stage.press("ctrl+Return")
    stage.wait("the first mail at the server", lambda: any("holding" in line for line in stage.catcher_said), child)

    options.open_options(stage, child)
    journey.check_equal(stage.mails(), [], "mails before the options opened")
    os.remove(hold)

    def all_arrived():
        journey.check(is_open(stage, child), "the options closed of themselves")
        return len(stage.mails()) == len(PEOPLE)
    stage.wait(f"{len(PEOPLE)} mails while the options are open", all_arrived, child)
    journey.check_equal(receivers(stage), PEOPLE, "who was reached, in the order of the list")

    def result_told():
        stage.answer_boxes(child)
        return stage.log_ended()
    stage.wait("the end of the run in the log", result_told, child)
    journey.check(is_open(stage, child), "the options stay open beyond the end of the run")
    lines = datatree.last_run(stage.data_home)
    begin = (f"{journey.language_text(build_folder, 'SENT_SUCCA')} {len(PEOPLE)} "
             f"{journey.language_text(build_folder, 'SENT_SUCCB')}:")
    journey.check_equal(lines[lines.index(begin) + 1], ", ".join(PEOPLE), "the result in the log")

    stage.wait_for_window(options.TITLE, child)
    stage.press("alt+F4")
    options.wait_until_gone(stage, child, options.TITLE)
    journey.check_equal(stage.leave(child), 0, "exit code")


journey.set_out(options_meanwhile)
