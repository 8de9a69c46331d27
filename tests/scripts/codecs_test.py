#!/usr/bin/env python3
"""Compares JPEG, PNG and JPEG 2000 files with djpeg, cjpeg, netpbm, ImageMagick and OpenJPEG's
programs, both ways, through the module as a Python host loads it.

Usage: codecs_test.py MODULE [FOLDER OF PNG'S TEST SUITE [FOLDER OF LIBJPEG-TURBO'S TEST IMAGES]]
"""
import itertools
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

import module_host
from module_host import Image, new_image, ppm_pixels, run

JPEG, PNG, JP2 = 1, 3, 15
SUITE = None
JPEG_IMAGES = None
TRUE_COLOR = ("-depth", "8", "-type", "TrueColor")


def pnm_pixels(data):
    """Width, height and packed red, green, blue of any binary netpbm file, to the nearest of 8 bits
    a sample."""
    header = re.match(rb"(P[456])\n(?:#.*\n)?(\d+)\s(\d+)\s(?:(\d+)\s)?", data)
    kind, width, height = header[1], int(header[2]), int(header[3])
    levels = data[header.end():]
    if kind == b"P4":
        row = (width + 7) // 8
        levels = [255 * (levels[y * row + x // 8] >> (7 - x % 8) & 1 ^ 1)
                  for y in range(height) for x in range(width)]
    else:
        greatest = int(header[4])
        if greatest > 255:
            levels = [a << 8 | b for a, b in zip(levels[::2], levels[1::2])]
        levels = [(level * 255 + greatest // 2) // greatest for level in levels]
    if kind != b"P6":
        levels = [level for level in levels for _ in range(3)]
    return width, height, bytes(levels)


def by_djpeg(path):
    return pnm_pixels(run("djpeg", "-pnm", str(path)))


def by_pngtopnm(path):
    """Without gamma and alpha."""
    return pnm_pixels(run("pngtopnm", str(path)))


def by_imagemagick(path, *options):
    return ppm_pixels(run("convert-im6.q16", str(path), *options, "-type", "TrueColor", "-depth",
                          "8", "ppm:-"))


def by_opj(path, folder, *options):
    out = folder / "opj.ppm"
    run("opj_decompress", "-i", str(path), "-o", str(out), *options)
    return pnm_pixels(out.read_bytes())


class Codecs(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def plasma(self, name, width, height, *options):
        path = self.folder / name
        run("convert-im6.q16", "-size", f"{width}x{height}", "-seed", "3", "plasma:red-blue",
            *options, str(path))
        return path

    def assert_same(self, ours, theirs, what):
        self.assertEqual(ours[:2], theirs[:2], what)
        if ours[2] != theirs[2]:
            wrong = [i for i, (a, b) in enumerate(zip(ours[2], theirs[2])) if a != b]
            row, column = divmod(wrong[0] // 3, ours[0])
            self.fail(f"{what}: {len(wrong)} samples differ, the first at column {column} of row "
                      f"{row}: {ours[2][wrong[0]]} here, {theirs[2][wrong[0]]} there")

    def assert_reads(self, path, image_type, expected, what):
        """The whole, then parts that begin and end at odd places."""
        with Image() as image:
            self.assertEqual(image.read(path, image_type), 1, what)
            width, height, pixels = image.pixels()
            self.assert_same((width, height, pixels), expected, what)
            for x, y in itertools.product((0, width // 3, width // 2 | 1), (0, height // 3 | 1)):
                if x >= width or y >= height:
                    continue
                for size in ((1, 1), ((width + 2) // 3, (height + 1) // 2), (width, 3)):
                    size = min(size[0], width - x), min(size[1], height - y)
                    self.assertEqual(image.read_part(path, image_type, x, y, *size), 1, what)
                    rows = [pixels[3 * (row * width + x):3 * (row * width + x + size[0])]
                            for row in range(y, y + size[1])]
                    self.assert_same(image.pixels(), (*size, b"".join(rows)),
                                     f"{size} at {x}, {y} of {what}")

    def assert_refused(self, path, image_type, what):
        with new_image(5, 4, 24) as image:
            before = image.pixels()
            self.assertEqual(image.read(path, image_type), 0, what)
            self.assertEqual(module_host.MODULE.Rastrel_GetWidth(image.handle), 0, what)
            self.assertEqual(len(before[2]), 60)

    # JPEG

    def test_jpeg_reads_as_djpeg_shows_it(self):
        forms = [("-grayscale",), ("-sample", "1x1"), ("-sample", "2x1"), ("-sample", "2x2"),
                 ("-sample", "1x2"), ("-sample", "4x1"), ("-sample", "4x2"), ("-rgb",),
                 ("-sample", "2x2,1x2,2x1"), ("-restart", "1")]
        for size in ((147, 133), (16, 16), (1, 1), (33, 7)):
            source = self.plasma("source.ppm", *size)
            for form in forms:
                for coding in ((), ("-progressive",), ("-optimize",), ("-arithmetic",)):
                    path = self.folder / "a.jpg"
                    path.write_bytes(run("cjpeg", "-quality", "80", *form, *coding, str(source)))
                    what = f"{size} {form} {coding}"
                    self.assert_reads(path, JPEG, by_djpeg(path), what)

    def test_four_colours_are_refused(self):
        for name, options in (("CMYK", ("-colorspace", "CMYK")),
                              ("CMYK without subsampling",
                               ("-colorspace", "CMYK", "-sampling-factor", "1x1"))):
            path = self.plasma("a.jpg", 40, 30, *options)
            self.assertIn(b"CMYK", run("identify-im6.q16", "-format", "%[colorspace]", str(path)))
            self.assert_refused(path, JPEG, name)
            # The same with the marker that calls the four brightness and differences.
            data = bytearray(path.read_bytes())
            marker = data.index(b"Adobe")
            data[marker + 11] = 2
            path.write_bytes(data)
            self.assert_refused(path, JPEG, "YCCK")

    def test_jpeg_files_of_ours_are_those_of_cjpeg(self):
        for width, height in ((147, 133), (1, 1), (8, 16)):
            source = self.plasma("source.bmp", width, height, *TRUE_COLOR)
            ours, theirs = self.folder / "ours.jpg", self.folder / "theirs.jpg"
            with Image() as image:
                self.assertEqual(image.read(source), 1)
                for quality in (1, 50, 75, 100):
                    module_host.MODULE.Rastrel_SetQuality(image.handle, quality)
                    self.assertEqual(image.save(ours, JPEG), 1)
                    theirs.write_bytes(run("cjpeg", "-baseline", "-quality", str(quality),
                                           data=run("bmptopnm", str(source))))
                    self.assert_same(by_djpeg(ours), by_djpeg(theirs), f"quality {quality}")

    # PNG

    def test_png_reads_as_netpbm_shows_it(self):
        forms = {
            "colours": ("-type", "TrueColor", "-depth", "8"),
            "colours of 16 bits": ("-depth", "16", "-define", "png:format=png48"),
            "grey": ("-colorspace", "Gray", "-depth", "8"),
            "grey of 4 bits": ("-colorspace", "Gray", "-depth", "4", "-define", "png:bit-depth=4"),
            "palette": ("-colors", "200", "-define", "png:format=png8"),
            "palette of 4 bits": ("-colors", "13", "-define", "png:format=png8", "-define",
                                  "png:bit-depth=4"),
            "black and white": ("-monochrome", "-depth", "1"),
        }
        for name, options in forms.items():
            for interlace in ("none", "line"):
                path = self.plasma("a.png", 147, 133, *options, "-interlace", interlace)
                self.assert_reads(path, PNG, by_pngtopnm(path), f"{name}, {interlace}")

    def test_png_files_of_ours_open_elsewhere(self):
        path = self.folder / "ours.png"
        for width, height in ((47, 33), (1, 1), (300, 2)):
            for bits, colors in ((1, 0), (1, 2), (4, 0), (4, 16), (8, 0), (8, 256), (24, 0)):
                with new_image(width, height, bits, colors) as image:
                    what = f"{width} x {height} x {bits}, {colors} colours"
                    self.assertEqual(image.save(path, PNG), 1, what)
                    self.assert_same(image.pixels(), by_imagemagick(path), what)
                    self.assert_same(image.pixels(), by_pngtopnm(path), f"netpbm, {what}")
            with new_image(width, height, 32) as image:
                self.assertEqual(image.save(path, PNG), 1)
                self.assert_same(image.pixels(), by_imagemagick(path, "-alpha", "off"), "alpha")

    @unittest.skipUnless(len(sys.argv) > 2, "no folder of PNG's test suite given")
    def test_png_suite(self):
        seen = 0
        for path in sorted(SUITE.glob("*.png")):
            seen += 1
            self.assert_reads(path, PNG, by_pngtopnm(path), path.name)
            # Names end in the colour type, a letter for it and the bits of a sample.
            color_type, bits = path.stem[-4], int(path.stem[-2:])
            with Image() as image:
                self.assertEqual(image.read(path, PNG), 1, path.name)
                depth = image.depth()
            if color_type in "46":
                self.assertEqual(depth, 32, path.name)
            elif bits <= 8 and color_type in "03":
                self.assertEqual(depth, 1 if bits == 1 else 8, path.name)
        self.assertGreater(seen, 40)

    # JPEG 2000

    def test_jpeg2000_reads_as_opj_decompress_shows_it(self):
        sources = [self.plasma("colours.ppm", 147, 133, "-depth", "8"),
                   self.plasma("grey.pgm", 147, 133, "-depth", "8"),
                   self.plasma("small.ppm", 3, 2, "-depth", "8")]
        forms = [(), ("-r", "20"), ("-I",), ("-I", "-r", "10"), ("-t", "50,40"),
                 ("-t", "64,64", "-I", "-r", "8"), ("-d", "13,7"), ("-n", "1"),
                 ("-c", "[64,64],[32,32]"), ("-p", "RPCL"), ("-p", "CPRL", "-SOP", "-EPH"),
                 ("-b", "16,16"), ("-M", "63"), ("-r", "40,20,5"), ("-d", "3,5", "-t", "33,57")]
        checked = 0
        for source, form, kind in itertools.product(sources, forms, ("jp2", "j2k")):
            path = self.folder / f"a.{kind}"
            levels = ("-n", "1") if source.stem == "small" and "-n" not in form else ()
            made = subprocess.run(["opj_compress", "-i", str(source), "-o", str(path), *form,
                                   *levels], capture_output=True)
            if made.returncode != 0:
                continue
            checked += 1
            self.assert_reads(path, JP2, by_opj(path, self.folder), f"{source.name} {form} {kind}")
        self.assertGreater(checked, 70)

    def test_jpeg2000_of_other_precisions(self):
        for bits in (1, 4, 7, 12, 16):
            source = self.folder / "source.raw"
            greatest = (1 << bits) - 1
            levels = [(37 * i * greatest // 11) % (greatest + 1) for i in range(40 * 30)]
            source.write_bytes(b"".join(v.to_bytes((bits + 7) // 8, "big") for v in levels))
            path = self.folder / "a.jp2"
            run("opj_compress", "-i", str(source), "-o", str(path), "-F", f"40,30,1,{bits},u",
                "-n", "3")
            nearest = [(v * 255 + greatest // 2) // greatest for v in levels]
            self.assert_reads(path, JP2, (40, 30, bytes(v for v in nearest for _ in range(3))),
                              f"{bits} bits")

    def test_jpeg2000_with_coarser_differences(self):
        for across, down in ((2, 2), (2, 1), (1, 1)):
            for width, height in ((48, 40), (47, 33)):
                source = self.folder / "source.raw"
                small = -(-width // across) * -(-height // down)
                chance = module_host.random.Random(width + across)
                source.write_bytes(chance.randbytes(width * height + 2 * small))
                path = self.folder / "a.jp2"
                run("opj_compress", "-i", str(source), "-o", str(path), "-F",
                    f"{width},{height},3,8,u@1x1:{across}x{down}:{across}x{down}", "-mct", "0")
                if across > 1:
                    self.assert_reads(path, JP2, by_opj(path, self.folder),
                                      f"{across} x {down}, {width} x {height}")

    def test_jpeg2000_files_of_ours_open_elsewhere(self):
        path = self.folder / "ours.jp2"
        for width, height in ((47, 33), (1, 1), (5, 300)):
            for bits, colors in ((1, 2), (4, 16), (8, 256), (24, 0), (32, 0)):
                with new_image(width, height, bits, colors) as image:
                    for code in (0, 100, -1, 200):
                        module_host.MODULE.Rastrel_SetQuality(image.handle, code)
                        self.assertEqual(image.save(path, JP2), 1)
                        what = f"{width} x {height} x {bits}, code {code}"
                        self.assert_same(image.pixels(), by_opj(path, self.folder), what)
        source = self.plasma("source.bmp", 200, 150, *TRUE_COLOR)
        errors = []
        with Image() as image:
            self.assertEqual(image.read(source), 1)
            for code in (1, 40, 75, 99):
                module_host.MODULE.Rastrel_SetQuality(image.handle, code)
                self.assertEqual(image.save(path, JP2), 1)
                theirs = by_opj(path, self.folder)
                errors.append(sum((a - b) ** 2 for a, b in zip(image.pixels()[2], theirs[2])))
        self.assertEqual(errors, sorted(errors, reverse=True))
        self.assertGreater(errors[-1], 0)

    def test_images_of_libjpeg_turbo(self):
        if JPEG_IMAGES is None:
            self.skipTest("no test images of libjpeg-turbo")
        # Baseline, progressive, arithmetic-coded.
        for name in ("testorig.jpg", "testimgint.jpg", "testimgari.jpg"):
            with Image() as image:
                self.assertEqual(image.read(JPEG_IMAGES / name), 1, name)
                self.assert_same(image.pixels(), by_djpeg(JPEG_IMAGES / name), name)
        with Image() as image:
            self.assertEqual(image.read(JPEG_IMAGES / "testorig12.jpg"), 0, "12 bits a sample")


if __name__ == "__main__":
    module_host.load(sys.argv[1])
    SUITE = pathlib.Path(sys.argv[2]) if len(sys.argv) > 2 else None
    JPEG_IMAGES = pathlib.Path(sys.argv[3]) if len(sys.argv) > 3 else None
    unittest.main(argv=sys.argv[:1])
