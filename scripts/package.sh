#!/usr/bin/env bash
# Builds the Debian packages (libsvgmodule1, libsvgmodule-dev, metafile2svg) with CPack into
# BUILD_DIR (default build-deb) and checks their contents and dependencies with dpkg-deb.
#   scripts/package.sh [BUILD_DIR] [extra cmake options...]
set -euo pipefail
cd "$(dirname "$0")/.."
dir="${1:-build-deb}"
shift || true
scripts/setup.sh dpkg-dev file
scripts/build.sh "$dir" -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr \
    -DSVGMODULE_TESTS=OFF -DSVGMODULE_FUZZ=OFF -DSVGMODULE_BENCH=OFF "$@" >/dev/null
rm -f "$dir"/*.deb
(cd "$dir" && cpack -G DEB >cpack.log 2>&1) || { cat "$dir/cpack.log"; exit 1; }

libdir="usr/lib/$(dpkg-architecture -qDEB_HOST_MULTIARCH)"
status=0
# check PACKAGE FIELD [-v] PATTERN: the control field matches (with -v: does not match) the
# pattern (grep -E)
check() {
    local deb invert="" pattern=$3 value
    deb=$(ls "$dir/$1"_*.deb)
    [ "$3" = -v ] && { invert=-v; pattern=$4; }
    # From a variable: grep -q ends before dpkg-deb has written all, failing the pipe.
    value=$(dpkg-deb -f "$deb" "$2")
    if ! grep -qE $invert "$pattern" <<<"$value"; then
        echo "$1: $2 does not match ${invert:+-v }'$pattern': $value"; status=1
    fi
}
# contains PACKAGE PATH...: the package holds each path (file or link)
contains() {
    local deb list p
    deb=$(ls "$dir/$1"_*.deb)
    list=$(dpkg-deb -c "$deb" | awk '{print $6}')
    shift
    for p in "$@"; do
        grep -qx "./$p" <<<"$list" || { echo "$(basename "$deb"): no $p"; status=1; }
    done
}
# lacks PACKAGE PATTERN: no path of the package matches the pattern (grep -E)
lacks() {
    local deb found
    deb=$(ls "$dir/$1"_*.deb)
    found=$(dpkg-deb -c "$deb" | awk '{print $6}' | grep -E "$2" || true)
    [ -z "$found" ] || { echo "$(basename "$deb"): holds $found"; status=1; }
}
contains libsvgmodule1 "$libdir/libsvgmodule.so.1" "$libdir/libsvgmodule.so.1.0.0" \
    "$libdir/svgmodule/liblogging.so.1" "$libdir/svgmodule/liblogging.so.1.0.0" \
    usr/share/doc/libsvgmodule1/copyright
contains libsvgmodule-dev "$libdir/libsvgmodule.so" \
    usr/include/svgmodule/svgmodule.h usr/include/svgmodule/MetafileStructs.h \
    "$libdir/cmake/SvgModule/SvgModuleConfig.cmake" "$libdir/cmake/SvgModule/SvgModuleTargets.cmake" \
    "$libdir/pkgconfig/svgmodule.pc" usr/share/doc/libsvgmodule-dev/copyright
contains metafile2svg usr/bin/metafile2svg usr/share/man/man1/metafile2svg.1.gz \
    usr/share/doc/metafile2svg/copyright
# The logging library only in the library's private folder: none in the system's.
for p in libsvgmodule1 libsvgmodule-dev metafile2svg; do
    lacks "$p" "^\./$libdir/liblogging"
    check "$p" Maintainer '^[^<]+ <[^@<>]+@[^@<>]+\.[a-z]+>$'
    check "$p" Maintainer -v 'localhost'
    if grep -q '^  ' <<<"$(dpkg-deb -f "$(ls "$dir/$p"_*.deb)" Description)"; then
        echo "$p: the description has lines indented as verbatim text"; status=1
    fi
done
# The shlibs file names the public library only.
shlibs=$(dpkg-deb -I "$(ls "$dir"/libsvgmodule1_*.deb)" shlibs)
[ "$shlibs" = "libsvgmodule 1 libsvgmodule1 (= 1.0.0-1)" ] || { echo "shlibs: $shlibs"; status=1; }
check libsvgmodule1 Description '^converts Windows metafiles'
check libsvgmodule-dev Description '^development files for libsvgmodule'
check metafile2svg Description '^command-line converter'
check libsvgmodule1 Depends 'libqt[56]gui[56]'
check libsvgmodule1 Depends 'libc6'
check libsvgmodule-dev Depends 'libsvgmodule1 \(= 1\.0\.0'
check libsvgmodule-dev Depends 'qt(6-base|base5)-dev'
check metafile2svg Depends 'libsvgmodule1 \(= 1\.0\.0'
check metafile2svg Depends 'libqt[56]core[56]'
for deb in "$dir"/*.deb; do
    echo "== $(basename "$deb")"
    dpkg-deb -f "$deb" Package Version Architecture Maintainer Depends Description
    dpkg-deb -c "$deb" | awk '{print "   " $6 ($7 ? " " $7 " " $8 : "")}'
done
[ $status = 0 ] && echo "packages ok"
exit $status
