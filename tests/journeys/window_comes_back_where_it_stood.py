"""A window that was placed stands there again at the next start, and the one after: it does not creep."""

import configparser
import os

import journey

PLACE = {"Left": "1500", "Top": "1350", "Width": "12000", "Height": "9000"}  # twips, 15 to a pixel


def stored(stage):
    # Values may hold a percent sign, and names keep their case.
    settings = configparser.RawConfigParser()
    settings.optionxform = str
    settings.read(os.path.join(stage.data_root, "data", "options.dll"), encoding="utf-8")
    return dict(settings["Position"])


def placed(stage, program, build_folder):
    with open(os.path.join(stage.data_root, "data", "options.dll"), "ab") as file:
        file.write("".join(["[Position]\r\n", *(f"{key}={value}\r\n" for key, value in PLACE.items())]).encode())
    corners = []
    for _ in range(3):
        child = stage.start("corvane", [program])
        window = stage.wait_for_window(journey.stages.MAIN_TITLE, child)
        corners.append(stage.xdotool("getwindowgeometry", "--shell", window).splitlines()[1:5])
        journey.check_equal(stage.leave(child), 0, "exit code")
        journey.check_equal(stored(stage), PLACE, "the remembered place")
    journey.check(corners[0] == corners[1] == corners[2], f"the same place each time: {corners}")


journey.set_out(placed)
