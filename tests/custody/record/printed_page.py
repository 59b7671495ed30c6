#!/usr/bin/env python3
"""Looks at the pictures that tools/record_pictures takes of the sample record:  printed_page.py RECORD FOLDER

Prints what is wrong; ends with 1 if anything is.
"""
import html
import pathlib
import re
import struct
import subprocess
import sys

faults = []


def expect(holds, what):
    if not holds:
        faults.append(what)


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def words_of(pdf):
    """For each page its size, and what stands where: (text, left, top, right, bottom), in points."""
    pages = []
    for line in output_of("pdftotext", "-bbox", pdf, "-").splitlines():
        numbers = [float(number) for number in re.findall(r'(?:width|height|xMin|yMin|xMax|yMax)="([-0-9.]+)"', line)]
        if "<page " in line:
            pages.append((numbers, []))
        elif "<word " in line:
            pages[-1][1].append((html.unescape(re.search(r">(.*?)</word>", line)[1]), *numbers))
    return pages


def overlap(first, second):
    """More than a hair: the boxes of letters reach above and below what is drawn of them."""
    across = min(first[3], second[3]) - max(first[1], second[1])
    down = min(first[4], second[4]) - max(first[2], second[2])
    smaller = min(first[4] - first[2], second[4] - second[2])
    return across > 0.8 and down > 0.4 * smaller


def look_at_words(pages):
    for number, ((width, height), words) in enumerate(pages, 1):
        expect(abs(width - 595) < 2 and abs(height - 842) < 2, f"page {number} is not A4: {width} x {height}")
        expect(words, f"page {number} is empty")
        for word in words:
            inside = 20 < word[1] and word[3] < width - 20 and 20 < word[2] and word[4] < height - 10
            expect(inside, f"page {number}: {word} reaches into the margin")
        upright = [word for word in words if word[3] - word[1] > 0.5 * (word[4] - word[2]) or len(word[0]) < 3]
        for at, word in enumerate(upright):
            for other in upright[at + 1:]:
                expect(not overlap(word, other), f"page {number}: {word[0]} and {other[0]} overlap: {word} {other}")


def look_at_colours(pdf):
    """What moved is red, on paper too."""
    picture = subprocess.run(["pdftoppm", "-r", "60", pdf], check=True, capture_output=True).stdout
    red = sum(1 for at in range(0, len(picture) - 2, 3)
              if picture[at] > 150 and picture[at + 1] < 90 and picture[at + 2] < 90)
    expect(red > 200, f"only {red} red pixels")


def look_at_screen(png):
    header = png.read_bytes()[:24]
    expect(header[:8] == b"\x89PNG\r\n\x1a\n", "no picture of the screen")
    expect(struct.unpack(">I", header[16:20]) == (860,), "the picture of the screen has another width")


folder = pathlib.Path(sys.argv[2])
root = pathlib.Path(__file__).resolve().parents[3]
subprocess.run([root / "tools" / "record_pictures", sys.argv[1], folder], check=True)
pdf = str(folder / "record.pdf")
pages = words_of(pdf)
look_at_words(pages)
look_at_colours(pdf)
look_at_screen(folder / "record.png")
text = " ".join(word[0] for _, words in pages for word in words)
for shown in ("Adjustment record", "As found As left", "STAGE2", "X, mm", "volume, ul", "factor", "MountHeight"):
    expect(shown in text, f"'{shown}' is not printed")
expect(len(list(folder.glob("record-page-*.png"))) == len(pages) <= 12, f"{len(pages)} pages")
print("\n".join(faults[:40]))
sys.exit(1 if faults else 0)
