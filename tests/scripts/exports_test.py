#!/usr/bin/env python3
"""Compares the export table of a built module with the public header and the linkers' table.

Usage: exports_test.py HEADER TABLE MODULE elf|pe32|pe64
"""
import re
import subprocess
import sys

FUNCTION_COUNT = 134
SYSTEM_DLLS = {"kernel32.dll", "msvcrt.dll", "user32.dll", "gdi32.dll", "comdlg32.dll",
               "wininet.dll"}


def header_functions(path):
    """Names and argument bytes, as 32-bit Windows counts them, from the declarations."""
    text = re.sub(r"/\*.*?\*/", "", open(path).read(), flags=re.S)
    functions = {}
    for name, arguments in re.findall(
            r"RASTREL_API\s[\w\s*]+?\bRASTREL_CALL\s+(\w+)\s*\(([^;]*)\)\s*;", text):
        size = 0
        for argument in arguments.split(","):
            if argument.strip() == "void":
                continue
            is_double = "double" in argument.split() and "*" not in argument
            size += 8 if is_double else 4
        assert name not in functions, f"{name} is declared twice"
        functions[name] = size
    return functions


def table_functions(path):
    lines = [line.split() for line in open(path) if not line.startswith("#")]
    return {name: int(size) for name, size in lines}


def run(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def elf_exports(module):
    return [line.split()[-1] for line in run("nm", "-D", "--defined-only", module).splitlines()]


def pe_exports(module):
    dump = run("objdump", "-p", module)
    names = dump[dump.index("[Ordinal/Name Pointer] Table"):]
    found = re.findall(r"^\s*\[\s*\d+\]\s+(?:\+base\[\s*\d+\]\s+(?:[0-9a-f]+\s+)?)?(\S+)$",
                       names.split("\n\n")[0], re.M)
    imports = {name.lower() for name in re.findall(r"DLL Name: (\S+)", dump)}
    assert imports, "a module without imports was not read right"
    assert imports <= SYSTEM_DLLS, f"imports from {imports - SYSTEM_DLLS}"
    return found


def main(header, table, module, kind):
    declared = header_functions(header)
    assert len(declared) == FUNCTION_COUNT, f"the header declares {len(declared)} functions"
    listed = table_functions(table)
    assert declared == listed, (
        f"header and table differ: {sorted(declared.items() ^ listed.items())}")
    expected = sorted(declared)
    if kind == "pe32":
        expected = sorted(expected + [f"_{name}@{size}" for name, size in declared.items()])
    exported = sorted(elf_exports(module) if kind == "elf" else pe_exports(module))
    assert exported == expected, (
        f"missing: {sorted(set(expected) - set(exported))}, "
        f"too many: {sorted(set(exported) - set(expected))}")
    print(f"{module}: {len(exported)} exports, as declared")


if __name__ == "__main__":
    main(*sys.argv[1:])
