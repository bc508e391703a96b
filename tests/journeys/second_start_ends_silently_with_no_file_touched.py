"""While the program runs a second start ends at once: no window, no word, no file touched. When the first is gone, even
by a kill, the next start comes up."""

import hashlib
import os
import signal

import journey

KEPT = ("data", "home", "config", "state")  # the cache belongs to the font library, not to the program


def snapshot(stage):
    """Every file below the throw-away home with its checksum and the moment of its last change, and every folder."""
    found = {}
    for top in KEPT:
        for folder, _, names in os.walk(os.path.join(stage.folder, top)):
            found[folder] = os.stat(folder).st_mtime_ns
            for name in names:
                path = os.path.join(folder, name)
                with open(path, "rb") as file:
                    found[path] = (hashlib.sha256(file.read()).hexdigest(), os.stat(path).st_mtime_ns)
    return found


def second_start(stage, program, build_folder):
    first = stage.start("corvane", [program])
    stage.wait_for_window(journey.stages.MAIN_TITLE, first)

    # The first stands still meanwhile, so that nothing it does by itself, as remembering its window's place, shows up.
    first.send_signal(signal.SIGSTOP)
    try:
        before = snapshot(stage)
        second = stage.start("second", [program])
        windows = []

        def ended():
            windows.extend(stage.windows(second.pid))
            return second.poll() is not None
        stage.wait("the end of the second start", ended)
        journey.check_equal(second.returncode, 0, "exit code of the second start")
        journey.check_equal(windows, [], "windows of the second start")
        with open(stage.path("second.log"), encoding="utf-8") as file:
            journey.check_equal(file.read(), "", "what the second start printed")
        journey.check_equal(snapshot(stage), before, "files after the second start")
    finally:
        first.send_signal(signal.SIGCONT)

    journey.check(first.poll() is None, "the first is still there")
    first.kill()
    stage.wait("the end of the first", lambda: first.poll() is not None)
    third = stage.start("corvane", [program])
    stage.wait_for_window(journey.stages.MAIN_TITLE, third)
    journey.check_equal(stage.leave(third), 0, "exit code of the third start")


journey.set_out(second_start)
