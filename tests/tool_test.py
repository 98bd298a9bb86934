#!/usr/bin/env python3
"""The command-line tool: exit statuses, messages, and the samples that it writes.

Usage: tool_test.py TOOL SCRATCH
"""
import base64
import json
import pathlib
import re
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


def write_pgm(name, width, samples, colour=False, wide=False):
    header = 6 if colour else 5, width, len(samples) // width // (3 if colour else 1), 65535 if wide else 255
    (SCRATCH / name).write_bytes(b"P%d\n# made by a test\n%d %d\n%d\n" % header +
                                 struct.pack(">%d%s" % (len(samples), "H" if wide else "B"), *samples))


CHANNELS = {0: 1, 2: 3, 3: 1, 4: 2, 6: 4}  # of the PNG colour types
ADAM7 = [(0, 0, 8, 8), (4, 0, 8, 8), (0, 4, 4, 8), (2, 0, 4, 4), (0, 2, 2, 4), (1, 0, 2, 2), (0, 1, 1, 2)]


def write_png(name, width, samples, colour, depth=8, interlaced=False, extra=()):
    """A PNG without filters; extra are chunks before the data."""
    n = CHANNELS[colour]
    height = len(samples) // width // n

    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    def row(values):
        bits = "".join(format(v, "0%db" % depth) for v in values)
        return b"\0" + bytes(int(bits[i:i + 8].ljust(8, "0"), 2) for i in range(0, len(bits), 8))
    data = b""
    for x0, y0, dx, dy in ADAM7 if interlaced else [(0, 0, 1, 1)]:
        for y in range(y0, height, dy):
            line = [samples[(y * width + x) * n + c] for x in range(x0, width, dx) for c in range(n)]
            data += row(line) if line else b""
    header = struct.pack(">IIBBBBB", width, height, depth, colour, 0, 0, int(interlaced))
    (SCRATCH / name).write_bytes(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) +
                                 b"".join(chunk(*e) for e in extra) + chunk(b"IDAT", zlib.compress(data)) +
                                 chunk(b"IEND", b""))


def read_png(name):
    """Channels and samples of a PNG of 8 or 16 bits, given as a file's name or its bytes."""
    data, at, packed = name if isinstance(name, bytes) else (SCRATCH / name).read_bytes(), 8, b""
    while at < len(data):
        length, kind = struct.unpack(">I4s", data[at:at + 8])
        body = data[at + 8:at + 8 + length]
        if kind == b"IHDR":
            width, height, depth, colour = struct.unpack(">IIBB", body[:10])
            channels = CHANNELS[colour]
        packed += body if kind == b"IDAT" else b""
        at += 12 + length
    step = channels * depth // 8
    raw, out, above = zlib.decompress(packed), [], [0] * (width * step)
    for y in range(height):
        line = raw[y * (width * step + 1):(y + 1) * (width * step + 1)]
        row = []
        for i, x in enumerate(line[1:]):
            a, b = (row[i - step] if i >= step else 0), above[i]
            c = above[i - step] if i >= step else 0
            p = a + b - c
            paeth = min((abs(p - a), 0, a), (abs(p - b), 1, b), (abs(p - c), 2, c))[2]
            row.append((x + (0, a, b, (a + b) // 2, paeth)[line[0]]) & 255)
        out += row
        above = row
    return channels, out if depth == 8 else [256 * h + low for h, low in zip(out[::2], out[1::2])]


def out(*words):
    """Channels and samples of what a command writes."""
    run(*words, "-o", "out.png")
    return read_png("out.png")


def pixel(samples, width, x, y):
    return samples[3 * (width * y + x):3 * (width * y + x) + 3]


class Tool(unittest.TestCase):
    def expect(self, channels, pictures, cases):
        """Commands and the samples that they make of pictures."""
        for words, expected in cases:
            self.assertEqual(out(*words, *pictures), (channels, expected), words)

    A, B = [0, 1, 100, 200, 255, 255, 77, 128], [0, 255, 100, 100, 1, 255, 33, 64]
    WIDE_A = [0, 1, 40000, 30000, 65535, 65535, 257, 32768]
    WIDE_B = [0, 65535, 30000, 40000, 1, 65535, 33, 64]

    @classmethod
    def setUpClass(cls):
        shutil.rmtree(SCRATCH, ignore_errors=True)
        SCRATCH.mkdir(parents=True)
        write_pgm("a.pgm", 4, cls.A)
        write_pgm("b.pgm", 4, cls.B)
        write_pgm("wide_a.pgm", 4, cls.WIDE_A, wide=True)
        write_pgm("wide_b.pgm", 4, cls.WIDE_B, wide=True)

    def test_samples(self):
        for top, names, first, second in [(255, ["a.pgm", "b.pgm"], self.A, self.B),
                                          (65535, ["wide_a.pgm", "wide_b.pgm"], self.WIDE_A, self.WIDE_B)]:
            for words, expected in [
                (["add"], lambda a, b: min(top, a + b)),
                (["add", "--wrap"], lambda a, b: (a + b) & top),
                (["sub"], lambda a, b: max(0, a - b)),
                (["sub", "--wrap"], lambda a, b: (a - b) & top),
                (["diff"], lambda a, b: abs(a - b)),
                (["min"], min),
                (["max"], max),
                (["mul"], lambda a, b: round(a * b / (top + 1))),
                (["blend", "--weight", "0.25"], lambda a, b: round(a / 4 + b * 3 / 4)),
                (["and"], lambda a, b: a & b),
                (["or"], lambda a, b: a | b),
                (["xor"], lambda a, b: a ^ b),
                (["compare"], lambda a, b: 255 * (a > b)),
                (["compare", "--relation", "less-or-equal"], lambda a, b: 255 * (a <= b)),
            ]:
                self.assertEqual(out(*words, *names), (1, [expected(a, b) for a, b in zip(first, second)]), words)
            for words, expected in [
                (["negate"], lambda a: top - a),
                (["min", "--constant", "100"], lambda a: min(a, 100)),
                (["max", "--constant", "100"], lambda a: max(a, 100)),
                (["clamp", "--low", "100", "--high", "200"], lambda a: min(max(a, 100), 200)),
                (["gain", "--scale", "1.5", "--offset=-20"], lambda a: min(top, max(0, round(1.5 * a - 20)))),
                (["crop", "--at", "0,0", "--size", "4x2"], lambda a: a),
                (["compare", "--to", top // 2 + 1, "--relation", "less"], lambda a: 255 * (a < top // 2 + 1)),
                (["compare", "--to", "1", "--relation", "equal"], lambda a: 255 * (a == 1)),
                (["threshold", "--level", "99.5"], lambda a: 255 * (a > 99.5)),
                (["threshold", "--level", f"0,{top // 2 + 1}"], lambda a: 255 * (0 < a <= top // 2 + 1)),
            ]:
                self.assertEqual(out(*words, names[0]), (1, [expected(a) for a in first]), words)

    def test_colour_and_alpha(self):
        write_png("c.png", 2, range(0, 16), 6)
        self.assertEqual(out("negate", "c.png"), (4, [v if v % 4 == 3 else 255 - v for v in range(16)]))
        self.assertEqual(out("compare", "c.png", "--to", "4,5,200", "--relation", "less"),
                         (3, [255 * (v < (4, 5, 200)[v % 4]) for v in range(16) if v % 4 < 3]))
        write_pgm("c.ppm", 2, range(12), colour=True)
        run("add", "c.png", "c.ppm", "-o", "out.png")
        self.assertEqual(read_png("out.png")[1], [v if v % 4 == 3 else v + v // 4 * 3 + v % 4 for v in range(16)])
        self.assertEqual(out("add", "c.ppm", "c.ppm", "c.ppm"), (3, [3 * v for v in range(12)]))
        write_png("p.png", 1, [1, 2, 3, 4], 6)
        white, grey = [255] * 4, [9, 9, 9, 255]
        self.expect(4, ["p.png"], [
            (["border", "--margin", "1", "--colour", "9"], 4 * grey + [1, 2, 3, 4] + 4 * grey),
            (["border", "--margin", "1", "--mode", "const"], 4 * [0, 0, 0, 255] + [1, 2, 3, 4] + 4 * [0, 0, 0, 255]),
            (["border", "--margin", "1", "--colour", "5,6,7,8"], 4 * [5, 6, 7, 8] + [1, 2, 3, 4] + 4 * [5, 6, 7, 8]),
            (["border", "--margin", "1"], 9 * [1, 2, 3, 4]),
            (["crop", "--at", "0,0", "--size", "2x1", "--colour", "255"], [1, 2, 3, 4] + white),
            (["fill", "--colour", "9"], [9, 9, 9, 4]),
            (["fill", "--colour", "9,8,7"], [9, 8, 7, 4]),
            (["fill", "--colour", "9,8,7,6"], [9, 8, 7, 6]),
            (["gain", "--scale", "1,2,3", "--offset", "10"], [11, 14, 19, 4]),
            (["convert", "--scale", "257", "--depth", "16"], [257, 514, 771, 1028]),
            (["convert", "--from", "0,255", "--depth", "16"], [257, 514, 771, 1028]),
        ])

    def test_masks(self):
        colours = [0, 0, 0, 0, 0, 7, 255, 255, 255, 255, 255, 0]  # pixels of nothing, some blue, white, yellow
        write_png("m.png", 4, colours, 2)
        write_png("wide_m.png", 4, [0, 0, 256, 1], 0, 16)
        write_png("clear.png", 4, [0, 255, 1, 255, 0, 0, 0, 0], 4)
        write_pgm("row.pgm", 4, [1, 2, 3, 4])
        write_pgm("ten.pgm", 4, [10] * 4)
        self.expect(1, [], [
            (["mask", "row.pgm", "ten.pgm", "m.png"], [1, 10, 10, 10]),
            (["mask", "row.pgm", "ten.pgm", "m.png", "--invert"], [10, 10, 3, 10]),
            (["mask", "row.pgm", "ten.pgm", "wide_m.png"], [1, 2, 10, 10]),
            (["fill", "row.pgm", "--colour", "10", "--mask", "clear.png"], [1, 10, 3, 4]),
        ])

    def test_kinds_of_png(self):
        """Samples are read as they stand, whatever chunks about colours say."""
        grey, wide = list(range(0, 250, 2)), list(range(300, 65535, 521))[:125]
        palette = bytes(range(16 * 3))
        looked_up = [v for i in range(125) for v in palette[3 * (i % 16):3 * (i % 16) + 3]]
        gamma, see_through = (b"gAMA", struct.pack(">I", 100000)), (b"tRNS", b"\x00\x80")
        for colour, depth, samples, extra, expected in [
            (0, 8, grey, [gamma], (1, grey)),
            (0, 16, wide, [gamma], (1, wide)),
            (2, 8, grey * 3, [gamma], (3, grey * 3)),
            (6, 16, wide * 4, [gamma], (4, wide * 4)),
            (4, 8, grey * 2, [], (2, grey * 2)),
            (0, 1, [i % 2 for i in range(125)], [], (1, [i % 2 * 255 for i in range(125)])),
            (0, 2, [i % 4 for i in range(125)], [], (1, [i % 4 * 85 for i in range(125)])),
            (0, 4, [i % 16 for i in range(125)], [], (1, [i % 16 * 17 for i in range(125)])),
            (3, 4, [i % 16 for i in range(125)], [(b"PLTE", palette)], (3, looked_up)),
            (3, 8, [i % 16 for i in range(125)], [(b"PLTE", palette)], (3, looked_up)),
            (3, 4, [i % 2 for i in range(125)], [(b"PLTE", palette), see_through],
             (4, [v for i in range(125) for v in ([0, 1, 2, 0], [3, 4, 5, 128])[i % 2]])),
        ]:
            for interlaced in False, True:
                write_png("kind.png", 25, samples, colour, depth, interlaced, extra)
                run("crop", "kind.png", "--at", "0,0", "--size", "25x5", "-o", "out.png")
                self.assertEqual(read_png("out.png"), expected, (colour, depth, interlaced))
        self.assertIn("4 channels of 8 bits (PNG, palette of 4 bits, transparent colours, interlaced)",
                      run("info", "kind.png").stdout)

    def test_other_files(self):
        (SCRATCH / "grey.jpg").write_bytes(JPEG)
        self.assertEqual(out("negate", "grey.jpg"), (1, [55] * 64))
        for name, content, expected in [
            ("t1.pbm", b"P1 3 2\n# bits\n101 0 1 0", [0, 255, 0, 255, 0, 255]),
            ("t4.pbm", b"P4 3 2\n\xa0\x40", [0, 255, 0, 255, 0, 255]),
            ("t2.pgm", b"P2 # grey\n2 1 255 7\n9", [7, 9]),
            ("t2wide.pgm", b"P2 2 1 65535 7 900", [7, 900]),
            ("t3.ppm", b"P3 1 1 255 1 2 3", [1, 2, 3]),
        ]:
            (SCRATCH / name).write_bytes(content)
            self.assertEqual(out("min", name, "--constant", "65535" if "wide" in name else "255")[1], expected, name)
        for source, suffix in ("a.pgm", "pgm"), ("wide_a.pgm", "pgm"), ("t3.ppm", "ppm"), ("grey.jpg", "jpg"):
            run("gain", source, "-o", "copy." + suffix)
            self.assertEqual(set(out("diff", source, "copy." + suffix)[1]), {0}, source)
        piped = subprocess.run([TOOL, "negate", "-", "-o", "-"], input=(SCRATCH / "a.pgm").read_bytes(),
                               capture_output=True, check=True)
        self.assertEqual(read_png(piped.stdout)[1], [255 - v for v in self.A])

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
        channels, samples = out("sheet", "gradient.png", "a.pgm", "--cell", "40x30")
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
        self.expect(1, ["r.pgm"], [
            (["resize", "--size", "2x2"], [1, 3, 4, 6]),
            (["resize", "--factor", "2,1"], [1, 1, 2, 2, 3, 3, 4, 4, 5, 5, 6, 6]),
            (["resize", "--factor", "-1"], [6, 5, 4, 3, 2, 1]),
            (["resize", "--factor=0.01"], [5]),
        ])
        for words in [], ["--size=2x2", "--factor=2"], ["--factor=0"], ["--factor=1,2,3"], ["--factor=1e9"]:
            run("resize", "r.pgm", *words, "-o", "out.png", status=2)

    def test_matrix(self):
        write_png("c.png", 2, [10, 20, 30, 40, 200, 100, 0, 7], 6)
        self.assertEqual(out("matrix", "c.png", "--by", "swap"), (4, [30, 20, 10, 40, 0, 100, 200, 7]))
        self.assertEqual(out("matrix", "c.png", "--by", "1,1,0,0,-1,0.25,0,0,2")[1], [30, 0, 60, 40, 255, 0, 0, 7])
        self.assertEqual(out("matrix", "c.png", "--by", "gray")[1][:4], [18] * 3 + [40])
        write_png("wide_c.png", 1, [1000, 20000, 65535], 2, 16)
        self.assertEqual(out("matrix", "wide_c.png", "--by", "0,0,1,0,4,0,0.5,0,0"), (3, [65535, 65535, 500]))
        for by in "other", "1,2,3", "1,2,3,4,5,6,7,8,9,10":
            self.assertIn("--by", run("matrix", "c.png", "--by", by, "-o", "out.png", status=2).stderr)
        self.assertIn("colour", run("matrix", "a.pgm", "--by", "gray", "-o", "out.png", status=2).stderr)

    def test_filters(self):
        """Of pictures of 8 and 16 bits, grey and colour; each colour by itself, alpha as it was."""
        w, h = 7, 5
        full = [(dx, dy) for dy in (-1, 0, 1) for dx in (-1, 0, 1)]
        plus = [(dx, dy) for dx, dy in full if dx == 0 or dy == 0]
        long = [(dx, dy) for dy in (-1, 0, 1) for dx in range(-2, 3)]
        round5 = [(dx, dy) for dy in range(-2, 3) for dx in range(-2, 3) if dx * dx + dy * dy < 8]
        write_png("element.png", 3, [0, 255, 0, 255, 255, 255, 254, 255, 0], 0)

        def over(plane, window, of, beyond=None):
            """Beyond the edges the picture's mirror, or a value that never wins."""
            def at(x, y):
                if beyond is not None and not (0 <= x < w and 0 <= y < h):
                    return beyond
                x, y = abs(x), abs(y)
                return plane[min(y, 2 * h - 2 - y) * w + min(x, 2 * w - 2 - x)]
            return [of([at(x + dx, y + dy) for dx, dy in window]) for y in range(h) for x in range(w)]
        opened = lambda p, window: over(over(p, window, min), window, max, -1)
        closed = lambda p, window: over(over(p, window, max), window, min, 65536)

        for colour, depth in (0, 8), (0, 16), (6, 8), (6, 16):
            n, top = CHANNELS[colour], 2 ** depth - 1
            samples = [(i * i * 7919 + i * 104729) % (top + 1) for i in range(w * h * n)]
            write_png("f.png", w, samples, colour, depth)
            for words, expected in [
                (["box", "--size", "5x3"], lambda p: over(p, long, lambda v: round(sum(v) / 15))),
                (["gauss", "--size", "3x3", "--sigma", "1000"], lambda p: over(p, full, lambda v: round(sum(v) / 9))),
                (["firefly", "--threshold", top], lambda p: p),
                (["erode", "--size", "5x3"], lambda p: over(p, long, min)),
                (["min", "--window", "5x3"], lambda p: over(p, long, min)),
                (["max", "--window", "3x3"], lambda p: over(p, full, max)),
                (["dilate", "--size", "3x3", "--shape", "cross"], lambda p: over(p, plus, max)),
                (["dilate", "--shape", "ellipse"], lambda p: over(p, round5, max)),
                (["erode", "--mask", "element.png"], lambda p: over(p, plus, min)),
                (["open", "--size", "3x3"], lambda p: opened(p, full)),
                (["close", "--size", "3x3", "--shape", "cross"], lambda p: closed(p, plus)),
                (["tophat", "--size", "5x3"], lambda p: [a - b for a, b in zip(p, opened(p, long))]),
                (["bothat", "--mask", "element.png"], lambda p: [b - a for a, b in zip(p, closed(p, plus))]),
            ]:
                found = out(*words, "f.png")[1]
                for c in range(n):
                    plane = samples[c::n]
                    self.assertEqual(found[c::n], plane if c == 3 else expected(plane), (words, colour, depth, c))
        spot = [10] * 12 + [200] + [10] * 12
        write_pgm("spot.pgm", 5, spot)
        for words in [], ["--threshold", "100"]:
            self.assertEqual(out("firefly", *words, "spot.pgm")[1], [10] * 25)
        found = out("gauss", "--sigma", "1,2", "spot.pgm")[1]
        self.assertLess(found[11], found[7])  # steeper across than down
        for words in [["box", "--size", "1x1"], ["gauss", "--sigma", "0"], ["gauss", "--sigma", "1,2,3"],
                      ["erode", "--mask", "element.png", "--size", "3x3"], ["open", "--mask", "spot.pgm"]]:
            run(*words, "spot.pgm", "-o", "out.png", status=2)

    def test_hull(self):
        write_pgm("dot.pgm", 4, [0, 0, 0, 0, 0, 128, 127, 0])
        self.assertIn("1 pixels\n", run("hull", "dot.pgm", "-o", "out.png").stdout)
        self.assertEqual(read_png("out.png"), (3, 5 * [0, 0, 0] + [255, 64, 64] + 2 * [0, 0, 0]))
        self.assertIn("2 pixels\n", run("hull", "dot.pgm", "--level", 127, "-o", "out.png").stdout)

    def test_stats(self):
        write_pgm("s.pgm", 4, [9, 200, 30, 40, 50, 60, 9, 200])
        write_pgm("half.pgm", 4, [0] * 4 + [1] * 4)
        self.assertIn("9           0,0   200           1,0    74.750             598", run("stats", "s.pgm").stdout)
        both = json.loads(run("stats", "--json", "--mask", "half.pgm", "s.pgm", "wide_a.pgm").stdout)
        least, largest = {"value": 9, "x": 2, "y": 1}, {"value": 200, "x": 3, "y": 1}
        self.assertEqual(both[0]["channels"], [{"min": least, "max": largest, "mean": 79.75, "sum": 319}])
        self.assertEqual([p["picture"] for p in both], ["s.pgm", "wide_a.pgm"])
        self.assertEqual((both[1]["depth"], both[1]["channels"][0]["max"]["value"], both[1]["channels"][0]["sum"]),
                         (16, 65535, sum(self.WIDE_A[4:])))
        write_pgm("black.pgm", 4, [0] * 8)
        nothing = json.loads(run("stats", "--json", "--mask", "black.pgm", "s.pgm").stdout)
        self.assertEqual(nothing[0]["channels"], [{"min": None, "max": None, "mean": None, "sum": 0}])

    def test_convert(self):
        samples = [9, 200, 30, 40, 50, 60, 9, 200]
        write_pgm("s.pgm", 4, samples)
        write_png("rgb.png", 2, [10, 20, 30, 110, 80, 40], 2)
        for name, words, expected in [
            ("s.pgm", [], [round((v - 9) * 255 / 191) for v in samples]),
            ("s.pgm", ["--to", "10,20"], [10, 20, 11, 12, 12, 13, 10, 20]),
            ("s.pgm", ["--from", "0,102"], [22, 255, 75, 100, 125, 150, 22, 255]),
            ("s.pgm", ["--from", "30,60", "--to", "100,200"], [100, 200, 100, 133, 167, 200, 100, 200]),
            ("s.pgm", ["--from", "30,60", "--to", "100,200", "--refit"], [30, 255, 100, 133, 167, 200, 30, 255]),
            ("s.pgm", ["--from", "40,40", "--to", "5,9"], [5] * 8),
            ("s.pgm", ["--scale", "0.5", "--offset", "100"], [round(v / 2 + 100) for v in samples]),
            ("s.pgm", ["--depth", "16", "--from", "0,255"], [257 * v for v in samples]),
            ("wide_a.pgm", ["--depth", "8", "--from", "0,65535"], [round(v / 257) for v in self.WIDE_A]),
            ("wide_a.pgm", ["--depth", "8", "--refit"], [round(v / 257) for v in self.WIDE_A]),
            ("rgb.png", [], [0, 26, 51, 255, 178, 76]),
        ]:
            self.assertEqual(out("convert", name, *words)[1], expected, (name, words))

    def test_threshold_methods(self):
        for name, depth, low, high in ("two.pgm", 8, 60, 200), ("wide_two.pgm", 16, 20000, 50000):
            page = [low if (x - 16) ** 2 + (y - 16) ** 2 < 16 else high for y in range(32) for x in range(32)]
            write_pgm(name, 32, page, wide=depth == 16)
            found = json.loads(run("otsu", "--json", name).stdout)
            self.assertEqual((found[0]["picture"], found[0]["depth"]), (name, depth))
            level, = found[0]["levels"]
            self.assertTrue(low <= level < high)
            self.assertEqual(run("otsu", name).stdout, f"{level}\n")
            white = [255 * (v == high) for v in page]
            for words in ["--method", "otsu"], ["--level", level], ["--method", "usto"]:
                self.assertEqual(out("threshold", name, *words), (1, white), (name, words))
            blurred = out("threshold", name, "--method", "blur")[1]
            self.assertLess(0, blurred.count(0))
            self.assertLess(sum(a != b for a, b in zip(blurred, white)), 24)
            for offset, expected in (-1, 255), (1, 0):  # where all of the window is alike
                words = ["threshold", name, "--method", "adaptive", f"--offset={offset}"]
                self.assertEqual(out(*words)[1][:5], [expected] * 5)

    def squares(self):
        """Paper with a dark square of 8 by 8 in a corner, touching the left edge, and a light one of 6 by 10."""
        page = [120] * (40 * 30)
        for x0, y0, w, h, v in (0, 0, 8, 8, 20), (20, 12, 6, 10, 220):
            for y in range(y0, y0 + h):
                page[40 * y + x0:40 * y + x0 + w] = [v] * w
        write_pgm("squares.pgm", 40, page)
        return page

    def test_mser(self):
        self.squares()
        write_pgm("left.pgm", 40, ([255] * 20 + [0] * 20) * 30)
        dark = {"polarity": "dark", "level": 20, "area": 64, "variation": 0,
                "box": {"x": 0, "y": 0, "width": 8, "height": 8}}
        light = {"polarity": "light", "level": 220, "area": 60, "variation": 0,
                 "box": {"x": 20, "y": 12, "width": 6, "height": 10}}
        for words, expected in [([], [dark, light]), (["--polarity", "light"], [light]), (["--area", "61,99"], [dark]),
                                (["--mask", "left.pgm"], [dark]), (["--area", "65,99"], [])]:
            found = json.loads(run("mser", "squares.pgm", "--json", *words).stdout)
            for region in found:
                e = region.pop("ellipse")
                box = region["box"]
                self.assertEqual((e["x"], e["y"]), (box["x"] + (box["width"] - 1) / 2,
                                                    box["y"] + (box["height"] - 1) / 2))
                for semi, side in zip((e["semi1"], e["semi2"]), sorted((box["width"], box["height"]))):
                    self.assertAlmostEqual(semi, 2 * ((side ** 2 - 1) / 12) ** 0.5, places=5)
            self.assertEqual(found, expected, words)
        samples = out("mser", "squares.pgm", "--draw", "box")[1]
        self.assertEqual([pixel(samples, 40, *at) for at in [(0, 7), (20, 21), (25, 12), (22, 15), (30, 3)]],
                         [[0, 224, 96], [255, 64, 64], [255, 64, 64], [220] * 3, [120] * 3])

    def test_watershed_and_tree(self):
        page = self.squares()
        for words, inside in [(["--level", "20"], lambda v: v == 20), (["--level", "119"], lambda v: v == 20),
                              (["--level", "220", "--polarity", "light"], lambda v: v == 220),
                              (["--level", "19"], lambda v: False),
                              (["--level", "20", "--least", "65"], lambda v: False)]:
            channels, samples = out("watershed", "squares.pgm", *words)
            self.assertEqual(channels, 3)
            colours = list(zip(*[iter(samples)] * 3))
            self.assertEqual([c != (0, 0, 0) for c in colours], [inside(v) for v in page], words)
            self.assertLessEqual(len(set(colours)), 2)
        run("paint", "shapes", "-o", "shapes.png")
        self.assertGreater(len(set(zip(*[iter(out("watershed", "shapes.png", "--polarity", "light")[1])] * 3))), 10)
        for polarity, levels, largest in [("dark", [(20, 1), (120, 1), (220, 1)], (1140, 120)),
                                          ("light", [(20, 1), (120, 1), (220, 1)], (1136, 120))]:
            tree = json.loads(run("tree", "squares.pgm", "--polarity", polarity, "--json").stdout)
            self.assertEqual([(i["level"], i["regions"]) for i in tree["levels"]], levels)
            self.assertEqual((tree["regions"], tree["leaves"], tree["depth"]), (3, 1, 3))
            self.assertEqual((tree["largest"]["area"], tree["largest"]["level"]), largest)
        write_pgm("flat.pgm", 2, [7, 7])
        self.assertIsNone(json.loads(run("tree", "flat.pgm", "--json").stdout)["largest"])

    def test_hist(self):
        write_pgm("h.pgm", 4, [0, 15, 16, 255, 255, 255, 100, 100])
        self.assertEqual(json.loads(run("hist", "--json", "--bins", 16, "h.pgm").stdout),
                         [[2, 1, 0, 0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 3]])
        self.assertIn("  0.. 85          3\n 86..170          2\n", run("hist", "--bins", 3, "h.pgm").stdout)
        wide = [0, 255, 256, 511, 32767, 32768, 65279, 65280, 65535]
        write_pgm("wide_h.pgm", 3, wide, wide=True)
        for bins in 256, 2, 1000:
            self.assertEqual(json.loads(run("hist", "--json", "--bins", bins, "wide_h.pgm").stdout)[0],
                             [sum(v * bins // 65536 == i for v in wide) for i in range(bins)])
        write_pgm("h.ppm", 1, [255, 0, 0, 255, 128, 0], colour=True)
        write_pgm("last.pgm", 1, [0, 9])
        counts = json.loads(run("hist", "h.ppm", "--json", "--mask", "last.pgm", "-o", "out.png").stdout)
        self.assertEqual([c.index(1) for c in counts], [255, 128, 0])
        self.assertEqual([sum(c) for c in counts], [1, 1, 1])
        channels, samples = read_png("out.png")
        places = (60 + 2 * 255, 12), (60 + 2 * 128, 150), (60, 267), (100, 100)
        self.assertEqual([pixel(samples, 592, *at) for at in places],
                         [[255, 0, 0], [0, 255, 0], [0, 0, 255], [0, 0, 0]])

    def test_help(self):
        self.assertIn("a.pgm: 4x2, 1 channel of 8 bits (PNM, grey)", run("info", "a.pgm").stdout)
        self.assertRegex(run("--version").stdout, r"^jorm-tool \d+\.\d+\.\d+\n$")
        commands = [line.split()[0] for line in run("--help").stdout.split("\n\n")[1].splitlines()
                    if line.startswith("  ") and line[2] != " "]
        self.assertIn("blend", commands)
        for command in commands:
            text = run(command, "--help").stdout
            for option in re.findall(r"^  (?:-o, )?(--\w+.*)$", text, re.MULTILINE):
                self.assertRegex(option, r"^--\w+( [\w,\[\]]+)?  ")
        self.assertIn("(0.5 if not given)", run("blend", "--help").stdout)
        self.assertIn("(required)", " ".join(run("crop", "--help").stdout.split()))

    def test_manual_and_completion(self):
        """The files in docs/ are what the tables give."""
        docs = pathlib.Path(__file__).resolve().parent.parent / "docs"
        for option, name in ("--manual", "jorm-tool.1"), ("--completion", "jorm-tool.bash"):
            self.assertEqual(run(option).stdout, (docs / name).read_text(), "scripts/update-manual brings it up to date")
        if not shutil.which("bash"):
            return
        for words, expected in [(["bl"], ["blend"]), (["blend", "--w"], ["--weight"]), (["blend", "x"], []),
                                (["crop", "--mode", "re"], ["replicate", "reflect", "reflect101"]),
                                (["paint", "sh"], ["shapes"])]:
            script = f"""source '{docs / "jorm-tool.bash"}'; COMP_WORDS=(jorm-tool {" ".join(words)})
                COMP_CWORD={len(words)}; _jorm_tool; printf '%s\n' "${{COMPREPLY[@]}}" """
            done = subprocess.run(["bash", "-c", script], capture_output=True, text=True, check=True)
            self.assertEqual(done.stdout.split(), expected, words)

    def test_faults(self):
        def bytes_of(name):
            return (SCRATCH / name).read_bytes()
        write_pgm("small.pgm", 2, [1, 2])
        write_pgm("rgb.ppm", 4, [0] * 24, colour=True)
        write_pgm("black.pgm", 4, [0] * 8)
        write_png("alpha.png", 1, [1, 2, 3, 4], 6)
        run("paint", "blobs", "--size", "64x48", "-o", "whole.jpg")
        run("paint", "blobs", "--size", "64x48", "-o", "whole.png")
        cmyk = bytes.fromhex("ffd8ffc0001408000800080401110002110003110004110 0ffda000e0401000200030004000 03f00ffd9"
                             .replace(" ", ""))
        for name, content in [
            ("noise.png", b"\x89PNG\r\n\x1a\nnothing"), ("cut_head.jpg", JPEG[:60]), ("cmyk.jpg", cmyk),
            ("cut.jpg", bytes_of("whole.jpg")[:-300]), ("cut.png", bytes_of("whole.png")[:-300]),
            ("endless.png", bytes_of("whole.png")[:-12]), ("cut.pgm", b"P5 100 100 255\nx"),
            ("ten_bits.pgm", b"P5 1 1 1023\n\0\0"), ("odd.pgm", b"P2 2 1 255 7 -9"), ("empty.png", b""),
            ("text.png", b"some text"),
        ]:
            (SCRATCH / name).write_bytes(content)
        (SCRATCH / "inside").mkdir(exist_ok=True)
        shutil.copy(SCRATCH / "alpha.png", SCRATCH / "inside")
        to = ["-o", "x.png"]
        for words, message in [
            ([], "usage"),
            (["frobnicate"], "unknown command"),
            (["add", "a.pgm", "b.pgm"], "--output is required"),
            (["add", "a.pgm", *to], "at least 2"),
            (["add", "a.pgm", "small.pgm", *to], "sizes differ"),
            (["add", "a.pgm", "rgb.ppm", *to], "channels differ"),
            (["add", "a.pgm", "wide_a.pgm", *to], "depths differ"),
            (["add", "a.pgm", "b.pgm", "--sideways", *to], "unknown option"),
            (["add", "a.pgm", "b.pgm", "-o"], "needs a value"),
            (["add", "a.pgm", "b.pgm", "-o", "x.gif"], "cannot tell"),
            (["add", "a.pgm", "b.pgm", "--wrap", "--wrap", *to], "--wrap is given twice"),
            (["min", "a.pgm", *to], "another picture or --constant"),
            (["clamp", "a.pgm", "--low", "9", "--high", "8", *to], "--low is above --high"),
            (["blend", "a.pgm", "b.pgm", "--weight", "heavy", *to], "wants a number"),
            (["blend", "a.pgm", "b.pgm", "--weight", "2", *to], "from 0 to 1"),
            (["paint", "cats", *to], "cannot paint"),
            (["paint", "text", "--size", "0x5", *to], "WIDTHxHEIGHT"),
            (["border", "a.pgm", "--mode", "mirror", *to], "one of const"),
            (["border", "a.pgm", "--mode", "wrap", "--colour", "3", *to], "--mode const only"),
            (["border", "a.pgm", "--colour", "1,2", *to], "--colour wants 1 value "),
            (["border", "alpha.png", "--colour", "1,2", *to], "1 or 3 values (with alpha 4)"),
            (["fill", "a.pgm", "--colour", "256", *to], "from 0 to 255"),
            (["fill", "a.pgm", "--colour", "1,", *to], "numbers with commas"),
            (["stats", "a.pgm", "--mask", "small.pgm"], "sizes differ"),
            (["convert", "a.pgm", "--to", "9", *to], "LOW,HIGH"),
            (["convert", "a.pgm", "--to", "0,9", "--scale", "2", *to], "do not go with"),
            (["compare", "a.pgm", *to], "another picture or --to"),
            (["threshold", "a.pgm", "--level", "1,2,3", *to], "1 or 2 numbers"),
            (["threshold", "a.pgm", "--level", "256", *to], "from 0 to 255"),
            (["threshold", "a.pgm", *to], "--level is required, or a --method"),
            (["threshold", "a.pgm", "--level", "3", "--method", "otsu", *to], "does not go with"),
            (["threshold", "a.pgm", "--offset", "3", "--method", "otsu", *to], "adaptive only"),
            (["max", "a.pgm", "--constant", "3", "--window", "3x3", *to], "another picture or --constant or --window"),
            (["mser", "a.pgm", "--draw", "hull"], "--draw needs -o"),
            (["mser", "a.pgm", "--delta", "0"], "from 1 to 254"),
            (["hull", "black.pgm", *to], "no sample of black.pgm reaches 128"),
            (["info", "missing.png"], "cannot read missing.png: No such file"),
            (["info", "."], "it is a folder"),
            (["info", "empty.png"], "it is empty"),
            (["info", "text.png"], "not a PNG, JPEG or PNM"),
            (["info", "noise.png"], "noise.png"),
            (["info", "cut_head.jpg"], "cannot read cut_head.jpg"),
            (["info", "cut.jpg"], "cannot read cut.jpg: it is cut short"),
            (["info", "cmyk.jpg"], "CMYK"),
            (["info", "cut.png"], "cannot read cut.png: it is cut short"),
            (["info", "endless.png"], "it is cut short"),
            (["info", "cut.pgm"], "cut short"),
            (["info", "ten_bits.pgm"], "255 or 65535"),
            (["info", "odd.pgm"], "not a number"),
            (["negate", "a.pgm", "-o", "nowhere/x.png"], "cannot write"),
            (["negate", "a.pgm", "b.pgm", *to], "go into a folder"),
            (["negate", "a.pgm", "sub/a.pgm", "-o", "out"], "two pictures would be written"),
            (["negate", "inside/alpha.png", "-o", "inside"], "would be overwritten"),
            (["gain", "alpha.png", "-o", "x.jpg"], "no alpha"),
            (["gain", "wide_a.pgm", "-o", "x.jpg"], "8 bits per sample"),
            (["gain", "rgb.ppm", "-o", "x.pgm"], "one channel"),
        ]:
            done = run(*words, status=2)
            self.assertIn(message, done.stderr, words)
            for suffix in "png", "jpg", "pgm":
                self.assertFalse((SCRATCH / ("x." + suffix)).exists(), words)
        self.assertEqual((SCRATCH / "inside/alpha.png").read_bytes(), (SCRATCH / "alpha.png").read_bytes())


unittest.main(argv=sys.argv[:1])
