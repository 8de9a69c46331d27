"""What the tests of the command-line host share. They are run with [EMULATOR] PROGRAM."""
import os
import pathlib
import struct
import subprocess
import sys
import tempfile
import unittest

COMMAND = []


def read_bmp(path):
    """Rows from the top, of palette indices or of (red, green, blue), and the palette."""
    data = path.read_bytes()
    offset, = struct.unpack_from("<I", data, 10)
    width, height, _, bits = struct.unpack_from("<iiHH", data, 18)
    stride = (width * bits + 31) // 32 * 4
    rows = []
    for y in range(height):
        line = data[offset + (height - 1 - y) * stride:][:width * bits // 8]
        rows.append(list(line) if bits == 8 else
                    [(line[x + 2], line[x + 1], line[x]) for x in range(0, 3 * width, 3)])
    palette = [(data[at + 2], data[at + 1], data[at]) for at in range(54, offset, 4)]
    return rows, palette


class CommandLineTest(unittest.TestCase):
    """A test with a folder of its own, in which the host runs."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def file(self, name, data):
        (self.folder / name).write_bytes(data if isinstance(data, bytes) else data.encode())
        return name

    def run_it(self, *arguments, code=0):
        """What the host prints on its two outputs; it must end with the exit code."""
        result = subprocess.run([*COMMAND, *arguments], cwd=self.folder, capture_output=True,
                                timeout=120)
        out, err = (text.decode().replace("\r\n", "\n") for text in (result.stdout, result.stderr))
        self.assertEqual(result.returncode, code, f"{arguments}\n{out}\n{err}")
        return out, err

    def names(self):
        return sorted(entry.name for entry in self.folder.iterdir())


def main():
    COMMAND[:] = [os.path.abspath(part) for part in sys.argv[1:]]
    unittest.main(module="__main__", argv=sys.argv[:1])
