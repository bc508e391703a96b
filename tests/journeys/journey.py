"""What the journeys share: a stage with an account at a mail catcher, checks, and the language texts."""

import os
import shutil
import sys
import tempfile

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "scripts"))

import datatree  # noqa: E402
import stage as stages  # noqa: E402


class Failed(Exception):
    """A check did not hold."""


def check(holds, what):
    if not holds:
        raise Failed(what)


def check_equal(found, expected, what):
    check(found == expected, f"{what}\n  found    {found!r}\n  expected {expected!r}")


def language_text(build_folder, key):
    """The text of a message key as the built program shows it; none of the keys used here has an escaped value."""
    with open(os.path.join(build_folder, "bin", "tips.dll"), encoding="utf-8-sig") as file:
        for line in file:
            name, equals, value = line.rstrip("\r\n").partition("=")
            if equals and name.strip().lower() == key.lower():
                return value
    raise Failed(f"no text for {key}")


def set_out(journey):
    """Runs journey(stage, program path, build folder) on a new stage. The stage's folder goes when all went well, and
    stays, with a picture of the display, when it did not."""
    if len(sys.argv) != 2:
        sys.exit(f"usage: {sys.argv[0]} BUILD_FOLDER")
    build_folder = os.path.abspath(sys.argv[1])
    program = stages.program_path(build_folder)
    folder = tempfile.mkdtemp(prefix="corvane-journey-")
    try:
        with stages.Stage(folder) as stage:
            try:
                stage.use_throw_away_home()
                datatree.prepare(stage.data_home, stage.catcher())
                stage.display()
                journey(stage, program, build_folder)
            except (Failed, stages.StageError) as fault:
                print(f"FAILED: {fault}", file=sys.stderr)
                stage.tell_state()
                print(f"kept for a look: {folder}", file=sys.stderr)
                sys.exit(1)
    finally:
        if sys.exc_info()[0] is None:
            shutil.rmtree(folder)
    print("arrived")
