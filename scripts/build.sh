#!/usr/bin/env bash
# Configures and builds into a folder:
#   scripts/build.sh BUILD_DIR [extra cmake options...] [--target TARGET]...
# builds the named targets only, or everything when none is named.
set -euo pipefail
cd "$(dirname "$0")/.."
dir="$1"
shift
options=()
targets=()
while [ $# -gt 0 ]; do
    if [ "$1" = "--target" ]; then
        targets+=(--target "$2")
        shift 2
    else
        options+=("$1")
        shift
    fi
done
# A compiler cache, when the machine has one, makes rebuilds of unchanged sources free.
if command -v ccache >/dev/null; then
    options=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_C_COMPILER_LAUNCHER=ccache "${options[@]}")
fi
cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "${options[@]}" >"$dir.configure.log" 2>&1 \
    || { cat "$dir.configure.log"; exit 1; }
cmake --build "$dir" "${targets[@]}"
