"""The module as a Python host loads it, for tests against other programs."""
import ctypes
import os
import random
import subprocess

MODULE = None


def run(*command, data=None):
    return subprocess.run(command, input=data, check=True, capture_output=True).stdout


def ppm_pixels(data):
    """Width, height and packed red, green, blue of a binary PPM."""
    fields, at = [], 0
    while len(fields) < 4:
        end = at
        while data[end:end + 1] not in b" \t\n":
            end += 1
        if end > at:
            fields.append(data[at:end])
        at = end + 1
    assert fields[0] == b"P6" and fields[3] == b"255", fields
    return int(fields[1]), int(fields[2]), data[at:]


class Image:
    """An image of the library, as a Python host would wrap it."""

    def __init__(self):
        self.handle = MODULE.Rastrel_New()

    def __enter__(self):
        return self

    def __exit__(self, *unused):
        MODULE.Rastrel_Delete(self.handle)

    def read(self, path, image_type=0):
        return MODULE.Rastrel_Read(self.handle, os.fsencode(path), image_type)

    def read_part(self, path, image_type, x, y, width, height, reduction=1):
        return MODULE.Rastrel_ReadPartialEx(self.handle, os.fsencode(path), image_type, x, y, width,
                                            height, reduction)

    def save(self, path, image_type=0):
        return MODULE.Rastrel_Save(self.handle, os.fsencode(path), image_type)

    def depth(self):
        return MODULE.Rastrel_GetDepth(self.handle)

    def pixels(self):
        width = MODULE.Rastrel_GetWidth(self.handle)
        height = MODULE.Rastrel_GetHeight(self.handle)
        buffer = ctypes.create_string_buffer(width * height * 3)
        assert MODULE.Rastrel_GetImageByte(self.handle, buffer, 24, 0, 0, width, height) == 1
        bgr = bytearray(buffer.raw)
        bgr[0::3], bgr[2::3] = bgr[2::3], bgr[0::3]
        return width, height, bytes(bgr)


def new_image(width, height, bits, colors=0):
    """An image of random pixels and, with colours, a random palette."""
    image = Image()
    assert MODULE.Rastrel_Create(image.handle, width, height, bits) == 1
    chance = random.Random(width * 1000 + height * 10 + bits)
    rows = MODULE.Rastrel_GetRawImage(image.handle)
    stride = MODULE.Rastrel_GetEffWidth(image.handle)
    for y in range(height):
        ctypes.memmove(rows + y * stride, chance.randbytes((width * bits + 7) // 8),
                       (width * bits + 7) // 8)
    if colors:
        channels = [chance.randbytes(colors) for _ in range(3)]
        assert MODULE.Rastrel_SetPalette(image.handle, colors, *channels) == 1
    return image


def load(path):
    """Loads the module that all images are made by."""
    global MODULE
    MODULE = ctypes.CDLL(path)
    MODULE.Rastrel_GetRawImage.restype = ctypes.c_void_p
