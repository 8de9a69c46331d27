#!/usr/bin/env python3
"""Georeferences and raw files on the command line.

Usage: georef_cli_test.py [EMULATOR] PROGRAM
"""
import os
import struct

from cli_support import CommandLineTest, main


def bmp(width, height):
    stride = (width * 3 + 3) // 4 * 4
    pixels = bytes((i * 37 + 11) % 256 for i in range(stride * height))
    return (struct.pack("<2sIII", b"BM", 54 + len(pixels), 0, 54) +
            struct.pack("<IiiHHIIiiII", 40, width, height, 1, 24, 0, 0, 0, 0, 0, 0) + pixels)


def world_file(x, y, pixel_size):
    return f"{pixel_size}\n0\n0\n{-pixel_size}\n{x}\n{y}\n"


class Georeferences(CommandLineTest):
    def assert_georeference(self, image, x, y, pixel_size):
        out, _ = self.run_it("georef", image)
        self.assertIn(f"  upper left   {x} {y}\n  pixel size   {pixel_size}\n", out)

    def test_show(self):
        self.file("a.bmp", bmp(40, 30))
        self.file("a.bpw", world_file(600000.5, 5100000, 2.5))
        out, _ = self.run_it("georef", "a.bmp")
        self.assertEqual(out, "a.bmp\n  companion    a.bpw\n  upper left   600000.5 5100000\n"
                              "  pixel size   2.5\n")
        out, _ = self.run_it("info", "a.bmp")
        self.assertIn("  upper left   600000.5 5100000\n  pixel size   2.5\n"
                      "  extent       600000.5 5099925 600100.5 5100000 (xmin ymin xmax ymax)\n", out)

    def test_images_without_one(self):
        self.file("a.bmp", bmp(4, 3))
        self.file("b.bmp", bmp(4, 3))
        self.file("b.bpw", "1\n0\n0\n-1\n5\n")  # the last line is missing
        out, err = self.run_it("georef", "a.bmp", "b.bmp", "missing.bmp", code=1)
        self.assertIn("companion    a.bpw", out)
        self.assertIn("a.bmp: it has no georeference", err)
        self.assertIn("b.bmp: it has no georeference", err)
        self.assertRegex(err, "missing.bmp: .{8,}")
        out, _ = self.run_it("info", "a.bmp", "b.bmp")
        self.assertNotIn("upper left", out)

    def test_set(self):
        for name in ("a.bmp", "b.qvi", "c.bil"):
            self.file("source.bmp", bmp(4, 3))
            self.run_it("convert", "source.bmp", name)
            self.run_it("georef", "--set", "-1500.25,2e6,0.1", name)
            self.assert_georeference(name, -1500.25, 2000000, 0.1)
        self.assertLessEqual({"a.bpw", "b.qiw", "c.hdr"}, set(self.names()))
        self.file("d.fot", bytes(100))
        out, _ = self.run_it("georef", "--set", "1650000.5,5000000,0.99995", "d.fot")
        self.assertIn("the image itself", out)
        self.assertIn("pixel size   0.9999\n", out)  # as it is stored

    def test_set_what_cannot_be(self):
        self.file("a.bmp", bmp(4, 3))
        self.file("short.fot", bytes(23))
        self.file("long.fot", bytes(24))
        self.file("plain", bmp(4, 3))
        os.mkdir(self.folder / "a.bpw")
        before = self.names()
        for wrong in ("1,2", "1,2,3,4", "1,2,x", "1,2,0", "1,2,-3", "1,2,inf", "nan,2,3", "1;2;3"):
            _, err = self.run_it("georef", "--set", wrong, "a.bmp", code=2)
            self.assertIn("x,y,size", err)
        for name, values, reason in (("a.bmp", "1,2,3", "a.bpw: it is a folder"),
                                     ("short.fot", "1,2,3", "too short"),
                                     ("long.fot", "-1,2,3", "cannot hold these values"),
                                     ("plain", "1,2,3", "no extension"),
                                     ("missing.bmp", "1,2,3", "missing.bmp")):
            _, err = self.run_it("georef", "--set", values, name, code=1)
            self.assertIn(reason, err)
        self.assertEqual(self.names(), before)
        self.assertEqual((self.folder / "plain").read_bytes(), bmp(4, 3))

    def test_convert_carries_it(self):
        self.file("a.bmp", bmp(40, 30))
        self.file("a.bpw", world_file(1000, 2000, 2))
        self.run_it("convert", "a.bmp", "b.bil")
        self.assert_georeference("b.bil", 1000, 2000, 2)
        # The new file's header replaces the one that holds the georeference.
        self.run_it("convert", "b.bil", "b.bip")
        self.assert_georeference("b.bip", 1000, 2000, 2)
        self.run_it("convert", "--crop", "5,6,10,7", "b.bip", "c.qvi")
        self.assert_georeference("c.qvi", 1010, 1988, 2)
        self.run_it("convert", "--crop", "-5,6,10,7", "b.bip", "c.qvi")
        self.assert_georeference("c.qvi", 1000, 1988, 2)
        self.run_it("convert", "--type", "bsq", "a.bmp", "d.dat")
        self.assert_georeference("d.bsq", 1000, 2000, 2)
        self.assertNotIn("d", self.names())
        os.mkdir(self.folder / "out")
        self.run_it("convert", "a.bmp", "out")
        self.assert_georeference(os.path.join("out", "a.bmp"), 1000, 2000, 2)

    def test_convert_tells_where_it_cannot(self):
        self.file("a.bmp", bmp(40, 30))
        self.file("a.bpw", world_file(1000, 2000, 2))
        os.mkdir(self.folder / "b.qiw")
        _, err = self.run_it("convert", "a.bmp", "b.qvi", code=1)
        self.assertIn("b.qvi: its georeference cannot be written to b.qiw: it is a folder", err)
        self.assertIn("b.qvi", self.names())
        _, err = self.run_it("convert", "--type", "bmp", "a.bmp", "c", code=1)
        self.assertIn("c: its name has no extension", err)
        self.assertEqual((self.folder / "c").read_bytes()[54:], bmp(40, 30)[54:])

    def test_raw_files_there_and_back(self):
        original = bmp(47, 33)
        self.file("a.bmp", original)
        for layout in ("bil", "bip", "bsq"):
            self.run_it("convert", "a.bmp", f"b.{layout}")
            self.assertEqual((self.folder / f"b.{layout}").stat().st_size, 47 * 33 * 3)
            self.run_it("convert", f"b.{layout}", "c.bmp")
            back = (self.folder / "c.bmp").read_bytes()
            for row in range(33):
                at = 54 + row * 144
                self.assertEqual(back[at:at + 141], original[at:at + 141], (layout, row))
        out, _ = self.run_it("info", "b.bil")
        self.assertIn("BIL Format, 24 bit. No compression.", out)
        self.file("b.hdr", "NROWS 5\nNCOLS 5\nNBANDS 1\nNBITS 16\n")
        _, err = self.run_it("info", "b.bil", code=1)
        self.assertIn("b.bil: its pixels have 16 bits", err)
        os.remove(self.folder / "b.hdr")
        _, err = self.run_it("info", "b.bil", code=1)
        self.assertIn("b.bil: its header b.hdr is missing", err)


if __name__ == "__main__":
    main()
