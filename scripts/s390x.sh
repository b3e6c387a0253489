#!/usr/bin/env bash
# Big-endian check on a little-endian machine: cross-builds the library, metafile2svg and the
# unit tests for s390x (64-bit, big-endian), runs the unit tests under qemu-user, converts every
# file of the corpus in both modes with the s390x metafile2svg and compares each output with the
# little-endian build's, byte for byte; where the bytes differ, embedded PNG images are compared
# as decoded pixels (tests/svg_image_compare), the text around them still byte for byte.
#
#   scripts/s390x.sh
#
# Installs what is missing first (Debian 12, as root or with sudo): the cross compiler and
# qemu-user from the host's architecture, and the s390x packages of Qt 6 and GoogleTest.
# Those come from the s390x architecture added to dpkg, but are unpacked into a sysroot
# (build-s390x/sysroot) instead of being installed: a library package installed for two
# architectures must have the same version in both, and the host's libraries carry security
# updates that the archive has no s390x build of. cmake/s390x-toolchain.cmake builds against
# that sysroot.
#
# Environment: S390X_BUILD (build-s390x), S390X_SYSROOT (S390X_BUILD/sysroot), LE_BUILD (the
# little-endian build compared against: build), SVGMODULE_CORPUS or CORPUS (../shared/corpus),
# JOBS (2).
# Exit status 0 when the unit tests pass and every corpus file agrees.
set -euo pipefail
cd "$(dirname "$0")/.."
repo=$PWD
build=${S390X_BUILD:-build-s390x}
sysroot=${S390X_SYSROOT:-$repo/$build/sysroot}
little=${LE_BUILD:-build}
corpus=${SVGMODULE_CORPUS:-${CORPUS:-$(dirname "$repo")/shared/corpus}}
jobs=${JOBS:-2}
SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO="sudo"

step() { printf '\n=== %s\n' "$*"; }
started=$(date +%s)
elapsed() { echo $(($(date +%s) - $1)); }

# --- install -----------------------------------------------------------------------------
# The s390x packages unpacked into the sysroot: these with the libraries they depend on...
roots=(libqt6core6 libqt6gui6 libgl-dev libglx-dev libopengl-dev libgtest-dev)
# ...and these without: Qt's headers, CMake packages and mkspecs (their dependencies are the
# rest of Qt, not needed here).
bare=(qt6-base-dev qmake6)
# Never followed: drivers loaded at run time, programs, data shared by all architectures.
skip=" libegl-mesa0 libglx-mesa0 fontconfig shared-mime-info debconf perl-base dpkg tar \
lsb-base sysvinit-utils libinput-bin qt6-base-abi "

# Prints the packages of `roots` and, level by level, the s390x packages they depend on,
# leaving out those above and those of architecture "all".
resolve() {
    local -A seen=()
    local level=("$@") next p arch deps d
    while [ ${#level[@]} -gt 0 ]; do
        for p in "${level[@]}"; do seen[$p]=1; done
        next=()
        while IFS=$'\t' read -r p arch deps; do
            [ "$arch" = all ] && continue
            echo "$p"
            for d in $deps; do
                case "$skip" in *" $d "*) continue ;; esac
                [ -n "${seen[$d]:-}" ] && continue
                seen[$d]=1
                next+=("$d")
            done
        done < <(apt-cache show --no-all-versions "${level[@]/%/:s390x}" 2>/dev/null | awk '
            /^Package: / { p = $2 }
            /^Architecture: / { a = $2 }
            /^(Pre-)?Depends: / {
                sub(/^[^:]*: /, "")
                n = split($0, items, ",")
                for (i = 1; i <= n; i++) {
                    x = items[i]; sub(/\|.*/, "", x); gsub(/\([^)]*\)/, "", x); gsub(/[ \t]/, "", x)
                    if (x !~ /:any$/) d = d " " x
                }
            }
            /^$/ { if (p != "") print p "\t" a "\t" d; p = ""; a = ""; d = "" }
            END { if (p != "") print p "\t" a "\t" d }')
        level=("${next[@]}")
    done
}

# Every library the sysroot's libraries need is in the sysroot or comes with the compiler.
check_sysroot() {
    local have missing
    have=$( (cd "$sysroot" && find lib usr/lib -name '*.so*' -printf '%f\n'
             ls /usr/s390x-linux-gnu/lib) | sort -u)
    missing=$(find "$sysroot/lib/s390x-linux-gnu" "$sysroot/usr/lib/s390x-linux-gnu" \
                  -maxdepth 1 -name '*.so*' -type f -print0 |
              xargs -0 -n 50 s390x-linux-gnu-readelf -d 2>/dev/null |
              sed -n 's/.*Shared library: \[\(.*\)\]/\1/p' | sort -u | comm -23 - <(echo "$have"))
    [ -z "$missing" ] || { echo "s390x sysroot lacks: $missing" >&2; return 1; }
}

install_all() {
    scripts/setup.sh  # what the little-endian build needs
    # The cross compiler and qemu-user, without qemu-user-binfmt: the emulator is named
    # wherever an s390x program runs, and no handler is registered with the kernel.
    local host=() p update=0
    for p in g++-s390x-linux-gnu qemu-user; do
        dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || host+=("$p")
    done
    [ ${#host[@]} -eq 0 ] || update=1
    if ! dpkg --print-foreign-architectures | grep -qx s390x; then
        echo "Adding the s390x architecture to dpkg"
        $SUDO dpkg --add-architecture s390x
        update=1
    fi
    ls /var/lib/apt/lists/*_binary-s390x_Packages* >/dev/null 2>&1 || update=1
    [ $update -eq 0 ] || $SUDO apt-get update -qq
    if [ ${#host[@]} -gt 0 ]; then
        echo "Installing: ${host[*]}"
        DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends \
            "${host[@]}" >/dev/null
    fi
    local want="${roots[*]} + ${bare[*]}"
    if [ -f "$sysroot/.packages" ] && [ "$(head -n 1 "$sysroot/.packages")" = "$want" ]; then
        echo "s390x sysroot: $sysroot ($(($(wc -l <"$sysroot/.packages") - 1)) packages)"
        return
    fi
    echo "Unpacking the s390x packages of Qt 6 and GoogleTest into $sysroot"
    local packages debs deb
    mapfile -t packages < <( (resolve "${roots[@]}"; printf '%s\n' "${bare[@]}") | sort -u)
    rm -rf "$sysroot"
    mkdir -p "$sysroot"
    debs=$(mktemp -d)
    (cd "$debs" && apt-get download -qq -o APT::Sandbox::User="$(id -un)" \
        "${packages[@]/%/:s390x}")
    for deb in "$debs"/*.deb; do
        dpkg-deb --fsys-tarfile "$deb" | tar -x -C "$sysroot" --exclude=./usr/share/doc \
            --exclude=./usr/share/man --exclude=./usr/share/locale
    done
    rm -rf "$debs"
    check_sysroot
    { echo "$want"; printf '%s\n' "${packages[@]}"; } >"$sysroot/.packages"
    echo "s390x sysroot: ${#packages[@]} packages, $(du -sh "$sysroot" | cut -f1)"
}

step "Install what is missing"
install_all
installed=$(date +%s)

# --- cross-build and unit tests --------------------------------------------------------------
step "Cross-build for s390x in $build"
mkdir -p "$build"
# A cache made against another sysroot keeps that sysroot's package paths: start afresh.
if [ -f "$build/CMakeCache.txt" ] &&
    ! grep -qxF "S390X_SYSROOT:PATH=$sysroot" "$build/CMakeCache.txt"; then
    rm -rf "$build/CMakeCache.txt" "$build/CMakeFiles"
fi
cmake -S . -B "$build" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$repo/cmake/s390x-toolchain.cmake" \
    -DS390X_SYSROOT="$sysroot" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DSVGMODULE_FUZZ=OFF \
    -DSVGMODULE_BENCH=OFF >"$build.configure.log" 2>&1 || { cat "$build.configure.log"; exit 1; }
cmake --build "$build" -j"$jobs" --target svgmodule metafile2svg unit_tests adversarial_tests thread_stress \
    c_host header_example
built=$(date +%s)

step "Unit tests under qemu-user"
# The command-line tests that start metafile2svg as a child process are left out: qemu-user 7.2
# refuses the clone() with which Qt 6's QProcess starts a program (CLONE_PIDFD). The same
# program converts the corpus below, under qemu started from here.
echo "skipped: CommandLine.* and CommandLineCorpus.* (QProcess cannot start a child under qemu-user)"
tests=0
(cd "$build" && ctest --output-on-failure -j"$jobs" -E '^CommandLine(Corpus)?\.') || tests=1
tested=$(date +%s)

# --- corpus ----------------------------------------------------------------------------------
step "Corpus: s390x against the little-endian build ($little)"
compare=0
if [ ! -d "$corpus" ]; then
    echo "no corpus at $corpus, skipped"
else
    if [ ! -f "$little/CMakeCache.txt" ]; then
        cmake -S . -B "$little" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DSVGMODULE_FUZZ=OFF \
            >"$little.configure.log" 2>&1 || { cat "$little.configure.log"; exit 1; }
    fi
    cmake --build "$little" -j"$jobs" --target metafile2svg svg_image_compare
    out=$build/corpus
    rm -rf "$out"
    # corpus_compare.sh runs BUILD_DIR/metafile2svg: here a script that runs the s390x one
    # under qemu-user.
    mkdir -p "$out/qemu"
    printf '#!/bin/sh\nexec %q -L %q %q "$@"\n' "$(command -v qemu-s390x)" "$sysroot" \
        "$repo/$build/metafile2svg" >"$out/qemu/metafile2svg"
    chmod +x "$out/qemu/metafile2svg"
    for mode in contract faithful; do
        MODE=--$mode scripts/corpus_compare.sh save "$little" "$out/$mode/little" "$corpus"
        MODE=--$mode TIMEOUT_SECONDS=${TIMEOUT_SECONDS:-300} \
            scripts/corpus_compare.sh save "$out/qemu" "$out/$mode/big" "$corpus"
        scripts/corpus_compare.sh diff "$out/$mode/little" "$out/$mode/big" >"$out/$mode/diff.txt" || true
        files=$(sed -n 's/^\([0-9]*\) files.*/\1/p' "$out/$mode/diff.txt")
        same=$(sed -n 's/.* files, \([0-9]*\) identical.*/\1/p' "$out/$mode/diff.txt")
        pixels=0
        differ=0
        why=""
        # Only the SVG text differs: the same once the images are decoded?
        while IFS= read -r line; do
            rel=${line#differs (output): }
            if [ "$rel" != "$line" ] &&
                why=$("$little/tests/svg_image_compare" "$out/$mode/little/$rel.svg" "$out/$mode/big/$rel.svg"); then
                pixels=$((pixels + 1))
            else
                differ=$((differ + 1))
                echo "$line${why:+: $why}"
            fi
            why=""
        done < <(grep '^differs' "$out/$mode/diff.txt" || true)
        echo "corpus, $mode mode: $files files, $same identical in bytes, $pixels identical as decoded pixels," \
            "$differ differ (outputs in $out/$mode)"
        [ "$differ" -eq 0 ] || compare=1
    done
fi
finished=$(date +%s)

step "Timings"
echo "install $((installed - started)) s, cross-build $((built - installed)) s," \
    "unit tests $((tested - built)) s, corpus $((finished - tested)) s"
echo "total $((finished - started)) s; without the install $((finished - installed)) s"
[ "$tests" -eq 0 ] && [ "$compare" -eq 0 ]
