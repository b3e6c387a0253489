#!/usr/bin/env bash
# Runs the libFuzzer target: scripts/fuzz.sh BUILD_DIR [SECONDS]
# Seeds: the bundled examples and the shared corpus (when present); the working corpus and
# any crash reproducer go to out/fuzz/.
set -euo pipefail
cd "$(dirname "$0")/.."
dir="$1"
seconds="${2:-60}"
mkdir -p out/fuzz/corpus out/fuzz/seeds
cp examples/*.emf examples/*.wmf out/fuzz/seeds/
if [ -d ../shared/corpus ]; then
    find ../shared/corpus -type f \( -iname '*.emf' -o -iname '*.wmf' \) -size -200k \
        -exec cp {} out/fuzz/seeds/ \;
fi
ASAN_OPTIONS=detect_leaks=1 "$dir/fuzz/fuzz_metafile" -max_total_time="$seconds" -max_len=262144 \
    -timeout=10 -rss_limit_mb=512 -malloc_limit_mb=512 -artifact_prefix=out/fuzz/ -print_final_stats=1 \
    out/fuzz/corpus out/fuzz/seeds 2>&1 | tail -n 15
