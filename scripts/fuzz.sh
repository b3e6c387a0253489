#!/usr/bin/env bash
# CI's short fuzzer run: scripts/fuzz.sh BUILD_DIR [SECONDS]
# Runs the libFuzzer target for SECONDS (default 60) over the working corpus out/fuzz/corpus and
# the merged seeds, with the dictionary (scripts/fuzz_common.sh); stops with a failure at the
# first finding, whose input goes to out/fuzz/artifacts/. scripts/fuzz_campaign.sh runs long
# campaigns.
set -euo pipefail
cd "$(dirname "$0")/.."
bin="$1/fuzz/fuzz_metafile"
seconds="${2:-60}"
# shellcheck source=scripts/fuzz_common.sh
source scripts/fuzz_common.sh
seeds=$(fuzz_seeds "$bin")
mkdir -p "$FUZZ_OUT/corpus"
status=0
"$bin" -max_total_time="$seconds" -print_final_stats=1 "${FUZZ_FLAGS[@]}" "$FUZZ_OUT/corpus" \
    "$seeds" >"$FUZZ_OUT/fuzz.log" 2>&1 || status=$?
if [ "$status" -eq 0 ]; then
    grep -E '^#[0-9]+[[:space:]]+INITED|^Done|^stat::' "$FUZZ_OUT/fuzz.log"
else
    tail -n 60 "$FUZZ_OUT/fuzz.log"
fi
fuzz_reproducers
exit "$status"
