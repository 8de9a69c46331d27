#!/usr/bin/env python3
"""Compares raw files and georeferences with GDAL, both ways, through the module as a Python host
loads it.

Usage: raw_test.py MODULE
"""
import ctypes
import json
import os
import pathlib
import random
import sys
import tempfile
import unittest

import module_host
from module_host import Image, new_image, ppm_pixels, run

LAYOUTS = {"bil": 6, "bip": 7, "bsq": 8}
# GDAL does not look at files shorter than two bytes.
SIZES = ((47, 33), (2, 1), (8, 3), (501, 2))


def by_gdal(path, *options):
    """The picture that GDAL sees in a file."""
    with tempfile.TemporaryDirectory() as folder:
        ppm = pathlib.Path(folder, "a.ppm")
        run("gdal_translate", "-q", "-of", "PNM", *options, path, ppm)
        return ppm_pixels(ppm.read_bytes())


def write_georeference(path, x, y, pixel_size):
    return module_host.MODULE.Rastrel_WriteGeoref(os.fsencode(path), ctypes.c_double(x),
                                                  ctypes.c_double(y), ctypes.c_double(pixel_size))


def read_georeference(path):
    values = [ctypes.c_double(-7) for _ in range(3)]
    result = module_host.MODULE.Rastrel_ReadGeoref(os.fsencode(path),
                                                   *(ctypes.byref(v) for v in values))
    return result, *(v.value for v in values)


class RawFiles(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def assert_same(self, ours, theirs, what):
        self.assertEqual(ours[:2], theirs[:2], what)
        self.assertTrue(ours[2] == theirs[2], f"{what}: pixels differ")

    def ppm(self, width, height):
        path = self.folder / "theirs.ppm"
        path.write_bytes(b"P6\n%d %d\n255\n" % (width, height) +
                         random.Random(width).randbytes(width * height * 3))
        return path

    def test_ours_open_in_gdal(self):
        for layout, code in LAYOUTS.items():
            for width, height in SIZES:
                for bits, colors in ((24, 0), (8, 256), (4, 16), (1, 2)):
                    path = self.folder / f"ours{bits}.{layout}"
                    with new_image(width, height, bits, colors) as image:
                        self.assertEqual(image.save(path, code), 1)
                        expand = () if bits == 24 else ("-expand", "rgb")
                        self.assert_same(image.pixels(), by_gdal(path, *expand),
                                         f"{layout}, {width} x {height} x {bits}")

    def test_theirs_open_here(self):
        for width, height in SIZES:
            ppm = self.ppm(width, height)
            expected = ppm_pixels(ppm.read_bytes())
            path = self.folder / "theirs.bil"
            run("gdal_translate", "-q", "-of", "EHdr", ppm, path)
            with Image() as image:
                self.assertEqual(image.read(path, -1), 1)
                self.assert_same(image.pixels(), expected, f"EHdr, {width} x {height}")
            for layout in LAYOUTS:
                # The same pixels in all three layouts, with another kind of header.
                path = self.folder / f"envi.{layout}"
                run("gdal_translate", "-q", "-of", "ENVI", "-co",
                    f"INTERLEAVE={layout.upper()}", ppm, path)
                path.with_suffix(".hdr").write_text(
                    f"NROWS {height}\nNCOLS {width}\nNBANDS 3\nNBITS 8\n")
                with Image() as image:
                    self.assertEqual(image.read(path, -1), 1)
                    self.assert_same(image.pixels(), expected, f"{layout}, {width} x {height}")

    def test_their_palettes_open_here(self):
        png = self.folder / "few.png"
        run("convert-im6.q16", self.ppm(47, 33), "-colors", "20", "-type", "Palette", "-define",
            "png:bit-depth=8", f"png8:{png}")
        path = self.folder / "few.bil"
        run("gdal_translate", "-q", "-of", "EHdr", png, path)
        self.assertTrue(path.with_suffix(".clr").exists())
        with Image() as image:
            self.assertEqual(image.read(path, -1), 1)
            self.assertEqual(image.depth(), 8)
            self.assert_same(image.pixels(), by_gdal(png, "-expand", "rgb"), "palette")

    def test_parts_are_what_gdal_cuts_out(self):
        ppm = self.ppm(47, 33)
        for layout, code in LAYOUTS.items():
            path = self.folder / f"a.{layout}"
            with Image() as image:
                self.assertEqual(image.read(self.save_as(ppm, layout), code), 1)
                self.assertEqual(image.save(path, code), 1)
                self.assertEqual(image.read_part(path, code, 5, 7, 13, 11), 1)
                self.assert_same(image.pixels(), by_gdal(ppm, "-srcwin", "5", "7", "13", "11"),
                                 layout)

    def save_as(self, ppm, layout):
        path = self.folder / f"source.{layout}"
        run("gdal_translate", "-q", "-of", "ENVI", "-co", f"INTERLEAVE={layout.upper()}", ppm, path)
        path.with_suffix(".hdr").write_text("NROWS 33\nNCOLS 47\nNBANDS 3\nNBITS 8\n")
        return path

    def test_georeferences_are_read_by_gdal_and_back(self):
        # Others take the coordinates in world files and headers for the centre of the first pixel.
        for name, options in (("a.tif", ("-of", "GTiff")), ("a.bmp", ("-of", "BMP")),
                              ("a.png", ("-of", "PNG")), ("a.jpg", ("-of", "JPEG")),
                              ("a.bil", ("-of", "EHdr"))):
            path = self.folder / name
            run("gdal_translate", "-q", *options, self.ppm(8, 3), path)
            self.assertEqual(write_georeference(path, 600000.25, 5100000.5, 2.5), 1)
            transform = json.loads(run("gdalinfo", "-json", path))["geoTransform"]
            self.assertEqual(transform, [600000.25 - 1.25, 2.5, 0, 5100000.5 + 1.25, 0, -2.5], name)
            self.assertEqual(read_georeference(path), (1, 600000.25, 5100000.5, 2.5))
        path = self.folder / "b.tif"
        run("gdal_translate", "-q", "-co", "TFW=YES", "-a_ullr", "1000", "2000", "1040", "1985",
            self.ppm(8, 3), path)
        self.assertEqual(read_georeference(path), (1, 1002.5, 1997.5, 5))
        path = self.folder / "c.bil"
        run("gdal_translate", "-q", "-of", "EHdr", "-a_ullr", "1000", "2000", "1040", "1985",
            self.ppm(8, 3), path)
        self.assertEqual(read_georeference(path), (1, 1002.5, 1997.5, 5))


if __name__ == "__main__":
    module_host.load(sys.argv[1])
    unittest.main(argv=sys.argv[:1])
