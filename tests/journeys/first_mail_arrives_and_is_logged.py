"""A new user's first mail: To, Subject and a plain text are typed, Send is pressed; the mail server has the mail and
the month's log tells the run."""

import email
import email.policy
import json

import journey
from journey import datatree

RECIPIENT = "Grace Sample <grace@corvane.example>"
SUBJECT = "First mail"
BODY = "Dear Grace,\n\n.a line that begins with a dot\nand a last one"
SENDER = f"{datatree.SENDER_NAME} <{datatree.SENDER_ADDRESS}>"


def check_mail(stage):
    mails = stage.wait("the mail at the server", stage.mails)
    journey.check_equal(len(mails), 1, "number of mails at the server")
    with open(mails[0], "rb") as file:
        message = email.message_from_binary_file(file, policy=email.policy.default)
    with open(mails[0].removesuffix(".eml") + ".json", encoding="utf-8") as file:
        envelope = json.load(file)
    journey.check_equal(envelope["from"], datatree.SENDER_ADDRESS, "envelope sender")
    journey.check_equal(envelope["to"], ["grace@corvane.example"], "envelope recipients")
    journey.check_equal(message["From"], SENDER, "From")
    journey.check_equal(message["To"], RECIPIENT, "To")
    journey.check_equal(message["Subject"], SUBJECT, "Subject")
    journey.check_equal(message.get_content_type(), "text/plain", "type")
    # The mail's own last line end is not part of what was typed.
    journey.check_equal(message.get_content().replace("\r\n", "\n").removesuffix("\n"), BODY, "text")


def check_log(stage, build_folder):
    lines = datatree.last_run(stage.data_home)
    expected = [
        "Begin: *",
        f"Account: {datatree.SENDER_ADDRESS}",
        f"Sender: {SENDER}",
        f"ReplyTo: {SENDER}",
        f"To: {RECIPIENT}",
        "Date & Time: *",
        "Message Type: Plain Text",
        "Encoding: utf-8",
        "Priority: Normal",
        "Request Read Receipt: No",
        "One By One: No",
        "Sending Method: Manual",
        f"Subject: {SUBJECT}",
        "Content: ",
        *BODY.split("\n"),
        journey.language_text(build_folder, "SENT_SUCC"),
        "End: *",
        "",
    ]
    # A moment cannot be known beforehand: of such a line only the beginning is compared, and that something follows.
    found = [next((e for e in expected if e.endswith("*") and line.startswith(e[:-1]) and line != e[:-1]), line)
             for line in lines]
    journey.check_equal(found, expected, "the log's last run")


def first_mail(stage, program, build_folder):
    child = stage.start("corvane", [program])
    stage.wait_for_window(journey.stages.MAIN_TITLE, child)
    stage.fill(RECIPIENT, SUBJECT, BODY)
    stage.send_and_answer(child)
    check_mail(stage)
    check_log(stage, build_folder)
    journey.check_equal(stage.leave(child), 0, "exit code")


journey.set_out(first_mail)
