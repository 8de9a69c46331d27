"""A virtual screen on which the viewer runs, with its keys, mouse, windows and pixels."""
import os
import pathlib
import re
import select
import struct
import subprocess
import tempfile
import time
import typing

SCREEN = (1024, 768)
PATIENCE = 120  # seconds: the machine may be busy


def wait_for(what, condition):
    """Asks again and again until the condition gives something true, which is returned."""
    end = time.monotonic() + PATIENCE
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() > end:
            raise AssertionError(f"waited in vain for {what}")
        time.sleep(0.05)


class Picture:
    """Rows of (red, green, blue), the first one on top."""

    def __init__(self, width, height, colour):
        self.width, self.height = width, height
        self.rows = [[colour(x, y) for x in range(width)] for y in range(height)]

    def bmp(self):
        rows = bytearray()
        for row in reversed(self.rows):
            line = b"".join(bytes(reversed(pixel)) for pixel in row)
            rows += line + bytes(-len(line) % 4)
        return bmp_head(self.width, self.height, len(rows)) + bytes(rows)


def bmp_head(width, height, size):
    return (struct.pack("<2sIII", b"BM", 54 + size, 0, 54) +
            struct.pack("<IiiHHIIiiII", 40, width, height, 1, 24, 0, size, 0, 0, 0, 0))


class Screenshot:
    """What a screen shows."""

    def __init__(self, display):
        data = subprocess.run(["import", "-display", display, "-window", "root", "-depth", "8",
                               "ppm:-"], capture_output=True, check=True, timeout=PATIENCE).stdout
        header = re.match(rb"P6\s+(\d+)\s+(\d+)\s+255\s", data)
        self.width = int(header.group(1))
        self.pixels = data[header.end():]

    def __getitem__(self, place):
        x, y = place
        at = 3 * (y * self.width + x)
        return tuple(self.pixels[at:at + 3])


class Window(typing.NamedTuple):
    number: str
    process: str
    kind: str
    title: str
    text: str
    canvas: tuple  # x, y, width, height on the screen, where there is a picture area


class Screen:
    """A screen and a desktop of Windows' that fills it, with the program that watches it."""

    def __init__(self, emulator, probe):
        reading, writing = os.pipe()
        size = f"{SCREEN[0]}x{SCREEN[1]}"
        self.server = subprocess.Popen(["Xvfb", "-displayfd", str(writing), "-screen", "0",
                                        f"{size}x24", "-nolisten", "tcp"], pass_fds=[writing],
                                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(writing)
        with os.fdopen(reading) as numbers:
            self.display = f":{numbers.readline().strip()}"
        self.environment = dict(os.environ, DISPLAY=self.display, RASTREL_DISPLAY=self.display,
                                RASTREL_WINE_TALKS="1")
        self.folder = tempfile.TemporaryDirectory()
        self.probe = subprocess.Popen([emulator, probe, f"viewer{os.getpid()}", size],
                                      stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                      cwd=self.folder.name, env=self.environment)
        try:
            self.windows()
        except BaseException:
            self.close()
            raise

    def close(self):
        self.probe.stdin.close()
        try:
            self.probe.wait(PATIENCE)
        finally:
            self.probe.stdout.close()
            self.probe.kill()
            self.server.terminate()
            self.server.wait()
            self.folder.cleanup()

    def ask(self, *fields):
        self.probe.stdin.write("\t".join(str(field) for field in fields).encode() + b"\n")
        self.probe.stdin.flush()
        answer = b""
        while not re.search(rb"(^|\n)\.\r?\n$", answer):
            ready, _, _ = select.select([self.probe.stdout], [], [], PATIENCE)
            part = os.read(self.probe.stdout.fileno(), 65536) if ready else b""
            if not part:
                raise AssertionError(f"no answer to {fields}: {answer}")
            answer += part
        return answer.decode().replace("\r\n", "\n").split("\n")[:-2]

    def windows(self):
        found = []
        for line in self.ask("windows"):
            fields = line.split("\t")
            found.append(Window(*fields[:5], tuple(int(field) for field in fields[5:])))
        return found

    def run(self, *command):
        quoted = " ".join(f'"{part}"' for part in command)
        return self.ask("run", quoted)[0]

    def shot(self):
        return Screenshot(self.display)

    def do(self, *arguments):
        """Keys and mouse, as xdotool has them."""
        subprocess.run(["xdotool", *(str(argument) for argument in arguments)],
                       env=self.environment, check=True, timeout=PATIENCE,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


class Viewer:
    """A running viewer."""

    def __init__(self, screen, program, *arguments):
        self.screen = screen
        self.process = screen.run(program, *arguments)
        wait_for("the window", self.window)

    def windows(self):
        return [window for window in self.screen.windows() if window.process == self.process]

    def window(self):
        return next((w for w in self.windows() if w.kind == "RastrelViewer"), None)

    def title(self):
        window = self.window()
        return window.title if window else ""

    def dialog(self):
        """Its message box or other dialog."""
        return next((w for w in self.windows() if w.kind == "#32770"), None)

    def zoom(self):
        found = re.search(r"\(([\d.]+)%\)", self.title())
        return float(found.group(1)) / 100 if found else None

    def wait_title(self, pattern):
        return wait_for(f"the title {pattern}, not {self.title()}",
                        lambda: re.search(pattern, self.title()))

    def wait_dialog(self, pattern=""):
        return wait_for(f"a dialog {pattern}",
                        lambda: (lambda d: d and re.search(pattern, f"{d.title} {d.text}") and d)(
                            self.dialog()))

    def wait_end(self):
        """The exit code."""
        return wait_for("the program's end", lambda: re.match(
            r"ended\t(\d+)", self.screen.ask("state", self.process)[0])).group(1)

    def close(self):
        self.screen.ask("post", self.window().number, 0x10, 0, 0)
        return self.wait_end()

    def activate(self):
        """Gives the keyboard to the dialog or else the window."""
        def has_keyboard():
            window = self.dialog() or self.window()
            return window and self.screen.ask("activate", window.number) == ["1"]
        wait_for("the keyboard", has_keyboard)

    def keys(self, *names):
        self.activate()
        for name in names:
            self.screen.do("key", name)

    def command(self, number, window=None):
        """As if it had been chosen in the menu, or a dialog's button pressed."""
        self.screen.ask("post", (window or self.window()).number, 0x111, number, 0)

    def drop(self, path):
        assert self.screen.ask("drop", self.window().number, windows_path(path)) == ["1"]

    def canvas(self):
        return self.window().canvas

    def point_at(self, x, y):
        """Moves the mouse to a place of the picture area."""
        left, top, _, _ = self.canvas()
        self.screen.do("mousemove", left + x, top + y)

    def shown(self):
        """The rows of pixels of the picture area."""
        left, top, width, height = self.canvas()
        shot = self.screen.shot()
        return [[shot[left + x, top + y] for x in range(width)] for y in range(height)]


def windows_path(path):
    return "Z:" + str(pathlib.Path(path).resolve()).replace("/", "\\")
