#!/usr/bin/env python3
"""Turns the elevation models that come with matplotlib into grids that rastrel reads.

Usage: npz_to_grid.py jacksboro_fault_dem.npz OUTPUT.bil
       npz_to_grid.py topobathy.npz OUTPUT.asc
An .npz file is a zip of .npy files: a magic number, a Python literal that tells type and shape, and
the samples. Needs nothing but Python itself.
"""
import array
import ast
import pathlib
import struct
import sys
import zipfile

TYPES = {"<i2": "h", "<f4": "f", "<f8": "d"}


def read_npy(data):
    """The shape and the samples of an array."""
    if data[:8] != b"\x93NUMPY\x01\x00":
        raise ValueError("no .npy array of version 1.0")
    length, = struct.unpack("<H", data[8:10])
    header = ast.literal_eval(data[10:10 + length].decode())
    if header["fortran_order"]:
        raise ValueError("samples by columns")
    samples = array.array(TYPES[header["descr"]])
    samples.frombytes(data[10 + length:])
    if sys.byteorder == "big":
        samples.byteswap()
    return header["shape"], samples


def read_npz(name):
    with zipfile.ZipFile(name) as archive:
        return {entry.removesuffix(".npy"): read_npy(archive.read(entry))
                for entry in archive.namelist()}


def write_bil(arrays, output):
    """Whole metres, cells of a 1200th degree, the northernmost row first."""
    (rows, columns), heights = arrays["elevation"]
    size = arrays["dx"][1][0]
    north = max(arrays["ymin"][1][0], arrays["ymax"][1][0])  # the two are exchanged in the file
    order = "I" if sys.byteorder == "little" else "M"
    output.write_bytes(heights.tobytes())
    output.with_suffix(".hdr").write_text(
        f"BYTEORDER {order}\nLAYOUT BIL\nNROWS {rows}\nNCOLS {columns}\nNBANDS 1\nNBITS 16\n"
        f"PIXELTYPE SIGNEDINT\nULXMAP {arrays['xmin'][1][0] + size / 2}\n"
        f"ULYMAP {north - size / 2}\nXDIM {size}\nYDIM {size}\n")


def write_asc(arrays, output):
    """Land and sea floor in metres; the array begins with the southernmost row."""
    (rows, columns), heights = arrays["topo"]
    longitudes, latitudes = arrays["longitude"][1], arrays["latitude"][1]
    lines = [f"ncols {columns}", f"nrows {rows}", f"xllcenter {longitudes[0]}",
             f"yllcenter {latitudes[0]}",
             f"dx {(longitudes[-1] - longitudes[0]) / (columns - 1)}",
             f"dy {(latitudes[-1] - latitudes[0]) / (rows - 1)}"]
    for row in reversed(range(rows)):
        lines.append(" ".join(f"{h:.1f}" for h in heights[row * columns:(row + 1) * columns]))
    output.write_text("\n".join(lines) + "\n")


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    arrays = read_npz(sys.argv[1])
    output = pathlib.Path(sys.argv[2])
    if "elevation" in arrays:
        write_bil(arrays, output)
    else:
        write_asc(arrays, output)


if __name__ == "__main__":
    main()
