"""File, Exit ends the program: the process is gone, with exit code 0, and an untouched message is not asked about."""

import journey


def exit_in_the_menu(stage, program, build_folder):
    child = stage.start("corvane", [program])
    stage.wait_for_window(journey.stages.MAIN_TITLE, child)
    boxes = []
    stage.open_menu(child, "f")
    stage.press("x")

    def ended():
        boxes.extend(stage.windows(child.pid, journey.stages.BOX_TITLE))
        return child.poll() is not None or boxes
    stage.wait("the end of the program", ended)
    journey.check_equal(boxes, [], "boxes on the way out")
    journey.check_equal(child.returncode, 0, "exit code")


journey.set_out(exit_in_the_menu)
