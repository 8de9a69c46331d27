#!/usr/bin/env python3
"""Installs a build into an empty folder and builds hosts against what was installed.

Usage: package_test.py BUILD_FOLDER SOURCE_FOLDER linux
       package_test.py BUILD_FOLDER SOURCE_FOLDER i686|x86_64 TOOLCHAIN_FILE EMULATOR
"""
import os
import pathlib
import subprocess
import sys
import tempfile


def run(*command, code=0, **options):
    result = subprocess.run([str(part) for part in command], capture_output=True, text=True,
                            **options)
    assert result.returncode == code, f"{command}\n{result.stdout}\n{result.stderr}"
    return result.stdout


def find(folder, name):
    found = list(folder.rglob(name))
    assert found, f"{name} is not installed"
    return found[0]


def with_dll(prefix):
    """An environment in which wine finds the installed DLL."""
    folder = str(prefix / "bin").replace("/", "\\")
    return dict(os.environ, WINEPATH=f"Z:{folder}")


def test_cmake_package(prefix, package, work, options, emulator):
    """find_package(Rastrel) and nothing else."""
    run("cmake", "-S", package, "-B", work, "-G", "Ninja", f"-DCMAKE_PREFIX_PATH={prefix}",
        *options)
    run("cmake", "--build", work)
    program = work / ("host.exe" if emulator else "host")
    output = run(*emulator, program, cwd=work, env=with_dll(prefix))
    assert output.strip() == "as it should be", output


def test_pkg_config(prefix, package, work):
    libraries = find(prefix, "rastrel.pc").parent
    environment = dict(os.environ, PKG_CONFIG_PATH=str(libraries))
    flags = run("pkg-config", "--define-variable", f"prefix={prefix}", "--cflags", "--libs",
                "rastrel", env=environment).split()
    run("cc", package / "host.c", "-o", work / "host", *flags)
    run(work / "host", cwd=work,
        env=dict(os.environ, LD_LIBRARY_PATH=str(libraries.parent)))


def test_other_linker(prefix, package, work, arch, emulator):
    """The import library serves MSVC's kind of linker, for the names its compiler makes."""
    machine = {"i686": "x86", "x86_64": "x64"}[arch]
    run(f"{arch}-w64-mingw32-gcc-posix", "-c", "-O1", "-ffreestanding", package / "bare.c",
        f"-I{prefix}/include", "-o", work / "bare.o")
    run("lld-link", f"/machine:{machine}", "/subsystem:console", "/nodefaultlib", "/entry:Start",
        "/safeseh:no", f"/out:{work}/bare.exe", work / "bare.o", find(prefix, "rastrel.lib"))
    run(*emulator, work / "bare.exe", code=42,
        env=with_dll(prefix))


def main(build, source, kind, toolchain=None, emulator=None):
    package = pathlib.Path(source) / "tests" / "package"
    with tempfile.TemporaryDirectory() as folder:
        prefix = pathlib.Path(folder) / "installed"
        work = pathlib.Path(folder) / "work"
        run("cmake", "--install", build, "--prefix", prefix)
        options = [f"-DCMAKE_TOOLCHAIN_FILE={toolchain}"] if toolchain else []
        if toolchain:
            options.append(f"-DRASTREL_WIN_PREFIX={prefix}")  # a root that packages are found in
        run_by = [emulator] if emulator else []
        test_cmake_package(prefix, package, work, options, run_by)
        if kind == "linux":
            test_pkg_config(prefix, package, work)
            run(find(prefix, "rastrel"), "--version")
        else:
            test_other_linker(prefix, package, work, kind, run_by)
            definitions = find(prefix, "rastrel.def").read_text()
            assert "Rastrel_New" in definitions
            viewer = find(prefix, "rastrel-view.exe").read_bytes()
            assert "Rastrel Viewer".encode("utf-16-le") in viewer  # its version resource
    print("installed, found and used")


if __name__ == "__main__":
    main(*sys.argv[1:])
