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
# check PACKAGE FIELD PATTERN: the control field matches the pattern (grep -E)
check() {
    local deb
    deb=$(ls "$dir/$1"_*.deb)
    if ! dpkg-deb -f "$deb" "$2" | grep -qE "$3"; then
        echo "$1: $2 does not match '$3': $(dpkg-deb -f "$deb" "$2")"; status=1
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
contains libsvgmodule1 "$libdir/libsvgmodule.so.1" "$libdir/libsvgmodule.so.1.0.0" \
    "$libdir/liblogging.so.1" "$libdir/liblogging.so.1.0.0"
contains libsvgmodule-dev "$libdir/libsvgmodule.so" "$libdir/liblogging.so" \
    usr/include/svgmodule/svgmodule.h usr/include/svgmodule/MetafileStructs.h \
    "$libdir/cmake/SvgModule/SvgModuleConfig.cmake" "$libdir/cmake/SvgModule/SvgModuleTargets.cmake" \
    "$libdir/pkgconfig/svgmodule.pc"
contains metafile2svg usr/bin/metafile2svg usr/share/man/man1/metafile2svg.1
check libsvgmodule1 Depends 'libqt[56]gui[56]'
check libsvgmodule1 Depends 'libc6'
check libsvgmodule-dev Depends 'libsvgmodule1 \(= 1\.0\.0'
check libsvgmodule-dev Depends 'qt(6-base|base5)-dev'
check metafile2svg Depends 'libsvgmodule1 \(= 1\.0\.0'
check metafile2svg Depends 'libqt[56]core[56]'
for deb in "$dir"/*.deb; do
    echo "== $(basename "$deb")"
    dpkg-deb -f "$deb" Package Version Architecture Depends
    dpkg-deb -c "$deb" | awk '{print "   " $6 ($7 ? " " $7 " " $8 : "")}'
done
[ $status = 0 ] && echo "packages ok"
exit $status
