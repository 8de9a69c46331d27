# Shared by the scripts of this folder and by ./demo and ./test: sourced by bash, not run.
# shellcheck shell=bash

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=$root/build
mkdir -p "$build"

say() { printf '\n== %s\n' "$*"; }
die() {
    printf 'error: %s\n' "$*" >&2
    exit 1
}

# What each part of the work needs, as Debian 12 package names.
packages_native=(cmake ninja-build g++ pkg-config python3 googletest libgtest-dev
    libhwy-dev liblzo2-dev libtiff-dev libjpeg62-turbo-dev libpng-dev libopenjp2-7-dev
    libcurl4-openssl-dev libstb-dev libcli11-dev libfmt-dev)
packages_demo=(libjpeg-turbo-progs python-matplotlib-data netpbm)
packages_checks=(imagemagick netpbm giflib-tools libtiff-tools libjpeg-turbo-progs libopenjp2-tools
    gdal-bin binutils dpkg-dev)
packages_windows=(g++-mingw-w64-i686-posix g++-mingw-w64-x86-64-posix binutils llvm lld dpkg-dev
    googletest libcli11-dev libfmt-dev libstb-dev make nasm)
packages_wine=(wine64 wine fonts-wine libc6-i386 xvfb xauth util-linux xdotool imagemagick)
packages_fuzz=(clang libclang-rt-14-dev)
packages_lint=(clang clang-tidy clang-format)
packages_bench=(libbenchmark-dev libgif-dev libleptonica-dev libopencv-dev libpixman-1-dev)

# install_packages NAME...: installs what is missing; says nothing when nothing is.
install_packages() {
    local missing=() name as_root=()
    for name in "$@"; do
        [ "$(dpkg-query -W -f '${db:Status-Abbrev}' "$name" 2>/dev/null)" = "ii " ] || missing+=("$name")
    done
    [ ${#missing[@]} = 0 ] && return 0
    say "installing packages: ${missing[*]}"
    if [ "$(id -u)" != 0 ]; then
        command -v sudo >/dev/null || die "run as root, or install first: ${missing[*]}"
        as_root=(sudo)
    fi
    # A mirror that is down for one of several lists is no reason to stop: the install tells.
    "${as_root[@]}" apt-get -qq update || true
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get -y -qq install --no-install-recommends "${missing[@]}" >"$build/apt.log" 2>&1 || {
        tail -n 20 "$build/apt.log" >&2
        die "could not install: ${missing[*]}"
    }
}

# fetch_source PACKAGE: unpacks a Debian source package into build/sources/PACKAGE. The list of
# source packages is a private one, so that the system's own apt stays as it is.
fetch_source() {
    local package=$1 into=$build/sources/$1 state=$build/sources/apt apt=()
    [ -e "$into/.complete" ] && return 0
    say "fetching the source package $package"
    rm -rf "$into"
    mkdir -p "$into/unpack" "$state/lists/partial" "$state/parts"
    if [ -e /etc/apt/sources.list.d/debian.sources ]; then
        sed 's/^Types:.*/Types: deb-src/' /etc/apt/sources.list.d/debian.sources >"$state/parts/src.sources"
    else
        sed -n 's/^deb\( \|-src \)/deb-src /p' /etc/apt/sources.list | sort -u >"$state/parts/src.list"
    fi
    apt=(apt-get -qq -o Dir::Etc::SourceList=/dev/null -o "Dir::Etc::SourceParts=$state/parts"
        -o "Dir::State::Lists=$state/lists" -o Dir::Cache::pkgcache= -o Dir::Cache::srcpkgcache=
        -o "APT::Sandbox::User=$(id -un)")
    "${apt[@]}" update || true
    # The newest security version may be listed and yet missing from a mirror.
    (cd "$into/unpack" && { "${apt[@]}" source "$package" || "${apt[@]}" source "$package/bookworm"; }) \
        >"$into/fetch.log" 2>&1 || {
        tail -n 20 "$into/fetch.log" >&2
        die "could not fetch the source of $package"
    }
    # One folder comes out of a source package; its name carries the version.
    mv "$into/unpack"/*/ "$into/source"
    touch "$into/.complete"
}

# configure_preset PRESET OPTION...
configure_preset() {
    say "configuring $1"
    mkdir -p "$build"
    (cd "$root" && cmake --preset "$@") >"$build/configure-$1.log" 2>&1 || {
        tail -n 30 "$build/configure-$1.log" >&2
        die "could not configure $1"
    }
}

# build_preset PRESET TARGET...: all targets when none is named.
build_preset() {
    local preset=$1 targets=()
    shift
    [ -e "$build/$preset/build.ninja" ] || configure_preset "$preset"
    [ $# = 0 ] || targets=(--target "$@")
    say "building $preset"
    cmake --build "$build/$preset" "${targets[@]}" >"$build/build-$preset.log" 2>&1 || {
        tail -n 60 "$build/build-$preset.log" >&2
        die "could not build $preset"
    }
}
