"""The program has no file descriptor left when mails are sent: each fails with its error in a box, the window is drawn
and answers all the while, and when there are descriptors again the next run arrives."""

import os
import resource

import journey
from journey import datatree

PEOPLE = ["a@x.org", "b@x.org"]



def lowest_free(child):
    """The number of the next descriptor that the program would be given."""
    taken = {int(name) for name in os.listdir(f"/proc/{child.pid}/fd")}
    return next(number for number in range(len(taken) + 1) if number not in taken)


def without_descriptors(stage, program, build_folder):
    child = stage.start("corvane", [program])
    stage.wait_for_window(journey.stages.MAIN_TITLE, child)
    stage.fill(", ".join(PEOPLE), "Subject", "Body")
    stage.settled_picture(stage.path("ready.png"))
    before = resource.prlimit(child.pid, resource.RLIMIT_NOFILE)
    resource.prlimit(child.pid, resource.RLIMIT_NOFILE, (lowest_free(child), before[1]))
    boxes = []

    def told():
        found = stage.windows(child.pid, journey.stages.BOX_TITLE)
        boxes.extend(box for box in found if box not in boxes)
        stage.answer_boxes(child)
        return boxes and not found and not stage.windows(child.pid, "Sending Progress")
    stage.press("ctrl+Return")
    stage.wait("the boxes of the failed run to come and go", told, child)
    journey.check_equal(stage.mails(), [], "mails that arrived")
    window = stage.windows(child.pid, journey.stages.MAIN_TITLE)[0]
    stage.focus(window, child)
    # A dialog that chooses files cannot do without; a box says so.
    stage.open_menu(child, "i")
    stage.press("a")
    stage.press("a")
    stage.wait_for_window(journey.stages.BOX_TITLE, child)
    stage.press("Return")
    stage.wait_for_window(journey.stages.MAIN_TITLE, child)

    resource.prlimit(child.pid, resource.RLIMIT_NOFILE, before)
    stage.focus(window, child)
    stage.send_and_answer(child)
    stage.wait("the mail", stage.mails)
    journey.check_equal(len(stage.mails()), 1, "mails that arrived")
    errors = [line for line in datatree.last_run(stage.data_home) if line.startswith("Error: ")]
    journey.check_equal(errors, [], "errors of the second run")
    journey.check_equal(stage.leave(child), 0, "exit code")


journey.set_out(without_descriptors)
