#!/usr/bin/env bash
# Installs a build into a temporary prefix, checks the installed files, and builds and runs a
# host program against it through the CMake package and through pkg-config.
#   tests/install_test.sh BUILD_DIR [CMAKE_GENERATOR]
set -euo pipefail
src="$(cd "$(dirname "$0")/.." && pwd)"
build="$1"
generator="${2:-Ninja}"
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
prefix="$tmp/prefix"
cmake --install "$build" --prefix "$prefix" >/dev/null

lib=$(dirname "$(find "$prefix" -name libsvgmodule.so.1 | head -n 1)")
[ -d "$lib" ] || { echo "libsvgmodule.so.1 not installed"; exit 1; }
for f in bin/metafile2svg share/man/man1/metafile2svg.1 include/svgmodule/svgmodule.h \
         include/svgmodule/MetafileStructs.h; do
    [ -f "$prefix/$f" ] || { echo "missing $f"; exit 1; }
done
for l in svgmodule logging; do
    [ "$(readlink "$lib/lib$l.so")" = "lib$l.so.1" ] || { echo "lib$l.so link"; exit 1; }
    [ "$(readlink "$lib/lib$l.so.1")" = "lib$l.so.1.0.0" ] || { echo "lib$l.so.1 link"; exit 1; }
done
[ -f "$lib/cmake/SvgModule/SvgModuleConfig.cmake" ] && [ -f "$lib/pkgconfig/svgmodule.pc" ] \
    || { echo "package files missing"; exit 1; }

example="$src/examples/example.emf"
"$prefix/bin/metafile2svg" "$example" -o "$tmp/cli.svg"

echo "--- CMake package"
cmake -S "$src/tests/install" -B "$tmp/host-cmake" -G "$generator" \
    -DCMAKE_PREFIX_PATH="$prefix" >"$tmp/configure.log" 2>&1 || { cat "$tmp/configure.log"; exit 1; }
cmake --build "$tmp/host-cmake" >/dev/null
"$tmp/host-cmake/host" "$example"

echo "--- pkg-config"
export PKG_CONFIG_PATH="$lib/pkgconfig"
# shellcheck disable=SC2046
${CXX:-c++} -std=c++17 "$src/tests/install/host.cpp" -o "$tmp/host-pc" \
    $(pkg-config --cflags --libs svgmodule) -Wl,-rpath,"$lib"
"$tmp/host-pc" "$example"

echo "--- pkg-config, a C host"
# shellcheck disable=SC2046
${CC:-cc} -std=c99 "$src/tests/c_host.c" -o "$tmp/host-c" \
    $(pkg-config --cflags --libs svgmodule) -Wl,-rpath,"$lib"
"$tmp/host-c" "$example"
echo "install ok"
