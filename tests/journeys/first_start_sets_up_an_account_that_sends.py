"""The very first start: nothing is there yet, the data tree appears, and the program asks whether to set up an account.
Yes opens the options on the accounts; an account typed there is tested, becomes the default, and sends a mail."""

import os

import journey
import optionsdialog as options
from journey import datatree
from journey import stages

FILES = ["data/macros.dll", "data/options.dll", "data/prompts.dll", "data/proxy.dll", "data/queues.dll",
         "data/senders.dll", "data/signs/signs.dll", "data/smtp.dll", "data/templates/templates.dll",
         "Corvane data folder, please do not delete it"]
NAME = "Grace Brewster Sample"
ADDRESS = "grace@mail.corvane.example"
EDITOR = "Add SMTP Account"


def say_yes(stage, child):
    """Answers the question whether to set up an account; the options come up, and no main window yet."""
    def options_open():
        stage.answer_boxes(child, "alt+y")
        return stage.windows(child.pid, options.TITLE)
    stage.wait("the options", options_open, child)
    journey.check(not stage.windows(child.pid, stages.MAIN_TITLE), "the question comes before the main window")
    stage.wait_for_window(options.TITLE, child)


def enter_account(stage, child):
    """Add, New Account. The user's text fills the sender, the sender the receipts; the catcher knows no login."""
    stage.open_menu(child, "a")
    stage.press("n")
    stage.wait_for_window(EDITOR, child)
    stage.type("127.0.0.1")  # the keyboard is in the first box from the start
    stage.press("Tab")
    stage.type(str(stage.catcher_port))  # over the 25 that stands there selected
    options.enter(stage, (options.USER, ADDRESS), (options.SENDER_NAME, NAME))
    options.turn_login(stage)
    options.save_and_close(stage, child, EDITOR)


def check_files(stage):
    for name in FILES:
        path = os.path.join(stage.data_root, name)
        journey.check(os.path.isfile(path), f"{name} is there")
        journey.check_equal(os.stat(path).st_mode & 0o777, 0o600, f"mode of {name}")
    line = options.account(stage.catcher_port, NAME, ADDRESS, user=ADDRESS)
    journey.check_equal(options.content(stage, "smtp.dll"), line + b"\r\n", "smtp.dll")
    journey.check_equal(options.setting(stage, "SMTP Account", "Default"), line, "the default account")


def check_macros(stage):
    """The macros about the user follow from the account that became the default."""
    macros = [line.split("\t") for line in options.content(stage, "macros.dll").decode().splitlines()]
    journey.check_equal(len(macros), 20, "predefined macros")
    texts = {fields[0]: fields[1] for fields in macros}
    for macro, text in (("{My First Name}", "Grace"), ("{My Last Name}", "Sample"), ("{My Full Name}", NAME),
                        ("{My Email Address}", ADDRESS)):
        journey.check_equal(texts[macro], text, macro)
    journey.check_equal(texts["{My Website}"].strip(), "", "{My Website}")


def first_start(stage, program, build_folder):
    journey.shutil.rmtree(stage.data_root)
    child = stage.start("corvane", [program])
    say_yes(stage, child)
    enter_account(stage, child)

    # Test Connection, of the account that is selected since it is the only one.
    options.answer_box(stage, child, options.press_for_box(stage, child, "alt+n"))
    stage.wait("the test's visit at the server", lambda: visits(stage) == 1, child)
    options.close_options(stage, child)
    check_files(stage)
    check_macros(stage)

    journey.check_equal(options.sender_of(options.send(stage, child, "First mail")), f"{NAME} <{ADDRESS}>", "From")
    journey.check(f"Account: {ADDRESS}" in datatree.last_run(stage.data_home), "the log names the account")
    journey.check_equal(visits(stage), 1, "visits without a mail")
    journey.check_equal(stage.leave(child), 0, "exit code")


def visits(stage):
    return sum("visit without a mail" in line for line in stage.catcher_said)


journey.set_out(first_start)
