#!/usr/bin/env python3
"""Reads a record with nothing of ours: proves its seal, and that its page can only be looked at.

  inert_page.py RECORD [CONFIGURATION]

With a configuration: the record must hold exactly its bytes. Prints what is wrong; ends with 1 if anything is.
"""
import base64
import hashlib
import html.parser
import json
import pathlib
import re
import sys

import jsonschema

TAGS = set("""html head meta title style body header h1 h2 h3 p dl dt dd i br table thead tbody tr th td small section
figure figcaption div svg polyline rect circle text footer code pre""".split())
ATTRIBUTES = set("""lang charset http-equiv content class colspan hidden id role viewbox points x y width height cx cy r
transform""".split())
VOID = {"meta", "br", "polyline", "rect", "circle"}
STEERING = set(range(0x20)) - {0x0A} | set(range(0x7F, 0xA0)) | {0x061C, 0x200E, 0x200F} | set(range(0x2028, 0x202F)) | \
    set(range(0x2066, 0x206A))

faults = []


def expect(holds, what):
    if not holds:
        faults.append(what)


class Page(html.parser.HTMLParser):
    def __init__(self):
        super().__init__(convert_charrefs=True)
        self.open, self.data, self.policies = [], [], []

    def handle_starttag(self, tag, attributes):
        expect(tag in TAGS, f"element {tag}")
        for name, value in attributes:
            expect(name in ATTRIBUTES, f"attribute {name} of {tag}")
            expect(not re.search(r"(?i)[a-z]:|url\(|//", value or ""), f"a reference in {name}={value}")
        if ("http-equiv", "Content-Security-Policy") in attributes:
            self.policies.append(dict(attributes)["content"])
        if tag not in VOID:
            self.open.append((tag, dict(attributes)))

    def handle_startendtag(self, tag, attributes):
        self.handle_starttag(tag, attributes)

    def handle_endtag(self, tag):
        expect(self.open and self.open[-1][0] == tag, f"</{tag}> closes {self.open[-1:]}")
        if self.open:
            self.open.pop()

    def handle_data(self, data):
        tag, attributes = self.open[-1] if self.open else ("", {})
        if attributes.get("id") == "record-data":
            expect("hidden" in attributes, "the data are shown")
            self.data.append(data)
        elif tag == "style":
            expect(not re.search(r"(?i)url\(|@import|expression|\\", data), "a reference in the style sheet")


def check(path, configuration):
    content = open(path, "rb").read()
    expect(content.endswith(b"\n"), "the last line has no end")
    sealed, _, last = content[:-1].rpartition(b"\n")
    sealed += b"\n"
    expected = f"<!-- SHA-256 of all bytes before this line: {hashlib.sha256(sealed).hexdigest()} -->"
    expect(last.decode() == expected, "the seal does not fit")

    page = Page()
    text = content.decode("utf-8")
    page.feed(text)
    page.close()
    expect(page.open == [], f"left open: {page.open}")
    expect(page.policies == ["default-src 'none'; style-src 'unsafe-inline'"], "the page has another policy")
    steering = sorted({f"U+{ord(c):04X}" for c in text if ord(c) in STEERING})
    expect(not steering, f"characters that steer the page: {steering}")
    expect(len(page.data) == 1, "there is not one element of data")
    data = json.loads(base64.b64decode(page.data[0].replace("\n", ""), validate=True))
    schema = json.loads((pathlib.Path(__file__).resolve().parents[3] / "docs" / "schema" / "record.json").read_text())
    for error in jsonschema.Draft202012Validator(schema).iter_errors(data):
        expect(False, f"the data do not fit the schema: {error.message[:200]}")
    if configuration:
        text = data["left"]["configuration"].encode("utf-8")
        kept = re.sub(rb"\\x([0-9a-f]{2})", lambda number: bytes([int(number[1], 16)]), text)
        expect(kept == open(configuration, "rb").read(), "the configuration is another one")


check(sys.argv[1], sys.argv[2] if len(sys.argv) > 2 else None)
print("\n".join(sorted(set(faults))))
sys.exit(1 if faults else 0)
