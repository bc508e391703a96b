"""One message, 300 people, a file and a folder: each gets a personal mail with their name in it, the server refuses
some of them, and the log tells by name who got it and who did not."""

import email
import email.policy
import io
import json
import os
import zipfile

import journey
from journey import datatree

COUNT = 300
REFUSED_EVERY = 60
SUBJECT = "Dear {First Name of The Recipient}"
BODY = "{Full Name of The Recipient}, your address is {Email Address of The Recipient}."


def people():
    return [(f"N{number} S{number}", f"n{number}@x.org") for number in range(1, COUNT + 1)]


def is_refused(number):
    return number % REFUSED_EVERY == 0


def entry(person):
    return f"{person[0]} <{person[1]}>"


def attach(stage, child, key, path):
    """Insert, Attachments, that letter; the path is typed into the file dialog."""
    stage.open_menu(child, "i")
    stage.press("a")
    stage.press(key)
    title = "Select Files" if key == "a" else "Select Folder"
    stage.wait_for_window(title, child)
    stage.type(path)
    stage.press("Return")
    stage.wait("the dialog to close", lambda: not stage.windows(child.pid, title), child)
    stage.wait_for_window(journey.stages.MAIN_TITLE, child)


def check_mail(path, file_content, folder_content):
    with open(path.removesuffix(".eml") + ".json", encoding="utf-8") as file:
        envelope = json.load(file)
    with open(path, "rb") as file:
        mail = email.message_from_binary_file(file, policy=email.policy.default)
    journey.check_equal(len(envelope["to"]), 1, "recipients of one mail")
    name, address = next(person for person in people() if person[1] == envelope["to"][0])
    journey.check_equal(mail["To"], entry((name, address)), "To")
    journey.check(mail["Cc"] is None and mail["Bcc"] is None, "no other recipient is named")
    journey.check_equal(mail["Subject"], f"Dear {name.split()[0]}", "Subject")
    text = mail.get_body(("plain",)).get_content().strip()
    journey.check_equal(text, f"{name}, your address is {address}.", "text")
    attachments = {part.get_filename(): part.get_payload(decode=True) for part in mail.iter_attachments()}
    journey.check_equal(sorted(attachments), ["list.txt", "photos.zip"], "attachments")
    journey.check_equal(attachments["list.txt"], file_content, "the file")
    with zipfile.ZipFile(io.BytesIO(attachments["photos.zip"])) as archive:
        journey.check_equal({name: archive.read(name) for name in archive.namelist()}, folder_content, "the folder")
    return address


def check_log(stage, build_folder, paths):
    lines = datatree.last_run(stage.data_home)

    def text(key):
        return journey.language_text(build_folder, key)
    got = [entry(person) for number, person in enumerate(people(), 1) if not is_refused(number)]
    missed = [entry(person) for number, person in enumerate(people(), 1) if is_refused(number)]
    journey.check("One By One: Yes" in lines, "the log tells the mode")
    journey.check("Attachments: " + "; ".join(paths) in lines, "the log tells the attachments")
    journey.check_equal(sum(line.startswith("Error: ") for line in lines), len(missed), "errors in the log")
    begin = lines.index(f"{text('SENT_SUCCA')} {len(got)} {text('SENT_SUCCB')}:")
    journey.check_equal(lines[begin + 1:begin + 4], [", ".join(got), text("FAIL_ADDR"), ", ".join(missed)], "the result")
    journey.check(lines[begin + 4].startswith("End: "), "the end follows the result")


def personal_mails(stage, program, build_folder):
    file_content = b"one\r\ntwo\r\n"
    with open(stage.path("to send", "list.txt"), "wb") as file:
        file.write(file_content)
    with open(stage.path("to send", "photos", "a.jpg"), "wb") as file:
        file.write(b"\xff\xd8 a picture")
    os.makedirs(stage.mail_folder, exist_ok=True)
    with open(os.path.join(stage.mail_folder, "refuse"), "w", encoding="utf-8") as file:
        file.writelines(person[1] + "\n" for number, person in enumerate(people(), 1) if is_refused(number))

    child = stage.start("corvane", [program])
    stage.wait_for_window(journey.stages.MAIN_TITLE, child)
    stage.fill(", ".join(map(entry, people())), SUBJECT, BODY)
    paths = [stage.path("to send", "list.txt"), stage.path("to send", "photos")]
    attach(stage, child, "a", paths[0])
    attach(stage, child, "f", paths[1])
    stage.open_menu(child, "f")
    stage.press("b")
    stage.settled_picture(stage.path("ready.png"))
    stage.send_and_answer(child)
    mails = stage.mails()
    reached = [check_mail(path, file_content, {"a.jpg": b"\xff\xd8 a picture"}) for path in mails]
    expected = [person[1] for number, person in enumerate(people(), 1) if not is_refused(number)]
    journey.check_equal(reached, expected, "who was reached, in the order of the list")
    check_log(stage, build_folder, paths)
    journey.check_equal(stage.leave(child), 0, "exit code")


journey.set_out(personal_mails)
