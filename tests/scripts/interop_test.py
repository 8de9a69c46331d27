#!/usr/bin/env python3
"""Compares BMP files with ImageMagick and netpbm, both ways, through the module as a Python host
loads it.

Usage: interop_test.py MODULE [FOLDER OF BITMAP FILES]
"""
import pathlib
import random
import struct
import subprocess
import sys
import tempfile
import unittest

import module_host
from module_host import Image, new_image, ppm_pixels, run

CORPUS = None


def by_imagemagick(path):
    return ppm_pixels(run("convert-im6.q16", f"bmp:{path}", "-alpha", "off", "-type", "TrueColor",
                          "-depth", "8", "ppm:-"))


def by_netpbm(path):
    picture = run("bmptopnm", path)
    if picture.startswith(b"P4"):
        picture = run("pnmdepth", "255", data=picture)
    if picture.startswith(b"P5"):
        picture = run("pgmtoppm", "black-white", data=picture)
    return ppm_pixels(picture)


class Interop(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def assert_same(self, ours, theirs, what):
        self.assertEqual(ours[:2], theirs[:2], what)
        self.assertTrue(ours[2] == theirs[2], f"{what}: pixels differ")

    def test_ours_open_elsewhere(self):
        for width, height in ((47, 33), (1, 1), (8, 3), (32, 2)):
            for bits, colors in ((4, 16), (8, 256), (24, 0), (32, 0)):
                with new_image(width, height, bits, colors) as image:
                    self.assert_opens_elsewhere(image, f"{width} x {height} x {bits}")

    def test_ours_of_two_colours_open_elsewhere(self):
        # New 1-bit images state 8 colours, which Windows takes and these programs refuse; those that
        # were read keep what their files stated.
        path = self.folder / "theirs.bmp"
        for width, height in ((47, 33), (1, 1), (8, 3), (32, 2)):
            size = f"{width}x{height}"
            path.write_bytes(run("convert-im6.q16", "-size", size, "-seed", "5", "plasma:", "-colors",
                                 "2", "-monochrome", "bmp3:-"))
            with Image() as image:
                self.assertEqual(image.read(path), 1)
                self.assertEqual(image.depth(), 1)
                self.assert_opens_elsewhere(image, size)

    def assert_opens_elsewhere(self, image, what):
        path = self.folder / "ours.bmp"
        self.assertEqual(image.save(path), 1)
        self.assert_same(image.pixels(), by_imagemagick(path), f"ImageMagick, {what}")
        self.assert_same(image.pixels(), by_netpbm(path), f"netpbm, {what}")

    def test_theirs_open_here(self):
        chance = random.Random(7)
        ppm = b"P6\n47 33\n255\n" + chance.randbytes(47 * 33 * 3)
        few = b"P6\n47 33\n255\n" + b"".join(
            chance.choice([b"\0\0\0", b"\xff\x80\x01", b"\x10\x20\x30"]) for _ in range(47 * 33))
        two = b"P6\n47 33\n255\n" + b"".join(
            chance.choice([b"\0\0\0", b"\xff\xff\xff"]) for _ in range(47 * 33))
        files = {}
        for name, source in (("many", ppm), ("few", few), ("two", two)):
            for kind in ("bmp", "bmp2", "bmp3"):
                files[f"ImageMagick {kind} {name}"] = run(
                    "convert-im6.q16", "ppm:-", "-compress", "none", "-alpha", "off", f"{kind}:-",
                    data=source)
        for kind in ("-windows", "-os2"):
            files[f"netpbm {kind} many"] = run("ppmtobmp", kind, "-bpp=24", data=ppm)
            for bpp in ("8", "4"):
                files[f"netpbm {kind} few {bpp}"] = run("ppmtobmp", kind, f"-bpp={bpp}", data=few)
            files[f"netpbm {kind} two 1"] = run("ppmtobmp", kind, "-bpp=1", data=two)
        for what, data in files.items():
            path = self.folder / "theirs.bmp"
            path.write_bytes(data)
            expected = ppm if "many" in what else few if "few" in what else two
            with Image() as image:
                self.assertEqual(image.read(path), 1, what)
                self.assert_same(image.pixels(), ppm_pixels(expected), what)

    @unittest.skipUnless(len(sys.argv) > 2, "no folder of bitmap files given")
    def test_files_of_others_look_the_same_as_elsewhere(self):
        compared = 0
        for path in sorted(pathlib.Path(CORPUS).rglob("*.bmp")):
            data = path.read_bytes()
            if len(data) < 54 or data[:2] != b"BM":
                continue
            header_size, = struct.unpack("<I", data[14:18])
            compression, = struct.unpack("<I", data[30:34]) if header_size >= 40 else (0,)
            # Coded data and bit fields are kept as they stand; ImageMagick takes the three-byte
            # colours of OS/2's first version for those of its second, too.
            if compression != 0 or header_size not in (12, 40, 108, 124):
                continue
            try:
                theirs = by_imagemagick(path)
            except subprocess.CalledProcessError:
                continue
            with Image() as image:
                if image.read(path) != 1:
                    continue
                compared += 1
                self.assert_same(image.pixels(), theirs, path.name)
        self.assertGreater(compared, 20)


if __name__ == "__main__":
    module_host.load(sys.argv[1])
    CORPUS = sys.argv[2] if len(sys.argv) > 2 else None
    unittest.main(argv=sys.argv[:1])
