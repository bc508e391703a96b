"""The test of a connection: a server that refuses, one that hangs up and one that never says a word are told as faults.
While the silent one is waited for the options are drawn anew but take no keys, and afterwards they work as before.

Here the silent server hangs up when that was seen. With SLOW_JOURNEYS set in the environment it stays silent for good,
so that the program's own time-out, a minute, must end the test."""

import os
import socket

import journey
import optionsdialog as options
from journey import datatree

GROWTH = 120  # pixels
LOOKS = 20
STRIP = 40  # pixels: the height of the picture's part that holds the buttons, which keep to the window's lower end


def refused(stage, child):
    """Nobody listens at the account's port: the fault comes at once."""
    options.answer_box(stage, child, options.press_for_box(stage, child, "alt+n"))


def hangs_up(stage, child, server):
    before = options.boxes(stage, child)
    stage.press("alt+n")
    visitor, _ = server.accept()
    visitor.close()
    options.answer_box(stage, child, options.new_box(stage, child, before))


def stays_silent(stage, child, server, window):
    before = options.boxes(stage, child)
    stage.press("alt+n")
    visitor, _ = server.accept()
    with visitor:
        check_deaf(stage, child, window)
        check_drawn(stage, child, window)
        journey.check_equal(options.boxes(stage, child), before, "boxes while the server is silent")
        if "SLOW_JOURNEYS" not in os.environ:
            print("SLOW_JOURNEYS is not set: the program's own time-out is not waited for")
            visitor.close()
        options.answer_box(stage, child, options.new_box(stage, child, before))


def check_deaf(stage, child, window):
    """Neither Close, by letter or by the window's frame, nor Add is heard while the test is under way."""
    windows = sorted(stage.windows(child.pid))
    stage.press("alt+s")
    stage.press("alt+a")
    stage.press("alt+F4")
    check_drawn(stage, child, window)  # by the time that it is drawn anew the keys are done
    journey.check_equal(sorted(stage.windows(child.pid)), windows, "windows while the test is under way")


def check_drawn(stage, child, window):
    """The window is made larger: its buttons come to stand at its new lower end, exactly as they stood at the old.
    Tried again where they were just about to change, as when they are disabled."""
    _, _, width, height = stage.geometry(window)

    def resize(to):
        stage.xdotool("windowsize", window, width, to)
        stage.wait("the new size", lambda: stage.geometry(window)[3] == to, child)

    def drawn():
        buttons = strip(stage, window)
        resize(height + GROWTH)
        same = any(strip(stage, window) == buttons for _ in range(LOOKS))
        resize(height)
        return same
    stage.wait("the buttons at the new lower end", drawn, child)


def strip(stage, window):
    """A picture of the window's lower end."""
    left, top, width, height = stage.geometry(window)
    path = stage.path("strip.png")
    stage.picture(path, (left, top + height - STRIP, width, STRIP))
    with open(path, "rb") as file:
        return file.read()


def silent_server(stage, program, build_folder):
    with socket.socket() as server:
        server.settimeout(stage.patience)
        server.bind(("127.0.0.1", 0))
        datatree.prepare(stage.data_home, server.getsockname()[1])
        child = stage.start("corvane", [program])
        window = options.open_options(stage, child, options.ACCOUNTS)
        refused(stage, child)
        server.listen()
        hangs_up(stage, child, server)
        stays_silent(stage, child, server, window)

    stage.press("alt+e")  # the form can be used again, and its list has the keyboard
    editor = f"Edit SMTP Account - {datatree.SENDER_ADDRESS}"
    stage.wait_for_window(editor, child)
    options.save_and_close(stage, child, editor)
    options.close_options(stage, child)
    journey.check_equal(stage.leave(child), 0, "exit code")


journey.set_out(silent_server)
