"""A SOCKS5 proxy for tests that reaches one target only, whatever is asked of it, and tells what was asked: so a name
that nobody can resolve shows who was to resolve it. It takes no method that was not offered. Prints "PORT n", "METHODS
offered", "LOGIN user password" (both in hexadecimal) and "ASKED type host port". Ends with its standard input."""

import argparse
import asyncio
import sys


async def pump(reader, writer):
    try:
        while data := await reader.read(65536):
            writer.write(data)
            await writer.drain()
    except OSError:
        pass
    finally:
        writer.close()


async def serve(options, reader, writer):
    try:
        _, count = await reader.readexactly(2)
        methods = await reader.readexactly(count)
        print("METHODS", methods.hex(), flush=True)
        if (2 if options.login else 0) not in methods:
            writer.write(b"\x05\xff")
            await writer.drain()
            writer.close()
            return
        if options.login:
            writer.write(b"\x05\x02")
            _, length = await reader.readexactly(2)
            user = await reader.readexactly(length)
            password = await reader.readexactly((await reader.readexactly(1))[0])
            print("LOGIN", user.hex(), password.hex(), flush=True)
            writer.write(b"\x01\x00")
        else:
            writer.write(b"\x05\x00")
        _, _, _, kind = await reader.readexactly(4)
        if kind == 3:
            host = (await reader.readexactly((await reader.readexactly(1))[0])).decode()
        else:
            host = (await reader.readexactly(4 if kind == 1 else 16)).hex()
        port = int.from_bytes(await reader.readexactly(2), "big")
        print("ASKED", {1: "ipv4", 3: "name", 4: "ipv6"}.get(kind, kind), host, port, flush=True)
        if options.refuse:
            writer.write(bytes((5, options.refuse, 0, 1)) + bytes(6))
            await writer.drain()
            writer.close()
            return
        there, back = await asyncio.open_connection("127.0.0.1", options.target)
        writer.write(bytes((5, 0, 0, 1)) + bytes(6))
        await asyncio.gather(pump(reader, back), pump(there, writer))
    except (OSError, asyncio.IncompleteReadError):
        writer.close()


async def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--target", type=int, default=0)
    parser.add_argument("--login", action="store_true")
    parser.add_argument("--refuse", type=int, default=0, help="the reply code of RFC 1928 to refuse with")
    options = parser.parse_args()
    server = await asyncio.start_server(lambda r, w: serve(options, r, w), "127.0.0.1", 0)
    print("PORT", server.sockets[0].getsockname()[1], flush=True)
    await asyncio.get_running_loop().run_in_executor(None, sys.stdin.read)


asyncio.run(main())
