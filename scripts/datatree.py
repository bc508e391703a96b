"""The program's data tree as a demonstration or a test needs it: one account at a loopback server, settings, the log."""

import datetime
import glob
import os

SENDER_NAME = "Ada Example"
SENDER_ADDRESS = "ada@corvane.example"
DIVIDER = "-" * 75


def data_root(data_home):
    """Where the program keeps its data when XDG_DATA_HOME is data_home."""
    return os.path.join(data_home, "Lanthorn", "Corvane")


def account_line(port, server="127.0.0.1", security="N", login=None):
    """The account of the server at that port, a loopback one by default: no encryption ("S": TLS, "T": STARTTLS), no
    login, which is user and password otherwise."""
    fields = [server, str(port), security, *(("Y", *login) if login else ("N", "", "")), SENDER_NAME, SENDER_ADDRESS, "", "", "/SAEND"]
    return "\t".join(fields)


def options(account):
    """The settings file's sections with the account as default, everything else as the program's own defaults."""
    return {
        "Proxy Server": {"Use": "False"},
        "SMTP Account": {"Default": account},
        "Signature": {"AutoAdd": "True"},
        "Other": {
            "Startup": "Last",
            "Font Name": "Courier New",
            "Font Size": "10",
            "Encoding": "utf-8",
            "Format": "Plain",
            "Interval": "26",
            "Times": "1",
            "OBO Interval": "0",
            "Del Folder": "False",
            "Upgraded": "Yes",
            "UpgradedV50": "Yes",
        },
    }


def write_text(path, lines):
    """Writes a file that only its owner may read, since accounts hold passwords."""
    with open(os.open(path, os.O_WRONLY | os.O_CREAT | os.O_TRUNC, 0o600), "wb") as file:
        file.write("".join(line + "\r\n" for line in lines).encode())


def prepare(data_home, port, server="127.0.0.1", security="N", login=None):
    """Writes the account of that server and the settings into a data tree, new or from an earlier run."""
    data = os.path.join(data_root(data_home), "data")
    os.makedirs(data, mode=0o700, exist_ok=True)
    account = account_line(port, server, security, login)
    write_text(os.path.join(data, "smtp.dll"), [account])
    lines = []
    for section, values in options(account).items():
        lines.append(f"[{section}]")
        lines += [f"{key}={value}" for key, value in values.items()]
    write_text(os.path.join(data, "options.dll"), lines)


def log_path(data_home, day=None):
    """The log of the day's month; today's by default."""
    day = day or datetime.date.today()
    return os.path.join(data_root(data_home), "logs", day.strftime("%Y%m.log"))


def last_run(data_home):
    """The newest log's lines from its last divider on, without the divider; empty where nothing was logged."""
    logs = sorted(glob.glob(os.path.join(data_root(data_home), "logs", "[0-9]" * 6 + ".log")))
    if not logs:
        return []
    with open(logs[-1], encoding="utf-8", errors="replace", newline="") as file:
        lines = file.read().replace("\r\n", "\n").split("\n")
    if DIVIDER not in lines:
        return []
    last = len(lines) - 1 - lines[::-1].index(DIVIDER)
    return [line for line in lines[last + 1:]]
