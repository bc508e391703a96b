"""The program is killed again and again while a signature is being typed. Each time its files are whole and lack the
last change at most; the next start shows the text, and a new message begins with it without being marked as changed."""

import email
import email.policy
import os
import random
import subprocess

import journey
import optionsdialog as options
from journey import stages

ROUNDS = 5
NAME = "Signature #0"
LONGEST_BURST = 40
LETTERS = "abcdefghijklmnopqrstuvwxyz"


def text_file(stage):
    """The stored text; None while there is none."""
    try:
        return options.content(stage, "signs", f"sign_{NAME}.dll").removeprefix(b"\xef\xbb\xbf").decode()
    except FileNotFoundError:
        return None


def check_index(stage):
    """The list of signatures is whole, and no half-written file lies beside it."""
    journey.check_equal(sorted(os.listdir(options.data_file(stage, "signs"))), [f"sign_{NAME}.dll", "signs.dll"],
                        "files of the signatures")
    journey.check_equal(options.content(stage, "signs", "signs.dll"), NAME.encode() + b"\t\r\n", "signs.dll")
    journey.check_equal(options.setting(stage, "Signature", "Default"), NAME.encode(), "the default signature")


def type_one(stage, child, text, letter):
    """Types a letter and waits until it is on the disk."""
    stage.type(letter)
    stage.wait("the letter to be stored", lambda: text_file(stage) == text + letter, child)
    return text + letter


def kill_in_a_burst(stage, child, text, chance):
    """Kills the program at some moment of a burst of letters; what is stored must be what a moment of typing had."""
    burst = "".join(chance.choice(LETTERS) for _ in range(LONGEST_BURST))
    typing = subprocess.Popen(["xdotool", "type", "--delay", "12", "--", burst], env=stage.environment,
                              stdin=subprocess.DEVNULL)
    stage.children.append(typing)
    enough = len(text) + chance.randrange(1, LONGEST_BURST // 2)
    stage.wait("enough letters", lambda: len(text_file(stage)) >= enough, child)
    seen = text_file(stage)
    child.kill()
    stage.wait_for_end(child, "the end of the program")
    stage.wait_for_end(typing, "the end of the typing")
    stored = text_file(stage)
    journey.check((text + burst).startswith(stored), f"what is stored was typed: {stored!r} of {text + burst!r}")
    journey.check(len(stored) >= len(seen), "nothing that was stored is lost")
    return stored


def kill_after_one(stage, child, text, letter):
    """Kills the program right after one more letter, which may be lost."""
    stage.type(letter)
    child.kill()
    stage.wait_for_end(child, "the end of the program")
    stored = text_file(stage)
    journey.check(stored in (text, text + letter), f"at most the last letter is lost: {stored!r} of {text + letter!r}")
    return stored


def show_signature(stage, program, text):
    """A new start; the options show the signature. That they do is seen by what stands behind it after one letter."""
    child = stage.start("corvane", [program])
    options.open_options(stage, child, options.SIGNATURES)
    if text is None:
        stage.press("alt+d")  # Add: the first signature becomes the default
        stage.wait("the signature", lambda: text_file(stage) == "", child)
        text = ""
    else:
        go_into_text(stage, child)
    return child, type_one(stage, child, text, "x")


def go_into_text(stage, child):
    """The signature's text, behind its end: it comes after the option Text."""
    stage.press("alt+x", "Tab")
    stage.press("ctrl+End")


def check_mail(path, text):
    with open(path, "rb") as file:
        message = email.message_from_binary_file(file, policy=email.policy.default)
    content = message.get_content().replace("\r\n", "\n").rstrip("\n")
    journey.check_equal(content, text, "the new message's text")


def leave_unasked(stage, child):
    """File, Exit: the program ends without a word, since nothing was changed."""
    window = stage.wait_for_window(stages.MAIN_TITLE, child)
    stage.open_menu(child, "f")
    stage.press("x")
    boxes = []

    def ended():
        boxes.extend(stage.windows(child.pid, stages.BOX_TITLE))
        return boxes or child.poll() is not None
    stage.wait("the end of the program", ended)
    journey.check_equal(boxes, [], "boxes at the exit")
    journey.check_equal(stage.wait_for_end(child, f"the end of {window}"), 0, "exit code")


def killed_while_typing(stage, program, build_folder):
    seed = random.randrange(1 << 32)
    print(f"seed {seed}")
    chance = random.Random(seed)
    text = None
    for number in range(ROUNDS):
        child, text = show_signature(stage, program, text)
        if number % 2 == 0:
            text = kill_in_a_burst(stage, child, text, chance)
        else:
            text = kill_after_one(stage, child, text, chance.choice(LETTERS))
        check_index(stage)

    child, text = show_signature(stage, program, text)
    options.close_options(stage, child)
    leave_unasked(stage, child)
    child = stage.start("corvane", [program])
    stage.wait_for_window(stages.MAIN_TITLE, child)
    leave_unasked(stage, child)

    child = stage.start("corvane", [program])
    check_mail(options.send_with(stage, child, t="grace@corvane.example", j="Signed"), text)
    journey.check_equal(stage.leave(child), 0, "exit code")


journey.set_out(killed_while_typing)
