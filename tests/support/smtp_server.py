"""An SMTP server for tests: aiosmtpd on a port that the system chooses. Prints "PORT n", then "MAIL n" for each mail,
which it keeps as n.eml with its envelope in n.json. Ends with its standard input."""

import argparse
import asyncio
import hashlib
import hmac
import json
import pathlib
import ssl
import sys

from aiosmtpd.smtp import SMTP, AuthResult, LoginPassword

MECHANISMS = ("PLAIN", "LOGIN", "CRAM-MD5")


class Handler:
    def __init__(self, options):
        self.options = options
        self.count = 0

    def check(self, login, password):
        return login == self.options.user.encode() and password == self.options.password.encode()

    def authenticate(self, server, session, envelope, mechanism, data):
        if isinstance(data, LoginPassword) and self.check(data.login, data.password):
            print("AUTH", mechanism, flush=True)
            return AuthResult(success=True, auth_data=data)
        return AuthResult(success=False, handled=False)

    async def auth_CRAM__MD5(self, server, args):
        challenge = b"<1896.697170952@scripted.example>"
        answer = await server.challenge_auth(challenge)
        if not isinstance(answer, bytes):
            return AuthResult(success=False)
        login, _, digest = answer.rpartition(b" ")
        expected = hmac.new(self.options.password.encode(), challenge, hashlib.md5).hexdigest()
        if login == self.options.user.encode() and hmac.compare_digest(digest.decode("ascii", "replace"), expected):
            print("AUTH CRAM-MD5", flush=True)
            return AuthResult(success=True)
        return AuthResult(success=False, handled=False)

    async def handle_RCPT(self, server, session, envelope, address, rcpt_options):
        if address in self.options.refuse:
            return "550 5.1.1 <%s> does not live here" % address
        envelope.rcpt_tos.append(address)
        return "250 2.1.5 OK"

    async def handle_DATA(self, server, session, envelope):
        self.count += 1
        folder = pathlib.Path(self.options.out)
        (folder / ("%d.eml" % self.count)).write_bytes(envelope.original_content)
        facts = {
            "from": envelope.mail_from,
            "to": envelope.rcpt_tos,
            "options": envelope.mail_options,
            "tls": server.transport.get_extra_info("sslcontext") is not None,
            "login": session.authenticated,
            "helo": session.host_name,
        }
        (folder / ("%d.json" % self.count)).write_text(json.dumps(facts))
        print("MAIL", self.count, flush=True)
        return "250 2.0.0 kept"


async def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--out", required=True)
    parser.add_argument("--tls", choices=("none", "starttls", "implicit"), default="none")
    parser.add_argument("--certificate")
    parser.add_argument("--key")
    parser.add_argument("--auth", default="", help="the mechanisms offered, with commas")
    parser.add_argument("--user", default="")
    parser.add_argument("--password", default="")
    parser.add_argument("--refuse", action="append", default=[])
    parser.add_argument("--size", type=int, default=64 * 1024 * 1024)
    parser.add_argument("--no-utf8", action="store_true")
    options = parser.parse_args()

    context = None
    if options.tls != "none":
        context = ssl.create_default_context(ssl.Purpose.CLIENT_AUTH)
        context.load_cert_chain(options.certificate, options.key)
    offered = [name for name in options.auth.split(",") if name]
    handler = Handler(options)

    def make():
        return SMTP(
            handler,
            data_size_limit=options.size,
            enable_SMTPUTF8=not options.no_utf8,
            hostname="aiosmtpd.example",
            tls_context=context if options.tls == "starttls" else None,
            require_starttls=options.tls == "starttls",
            auth_required=bool(offered),
            auth_require_tls=options.tls == "starttls",
            auth_exclude_mechanism=[name for name in MECHANISMS if name not in offered],
            authenticator=handler.authenticate,
        )

    loop = asyncio.get_running_loop()
    server = await loop.create_server(make, "127.0.0.1", 0, ssl=context if options.tls == "implicit" else None)
    print("PORT", server.sockets[0].getsockname()[1], flush=True)
    await loop.run_in_executor(None, sys.stdin.read)


asyncio.run(main())
