#!/usr/bin/env python3
"""A second reader of the history, written from docs/format-history.md alone.

history_reader.py FOLDER [FILE...] reads FOLDER/Zolvane.history, compares it with the checkpoints in the files, and prints
one JSON object: what it believes, and the three verdicts."""

import hashlib
import json
import re
import sys
from pathlib import Path

FORMAT = "zolvane-history/1"
LARGEST = 2**53
HASH = re.compile(r"[0-9a-f]{64}\Z")
IDENTITY = re.compile(r"[0-9a-f]{32}\Z")
ALWAYS = {
    "seq": int, "state": str, "action": str, "time": str, "offset": int, "person": str, "machine": str,
    "program": str, "version": str, "previous": str,
}
IF_ANY = {
    "of": int, "about": int, "outcome": str, "reason": str, "link": str, "instrument": str, "file": str,
    "file_before": str, "file_after": str, "other_files": list, "found": str, "intended": str, "left": str, "details": str,
    "objections": list, "counts": dict,
}
OBJECTS = ("file_before", "file_after", "found", "intended", "left", "details")


class Unfit(Exception):
    pass


def require(holds, reason):
    if not holds:
        raise Unfit(reason)


def bytes_of(text):
    """What the text stands for: \\x9b is the byte 9b."""
    return re.sub(rb"\\x([0-9a-f]{2})", lambda found: bytes([int(found[1], 16)]), text.encode("utf-8"))


def sha256(data):
    return hashlib.sha256(data).hexdigest()


def refused(name):
    raise ValueError(name)


def finite(digits):
    return float(digits) if abs(float(digits)) != float("inf") else refused(digits)


def parsed(line):
    """The object of a line, with all its members. Of equal names the last one counts."""
    try:
        value = json.loads(line.decode("utf-8"), parse_constant=refused, parse_float=finite)
        json.dumps(value, ensure_ascii=False).encode("utf-8")
    except (ValueError, RecursionError):
        raise Unfit("no JSON") from None
    require(isinstance(value, dict) and line.startswith(b"{"), "no object")
    return value


def canonical(value):
    def spelled(item):
        if isinstance(item, dict):
            names = sorted(item, key=lambda name: name.encode("utf-16-be"))
            return "{" + ",".join(spelled(name) + ":" + spelled(item[name]) for name in names) + "}"
        if isinstance(item, list):
            return "[" + ",".join(map(spelled, item)) + "]"
        return json.dumps(item, ensure_ascii=False)

    try:
        return spelled(value).encode("utf-8")
    except (UnicodeEncodeError, RecursionError):
        return b""


def is_whole(value):
    return type(value) is int and -LARGEST <= value <= LARGEST


def is_kind(value, kind):
    return is_whole(value) if kind is int else isinstance(value, kind)


def entry_of(line):
    entry = parsed(line)
    for name, kind in ALWAYS.items():
        require(name in entry and is_kind(entry[name], kind), name)
    for name, kind in IF_ANY.items():
        require(name not in entry or is_kind(entry[name], kind), name)
    require(entry["seq"] >= 0 and entry.get("of", 0) >= 0, "numbers of lines")
    require(entry["state"] == ("ended" if entry.get("of", 0) else "begun"), "state")
    require(all(is_whole(count) for count in entry.get("counts", {}).values()), "counts")
    for item in entry.get("objections", []):
        require(isinstance(item, dict), "objections")
        require(all(isinstance(item.get(member), str) for member in ("code", "expected", "actual")), "objections")
    for item in entry.get("other_files", []):
        require(isinstance(item, dict) and "path" in item, "other_files")
        require(all(isinstance(item.get(member, ""), str) for member in ("path", "before", "after")), "other_files")
    require(HASH.match(entry["previous"]), "previous")
    require(all(HASH.match(name) for name in objects_of(entry)), "objects")
    return entry


def objects_of(entry):
    names = [entry.get(member, "") for member in OBJECTS]
    for item in entry.get("other_files", []):
        names += [item.get("before", ""), item.get("after", "")]
    return [name for name in names if name]


def split(data):
    """The whole lines, and what is torn."""
    end = data.rfind(b"\n") + 1
    lines = data[:end].split(b"\n")[:-1]
    torn = data[end:]
    if lines and b"\0" in lines[-1]:
        torn = lines.pop() + b"\n" + torn
    return lines, torn


class History:
    def __init__(self, folder):
        self.folder = Path(folder) / "Zolvane.history"
        self.lines, self.torn = split((self.folder / "journal.jsonl").read_bytes())
        self.hashes = [sha256(line) for line in self.lines]
        self.identity = ""
        self.entries = []
        self.gaps = self.misfits = 0
        self.damage = 0  # the first line that does not fit
        self.read()

    def misfit(self, number, is_gap=False):
        self.damage = self.damage or number
        self.gaps += is_gap
        self.misfits += not is_gap

    def read(self):
        if not self.lines:
            self.misfit(1)
        expected = 2
        running = set()
        for number, line in enumerate(self.lines, 1):
            try:
                if number == 1:
                    self.read_identity(line)
                    continue
                entry = entry_of(line)
            except Unfit:
                self.misfit(number)
                continue
            if entry["previous"] != self.hashes[number - 2]:
                if not self.damage:
                    self.entries = self.entries[:-1]
                self.misfit(number)
            if entry["seq"] != expected:
                self.misfit(number, is_gap=True)
            expected = entry["seq"] + 1
            if entry["state"] == "begun":
                running.add(entry["seq"])
            elif entry["of"] in running:
                running.remove(entry["of"])
            else:
                self.misfit(number)
            if not self.damage:
                self.entries.append(entry)

    def read_identity(self, line):
        first = parsed(line)
        require(first.get("format") == FORMAT, "format")
        identity = first.get("history")
        require(isinstance(identity, str) and IDENTITY.match(identity), "identity")
        self.identity = identity

    def holds_objects(self):
        for name in {name for entry in self.entries for name in objects_of(entry)}:
            try:
                if sha256((self.folder / "objects" / name).read_bytes()) != name:
                    return False
            except OSError:
                return False
        return True

    def values_of(self, name):
        """Names, texts and whether they were answered, of an object that holds values; else None."""
        try:
            data = (self.folder / "objects" / name).read_bytes()
            content = json.loads(data.decode("utf-8")) if sha256(data) == name else None
            return [
                (bytes_of(value["name"]), bytes_of(value["text"]) if "text" in value else None, value.get("answered", True))
                for value in content
            ]
        except (OSError, ValueError, TypeError, KeyError, AttributeError):
            return None

    def is_canonical(self):
        return all(canonical(parsed(line)) == line for line in self.lines)

    def agrees_with(self, identity, count, last):
        return (
            identity == self.identity
            and count < len(self.hashes)
            and self.hashes[count] == last
            and not 0 < self.damage <= count + 1
        )


def checkpoints_in(text):
    words = re.findall(r"[0-9A-Za-z]+", text)
    for identity, count, last in zip(words, words[1:], words[2:]):
        if IDENTITY.match(identity) and re.match(r"[0-9]+\Z", count) and HASH.match(last) and int(count) <= LARGEST:
            yield identity, int(count), last


def main(folder, *files):
    history = History(folder)
    against = [found for file in files for found in checkpoints_in(Path(file).read_text(errors="replace"))]
    agreeing = [count for identity, count, last in against if history.agrees_with(identity, count, last)]
    intact = history.misfits == 0 and history.is_canonical() and history.holds_objects()
    print(json.dumps({
        "identity": history.identity,
        "sequences": [entry["seq"] for entry in history.entries],
        "actions": [entry["action"] for entry in history.entries],
        "people": [bytes_of(entry["person"]).hex() for entry in history.entries],
        "found": [
            [(name.hex(), None if text is None else text.hex(), answered) for name, text, answered in values]
            for values in (history.values_of(entry["found"]) for entry in history.entries if entry.get("found"))
            if values is not None
        ],
        "damage": history.damage,
        "torn": len(history.torn),
        "intact": intact,
        "complete": bool(history.lines) and history.gaps == 0,
        "anchored": bool(against) and len(agreeing) == len(against),
        "anchored_up_to": max((count + 1 for count in agreeing if count), default=0),
    }))


if __name__ == "__main__":
    main(*sys.argv[1:])
