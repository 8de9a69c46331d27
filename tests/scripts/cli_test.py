#!/usr/bin/env python3
"""Runs the command-line host as a user would, on good input and bad.

Usage: cli_test.py [EMULATOR] PROGRAM
"""
import os
import struct

from cli_support import CommandLineTest, main


def bmp(width=3, height=2, bits=24, colors=0):
    """A bitmap file whose every pixel byte differs from its neighbours."""
    stride = (width * bits + 31) // 32 * 4
    table = bytes(i * 7 % 256 for i in range(4 * colors))
    pixels = bytes((i * 37 + 11) % 256 for i in range(stride * height))
    offset = 54 + len(table)
    return (struct.pack("<2sIII", b"BM", offset + len(pixels), 0, offset) +
            struct.pack("<IiiHHIIiiII", 40, width, height, 1, bits, 0, 0, 0, 0, colors, 0) +
            table + pixels)


class CommandLine(CommandLineTest):
    def test_tells_its_version_and_use(self):
        out, _ = self.run_it("--version")
        self.assertRegex(out, r"^rastrel \d+\.\d+\.\d+\n$")
        out, _ = self.run_it("--help")
        for word in ("info", "convert", "palette", "Examples:", "Exit code"):
            self.assertIn(word, out)
        self.run_it("convert", "--help")

    def test_wrong_usage_is_code_2(self):
        self.file("a.bmp", bmp())
        for arguments in ([], ["paint"], ["info"], ["convert", "a.bmp"],
                          ["convert", "--depth", "7", "a.bmp", "b.bmp"],
                          ["convert", "--crop", "1,2,3", "a.bmp", "b.bmp"],
                          ["convert", "--crop", "1,2,3,x", "a.bmp", "b.bmp"],
                          ["convert", "--crop", "1,2,0,5", "a.bmp", "b.bmp"],
                          ["convert", "--type", "webp", "a.bmp", "b.bmp"],
                          ["convert", "a.bmp", "a.bmp", "no-folder"],
                          ["info", "--nonsense", "a.bmp"]):
            _, err = self.run_it(*arguments, code=2)
            self.assertTrue(err.strip(), arguments)
        self.assertEqual(self.names(), ["a.bmp"])

    def test_info(self):
        self.file("a.bmp", bmp(5, 4, 8, 200))
        self.file("b.bmp", bmp(9, 2, 24))
        out, _ = self.run_it("info", "a.bmp", "b.bmp")
        for text in ("5 x 4 pixels", "8 bits", "200 colours", "Windows Bitmap, 8 bit.",
                     "9 x 2 pixels", "24 bits"):
            self.assertIn(text, out)

    def test_info_of_some_bad_files_tells_of_all(self):
        self.file("good.bmp", bmp())
        self.file("broken.bmp", b"BM" + bytes(100))
        os.mkdir(self.folder / "folder.bmp")
        out, err = self.run_it("info", "broken.bmp", "missing.bmp", "folder.bmp", "good.bmp", "x",
                               code=1)
        self.assertIn("3 x 2 pixels", out)
        for name in ("broken.bmp", "missing.bmp", "folder.bmp", "x"):
            self.assertRegex(err, rf"(?m)^rastrel: {name}: .{{8,}}$")

    def test_info_by_given_type(self):
        self.file("scan.dat", bmp(7, 3, 24))
        out, _ = self.run_it("info", "--from", "bmp", "scan.dat")
        self.assertIn("7 x 3 pixels", out)

    def test_palette(self):
        self.file("a.bmp", bmp(4, 4, 8, 3))
        out, _ = self.run_it("palette", "a.bmp")
        self.assertIn("0 14 7 0\n1 42 35 28\n2 70 63 56\n", out)
        self.file("b.bmp", bmp())
        _, err = self.run_it("palette", "b.bmp", code=1)
        self.assertIn("b.bmp: it has no palette", err)

    def test_convert_there_and_back(self):
        for bits, colors in ((1, 2), (4, 16), (8, 256), (24, 0), (32, 0)):
            original = bmp(47, 33, bits, colors)
            self.file("a.bmp", original)
            self.run_it("convert", "a.bmp", "a.qvi")
            self.run_it("convert", "a.qvi", "b.bmp")
            self.run_it("convert", "a.bmp", "c.bmp")
            back = (self.folder / "b.bmp").read_bytes()
            offset = 54 + 4 * colors
            self.assertEqual(back[offset:], original[offset:], bits)
            self.assertEqual(back, (self.folder / "c.bmp").read_bytes())

    def test_crop(self):
        original = bmp(40, 30, 24)
        self.file("a.bmp", original)
        self.run_it("convert", "--crop", "5,6,10,7", "a.bmp", "b.bmp")
        part = (self.folder / "b.bmp").read_bytes()
        self.assertEqual(struct.unpack("<ii", part[18:26]), (10, 7))
        row = original[54 + (30 - 6 - 7) * 120:][:120]  # the rectangle's bottom row
        self.assertEqual(part[54:54 + 30], row[15:45])
        _, err = self.run_it("convert", "--crop", "40,0,5,5", "a.bmp", "c.bmp", code=1)
        self.assertIn("40 x 30", err)
        self.assertNotIn("c.bmp", self.names())

    def test_depths(self):
        self.file("1.bmp", bmp(21, 9, 1, 2))
        self.file("4.bmp", bmp(21, 9, 4, 16))
        self.file("8.bmp", bmp(21, 9, 8, 256))
        self.file("24.bmp", bmp(21, 9, 24))
        self.file("32.bmp", bmp(21, 9, 32))
        for source in ("1", "4", "8", "24", "32"):
            for depth in (1, 8, 24, 32):
                self.run_it("convert", "--depth", str(depth), f"{source}.bmp", "out.bmp")
                out = (self.folder / "out.bmp").read_bytes()
                self.assertEqual(struct.unpack("<H", out[28:30])[0], depth)
                os.remove(self.folder / "out.bmp")

    def test_coded_pixels_are_kept_and_never_taken_for_colours(self):
        coded = bytearray(bmp(20, 2, 8, 256)[:54 + 1024] + bytes([20, 1, 0, 0, 20, 2, 0, 1]))
        struct.pack_into("<II", coded, 30, 1, 8)
        self.file("coded.bmp", bytes(coded))
        self.run_it("convert", "coded.bmp", "copy.qvi")
        for option in (["--depth", "1"], ["--depth", "24"], ["--depth", "32"],
                       ["--crop", "0,0,5,2"]):
            _, err = self.run_it("convert", *option, "coded.bmp", "out.bmp", code=1)
            self.assertIn("run-length coded", err)
        self.assertEqual(self.names(), ["coded.bmp", "copy.qvi"])

    def test_several_inputs_go_into_a_folder(self):
        self.file("a.bmp", bmp())
        self.file("b.bmp", bmp(5, 5))
        os.mkdir(self.folder / "out")
        self.run_it("convert", "--type", "qvi", "a.bmp", "b.bmp", "out")
        self.assertEqual(sorted(os.listdir(self.folder / "out")), ["a.qvi", "b.qvi"])
        self.run_it("convert", "--type", "0", "out/a.qvi", "out")
        self.assertIn("a.bmp", os.listdir(self.folder / "out"))

    def test_inputs_of_one_name_do_not_replace_each_other(self):
        for folder in ("north", "south", "out"):
            os.mkdir(self.folder / folder)
        first = self.file("north/a.bmp", bmp(3, 2))
        second = self.file("south/a.bmp", bmp(5, 5))
        self.file("south/b.bmp", bmp(4, 4))
        _, err = self.run_it("convert", first, second, "south/b.bmp", "out", code=1)
        self.assertRegex(err, r"^rastrel: south/a.bmp: out.a.bmp was just made from another input\n$")
        self.assertEqual((self.folder / "out/a.bmp").read_bytes()[18:20], b"\3\0")
        self.assertTrue((self.folder / "out/b.bmp").exists())
        # What an earlier run has made may be replaced.
        self.run_it("convert", second, "out")
        self.assertEqual((self.folder / "out/a.bmp").read_bytes()[18:20], b"\5\0")
    def test_tiff_there_and_back_in_every_compression(self):
        for bits, colors, kinds in ((1, 2, "none packbits lzw deflate g3 g4"),
                                    (8, 256, "none packbits lzw deflate"),
                                    (24, 0, "none packbits lzw deflate jpeg")):
            self.file("a.bmp", bmp(48, 33, bits, colors))
            self.run_it("convert", "--depth", str(max(bits, 8)), "a.bmp", "expected.bmp")
            for kind in kinds.split():
                self.run_it("convert", "--compress", kind, "a.bmp", "a.tif")
                out, _ = self.run_it("info", "a.tif")
                self.assertRegex(out, r"TIFF Format, (8|24) bit\. TIFF, (1|8)-bit, formato")
                self.run_it("convert", "a.tif", "b.bmp")
                if bits > 1 and kind != "jpeg":
                    pixels = -33 * 48 * bits // 8
                    self.assertEqual((self.folder / "b.bmp").read_bytes()[pixels:],
                                     (self.folder / "expected.bmp").read_bytes()[pixels:])
        for arguments, code, text in ((["--compress", "g4", "a.bmp", "c.tif"], 1, "1 bit"),
                                      (["--compress", "jpeg", "--depth", "1", "a.bmp", "c.tif"], 1,
                                       "24 bits"),
                                      (["--compress", "lzw", "a.bmp", "c.bmp"], 2, "no TIFF"),
                                      (["--compress", "zip", "a.bmp", "c.tif"], 2, "zip")):
            _, err = self.run_it("convert", *arguments, code=code)
            self.assertIn(text, err)
        self.assertNotIn("c.tif", self.names())

    def test_codecs_there_and_back(self):
        self.file("a.bmp", bmp(48, 33, 24))
        pixels = (self.folder / "a.bmp").read_bytes()[54:]
        for extension, text in (("png", "PNG Format, 24 bit."), ("jp2", "JPEG2000 Format, 24 bit.")):
            self.run_it("convert", "a.bmp", f"a.{extension}")
            self.assertIn(text, self.run_it("info", f"a.{extension}")[0])
            self.run_it("convert", f"a.{extension}", "b.bmp")
            self.assertEqual((self.folder / "b.bmp").read_bytes()[54:], pixels)
        sizes = []
        for quality in ("5", "50", "95"):
            self.run_it("convert", "--quality", quality, "a.bmp", f"q{quality}.jpg")
            sizes.append((self.folder / f"q{quality}.jpg").stat().st_size)
        self.assertEqual(sizes, sorted(sizes))
        self.run_it("convert", "a.bmp", "usual.jpg")
        self.assertTrue(sizes[1] < (self.folder / "usual.jpg").stat().st_size < sizes[2])
        self.assertIn("Jpeg RGB, 24 bit.", self.run_it("info", "usual.jpg")[0])
        self.file("a.asc", b"ncols 20\nnrows 20\nxllcorner 0\nyllcorner 0\ncellsize 1\n" +
                  b"".join(b"%d " % (i * i % 37) for i in range(400)))
        self.run_it("hillshade", "a.asc", "shade.jpg")
        self.assertIn("Jpeg Grayscale, 8 bit.", self.run_it("info", "shade.jpg")[0])
        for names in (("q95.jpg", "usual.jpg", "tall.jpg"), ("shade.jpg", "shade.jpg", "tall.jpg")):
            self.run_it("stack", "--quality", "90", *names)
            out, _ = self.run_it("info", "tall.jpg")
            self.assertIn("48 x 66 pixels" if "q95" in names[0] else "20 x 40 pixels", out)
            self.assertIn("Jpeg RGB", out)
        self.run_it("stack", "--depth", "8", "shade.jpg", "shade.jpg", "grey.jpg")
        self.assertIn("Jpeg Grayscale", self.run_it("info", "grey.jpg")[0])
        _, err = self.run_it("stack", "--compress", "lzw", "a.bmp", "no.jpg", code=2)
        self.assertIn("no TIFF", err)

    def test_gif_takes_any_depth(self):
        for bits, colors in ((1, 2), (4, 16), (8, 256), (24, 0), (32, 0)):
            self.file("a.bmp", bmp(16, 9, bits, colors))
            self.run_it("convert", "--depth", "24", "a.bmp", "expected.bmp")
            self.run_it("convert", "a.bmp", "a.gif")
            out, _ = self.run_it("info", "a.gif")
            self.assertIn("GIF Format, 8 bit.", out)
            # So few pixels keep their colours.
            self.run_it("convert", "--depth", "24", "a.gif", "b.bmp")
            self.assertEqual((self.folder / "b.bmp").read_bytes(),
                             (self.folder / "expected.bmp").read_bytes(), bits)

    def test_gif_that_fails_says_why(self):
        self.file("wide.bmp", bmp(65536, 1, 8, 256))
        self.file("a.bmp", bmp())
        os.mkdir(self.folder / "b.gif")
        os.mkdir(self.folder / "b.gif/a.gif")
        for arguments, text in ((["wide.bmp", "a.gif"], "65535"),
                                (["a.bmp", "no/folder.gif"], "no folder"),
                                (["--type", "gif", "a.bmp", "b.gif"], "it is a folder")):
            _, err = self.run_it("convert", *arguments, code=1)
            self.assertIn(text, err)
        self.assertEqual(self.names(), ["a.bmp", "b.gif", "wide.bmp"])

    def test_quantize(self):
        self.file("a.bmp", bmp(60, 40, 24))
        for output in ("a.gif", "b.bmp"):
            self.run_it("quantize", "a.bmp", output)
            out, _ = self.run_it("info", output)
            self.assertIn("8 bits", out)
        self.file("few.bmp", bmp(16, 16, 8, 3))
        self.run_it("quantize", "--palette", "few.bmp", "a.bmp", "c.bmp")
        expected, _ = self.run_it("palette", "few.bmp")
        palette, _ = self.run_it("palette", "c.bmp")
        self.assertEqual(palette.split("\n")[1:4], expected.split("\n")[1:4])
        # Of what has a palette the colours count, those in use alone.
        self.run_it("quantize", "few.bmp", "d.bmp")
        palette, _ = self.run_it("palette", "d.bmp")
        self.assertEqual(palette.split("\n")[1:4], ["0 0 0 0", "1 14 7 0", "2 42 35 28"])
        for arguments, name in ((["missing.bmp", "e.bmp"], "missing.bmp"),
                                (["--palette", "a.bmp", "a.bmp", "e.bmp"], "a.bmp: it has no pal"),
                                (["a.bmp", "no/e.gif"], "no/e.gif")):
            _, err = self.run_it("quantize", *arguments, code=1)
            self.assertIn(name, err)
        self.assertNotIn("e.bmp", self.names())

    def test_quantize_keeps_the_place_on_the_map(self):
        self.file("a.bmp", bmp(8, 8, 24))
        self.run_it("georef", "--set", "600000,5100000,2", "a.bmp")
        self.run_it("quantize", "a.bmp", "a.gif")
        out, _ = self.run_it("georef", "a.gif")
        self.assertIn("600000", out)

    def test_stack(self):
        for name, height in (("a", 3), ("b", 1), ("c", 4)):
            self.file(f"{name}.bmp", bmp(12, height, 24))
        for kind in ("none", "deflate"):
            self.run_it("stack", "--compress", kind, "a.bmp", "b.bmp", "c.bmp", "tall.tif")
            self.run_it("convert", "tall.tif", "tall.bmp")
            tall = (self.folder / "tall.bmp").read_bytes()
            self.assertEqual(struct.unpack("<ii", tall[18:26]), (12, 8))
            # The lowest band's rows come first.
            self.assertEqual(tall[54:], b"".join(bmp(12, h, 24)[54:] for h in (4, 1, 3)))
        self.file("grey.bmp", bmp(10, 2, 8)[:46] + struct.pack("<II", 256, 0) +
                  b"".join(bytes([i, i, i, 0]) for i in range(256)) + bytes(range(24)))
        data = bytearray((self.folder / "grey.bmp").read_bytes())
        data[10:14] = struct.pack("<I", 54 + 1024)
        self.file("grey.bmp", bytes(data))
        self.run_it("stack", "grey.bmp", "grey.bmp", "grey.tif")
        out, _ = self.run_it("info", "grey.tif")
        self.assertIn("10 x 4 pixels", out)

    def test_stack_that_fails_leaves_nothing_behind(self):
        self.file("a.bmp", bmp(10, 3, 24))
        self.file("wide.bmp", bmp(11, 3, 24))
        self.file("shallow.bmp", bmp(10, 3, 4, 16))
        self.file("broken.bmp", bmp(10, 3, 24)[:20])
        before = self.names()
        for inputs, text in ((["a.bmp", "wide.bmp"], "wide.bmp: it is 11 pixels wide"),
                             (["a.bmp", "shallow.bmp"], "shallow.bmp: its"),
                             (["a.bmp", "broken.bmp"], "broken.bmp: it is damaged"),
                             (["a.bmp", "missing.bmp"], "missing.bmp:"),
                             (["--compress", "g4", "a.bmp"], "1 bit")):
            _, err = self.run_it("stack", *inputs, "tall.tif", code=1)
            self.assertIn(text, err)
            self.assertEqual(self.names(), before)

    def test_what_cannot_be_saved_leaves_nothing_behind(self):
        self.file("a.bmp", bmp())
        self.file("old.bmp", b"old")
        for output, reason in (("no/folder/b.bmp", "no folder"), ("b.xyz", "extension"),
                               ("b", "extension"), ("b.sid", "sid")):
            _, err = self.run_it("convert", "a.bmp", output, code=1)
            self.assertIn(reason, err)
            self.assertIn(output, err)
        _, err = self.run_it("convert", "missing.bmp", "old.bmp", code=1)
        self.assertIn("missing.bmp", err)
        self.assertEqual((self.folder / "old.bmp").read_bytes(), b"old")
        self.assertEqual(self.names(), ["a.bmp", "old.bmp"])

    def test_names_beyond_ascii(self):
        self.file("città Übersicht 地図.bmp", bmp())
        out, _ = self.run_it("info", "città Übersicht 地図.bmp")
        self.assertIn("3 x 2 pixels", out)
        self.run_it("convert", "città Übersicht 地図.bmp", "città 2.qvi")
        self.assertIn("città 2.qvi", self.names())


if __name__ == "__main__":
    main()
