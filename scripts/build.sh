#!/usr/bin/env bash
# Configures and builds into a folder: scripts/build.sh BUILD_DIR [extra cmake options...]
set -euo pipefail
cd "$(dirname "$0")/.."
dir="$1"
shift
cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@" >"$dir.configure.log" 2>&1 \
    || { cat "$dir.configure.log"; exit 1; }
cmake --build "$dir"
