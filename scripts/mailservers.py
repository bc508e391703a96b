"""Debian's own mail servers for a check: their packages unpacked, not installed, each in a room of its own.

A room is the system with the packages laid over it, in memory, and a server runs in it as if it were installed, with its
own configuration, users and spool. Everything here wants namespaces of its own (see check-mail-servers): ports are
fixed, and what is started ends with them.
"""

import os
import re
import shutil
import subprocess

USER, PASSWORD = "ada", "gräße"
PLAIN, STARTTLS, IMPLICIT = "N", "T", "S"  # as an account says it


class Unavailable(Exception):
    """The servers cannot be had here; the reason."""


def fetch(packages, folder):
    """Downloads packages with what they need and is not installed; returns the paths."""
    os.makedirs(os.path.join(folder, "partial"), exist_ok=True)
    command = ["apt-get", "-y", "-qq", "--download-only", "--no-install-recommends", "-o",
               "Dir::Cache::archives=" + folder, "-o", "APT::Sandbox::User=root", "install", *packages]
    done = None
    for before in (None, ["apt-get", "-qq", "update"]):
        if before:
            subprocess.run(before, stdin=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False)
        done = subprocess.run(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              text=True, check=False)
        if done.returncode == 0:
            return [os.path.join(folder, name) for name in os.listdir(folder) if name.endswith(".deb")]
    raise Unavailable("no packages: " + " ".join(done.stdout.split())[-300:])


class Server:
    """One kind of server. Its class tells packages and users; ports() which port speaks how; command() what runs."""

    name = ""
    packages = ()
    users = ()
    logs = ()
    login = True

    def __init__(self, stage, memory, sink_port, certificate, key):
        self.stage, self.sink_port = stage, sink_port
        self.folder = os.path.join(memory, self.name)
        self.room = os.path.join(self.folder, "room")
        self.certificate, self.key = certificate, key

    def unpack(self, packages):
        """Makes the room."""
        for part in ("packages", "changes", "work", "room"):
            os.makedirs(os.path.join(self.folder, part))
        lower = os.path.join(self.folder, "packages")
        for package in packages:
            subprocess.run(["dpkg", "-x", package, lower], check=True)
        for name in ("bin", "sbin", "lib", "lib64"):
            # Where the system has a link to usr, a folder of the packages would hide it.
            if os.path.islink("/" + name) and os.path.isdir(os.path.join(lower, name)):
                subprocess.run(["cp", "-a", os.path.join(lower, name), os.path.join(lower, "usr")], check=True)
                shutil.rmtree(os.path.join(lower, name))
        os.chmod(os.path.join(self.folder, "changes"), 0o755)
        layers = f"lowerdir={lower}:/,upperdir={self.folder}/changes,workdir={self.folder}/work"
        if subprocess.run(["mount", "-t", "overlay", "room", "-o", layers, self.room], check=False).returncode != 0:
            raise Unavailable("no overlay can be mounted here")
        for part in ("dev", "proc"):
            subprocess.run(["mount", "--bind", "/" + part, os.path.join(self.room, part)], check=True)
        for name, number in self.users:
            self.write("etc/passwd", f"{name}:x:{number}:{number}::/nonexistent:/usr/sbin/nologin\n", add=True)
            self.write("etc/group", f"{name}:x:{number}:\n", add=True)
        self.write("etc/hosts", "127.0.0.1 localhost\n")
        self.write("etc/resolv.conf", "nameserver 127.0.0.1\n")
        for kind, path in (("certificate", self.certificate), ("key", self.key)):
            os.makedirs(self.path("etc/mailcheck"), exist_ok=True)
            shutil.copy(path, self.path("etc/mailcheck", kind))
            os.chmod(self.path("etc/mailcheck", kind), 0o644)  # a throw-away key

    def path(self, *names):
        return os.path.join(self.room, *names)

    def write(self, name, text, add=False):
        os.makedirs(os.path.dirname(self.path(name)), exist_ok=True)
        with open(self.path(name), "a" if add else "w", encoding="utf-8") as file:
            file.write(text)

    def own(self, name, user, mode=0o755):
        number = dict(self.users)[user] if user != "root" else 0
        os.makedirs(self.path(name), exist_ok=True)
        os.chown(self.path(name), number, number)
        os.chmod(self.path(name), mode)

    def start(self):
        """Configures and starts it, and waits until it listens."""
        self.configure()
        for index, command in enumerate(self.commands()):
            self.child = self.stage.start(f"{self.name}-{index}", ["chroot", self.room, *command])
        for port in self.ports().values():
            self.stage.wait(f"{self.name} to listen on port {port}", lambda at=port: listens(at), self.child)

    def tell(self):
        """The ends of its logs."""
        said = []
        for name in self.logs:
            if os.path.exists(self.path(name)):
                with open(self.path(name), encoding="utf-8", errors="replace") as file:
                    said.append(f"--- {self.name}: {name}\n{file.read()[-3000:]}")
        return "\n".join(said)

    def configure(self):
        raise NotImplementedError

    def commands(self):
        raise NotImplementedError

    def ports(self):
        raise NotImplementedError


def listens(port):
    """Whether somebody listens on that port of this machine; does not bother him."""
    wanted = re.compile(rf"^\s*\d+: [0-9A-F]+:{port:04X} [0-9A-F:]+ 0A ", re.MULTILINE)
    return any(wanted.search(open(f"/proc/net/{kind}", encoding="ascii").read()) for kind in ("tcp", "tcp6"))


class Exim(Server):
    name = "exim"
    packages = ("exim4-daemon-light",)
    users = (("Debian-exim", 901),)
    logs = ("var/log/exim4/mainlog", "var/log/exim4/paniclog")
    first_port = 2501
    limit = ""

    def ports(self):
        return {PLAIN: self.first_port, STARTTLS: self.first_port, IMPLICIT: self.first_port + 1}

    def configure(self):
        for folder in ("var/spool/exim4", "var/log/exim4"):
            self.own(folder, "Debian-exim", 0o750)
        plain, implicit = self.first_port, self.first_port + 1
        self.write("etc/exim4/exim4.conf", f"""
primary_hostname = exim.example
daemon_smtp_ports = {plain} : {implicit}
tls_on_connect_ports = {implicit}
local_interfaces = 127.0.0.1
tls_advertise_hosts = *
tls_certificate = /etc/mailcheck/certificate
tls_privatekey = /etc/mailcheck/key
smtp_accept_max = 20
{self.limit}
host_lookup =
acl_smtp_rcpt = check_recipient
queue_run_in_order
begin acl
check_recipient:
  accept authenticated = *
  deny message = log in first
begin routers
sink:
  driver = manualroute
  transport = sink
  route_list = * 127.0.0.1
  self = send
begin transports
sink:
  driver = smtp
  port = {self.sink_port}
  hosts_avoid_tls = *
  hosts_try_fastopen =
begin authenticators
plain:
  driver = plaintext
  public_name = PLAIN
  server_prompts = :
  server_condition = ${{if and{{{{eq{{$auth2}}{{{USER}}}}}{{eq{{$auth3}}{{{PASSWORD}}}}}}}}}
  server_set_id = $auth2
  server_advertise_condition = true
""")

    def commands(self):
        return [["/usr/sbin/exim4", "-bdf", "-q1m"]]


class NarrowExim(Exim):
    """As a shared host has it: two connections of one client at a time, and none more."""

    name = "exim with two connections a host"
    first_port = 2505
    limit = "smtp_accept_max_per_host = 2"


class Postfix(Server):
    name = "postfix with dovecot"
    packages = ("postfix", "dovecot-core")
    users = (("postfix", 902), ("postdrop", 903), ("dovecot", 904), ("dovenull", 905))
    logs = ("var/log/postfix.log", "var/log/dovecot.log")

    def ports(self):
        return {PLAIN: 2511, STARTTLS: 2511, IMPLICIT: 2512}

    def configure(self):
        self.own("var/lib/postfix", "postfix", 0o700)
        self.own("var/spool/postfix", "root")
        for name in ("active", "bounce", "corrupt", "defer", "deferred", "flush", "hold", "incoming", "private", "saved",
                     "trace"):
            self.own("var/spool/postfix/" + name, "postfix", 0o700)
        self.own("var/spool/postfix/pid", "root")
        for name, mode in (("public", 0o710), ("maildrop", 0o730)):
            self.own("var/spool/postfix/" + name, "postfix", mode)
            os.chown(self.path("var/spool/postfix", name), 902, 903)
        os.makedirs(self.path("var/log"), exist_ok=True)
        self.write("etc/postfix/main.cf", f"""
compatibility_level = 3.6
myhostname = postfix.example
mail_owner = postfix
setgid_group = postdrop
queue_directory = /var/spool/postfix
command_directory = /usr/sbin
daemon_directory = /usr/lib/postfix/sbin
data_directory = /var/lib/postfix
maillog_file = /var/log/postfix.log
inet_interfaces = 127.0.0.1
inet_protocols = ipv4
mydestination =
mynetworks =
alias_maps =
local_recipient_maps =
disable_dns_lookups = yes
smtp_host_lookup = native
smtpd_peername_lookup = no
relayhost = [127.0.0.1]:{self.sink_port}
smtpd_sasl_auth_enable = yes
smtpd_sasl_type = dovecot
smtpd_sasl_path = private/auth
smtpd_sasl_security_options = noanonymous
smtpd_relay_restrictions = permit_sasl_authenticated, reject
smtpd_tls_cert_file = /etc/mailcheck/certificate
smtpd_tls_key_file = /etc/mailcheck/key
smtpd_tls_security_level = may
smtpd_tls_session_cache_database =
""")
        services = ["pickup unix n - n 60 1 pickup", "cleanup unix n - n - 0 cleanup", "qmgr unix n - n 300 1 qmgr",
                    "tlsmgr unix - - n 1000? 1 tlsmgr", "rewrite unix - - n - - trivial-rewrite",
                    "bounce unix - - n - 0 bounce", "defer unix - - n - 0 bounce", "trace unix - - n - 0 bounce",
                    "verify unix - - n - 1 verify", "flush unix n - n 1000? 0 flush", "proxymap unix - - n - - proxymap",
                    "smtp unix - - n - - smtp", "relay unix - - n - - smtp", "showq unix n - n - - showq",
                    "error unix - - n - - error", "retry unix - - n - - error", "discard unix - - n - - discard",
                    "local unix - n n - - local", "anvil unix - - n - 1 anvil", "scache unix - - n - 1 scache",
                    "postlog unix-dgram n - n - 1 postlogd", "127.0.0.1:2511 inet n - n - - smtpd",
                    "127.0.0.1:2512 inet n - n - - smtpd -o smtpd_tls_wrappermode=yes"]
        self.write("etc/postfix/master.cf", "\n".join(services) + "\n")
        self.own("run/dovecot", "root")
        self.write("etc/dovecot/users", f"{USER}:{{PLAIN}}{PASSWORD}::::::\n")
        self.write("etc/dovecot/dovecot.conf", """
protocols =
ssl = no
log_path = /var/log/dovecot.log
disable_plaintext_auth = no
auth_mechanisms = plain login scram-sha-256
passdb {
  driver = passwd-file
  args = username_format=%u /etc/dovecot/users
}
userdb {
  driver = static
  args = uid=904 gid=904 home=/nonexistent
}
service auth {
  unix_listener /var/spool/postfix/private/auth {
    mode = 0600
    user = postfix
  }
}
""")

    def commands(self):
        return [["/usr/sbin/dovecot", "-F"], ["/usr/lib/postfix/sbin/master", "-d"]]


class OpenSmtpd(Server):
    name = "opensmtpd"
    packages = ("opensmtpd",)
    users = (("opensmtpd", 906), ("opensmtpq", 907))
    login = False  # it lets nobody log in without TLS

    def ports(self):
        return {PLAIN: 2521}

    def configure(self):
        self.own("var/spool/smtpd", "root", 0o711)
        for name in ("run/opensmtpd", "var/lib/opensmtpd/empty"):
            self.own(name, "root", 0o711)
        self.write("etc/mailname", "opensmtpd.example\n")
        self.write("etc/smtpd.conf", f"""
listen on 127.0.0.1 port 2521 hostname opensmtpd.example
action "relay" relay host smtp://127.0.0.1:{self.sink_port}
match from any for any action "relay"
""")
        os.chmod(self.path("etc/smtpd.conf"), 0o644)

    def commands(self):
        return [["/usr/sbin/smtpd", "-d", "-f", "/etc/smtpd.conf"]]


ALL = (Exim, NarrowExim, Postfix, OpenSmtpd)
