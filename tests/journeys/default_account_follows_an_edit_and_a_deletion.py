"""The default account is edited: the stored default follows, and the next mail goes to its new port and bears its new
name. It is deleted: the first account that remains becomes the default and sends."""

import socket

import journey
import optionsdialog as options
from journey import datatree

NAME = "Ada Newname"
OTHER_NAME = "Lin Example"
OTHER_ADDRESS = "lin@corvane.example"
EDITOR = f"Edit SMTP Account - {datatree.SENDER_ADDRESS}"


def check_accounts(stage, lines, default):
    journey.check_equal(options.content(stage, "smtp.dll"), b"".join(line + b"\r\n" for line in lines), "smtp.dll")
    journey.check_equal(options.setting(stage, "SMTP Account", "Default"), default, "the default account")
    options.check_private(stage, "smtp.dll", "options.dll")


def edit_default(stage, child):
    """The only account is selected from the start."""
    options.open_options(stage, child, options.ACCOUNTS)
    stage.press("alt+e")
    stage.wait_for_window(EDITOR, child)
    options.enter(stage, (options.PORT, str(stage.catcher_port)), (options.SENDER_NAME, NAME))
    options.save_and_close(stage, child, EDITOR)
    options.close_options(stage, child)


def add_second(stage, child):
    options.open_options(stage, child, options.ACCOUNTS)
    stage.open_menu(child, "a")
    stage.press("n")
    stage.wait_for_window("Add SMTP Account", child)
    options.enter(stage, (options.SERVER, "localhost"), (options.PORT, str(stage.catcher_port)),
                  (options.SENDER_NAME, OTHER_NAME), (options.SENDER_ADDRESS, OTHER_ADDRESS))
    options.turn_login(stage)
    options.save_and_close(stage, child, "Add SMTP Account")


def follows(stage, program, build_folder):
    with socket.socket() as nobody:  # a port at which nobody listens, held so that nobody else gets it
        nobody.bind(("127.0.0.1", 0))
        datatree.prepare(stage.data_home, nobody.getsockname()[1])
        child = stage.start("corvane", [program])
        edit_default(stage, child)
        first = "\t".join(["127.0.0.1", str(stage.catcher_port), "N", "N", "", "", NAME, datatree.SENDER_ADDRESS, NAME,
                           "", "/SAEND"]).encode()
        check_accounts(stage, [first], first)
        journey.check_equal(options.sender_of(options.send(stage, child, "After the edit")),
                            f"{NAME} <{datatree.SENDER_ADDRESS}>", "From after the edit")

        add_second(stage, child)
        second = options.account(stage.catcher_port, OTHER_NAME, OTHER_ADDRESS, server="localhost")
        check_accounts(stage, [first, second], first)
        # The default is still the selected row.
        options.answer_box(stage, child, options.press_for_box(stage, child, "Delete"), "alt+y")
        options.wait_for_setting(stage, child, "SMTP Account", "Default", second)
        check_accounts(stage, [second], second)
        options.close_options(stage, child)

        # What stood in the account box stays there, as a text that the user may have typed would.
        stage.press("alt+u", "ctrl+a")
        stage.type(OTHER_ADDRESS)
        other = f"{OTHER_NAME} <{OTHER_ADDRESS}>"
        journey.check_equal(options.sender_of(options.send(stage, child, "After the deletion")), other, "From then")
        journey.check_equal(stage.leave(child), 0, "exit code")

        again = stage.start("corvane", [program])
        journey.check_equal(options.sender_of(options.send(stage, again, "After a new start")), other, "From at last")
        journey.check_equal(stage.leave(again), 0, "exit code of the second start")


journey.set_out(follows)
