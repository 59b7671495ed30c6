#!/usr/bin/env python3
"""Runs the bench against instruments that are late, echo, greet, repeat themselves or answer with bare values.

Each run is a zolvane-bench of its own and an instrument of its own, behind TCP, a pseudo-terminal, or a converter that
keeps the line while the connection is new. The instrument numbers its replies that name nothing ("OK 17"), so that the
trace shows which command got whose reply. Found wrong are: a value under another key, a reply that belongs to another
command, and success where a reply was missing. Uses the standard library alone, and nothing of the project.
"""

import argparse
import asyncio
import collections
import json
import os
import random
import shutil
import subprocess
import sys
import tempfile
import time
import tty

DELAYS = (0.1, 0.5, 0.9, 1.1, 1.5, 2, 3, 5)  # in timeouts
QUIRKS = ("none", "echo", "greeting", "stray", "double", "bare", "error")
JOBS = {"download": "download\n", "upload": "upload\nquery\nupload\ndownload\n"}
Case = collections.namedtuple("Case", "place job quirk late delay")


class Instrument:
    """Answers its lines in their order, each through `write` of the line it came over."""

    def __init__(self, case, timeout):
        self.case = case
        self.delay = case.delay * timeout
        self.lines = 0
        self.numbered = collections.defaultdict(set)  # by command, the replies that were its own
        self.values = {}
        self.replies = asyncio.Queue()
        self.current = None
        self.worker = asyncio.create_task(self.work())

    def value_of(self, key):
        return self.values.setdefault(key, str(1000 + len(self.values)))

    def reply_to(self, line, number):
        if self.case.quirk == "error" and number == self.case.late:
            return "SYNTAX_ERROR"
        if line.startswith("GET_CALIBRATION "):
            key = line.split(" ", 1)[1]
            return self.value_of(key) if self.case.quirk == "bare" else key + "=" + self.value_of(key)
        self.numbered[line].add(f"OK {number}")
        return f"OK {number}"

    def opened(self, write):
        self.current = write
        if self.case.quirk in ("greeting", "stray"):
            write(b"HELLO\r\n" if self.case.quirk == "greeting" else b"1000\r\n")

    def take(self, line, write):
        self.lines += 1
        number = self.lines
        text = self.reply_to(line, number) + "\r\n"
        if self.case.quirk == "echo":
            text = line + "\r\n" + text
        if self.case.quirk == "double":
            text += text
        self.replies.put_nowait((number, text.encode(), write))

    async def work(self):
        while True:
            number, text, write = await self.replies.get()
            if number == self.case.late:
                await asyncio.sleep(self.delay)
            if self.case.place == "converter":
                write = self.current
            write(text)


async def serve_socket(instrument):
    """With a converter whatever is late goes to the connection of that time; else with its connection it is lost."""

    async def serve(reader, writer):
        def write(data):
            if not writer.is_closing():
                writer.write(data)

        instrument.opened(write)
        try:
            while line := await reader.readline():
                instrument.take(line.decode().rstrip("\r\n"), write)
        except ConnectionError:
            pass
        writer.close()

    server = await asyncio.start_server(serve, "127.0.0.1", 0)
    return "tcp:127.0.0.1:%d" % server.sockets[0].getsockname()[1], server.close


async def serve_terminal(instrument):
    master, slave = os.openpty()
    tty.setraw(slave)
    os.set_blocking(master, False)
    pending = bytearray()

    def write(data):
        os.write(master, data)

    def read():
        pending.extend(os.read(master, 65536))
        while b"\n" in pending:
            line, _, rest = bytes(pending).partition(b"\n")
            pending[:] = rest
            instrument.take(line.decode().rstrip("\r"), write)

    def close():
        asyncio.get_running_loop().remove_reader(master)
        os.close(master)
        os.close(slave)

    asyncio.get_running_loop().add_reader(master, read)
    instrument.opened(write)
    return "serial:" + os.ttyname(slave), close


def faults_of(case, instrument, sends, status):
    """What is wrong with a run, as far as its trace and its exit status tell."""
    has_missed = False
    for send in sends:
        command, reply = send["command"], send["reply"]
        if not send["ok"]:
            has_missed = True
        elif command.startswith("GET_CALIBRATION "):
            key = command.split(" ", 1)[1]
            right = {key + "=" + instrument.value_of(key)}
            if case.quirk == "bare":
                right.add(instrument.value_of(key))
            if case.quirk == "error":
                right.add("SYNTAX_ERROR")
            if reply not in right:
                yield f"{command} got {reply!r}"
        elif case.quirk in ("none", "echo") or (has_missed and case.quirk in ("greeting", "stray", "bare")):
            if reply not in instrument.numbered[command]:
                yield f"{command} got {reply!r}"
    if status == 0 and has_missed:
        yield "success although a reply was missing"
    if status not in (0, 1):
        yield f"exit status {status}"
    if not sends:
        yield "nothing was sent"


async def run(case, options):
    instrument = Instrument(case, options.timeout)
    serve = serve_terminal if case.place == "pty" else serve_socket
    link, close = await serve(instrument)
    with tempfile.TemporaryDirectory() as folder:
        shutil.copy(os.path.join(options.folder, "Zolvane.ini"), folder)
        trace = os.path.join(folder, "trace.jsonl")
        bench = await asyncio.create_subprocess_exec(
            options.bench, "--folder", folder, "--link", link, "--timeout", str(options.timeout), "--trace", trace,
            "--yes", "--quiet", "--keep-going", "run", "-",
            stdin=asyncio.subprocess.PIPE, stdout=asyncio.subprocess.DEVNULL, stderr=asyncio.subprocess.DEVNULL)
        await bench.communicate(JOBS[case.job].encode())
        with open(trace, encoding="utf-8") as lines:
            events = [json.loads(line) for line in lines]
    close()
    instrument.worker.cancel()
    sends = [event for event in events if event["event"] == "send"]
    return list(faults_of(case, instrument, sends, bench.returncode)), any(not send["ok"] for send in sends)


def commands_of_an_upload(options):
    script = subprocess.run([options.bench, "--folder", options.folder, "script"], check=True, capture_output=True)
    return len(script.stdout.splitlines())


def cases_of(options):
    cases = [Case(place, job, quirk, late, delay)
             for place in options.places.split(",") for job in JOBS for quirk in options.quirks.split(",")
             for late in range(1, options.commands + 1) for delay in DELAYS
             if (job, quirk) != ("upload", "bare")]  # nothing can follow a missing reply there, at a timeout each
    random.Random(1).shuffle(cases)  # so that a part of them is spread over all
    return cases


async def run_all(options):
    cases = iter(cases_of(options))
    end = time.monotonic() + options.seconds
    counts = collections.Counter()

    async def work():
        for case in cases:
            if time.monotonic() >= end:
                return
            faults, has_missed = await run(case, options)
            counts["runs"] += 1
            counts["with a missing reply"] += has_missed
            counts["wrong"] += bool(faults)
            for fault in faults[:3]:
                print(*case, fault, sep=" ")

    await asyncio.gather(*(work() for _ in range(options.at_once)))
    print(", ".join(f"{counts[name]} {name}" for name in ("runs", "with a missing reply", "wrong")))
    return 0 if counts["wrong"] == 0 and counts["with a missing reply"] > 0 else 1


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--bench", required=True, help="the zolvane-bench to run")
    parser.add_argument("--folder", required=True, help="where the Zolvane.ini is")
    parser.add_argument("--places", default="tcp,pty,converter")
    parser.add_argument("--quirks", default=",".join(QUIRKS))
    parser.add_argument("--commands", type=int, help="up to which command each is late once; by default, all of an upload")
    parser.add_argument("--timeout", type=float, default=0.2, help="of the bench, in seconds")
    parser.add_argument("--seconds", type=float, default=float("inf"), help="begin no run after that time")
    parser.add_argument("--at-once", type=int, default=16, help="how many runs at the same time")
    options = parser.parse_args()
    options.commands = options.commands or commands_of_an_upload(options)
    sys.exit(asyncio.run(run_all(options)))


if __name__ == "__main__":
    main()
