#!/usr/bin/env python3
"""The viewer on a screen of its own: what stands where, and what keys, mouse and drops do.

Usage: viewer_test.py EMULATOR PROBE VIEWER TEST_CLASS
"""
import math
import os
import pathlib
import random
import struct
import subprocess
import sys
import tempfile
import unittest

from viewer_support import Picture, Screen, Viewer, bmp_head, wait_for, windows_path

ARGUMENTS = []
BACKGROUND = (96, 96, 96)
OK, CANCEL = 1, 2  # buttons of dialogs
SAVE = 102         # a command of the menu
SAVE_NAME = 101    # a field of the save dialog


def colour(x, y):
    """No two pixels near each other are alike."""
    return (x * 37 + y * 11) % 256, (x * 5 + y * 91) % 256, (x + y) * 13 % 256


def on_screen(picture, left, top, zoom, x, y):
    """What a place of the picture area shows when the picture's corner is at left, top."""
    column = math.floor((x + 0.5 - left) / zoom)
    row = math.floor((y + 0.5 - top) / zoom)
    inside = 0 <= column < picture.width and 0 <= row < picture.height
    return picture.rows[row][column] if inside else BACKGROUND


class ViewerTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.screen = Screen(ARGUMENTS[0], ARGUMENTS[1])
        cls.addClassCleanup(cls.screen.close)

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def start(self, *files):
        viewer = Viewer(self.screen, windows_path(ARGUMENTS[2]),
                        *(windows_path(file) for file in files))
        self.addCleanup(self.end, viewer)
        return viewer

    def end(self, viewer):
        """A test that has failed may leave a dialog."""
        if viewer.dialog():
            viewer.keys("Escape")
        if viewer.window():
            self.assertEqual(viewer.close(), "0")

    def picture(self, name, width, height):
        picture = Picture(width, height, colour)
        (self.folder / name).write_bytes(picture.bmp())
        return picture, self.folder / name

    def show(self, name, width, height):
        picture, path = self.picture(name, width, height)
        viewer = self.start(path)
        viewer.wait_title(f"^{name} ")
        return picture, viewer

    def shows(self, viewer, picture, left, top, zoom):
        """Whether the picture area looks as it should, all of its pixels."""
        rows = viewer.shown()
        return all(pixel == on_screen(picture, left, top, zoom, x, y)
                   for y, row in enumerate(rows) for x, pixel in enumerate(row))

    def assert_shows(self, viewer, picture, left, top, zoom):
        wait_for(f"the picture at {left}, {top}, {zoom} times",
                 lambda: self.shows(viewer, picture, left, top, zoom))

    def place(self, viewer, picture, zoom, near):
        """Where the picture's corner is: the one place near the expected one that fits."""
        def find():
            rows = viewer.shown()
            sample = random.Random(1)
            spots = [(sample.randrange(len(rows[0])), sample.randrange(len(rows)))
                     for _ in range(3000)]
            return [(left, top) for left in range(near[0] - 2, near[0] + 3)
                    for top in range(near[1] - 2, near[1] + 3)
                    if all(rows[y][x] == on_screen(picture, left, top, zoom, x, y)
                           for x, y in spots)]
        found = wait_for(f"the picture near {near}", find)
        self.assertEqual(len(found), 1)
        return found[0]


class Windows(ViewerTest):
    def test_fit_and_actual_size(self):
        picture, viewer = self.show("small one.bmp", 60, 40)
        _, _, width, height = viewer.canvas()
        zoom = min(width / 60, height / 40)
        self.assertAlmostEqual(viewer.zoom(), zoom, delta=zoom / 1000)
        left, top = (width - round(60 * zoom)) // 2, (height - round(40 * zoom)) // 2

        def looks_fitted():
            rows = viewer.shown()
            centres = [(column, row, left + math.floor((column + 0.5) * zoom),
                        top + math.floor((row + 0.5) * zoom))
                       for column in range(60) for row in range(40)]
            around = [rows[y][x] for y in range(height) for x in range(width)
                      if not (left <= x < width - left and top <= y < height - top)]
            return (all(rows[y][x] == picture.rows[row][column] for column, row, x, y in centres)
                    and set(around) <= {BACKGROUND})
        wait_for("the whole picture", looks_fitted)
        viewer.keys("1")
        viewer.wait_title(r"\(100%\)")
        self.assert_shows(viewer, picture, (width - 60) // 2, (height - 40) // 2, 1)
        viewer.keys("f")
        wait_for("the whole picture again", looks_fitted)

    def test_zoom_at_the_cursor(self):
        picture, viewer = self.show("large.bmp", 1500, 1100)
        _, _, width, height = viewer.canvas()
        viewer.keys("1")
        viewer.wait_title(r"\(100%\)")
        start = self.place(viewer, picture, 1, ((width - 1500) // 2, (height - 1100) // 2))
        x, y = 211, 157
        viewer.point_at(x, y)
        for zoom, button in ((2, 4), (3, 4), (4, 4), (6, 4), (4, 5), (3, 5), (4, 4)):
            self.screen.do("click", button)
            viewer.wait_title(rf"\({zoom}00%\)")
        spot = (x + 0.5 - start[0], y + 0.5 - start[1])
        left, top = self.place(viewer, picture, 4, (round(x + 0.5 - 4 * spot[0]),
                                                    round(y + 0.5 - 4 * spot[1])))
        self.assert_shows(viewer, picture, left, top, 4)
        pixel = (math.floor(spot[0]), math.floor(spot[1]))
        red, green, blue = colour(*pixel)
        self.assertEqual(viewer.window().text,
                         f"{pixel[0]}, {pixel[1]}   RGB {red}, {green}, {blue}")

    def test_pan(self):
        picture, viewer = self.show("large.bmp", 1500, 1100)
        _, _, width, height = viewer.canvas()
        viewer.keys("1")
        viewer.wait_title(r"\(100%\)")
        left, top = self.place(viewer, picture, 1, ((width - 1500) // 2, (height - 1100) // 2))
        # Dragged by several small moves, then by keys, then against the edges.
        viewer.point_at(300, 200)
        self.screen.do("mousedown", 1)
        for x, y in ((310, 190), (337, 171), (290, 230)):
            viewer.point_at(x, y)
        self.screen.do("mouseup", 1)
        left, top = left - 10, top + 30
        self.assert_shows(viewer, picture, left, top, 1)
        viewer.point_at(50, 50)  # no button: no move
        viewer.keys("Right", "Down", "Down", "Left", "Right")
        left, top = left - 64, top - 128
        self.assert_shows(viewer, picture, left, top, 1)
        for _ in range(12):
            viewer.keys("ctrl+Left", "Prior")
        self.assert_shows(viewer, picture, 0, 0, 1)
        for _ in range(12):
            viewer.keys("ctrl+Right", "Next")
        self.assert_shows(viewer, picture, width - 1500, height - 1100, 1)

    def test_reduced_pictures_show_means(self):
        path = self.folder / "wide.bmp"
        # Columns black and white by turns, from the middle on blue.
        row = (bytes(3) + b"\xff" * 3) * 1500 + b"\xff\0\0" * 3000
        path.write_bytes(bmp_head(6000, 1000, 18000 * 1000) + row * 1000)
        viewer = self.start(path)
        viewer.wait_title("^wide.bmp ")
        _, _, width, height = viewer.canvas()

        def middle_row():
            rows = viewer.shown()
            return rows[height // 2]
        line = wait_for("the picture", lambda: (lambda r: r[5] != BACKGROUND and r)(middle_row()))
        self.assertEqual(set(line[:width // 2 - 2]), {(128, 128, 128)})
        self.assertEqual(set(line[width // 2 + 2:]), {(0, 0, 255)})

    def test_transparent_pixels_show_the_background(self):
        path = self.folder / "hole.png"
        path.write_bytes(palette_png(32, 24, lambda x, y: int((x + y) % 3 == 0),
                                     ((10, 20, 30), (200, 60, 20)), 0))
        viewer = self.start(path)
        viewer.wait_title("^hole.png ")
        viewer.keys("1")
        viewer.wait_title(r"\(100%\)")
        _, _, width, height = viewer.canvas()
        seen = Picture(32, 24, lambda x, y: (200, 60, 20) if (x + y) % 3 == 0 else BACKGROUND)
        self.assert_shows(viewer, seen, (width - 32) // 2, (height - 24) // 2, 1)
        viewer.point_at(width // 2, height // 2)
        wait_for("the pixel's index", lambda: "   index 0   RGB 10, 20, 30" in
                 viewer.window().text)

    def test_run_length_coded_pixels(self):
        path = self.folder / "runs.bmp"
        colours = ((10, 20, 30), (250, 0, 90), (0, 200, 100))
        rows = b"".join(bytes((20 + y, y % 3, 80 - y, (y + 1) % 3, 0, 0)) for y in range(30))
        coded = rows + bytes((0, 1))
        palette = b"".join(bytes((*reversed(entry), 0)) for entry in colours)
        path.write_bytes(
            struct.pack("<2sIII", b"BM", 66 + len(coded), 0, 66) +
            struct.pack("<IiiHHIIiiII", 40, 100, 30, 1, 8, 1, len(coded), 0, 0, 3, 0) +
            palette + coded)
        viewer = self.start(path)
        viewer.wait_title("^runs.bmp ")
        viewer.keys("1")
        viewer.wait_title(r"\(100%\)")
        _, _, width, height = viewer.canvas()

        def colour_at(x, y):
            stored = 29 - y
            return colours[(stored + (x >= 20 + stored)) % 3]
        left, top = (width - 100) // 2, (height - 30) // 2
        self.assert_shows(viewer, Picture(100, 30, colour_at), left, top, 1)
        viewer.point_at(left + 99, top)
        red, green, blue = colour_at(99, 0)
        wait_for("the pixel's colour, not its code", lambda: viewer.window().text ==
                 f"99, 0   RGB {red}, {green}, {blue}")

    def test_place_on_the_map(self):
        _, path = self.picture("sheet.bmp", 40, 30)
        path.with_suffix(".bpw").write_text("2.5\n0\n0\n-2.5\n600000\n5100000\n")
        viewer = self.start(path)
        viewer.wait_title("^sheet.bmp ")
        viewer.keys("1")
        viewer.wait_title(r"\(100%\)")
        _, _, width, height = viewer.canvas()
        viewer.point_at((width - 40) // 2 + 10, (height - 30) // 2 + 4)
        wait_for("the place", lambda: viewer.window().text.endswith(
            "   map 600026.25, 5099988.75"))
        self.assertTrue(viewer.window().text.startswith("10, 4   RGB "))
        viewer.point_at(2, 2)
        wait_for("nothing beside the picture", lambda: viewer.window().text == "")

    def test_drop_and_names_of_all_alphabets(self):
        _, viewer = self.show("first.bmp", 20, 20)
        picture, path = self.picture("Ιθάκη – 2° è.bmp", 50, 30)
        viewer.drop(path)
        viewer.wait_title("^Ιθάκη – 2° è.bmp ")
        viewer.keys("1")
        _, _, width, height = viewer.canvas()
        self.assert_shows(viewer, picture, (width - 50) // 2, (height - 30) // 2, 1)

    def test_broken_files_are_told_of(self):
        picture, viewer = self.show("good.bmp", 30, 20)
        viewer.keys("1")
        _, _, width, height = viewer.canvas()
        good = picture.bmp()
        for name, data, reason in (
                ("empty.bmp", b"", "damaged"), ("cut.bmp", good[:40], "damaged"),
                ("text.tif", b"not an image at all\n" * 50, "damaged"),
                ("unknown.xyz", b"?" * 1000, "neither its name nor its content"),
                ("vast.bmp", bmp_head(2000000000, 2000000000, 100) + bytes(100), "damaged"),
                ("half.png", b"\x89PNG\r\n\x1a\n\0\0\0\rIHDR", "damaged"),
                ("noheader.bil", bytes(100), "header")):
            with self.subTest(name):
                (self.folder / name).write_bytes(data)
                viewer.drop(self.folder / name)
                dialog = viewer.wait_dialog("cannot be shown")
                self.assertIn(name, dialog.text)
                self.assertIn(reason, dialog.text)
                self.screen.ask("post", dialog.number, 0x10, 0, 0)
                wait_for("the box to go", lambda: not viewer.dialog())
        viewer.drop(self.folder / "missing.bmp")
        self.assertIn("missing.bmp", viewer.wait_dialog("cannot be shown").text)
        viewer.keys("Return")
        wait_for("the box to go", lambda: not viewer.dialog())
        self.assertRegex(viewer.title(), "^good.bmp ")
        self.assert_shows(viewer, picture, (width - 30) // 2, (height - 20) // 2, 1)

    def test_closing_while_a_file_is_read(self):
        path = self.folder / "huge.bmp"
        with path.open("wb") as file:  # its pixels take no room on the disk
            file.write(bmp_head(9000, 9000, 243000000))
            file.truncate(54 + 243000000)
        for _ in range(3):
            viewer = self.start(path)
            self.assertEqual(viewer.close(), "0")
        viewer = self.start(path)
        _, other = self.picture("other.bmp", 10, 10)
        viewer.drop(path)
        viewer.drop(other)  # the last one wins
        viewer.wait_title("^other.bmp ")
        self.assertEqual(viewer.close(), "0")

    def test_save_as(self):
        picture, viewer = self.show("from.bmp", 30, 20)
        target = self.folder / "to.png"
        path = self.folder / "from.bpw"
        path.write_text("2\n0\n0\n-2\n1000\n2000\n")
        viewer.drop(self.folder / "from.bmp")  # again, now with its place on the map
        viewer.point_at(300, 200)
        wait_for("the place", lambda: "map" in viewer.window().text)
        viewer.point_at(2, 2)

        def save_dialog():
            viewer.command(SAVE)  # does nothing while the last one is still being finished
            return viewer.dialog()
        viewer.command(CANCEL, wait_for("the dialog", save_dialog))
        wait_for("the dialog to go", lambda: not viewer.dialog())
        dialog = wait_for("the dialog again", save_dialog)
        self.screen.ask("text", dialog.number, SAVE_NAME, windows_path(target))
        viewer.command(OK, dialog)
        wait_for("the file", target.exists)
        wait_for("the note", lambda: "Saved as to.png" in viewer.window().text)
        rows = subprocess.run(["pngtopnm", target], capture_output=True, check=True).stdout
        expected = b"".join(bytes(pixel) for row in picture.rows for pixel in row)
        self.assertEqual(rows[-len(expected):], expected)
        self.assertEqual([float(line) for line in target.with_suffix(".pgw").read_text().split()],
                         [2, 0, 0, -2, 1000, 2000])

    def test_capture(self):
        picture, shown = self.show("subject.bmp", 200, 150)
        shown.keys("1")
        shown.wait_title(r"\(100%\)")
        viewer = self.start()
        viewer.keys("ctrl+w")
        viewer.wait_dialog("Capture a window")
        viewer.keys("Home", "s", "Return")
        viewer.wait_title(r"^Capture of subject.bmp \(")
        viewer.keys("1")
        viewer.wait_title(r"\(100%\)")
        # The middle of the picture inside the captured window's middle.
        _, _, width, height = viewer.canvas()

        def has_the_picture():
            rows = viewer.shown()
            line = picture.rows[75][60:140]
            return any(rows[y][x:x + 80] == line for y in range(height)
                       for x in range(width - 80) if rows[y][x] == line[0])
        wait_for("the captured picture", has_the_picture)


class Clipboard(ViewerTest):
    def test_copy_and_paste(self):
        picture, viewer = self.show("source.bmp", 70, 50)
        viewer.keys("ctrl+c")
        wait_for("the note", lambda: viewer.window().text == "Copied.")
        other = self.start()
        other.keys("ctrl+v")
        other.wait_title("^Pasted ")
        other.keys("1")
        other.wait_title(r"\(100%\)")
        _, _, width, height = other.canvas()
        self.assert_shows(other, picture, (width - 70) // 2, (height - 50) // 2, 1)


def palette_png(width, height, index, colours, transparent):
    """A PNG file of 8-bit indices with one transparent entry."""
    import zlib

    def chunk(kind, data):
        return (struct.pack(">I", len(data)) + kind + data +
                struct.pack(">I", zlib.crc32(kind + data)))
    rows = b"".join(b"\0" + bytes(index(x, y) for x in range(width)) for y in range(height))
    alpha = bytes(0 if i == transparent else 255 for i in range(len(colours)))
    return (b"\x89PNG\r\n\x1a\n" +
            chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 3, 0, 0, 0)) +
            chunk(b"PLTE", b"".join(bytes(entry) for entry in colours)) + chunk(b"tRNS", alpha) +
            chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b""))


if __name__ == "__main__":
    ARGUMENTS[:] = [os.path.abspath(part) for part in sys.argv[1:4]]
    unittest.main(argv=[sys.argv[0], *sys.argv[4:]])
