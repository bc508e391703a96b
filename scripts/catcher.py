#!/usr/bin/python3
"""A mail server on loopback that keeps every mail and delivers none.

Each mail is kept in the folder as NNNN.eml, exactly the bytes that came in, beside NNNN.json with the envelope, and
is shown on standard output in a short readable form. The first line printed is "catcher: port N". It ends on SIGTERM
or SIGINT.

Where a file named "hold" stands in the folder, a mail is answered only when that file has gone; a recipient whose
address is a line of a file named "refuse" there is refused. A client that takes its leave without having brought a
mail, as the test of an account does, gets a line on standard output too.

Usage: catcher.py FOLDER
"""

import asyncio
import email
import email.policy
import json
import os
import signal
import sys

from aiosmtpd.smtp import SMTP

LARGEST_MAIL = 64 * 1024 * 1024
LONGEST_SHOWN_LINE = 200
SHOWN_LINES = 20
HOLD_LOOK_SECONDS = 0.05


def readable(text):
    """The text without control characters, so that a mail cannot play with the terminal it is shown on."""
    return "".join(c if c.isprintable() or c == "\n" else " " for c in text.replace("\r\n", "\n"))


def short_form(content, sender, recipients):
    """What a person wants to see of a mail: envelope, main header fields, the start of the text, attachments."""
    message = email.message_from_bytes(content, policy=email.policy.default)
    lines = [f"Envelope: {sender or '<>'} -> {', '.join(recipients)}"]
    for name in ("From", "Reply-To", "To", "Cc", "Subject", "Date"):
        if message[name] is not None:
            lines.append(f"{name}: {message[name]}")
    body = message.get_body(preferencelist=("plain", "html"))
    if body is not None:
        text = body.get_content().replace("\r\n", "\n").rstrip("\n").split("\n")
        lines.append("")
        lines += [line[:LONGEST_SHOWN_LINE] for line in text[:SHOWN_LINES]]
        if len(text) > SHOWN_LINES:
            lines.append(f"[{len(text) - SHOWN_LINES} more lines]")
    for part in message.iter_attachments():
        lines.append(f"[attachment {part.get_filename() or '(no name)'}, {part.get_content_type()}]")
    return readable("\n".join(lines))


class Keeper:
    """Keeps what arrives. A mail's file appears whole or not at all, and after its envelope."""

    def __init__(self, folder):
        self.folder = folder
        self.count = sum(1 for name in os.listdir(folder) if name.endswith(".eml"))

    def write(self, name, data):
        path = os.path.join(self.folder, name)
        with open(path + ".part", "wb") as file:
            file.write(data)
        os.rename(path + ".part", path)
        return path

    async def handle_RCPT(self, server, session, envelope, address, rcpt_options):
        try:
            with open(os.path.join(self.folder, "refuse"), encoding="utf-8") as file:
                if address in file.read().split():
                    return f"550 5.1.1 <{address}> does not live here"
        except FileNotFoundError:
            pass
        envelope.rcpt_tos.append(address)
        return "250 OK"

    async def handle_QUIT(self, server, session, envelope):
        if not getattr(session, "brought_mail", False):
            print("catcher: a visit without a mail", flush=True)
        return "221 Bye"

    async def handle_DATA(self, server, session, envelope):
        session.brought_mail = True
        if os.path.exists(os.path.join(self.folder, "hold")):
            print("catcher: holding a mail", flush=True)
            while os.path.exists(os.path.join(self.folder, "hold")):
                await asyncio.sleep(HOLD_LOOK_SECONDS)
        self.count += 1
        number = f"{self.count:04}"
        facts = {"from": envelope.mail_from, "to": envelope.rcpt_tos, "helo": session.host_name}
        self.write(number + ".json", json.dumps(facts, indent=1).encode())
        path = self.write(number + ".eml", envelope.content)
        try:
            shown = short_form(envelope.content, envelope.mail_from, envelope.rcpt_tos)
        except Exception as fault:  # a mail that Python cannot read is kept and answered all the same
            shown = f"(cannot be shown: {fault})"
        print(f"--- mail {path}\n{shown}\n---", flush=True)
        return f"250 Kept as {number}"


async def serve(folder):
    os.makedirs(folder, mode=0o700, exist_ok=True)
    keeper = Keeper(folder)
    server = await asyncio.get_running_loop().create_server(
        lambda: SMTP(keeper, data_size_limit=LARGEST_MAIL, enable_SMTPUTF8=True, hostname="localhost"),
        host="127.0.0.1", port=0)
    ended = asyncio.Event()
    for number in (signal.SIGTERM, signal.SIGINT):
        asyncio.get_running_loop().add_signal_handler(number, ended.set)
    print(f"catcher: port {server.sockets[0].getsockname()[1]}", flush=True)
    print(f"catcher: every mail is kept in {folder}", flush=True)
    await ended.wait()
    server.close()


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    asyncio.run(serve(os.path.abspath(sys.argv[1])))
