#!/usr/bin/env python3
"""The command-line tool: exit statuses, messages, and the samples that it writes.

Usage: tool_test.py TOOL SCRATCH
"""
import base64
import json
import pathlib
import shutil
import struct
import subprocess
import sys
import unittest
import zlib

# 8 by 8 grey pixels of value 200.
JPEG = base64.b64decode(
    "/9j/4AAQSkZJRgABAQAAAQABAAD/2wBDAAEBAQEBAQEBAQEBAQEBAQEBAQEBAQEBAQEBAQEBAQEBAQEBAQEBAQEBAQEBAQEBAQEB"
    "AQEBAQEBAQEBAQEBAQH/wgALCAAIAAgBAREA/8QAFAABAAAAAAAAAAAAAAAAAAAACf/aAAgBAQAAAAFIP//EABQQAQAAAAAAAAAA"
    "AAAAAAAAAAD/2gAIAQEAAQUCf//EABQQAQAAAAAAAAAAAAAAAAAAAAD/2gAIAQEABj8Cf//EABQQAQAAAAAAAAAAAAAAAAAAAAD/"
    "2gAIAQEAAT8hf//aAAgBAQAAABB//8QAFBABAAAAAAAAAAAAAAAAAAAAAP/aAAgBAQABPxB//9k=")

TOOL, SCRATCH = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2])


def run(*words, status=0):
    done = subprocess.run([TOOL, *map(str, words)], cwd=SCRATCH, capture_output=True, text=True)
    assert done.returncode == status, f"{words}: status {done.returncode}\n{done.stdout}{done.stderr}"
    return done


def write_pgm(name, width, samples, colour=False):
    height = len(samples) // width // (3 if colour else 1)
    (SCRATCH / name).write_bytes(b"P%d\n# made by a test\n%d %d\n255\n" % (6 if colour else 5, width, height) +
                                 bytes(samples))


def write_rgba(name, width, height, samples):
    """A PNG with an alpha channel, without filters."""
    rows = b"".join(b"\0" + bytes(samples[4 * width * y:4 * width * (y + 1)]) for y in range(height))

    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
    header = struct.pack(">IIBBBBB", width, height, 8, 6, 0, 0, 0)
    (SCRATCH / name).write_bytes(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(rows)) +
                                 chunk(b"IEND", b""))


def read_png(name):
    """Channels and samples of an 8-bit PNG."""
    data, at, packed = (SCRATCH / name).read_bytes(), 8, b""
    while at < len(data):
        length, kind = struct.unpack(">I4s", data[at:at + 8])
        body = data[at + 8:at + 8 + length]
        if kind == b"IHDR":
            width, height, _, colour = struct.unpack(">IIBB", body[:10])
            channels = {0: 1, 4: 2, 2: 3, 6: 4}[colour]
        packed += body if kind == b"IDAT" else b""
        at += 12 + length
    raw, out, above = zlib.decompress(packed), [], [0] * (width * channels)
    for y in range(height):
        line = raw[y * (width * channels + 1):(y + 1) * (width * channels + 1)]
        row = []
        for i, x in enumerate(line[1:]):
            a, b = (row[i - channels] if i >= channels else 0), above[i]
            c = above[i - channels] if i >= channels else 0
            p = a + b - c
            paeth = min((abs(p - a), 0, a), (abs(p - b), 1, b), (abs(p - c), 2, c))[2]
            row.append((x + (0, a, b, (a + b) // 2, paeth)[line[0]]) & 255)
        out += row
        above = row
    return channels, out


class Tool(unittest.TestCase):
    A, B = [0, 1, 100, 200, 255, 255, 77, 128], [0, 255, 100, 100, 1, 255, 33, 64]

    @classmethod
    def setUpClass(cls):
        shutil.rmtree(SCRATCH, ignore_errors=True)
        SCRATCH.mkdir(parents=True)
        write_pgm("a.pgm", 4, cls.A)
        write_pgm("b.pgm", 4, cls.B)

    def test_samples(self):
        for words, expected in [
            (["add"], lambda a, b: min(255, a + b)),
            (["add", "--wrap"], lambda a, b: (a + b) & 255),
            (["sub"], lambda a, b: max(0, a - b)),
            (["sub", "--wrap"], lambda a, b: (a - b) & 255),
            (["diff"], lambda a, b: abs(a - b)),
            (["mul"], lambda a, b: round(a * b / 256)),
            (["blend", "--weight", "0.25"], lambda a, b: round(a / 4 + b * 3 / 4)),
            (["and"], lambda a, b: a & b),
            (["or"], lambda a, b: a | b),
            (["xor"], lambda a, b: a ^ b),
        ]:
            run(*words, "a.pgm", "b.pgm", "-o", "out.png")
            self.assertEqual(read_png("out.png"), (1, [expected(a, b) for a, b in zip(self.A, self.B)]), words)

    def test_colour_and_alpha(self):
        write_rgba("c.png", 2, 2, range(0, 16))
        run("negate", "c.png", "-o", "out.png")
        self.assertEqual(read_png("out.png"), (4, [v if v % 4 == 3 else 255 - v for v in range(16)]))
        write_pgm("c.ppm", 2, range(12), colour=True)
        run("add", "c.png", "c.ppm", "-o", "out.png")
        self.assertEqual(read_png("out.png")[1], [v if v % 4 == 3 else v + v // 4 * 3 + v % 4 for v in range(16)])
        run("add", "c.ppm", "c.ppm", "c.ppm", "-o", "out.png")
        self.assertEqual(read_png("out.png"), (3, [3 * v for v in range(12)]))

    def test_jpeg(self):
        (SCRATCH / "grey.jpg").write_bytes(JPEG)
        run("negate", "grey.jpg", "-o", "out.png")
        self.assertEqual(read_png("out.png"), (1, [55] * 64))

    def test_several_into_a_folder(self):
        run("negate", "a.pgm", "b.pgm", "-o", "negated")
        self.assertEqual(read_png("negated/b.png")[1], [255 - v for v in self.B])

    def test_paint_and_sheet(self):
        for kind in "gradient", "blobs", "shapes", "text":
            run("paint", kind, "--size", "90x60", "-o", kind + ".png")
            first = (SCRATCH / (kind + ".png")).read_bytes()
            self.assertGreater(len(set(read_png(kind + ".png")[1])), 4, kind)
            run("paint", kind, "--size=90x60", "--output", kind + ".png")
            self.assertEqual(first, (SCRATCH / (kind + ".png")).read_bytes(), kind + " differs from run to run")
        run("sheet", "gradient.png", "a.pgm", "--cell", "40x30", "-o", "out.png")
        channels, samples = read_png("out.png")
        source, row = read_png("gradient.png")[1], 3 * (8 + 2 * 48)
        self.assertEqual(channels, 3)
        at = 8 * row + 3 * 8  # means of 3 by 3 pixels of the first picture
        self.assertEqual(samples[at:at + 6], [
            round(sum(source[3 * (90 * y + x) + c] for y in range(3) for x in range(left, left + 3)) / 9)
            for left in (0, 3) for c in range(3)])
        at += 9 * row + 3 * 48  # the grey one in all channels, in the last row of dots of the first pixels
        self.assertEqual(samples[at:at + 120], [v for v in self.A[:4] for _ in range(30)])

    def test_resize(self):
        write_pgm("r.pgm", 3, [1, 2, 3, 4, 5, 6])
        for words, expected in [
            (["--size", "2x2"], [1, 3, 4, 6]),
            (["--factor", "2,1"], [1, 1, 2, 2, 3, 3, 4, 4, 5, 5, 6, 6]),
            (["--factor", "-1"], [6, 5, 4, 3, 2, 1]),
            (["--factor=0.01"], [5]),
        ]:
            run("resize", "r.pgm", *words, "-o", "out.png")
            self.assertEqual(read_png("out.png"), (1, expected), words)
        for words in [[], ["--size", "2x2", "--factor", "2"], ["--factor", "0"], ["--factor", "1,2,3"],
                      ["--factor", "1e9"]]:
            run("resize", "r.pgm", *words, "-o", "out.png", status=2)

    def test_matrix(self):
        write_rgba("c.png", 2, 1, [10, 20, 30, 40, 200, 100, 0, 7])
        run("matrix", "c.png", "--by", "swap", "-o", "out.png")
        self.assertEqual(read_png("out.png"), (4, [30, 20, 10, 40, 0, 100, 200, 7]))
        run("matrix", "c.png", "--by", "1,1,0,0,-1,0.25,0,0,2", "-o", "out.png")
        self.assertEqual(read_png("out.png")[1], [30, 0, 60, 40, 255, 0, 0, 7])
        run("matrix", "c.png", "--by", "gray", "-o", "out.png")
        self.assertEqual(read_png("out.png")[1][:4], [18] * 3 + [40])
        for by in "other", "1,2,3", "1,2,3,4,5,6,7,8,9,10":
            self.assertIn("--by", run("matrix", "c.png", "--by", by, "-o", "out.png", status=2).stderr)
        self.assertIn("colour", run("matrix", "a.pgm", "--by", "gray", "-o", "out.png", status=2).stderr)

    def test_hull(self):
        write_pgm("dot.pgm", 4, [0, 0, 0, 0, 0, 128, 127, 0])
        self.assertIn("1 pixels\n", run("hull", "dot.pgm", "-o", "out.png").stdout)
        self.assertEqual(read_png("out.png"), (3, 5 * [0, 0, 0] + [255, 64, 64] + 2 * [0, 0, 0]))
        self.assertIn("2 pixels\n", run("hull", "dot.pgm", "--level", 127, "-o", "out.png").stdout)

    def test_stats_and_convert(self):
        write_pgm("s.pgm", 4, [9, 200, 30, 40, 50, 60, 9, 200])
        write_pgm("half.pgm", 4, [0] * 4 + [1] * 4)
        self.assertIn("9           0,0   200           1,0    74.750             598", run("stats", "s.pgm").stdout)
        both = json.loads(run("stats", "--json", "--mask", "half.pgm", "s.pgm", "a.pgm").stdout)
        least, largest = {"value": 9, "x": 2, "y": 1}, {"value": 200, "x": 3, "y": 1}
        self.assertEqual(both[0]["channels"], [{"min": least, "max": largest, "mean": 79.75, "sum": 319}])
        self.assertEqual([p["picture"] for p in both], ["s.pgm", "a.pgm"])
        for words, expected in [
            ([], [0, 255, 28, 41, 55, 68, 0, 255]),
            (["--to", "10,20"], [10, 20, 11, 12, 12, 13, 10, 20]),
            (["--from", "0,102"], [22, 255, 75, 100, 125, 150, 22, 255]),
            (["--scale", "0.5", "--offset", "100"], [100, 196, 110, 116, 120, 126, 100, 196]),
        ]:
            run("convert", "s.pgm", *words, "-o", "out.png")
            self.assertEqual(read_png("out.png"), (1, expected), words)

    def test_compare_and_threshold(self):
        for words, holds in [
            (["compare", "b.pgm"], lambda a, b: a > b),
            (["compare", "b.pgm", "--relation", "less-or-equal"], lambda a, b: a <= b),
            (["compare", "--to", "100", "--relation", "equal"], lambda a, b: a == 100),
            (["threshold", "--level", "99.5"], lambda a, b: a > 99.5),
            (["threshold", "--level", "0,200"], lambda a, b: 0 < a <= 200),
        ]:
            run(words[0], "a.pgm", *words[1:], "-o", "out.png")
            self.assertEqual(read_png("out.png"), (1, [255 * holds(a, b) for a, b in zip(self.A, self.B)]), words)
        write_rgba("c.png", 2, 2, range(0, 16))
        run("compare", "c.png", "--to", "4,5,200", "--relation", "less", "-o", "out.png")
        self.assertEqual(read_png("out.png"), (3, [255 * (v < (4, 5, 200)[v % 4]) for v in range(16) if v % 4 < 3]))

    def test_hist(self):
        write_pgm("h.pgm", 4, [0, 15, 16, 255, 255, 255, 100, 100])
        self.assertEqual(json.loads(run("hist", "--json", "--bins", 16, "h.pgm").stdout),
                         [[2, 1, 0, 0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 3]])
        self.assertIn("  0.. 85          3\n 86..170          2\n", run("hist", "--bins", 3, "h.pgm").stdout)
        write_pgm("h.ppm", 1, [255, 0, 0, 255, 128, 0], colour=True)
        write_pgm("last.pgm", 1, [0, 9])
        counts = json.loads(run("hist", "h.ppm", "--json", "--mask", "last.pgm", "-o", "out.png").stdout)
        self.assertEqual([c.index(1) for c in counts], [255, 128, 0])
        self.assertEqual([sum(c) for c in counts], [1, 1, 1])
        channels, samples = read_png("out.png")
        pixel = lambda x, y: samples[3 * (592 * y + x):3 * (592 * y + x) + 3]
        self.assertEqual([pixel(60 + 2 * 255, 12), pixel(60 + 2 * 128, 150), pixel(60, 267), pixel(100, 100)],
                         [[255, 0, 0], [0, 255, 0], [0, 0, 255], [0, 0, 0]])

    def test_info_and_help(self):
        self.assertIn("a.pgm: 4x2, 1 channel", run("info", "a.pgm").stdout)
        self.assertIn("blend", run("--help").stdout)
        self.assertIn("--weight", run("blend", "--help").stdout)

    def test_faults(self):
        write_pgm("small.pgm", 2, [1, 2])
        (SCRATCH / "noise.png").write_bytes(b"\x89PNG\r\n\x1a\nnothing")
        (SCRATCH / "cut.jpg").write_bytes(JPEG[:60])
        (SCRATCH / "cut.pgm").write_bytes(b"P5 100 100 255\nx")
        write_pgm("black.pgm", 4, [0] * 8)
        for words, message in [
            ([], "usage"),
            (["frobnicate"], "unknown command"),
            (["add", "a.pgm", "b.pgm"], "no output"),
            (["add", "a.pgm", "-o", "x.png"], "at least 2"),
            (["add", "a.pgm", "small.pgm", "-o", "x.png"], "sizes differ"),
            (["add", "a.pgm", "b.pgm", "--sideways", "-o", "x.png"], "unknown option"),
            (["add", "a.pgm", "b.pgm", "-o"], "needs a value"),
            (["blend", "a.pgm", "b.pgm", "--weight", "heavy", "-o", "x.png"], "wants a number"),
            (["paint", "cats", "-o", "x.png"], "cannot paint"),
            (["paint", "text", "--size", "0x5", "-o", "x.png"], "WIDTHxHEIGHT"),
            (["stats", "a.pgm", "--mask", "small.pgm"], "sizes differ"),
            (["convert", "a.pgm", "--to", "9", "-o", "x.png"], "LOW,HIGH"),
            (["convert", "a.pgm", "--to", "0,9", "--scale", "2", "-o", "x.png"], "do not go with"),
            (["compare", "a.pgm", "b.pgm", "--relation", "alike", "-o", "x.png"], "one of equal, less,"),
            (["threshold", "a.pgm", "--level", "1,2,3", "-o", "x.png"], "1 to 2 numbers"),
            (["hull", "black.pgm", "-o", "x.png"], "no sample of black.pgm reaches 128"),
            (["info", "missing.png"], "missing.png"),
            (["info", "."], "cannot read"),
            (["info", "noise.png"], "noise.png"),
            (["info", "cut.jpg"], "cannot read cut.jpg"),
            (["info", "cut.pgm"], "cut short"),
            (["negate", "a.pgm", "-o", "nowhere/x.png"], "cannot write"),
        ]:
            done = run(*words, status=2)
            self.assertIn(message, done.stderr, words)
            self.assertFalse((SCRATCH / "x.png").exists(), words)


unittest.main(argv=sys.argv[:1])
