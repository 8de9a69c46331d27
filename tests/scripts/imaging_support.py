"""Images and assertions for the tests of the command line's operations on images."""
import random
import struct

from cli_support import CommandLineTest, read_bmp

WHITE, BLACK, RED = (255, 255, 255), (0, 0, 0), (255, 0, 0)
GREYS = [(level,) * 3 for level in range(256)]


def bmp(rows, palette=None, bits=None):
    """A bitmap file of rows from the top, of colours or, with a palette, of its indices."""
    bits = bits or (8 if palette else 24)
    table = b"".join(bytes((*color[::-1], 0)) for color in palette or ())
    lines = []
    for row in reversed(rows):
        if bits == 24:
            line = b"".join(bytes(color[::-1]) for color in row)
        elif bits == 8:
            line = bytes(row)
        else:
            per_byte = 8 // bits
            row = list(row) + [0] * (-len(row) % per_byte)
            line = bytes(sum(index << bits * (per_byte - 1 - i)
                             for i, index in enumerate(row[at:at + per_byte]))
                         for at in range(0, len(row), per_byte))
        lines.append(line + bytes(-len(line) % 4))
    pixels = b"".join(lines)
    offset = 54 + len(table)
    return (struct.pack("<2sIII", b"BM", offset + len(pixels), 0, offset) +
            struct.pack("<IiiHHIIiiII", 40, len(rows[0]), len(rows), 1, bits, 0, 0, 0, 0,
                        len(palette or ()), 0) + table + pixels)


def noise(width, height, seed=1):
    chance = random.Random(seed)
    return [[tuple(chance.randbytes(3)) for _ in range(width)] for _ in range(height)]


def shown(rows, palette):
    return [[palette[index] for index in row] for row in rows]


class ImagingTest(CommandLineTest):
    def image(self, name, rows, place=None, palette=None, bits=None):
        self.file(name, bmp(rows, palette, bits))
        if place:
            x, y, size = place
            self.file(name[:-3] + "bpw", f"{size}\n0\n0\n{-size}\n{x}\n{y}\n")
        return name

    def pixels(self, name):
        """Rows of colours, whatever the depth."""
        rows, palette = read_bmp(self.folder / name)
        return shown(rows, palette) if palette else rows

    def assert_pixels(self, name, expected, what=""):
        have = self.pixels(name)
        self.assertEqual((len(have[0]), len(have)), (len(expected[0]), len(expected)), what)
        wrong = [(x, y) for y, row in enumerate(expected) for x, want in enumerate(row)
                 if have[y][x] != want]
        if wrong:
            x, y = wrong[0]
            self.fail(f"{what}: {len(wrong)} pixels differ, the first at {x}, {y}: "
                      f"{have[y][x]} and not {expected[y][x]}")

    def assert_depth(self, name, bits):
        data = (self.folder / name).read_bytes()
        self.assertEqual(struct.unpack_from("<H", data, 28)[0], bits, name)

    def assert_georeference(self, name, x, y, size):
        lines = (self.folder / (name[:-3] + "bpw")).read_text().split()
        self.assertEqual([float(lines[i]) for i in (4, 5, 0)], [x, y, size])

    def assert_fails(self, arguments, words, code=1):
        """The failure is told, and no file comes or goes."""
        before = {name: (self.folder / name).read_bytes() for name in self.names()}
        _, err = self.run_it(*arguments, code=code)
        for word in words if isinstance(words, tuple) else (words,):
            self.assertIn(word, err, arguments)
        after = {name: (self.folder / name).read_bytes() for name in self.names()}
        self.assertEqual(before, after, arguments)
