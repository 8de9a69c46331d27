#!/usr/bin/env python3
"""Resizing, contrast, blending and masks on the command line, compared with values computed here
and, where they are installed, with GDAL and ImageMagick.

Usage: imaging_cli_test.py [EMULATOR] PROGRAM
"""
import math
import shutil
import struct
import subprocess
import unittest

from cli_support import main, read_bmp
from imaging_support import BLACK, GREYS, RED, WHITE, ImagingTest, noise

CODED = (struct.pack("<2sIII", b"BM", 70, 0, 62) +
         struct.pack("<IiiHHIIiiII", 40, 3, 2, 1, 8, 1, 8, 0, 0, 2, 0) +
         bytes((0, 0, 0, 0, 255, 255, 255, 0)) + bytes((3, 1, 0, 0, 3, 0, 0, 1)))


def waves(width, height):
    """Smooth colours, so that a place shows in them."""
    return [[(int(128 + 100 * math.sin(x / 9)), int(128 + 100 * math.cos(y / 7)),
              (x * 5 + y * 3) % 256) for x in range(width)] for y in range(height)]


class Commands(ImagingTest):
    COMMANDS = {"resize": ("--width", "2", "a.bmp"), "balance": ("a.bmp",),
                "blend": ("a.bmp", "a.bmp"), "mask": ("a.bmp", "a.bmp"), "mosaic": ("a.bmp",),
                "rectify": ("points.txt", "a.bmp")}

    def test_help(self):
        out, _ = self.run_it("--help")
        for command in self.COMMANDS:
            self.assertIn(f"\n  {command} ", out)
            self.assertIn("--compress", self.run_it(command, "--help")[0])

    def test_inputs_that_are_no_images(self):
        self.file("points.txt", "0 0 0 0\n9 0 9 0\n0 9 0 -9\n")
        for command, arguments in self.COMMANDS.items():
            for content, words in ((None, "a.bmp: "), (b"BM" + bytes(90), "damaged"),
                                   (CODED, "run-length coded")):
                if content is None:
                    (self.folder / "a.bmp").unlink(missing_ok=True)
                else:
                    self.file("a.bmp", content)
                    self.file("a.bpw", "1\n0\n0\n-1\n0\n0\n")
                self.assert_fails((command, *arguments, "out.bmp"), words)

    def test_outputs_that_cannot_be(self):
        self.image("a.bmp", noise(3, 2), (0, 0, 1))
        self.file("points.txt", "0 0 0 0\n9 0 9 0\n0 9 0 -9\n")
        for command, arguments in self.COMMANDS.items():
            for output, words in (("no/out.bmp", "no folder"), ("out", "--type"),
                                  ("out.ecw", "cannot write ecw")):
                self.assert_fails((command, *arguments, output), words)
            for option, word in ((("--compress", "lzw"), "no TIFF file"),
                                 (("--type", "webp"), "no image format"),
                                 (("--nonsense",), "nonsense")):
                self.assert_fails((command, *option, *arguments, "out.bmp"), word, code=2)
            self.assert_fails((command,), "required", code=2)

    def test_outputs_of_other_kinds(self):
        self.image("a.bmp", waves(40, 30), (100, 200, 2))
        for options, name, kind, companion in (
                (("--compress", "deflate"), "out.tif", "tif", "out.tfw"),
                (("--type", "bil"), "out.dat", "bil", "out.hdr"),
                (("--quality", "90"), "out.jpg", "jpg", "out.jgw"),
                ((), "out.gif", "gif", "out.gfw")):
            self.run_it("balance", *options, "a.bmp", name)
            saved = "out.bil" if kind == "bil" else name
            out, _ = self.run_it("info", saved)
            self.assertIn(f"type         {kind}\n", out)
            self.assertIn("40 x 30", out)
            self.assertIn("upper left   100 200\n  pixel size   2\n", out)
            self.assertIn(companion, self.names())


class Blend(ImagingTest):
    MODES = {"normal": lambda a, b: b, "multiply": lambda a, b: a * b / 255,
             "screen": lambda a, b: 255 - (255 - a) * (255 - b) / 255,
             "overlay": lambda a, b: (2 * a * b / 255 if a < 128 else
                                      255 - 2 * (255 - a) * (255 - b) / 255),
             "darken": min, "lighten": max, "difference": lambda a, b: abs(a - b),
             "add": lambda a, b: min(a + b, 255)}

    def test_modes(self):
        first, second = noise(23, 9, 1), noise(23, 9, 2)
        self.image("a.bmp", first)
        self.image("b.bmp", second)
        for mode, mix in self.MODES.items():
            for weight in (0, 0.3, 1):
                self.run_it("blend", "--mode", mode.upper(), "--weight", str(weight), "a.bmp",
                            "b.bmp", "out.bmp")
                for row, below, above in zip(self.pixels("out.bmp"), first, second):
                    for have, a, b in zip(row, below, above):
                        for channel in range(3):
                            mixed = mix(a[channel], b[channel])
                            want = a[channel] * (1 - weight) + mixed * weight
                            # Where the sum is whole, the last bit decides on truncation.
                            self.assertLessEqual(have[channel], want + 1e-9, (mode, weight))
                            self.assertGreater(have[channel], want - 1 - 1e-9, (mode, weight))

    def test_key_color(self):
        self.image("a.bmp", [[(10, 20, 30), (40, 50, 60)]])
        self.image("b.bmp", [[RED, (0, 0, 0)]])
        self.run_it("blend", "--weight", "1", "--key", "255,0,0", "a.bmp", "b.bmp", "out.bmp")
        self.assert_pixels("out.bmp", [[(10, 20, 30), BLACK]])

    def test_palettes(self):
        # A mixture that is in neither palette.
        self.image("a.bmp", [[0, 1]], palette=[RED, WHITE])
        self.image("b.bmp", [[(0, 0, 200), (0, 0, 201)]])
        self.run_it("blend", "a.bmp", "b.bmp", "out.bmp")
        self.assert_pixels("out.bmp", [[(127, 0, 100), (127, 127, 228)]])
        self.image("a.bmp", [[10, 20]], palette=GREYS)
        self.image("b.bmp", [[100, 200]], palette=GREYS)
        self.run_it("blend", "a.bmp", "b.bmp", "out.bmp")
        self.assert_pixels("out.bmp", [[(55,) * 3, (110,) * 3]])
        self.assert_depth("out.bmp", 8)

    def test_georeference(self):
        self.image("a.bmp", noise(3, 2))
        self.image("b.bmp", noise(3, 2), (7, 8, 2))
        self.image("c.bmp", noise(3, 2), (70, 80, 5))
        self.run_it("blend", "a.bmp", "a.bmp", "out.bmp")
        self.assertNotIn("out.bpw", self.names())
        self.run_it("blend", "a.bmp", "b.bmp", "out.bmp")
        self.assert_georeference("out.bmp", 7, 8, 2)
        self.run_it("blend", "c.bmp", "b.bmp", "out.bmp")
        self.assert_georeference("out.bmp", 70, 80, 5)

    def test_wrong_calls(self):
        self.image("a.bmp", noise(3, 2))
        self.image("b.bmp", noise(2, 3))
        self.assert_fails(("blend", "a.bmp", "b.bmp", "out.bmp"),
                          "b.bmp: it has 2 x 3 pixels, and a.bmp 3 x 2")
        for options, word in ((("--weight", "1.5"), "from 0 to 1"),
                              (("--mode", "burn"), "multiply"),
                              (("--key", "1,2"), "red,green,blue"),
                              (("--key", "1,2,256"), "red,green,blue")):
            self.assert_fails(("blend", *options, "a.bmp", "a.bmp", "out.bmp"), word, code=2)


class Mask(ImagingTest):
    IMAGE = [[(1, 2, 3), (4, 5, 6), (7, 8, 9)]]
    PAINT = (9, 99, 199)

    def mask(self, *options):
        self.run_it("mask", "--color", "9,99,199", *options, "a.bmp", "mask.bmp", "out.bmp")

    def test_paints_black_or_white_and_pure_colors_always(self):
        self.image("a.bmp", self.IMAGE, (7, 8, 2))
        self.image("mask.bmp", [[BLACK, WHITE, RED]])
        self.mask()
        self.assert_pixels("out.bmp", [[self.PAINT, (4, 5, 6), self.PAINT]])
        self.assert_georeference("out.bmp", 7, 8, 2)
        self.mask("--invert")
        self.assert_pixels("out.bmp", [[(1, 2, 3), self.PAINT, self.PAINT]])

    def test_masks_of_other_depths(self):
        self.image("a.bmp", self.IMAGE)
        for bits in (1, 4, 8):
            self.image("mask.bmp", [[0, 1, 0]], palette=[WHITE, BLACK], bits=bits)
            self.mask()
            self.assert_pixels("out.bmp", [[(1, 2, 3), self.PAINT, (7, 8, 9)]], bits)

    def test_palette_is_kept_where_it_has_the_paint(self):
        self.image("a.bmp", [[0, 1, 1]], palette=[RED, (0, 90, 0), self.PAINT])
        self.image("mask.bmp", [[BLACK, BLACK, WHITE]])
        self.mask()
        self.assert_depth("out.bmp", 8)
        self.assert_pixels("out.bmp", [[self.PAINT, self.PAINT, (0, 90, 0)]])
        self.image("a.bmp", [[0, 1, 1]], palette=[RED, (0, 90, 0)])
        self.mask()
        self.assert_depth("out.bmp", 24)
        self.assert_pixels("out.bmp", [[self.PAINT, self.PAINT, (0, 90, 0)]])

    def test_sizes_must_agree(self):
        self.image("a.bmp", self.IMAGE)
        self.image("mask.bmp", [[BLACK, BLACK]])
        self.assert_fails(("mask", "a.bmp", "mask.bmp", "out.bmp"),
                          "mask.bmp: it has 2 x 1 pixels, and a.bmp 3 x 1")


class Balance(ImagingTest):
    def table(self, *options):
        """What becomes of each grey of a ramp with 100 pixels of every level from 50 to 149."""
        self.image("a.bmp", [[level] * 100 for level in range(50, 150)], palette=GREYS)
        self.run_it("balance", *options, "a.bmp", "out.bmp")
        rows, _ = read_bmp(self.folder / "out.bmp")
        self.assert_depth("out.bmp", 8)
        return [row[0] for row in rows]

    @staticmethod
    def stretched(low, high):
        return [min(max(int((level - low) * 255 / (high - low)), 0), 255)
                for level in range(50, 150)]

    def assert_close(self, have, want, most):
        self.assertLessEqual(max(abs(a - b) for a, b in zip(have, want)), most, (have, want))

    def test_methods(self):
        self.assertEqual(self.table("--method", "range"), self.stretched(50, 149))
        deviation = math.sqrt(sum((level - 99.5) ** 2 for level in range(50, 150)) * 100 / 9999)
        self.assert_close(self.table("--method", "deviations", "--k", "1"),
                          self.stretched(99.5 - deviation, 99.5 + deviation), 1)
        self.assert_close(self.table("--method", "deviations"),
                          self.stretched(99.5 - 2 * deviation, 99.5 + 2 * deviation), 1)
        tenth = self.table("--k", "10")
        self.assertEqual(tenth, self.table("--method", "tails", "--k", "10"))
        self.assertTrue(8 <= tenth.count(0) <= 12 and 8 <= tenth.count(255) <= 12, tenth)
        self.assertLess(self.table().count(0), 4)
        # Levels that are equally frequent already become an even ramp.
        self.assert_close(self.table("--method", "equalize"), self.stretched(50, 149), 3)

    def test_channels_and_palettes(self):
        rows = [[(0, 100, 7), (51, 102, 7), (102, 110, 7)]]
        want = [[(0, 0, 7), (127, 51, 7), (255, 255, 7)]]
        self.image("a.bmp", rows, (7, 8, 2))
        self.run_it("balance", "--method", "range", "a.bmp", "out.bmp")
        self.assert_pixels("out.bmp", want)
        self.assert_georeference("out.bmp", 7, 8, 2)
        self.image("a.bmp", [[0, 1, 2]], palette=rows[0])
        self.run_it("balance", "--method", "range", "a.bmp", "out.bmp")
        self.assert_depth("out.bmp", 8)
        self.assert_pixels("out.bmp", want)

    def test_wrong_k(self):
        self.image("a.bmp", noise(3, 2))
        for options, word in ((("--method", "range", "--k", "1"), "takes none"),
                              (("--method", "deviations", "--k", "0"), "more than 0"),
                              (("--k", "51"), "50 percent"), (("--k", "-1"), "from 0"),
                              (("--k", "nan"), "no number"), (("--method", "gamma"), "equalize")):
            self.assert_fails(("balance", *options, "a.bmp", "out.bmp"), word, code=2)


class Resize(ImagingTest):
    def resize(self, *options):
        self.run_it("resize", *options, "a.bmp", "out.bmp")
        rows = self.pixels("out.bmp")
        return len(rows[0]), len(rows)

    def test_sizes_and_georeferences(self):
        self.image("a.bmp", noise(40, 30), (1000, 2000, 3))
        for options, size, pixel_size in ((("--percent", "50"), (20, 15), 6),
                                          (("--percent", "250"), (100, 75), 1.2),
                                          (("--width", "10"), (10, 8), 12),
                                          (("--height", "10"), (13, 10), 120 / 13),
                                          (("--width", "80", "--height", "60"), (80, 60), 1.5),
                                          (("--percent", "0.1"), (1, 1), 120)):
            self.assertEqual(self.resize(*options), size, options)
            lines = (self.folder / "out.bpw").read_text().split()
            self.assertAlmostEqual(float(lines[0]), pixel_size, 12)
            self.assertEqual([float(line) for line in lines[4:]], [1000, 2000])

    def test_pixels_that_are_no_longer_square(self):
        self.image("a.bmp", noise(40, 30), (1000, 2000, 3))
        _, err = self.run_it("resize", "--width", "40", "--height", "15", "a.bmp", "out.bmp")
        self.assertIn("out.bmp: no georeference", err)
        self.assertNotIn("out.bpw", self.names())

    def test_crop(self):
        rows = noise(40, 30)
        self.image("a.bmp", rows, (1000, 2000, 3))
        self.run_it("resize", "--crop", "10,5,8,6", "--width", "4", "--method", "nearest", "a.bmp",
                    "out.bmp")
        self.assert_pixels("out.bmp", [row[11:18:2] for row in rows[6:11:2]])
        self.assert_georeference("out.bmp", 1030, 1985, 6)
        self.assert_fails(("resize", "--crop", "40,0,5,5", "--width", "4", "a.bmp", "b.bmp"),
                          "outside the image of 40 x 30")

    def test_methods(self):
        rows = noise(8, 6)
        self.image("a.bmp", rows)
        means = [[tuple(sum(rows[y + j][x + i][c] for i in (0, 1) for j in (0, 1)) / 4
                        for c in range(3)) for x in range(0, 8, 2)] for y in range(0, 6, 2)]
        for method in ("area", "auto"):
            self.resize("--percent", "50", "--method", method)
            for have, want in zip(self.pixels("out.bmp"), means):
                for pixel, mean in zip(have, want):
                    for a, b in zip(pixel, mean):
                        self.assertLessEqual(abs(a - b), 1, method)
        self.resize("--percent", "300", "--method", "nearest")
        self.assert_pixels("out.bmp", [[rows[y // 3][x // 3] for x in range(24)]
                                       for y in range(18)])
        self.image("a.bmp", [[(0, 0, 0), (80, 120, 240)]])
        self.resize("--width", "4", "--height", "1", "--method", "bilinear")
        self.assert_pixels("out.bmp", [[(0, 0, 0), (20, 30, 60), (60, 90, 180), (80, 120, 240)]])

    def test_palettes(self):
        palette = [(0, 0, 0), (200, 100, 50)]
        self.image("a.bmp", [[0, 1]], palette=palette)
        self.resize("--percent", "200")
        self.assert_depth("out.bmp", 8)
        self.assert_pixels("out.bmp", [[palette[0]] * 2 + [palette[1]] * 2] * 2)
        self.resize("--width", "1", "--method", "area")
        self.assert_depth("out.bmp", 24)
        self.assert_pixels("out.bmp", [[(100, 50, 25)]])

    def assert_agrees(self, method, size, *command):
        """With what a command makes of a.bmp in other.bmp, within one level. Beyond the edges
        others go on with less weight, this with the same pixels: where a cubic reaches there,
        within two pixels of the edge, is left out."""
        self.run_it("resize", "--width", str(size[0]), "--height", str(size[1]), "--method", method,
                    "a.bmp", "out.bmp")
        subprocess.run(command, cwd=self.folder, check=True)
        have, want = self.pixels("out.bmp"), self.pixels("other.bmp")
        self.assertEqual((len(have[0]), len(have)), (len(want[0]), len(want)))
        if method == "bicubic":
            x, y = (math.ceil(2 * side / old) for side, old in zip(size, (37, 29)))
            have, want = ([row[x:-x] for row in rows[y:-y]] for rows in (have, want))
        most = max(abs(a - b) for have_row, want_row in zip(have, want)
                   for p, q in zip(have_row, want_row) for a, b in zip(p, q))
        self.assertLessEqual(most, 1, (method, size, command))

    @unittest.skipUnless(shutil.which("convert-im6.q16"), "ImageMagick is not installed")
    def test_agrees_with_imagemagick(self):
        # Levels that a cubic does not take beyond 0 and 255, where others clip between two passes.
        self.image("a.bmp", [[tuple(64 + level // 2 for level in pixel) for pixel in row]
                             for row in noise(37, 29)])
        for method, sizes, options in (
                ("nearest", ((74, 58), (111, 29)), ("-filter", "point", "-resize")),
                ("bilinear", ((74, 58), (101, 83), (37, 30)), ("-filter", "triangle", "-resize")),
                ("bicubic", ((74, 58), (101, 83), (37, 30)), ("-filter", "catrom", "-resize")),
                ("area", ((10, 7), (23, 19), (36, 28)), ("-scale",))):
            for width, height in sizes:
                self.assert_agrees(method, (width, height), "convert-im6.q16", "a.bmp", *options,
                                   f"{width}x{height}!", "BMP3:other.bmp")

    @unittest.skipUnless(shutil.which("gdal_translate"), "GDAL is not installed")
    def test_agrees_with_gdal(self):
        self.image("a.bmp", noise(37, 29))
        for method, theirs, sizes in (("nearest", "near", ((74, 58), (101, 83), (10, 7))),
                                      ("bilinear", "bilinear", ((74, 58), (101, 83))),
                                      ("bicubic", "cubic", ((74, 58), (101, 83))),
                                      ("area", "average", ((10, 7), (23, 19)))):
            for width, height in sizes:
                self.assert_agrees(method, (width, height), "gdal_translate", "-q", "-of", "BMP",
                                   "-r", theirs, "-outsize", str(width), str(height), "a.bmp",
                                   "other.bmp")

    def test_wrong_sizes(self):
        self.image("a.bmp", noise(8, 6))
        for options, words in (((), "needs --width"), (("--width", "0"), "width"),
                               (("--percent", "0"), "no number"),
                               (("--percent", "50", "--width", "3"), "told twice"),
                               (("--width", "3", "--method", "cubic"), "bicubic")):
            self.assert_fails(("resize", *options, "a.bmp", "out.bmp"), words, code=2)
        self.assert_fails(("resize", "--width", "2000000000", "a.bmp", "out.bmp"),
                          "more than the library makes")
        self.assert_fails(("resize", "--percent", "1e9", "--width", "9", "a.bmp", "out.bmp"),
                          "told twice", code=2)
        self.assert_fails(("resize", "--percent", "1e9", "a.bmp", "out.bmp"), "more than")


if __name__ == "__main__":
    main()
