#!/usr/bin/env bash
# Builds the converter and converts the bundled examples (examples/example.emf, .wmf).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
scripts/build.sh build -DSVGMODULE_FUZZ=OFF -DSVGMODULE_BENCH=OFF >/dev/null
mkdir -p out
for f in examples/example.emf examples/example.wmf; do
    svg="out/$(basename "$f" | tr . -).svg"
    build/metafile2svg "$f" -o "$svg"
    echo "Converted $f -> $(pwd)/$svg"
done
