"""A message is saved, changed, left for a new one with each answer of the save question, and opened again with all that
was in it; then templates are looked at, renamed and deleted."""

import os

import journey
from journey import stages

EDIT = 'Corvane - Edit "{}"'
CHOOSE = "Choose a Template"
MANAGE = "Templates Manager"
FIRST = ("Grace <grace@corvane.example>, ada@corvane.example", "Spring news", "Dear members,\nthe club meets.")


def files(stage):
    folder = os.path.join(stage.data_root, "data", "templates")
    return sorted(name for name in os.listdir(folder) if not name.startswith("."))


def names(stage):
    with open(os.path.join(stage.data_root, "data", "templates", "templates.dll"), encoding="utf-8") as file:
        return file.read().splitlines()


def head(stage, name):
    with open(os.path.join(stage.data_root, "data", "templates", f"head_{name}.dll"), encoding="utf-8") as file:
        return dict(line.split("=", 1) for line in file.read().splitlines() if "=" in line)


def content(stage, name):
    with open(os.path.join(stage.data_root, "data", "templates", f"content_{name}.dll"), encoding="utf-8",
              newline="") as file:
        return file.read()


def command(stage, child, menu, letter):
    stage.focus(child.window, child)
    stage.open_menu(child, menu)
    stage.press(letter)


def titled(stage, child, title):
    """The main window cannot have the keyboard while a dialog is open; its title tells what it shows."""
    stage.wait(f"the title {title}", lambda: stage.windows(child.pid, title), child)


def a_box(stage, child):
    """A message box or an input box: both have the program's name."""
    return stage.wait("a box", lambda: stage.windows(child.pid, stages.BOX_TITLE), child)[0]


def box(stage, child, key):
    """Answers the box that is to come by that key; another one may follow it."""
    shown = a_box(stage, child)

    def gone():
        if shown in stage.windows(child.pid, stages.BOX_TITLE) and stage.xdotool("getactivewindow") == shown:
            stage.press(key)
        return shown not in stage.windows(child.pid, stages.BOX_TITLE)
    stage.wait("the box to go", gone, child)


def answer(stage, child, text=None):
    """Answers an input box, with what it offers or another text."""
    shown = a_box(stage, child)
    stage.focus(shown, child)
    if text:
        stage.press("ctrl+a")
        stage.type(text)
    stage.press("Return")
    stage.wait("the box to go", lambda: shown not in stage.windows(child.pid, stages.BOX_TITLE), child)


def save(stage, child, name=None):
    command(stage, child, "f", "s")
    answer(stage, child, name)


def kept(stage, program, build_folder):
    child = stage.start("corvane", [program])
    child.window = stage.wait_for_window(stages.MAIN_TITLE, child)
    stage.fill(*FIRST)
    save(stage, child)
    stage.wait_for_window(EDIT.format("Spring news"), child)
    journey.check_equal(files(stage), ["content_Spring news.dll", "head_Spring news.dll", "templates.dll"], "files")
    journey.check_equal(content(stage, "Spring news"), FIRST[2].replace("\n", "\r\n"), "content")

    # A change, and the three answers.
    stage.press("alt+t", "End")
    stage.type(", bob@corvane.example")
    stage.press("Escape")
    command(stage, child, "f", "n")
    box(stage, child, "Escape")  # Cancel
    stage.wait_for_window(EDIT.format("Spring news"), child)
    command(stage, child, "f", "n")
    box(stage, child, "alt+n")
    stage.wait_for_window(stages.MAIN_TITLE, child)
    journey.check_equal(head(stage, "Spring news")["To"], FIRST[0], "the stored recipients after No")
    stage.fill("eve@corvane.example", "Second", "Another.")
    command(stage, child, "f", "n")
    box(stage, child, "alt+y")
    answer(stage, child)
    stage.wait("the second template", lambda: names(stage) == ["Spring news", "Second"], child)
    stage.wait_for_window(stages.MAIN_TITLE, child)

    # Opened again, it holds what was saved: saved under another name the files are the same.
    command(stage, child, "f", "o")
    chooser = stage.wait_for_window(CHOOSE, child)
    stage.focus(chooser, child)
    stage.press("Down")
    titled(stage, child, 'Corvane - Preview "Spring news"')
    stage.press("Return")
    stage.wait_for_window(EDIT.format("Spring news"), child)
    save(stage, child, "Copy")
    stage.wait_for_window(EDIT.format("Copy"), child)
    journey.check_equal(head(stage, "Copy"), head(stage, "Spring news"), "the copy's head")
    journey.check_equal(content(stage, "Copy"), content(stage, "Spring news"), "the copy's content")
    manage(stage, child)
    # What was open has another name by now: the window is blank, and there is nothing to ask about.
    command(stage, child, "f", "n")
    stage.wait_for_window(stages.MAIN_TITLE, child)
    journey.check_equal(stage.leave(child), 0, "exit code")


def manage(stage, child):
    command(stage, child, "l", "t")
    manager = stage.wait_for_window(MANAGE, child)
    stage.focus(manager, child)
    for key, name in (("Down", "Spring news"), ("Down", "Second"), ("Down", "Copy")):
        stage.press(key)
        titled(stage, child, f'Corvane - Preview "{name}"')
    stage.press("F2")
    answer(stage, child, "Renamed")
    stage.wait("the new name", lambda: names(stage) == ["Spring news", "Second", "Renamed"], child)
    stage.focus(manager, child)
    stage.press("Home", "shift+Down", "Delete")
    box(stage, child, "alt+y")
    stage.wait("two to be gone", lambda: names(stage) == ["Renamed"], child)
    journey.check_equal(files(stage), ["content_Renamed.dll", "head_Renamed.dll", "templates.dll"], "files")
    stage.focus(manager, child)
    stage.press("alt+c")
    stage.wait_for_window(EDIT.format("Copy"), child)  # the title is that of before the first click


journey.set_out(kept)
