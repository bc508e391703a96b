"""A proxy server that wants a user and a password is added, tested and turned on in the options. The next mail goes
through it: the proxy tells of the login and of the mail server's name, which nobody else could resolve."""

import os
import shutil
import subprocess
import threading

import journey
import optionsdialog as options
from journey import datatree
from journey import stages

USER = "proxy user"
PASSWORD = "p@ss w0rd;\"1"
MAIL_SERVER = "mail.corvane.invalid"
MAIL_PORT = 2525
WEB_SERVER = "web.corvane.invalid"
WEB_PORT = 8080
EDITOR = "Add Proxy Server"
STUB = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support", "socks_stub.py")


def start_proxy(stage):
    """A proxy with login that leads everybody to the catcher; returns its port and the lines that it prints."""
    proxy = stage.start("proxy", [stages.PYTHON, STUB, "--login", "--target", str(stage.catcher_port)],
                        stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
    port = proxy.stdout.readline().split()[1]
    said = []
    # What methods are offered is no part of this.
    lines = (line.rstrip("\n") for line in proxy.stdout)
    threading.Thread(target=lambda: said.extend(line for line in lines if not line.startswith("METHODS ")),
                     daemon=True).start()
    return port, said


def program_with_site(stage, build_folder):
    """A copy of the program folder whose site settings name another web server for the test of a proxy."""
    folder = stage.path("program")
    shutil.copytree(os.path.join(build_folder, "bin"), folder)
    datatree.write_text(os.path.join(folder, "site.dll"),
                        ["[Site]", f"Proxy Test Host={WEB_SERVER}", f"Proxy Test Port={WEB_PORT}"])
    return os.path.join(folder, "corvane")


def add_proxy(stage, child, port):
    stage.press("alt+a")
    stage.wait_for_window(EDITOR, child)
    options.enter(stage, (options.PROXY_ADDRESS, "127.0.0.1"), (options.PORT, port))
    stage.press("Tab", "space", "Tab")  # the tick for authentication, then the user
    stage.type(USER)
    stage.press("Tab")
    stage.type(PASSWORD)
    options.save_and_close(stage, child, EDITOR)


def test_and_use(stage, child, said, login):
    """Test Connection, then the tick and Save. The tick's letter works a moment later, perhaps after a first Save."""
    options.answer_box(stage, child, options.press_for_box(stage, child, "alt+n"))
    stage.wait("the test at the proxy", lambda: len(said) == 2, child)
    journey.check_equal(said, [login, f"ASKED name {WEB_SERVER} {WEB_PORT}"], "what the proxy tells of the test")
    journey.check_equal(options.setting(stage, "Proxy Server", "Use"), b"False", "use of the proxy before Save")
    stage.press("alt+x")

    def in_use():
        options.answer_box(stage, child, options.press_for_box(stage, child, "alt+v"))
        return options.setting(stage, "Proxy Server", "Use") == b"True"
    stage.wait("the use of the proxy to be saved", in_use, child)


def through_the_proxy(stage, _, build_folder):
    port, said = start_proxy(stage)
    login = f"LOGIN {USER.encode().hex()} {PASSWORD.encode().hex()}"
    datatree.prepare(stage.data_home, MAIL_PORT, MAIL_SERVER)
    child = stage.start("corvane", [program_with_site(stage, build_folder)])
    options.open_options(stage, child)
    add_proxy(stage, child, port)
    line = "\t".join(["Socks5", "127.0.0.1", port, "Y", USER, PASSWORD, "/PSEND"]).encode()
    journey.check_equal(options.content(stage, "proxy.dll"), line + b"\r\n", "proxy.dll")
    journey.check_equal(options.setting(stage, "Proxy Server", "Default"), line, "the default proxy")
    options.check_private(stage, "proxy.dll", "options.dll")
    test_and_use(stage, child, said, login)
    options.close_options(stage, child)

    options.send(stage, child, "Through the proxy")
    journey.check_equal(said[2:], [login, f"ASKED name {MAIL_SERVER} {MAIL_PORT}"], "what the proxy tells of the mail")
    with open(datatree.log_path(stage.data_home), encoding="utf-8") as file:
        journey.check(PASSWORD not in file.read(), "the password stays out of the log")
    journey.check_equal(stage.leave(child), 0, "exit code")


journey.set_out(through_the_proxy)
