#!/usr/bin/env bash
# Installs a build into a temporary prefix, checks the installed files, and builds and runs the
# example host program (examples/host) against it through the CMake package and through
# pkg-config.
#   tests/install_test.sh BUILD_DIR [CMAKE_GENERATOR]
set -euo pipefail
src="$(cd "$(dirname "$0")/.." && pwd)"
build="$1"
generator="${2:-Ninja}"
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
prefix="$tmp/prefix"
cmake --install "$build" --prefix "$prefix" >/dev/null
fail() { echo "$*"; exit 1; }

lib=$(dirname "$(find "$prefix" -name libsvgmodule.so.1 | head -n 1)")
[ -d "$lib" ] || fail "libsvgmodule.so.1 not installed"
for f in bin/metafile2svg share/man/man1/metafile2svg.1.gz include/svgmodule/svgmodule.h \
         include/svgmodule/MetafileStructs.h share/doc/libsvgmodule1/copyright; do
    [ -f "$prefix/$f" ] || fail "missing $f"
done
[ "$(readlink "$lib/libsvgmodule.so")" = libsvgmodule.so.1 ] || fail "libsvgmodule.so link"
[ "$(readlink "$lib/libsvgmodule.so.1")" = libsvgmodule.so.1.0.0 ] || fail "libsvgmodule.so.1 link"
# The logging library only in the library's private folder, without a development link.
[ "$(readlink "$lib/svgmodule/liblogging.so.1")" = liblogging.so.1.0.0 ] || fail "liblogging.so.1"
found=$(find "$prefix" -name 'liblogging.so*' ! -path "$lib/svgmodule/liblogging.so.1*")
[ -z "$found" ] || fail "liblogging outside $lib/svgmodule: $found"
# Stripped: no debug information.
if readelf -S "$lib/libsvgmodule.so.1.0.0" | grep -q '\.debug_info'; then
    fail "libsvgmodule.so.1.0.0 carries debug information"
fi
[ -f "$lib/cmake/SvgModule/SvgModuleConfig.cmake" ] && [ -f "$lib/pkgconfig/svgmodule.pc" ] \
    || fail "package files missing"

# The README shows the example host program whole (its first C++ block).
awk '/^```cpp$/ {on = 1; next} on && /^```$/ {exit} on' "$src/README.md" |
    cmp -s - "$src/examples/host/main.cpp" || fail "README's host example is not examples/host/main.cpp"

example="$src/examples/example.emf"
"$prefix/bin/metafile2svg" --contract --exact "$example" -o "$tmp/cli.svg"

echo "--- CMake package"
cmake -S "$src/examples/host" -B "$tmp/host-cmake" -G "$generator" \
    -DCMAKE_PREFIX_PATH="$prefix" >"$tmp/configure.log" 2>&1 || { cat "$tmp/configure.log"; exit 1; }
cmake --build "$tmp/host-cmake" >/dev/null
"$tmp/host-cmake/svgmodule_host" "$example" "$tmp/cmake.svg"
cmp "$tmp/cli.svg" "$tmp/cmake.svg" || fail "the host and metafile2svg --contract --exact differ"

echo "--- pkg-config"
export PKG_CONFIG_PATH="$lib/pkgconfig"
# shellcheck disable=SC2046
${CXX:-c++} -std=c++17 "$src/examples/host/main.cpp" -o "$tmp/host-pc" \
    $(pkg-config --cflags --libs svgmodule) -Wl,-rpath,"$lib"
"$tmp/host-pc" "$example" "$tmp/pc.svg"
cmp "$tmp/cli.svg" "$tmp/pc.svg" || fail "the host and metafile2svg --contract --exact differ"
# The published metafile structures compile in a host, with their file layout.
# shellcheck disable=SC2046
printf '#include <MetafileStructs.h>\nstatic_assert(sizeof(tagRECT) == 16, "");\n' |
    ${CXX:-c++} -std=c++17 -fsyntax-only -x c++ - $(pkg-config --cflags svgmodule)

echo "--- pkg-config, a C host"
# shellcheck disable=SC2046
${CC:-cc} -std=c99 "$src/tests/c_host.c" -o "$tmp/host-c" \
    $(pkg-config --cflags --libs svgmodule) -Wl,-rpath,"$lib"
"$tmp/host-c" "$example"
echo "install ok"
