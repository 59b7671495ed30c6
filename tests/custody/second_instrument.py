#!/usr/bin/env python3
"""A second instrument, for the tests of custody. It shares nothing with the simulated one: values are decimal
numbers where they can be, not texts; it spells them in its own way, keeps its keys in its own order, and has its
own idea of when two values are equal.

  second_instrument.py [--values FILE] [--expect FILE] [--spell STYLE]
                       [--lose KEY]... [--deaf KEY]... [--write-only KEY]...

Prints the place where it listens (tcp:127.0.0.1:PORT) as its first line. FILE holds lines "KEY VALUE". --spell is
plain, padded (2.500), signed (+2.5) or wide (0002.5). A key given to --lose is stored and lost with the next
setting, one given to --deaf keeps its value, one given to --write-only is stored and never told. When its
standard input ends, it prints as JSON how many lines it was sent ("lines"), what it kept ("kept"), and the keys
whose kept value is not as expected ("differs"), and ends.
"""

import argparse
import decimal
import json
import socketserver
import sys
import threading


def number(text):
    try:
        value = decimal.Decimal(text)
    except decimal.InvalidOperation:
        return None
    return value if value.is_finite() and "e" not in text.lower() else None


def same(left, right):
    if left is None or right is None:
        return left is right
    if number(left) is not None and number(right) is not None:
        return number(left).compare(number(right)) == 0
    return left == right


SPELLINGS = {
    "plain": lambda value: format(value, "f"),
    "padded": lambda value: format(value, "f") + ("00" if "." in format(value, "f") else ".000"),
    "signed": lambda value: format(value, "+f"),
    "wide": lambda value: ("-" if value < 0 else "") + "000" + format(abs(value), "f"),
}


class Instrument:
    def __init__(self, options):
        self.spell = SPELLINGS[options.spell]
        self.lose, self.deaf, self.write_only = set(options.lose), set(options.deaf), set(options.write_only)
        self.working = {key: self.stored(text) for key, text in read_values(options.values)}
        self.kept = dict(self.working)
        self.expected = read_values(options.expect)
        self.lost = None
        self.lines = 0

    def stored(self, text):
        value = number(text)
        return text if value is None else value

    def told(self, value):
        return value if isinstance(value, str) else self.spell(value)

    def answer(self, line):
        self.lines += 1
        word, _, rest = line.partition(" ")
        if line == "STATUS_STAGE":
            return "ZV400"
        if line == "STATUS_MECH":
            return "SD"
        if word == "GET_CALIBRATION" and rest in self.working and rest not in self.write_only:
            return f"{rest}={self.told(self.working[rest])}"
        if line == "SET_CALIBRATION SAVE":
            self.kept = dict(self.working)
            return "OK"
        key, blank, value = rest.partition(" ")
        if word != "SET_CALIBRATION" or not blank or not value:
            return "SYNTAX_ERROR"
        self.store(key, value)
        return "OK"

    def store(self, key, value):
        if self.lost is not None:
            self.working.pop(self.lost)
            self.lost = None
        if key not in self.deaf:
            self.working[key] = self.stored(value)
        if key in self.lose:
            self.lost = key

    def report(self):
        kept = {key: self.told(self.kept[key]) for key in sorted(self.kept, reverse=True)}
        differs = [key for key, text in dict(self.expected).items() if not same(kept.get(key), text)]
        return {"lines": self.lines, "kept": kept, "differs": differs}


def read_values(path):
    if path is None:
        return []
    with open(path, encoding="utf-8") as file:
        return [tuple(line.rstrip("\n").split(" ", 1)) for line in file if " " in line]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--values")
    parser.add_argument("--expect")
    parser.add_argument("--spell", choices=SPELLINGS, default="plain")
    for name in ("--lose", "--deaf", "--write-only"):
        parser.add_argument(name, action="append", default=[])
    instrument = Instrument(parser.parse_args())

    class Conversation(socketserver.StreamRequestHandler):
        disable_nagle_algorithm = True

        def handle(self):
            for line in self.rfile:
                reply = instrument.answer(line.decode("utf-8").rstrip("\r\n"))
                self.wfile.write((reply + "\n").encode("utf-8"))

    socketserver.ThreadingTCPServer.daemon_threads = True
    with socketserver.ThreadingTCPServer(("127.0.0.1", 0), Conversation) as server:
        threading.Thread(target=server.serve_forever, daemon=True).start()
        print(f"tcp:127.0.0.1:{server.server_address[1]}", flush=True)
        sys.stdin.read()
        print(json.dumps(instrument.report()), flush=True)
        server.shutdown()


if __name__ == "__main__":
    main()
