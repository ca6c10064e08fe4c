#!/usr/bin/env python3
"""A small scripted telnet server for trying Kelpa by hand and for screenshots.

On each connection it asks for the terminal type (IAC DO 24), sends coloured
ANSI lines, code page 437 box-drawing lines and a prompt ended by IAC GA,
then answers every line it receives by echoing it. Standard library only.
"""
import argparse
import os
import socketserver

IAC, DO, SB, SE, GA = 255, 253, 250, 240, 249
TTYPE = 24
ESC = "\x1b"


def ansi(code, text):
    return f"{ESC}[{code}m{text}{ESC}[0m"


def banner():
    lines = [
        ansi("1;37", "Welcome to the Kelpa test server"),
        " ".join(ansi(f"0;{30 + i}", name) for i, name in
                 enumerate(["black", "red", "green", "yellow", "blue", "magenta", "cyan", "white"])),
        " ".join(ansi(f"1;{30 + i}", name) for i, name in
                 enumerate(["BLACK", "RED", "GREEN", "YELLOW", "BLUE", "MAGENTA", "CYAN", "WHITE"])),
        ansi("4;32", "underlined green") + " and plain after it",
        "tabs:\tone\ttwo\tthree",
        "code page 1252: caf\xe9, \x80 5, \x93quoted\x94",
    ]
    text = "\r\n".join(lines).encode("latin-1") + b"\r\n"
    box = [
        b"\xc9" + b"\xcd" * 30 + b"\xbb",
        b"\xba" + b"  Double box, 30 columns wide ".ljust(30)[:30] + b"\xba",
        b"\xcc" + b"\xcd" * 30 + b"\xb9",
        b"\xba" + b" \xb1\xb1\xb1 shade  \xdd\xde halves  \xe8 phi ".ljust(30)[:30] + b"\xba",
        b"\xc8" + b"\xcd" * 30 + b"\xbc",
        b"\xda" + b"\xc4" * 9 + b"\xc2" + b"\xc4" * 9 + b"\xbf",
        b"\xb3" + b" single  " + b"\xb3" + b"  lines  " + b"\xb3",
        b"\xc3" + b"\xc4" * 9 + b"\xc5" + b"\xc4" * 9 + b"\xb4",
        b"\xc0" + b"\xc4" * 9 + b"\xc1" + b"\xc4" * 9 + b"\xd9",
    ]
    coloured = [f"{ESC}[1;36m".encode() + line + f"{ESC}[0m".encode() for line in box[:5]]
    return text + b"\r\n".join(coloured + box[5:]) + b"\r\n"


def prompt():
    return f"{ESC}[0;33m<100hp 50m>{ESC}[0m ".encode() + bytes([IAC, GA])


def strip_telnet(data):
    """Drops telnet commands from what the client sent."""
    out, i = bytearray(), 0
    while i < len(data):
        b = data[i]
        if b != IAC:
            out.append(b)
            i += 1
        elif i + 1 < len(data) and data[i + 1] == SB:
            end = data.find(bytes([IAC, SE]), i)
            i = len(data) if end < 0 else end + 2
        else:
            i += 3 if i + 1 < len(data) and 251 <= data[i + 1] <= 254 else 2
    return bytes(out)


class Handler(socketserver.BaseRequestHandler):
    def handle(self):
        sock = self.request
        sock.sendall(bytes([IAC, DO, TTYPE]))
        sock.sendall(banner() + prompt())
        pending = b""
        while True:
            try:
                data = sock.recv(4096)
            except OSError:
                return
            if not data:
                return
            pending += strip_telnet(data)
            while b"\n" in pending:
                line, pending = pending.split(b"\n", 1)
                line = line.rstrip(b"\r")
                if line == b"quit":
                    sock.sendall(b"Bye.\r\n")
                    return
                reply = f"{ESC}[0;32mYou said: {ESC}[1;37m".encode() + line + f"{ESC}[0m\r\n".encode()
                sock.sendall(reply + prompt())


class Server(socketserver.ThreadingTCPServer):
    allow_reuse_address = True
    daemon_threads = True


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--port", type=int, default=0, help="0 picks a free port")
    parser.add_argument("--port-file", help="write the port here once listening")
    args = parser.parse_args()
    with Server(("127.0.0.1", args.port), Handler) as server:
        port = server.server_address[1]
        if args.port_file:
            with open(args.port_file + ".tmp", "w") as f:
                f.write(f"{port}\n")
            os.replace(args.port_file + ".tmp", args.port_file)
        print(f"listening on 127.0.0.1:{port}", flush=True)
        server.serve_forever()


if __name__ == "__main__":
    main()
