#!/usr/bin/env python3
"""A small scripted telnet server for trying Kelpa by hand and for screenshots.

On each connection it asks for the terminal type (IAC DO 24), sends coloured
ANSI lines, code page 437 box-drawing lines, a status frame that fills the
panel and a prompt ended by IAC GA, then answers every line it receives by
echoing it. "fight" plays a fight: hit points fall and the position changes,
one status frame a round, cut across two sends. "password" asks for one
behind IAC WILL ECHO. Standard library only.
"""
import argparse
import os
import socketserver
import time

IAC, WILL, WONT, DO, SB, SE, GA = 255, 251, 252, 253, 250, 240, 249
ECHO = 1
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


def frame(items):
    """A status frame: 24, items "kind,number,value" each ended by 25, then 26."""
    body = b"".join(f"{kind},{n},{value}".encode("latin-1") + b"\x19" for kind, n, value in items)
    return b"\x18" + body + b"\x1a"


def full_panel():
    stats = [(1, n, v) for n, v in enumerate([18, 12, 14, 16, 17, 9, 3])]
    life = [(1, 7, 240), (1, 8, 240), (1, 9, 80), (1, 10, 62), (1, 11, 150), (1, 12, 40),
            (1, 13, 50), (1, 14, 50), (1, 15, 120), (1, 16, 95), (1, 17, 1234)]
    other = [(1, 18, 56000), (1, 19, "Kelpie the Brave"), (1, 20, 35), (1, 21, 60), (1, 22, 1),
             (1, 24, 27), (1, 25, 3), (1, 26, 71), (1, 27, 180), (1, 28, 0), (1, 29, 0), (1, 30, 5)]
    armour = [(1, n, 10 + n % 7) for n in range(31, 43)] + [(1, n, n - 40) for n in range(43, 48)]
    body = [(1, 48, 20), (1, 49, 45), (1, 50, 70), (1, 51, 95), (1, 52, 11), (1, 53, 11)]
    lines = [(2, 0, "Temple of the Tides"), (2, 1, "A cool breeze blows."), (2, 2, "Kelpie"),
             (2, 3, "Level 12 Warrior"), (2, 4, "Clan of the Deep")]
    return frame(stats + life + other + armour + body + lines)


def fight(sock):
    hp = 240
    sock.sendall(frame([(1, 52, 9), (1, 53, 9), (2, 1, "You fight a sea troll.")]))
    for damage in (31, 45, 28, 52, 40):
        hp -= damage
        update = frame([(1, 8, hp), (1, 10, 62 - damage // 4), (1, 16, 95 - damage // 3)])
        text = f"{ESC}[1;31mThe troll hits you for {damage}.{ESC}[0m\r\n".encode()
        cut = len(update) // 2
        sock.sendall(text + update[:cut])
        time.sleep(0.3)
        sock.sendall(update[cut:] + prompt_for(hp))
    sock.sendall(b"The troll dies.\r\n" + frame([(1, 52, 8), (1, 53, 5), (2, 1, "You rest.")]) + prompt_for(hp))


def prompt_for(hp):
    return f"{ESC}[0;33m<{hp}hp 50m>{ESC}[0m ".encode() + bytes([IAC, GA])


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
        sock.sendall(banner() + full_panel() + prompt())
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
                if line == b"fight":
                    fight(sock)
                    continue
                if line == b"password":
                    sock.sendall(b"Password: " + bytes([IAC, WILL, ECHO]))
                    continue
                if line.startswith(b"secret"):
                    sock.sendall(bytes([IAC, WONT, ECHO]) + b"\r\nPassword accepted.\r\n" + prompt())
                    continue
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
