#!/usr/bin/python3
"""Opens the built program on a demonstration data tree whose account is that of a local mail catcher.

On a display the window is the user's, until the program is left. Without one the same happens on a virtual display: a
scripted session fills a message, presses Send, and prints what the catcher received, the log's last run and where the
picture of the window lies. Exit code 0 means that the mail arrived, or that the user has left the program.

Usage: session.py BUILD_FOLDER RUN_FOLDER
"""

import os
import sys

import datatree
import stage as stages

RECIPIENT = "Grace Sample <grace@corvane.example>"
SUBJECT = "A first mail from Corvane"
BODY = "Dear Grace,\n\nthis mail was written and sent by a scripted session.\n\nAda"


def hear(line):
    print(line, end="", flush=True)


def on_own_display(stage, program):
    """The user drives; mails are shown as they arrive."""
    stage.use_data_home()
    stage.on_catcher_line = hear
    datatree.prepare(stage.data_home, stage.catcher())
    print(f"The program's data for this run: {stage.data_root}", flush=True)
    window = stage.start("corvane", [program])
    try:
        code = window.wait()
    except KeyboardInterrupt:
        return 130
    if code != 0:
        print(f"The program ended with code {code}; its words are in {stage.path('corvane.log')}", file=sys.stderr)
    return 0 if code == 0 else 1


def heading(text):
    print(f"\n== {text} ==", flush=True)


def on_virtual_display(stage, program):
    """A script drives, and tells what came of it."""
    stage.use_throw_away_home()
    datatree.prepare(stage.data_home, stage.catcher())
    stage.display()
    print("No display: a scripted session sends one mail on a virtual one.", flush=True)
    child = stage.start("corvane", [program])
    stage.wait_for_window(stages.MAIN_TITLE, child)
    stage.fill(RECIPIENT, SUBJECT, BODY)
    picture = stage.path("main-window.png")
    stage.settled_picture(picture)
    stage.send_and_answer(child)
    stage.wait("the mail at the catcher", stage.mails)
    stage.leave(child)

    for mail in stage.mails():
        heading(f"The catcher received {mail}")
        with open(mail, encoding="utf-8", errors="replace", newline="") as file:
            print(file.read().replace("\r\n", "\n"), end="")
    heading(f"The log's last run, {datatree.log_path(stage.data_home)}")
    print("\n".join(datatree.last_run(stage.data_home)), end="")
    heading("The main window before sending")
    print(picture)
    return 0


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    program = stages.program_path(os.path.abspath(sys.argv[1]))
    with stages.Stage(sys.argv[2]) as stage:
        try:
            if os.environ.get("DISPLAY") or os.environ.get("WAYLAND_DISPLAY"):
                return on_own_display(stage, program)
            return on_virtual_display(stage, program)
        except stages.StageError as fault:
            print(f"session: {fault}", file=sys.stderr)
            stage.tell_state()
            return 1


if __name__ == "__main__":
    sys.exit(main())
