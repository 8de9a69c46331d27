#!/usr/bin/env python3
"""Runs the command-line host's terrain commands on grids of every kind, good and bad.

What comes out is compared with values computed here from the formulas, and with GDAL's where it is
installed. Usage: terrain_cli_test.py [EMULATOR] PROGRAM
"""
import array
import math
import os
import random
import shutil
import struct
import subprocess
import unittest

from cli_support import COMMAND, CommandLineTest, main, read_bmp

WIDTH, HEIGHT = 9, 7

# How each kind of sample is stored and what its header says.
KINDS = {
    "byte": ("B", "NBITS 8"),
    "signed byte": ("b", "NBITS 8\nPIXELTYPE SIGNEDINT"),
    "short": ("h", "NBITS 16\nPIXELTYPE SIGNEDINT"),
    "unsigned short": ("H", "NBITS 16\nPIXELTYPE UNSIGNEDINT"),
    "int": ("i", "NBITS 32\nPIXELTYPE SIGNEDINT"),
    "float": ("f", "NBITS 32\nPIXELTYPE FLOAT"),
}


def hills(seed=1, low=0, high=120):
    """A made-up grid of whole numbers: all of them can be held by every kind of sample."""
    source = random.Random(seed)
    return [[source.randint(low, high) for _ in range(WIDTH)] for _ in range(HEIGHT)]


def gradients(grid, row, column, factor):
    """Rise to the east and to the south by B. K. P. Horn's weights."""
    z = [grid[row + dr][column + dc] for dr in (-1, 0, 1) for dc in (-1, 0, 1)]
    east = (z[2] + 2 * z[5] + z[8] - z[0] - 2 * z[3] - z[6]) * factor * 0.125
    south = (z[6] + 2 * z[7] + z[8] - z[0] - 2 * z[1] - z[2]) * factor * 0.125
    return east, south


def shade(grid, row, column, factor, azimuth, altitude):
    """Brightness by the angle between the light and the ground's normal, as vectors."""
    east, south = gradients(grid, row, column, factor)
    azimuth, altitude = math.radians(azimuth), math.radians(altitude)
    light = (math.sin(azimuth) * math.cos(altitude), math.cos(azimuth) * math.cos(altitude),
             math.sin(altitude))
    normal = (-east, south, 1.0)
    cosine = sum(a * b for a, b in zip(light, normal)) / math.hypot(*normal)
    return max(cosine * 255, 0.0)


def facing(grid, row, column):
    """The compass direction downhill in degrees; None on level ground."""
    east, south = gradients(grid, row, column, 1.0)
    if east == 0 and south == 0:
        return None
    return math.degrees(math.atan2(-east, south)) % 360.0


def inner_cells():
    return ((row, column) for row in range(1, HEIGHT - 1) for column in range(1, WIDTH - 1))


class Terrain(CommandLineTest):
    def raw(self, name, grid, kind="float", more="", order="<", skip=0, padding=0):
        code, bits = KINDS[kind]
        rows = [struct.pack(f"{order}{len(row)}{code}", *row) + b"?" * padding for row in grid]
        header = (f"NROWS {len(grid)}\nNCOLS {len(grid[0])}\n{bits}\n"
                  f"BYTEORDER {'I' if order == '<' else 'M'}\n")
        if skip:
            header += f"SKIPBYTES {skip}\n"
        if padding:
            header += f"TOTALROWBYTES {len(rows[0])}\n"
        self.file(name[:-3] + "hdr", header + more)
        return self.file(name, b"!" * skip + b"".join(rows))

    def ascii(self, name, grid, more="cellsize 1\n"):
        return self.file(name, f"ncols {len(grid[0])}\nnrows {len(grid)}\n{more}" +
                         "\n".join(" ".join(map(str, row)) for row in grid) + "\n")

    def picture(self, *arguments):
        """The rows and the palette of what a command writes."""
        self.run_it(*arguments, "out.bmp")
        return read_bmp(self.folder / "out.bmp")

    def assert_shades(self, rows, grid, factor=1.0, azimuth=315.0, altitude=45.0):
        for row, column in inner_cells():
            want = shade(grid, row, column, factor, azimuth, altitude)
            self.assertLessEqual(abs(rows[row][column] - want), 0.5001, (row, column))
        self.assertEqual({*rows[0], *rows[-1], *(r[0] for r in rows), *(r[-1] for r in rows)}, {255})

    def test_every_kind_of_raw_grid_is_read(self):
        grid = hills()
        for kind in KINDS:
            for order in "<>":
                for skip, padding in ((0, 0), (5, 0), (0, 4), (3, 7)):
                    with self.subTest(kind=kind, order=order, skip=skip, padding=padding):
                        self.raw("a.bil", grid, kind, order=order, skip=skip, padding=padding)
                        rows, _ = self.picture("hillshade", "--z-factor", "0.02", "a.bil")
                        self.assert_shades(rows, grid, 0.02)
        # Values beyond the smaller kinds: stretched from end to end they show where they lie.
        for kind, values in (("signed byte", [-128, -1, 0, 127]),
                             ("short", [-32768, -1, 0, 32767]),
                             ("unsigned short", [0, 32767, 32768, 65535]),
                             ("int", [-2**31, -1, 0, 2**31 - 1]),
                             ("float", [-1e30, 0.0, 1.0, 1e30])):
            self.raw("a.bil", [values], kind)
            rows, _ = self.picture("stretch", "--k", "0", "a.bil")
            low, high = values[0], values[-1]
            self.assertEqual(rows[0], [int((v - low) * 255 / (high - low)) for v in values], kind)

    def test_headers_of_other_programs(self):
        grid = hills()
        self.raw("a.bil", grid, "short")
        self.picture("hillshade", "a.bil")
        want = (self.folder / "out.bmp").read_bytes()
        data = (self.folder / "a.bil").read_bytes()
        size = f"NROWS {HEIGHT}\nNCOLS {WIDTH}\n"
        # Older elevation models: signed without saying so, no data below zero.
        for name, header in (
                ("old.bil", size + "NBITS 16\nNODATA -9999\n"),
                ("small.bil", size.lower() + "nbits   16\r\npixeltype\tsignedint\r\nlayout bil\r\n"),
                ("bip.bip", size + "NBANDS 1\nNBITS 16\nPIXELTYPE SIGNEDINT\nLAYOUT BIP\n"),
                ("bsq.bsq", size + "NBITS 16\nPIXELTYPE SIGNEDINT\nLAYOUT BSQ\nMAP_UNITS m\n\n")):
            self.file(name, data)
            self.file(name[:-3] + "hdr", header)
            self.picture("hillshade", name)
            self.assertEqual((self.folder / "out.bmp").read_bytes(), want, name)
        self.file("g.flt", struct.pack(f"<{WIDTH * HEIGHT}f", *sum(grid, [])))
        self.file("g.hdr", f"ncols {WIDTH}\nnrows {HEIGHT}\nxllcorner 0\nyllcorner 0\ncellsize 1\n"
                  "NODATA_value -9999\nbyteorder LSBFIRST\n")
        self.picture("hillshade", "g.flt")
        self.assertEqual((self.folder / "out.bmp").read_bytes(), want)
        if os.name == "posix" and len(COMMAND) == 1:  # elsewhere capitals do not matter
            os.rename(self.folder / "g.hdr", self.folder / "g.HDR")
            self.picture("hillshade", "g.flt")

    def test_ascii_grids_are_read(self):
        grid = hills()
        self.raw("a.bil", grid)
        self.picture("hillshade", "a.bil")
        want = (self.folder / "out.bmp").read_bytes()
        values = [str(v) for v in sum(grid, [])]
        head = f"ncols {WIDTH}\nnrows {HEIGHT}\ncellsize 1\n"
        for name, text in (
                ("plain.asc", head + " ".join(values)),
                ("lines.grd", head.upper().replace("\n", "\r\n") + "\r\n".join(values) + "\r\n"),
                ("tabs.asc", "\n " + head + "NODATA_value  -9999\n\t" + "\t\t".join(values)),
                ("floats.asc", head + " ".join(v + ".0" for v in values)),
                ("mixed.asc", head + " ".join(values[:20] + [f"{v}e0" for v in values[20:]])),
                ("signs.asc", head + " ".join("+" + v for v in values))):
            self.picture("hillshade", self.file(name, text))
            self.assertEqual((self.folder / "out.bmp").read_bytes(), want, name)

    def test_light_comes_from_where_it_is_said(self):
        grid = hills()
        self.ascii("a.asc", grid)
        for azimuth, altitude in ((0, 30), (90, 45), (180, 60), (270, 10), (-45, 45), (33.5, 0)):
            with self.subTest(azimuth=azimuth, altitude=altitude):
                rows, _ = self.picture("hillshade", "--azimuth", str(azimuth), "--altitude",
                                       str(altitude), "--z-factor", "0.02", "a.asc")
                self.assert_shades(rows, grid, 0.02, azimuth, altitude)

    def test_factors(self):
        grid = hills()
        self.ascii("a.asc", grid, "cellsize 25\n")
        rows, _ = self.picture("hillshade", "--z-factor", "3", "--scale", "0.5", "a.asc")
        self.assert_shades(rows, grid, 3 / (25 * 0.5))
        rows, _ = self.picture("slope", "--z-factor", "3", "--scale", "0.5", "a.asc")
        for row, column in inner_cells():
            slope = math.degrees(math.atan(math.hypot(*gradients(grid, row, column, 0.24))))
            self.assertEqual(rows[row][column], int(slope))
        self.assertEqual({*rows[0], *rows[-1]}, {0})

    def test_aspect(self):
        grid = hills()
        grid[3][3:6] = grid[4][3:6] = grid[5][3:6] = [7, 7, 7]
        self.ascii("a.asc", grid)
        rows, palette = self.picture("aspect", "--color", "a.asc")
        for row, column in inner_cells():
            angle = facing(grid, row, column)
            want = 8 if angle is None else int((angle + 22.5) % 360 // 45)
            self.assertEqual(rows[row][column], want, (row, column))
        self.assertEqual(rows[4][4], 8)
        self.assertEqual({*rows[0], *rows[-1]}, {8})
        self.assertEqual(len(set(palette[:9])), 9)
        self.assertEqual(palette[255], (255, 255, 255))
        gray = self.picture("aspect", "a.asc")[1]
        self.assertEqual(gray, [(i, i, i) for i in range(256)])
        # Planes that face each direction.
        for angle in range(0, 360, 45):
            east, north = math.sin(math.radians(angle)), math.cos(math.radians(angle))
            plane = [[round(100 * (r * north - c * east)) for c in range(3)] for r in range(3)]
            self.ascii("p.asc", plane)
            self.assertEqual(self.picture("aspect", "p.asc")[0][1][1], angle // 45)

    def test_statistics(self):
        grid = hills(high=100)
        values = sum(grid, [])
        mean = sum(values) / len(values)
        deviation = math.sqrt(sum((v - mean) ** 2 for v in values) / (len(values) - 1))
        for name in (self.raw("a.bil", grid, "byte"), self.raw("b.bil", grid, "float"),
                     self.ascii("c.asc", grid)):
            out, _ = self.run_it("stats", name)
            facts = dict(line.split(maxsplit=1) for line in out.splitlines()[1:])
            self.assertEqual(float(facts["minimum"]), min(values))
            self.assertEqual(float(facts["maximum"]), max(values))
            self.assertAlmostEqual(float(facts["mean"]), mean, 12)
            self.assertAlmostEqual(float(facts["deviation"]), deviation, 11)
            self.assertEqual(facts["measured"], str(WIDTH * HEIGHT))
        out, _ = self.run_it("stats", "--step", "4", "a.bil")
        self.assertIn(f"minimum      {min(v for r in grid[::4] for v in r[::4])}\n", out)
        self.ascii("one.asc", [[5]])
        out, _ = self.run_it("stats", "one.asc")
        self.assertIn("deviation    -\n", out)

    def test_cells_without_data(self):
        grid = hills(low=1)
        for kind, hole in (("byte", 0), ("short", -9999), ("int", -2**31), ("float", -9999.0),
                           ("float", math.nan)):
            with self.subTest(kind=kind, hole=hole):
                holed = [row[:] for row in grid]
                holed[3][4] = hole
                more = "" if math.isnan(hole) else f"NODATA {hole}\n"
                self.raw("a.bil", holed, kind, more)
                values = [v for r in range(HEIGHT) for c, v in enumerate(grid[r]) if (r, c) != (3, 4)]
                out, _ = self.run_it("stats", "a.bil")
                self.assertIn(f"measured     {len(values)}\n", out)
                self.assertIn(f"minimum      {min(values)}\n", out)
                self.assertIn("no data      1 cells\n", out)
                for command, mark in (("hillshade", 0), ("slope", 255), ("aspect", 255)):
                    holed_rows, _ = self.picture(command, "a.bil")
                    self.raw("whole.bil", grid, kind)
                    rows, _ = self.picture(command, "whole.bil")
                    for r in range(HEIGHT):
                        for c in range(WIDTH):
                            beside = 2 <= r <= 4 and 3 <= c <= 5
                            self.assertEqual(holed_rows[r][c], mark if beside else rows[r][c])
                rows, _ = self.picture("stretch", "--k", "0", "a.bil")
                low, high = min(values), max(values)
                self.assertEqual(rows[3][4], 0)
                self.assertEqual(rows[0], [int((v - low) * 255 / (high - low)) for v in grid[0]])

    def test_largest_float_as_no_data(self):
        lowest = -3.4028234663852886e38
        for text in ("-3.4028234663852886e+38", "-3.402823466E+38", "-3.40282347e+38"):
            self.raw("a.bil", [[1.0, lowest, 3.0]], "float", f"NODATA {text}\n")
            out, _ = self.run_it("stats", "a.bil")
            self.assertIn("minimum      1\n", out)

    def test_nothing_but_no_data(self):
        self.ascii("a.asc", [[-1, -1], [-1, -1]], "cellsize 1\nNODATA_value -1\n")
        for command in (["stats", "a.asc"], ["stretch", "a.asc", "out.bmp"],
                        ["relief", "a.asc", "out.bmp"]):
            _, err = self.run_it(*command, code=1)
            self.assertIn("none of its cells holds data", err)
        self.assertEqual(self.names(), ["a.asc"])

    def test_stretch_tells_its_bounds(self):
        grid = hills()
        values = sum(grid, [])
        mean = sum(values) / len(values)
        deviation = math.sqrt(sum((v - mean) ** 2 for v in values) / (len(values) - 1))
        self.ascii("a.asc", grid)
        for k in (2.0, 0.5):
            out, _ = self.run_it("stretch", "--k", str(k), "a.asc", "out.bmp")
            words = out.split()
            low, high = float(words[1]), float(words[3])
            self.assertAlmostEqual(low, mean - k * deviation, 9)
            self.assertAlmostEqual(high, mean + k * deviation, 9)
            rows, _ = read_bmp(self.folder / "out.bmp")
            for got, v in zip(sum(rows, []), values):
                want = 0 if v <= low else 255 if v >= high else int((v - low) * 255 / (high - low))
                self.assertEqual(got, want)

    def test_images_are_measured_and_stretched(self):
        # Two pixels of 24 bits, blue first, and 8 bits with the grey palette by way of a stretch.
        pixels = bytes([10, 20, 30, 50, 60, 90, 0, 0])
        header = (struct.pack("<2sIII", b"BM", 62, 0, 54) +
                  struct.pack("<IiiHHIIiiII", 40, 2, 1, 1, 24, 0, 0, 0, 0, 0, 0))
        self.file("a.bmp", header + pixels)
        out, _ = self.run_it("stats", "a.bmp")
        for channel, low, high in (("red", 30, 90), ("green", 20, 60), ("blue", 10, 50)):
            self.assertRegex(out, rf"{channel}\n +minimum +{low}\n +mean +{(low + high) // 2}\n"
                             rf" +maximum +{high}\n")
        rows, _ = self.picture("stretch", "--k", "0", "a.bmp")
        self.assertEqual(rows, [[(0, 0, 0), (255, 255, 255)]])
        self.ascii("b.asc", [[10, 20, 60]])
        self.run_it("stretch", "--k", "0", "b.asc", "b.bmp")
        out, _ = self.run_it("stats", "b.bmp")
        self.assertRegex(out, r"minimum +0\n +mean +102\n +maximum +255\n")

    def test_relief_colours(self):
        grid = [[0, 0, 0, 0], [0, 0, 50, 100], [0, 100, 100, 100], [-5, -5, -5, -5]]
        self.ascii("a.asc", grid, "cellsize 1\nNODATA_value -5\n")
        low, middle, high, none = (200, 100, 0), (0, 0, 40), (10, 250, 255), (1, 2, 3)
        for ramp in ("0 200 100 0\n50 0 0 40\n100 10 250 255\nnv 1 2 3\n",
                     "# comment\n\n  0%,200,100,0,255\n50%\t0 0:40 # half\n100% 10 250 255 128\n"
                     "NV 1 2 3 0\n",
                     "INTERPOLATION:INTERPOLATED\n100,10,250,255,255,a label\n0,200,100,0,255,0\n"
                     "50,0,0,40,255,\nnv,1,2,3\r\n"):
            self.file("ramp.txt", ramp)
            rows, _ = self.picture("relief", "--ramp", "ramp.txt", "--weight", "1", "a.asc")
            want = {0: low, 50: middle, 100: high, -5: none}
            self.assertEqual(rows, [[want[v] for v in row] for row in grid], ramp)

    def test_relief_edges_and_names(self):
        self.ascii("a.asc", [[-100, -1, 0, 1, 100]])
        self.file("ramp.txt", "-100 blue\n0 Cyan\n0 0 100 0\n100 WHITE\n")
        rows, _ = self.picture("relief", "--ramp", "ramp.txt", "--weight", "1", "a.asc")
        shore = rows[0]
        self.assertEqual((shore[0], shore[2], shore[4]), ((0, 0, 255), (0, 100, 0), (255, 255, 255)))
        # Blending upward to the shore, then the land's own colour at once.
        self.assertGreater(shore[1][1], 240)
        self.assertEqual(shore[1][0], 0)
        self.assertLess(max(shore[3][0], shore[3][2]), 10)

    def test_relief_blends_with_shading(self):
        grid = hills()
        self.ascii("a.asc", grid)
        self.file("ramp.txt", "0 grey\n")
        rows, _ = self.picture("relief", "--ramp", "ramp.txt", "--weight", "0.25", "a.asc")
        for row, column in inner_cells():
            want = 191 * 0.25 + shade(grid, row, column, 1.0, 315, 45) * 0.75
            self.assertEqual(len(set(rows[row][column])), 1)
            self.assertLessEqual(abs(rows[row][column][0] - want), 1.0)
        # No frame: the outermost cells are shaded like those inside of them.
        self.assertEqual(rows[0][1:-1], rows[1][1:-1])
        self.assertEqual(rows[-1][0], rows[-2][1])

    def test_built_in_ramps(self):
        out, _ = self.run_it("relief", "--help")
        self.ascii("a.asc", hills())
        pictures = set()
        for name in ("elevation", "atlas", "alpine", "desert", "grey", "heat", "spectrum"):
            self.assertIn(name, out)
            rows, _ = self.picture("relief", "--ramp", name, "a.asc")
            pictures.add(str(rows))
        self.assertEqual(len(pictures), 7)

    def test_smooth(self):
        grid = hills()
        for kind in ("byte", "short", "int", "float"):
            self.raw("a.bil", grid, kind, "ULXMAP 5\nULYMAP 6.5\nXDIM 2\nYDIM 3\nNODATA 200\n")
            self.run_it("smooth", "a.bil", "b.bil")
            code = KINDS[kind][0]
            got = struct.unpack(f"={WIDTH * HEIGHT}{code}", (self.folder / "b.bil").read_bytes())
            for row in range(HEIGHT):
                for column in range(WIDTH):
                    want = grid[row][column]
                    if 0 < row < HEIGHT - 1 and 0 < column < WIDTH - 1:
                        around = sum(grid[row + r][column + c] for r in (-1, 0, 1)
                                     for c in (-1, 0, 1))
                        want = (around + 3 * want) / 12
                    value = got[row * WIDTH + column]
                    if kind == "float":
                        self.assertAlmostEqual(value, want, 4)
                    else:
                        self.assertEqual(value, int(want + 1e-9), kind)
            out, _ = self.run_it("stats", "b.bil")
            self.assertIn("cell size    2 x 3\n", out)
            self.assertIn("position     5 6.5 ", out)
            self.assertIn("NODATA 200\n", (self.folder / "b.hdr").read_text())
        self.raw("a.bil", [[9, 9, 9], [9, -1, 9], [9, 9, 9]], "short", "NODATA -1\n")
        self.run_it("smooth", "--times", "3", "a.bil", "b.bil")
        self.assertEqual((self.folder / "a.bil").read_bytes(), (self.folder / "b.bil").read_bytes())

    def test_world_files(self):
        grid = hills()
        # Where the first cell's centre is, as world files have it.
        for name, more in (("centre.asc", "xllcenter 100\nyllcenter 200\ncellsize 2.5\n"),
                           ("corner.asc", "xllcorner 98.75\nyllcorner 198.75\nCELLSIZE 2.5\n"),
                           ("sides.asc", "xllcenter 100\nyllcenter 200\ndx 2.5\ndy 2.5\n")):
            self.ascii(name, grid, more)
        self.raw("raw.bil", grid, more="ULXMAP 100\nULYMAP 215\nXDIM 2.5\nYDIM 2.5\n")
        want = [2.5, 0, 0, -2.5, 100, 200 + (HEIGHT - 1) * 2.5]
        for name in ("centre.asc", "corner.asc", "sides.asc", "raw.bil"):
            for command in ("hillshade", "slope", "aspect", "relief", "stretch"):
                _, err = self.run_it(command, name, "out.bmp")
                self.assertEqual(err, "")
                world = self.folder / "out.bpw"
                self.assertEqual([float(line) for line in world.read_text().split()], want)
                os.remove(world)
        # From picture to picture.
        self.run_it("hillshade", "raw.bil", "out.bmp")
        self.run_it("stretch", "out.bmp", "again.qvi")
        self.assertEqual((self.folder / "again.qiw").read_text(),
                         (self.folder / "out.bpw").read_text())

    def test_no_world_file_where_none_can_tell(self):
        self.ascii("a.asc", hills(), "xllcorner 1\nyllcorner 2\ndx 3\ndy 4\n")
        _, err = self.run_it("hillshade", "a.asc", "out.bmp")
        self.assertIn("out.bmp: no world file", err)
        self.assertIn("not square (3 x 4)", err)
        self.ascii("b.asc", hills(), "xllcorner 1\nyllcorner 2\ncellsize 3\n")
        _, err = self.run_it("hillshade", "--type", "bmp", "b.asc", "picture")
        self.assertIn("picture: no world file", err)
        self.ascii("c.asc", hills())
        _, err = self.run_it("hillshade", "c.asc", "c.bmp")
        self.assertEqual(err, "")
        self.assertEqual(self.names(), ["a.asc", "b.asc", "c.asc", "c.bmp", "out.bmp", "picture"])

    def test_hint_at_degrees(self):
        self.ascii("a.asc", hills(), "xllcorner 11\nyllcorner 46\ncellsize 0.0008333\n")
        _, err = self.run_it("slope", "a.asc", "out.bmp")
        self.assertIn("111120", err)
        _, err = self.run_it("slope", "--scale", "111120", "a.asc", "out.bmp")
        self.assertEqual(err, "")

    def test_bad_grids(self):
        size = "NROWS 2\nNCOLS 3\n"
        raw = [  # header, samples, what is said
            ("", bytes(6), "lacks NROWS"),
            ("NROWS 2\n", bytes(6), "lacks NCOLS"),
            ("ENVI\nsamples = 3\nlines = 2\n", bytes(6), "lacks NROWS"),
            (size, bytes(5), "5 bytes are too few"),
            (size + "NBITS 16\n", bytes(11), "11 bytes are too few"),
            (size + "SKIPBYTES 1\n", bytes(6), "too few"),
            (size + "SKIPBYTES 1000000000000000000\n", bytes(6), "too few"),
            (size + "TOTALROWBYTES 4\n", bytes(6), "too few"),
            (size + "TOTALROWBYTES 1000000000000000000\n", bytes(60), "too few"),
            (size + "TOTALROWBYTES 2\n", bytes(60), "states 2 bytes a row"),
            (size + "SKIPBYTES -1\n", bytes(6), "line 3"),
            ("NROWS two\nNCOLS 3\n", bytes(6), 'line 1 of its header: "NROWS" cannot be "two"'),
            ("NROWS\nNCOLS 3\n", bytes(6), '"NROWS" cannot be empty'),
            ("NROWS 0\nNCOLS 3\n", bytes(6), "line 1"),
            ("NROWS -2\nNCOLS 3\n", bytes(6), "line 1"),
            ("NROWS 2\nNCOLS 2147483648\n", bytes(6), "line 2"),
            ("NROWS 2147483647\nNCOLS 2147483647\n", bytes(6), "too few"),
            ("NROWS 1e1\nNCOLS 3\n", bytes(6), "line 1"),
            (size + "NBITS 1\n", bytes(6), "of 1 bits"),
            (size + "NBITS 64\nPIXELTYPE FLOAT\n", bytes(48), "of 64 bits"),
            (size + "NBITS 16\nPIXELTYPE FLOAT\n", bytes(48), "of 16 bits with floating point"),
            (size + "NBITS eight\n", bytes(6), "line 3"),
            (size + "PIXELTYPE COMPLEX\n", bytes(6), "line 3"),
            (size + "BYTEORDER X\n", bytes(6), "line 3"),
            (size + "LAYOUT TIFF\n", bytes(6), "line 3"),
            (size + "NBANDS 3\n", bytes(18), "has 3 bands"),
            (size + "XDIM 0\n", bytes(6), "not above 0"),
            (size + "XDIM -1\n", bytes(6), "not above 0"),
            (size + "XDIM nan\n", bytes(6), "line 3"),
            (size + "ULXMAP inf\n", bytes(6), "line 3"),
            (size + "ULXMAP 1e999\n", bytes(6), "line 3"),
            (size + "ULXMAP 1,5\n", bytes(6), "line 3"),
            (size + "NODATA none\n", bytes(6), "line 3"),
            (size + "NBITS 32\nPIXELTYPE UNSIGNEDINT\n", b"\xff" * 24, "above 2147483647"),
            (size + "NBITS 32\nPIXELTYPE FLOAT\n", struct.pack("<6f", 1, 2, 3, 4, math.inf, 6),
             "row 2, column 2 is infinite"),
        ]
        for header, samples, reason in raw:
            self.file("a.bil", samples)
            self.file("a.hdr", header)
            self.assert_refused("a.bil", reason)
        os.remove(self.folder / "a.hdr")
        self.assert_refused("a.bil", "a.hdr")
        head = "ncols 3\nnrows 2\ncellsize 1\n"
        for text, reason in (
                ("", "lacks ncols"),
                ("1 2 3\n", "lacks ncols"),
                ("ncols 3\ncellsize 1\n1 2 3", "lacks nrows"),
                ("ncols 3\nnrows 2\n1 2 3 4 5 6", "lacks cellsize"),
                ("ncols 3\nnrows 2\ndx 1\n1 2 3 4 5 6", "lacks cellsize"),
                ("ncols x\n", 'line 1: "ncols" "x"'),
                ("ncols 3\nnrows 2.5\n", "line 2"),
                ("ncols 3\nnrows 2\ncellsize 0\n1 2 3 4 5 6", "not above 0"),
                ("ncols 3\nnrows 2\ncellsize nan\n1 2 3 4 5 6", "line 3"),
                ("ncols 3\nnrows 2\ncolour red\n", "line 3"),
                ("DSAA\n3 2\n", "line 1"),
                (head + "1 2 3 4 5", "ends before the last of the 3 x 2 cells"),
                (head + "1 2", "too short for the 3 x 2 cells"),
                ("ncols 2147483647\nnrows 2147483647\ncellsize 1\n1 2 3", "too short"),
                (head + "1 2 3\n4 5 6 7\n", "line 5: there are more values"),
                (head + "1 2 3\n4 five 6\n", 'line 5: "five" is no number'),
                (head + "1 2 3\n4 5,5 6\n", 'line 5: "5,5"'),
                (head + "1 2 3\n4 1e99 6\n", 'line 5: "1e99"'),
                (head + "1 2 3\n4 inf 6\n", "row 2, column 2 is infinite"),
                (head + "1 2 3\n4 5 6\0", "line 5")):
            self.file("a.asc", text)
            self.assert_refused("a.asc", reason)
        self.assert_refused("missing.asc", "missing.asc: ")
        os.mkdir(self.folder / "folder.asc")
        self.assert_refused("folder.asc", "it is a folder")
        self.file("a.xyz", "1 2 3")
        _, err = self.run_it("hillshade", "a.xyz", "out.bmp", code=1)
        self.assertIn("bil, bip, bsq, flt, asc or grd", err)

    def assert_refused(self, name, reason):
        for command in (["stats", name], ["relief", name, "out.bmp"],
                        ["smooth", name, "out.bil"]):
            with self.subTest(command=command, reason=reason):
                _, err = self.run_it(*command, code=1)
                self.assertRegex(err, rf"^rastrel: {name}: .*\n$")
                self.assertIn(reason, err)
                self.assertFalse(any(n.startswith("out") for n in self.names()), self.names())

    def test_bad_ramps(self):
        self.ascii("a.asc", hills())
        for text, reason in (
                ("", "holds no colours"),
                ("# nothing\nnv 1 2 3\n", "holds no colours"),
                ("0 1 2 3\n10 1 2\n", "line 2: a colour is"),
                ("0 1 2 256\n", 'line 1: "256" is no number from 0 to 255'),
                ("0 1 2 -1\n", "line 1"),
                ("0 1 2 3.5\n", "line 1"),
                ("0 1 2 3 300\n", 'line 1: "300" is no alpha'),
                ("0 mauve\n", "line 1: a colour is"),
                ("\n\nlow 1 2 3\n", 'line 3: "low" is no elevation'),
                ("% 1 2 3\n", "line 1"),
                ("1e999 1 2 3\n", "line 1"),
                ("nan 1 2 3\n", "line 1"),
                ("inf 1 2 3\n", "line 1"),
                ("INTERPOLATION:DISCRETE\n1 2 3 4\n", "line 1"),
                ("0\n", "line 1"),
                ("\0\1\2", "line 1")):
            self.file("ramp.txt", text)
            with self.subTest(text=text):
                _, err = self.run_it("relief", "--ramp", "ramp.txt", "a.asc", "out.bmp", code=1)
                self.assertRegex(err, r"^rastrel: ramp.txt: .*\n$")
                self.assertIn(reason, err)
        _, err = self.run_it("relief", "--ramp", "rainbow", "a.asc", "out.bmp", code=1)
        self.assertIn("built-in ramps are elevation", err)
        self.assertEqual(self.names(), ["a.asc", "ramp.txt"])

    def test_bad_outputs_and_options(self):
        self.raw("a.bil", hills())
        before = (self.folder / "a.bil").read_bytes(), (self.folder / "a.hdr").read_text()
        for arguments, reason in ((["hillshade", "a.bil", "no/folder/out.bmp"], "no folder"),
                                  (["relief", "a.bil", "out.xyz"], "extension"),
                                  (["stretch", "a.bil", "a.bil"], "replace the input"),
                                  (["slope", "a.bil", "a.bip"], "replace the input"),
                                  (["aspect", "a.bil", "a.hdr"], "replace the input"),
                                  (["smooth", "a.bil", "./a.bil"], "replace the input"),
                                  (["smooth", "a.bil", "no/folder/b.bil"], "cannot be written")):
            _, err = self.run_it(*arguments, code=1)
            self.assertIn(reason, err)
        for arguments in (["hillshade", "a.bil"], ["relief", "--weight", "2", "a.bil", "b.bmp"],
                          ["hillshade", "--altitude", "91", "a.bil", "b.bmp"],
                          ["hillshade", "--azimuth", "north", "a.bil", "b.bmp"],
                          ["slope", "--scale", "0", "a.bil", "b.bmp"],
                          ["slope", "--z-factor", "nan", "a.bil", "b.bmp"],
                          ["stats", "--step", "0", "a.bil"], ["stretch", "--k", "-1", "a.bil", "b.bmp"],
                          ["smooth", "a.bil", "b.asc"]):
            _, err = self.run_it(*arguments, code=2)
            self.assertTrue(err.strip(), arguments)
        self.assertEqual(self.names(), ["a.bil", "a.hdr"])
        after = (self.folder / "a.bil").read_bytes(), (self.folder / "a.hdr").read_text()
        self.assertEqual(before, after)

    def test_grids_smaller_than_a_neighbourhood(self):
        for rows, columns in ((1, 1), (1, 5), (5, 1), (2, 2)):
            self.ascii("a.asc", [[3] * columns for _ in range(rows)])
            for command, value in (("hillshade", 255), ("slope", 0), ("aspect", 8)):
                self.assertEqual(self.picture(command, "a.asc")[0], [[value] * columns] * rows)
            self.picture("relief", "a.asc")

    @unittest.skipUnless(shutil.which("gdaldem"), "GDAL is not installed")
    def test_agrees_with_gdal(self):
        side = 60
        grid = [[200 * math.sin(r / 9) * math.cos(c / 7) + 3 * r for c in range(side)]
                for r in range(side)]
        self.raw("a.bil", grid, "float", "ULXMAP 100\nULYMAP 900\nXDIM 10\nYDIM 10\n")
        for command, options, unit in (
                ("hillshade", ["-az", "300", "-alt", "40", "-z", "1.5"], 1.0),
                ("slope", [], 1.0)):
            gdal = ["gdaldem", command, "-q", "-of", "ENVI", *options, "a.bil", "gdal.img"]
            subprocess.run(gdal, cwd=self.folder, check=True)
            data = (self.folder / "gdal.img").read_bytes()
            values = data if command == "hillshade" else array.array("f", data)
            arguments = {"hillshade": ["--azimuth", "300", "--altitude", "40", "--z-factor", "1.5"],
                         "slope": []}[command]
            rows, _ = self.picture(command, *arguments, "a.bil")
            for r in range(1, side - 1):
                for c in range(1, side - 1):
                    self.assertLessEqual(abs(rows[r][c] - values[r * side + c]), unit, (r, c))
        want = (self.folder / "out.bmp").read_bytes()
        for driver, name in (("EHdr", "b.bil"), ("AAIGrid", "b.asc"), ("EHdr", "c.flt")):
            subprocess.run(["gdal_translate", "-q", "-of", driver, "a.bil", name], cwd=self.folder,
                           check=True)
            self.run_it("slope", name, "out.bmp")
            self.assertEqual((self.folder / "out.bmp").read_bytes(), want, name)
            out, _ = self.run_it("stats", name)
            self.assertIn("position     100 900 ", out)


if __name__ == "__main__":
    main()
