#!/usr/bin/env python3
"""Compares GIF files with ImageMagick, giflib's tools and netpbm, both ways, through the module as a
Python host loads it.

Usage: gif_test.py MODULE
"""
import ctypes
import os
import pathlib
import random
import re
import sys
import tempfile
import unittest

import module_host
from module_host import Image, new_image, ppm_pixels, run

GIF = 2
SIZES = ((1, 1), (1, 7), (5, 1), (47, 33), (300, 200))


def by_imagemagick(path):
    return ppm_pixels(run("convert-im6.q16", f"gif:{path}[0]", "-alpha", "off", "-type", "TrueColor",
                          "-depth", "8", "+set", "comment", "ppm:-"))


def by_netpbm(path):
    """Grey and black-and-white pictures come as such."""
    pnm = run("giftopnm", str(path))
    colors = pnm if pnm.startswith(b"P6") else run("pgmtoppm", "black-white", data=to_grey(pnm))
    return ppm_pixels(run("pamdepth", "255", data=colors))


def to_grey(pnm):
    return pnm if pnm.startswith(b"P5") else run("pbmtopgm", "1", "1", data=pnm)


def by_giflib(path, folder):
    run("gif2rgb", "-1", "-o", str(folder / "giflib.rgb"), str(path))
    with Image() as image:
        assert image.read(path, GIF) == 1
        width, height, _ = image.pixels()
    return width, height, (folder / "giflib.rgb").read_bytes()


class Gif(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def assert_reads(self, path, expected, what):
        with Image() as image:
            self.assertEqual(image.read(path, GIF), 1, what)
            self.assertEqual(image.pixels(), expected, what)

    def test_ours_open_elsewhere(self):
        path = self.folder / "ours.gif"
        for width, height in SIZES:
            for bits, colors in ((1, 2), (4, 16), (8, 256), (8, 0)):
                with new_image(width, height, bits, colors) as image:
                    what = f"{width} x {height} x {bits}, {colors} colours"
                    ours = image.pixels()
                    self.assertEqual(image.save(path, GIF), 1, what)
                self.assertEqual(by_imagemagick(path), ours, f"ImageMagick, {what}")
                self.assertEqual(by_netpbm(path), ours, f"netpbm, {what}")
                self.assertEqual(by_giflib(path, self.folder), ours, f"giflib, {what}")
                self.assert_reads(path, ours, what)

    def test_reduced_colours_open_elsewhere(self):
        path = self.folder / "reduced.gif"
        with new_image(400, 300, 24) as image:
            self.assertEqual(module_host.MODULE.Rastrel_Conv24To8(image.handle), 1)
            ours = image.pixels()
            self.assertEqual(image.save(path, GIF), 1)
        self.assertEqual(by_imagemagick(path), ours)
        self.assertEqual(by_giflib(path, self.folder), ours)

    def test_tiffs_of_others_become_gifs(self):
        tiff, gif = self.folder / "theirs.dat", self.folder / "ours.gif"
        for kind in ("TrueColor", "Palette", "Grayscale", "Bilevel"):
            run("convert-im6.q16", "-size", "90x500", "-seed", "4", "plasma:red-blue", "-depth", "8",
                "-type", kind, f"tiff:{tiff}")
            self.assertEqual(module_host.MODULE.Rastrel_Tiff2Gif(os.fsencode(tiff),
                                                                 os.fsencode(gif)), 1, kind)
            width, height, pixels = by_imagemagick(gif)
            theirs = ppm_pixels(run("convert-im6.q16", f"tiff:{tiff}", "-type", "TrueColor",
                                    "-depth", "8", "ppm:-"))
            self.assertEqual((width, height), theirs[:2])
            far = sum(abs(a - b) for a, b in zip(pixels, theirs[2])) / len(pixels)
            # Entries of a palette are 16-bit values, which are cut here and rounded there.
            self.assertLessEqual(far, {"TrueColor": 8, "Palette": 1}.get(kind, 0), kind)

    def test_imagemagicks_files(self):
        path = self.folder / "theirs.gif"
        for width, height in SIZES:
            for colors in (2, 3, 16, 100, 256):
                for interlace in ("none", "GIF"):
                    if interlace == "GIF" and height < 8:
                        continue  # it writes wrong rows then
                    run("convert-im6.q16", "-size", f"{width}x{height}", "-seed", "7", "plasma:",
                        "-colors", str(colors), "-interlace", interlace, str(path))
                    what = f"{width} x {height}, {colors} colours, interlace {interlace}"
                    self.assert_reads(path, by_imagemagick(path), what)

    def test_local_tables_comments_and_several_images(self):
        path = self.folder / "several.gif"
        run("convert-im6.q16", "-size", "60x40", "-seed", "1", "plasma:red-blue", "-seed", "2",
            "plasma:yellow-green", "-set", "comment", "a word, with ; and , in it", "-loop", "3",
            str(path))
        expected = by_imagemagick(path)
        self.assert_reads(path, expected, "the first of several")
        # The second image alone, with its local table in place of a global one.
        data = path.read_bytes()
        local = data.rindex(b"\x00,\x00\x00\x00\x00\x3c\x00\x28\x00") + 1
        self.assertTrue(data[local + 9] & 0x80, "a local table")
        path.write_bytes(data[:10] + b"\0\0\0" + data[local:])
        self.assert_reads(path, by_imagemagick(path), "a local table")

    def test_netpbms_files(self):
        path, source = self.folder / "theirs.gif", self.folder / "source.ppm"
        for width, height in SIZES + ((9, 3), (9, 2)):
            for colors in (2, 37, 250):
                run("convert-im6.q16", "-size", f"{width}x{height}", "-seed", "6", "plasma:",
                    "-colors", str(colors), "-depth", "8", str(source))
                for options in ([], ["-interlace"], ["-nolzw"], ["-transparent=black"]):
                    path.write_bytes(run("ppmtogif", *options, str(source)))
                    self.assert_reads(path, by_netpbm(path),
                                      f"{width} x {height}, {colors} colours, {options}")

    def test_transparency_is_that_of_others(self):
        path = self.folder / "clear.gif"
        run("convert-im6.q16", "-size", "20x10", "xc:red", "-fill", "lime", "-draw",
            "rectangle 3,3 8,8", "-transparent", "lime", str(path))
        told = re.search(rb"Transparent Index: (\d+)", run("giftext", str(path)))
        module = module_host.MODULE
        with Image() as image:
            self.assertEqual(image.read(path, GIF), 1)
            color = [ctypes.c_uint8(77) for _ in range(3)]
            self.assertEqual(module.Rastrel_GetTransparentColor(image.handle,
                                                                *map(ctypes.byref, color)), 1)
            palette = [ctypes.create_string_buffer(256) for _ in range(3)]
            module.Rastrel_GetPalette(image.handle, 256, *palette)
        self.assertEqual(bytes(part.value for part in color),
                         b"".join(channel[int(told[1])] for channel in palette))

    def test_giflibs_files(self):
        path = self.folder / "file.gif"
        for width, height in SIZES + ((9, 3), (9, 2)):
            with new_image(width, height, 8, 256) as image:
                ours = image.pixels()
                self.assertEqual(image.save(path, GIF), 1)
            for interlace in ("1", "0"):
                path.write_bytes(run("giftool", "-i", interlace, data=path.read_bytes()))
                self.assert_reads(path, ours, f"{width} x {height}, interlace {interlace}")

    def test_damaged_files_read_or_fail(self):
        path = self.folder / "theirs.gif"
        run("convert-im6.q16", "-size", "50x40", "-seed", "7", "plasma:", "-colors", "60", str(path))
        data = path.read_bytes()
        chance = random.Random(1)
        results = set()
        for _ in range(3000):
            damaged = bytearray(data)
            for _ in range(chance.randrange(1, 5)):
                damaged[chance.randrange(len(damaged))] = chance.randrange(256)
            path.write_bytes(damaged)
            with Image() as image:
                results.add(image.read(path, GIF))
        self.assertEqual(results, {0, 1})


if __name__ == "__main__":
    module_host.load(sys.argv[1])
    unittest.main(argv=sys.argv[:1])
