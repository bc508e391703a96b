"""What the journeys through the options share: opening and closing the dialog and its editors by their keys, answering
one box, and reading the settings and the records as they lie on the disk."""

import email
import email.policy
import os
import stat

import journey
from journey import datatree
from journey import stages

TITLE = "Options"
PROXIES, ACCOUNTS, SENDERS, SIGNATURES, OTHER = range(5)

# The fields of an account or a proxy server that its editor asks for, by the letters of their labels.
SERVER, PORT, USER, PASSWORD, SENDER_NAME, SENDER_ADDRESS = "s", "p", "u", "w", "m", "e"
PROXY_ADDRESS = "d"


def open_options(stage, child, tab=PROXIES):
    """Tools, Options; then the tab."""
    stage.wait_for_window(stages.MAIN_TITLE, child)
    stage.open_menu(child, "l")
    stage.press("o")
    window = stage.wait_for_window(TITLE, child)
    go_to_tab(stage, PROXIES, tab)
    return window


def go_to_tab(stage, present, tab):
    for _ in range((tab - present) % (OTHER + 1)):
        stage.press("ctrl+Tab")


def close_options(stage, child):
    stage.wait_for_window(TITLE, child)
    stage.press("alt+s")
    wait_until_gone(stage, child, TITLE)
    stage.wait_for_window(stages.MAIN_TITLE, child)


def enter(stage, *fields):
    """Types into the fields of the editor that has the keyboard, each reached by its label's letter."""
    for letter, text in fields:
        stage.press("alt+" + letter)
        stage.type(text)


def turn_login(stage):
    """Turns the account editor's tick for authentication. By the space bar: a tick's letter works a moment later, after
    the keys that follow."""
    stage.press("alt+" + PORT, "Tab", "Tab", "space")


def save_and_close(stage, child, title):
    """Save & Close; the editor goes and the options have the keyboard again."""
    stage.press("alt+c")
    wait_until_gone(stage, child, title)
    stage.wait_for_window(TITLE, child)


def wait_until_gone(stage, child, title):
    stage.wait(f"'{title}' to close", lambda: not stage.windows(child.pid, title), child)


def press_for_box(stage, child, *keys):
    """Presses keys that make one message box come, and gives it the keyboard; returns its window. The splash bears the
    title of the boxes too while the question about the account stands."""
    before = boxes(stage, child)
    stage.press(*keys)
    return new_box(stage, child, before)


def boxes(stage, child):
    return stage.windows(child.pid, stages.BOX_TITLE)


def new_box(stage, child, before):
    """Waits for a message box that is not among those before, and gives it the keyboard; returns its window."""
    def new():
        return [box for box in boxes(stage, child) if box not in before]
    box = stage.wait("a message box", new, child)[0]
    stage.focus(box, child)
    return box


def answer_box(stage, child, box, key="Return"):
    """Answers a box and waits until it has gone."""
    stage.press(key)
    stage.wait("the box to go", lambda: box not in boxes(stage, child), child)


def sender_of(path):
    """The From field of a mail at the server."""
    with open(path, "rb") as file:
        return email.message_from_binary_file(file, policy=email.policy.default)["From"]


def data_file(stage, *names):
    return os.path.join(stage.data_root, "data", *names)


def content(stage, *names):
    """The octets of a data file."""
    with open(data_file(stage, *names), "rb") as file:
        return file.read()


def setting(stage, section, key):
    """The octets of a value of options.dll exactly as they stand there; None where there is none."""
    present = None
    for line in content(stage, "options.dll").split(b"\r\n"):
        if line.startswith(b"["):
            present = line.strip(b"[]").decode().lower()
        name, equals, value = line.partition(b"=")
        if equals and present == section.lower() and name.decode().lower() == key.lower():
            return value
    return None


def wait_for_setting(stage, child, section, key, value):
    stage.wait(f"{section}/{key} to be {value!r}", lambda: setting(stage, section, key) == value, child)


def check_private(stage, *names):
    for name in names:
        mode = stat.S_IMODE(os.stat(data_file(stage, name)).st_mode)
        journey.check_equal(mode, 0o600, f"permission bits of {name}")


def account(port, name, address, server="127.0.0.1", user=""):
    """The line of an account without login, as the editor makes it: the receipts follow the sender."""
    fields = [server, str(port), "N", "N", user, "", name, address, name, address, "/SAEND"]
    return "\t".join(fields).encode()


def send(stage, child, subject):
    """Sends a mail with that subject from the main window; returns its path at the server."""
    return send_with(stage, child, t="grace@corvane.example", j=subject, o="Dear Grace,")


def send_with(stage, child, **fields):
    """Sends a mail whose fields, by their labels' letters, have these texts; returns its path at the server."""
    before = set(stage.mails())
    runs = len(runs_ended(stage))
    stage.wait_for_window(stages.MAIN_TITLE, child)
    for letter, text in fields.items():
        stage.press("alt+" + letter, "ctrl+a")
        stage.type(text)
    stage.press("ctrl+Return")

    def ended():
        stage.answer_boxes(child)
        return len(runs_ended(stage)) > runs
    stage.wait("the end of the run in the log", ended, child)
    new = set(stage.mails()) - before
    journey.check_equal(len(new), 1, "number of new mails at the server")
    return new.pop()


def runs_ended(stage):
    """The closing lines of this month's log."""
    try:
        with open(datatree.log_path(stage.data_home), encoding="utf-8") as file:
            return [line for line in file if line.startswith("End: ")]
    except FileNotFoundError:
        return []
