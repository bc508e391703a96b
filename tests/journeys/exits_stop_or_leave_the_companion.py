"""Every start restarts the companion. Exit stops it as well; the other exit leaves it running."""

import os
import shutil

import journey

COMPANION = "CorvaneS.exe"


def companions(folder):
    """The processes whose executable is the companion of that program folder."""
    found = []
    for name in filter(str.isdigit, os.listdir("/proc")):
        try:
            if os.readlink(f"/proc/{name}/exe") == os.path.join(folder, COMPANION):
                found.append(int(name))
        except OSError:
            pass  # gone, or somebody else's
    return found


def exits(stage, program, build_folder):
    folder = stage.path("program", COMPANION).removesuffix("/" + COMPANION)
    for name in os.listdir(os.path.dirname(program)):
        source = os.path.join(os.path.dirname(program), name)
        if os.path.isfile(source):
            shutil.copy(source, folder)
    shutil.copy(os.path.join(build_folder, "tests", "idle_companion"), os.path.join(folder, COMPANION))

    first = run_and_leave(stage, folder, "x", [])
    journey.check_equal(companions(folder), [], "companions after Exit")
    second = run_and_leave(stage, folder, "k", [])
    journey.check_equal(companions(folder), second, "companions after the exit that keeps the scheduler")
    journey.check(second != first, "another companion")
    third = run_and_leave(stage, folder, "x", second)
    journey.check(third != second, "a start puts a new companion in the old one's place")
    journey.check_equal(companions(folder), [], "companions at the end")


def run_and_leave(stage, folder, key, before):
    """Starts the program, waits for its companion, leaves by that letter of the File menu; returns the companion."""
    child = stage.start("corvane", [os.path.join(folder, "corvane")])
    window = stage.wait_for_window(journey.stages.MAIN_TITLE, child)

    def restarted():
        found = companions(folder)
        return found if len(found) == 1 and found != before else None
    found = stage.wait("the companion", restarted, child)
    stage.focus(window, child)
    stage.open_menu(child, "f")
    stage.press(key)
    journey.check_equal(stage.wait_for_end(child, "the end of the program"), 0, "exit code")
    return found


journey.set_out(exits)
