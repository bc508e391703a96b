"""Reads the mails named on the command line with Python's email package; prints one JSON object a line for each.

All texts are Base64 of UTF-8, so that any character reaches the test.
"""

import base64
import codecs
import email
import email.header
import email.policy
import email.utils
import hashlib
import json
import sys


def coded(text):
    return base64.b64encode(text.encode("utf-8", "surrogatepass")).decode("ascii")


def mailboxes(raw, name):
    """The older functions of the package: its newer ones put a blank between two encoded words of a name."""
    return [[coded(str(email.header.make_header(email.header.decode_header(shown)))), coded(address)]
            for shown, address in email.utils.getaddresses([unfolded(v) for v in raw.get_all(name, [])]) if address]


def unfolded(value):
    return value.replace("\r\n", "")


def read(path):
    with open(path, "rb") as file:
        octets = file.read()
    message = email.message_from_bytes(octets, policy=email.policy.default)
    raw = email.message_from_bytes(octets)
    result = {
        "subject": coded(str(message["subject"] or "")),
        "from": mailboxes(raw, "from"),
        "replyTo": mailboxes(raw, "reply-to"),
        "to": mailboxes(raw, "to"),
        "cc": mailboxes(raw, "cc"),
        "date": coded(str(message["date"])),
        "headers": [name.lower() for name in message.keys()],
        "files": [],
        "defects": [],
    }
    for part in message.walk():
        result["defects"] += [type(d).__name__ for d in part.defects]
        if part.is_multipart():
            continue
        content = part.get_payload(decode=True)
        if part.get_content_disposition() is None:
            kind = {"text/plain": "text", "text/html": "html"}[part.get_content_type()]
            charset = part.get_content_charset()
            result[kind] = coded(codecs.decode(content, charset))
            result[kind + "Charset"] = charset
        else:
            result["files"].append({
                "name": coded(part.get_filename()),
                "type": part.get_content_type(),
                "id": (part["content-id"] or "").strip("<> "),
                "sha256": hashlib.sha256(content).hexdigest(),
            })
    return result


for argument in sys.argv[1:]:
    print(json.dumps(read(argument)))
