"""The start of the real program against that of an empty Qt window, on a virtual display and in a throw-away home."""

import json
import os
import pathlib
import shutil
import statistics
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "scripts"))
import datatree  # noqa: E402 (the path comes first)
import stage as stages  # noqa: E402

SPLASH = 3000  # milliseconds of its timer
EMPTY_TITLE = "Empty Window"
MOST = 2  # times the empty window's time
NOBODY = 9  # the port of the account, which nobody connects to


def missing():
    """The reason why the start cannot be measured here, or None."""
    for tool in "Xvfb", "openbox", "xdotool":
        if not shutil.which(tool):
            return f"no {tool} on this machine"
    for file in "schedstat", "smaps_rollup":
        if not os.path.exists("/proc/self/" + file):
            return f"no /proc/PID/{file} in this kernel"
    return None


def measure(stage, programs, splash, title, program):
    command = [programs / "bench_starter", splash, title, program]
    with open(stage.path("started.log"), "ab") as log:
        done = subprocess.run([str(part) for part in command], env=stage.environment, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=log, text=True, check=False)
    if done.returncode != 0:
        with open(stage.path("started.log"), encoding="utf-8", errors="replace") as log:
            raise SystemExit("bench: " + log.read()[-2000:])
    return json.loads(done.stdout)


def measure_start(folder, table, rounds):
    """Adds the rows; folder is the build folder."""
    programs = folder / "bench" / "bin"
    home = folder / "bench" / "stage"
    shutil.rmtree(home, ignore_errors=True)
    turns = {"corvane": (SPLASH, stages.MAIN_TITLE, folder / "bin" / "corvane"),
             "empty": (0, EMPTY_TITLE, programs / "bench_emptywindow")}
    found = {name: [] for name in turns}
    with stages.Stage(home) as stage:
        stage.use_throw_away_home()
        datatree.prepare(stage.data_home, NOBODY)
        stage.display()
        # The first start of each makes the data tree and brings the libraries into memory: it does not count.
        for number in range(rounds + 1):
            for name in sorted(turns, reverse=number % 2 == 1):
                result = measure(stage, programs, *turns[name])
                if number > 0:
                    found[name].append(result)

    def median(name, what):
        return statistics.median(result[what] for result in found[name])

    ours, empty = median("corvane", "seconds"), median("empty", "seconds")
    splash = median("corvane", "splash")
    table.add(f"start until the main window is drawn, {ours * 1000:.0f} ms without the splash's {splash:.1f} s, "
              f"against an empty window ({empty * 1000:.0f} ms)", f"{ours / empty:.2f} times", f"at most {MOST}",
              ours <= MOST * empty)
    for what, name in ("rss", "resident memory"), ("pss", "its share of it (PSS)"), ("private", "private memory"):
        table.add(f"main window: {name} (empty window {median('empty', what) / 1024:.1f} MB)",
                  f"{median('corvane', what) / 1024:.1f} MB", "", None)
