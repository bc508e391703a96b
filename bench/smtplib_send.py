"""Sends personal mails with Python's smtplib, one after the other, each over a connection of its own.

    smtplib_send.py '{"port":…,"count":…,"starttls":…,"authority":…,"document":…,"text":…}'

Prints the seconds that it took. The time begins when everything is loaded, the trust store included."""

import json
import smtplib
import ssl
import sys
import time
from email.headerregistry import Address
from email.message import EmailMessage


def main():
    wanted = json.loads(sys.argv[1])
    with open(wanted["document"], encoding="utf-8") as file:
        document = file.read()
    text = None
    if wanted["text"]:
        with open(wanted["text"], encoding="utf-8") as file:
            text = file.read()
    context = ssl.create_default_context(cafile=wanted["authority"]) if wanted["starttls"] else None
    begin = time.perf_counter()
    for i in range(1, wanted["count"] + 1):
        name = f"Recipient Number {i}"
        message = EmailMessage()
        message["From"] = Address("Ada King", "ada", "x.example")
        message["To"] = Address(name, f"r{i}", "y.example")
        message["Subject"] = f"News for {name}"
        if text:
            message.set_content(text.replace("{Full Name of The Recipient}", name))
            message.add_alternative(document.replace("{Full Name of The Recipient}", name), subtype="html")
        else:
            message.set_content(document.replace("{Full Name of The Recipient}", name), subtype="html")
        # The host's own name is looked up for each connection unless it is given: that is not to be measured.
        with smtplib.SMTP("127.0.0.1", wanted["port"], local_hostname="bench.example") as server:
            if wanted["starttls"]:
                server.starttls(context=context)
                server.login("ada", "secret")
            server.send_message(message)
    print(time.perf_counter() - begin)


main()
