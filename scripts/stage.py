"""Puts the program on a stage of its own: a throw-away home, a virtual display, a mail catcher, and hands on its keys.

The scripted session of ./run and the journeys among the tests both stand on it. Everything that a Stage starts it ends
by its process id, in the opposite order, however the stage is left.
"""

import ctypes
import glob
import os
import re
import signal
import subprocess
import sys
import threading
import time

import datatree

SCRIPTS = os.path.dirname(os.path.abspath(__file__))
PYTHON = "/usr/bin/python3"  # Debian's own, the one that has aiosmtpd
SCREEN = "1100x820x24"
MAIN_TITLE = "Corvane - New Message"
BOX_TITLE = "Corvane"

POLL_SECONDS = 0.05
PATIENCE_SECONDS = 120  # a safety net against a hang: no wait is expected to come near it
GRACE_SECONDS = 5
MENU_SECONDS = 2  # after which a menu that has not come is asked for again


class StageError(Exception):
    """Something that was waited for did not come about."""


def _die_with_parent():
    """In the child: be ended by the system when the script that started it dies, even by SIGKILL."""
    pr_set_pdeathsig = 1
    ctypes.CDLL(None).prctl(pr_set_pdeathsig, signal.SIGTERM)


class Stage:
    """Used in a with statement. folder is made if missing and holds home, data, mails, outputs and pictures."""

    def __init__(self, folder, patience=PATIENCE_SECONDS):
        self.folder = os.path.abspath(folder)
        self.patience = patience
        self.children = []
        self.environment = dict(os.environ)
        # Qt and the tools want a UTF-8 locale; this one is always there.
        self.environment.update(LANG="C.UTF-8", LC_ALL="C.UTF-8")

    def __enter__(self):
        os.makedirs(self.folder, mode=0o700, exist_ok=True)
        return self

    def __exit__(self, *fault):
        for child in reversed(self.children):
            self.end(child)

    def path(self, *names):
        """A path inside the stage's folder, with its folder made."""
        path = os.path.join(self.folder, *names)
        os.makedirs(os.path.dirname(path), mode=0o700, exist_ok=True)
        return path

    @property
    def data_home(self):
        return os.path.join(self.folder, "data")

    @property
    def data_root(self):
        return datatree.data_root(self.data_home)

    def use_data_home(self):
        """From here on the program's data tree lies inside the stage's folder."""
        self.environment["XDG_DATA_HOME"] = self.data_home
        self.environment["XDG_DATA_DIRS"] = self.folder + "/share:/usr/local/share:/usr/share"
        os.makedirs(self.data_home, mode=0o700, exist_ok=True)

    def use_throw_away_home(self):
        """From here on nothing of the user's own home is read or written."""
        self.use_data_home()
        for variable, name in (("HOME", "home"), ("XDG_CONFIG_HOME", "config"), ("XDG_CACHE_HOME", "cache"),
                               ("XDG_STATE_HOME", "state"), ("XDG_RUNTIME_DIR", "runtime")):
            folder = os.path.join(self.folder, name)
            os.makedirs(folder, mode=0o700, exist_ok=True)
            self.environment[variable] = folder
        for variable in ("WAYLAND_DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "QT_QPA_PLATFORM", "QT_STYLE_OVERRIDE"):
            self.environment.pop(variable, None)

    # Processes

    def start(self, name, arguments, **options):
        """Starts a process whose output goes to <name>.log in the folder, unless told otherwise."""
        options.setdefault("stdin", subprocess.DEVNULL)
        with open(self.path(name + ".log"), "ab") as log:
            options.setdefault("stdout", log)
            options.setdefault("stderr", log)
            child = subprocess.Popen(arguments, env=self.environment, preexec_fn=_die_with_parent, **options)
        self.children.append(child)
        return child

    def end(self, child):
        """Asks the process to end, and makes it end if it does not."""
        if child.poll() is None:
            child.terminate()
            try:
                child.wait(GRACE_SECONDS)
            except subprocess.TimeoutExpired:
                child.kill()
                child.wait()
        if child in self.children:
            self.children.remove(child)

    def wait(self, what, condition, while_runs=None):
        """Polls until condition() gives something true, and returns that. Fails when the process meant by while_runs
        has ended, or when the patience is used up."""
        end = time.monotonic() + self.patience
        while True:
            result = condition()
            if result:
                return result
            if while_runs is not None and while_runs.poll() is not None:
                raise StageError(f"the program ended with code {while_runs.returncode} before: {what}")
            if time.monotonic() > end:
                raise StageError(f"waited {self.patience} seconds in vain for: {what}")
            time.sleep(POLL_SECONDS)

    def wait_for_end(self, child, what):
        """Waits until the process has ended of itself and returns its exit code."""
        self.wait(what, lambda: child.poll() is not None)
        self.children.remove(child)
        return child.returncode

    # The display

    def display(self):
        """Starts a virtual display with a window manager on it."""
        reader, writer = os.pipe()
        # A server that starts afresh when its last client goes would turn away whoever comes at that moment.
        server = self.start("xvfb", ["Xvfb", "-displayfd", str(writer), "-screen", "0", SCREEN, "-nolisten", "tcp",
                                     "-noreset"], pass_fds=[writer])
        os.close(writer)
        with os.fdopen(reader) as pipe:
            number = pipe.readline().strip()  # comes when the display stands, empty if the server gave up
        if not number:
            raise StageError(f"no virtual display: see {self.path('xvfb.log')}; code {server.poll()}")
        self.environment["DISPLAY"] = ":" + number
        manager = self.start("openbox", ["openbox"])
        self.wait("the window manager", lambda: self.xdotool("get_num_desktops") is not None, manager)

    def tray(self):
        """Starts a tray on the display; returns its window."""
        tray = self.start("trayer", ["trayer", "--edge", "bottom", "--align", "right", "--widthtype", "pixel", "--width",
                                     "60", "--SetDockType", "false"])
        return self.wait("the tray", lambda: self.xdotool("search", "--onlyvisible", "--class", "^trayer$"),
                         tray).split()[0]

    def geometry(self, window):
        """Left, top, width and height of what a window holds, without its frame, in pixels of the display."""
        facts = self.facts_of(window)
        found = [re.search(rf"^ *{fact}: +(-?\d+)$", facts, re.MULTILINE)
                 for fact in ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height")]
        return tuple(int(match.group(1)) for match in found)

    def children_of(self, window):
        """How many windows lie inside a window: those of a tray are its icons, and some of its own."""
        return self.facts_of(window, "-tree").count(" 0x")

    def facts_of(self, window, *options):
        done = subprocess.run(["xwininfo", "-id", window, *options], env=self.environment, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True, check=False)
        if done.returncode != 0:
            raise StageError(f"no window {window}")
        return done.stdout

    def click(self, window, x, y, button=1):
        """Clicks into a window, at pixels from its corner."""
        if self.xdotool("mousemove", "--window", window, x, y, "click", button) is None:
            raise StageError("could not click")

    def xdotool(self, *arguments):
        """What xdotool prints, or None where it fails (a window that is not there, say)."""
        done = subprocess.run(["xdotool", *map(str, arguments)], env=self.environment, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True, check=False)
        return done.stdout.strip() if done.returncode == 0 else None

    def windows(self, pid, title=None):
        """The visible windows of a process; with a title, those whose title is exactly this one."""
        arguments = ["search", "--all", "--onlyvisible", "--pid", pid]
        if title is not None:
            arguments += ["--name", "^" + title + "$"]  # none of the titles in use holds a sign with a meaning here
        return (self.xdotool(*arguments) or "").split()

    def wait_for_window(self, title, program):
        """Waits for a window of the program with that title and gives it the keyboard; returns its id."""
        window = self.wait(f"the window '{title}'", lambda: self.windows(program.pid, title), program)[0]
        self.focus(window, program)
        return window

    def focus(self, window, program=None):
        """Gives the window the keyboard and waits until it has it."""
        def focused():
            self.xdotool("windowactivate", window)
            return self.xdotool("getactivewindow") == window and self.xdotool("getwindowfocus") == window
        self.wait("the keyboard on the window", focused, program)

    def press(self, *keys):
        """Presses keys on whatever has the keyboard, as xdotool names them: "Tab", "ctrl+Return"."""
        if self.xdotool("key", "--clearmodifiers", *keys) is None:
            raise StageError(f"could not press {keys}")

    def open_menu(self, program, letter):
        """Opens a menu of the window that has the keyboard by its letter."""
        self.open_popup(program, f"the menu {letter.upper()}", lambda: self.press("alt+" + letter))

    def open_popup(self, program, what, ask):
        """Calls ask() and waits for the window that it makes come. Asked again where it was not heard: a window that
        got the keyboard a moment ago may not know it yet."""
        before = set(self.windows(program.pid))
        asked = -MENU_SECONDS

        def opened():
            nonlocal asked
            if time.monotonic() - asked >= MENU_SECONDS:
                asked = time.monotonic()
                ask()
            return set(self.windows(program.pid)) - before  # some of those before may be going just now
        self.wait(what, opened, program)

    def type(self, text):
        """Types text on whatever has the keyboard; a line break is the Enter key."""
        lines = text.split("\n")
        for index, line in enumerate(lines):
            if index > 0:
                self.press("Return")
            if line and self.xdotool("type", "--clearmodifiers", "--delay", "2", "--", line) is None:
                raise StageError("could not type")

    def picture(self, path, part=None):
        """A picture of the whole display, or of a part of it: left, top, width and height in pixels."""
        only = [] if part is None else ["--autoselect", ",".join(map(str, part))]
        subprocess.run(["scrot", "--overwrite", "--silent", *only, path], env=self.environment, check=True,
                       stdin=subprocess.DEVNULL)

    def settled_picture(self, path):
        """A picture of the display once it stands still: two in a row are alike. A blinking caret does not matter,
        it stands still for long enough."""
        def settled():
            before = path + ".before.png"
            self.picture(before)
            self.picture(path)
            with open(before, "rb") as a, open(path, "rb") as b:
                alike = a.read() == b.read()
            os.remove(before)
            return alike
        self.wait("the display to stand still", settled)

    # The program's main window

    def fill(self, to, subject, content):
        """Types a message into the window that has the keyboard. The fields are reached by their labels' letters."""
        for letter, text in (("t", to), ("j", subject), ("o", content)):
            self.press("alt+" + letter)
            self.type(text)

    def answer_boxes(self, program, key="Return"):
        """Presses the key in each message box that the program shows now."""
        for box in self.windows(program.pid, BOX_TITLE):
            if self.xdotool("windowactivate", box) is not None and self.xdotool("getactivewindow") == box:
                self.press(key)

    def send_and_answer(self, program):
        """Presses Send and answers the boxes that come until the log has the run's end."""
        self.press("ctrl+Return")

        def ended():
            self.answer_boxes(program)
            return self.log_ended()
        self.wait("the end of the run in the log", ended, program)

    def leave(self, program):
        """Leaves the program by the File menu's Exit, without saving the message; returns its exit code."""
        window = self.wait_for_window(MAIN_TITLE, program)
        self.open_menu(program, "f")
        self.press("x")

        def ended():
            if program.poll() is not None:
                return True
            self.answer_boxes(program, "alt+n")
            return False
        self.wait("the end of the program", ended)
        self.children.remove(program)
        return program.returncode

    def tell_state(self):
        """After a failure: what was on the display, what the program said, what the log holds."""
        if "DISPLAY" in self.environment and any(child.poll() is None for child in self.children):
            path = self.path("failure.png")
            try:
                self.picture(path)
                print(f"the display at that moment: {path}", file=sys.stderr)
            except (OSError, subprocess.SubprocessError):
                print("no picture of the display could be taken", file=sys.stderr)
        for name in ("corvane.log", "catcher.log", "openbox.log"):
            path = self.path(name)
            if os.path.exists(path) and os.path.getsize(path) > 0:
                with open(path, encoding="utf-8", errors="replace") as file:
                    print(f"--- {name}\n{file.read()[-4000:]}", file=sys.stderr)
        print("--- the log's last run\n" + "\n".join(datatree.last_run(self.data_home)), file=sys.stderr)

    # Mail

    def catcher(self):
        """Starts the mail catcher and returns its port, catcher_port; mails() lists what it keeps."""
        arguments = [PYTHON, os.path.join(SCRIPTS, "catcher.py"), self.mail_folder]
        child = self.start("catcher", arguments, stdout=subprocess.PIPE, text=True)
        first = child.stdout.readline()
        found = re.match(r"catcher: port (\d+)$", first.strip())
        if not found:
            raise StageError(f"no mail catcher: see {self.path('catcher.log')}")
        self.catcher_said = []
        threading.Thread(target=self._hear_catcher, args=(child,), daemon=True).start()
        self.catcher_port = int(found.group(1))
        return self.catcher_port

    def _hear_catcher(self, child):
        with child.stdout as pipe:
            for line in pipe:
                self.catcher_said.append(line)
                if self.on_catcher_line:
                    self.on_catcher_line(line)

    on_catcher_line = None

    @property
    def mail_folder(self):
        return os.path.join(self.folder, "mails")

    def mails(self):
        """The paths of the mails kept so far, in the order of their arrival."""
        return sorted(glob.glob(os.path.join(self.mail_folder, "*.eml")))

    def log_ended(self):
        """Whether the log's last run has its closing line."""
        run = [line for line in datatree.last_run(self.data_home) if line]
        return bool(run) and run[-1].startswith("End: ")


def program_path(build_folder):
    """The built program, or an error where it is not built."""
    path = os.path.join(build_folder, "bin", "corvane")
    if not os.access(path, os.X_OK):
        sys.exit(f"the program is not built: {path}")
    return path
