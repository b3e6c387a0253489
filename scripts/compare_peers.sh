#!/usr/bin/env bash
# Measures this library against open-source peers and on synthetic drawings of growing size.
#   scripts/compare_peers.sh [BUILD_DIR]        (default build-bench)
# Installs what is missing (libemf2svg-dev, libwmf-dev, libbenchmark-dev, through apt-get),
# makes a Release build and runs
#   BUILD_DIR/bench/compare_peers  per corpus file: this library against libemf2svg (EMF) and
#                                  libwmf (WMF), CPU time, medians of ROUNDS rounds
#   BUILD_DIR/bench/bench_scale    1k to 1M synthetic records: ns per record, peak heap
# Environment: ROUNDS (default 21), SVGMODULE_CORPUS or CORPUS (default shared/corpus next to
# the repository), MAX_RECORDS (default 1000000). Tables go to standard output; the CSV files
# (peers.csv, peers-summary.csv, scale.csv) to BUILD_DIR.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build-bench}
rounds=${ROUNDS:-21}
corpus=${SVGMODULE_CORPUS:-${CORPUS:-$(dirname "$(pwd)")/shared/corpus}}
max_records=${MAX_RECORDS:-1000000}

scripts/setup.sh libemf2svg-dev libwmf-dev libbenchmark-dev

cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DSVGMODULE_FUZZ=OFF \
    -DSVGMODULE_TESTS=OFF -DSVGMODULE_BENCH=ON >"$build.configure.log" 2>&1 ||
    { cat "$build.configure.log"; exit 1; }
cmake --build "$build" -j2 --target compare_peers bench_scale

export LIBLOGGING_LEVEL=OFF
if [ -d "$corpus" ]; then
    "$build/bench/compare_peers" --corpus "$corpus" --rounds "$rounds" \
        --csv "$build/peers.csv" --summary-csv "$build/peers-summary.csv"
else
    echo "compare_peers: no corpus at $corpus, skipped"
fi
echo
"$build/bench/bench_scale" --rounds "$rounds" --max-records "$max_records" --csv "$build/scale.csv"
