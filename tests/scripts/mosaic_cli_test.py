#!/usr/bin/env python3
"""Mosaics and rectification on the command line, compared with values computed here and, where it
is installed, with GDAL.

Usage: mosaic_cli_test.py [EMULATOR] PROGRAM
"""
import math
import shutil
import struct
import subprocess
import unittest

from cli_support import main
from imaging_support import RED, WHITE, ImagingTest, noise, shown


class Mosaic(ImagingTest):
    def test_two_sheets_side_by_side(self):
        west, east = noise(5, 4, 1), noise(3, 6, 2)
        self.image("west.bmp", west, (1000, 2000, 2))
        self.image("east.bmp", east, (1010, 2004, 2))
        self.run_it("mosaic", "west.bmp", "east.bmp", "out.bmp")
        want = [[WHITE] * 5 + east[y] for y in range(2)]
        want += [west[y] + east[y + 2] for y in range(4)]
        self.assert_pixels("out.bmp", want)
        self.assert_georeference("out.bmp", 1000, 2004, 2)

    def test_the_last_lies_above_but_for_its_key_color(self):
        below, above = noise(4, 4, 1), noise(4, 4, 2)
        above[0][1] = above[3][2] = (1, 2, 3)
        self.image("a.bmp", below, (0, 4, 1))
        self.image("b.bmp", above, (0, 4, 1))
        self.run_it("mosaic", "a.bmp", "b.bmp", "out.bmp")
        self.assert_pixels("out.bmp", above)
        self.run_it("mosaic", "--key", "1,2,3", "a.bmp", "b.bmp", "out.bmp")
        above[0][1], above[3][2] = below[0][1], below[3][2]
        self.assert_pixels("out.bmp", above)

    def test_palettes_and_depths_of_all_kinds(self):
        sheets, want = [], []
        for i, bits in enumerate((1, 4, 8, 24, 32)):
            palette = noise(1 << bits, 1, i)[0] if bits < 24 else None
            rows = ([[(x + y * 7) % (1 << bits) for x in range(9)] for y in range(3)] if palette
                    else noise(9, 3, bits))
            sheets.append(self.image(f"{bits}.bmp", rows, (100, 50 - 3 * i, 1), palette,
                                     min(bits, 24)))
            want += shown(rows, palette) if palette else rows
        self.run_it("convert", "--depth", "32", "32.bmp", "32.bmp")
        self.assert_depth("32.bmp", 32)
        self.run_it("mosaic", *sheets, "out.bmp")
        self.assert_depth("out.bmp", 24)
        self.assert_pixels("out.bmp", want)

    def test_bitmaps_of_16_bits(self):
        # Five bits a channel, which become the upper ones of eight.
        levels = [[(x + y, 31 - x, 3 * y) for x in range(8)] for y in range(4)]
        words = b"".join(struct.pack("<H", r << 10 | g << 5 | b)
                         for row in reversed(levels) for r, g, b in row)
        self.file("a.bmp", struct.pack("<2sIII", b"BM", 54 + len(words), 0, 54) +
                  struct.pack("<IiiHHIIiiII", 40, 8, 4, 1, 16, 0, 0, 0, 0, 0, 0) + words)
        self.file("a.bpw", "1\n0\n0\n-1\n0\n4\n")
        self.run_it("mosaic", "a.bmp", "out.bmp")
        self.run_it("convert", "--depth", "24", "a.bmp", "b.bmp")
        self.assert_pixels("out.bmp", self.pixels("b.bmp"))
        self.assertEqual([[tuple(level >> 3 for level in pixel) for pixel in row]
                          for row in self.pixels("out.bmp")], levels)

    def test_a_common_palette_is_kept(self):
        palette = [RED, (0, 90, 0), WHITE]
        self.image("a.bmp", [[0, 1]], (0, 1, 1), palette)
        self.image("b.bmp", [[1, 0]], (3, 1, 1), palette, bits=4)
        self.run_it("mosaic", "a.bmp", "b.bmp", "out.bmp")
        self.assert_depth("out.bmp", 8)
        self.assert_pixels("out.bmp", [[RED, (0, 90, 0), WHITE, (0, 90, 0), RED]])
        self.run_it("mosaic", "--background", "1,2,3", "a.bmp", "b.bmp", "out.bmp")
        self.assert_pixels("out.bmp", [[RED, (0, 90, 0), (1, 2, 3), (0, 90, 0), RED]])
        self.image("b.bmp", [[1, 0]], (3, 1, 1), [RED, (0, 91, 0), WHITE])
        self.run_it("mosaic", "a.bmp", "b.bmp", "out.bmp")
        self.assert_pixels("out.bmp", [[RED, (0, 90, 0), WHITE, (0, 91, 0), RED]])

    def test_extent_cell_size_clipping_and_background(self):
        rows = noise(6, 4, 1)
        self.image("a.bmp", rows, (100, 208, 2))  # to 112, 200
        self.run_it("mosaic", "--extent", "96,202,106,212", "--background", "9,8,7", "a.bmp",
                    "out.bmp")
        blank = [(9, 8, 7)] * 5
        self.assert_pixels("out.bmp", [blank, blank] + [blank[:2] + rows[y][:3] for y in range(3)])
        self.assert_georeference("out.bmp", 96, 212, 2)
        self.run_it("mosaic", "--cell-size", "1", "a.bmp", "out.bmp")
        self.assert_pixels("out.bmp", [[rows[y // 2][x // 2] for x in range(12)] for y in range(8)])
        self.assert_georeference("out.bmp", 100, 208, 1)
        self.run_it("mosaic", "--cell-size", "4", "a.bmp", "out.bmp")
        self.assert_pixels("out.bmp", [[rows[y][x] for x in (1, 3, 5)] for y in (1, 3)])
        self.run_it("mosaic", "--clip", "102,200,108,206", "a.bmp", "out.bmp")
        self.assert_pixels("out.bmp", [[rows[y][x] if y > 0 and 1 <= x <= 3 else WHITE
                                        for x in range(6)] for y in range(4)])

    def test_the_finest_cell_size_rules(self):
        coarse, fine = noise(2, 2, 1), noise(3, 3, 2)
        self.image("a.bmp", coarse, (0, 6, 3))
        self.image("b.bmp", fine, (0, 6, 1))
        self.run_it("mosaic", "a.bmp", "b.bmp", "out.bmp")
        self.assert_pixels("out.bmp", [[fine[y][x] if x < 3 and y < 3 else coarse[y // 3][x // 3]
                                        for x in range(6)] for y in range(6)])
        self.assert_georeference("out.bmp", 0, 6, 1)

    def test_far_from_the_origin_no_column_is_lost(self):
        # These places and sizes have no exact form in binary.
        for origin, size in ((600000.1, 0.1), (4999999.7, 0.3), (-0.7, 0.7), (12.3, 1 / 3)):
            first, second = noise(10, 7, 1), noise(10, 7, 2)
            self.image("a.bmp", first, (origin, 0, size))
            self.image("b.bmp", second, (origin + 10 * size, 0, size))
            self.run_it("mosaic", "a.bmp", "b.bmp", "out.bmp")
            self.assert_pixels("out.bmp", [a + b for a, b in zip(first, second)], size)

    def test_images_outside_are_told(self):
        self.image("a.bmp", noise(2, 2), (0, 2, 1))
        self.image("b.bmp", noise(2, 2), (50, 2, 1))
        _, err = self.run_it("mosaic", "--extent", "0,0,2,2", "a.bmp", "b.bmp", "out.bmp")
        self.assertEqual(err, "rastrel: b.bmp: it lies outside the mosaic\n")
        self.assert_pixels("out.bmp", noise(2, 2))

    def test_failures(self):
        self.image("a.bmp", noise(2, 2), (0, 2, 1))
        self.image("lost.bmp", noise(2, 2))
        self.image("flat.bmp", noise(2, 2), (0, 2, 0))
        self.image("far.bmp", noise(2, 2), (1e9, 2, 1))
        self.file("broken.bmp", b"BM" + bytes(90))
        self.file("broken.bpw", "1\n0\n0\n-1\n0\n0\n")
        # All that is wrong is told at once.
        self.assert_fails(("mosaic", "a.bmp", "lost.bmp", "broken.bmp", "no.bmp", "out.bmp"),
                          ("lost.bmp: it has no georeference", "broken.bmp: it is damaged",
                           "no.bmp: "))
        self.assert_fails(("mosaic", "flat.bmp", "out.bmp"), "pixel size of 0")
        self.assert_fails(("mosaic", "a.bmp", "far.bmp", "out.bmp"), "more than the library makes")
        self.assert_fails(("mosaic", "--cell-size", "1e-12", "a.bmp", "out.bmp"),
                          "no image can be as large")
        for options, word in ((("--extent", "0,0,1"), "xmin,ymin"), (("--clip", "1,0,1,2"), "xmin"),
                              (("--extent", "0,0,1,inf"), "xmin"), (("--cell-size", "0"), "number"),
                              (("--background", "red"), "red,green,blue")):
            self.assert_fails(("mosaic", *options, "a.bmp", "out.bmp"), word, code=2)


def affine(column, row, matrix):
    a, b, c, d, e, f = matrix
    return a * column + b * row + c, d * column + e * row + f


class Rectify(ImagingTest):
    TURNED = (1.9, 0.6, 601000.25, 0.55, -1.85, 5100500.5)

    def points(self, matrix, places, name="points.txt"):
        lines = ["# column row X Y"]
        for column, row in places:
            x, y = affine(column, row, matrix)
            lines.append(f"  {column}\t{row} {x!r} {y!r}  # a point")
        return self.file(name, "\r\n".join(lines) + "\n\n")

    def test_residuals(self):
        self.image("a.bmp", noise(3, 2))
        # One corner of a square of four drags the others along: a fourth of its error each.
        self.file("points.txt", "0 0 0 0\n10 0 20 0\n0 10 0 -20\n10 10 20.4 -20\n")
        out, err = self.run_it("rectify", "points.txt", "a.bmp")
        self.assertEqual(err, "")
        lines = out.split("\n")
        self.assertEqual(lines[0], "points.txt")
        for line, offset in zip(lines[2:6], (-0.1, 0.1, 0.1, -0.1)):
            fields = [float(field) for field in line.split()]
            self.assertAlmostEqual(fields[5], offset, 9)
            self.assertAlmostEqual(fields[6], 0, 9)
            self.assertAlmostEqual(fields[7], 0.1, 9)
            # A pixel is 20.2 / 10 wide.
            self.assertAlmostEqual(fields[8], 0.1 / 2.02, 6)
        self.assertEqual(lines[6], "  RMS error    0.1 map units, 0.049505 pixels")
        self.assertEqual(self.names(), ["a.bmp", "points.txt"])

    def test_three_points_prove_nothing(self):
        self.image("a.bmp", noise(3, 2))
        self.points(self.TURNED, ((0, 0), (50, 3), (7, 60)))
        out, err = self.run_it("rectify", "points.txt", "a.bmp")
        self.assertIn("three points always agree", err)
        self.assertRegex(out, r"RMS error    [\d.e-]+ map units")

    def test_a_picture_that_is_north_up_already_stays(self):
        rows = noise(7, 5)
        self.image("a.bmp", rows)
        self.points((2, 0, 101, 0, -2, 199), ((0, 0), (6, 0), (0, 4), (6, 4)))
        for method in ("nearest", "bilinear", "bicubic"):
            self.run_it("rectify", "--method", method, "points.txt", "a.bmp", "out.bmp")
            self.assert_pixels("out.bmp", rows, method)
            self.assert_georeference("out.bmp", 100, 200, 2)

    def test_quarter_turn(self):
        rows = noise(7, 5)
        self.image("a.bmp", rows)
        # Columns run north and rows east.
        self.points((0, 1, 0.5, 1, 0, 0.5), ((0, 0), (6, 0), (0, 4), (6, 4)))
        self.run_it("rectify", "points.txt", "a.bmp", "out.bmp")
        self.assert_pixels("out.bmp", [[rows[x][6 - y] for x in range(5)] for y in range(7)])
        self.assert_georeference("out.bmp", 0, 7, 1)

    @staticmethod
    def cells(matrix, extent, size):
        """For every cell, row by row, where its centre lies in the picture, in pixels from the
        outer edges of the first."""
        a, b, c, d, e, f = matrix
        det = a * e - b * d
        for j in range(round((extent[3] - extent[1]) / size)):
            y = extent[3] - (j + 0.5) * size - f
            yield [((e * x - b * y) / det + 0.5, (a * y - d * x) / det + 0.5)
                   for x in (extent[0] + (i + 0.5) * size - c
                             for i in range(round((extent[2] - extent[0]) / size)))]

    @staticmethod
    def pixel_at(rows, column, row, background):
        """The pixel that holds a place, which the first row and column also do for the one before
        them. None where rounding decides between two."""
        if min(abs(column - round(column)), abs(row - round(row))) < 1e-6:
            return None
        if -1 < column < len(rows[0]) and -1 < row < len(rows):
            return rows[int(row)][int(column)]
        return background

    def test_turned_scan(self):
        rows = noise(40, 30)
        self.image("a.bmp", rows)
        self.points(self.TURNED, ((0, 0), (39, 2), (3, 29), (36, 27), (20, 11)))
        extent = (600990, 5100400, 601110, 5100540)
        for size, color in ((2, WHITE), (0.7, (1, 2, 3)), (5, WHITE)):
            self.run_it("rectify", "--extent", ",".join(map(str, extent)), "--cell-size", str(size),
                        "--background", ",".join(map(str, color)), "points.txt", "a.bmp", "out.bmp")
            have = self.pixels("out.bmp")
            want = [[self.pixel_at(rows, *place, color) for place in line]
                    for line in self.cells(self.TURNED, extent, size)]
            self.assertEqual((len(have[0]), len(have)), (len(want[0]), len(want)))
            for have_row, want_row in zip(have, want):
                self.assertEqual([h if w else w for h, w in zip(have_row, want_row)], want_row)
            self.assert_georeference("out.bmp", 600990, 5100540, size)

    def test_computed_extent_covers_the_image(self):
        rows = noise(40, 30)
        self.image("a.bmp", rows)
        self.points(self.TURNED, ((0, 0), (39, 2), (3, 29), (36, 27)))
        self.run_it("rectify", "points.txt", "a.bmp", "out.bmp")
        corners = [affine(column, row, self.TURNED)
                   for column in (-0.5, 39.5) for row in (-0.5, 29.5)]
        size = math.sqrt(abs(1.9 * -1.85 - 0.6 * 0.55))
        lines = (self.folder / "out.bpw").read_text().split()
        for have, want in zip((lines[4], lines[5], lines[0]),
                              (min(x for x, _ in corners), max(y for _, y in corners), size)):
            self.assertAlmostEqual(float(have), want, 6)
        have = self.pixels("out.bmp")
        width = max(x for x, _ in corners) - min(x for x, _ in corners)
        self.assertAlmostEqual(len(have[0]), width / size, delta=0.5)
        # Square pixels of the same size: most of the image's are there, once.
        found = {pixel for row in have for pixel in row}
        self.assertGreater(sum(pixel in found for row in rows for pixel in row), 0.6 * 40 * 30)

    def by_gdal(self, matrix, places, extent, size, method):
        """The image a.bmp as GDAL rectifies it, whose first pixel's centre is at 0.5, 0.5."""
        gcps = []
        for column, row in places:
            x, y = affine(column, row, matrix)
            gcps += ["-gcp", repr(column + 0.5), repr(row + 0.5), repr(x), repr(y)]
        subprocess.run(["gdal_translate", "-q", *gcps, "a.bmp", "gcps.tif"], cwd=self.folder,
                       check=True)
        # Its smoothing would take cells that are turned for larger ones.
        settings = ("-wo", "INIT_DEST=255", "-wo", "XSCALE=1", "-wo", "YSCALE=1")
        subprocess.run(["gdalwarp", "-q", "-overwrite", "-order", "1", "-et", "0", "-r", method,
                        "-te", *map(repr, extent), "-tr", repr(size), repr(size), *settings,
                        "-of", "BMP", "gcps.tif", "gdal.bmp"], cwd=self.folder, check=True)
        return self.pixels("gdal.bmp")

    @unittest.skipUnless(shutil.which("gdalwarp"), "GDAL is not installed")
    def test_agrees_with_gdal(self):
        rows = noise(83, 61)
        self.image("a.bmp", rows)
        places = ((0, 0), (80, 3), (5, 58), (77, 55), (40, 30), (12.5, 41.25))
        for matrix in (self.TURNED, (1.3, -1.4, 2e6, -1.5, -1.2, 4e6), (-2, 0.3, 50, 0.2, 1.7, -70),
                       (0.001, 0.0002, 12.5, 0.0003, -0.0011, 41.9)):
            self.points(matrix, places)
            corners = [affine(column, row, matrix) for column in (-4, 87) for row in (-4, 65)]
            size = math.sqrt(abs(matrix[0] * matrix[4] - matrix[1] * matrix[3])) * 0.83
            left, top = min(x for x, _ in corners), max(y for _, y in corners)
            columns = round((max(x for x, _ in corners) - left) / size)
            lines = round((top - min(y for _, y in corners)) / size)
            extent = (left, top - lines * size, left + columns * size, top)
            # GDAL leaves out the row and column before the first, where they are repeated here, and
            # has weights of its own for smoothing at the edges.
            for method, theirs, edge, most in (("nearest", "near", 0, 0),
                                               ("bilinear", "bilinear", 1, 1),
                                               ("bicubic", "cubic", 2, 1)):
                self.run_it("rectify", "--extent", ",".join(map(repr, extent)), "--cell-size",
                            repr(size), "--method", method, "points.txt", "a.bmp", "out.bmp")
                have = self.pixels("out.bmp")
                want = self.by_gdal(matrix, places, extent, size, theirs)
                self.assertEqual((len(have[0]), len(have)), (columns, lines))
                self.assertEqual((len(want[0]), len(want)), (columns, lines))
                compared = [
                    (a, b) for *two, line in zip(have, want, self.cells(matrix, extent, size))
                    for a, b, (column, row) in zip(*two, line)
                    if (edge <= column < 83 - edge and edge <= row < 61 - edge) or
                    not (-1 - edge < column < 83 + edge and -1 - edge < row < 61 + edge)]
                self.assertGreater(len(compared), 0.8 * columns * lines)
                wrong = sum(max(abs(p - q) for p, q in zip(a, b)) > most for a, b in compared)
                # Rounding may choose the other pixel for a centre that lies on an edge.
                self.assertLessEqual(wrong, len(compared) // 10000, (matrix, method, len(compared)))

    def test_palettes(self):
        self.points((1, 0, 0, 0, -1, 0), ((0, 0), (2, 0), (0, 2)))
        for palette, bits in (([RED, (0, 90, 0), WHITE], 8), ([RED, (0, 90, 0)], 24)):
            self.image("a.bmp", [[0, 1]], palette=palette)
            self.run_it("rectify", "--extent", "-0.5,-0.5,2.5,0.5", "points.txt", "a.bmp",
                        "out.bmp")
            self.assert_pixels("out.bmp", [[RED, (0, 90, 0), WHITE]])
            self.assert_depth("out.bmp", bits)

    def test_wrong_control_points(self):
        self.image("a.bmp", noise(3, 2))
        for text, words in (("", "it holds 0 control points, and at least 3"),
                            ("1 2 3 4\n# 5 6 7 8\n5 6 7 8\n", "it holds 2 control points"),
                            ("0 0 0 0\n1 1 1 1\n2 2 2 2\n", "its control points lie on one line"),
                            ("1 2 3 4\n1 2 3 4\n1 2 3 4\n", "its control points lie on one line"),
                            ("1 2 3 4\n\n1 2 3\n", "line 3: a point is four numbers"),
                            ("1 2 3 4 5\n", "line 1: a point is four numbers"),
                            ("1 2 3,5 4\n", 'line 1: "3,5" is no number'),
                            ("1 2 nan 4\n", 'line 1: "nan" is no number')):
            self.file("points.txt", text)
            self.assert_fails(("rectify", "points.txt", "a.bmp", "out.bmp"),
                              f"points.txt: {words}")
        self.assert_fails(("rectify", "no.txt", "a.bmp", "out.bmp"), "no.txt: ")

    def test_sizes_that_cannot_be(self):
        self.image("a.bmp", noise(3, 2))
        self.points(self.TURNED, ((0, 0), (2, 0), (0, 1), (2, 1)))
        for options, words in ((("--cell-size", "1e-6"), "more than the library makes"),
                               (("--cell-size", "1e-12"), "no image can be as large"),
                               (("--extent", "0,0,1,1", "--cell-size", "9"),
                                "smaller than a pixel")):
            self.assert_fails(("rectify", *options, "points.txt", "a.bmp", "out.bmp"), words)


if __name__ == "__main__":
    main()
