#!/usr/bin/env python3
"""Images at addresses: the command-line host against a server on this machine that answers well and
badly.

Usage: network_test.py [EMULATOR] PROGRAM
"""
import http.server
import os
import pathlib
import socket
import struct
import tempfile
import threading
import time

from cli_support import COMMAND, CommandLineTest, main

WIDTH, HEIGHT = 5, 4


def bmp():
    stride = (WIDTH * 3 + 3) // 4 * 4
    pixels = bytes((i * 37 + 11) % 256 for i in range(stride * HEIGHT))
    return (struct.pack("<2sIII", b"BM", 54 + len(pixels), 0, 54) +
            struct.pack("<IiiHHIIiiII", 40, WIDTH, HEIGHT, 1, 24, 0, 0, 0, 0, 0, 0) + pixels)


IMAGE = bmp()


class Handler(http.server.BaseHTTPRequestHandler):
    """A path's first word says how to answer."""
    protocol_version = "HTTP/1.1"

    def log_message(self, *arguments):
        pass

    def start(self, status, **headers):
        self.send_response(status)
        for name, value in headers.items():
            self.send_header(name.replace("_", "-"), value)
        self.end_headers()

    def send(self, body, content_type=None, status=200, length=None):
        headers = {"Content_Length": str(len(body) if length is None else length)}
        if content_type:
            headers["Content_Type"] = content_type
        self.start(status, **headers)
        self.wfile.write(body)

    def do_GET(self):
        self.server.seen.append(self.path)
        getattr(self, self.path.split("/")[1].split("?")[0].split(".")[0])()

    def typed(self):
        self.send(IMAGE, "Image/BMP ; charset=none")

    def untyped(self):
        self.send(IMAGE)

    def octets(self):
        self.send(IMAGE, "application/octet-stream")

    def missing(self):
        self.send(IMAGE, "image/bmp", status=404)

    def broken(self):
        self.send(IMAGE, "image/bmp", status=500)

    def page(self):
        self.send(b"<html><body>Maps</body></html>", "text/html")

    def empty(self):
        self.send(b"", "image/bmp")

    def cut(self):
        self.send(IMAGE[:-10], "image/bmp", length=len(IMAGE))
        self.close_connection = True

    def chunked(self):
        self.start(200, Content_Type="image/bmp", Transfer_Encoding="chunked")
        for at in range(0, len(IMAGE), 40):
            part = IMAGE[at:at + 40]
            self.wfile.write(b"%x\r\n%b\r\n" % (len(part), part))
        self.wfile.write(b"0\r\n\r\n")

    def endless(self):
        self.start(200, Content_Type="image/bmp", Connection="close")
        self.close_connection = True
        part = IMAGE + bytes(1 << 20)
        try:
            for _ in range(400):
                self.wfile.write(part)
            self.server.ended = True
        except OSError:
            pass

    def slow(self):
        self.start(200, Content_Type="image/bmp", Connection="close")
        self.close_connection = True
        try:
            for i in range(60):
                self.wfile.write(IMAGE[i:i + 1])
                time.sleep(1)
            self.server.ended = True
        except OSError:
            pass

    def redirect(self):
        """/redirect/N/target: N more times, then the target, which may be a whole address."""
        _, _, count, target = self.path.split("/", 3)
        if int(count) > 1:
            target = f"/redirect/{int(count) - 1}/{target}"
        elif ":" not in target:
            target = "/" + target
        self.start(302, Location=target, Content_Length="0")


class Addresses(CommandLineTest):
    @classmethod
    def setUpClass(cls):
        cls.server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        cls.server.seen = []
        cls.server.ended = False
        cls.root = f"http://127.0.0.1:{cls.server.server_port}"
        threading.Thread(target=cls.server.serve_forever, daemon=True).start()

    @classmethod
    def tearDownClass(cls):
        cls.server.shutdown()
        cls.server.server_close()

    def setUp(self):
        super().setUp()
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        os.environ["no_proxy"] = "127.0.0.1"
        if len(COMMAND) == 1:  # an emulator puts files of its own there
            os.environ["TMPDIR"] = folder.name
            self.addCleanup(self.assert_empty, pathlib.Path(folder.name))

    def assert_empty(self, folder):
        self.assertEqual(list(folder.iterdir()), [], "temporary files are left")

    def assert_read(self, path):
        out, _ = self.run_it("info", self.root + path)
        for text in ("type         bmp", f"{WIDTH} x {HEIGHT} pixels", "24 bits"):
            self.assertIn(text, out, path)

    def assert_refused(self, address):
        _, err = self.run_it("convert", address, "out.bmp", code=1)
        self.assertIn(address, err)
        self.assertIn("fetched", err)
        self.assertEqual(self.names(), [], address)

    def test_the_type_comes_from_the_answer_or_the_address_or_the_content(self):
        for path in ("/typed", "/typed.jpg", "/untyped.bmp", "/octets.BMP", "/octets.bmp?as=x.gif",
                     "/octets.bmp#part", "/octets", "/untyped.php?file=x", "/octets.txt",
                     "/chunked"):
            self.assert_read(path)
        self.assert_refused(self.root + "/octets.gif")

    def test_pixels_arrive_and_scheme_is_in_any_case(self):
        self.run_it("convert", self.root.replace("http", "HtTp") + "/typed", "out.bmp")
        self.assertEqual((self.folder / "out.bmp").read_bytes()[54:], IMAGE[54:])
        self.assertEqual(self.names(), ["out.bmp"])
        self.run_it("convert", "--crop", "1,1,2,3", self.root + "/typed", "part.bmp")
        self.assertEqual(struct.unpack_from("<ii", (self.folder / "part.bmp").read_bytes(), 18),
                         (2, 3))

    def test_other_answers_fail(self):
        for path in ("/missing.bmp", "/broken.bmp", "/page", "/page.bmp", "/empty.bmp", "/cut.bmp"):
            self.assert_refused(self.root + path)

    def test_redirections(self):
        self.assert_read("/redirect/1/typed")
        self.assert_read("/redirect/5/typed")
        self.assert_read("/redirect/1/" + self.root + "/typed")
        self.assert_refused(self.root + "/redirect/6/typed")
        self.assert_refused(self.root + "/redirect/99/typed")

    def test_redirections_stay_on_the_web(self):
        self.file("secret.bmp", IMAGE)
        path = (self.folder / "secret.bmp").as_posix()
        if len(COMMAND) > 1:
            path = "/Z:" + path
        self.run_it("info", f"file://{path}")
        for target in (f"file://{path}", "ftp://127.0.0.1/a.bmp"):
            self.run_it("info", f"{self.root}/redirect/1/{target}", code=1)

    def test_an_endless_answer_is_ended(self):
        self.assert_refused(self.root + "/endless")
        self.assertFalse(self.server.ended)

    def test_a_slow_answer_is_ended(self):
        begin = time.monotonic()
        self.assert_refused(self.root + "/slow")
        self.assertLess(time.monotonic() - begin, 50)
        self.assertFalse(self.server.ended)

    def test_nobody_there(self):
        with socket.socket() as free:
            free.bind(("127.0.0.1", 0))
            port = free.getsockname()[1]
        self.assert_refused(f"http://127.0.0.1:{port}/a.bmp")
        # Speaks no TLS.
        self.assert_refused(self.root.replace("http", "https") + "/typed")
        for address in ("http://", "http:///", "http://:0/", "ftp://127.0.0.1/a.bmp"):
            self.run_it("info", address, code=1)

    def test_files_of_this_machine(self):
        self.file("a sheet.bmp", IMAGE)
        drive = "/Z:" if len(COMMAND) > 1 else ""
        folder = f"{drive}{self.folder.as_posix()}"
        for address in (f"file://{folder}/a%20sheet.bmp", f"FILE://localhost{folder}/a sheet.bmp"):
            out, _ = self.run_it("info", address)
            self.assertIn(f"{WIDTH} x {HEIGHT} pixels", out)
        for address in (f"file://{folder}/missing.bmp", "file://a%20sheet.bmp",
                        f"file://elsewhere{folder}/a%20sheet.bmp", f"file://{folder}",
                        f"file://{folder}/a%2", f"file://{folder}/a%00sheet.bmp", "file://"):
            self.run_it("info", address, code=1)


if __name__ == "__main__":
    main()
