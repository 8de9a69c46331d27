#!/usr/bin/env python3
"""Compares TIFF files with libtiff's own tools, GDAL and ImageMagick, both ways, through the module
as a Python host loads it.

Usage: tiff_test.py MODULE [FOLDER OF LIBTIFF'S TEST IMAGES]
"""
import itertools
import os
import pathlib
import random
import struct
import subprocess
import sys
import tempfile
import unittest

import module_host
from module_host import Image, new_image, ppm_pixels, run

TIFF = 4
CORPUS = None
WIDTH, HEIGHT = 147, 133


def by_imagemagick(path):
    return ppm_pixels(run("convert-im6.q16", f"tiff:{path}[0]", "-alpha", "off", "-type", "TrueColor",
                          "-depth", "8", "ppm:-"))


def by_gdal(path, folder):
    """As GDAL shows the bands, three of them or one for all three channels; 16 bits to the nearest
    of 8, where ImageMagick cuts."""
    out = folder / "gdal.ppm"
    command = ["gdal_translate", "-q", "-of", "PNM", str(path), str(out)]
    if b"Bits/Sample: 16" in run("tiffinfo", str(path)):
        command[1:1] = ["-ot", "Byte", "-scale", "0", "65535", "0", "255"]
    bands = run("gdalinfo", str(path)).count(b"\nBand ")
    if bands > 3:
        command[1:1] = ["-b", "1", "-b", "2", "-b", "3"]
    run(*command)
    data = out.read_bytes()
    return ppm_pixels(data if data.startswith(b"P6") else run("pgmtoppm", "black-white", data=data))


def tiff_file(tags, strips):
    """A file of strips with the tags given, each a number and its 16-bit values."""
    head = b"II*\0"
    offsets, data = [], b""
    for strip in strips:
        offsets.append(8 + len(data))
        data += strip
    entries = [(tag, 3, values) for tag, *values in tags]
    entries += [(273, 4, offsets), (279, 4, [len(strip) for strip in strips])]
    directory, rest = struct.pack("<H", len(entries)), b""
    at = 8 + len(data)
    behind = at + 2 + 12 * len(entries) + 4
    for tag, kind, values in sorted(entries):
        packed = struct.pack(f"<{len(values)}{'HI'[kind - 3]}", *values).ljust(4, b"\0")
        if len(packed) > 4:
            rest, packed = rest + packed, struct.pack("<I", behind + len(rest))
        directory += struct.pack("<HHI", tag, kind, len(values)) + packed
    return head + struct.pack("<I", at) + data + directory + bytes(4) + rest


class Tiff(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        # The log of messages goes to the current folder.
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(self.folder)

    def assert_same(self, ours, theirs, what):
        self.assertEqual(ours[:2], theirs[:2], what)
        if ours[2] == theirs[2]:
            return
        wrong = [i for i, (a, b) in enumerate(zip(ours[2], theirs[2])) if a != b]
        pixel, channel = divmod(wrong[0], 3)
        self.fail(f"{what}: {len(wrong)} samples differ, the first at column {pixel % ours[0]} of "
                  f"row {pixel // ours[0]}, channel {channel}: {ours[2][wrong[0]]} here, "
                  f"{theirs[2][wrong[0]]} there; {len(ours[2])} and {len(theirs[2])} in all")

    def assert_reads(self, path, expected, what):
        """The whole, a part and a reduced part."""
        with Image() as image:
            self.assertEqual(image.read(path, TIFF), 1, what)
            whole = image.pixels()
            self.assert_same(whole, expected, what)
            x, y = whole[0] // 3, whole[1] // 4
            width, height = (whole[0] + 1) // 2, (whole[1] + 1) // 2
            for step in (1, 3):
                self.assertEqual(image.read_part(path, TIFF, x, y, width, height, step), 1, what)
                rows = []
                for row in range(y, y + height, step):
                    for column in range(x, x + width, step):
                        at = 3 * (row * whole[0] + column)
                        rows.append(whole[2][at:at + 3])
                size = (width - 1) // step + 1, (height - 1) // step + 1
                self.assert_same(image.pixels(), (*size, b"".join(rows)), f"a part of {what}")

    def sources(self):
        """Pictures in every form that the tools below pass on unchanged, by name."""
        plasma = ["convert-im6.q16", "-size", f"{WIDTH}x{HEIGHT}", "-seed", "3", "plasma:red-blue"]
        forms = {
            "colours": ["-type", "TrueColor", "-depth", "8"],
            "colours of 16 bits": ["-type", "TrueColor", "-depth", "16"],
            "grey": ["-colorspace", "Gray", "-type", "Grayscale", "-depth", "8"],
            "grey of 16 bits": ["-colorspace", "Gray", "-type", "Grayscale", "-depth", "16"],
            "grey of 4 bits": ["-colorspace", "Gray", "-type", "Grayscale", "-depth", "4"],
            "grey of 2 bits": ["-colorspace", "Gray", "-type", "Grayscale", "-depth", "2"],
            "palette": ["-type", "Palette", "-colors", "200", "-depth", "8"],
            "palette of 4 bits": ["-type", "Palette", "-colors", "13", "-depth", "4"],
            "black and white": ["-monochrome", "-depth", "1"],
            "alpha": ["-alpha", "set", "-channel", "A", "-evaluate", "set", "40%", "-type",
                      "TrueColorAlpha", "-depth", "8"],
        }
        for name, options in forms.items():
            path = self.folder / "source.tif"
            run(*plasma, *options, "-compress", "none", str(path))
            yield name, path

    def test_every_layout_reads_as_it_was_written(self):
        checked = 0
        for name, source in self.sources():
            expected = (by_gdal(source, self.folder) if "16 bits" in name
                        else by_imagemagick(source))
            bits = 1 if name == "black and white" else 4 if "4 bits" in name else 8
            schemes = ["none", "lzw", "zip", "packbits"]
            if "bits" not in name and bits == 8:
                schemes += ["lzw:2", "zip:2"]
            if bits == 1:
                schemes += ["g3", "g3:2d", "g4"]
            layouts = [("-s", "-r", "16"), ("-s", "-r", "1000"), ("-s", "-r", "1"),
                       ("-t", "-w", "64", "-l", "48"), ("-t", "-w", "256", "-l", "256")]
            several = name in ("colours", "colours of 16 bits", "alpha")
            planes = ["contig", "separate"] if several else ["contig"]
            orders = [("-L",), ("-B",), ("-f", "lsb2msb"), ("-8",)]
            for scheme, layout, plane in itertools.product(schemes, layouts, planes):
                for order in orders if layout[-1] in ("16", "48") else orders[:1]:
                    path = self.folder / "layout.tif"
                    what = f"{name}: {scheme} {' '.join(layout)} {plane} {' '.join(order)}"
                    made = subprocess.run(["tiffcp", "-c", scheme, *layout, "-p", plane, *order,
                                           str(source), str(path)], capture_output=True)
                    if made.returncode != 0:
                        continue  # fax codes have no tiles, for one
                    checked += 1
                    self.assert_reads(path, expected, what)
        self.assertGreater(checked, 300)

    def test_jpeg_reads_as_elsewhere(self):
        for name, source in self.sources():
            if name not in ("colours", "grey"):
                continue
            for scheme in ("jpeg:90", "jpeg:r:90"):
                for layout in (("-s", "-r", "16"), ("-s", "-r", "1000"),
                               ("-t", "-w", "64", "-l", "64")):
                    path = self.folder / "jpeg.tif"
                    run("tiffcp", "-c", scheme, *layout, str(source), str(path))
                    self.assert_reads(path, by_gdal(path, self.folder), f"{name} {scheme} {layout}")

    def test_colour_differences_read_as_libtiff_shows_them(self):
        chance = random.Random(4)
        width, height = 52, 40
        for across, down, rows in itertools.product((1, 2, 4), (1, 2), (8, 40)):
            # Blocks of across x down brightnesses, then the two differences they share.
            strip = width * rows + 2 * (width // across) * (rows // down)
            path = self.folder / "ycbcr.tif"
            path.write_bytes(tiff_file(
                [(256, width), (257, height), (258, 8, 8, 8), (259, 1), (262, 6), (277, 3),
                 (278, rows), (530, across, down)],
                [chance.randbytes(strip) for _ in range(height // rows)]))
            rgba = self.folder / "rgba.tif"
            run("tiff2rgba", "-c", "none", str(path), str(rgba))
            self.assert_reads(path, by_imagemagick(rgba), f"{across} x {down}, {rows} rows")

    def test_files_of_gdal(self):
        source = self.folder / "source.tif"
        run("convert-im6.q16", "-size", f"{WIDTH}x{HEIGHT}", "-seed", "9", "plasma:", "-depth", "8",
            str(source))
        expected = by_imagemagick(source)
        for options in ("COMPRESS=LZW TILED=YES", "COMPRESS=DEFLATE PREDICTOR=2", "COMPRESS=ZSTD",
                        "COMPRESS=LZMA", "COMPRESS=PACKBITS INTERLEAVE=BAND", "BIGTIFF=YES",
                        "TILED=YES INTERLEAVE=BAND BLOCKXSIZE=16 BLOCKYSIZE=256", "ENDIANNESS=BIG",
                        "COMPRESS=WEBP WEBP_LOSSLESS=YES", "PHOTOMETRIC=MINISBLACK"):
            path = self.folder / "gdal.tif"
            run("gdal_translate", "-q", *[part for o in options.split() for part in ("-co", o)],
                str(source), str(path))
            self.assert_reads(path, expected, options)

    def test_orientations_keep_their_rows(self):
        source = self.folder / "source.tif"
        run("convert-im6.q16", "-size", "20x10", "-seed", "2", "plasma:", "-depth", "8", str(source))
        width, height, upright = by_imagemagick(source)
        row = 3 * width
        turned = b"".join(upright[y * row:(y + 1) * row] for y in reversed(range(height)))
        for orientation in range(1, 9):
            run("tiffset", "-s", "274", str(orientation), str(source))
            expected = upright if orientation in (1, 2, 5, 6) else turned
            self.assert_reads(source, (width, height, expected), f"orientation {orientation}")

    def test_ours_open_elsewhere(self):
        path = self.folder / "ours.tif"
        for width, height in ((47, 33), (1, 1), (8, 3), (300, 200)):
            for bits, colors in ((1, 2), (4, 16), (8, 256), (8, 7), (24, 0)):
                for code in (1, 2, 3, 4, 5, 8, 32773, 32946, 50000):
                    with new_image(width, height, bits, colors) as image:
                        if bits == 1:
                            # Two colours become black and white.
                            module_host.MODULE.Rastrel_SetPalette(image.handle, 2, b"\0\xff",
                                                                  b"\0\xff", b"\0\xff")
                        what = f"{width} x {height} x {bits}, compression {code}"
                        ours = image.pixels()
                        module_host.MODULE.Rastrel_SetQuality(image.handle, code)
                        self.assertEqual(image.save(path, TIFF), 1, what)
                        written = run("tiffinfo", str(path))
                        fax_refused = code in (2, 3, 4) and bits != 1
                        self.assertEqual(b"Scheme: None" in written, code == 1 or fax_refused, what)
                        if bits == 8 and colors == 7:
                            continue  # indices beyond the palette are black there and nothing here
                        if code != 50000:
                            self.assert_same(ours, by_imagemagick(path), f"ImageMagick, {what}")
                        rgba = self.folder / "rgba.tif"
                        run("tiff2rgba", "-c", "none", str(path), str(rgba))
                        self.assert_same(ours, by_imagemagick(rgba), f"libtiff, {what}")
                        self.assertEqual(image.read(path, TIFF), 1)
                        self.assert_same(image.pixels(), ours, f"read again, {what}")

    def test_ours_in_jpeg_are_near(self):
        path = self.folder / "ours.tif"
        run("convert-im6.q16", "-size", "200x150", "gradient:red-blue", "-depth", "8", str(path))
        with Image() as image:
            self.assertEqual(image.read(path, TIFF), 1)
            ours = image.pixels()
            module_host.MODULE.Rastrel_SetQuality(image.handle, 7)
            self.assertEqual(image.save(path, TIFF), 1)
            self.assertIn(b"Scheme: JPEG", run("tiffinfo", str(path)))
            theirs = by_imagemagick(path)
            self.assertLess(max(abs(a - b) for a, b in zip(ours[2], theirs[2])), 20)

    def test_bands_make_the_file_that_the_whole_makes(self):
        whole, banded = self.folder / "whole.tif", self.folder / "banded.tif"
        for bits, colors, code in itertools.product((1, 4, 8, 24), (256,), (1, 4, 5, 32773)):
            if code == 4 and bits != 1:
                continue
            with new_image(48, 64, bits, min(colors, 1 << bits) if bits < 24 else 0) as image:
                module_host.MODULE.Rastrel_SetQuality(image.handle, code)
                self.assertEqual(image.save(whole, TIFF), 1)
                self.save_bands(image, banded, code, (10, 1, 53))
            self.assertEqual(banded.read_bytes(), whole.read_bytes(), f"{bits} bits, {code}")

    def save_bands(self, image, path, code, heights):
        module = module_host.MODULE
        writer, top = 0, 0
        for height in heights:
            with Image() as band:
                self.assertEqual(module.Rastrel_Copy(band.handle, image.handle), 1)
                self.assertEqual(
                    module.Rastrel_ExtractPortion(band.handle, 0, top, 48, height), 1)
                if top == 0:
                    writer = module.Rastrel_TIFFOpen(os.fsencode(path), code, 48, sum(heights),
                                                     band.handle)
                    self.assertNotEqual(writer, 0)
                else:
                    self.assertEqual(module.Rastrel_TIFFAppend(writer, band.handle), 1)
            top += height
        self.assertEqual(module.Rastrel_TIFFClose(writer), 1)

    @unittest.skipUnless(len(sys.argv) > 2, "no folder of libtiff's test images given")
    def test_libtiffs_own_images(self):
        # Two samples, floating point, 16-bit luminances and CMYK have no path here.
        refused = {"minisblack-2c-8b-alpha.tiff", "logluv-3c-16b.tiff",
                   "test_float64_predictor2_be_lzw.tif", "test_float64_predictor2_le_lzw.tif"}
        seen = 0
        for path in sorted(CORPUS.glob("*.tif*")):
            with Image() as image:
                result = image.read(path, TIFF)
            seen += 1
            if path.name in refused:
                self.assertEqual(result, 0, path.name)
                continue
            self.assertEqual(result, 1, path.name)
            rgba = self.folder / "rgba.tif"
            if "16b" in path.name:
                self.assert_reads(path, by_gdal(path, self.folder), path.name)
                continue
            run("tiff2rgba", "-c", "none", str(path), str(rgba))
            self.assert_reads(path, by_imagemagick(rgba), path.name)
        self.assertGreater(seen, 20)


if __name__ == "__main__":
    module_host.load(sys.argv[1])
    CORPUS = pathlib.Path(sys.argv[2]) if len(sys.argv) > 2 else None
    unittest.main(argv=sys.argv[:1])
