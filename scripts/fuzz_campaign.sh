#!/usr/bin/env bash
# A long fuzzing campaign, run by hand: scripts/fuzz_campaign.sh BUILD_DIR BUDGET [JOBS]
#   BUDGET  total executions (10000000, 500k, 10M) or a time (3600s, 2h)
#   JOBS    fuzzing processes at a time (default 1)
# Builds on the working corpus $FUZZ_OUT/corpus (FUZZ_OUT is out/fuzz unless set; the corpus
# is kept between campaigns) and the merged seeds (scripts/fuzz_common.sh), with the
# dictionary. libFuzzer's fork mode runs the processes and carries on after a finding;
# findings go to $FUZZ_OUT/artifacts/, the log to $FUZZ_OUT/campaign.log. At the end it prints
# the executions, the coverage (cov, ft as libFuzzer's fork mode counts them), the corpus and
# this campaign's findings, each with its sanitizer summary; the exit status is 1 when there
# are any. Ctrl-C ends it early; the summary still follows.
set -euo pipefail
cd "$(dirname "$0")/.."
[ $# -ge 2 ] || { sed -n '2,4p' "$0" | sed 's/^# //' >&2; exit 2; }
bin="$1/fuzz/fuzz_metafile"
budget=$2
jobs=${3:-1}
[ -x "$bin" ] || { echo "fuzz campaign: $bin not found (build with -DSVGMODULE_FUZZ=ON)" >&2; exit 2; }
case $budget in
    *[0-9]s) limit=(-max_total_time="${budget%s}") ;;
    *[0-9]h) limit=(-max_total_time=$((${budget%h} * 3600))) ;;
    *[0-9]k) limit=(-runs=$((${budget%k} * 1000))) ;;
    *[0-9]M) limit=(-runs=$((${budget%M} * 1000000))) ;;
    *[0-9]) limit=(-runs="$budget") ;;
    *) echo "fuzz campaign: budget '$budget' is neither executions nor seconds" >&2; exit 2 ;;
esac
# shellcheck source=scripts/fuzz_common.sh
source scripts/fuzz_common.sh
seeds=$(fuzz_seeds "$bin")
mkdir -p "$FUZZ_OUT/corpus"
log=$FUZZ_OUT/campaign.log
start=$FUZZ_OUT/.campaign-start
touch "$start"
echo "fuzz campaign: ${limit[*]}, $jobs job(s), -max_len=$FUZZ_MAX_LEN, log $log"

# The status lines (#executions: cov ft corp exec/s oom/timeout/crash time) and the reports of
# findings as they come.
set +e
"$bin" -fork="$jobs" -ignore_crashes=1 -ignore_timeouts=1 -ignore_ooms=1 "${limit[@]}" \
    "${FUZZ_FLAGS[@]}" "$FUZZ_OUT/corpus" "$seeds" 2>&1 | tee "$log" |
    grep --line-buffered -E '^#[0-9]+:|ERROR:|runtime error:'
set -e

fuzz_reproducers
last=$(grep -E '^#[0-9]+:' "$log" | tail -n 1)
echo
echo "=== fuzz campaign summary"
echo "executions: $(echo "$last" | sed -E 's/^#([0-9]+):.*/\1/')"
echo "coverage:   $(echo "$last" | grep -oE 'cov: [0-9]+ ft: [0-9]+')"
echo "last:       $last"
echo "corpus:     $(find "$FUZZ_OUT/corpus" -type f | wc -l) files, $(du -sh --apparent-size "$FUZZ_OUT/corpus" | cut -f1)"
# Fork mode counts its cov and ft over the merges; loading the corpus and the seeds in one
# process gives the edges and features as a single run reports them.
echo "corpus and seeds loaded: $("$bin" -runs=0 "${FUZZ_FLAGS[@]}" "$FUZZ_OUT/corpus" "$seeds" 2>&1 |
    grep -oE 'cov: [0-9]+ ft: [0-9]+' | tail -n 1)"
findings=$(find "$FUZZ_OUT/artifacts" -type f -newer "$start" ! -name '*.emf' | sort)
if [ -z "$findings" ]; then
    echo "findings:   none"
    exit 0
fi
echo "findings:   $(echo "$findings" | wc -l) artifact(s) in $FUZZ_OUT/artifacts/"
grep -E 'ERROR:|runtime error:' "$log" | sed -E 's/^==[0-9]+==//; s/0x[0-9a-f]+/0x.../g' |
    sort | uniq -c | sort -rn
# What each one is: its sanitizer summary when run again (the first 20).
echo "$findings" | head -n 20 | while IFS= read -r f; do
    what=$(timeout 60 "$bin" -timeout=10 -rss_limit_mb=512 -malloc_limit_mb=512 "$f" 2>&1 |
        grep -m 1 -E '^SUMMARY:|ERROR: libFuzzer' || true)
    echo "$f: ${what:-no report when run alone}"
done
exit 1
