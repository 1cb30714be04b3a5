#!/usr/bin/env python3
"""Writes a reproducible corpus of DX-cluster text and web spot pages.

    make_corpus.py cluster LINES OUT     cluster session text (Latin-1, CR LF)
    make_corpus.py web PAGES OUT_PREFIX  web spot pages OUT_PREFIX-0001.html ...

The lines mix what real nodes send: Es, MS, TR, EME and unmarked spots on
every band from 28 MHz to 10 GHz, one or two locators (four and six
characters, any case, touching the own square JO62), grid columns, long and
short lines, announcements, prompts, blank lines, bells and Latin-1 text.
The same seed always gives the same bytes, so outputs of two builds compare.
"""
import random
import sys

FIELDS = "ABCDEFGHIJKLMNOPQR"
SUBS = "ABCDEFGHIJKLMNOPQRSTUVWX"
BANDS = [28074.0, 28885.0, 50110.0, 50150.0, 50313.0, 70150.0, 70200.0,
         144000.0, 144174.0, 144300.0, 144370.0, 147999.0, 148000.0, 148001.0,
         432200.0, 1296012.5, 10368100.0, 14074.0, 7074.0, 299999.0, 300000.0]
MODES = ["ES", "es", "Es", "<ES>", "(ES)", "<es", "ES>", ":ES:", "MS", "ms",
         "TR", "tr", "EME", "<EME>", "SAT", "MUF", "MUF2", "", "", "", "tnx",
         "599", "FT8 -12dB", "CW 559", "pse QSL"]
CALLS = ["OH1XYZ", "EA5XYZ", "G4ABC", "OZ1ABC", "DL0XYZ", "EA8ABC", "9A1A",
         "SP9HWY", "IK0FTA", "PA3EZL", "LZ1ZZ", "CT1ABC", "SV1XX", "4X1AB",
         "TF3XY", "UA3ABC", "YO2AB", "HB9X", "F5ABC", "I2ABC/P", "S51AB"]


def locator(rng, six=True, near=None):
    if near and rng.random() < 0.15:
        base = near
    else:
        base = (rng.choice(FIELDS[4:14]) + rng.choice(FIELDS[8:16]) +
                str(rng.randrange(10)) + str(rng.randrange(10)))
    if six:
        base += rng.choice(SUBS) + rng.choice(SUBS)
    return base.lower() if rng.random() < 0.05 else base


def comment(rng):
    parts = []
    n = rng.choice([0, 1, 2, 2, 2, 2, 3])
    for i in range(n):
        parts.append(locator(rng, six=rng.random() < 0.6, near="JO62"))
    mode = rng.choice(MODES)
    style = rng.randrange(4)
    if style == 0 and len(parts) == 2:
        text = parts[0] + "<" + mode.strip("<>():") + ">" + parts[1] if mode else " ".join(parts)
    elif style == 1:
        text = (mode + " " + " ".join(parts)).strip()
    else:
        text = (" ".join(parts) + " " + mode).strip()
    if rng.random() < 0.05:
        text += " 55\xb0N"
    if rng.random() < 0.03:
        text += " login: ok"
    return text


def spot_line(rng, grid):
    spotter = rng.choice(CALLS) + ":"
    freq = rng.choice(BANDS) + rng.choice([0, 0, 0, 0.5, 1.0, 12.0])
    dx = rng.choice(CALLS)
    text = comment(rng)
    width = 30 if rng.random() < 0.9 else rng.choice([10, 28, 40])
    line = "DX de %-7.7s%11.1f  %-12.12s %-*s %04dZ" % (
        spotter, freq, dx, width, text[:width], rng.randrange(2400))
    if grid:
        line += " " + locator(rng, six=False)
    return line


def other_line(rng):
    kind = rng.randrange(8)
    if kind == 0:
        return "To ALL de %s: %s" % (rng.choice(CALLS), comment(rng))
    if kind == 1:
        return "%s de GB7DJK 23-Nov-2026 %04dZ dxspider >" % (rng.choice(CALLS), rng.randrange(2400))
    if kind == 2:
        return ""
    if kind == 3:
        return "WWV de VE7CC <18>:   SFI=70, A=5, K=1, No Storms -> No Storms"
    if kind == 4:
        return "\x07\x07DX de %s" % rng.choice(CALLS)
    if kind == 5:
        return "DX de " + "X" * rng.randrange(1, 120)
    if kind == 6:
        return "  50110.0 OH1XYZ      23-Nov-2026 1712Z JO90JR<ES>KP20  <SP9HWY>"
    return "\xe9t\xe9 \x07 %s" % comment(rng)


def cluster(lines, out):
    rng = random.Random(20261123)
    with open(out, "wb") as f:
        for i in range(lines):
            if rng.random() < 0.9:
                line = spot_line(rng, grid=rng.random() < 0.2)
            else:
                line = other_line(rng)
            f.write(line.encode("latin-1") + b"\r\n")


def web(pages, prefix):
    rng = random.Random(4711)
    for p in range(pages):
        rows = []
        for i in range(rng.randrange(20, 200)):
            text = comment(rng).replace("<", "&lt;").replace(">", "&gt;")
            rows.append("%-13s%10.1f %-12.12s %-34.34s %04d" % (
                rng.choice(CALLS), rng.choice(BANDS), rng.choice(CALLS), text,
                rng.randrange(2400)))
        page = ("<html><script>setTimeout(function(){window.location.href = "
                "'http://www.dxsummit.fi/';},1);   </script><pre>\n" +
                "\n".join(rows) + "\n</pre></html>\n")
        with open("%s-%04d.html" % (prefix, p + 1), "wb") as f:
            f.write(page.encode("latin-1"))


if __name__ == "__main__":
    if len(sys.argv) != 4 or sys.argv[1] not in ("cluster", "web"):
        sys.exit(__doc__)
    (cluster if sys.argv[1] == "cluster" else web)(int(sys.argv[2]), sys.argv[3])
