"""The very first start: nothing is there yet, the data tree appears, and the program asks whether to set up an account.
Yes opens the options; when they close, the main window comes up."""

import os

import journey

FILES = ["data/macros.dll", "data/options.dll", "data/prompts.dll", "data/proxy.dll", "data/queues.dll",
         "data/senders.dll", "data/signs/signs.dll", "data/smtp.dll", "data/templates/templates.dll",
         "Corvane data folder, please do not delete it"]


def first_start(stage, program, build_folder):
    journey.shutil.rmtree(stage.data_root)
    child = stage.start("corvane", [program])

    def options_open():
        stage.answer_boxes(child, "alt+y")
        return stage.windows(child.pid, "Options")
    stage.wait("the options", options_open, child)
    journey.check(not stage.windows(child.pid, journey.stages.MAIN_TITLE), "the question comes before the main window")

    def options_closed():
        options = stage.windows(child.pid, "Options")
        if options and stage.xdotool("windowactivate", "--sync", options[0]) is not None:
            stage.press("alt+c")
        return not options
    stage.wait("the options to close", options_closed, child)
    stage.wait_for_window(journey.stages.MAIN_TITLE, child)
    for name in FILES:
        path = os.path.join(stage.data_root, name)
        journey.check(os.path.isfile(path), f"{name} is there")
        journey.check_equal(os.stat(path).st_mode & 0o777, 0o600, f"mode of {name}")
    with open(os.path.join(stage.data_root, "data", "macros.dll"), encoding="utf-8") as file:
        journey.check_equal(len(file.readlines()), 20, "predefined macros")
    journey.check_equal(stage.leave(child), 0, "exit code")


journey.set_out(first_start)
