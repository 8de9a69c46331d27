#!/usr/bin/env python3
"""Checks that the folders of the source include only what lies inward of them.

Usage: layers_test.py SOURCE_FOLDER
"""
import pathlib
import re
import sys

# Each folder and what its files may include besides itself. Formats do not know each other, but
# for what two of them share (dib) and the base of them all, right in formats/.
INWARD = {
    "platform": set(),
    "core": {"platform"},
    "formats": {"core", "platform"},
    "process": {"core", "platform"},
    "geo": {"formats", "core", "platform"},
    "imaging": {"formats", "core", "platform"},
    "display": {"formats", "core", "platform"},
    "api": {"imaging", "display", "geo", "process", "formats", "core", "platform"},
}
SHARED_FORMAT_FOLDERS = {"dib"}


def allowed(folder, file_parts, include):
    target = include.split("/")
    if target[0] not in INWARD:
        # Display takes and makes handles whose types are the interface's.
        return folder in ("api", "display") and include == "rastrel.h"
    if target[0] != folder:
        return target[0] in INWARD[folder]
    in_format = folder == "formats" and len(file_parts) == 3
    other_format = len(target) == 3 and in_format and target[1] != file_parts[1]
    return not other_format or target[1] in SHARED_FORMAT_FOLDERS


def main(source):
    source = pathlib.Path(source)
    files = [f for f in source.rglob("*") if f.suffix in (".h", ".cpp")]
    assert len(files) > 30, f"{source} is not the source folder"
    wrong = []
    for file in files:
        parts = file.relative_to(source).parts
        text = file.read_text()
        for include in re.findall(r'#include "([^"]+)"', text):
            if not allowed(parts[0], parts, include):
                wrong.append(f"{'/'.join(parts)} includes {include}")
        if "windows.h" in text and "win32" not in parts:
            wrong.append(f"{'/'.join(parts)} uses windows.h")
    assert not wrong, "\n".join(wrong)
    print(f"{len(files)} files include inward only")


if __name__ == "__main__":
    main(*sys.argv[1:])
