"""An SMTP server for tests that takes mails of any size and keeps only their length and their SHA-256 (of the octets
on the wire, with the final dot). Prints "PORT n", "MAIL length digest", "TLS new" or "TLS resumed" for each connection in
TLS, and with --stay "END clean" or "END ragged" when the client has left it, with or without TLS's own end. Ends with
its standard input."""

import argparse
import hashlib
import os
import socket
import ssl
import sys
import threading

END = b"\r\n.\r\n"


def take_mail(connection):
    digest, length, tail = hashlib.sha256(), 0, b"\r\n"
    while not tail.endswith(END):
        data = connection.recv(1 << 20)
        if not data:
            return False
        digest.update(data)
        length += len(data)
        tail = (tail + data)[-len(END):]
    print("MAIL", length, digest.hexdigest(), flush=True)
    return True


def begin_tls(connection, context):
    connection = context.wrap_socket(connection, server_side=True, suppress_ragged_eofs=False)
    print("TLS", "resumed" if connection.session_reused else "new", flush=True)
    return connection


def await_end(connection):
    try:
        while connection.recv(4096):
            pass
        print("END clean", flush=True)
    except OSError:
        print("END ragged", flush=True)


def serve(connection, context, starttls, stay):
    if context and not starttls:
        connection = begin_tls(connection, context)
    connection.sendall(b"220 sink.example\r\n")
    buffered = b""
    while True:
        while b"\r\n" not in buffered:
            try:
                data = connection.recv(4096)
            except ssl.SSLEOFError:
                data = b""
            if not data:
                return
            buffered += data
        line, _, buffered = buffered.partition(b"\r\n")
        line = line.upper()
        if line == b"DATA":
            connection.sendall(b"354 go\r\n")
            if not take_mail(connection):
                return
        if line == b"STARTTLS":
            connection.sendall(b"220 go\r\n")
            connection = begin_tls(connection, context)
        elif line.startswith(b"EHLO") and starttls:
            connection.sendall(b"250-sink.example\r\n250 STARTTLS\r\n")
        elif line == b"QUIT":
            connection.sendall(b"221 bye\r\n")
            if stay:
                await_end(connection)
            return
        else:
            connection.sendall(b"250 ok\r\n")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--certificate")
    parser.add_argument("--key")
    parser.add_argument("--starttls", action="store_true", help="TLS on demand and not from the start")
    parser.add_argument("--stay", action="store_true", help="leave it to the client to close the connection")
    options = parser.parse_args()
    context = None
    if options.certificate:
        context = ssl.create_default_context(ssl.Purpose.CLIENT_AUTH)
        context.load_cert_chain(options.certificate, options.key)
    listener = socket.create_server(("127.0.0.1", 0))
    print("PORT", listener.getsockname()[1], flush=True)

    def accept():
        while True:
            connection, _ = listener.accept()
            # As mail servers do: an answer must not wait for the acknowledgement of a session ticket.
            connection.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
            threading.Thread(target=serve, args=(connection, context, options.starttls, options.stay),
                             daemon=True).start()

    threading.Thread(target=accept, daemon=True).start()
    sys.stdin.read()
    os._exit(0)


main()
