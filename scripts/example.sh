#!/usr/bin/env bash
# Builds the library and the command line (nothing else) and converts the bundled examples
# (examples/example.emf, .wmf) into out/. Each stage prints a line with the time so far, the
# build its own progress ([done/total]), and the end the time taken.
set -euo pipefail
cd "$(dirname "$0")/.."
start=$SECONDS
say() { printf '[%d:%02d] %s\n' $(((SECONDS - start) / 60)) $(((SECONDS - start) % 60)) "$*"; }

say "Checking the packages the build needs (scripts/setup.sh installs what is missing)"
scripts/setup.sh
say "Configuring build/ and building libsvgmodule and metafile2svg (a few minutes the first time)"
scripts/build.sh build -DSVGMODULE_FUZZ=OFF -DSVGMODULE_BENCH=OFF --target metafile2svg
mkdir -p out
for f in examples/example.emf examples/example.wmf; do
    svg="out/$(basename "$f" | tr . -).svg"
    build/metafile2svg "$f" -o "$svg"
    say "Converted $f -> $(pwd)/$svg"
done
say "Done in $((SECONDS - start)) s"
