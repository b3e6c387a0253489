#!/usr/bin/env bash
# Converts every file of the shared corpus with the given converter binary and checks that
# each ends in a defined result within the time limit and without a sanitizer report.
#   scripts/corpus_sweep.sh BUILD_DIR [CORPUS_DIR]
# Prints one line per file that is refused or not well-formed XML, then a summary. The corpus is
# CORPUS_DIR, else $SVGMODULE_CORPUS, else the build's SVGMODULE_CORPUS cache entry. Without
# it the sweep says "corpus absent" and exits with status 77 (skipped).
set -uo pipefail
cd "$(dirname "$0")/.."
bin="$1/metafile2svg"
corpus="${2:-${SVGMODULE_CORPUS:-$(sed -n 's/^SVGMODULE_CORPUS:PATH=//p' "$1/CMakeCache.txt" 2>/dev/null)}}"
corpus="${corpus:-../shared/corpus}"
limit=10
if [ ! -d "$corpus" ]; then
    echo "corpus sweep: corpus absent: no folder $corpus"
    exit 77
fi
export ASAN_OPTIONS="detect_leaks=1:abort_on_error=0:exitcode=90"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1:exitcode=91"
have_xmllint=0
command -v xmllint >/dev/null && have_xmllint=1
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
files=0 converted=0 refused=0 failed=0 malformed=0 slowest=0 slowest_file=""
while IFS= read -r -d '' f; do
    files=$((files + 1))
    start=$(date +%s%N)
    timeout "$limit" "$bin" "$f" -o "$tmp/out.svg" >"$tmp/stdout" 2>"$tmp/stderr"
    rc=$?
    ms=$(( ($(date +%s%N) - start) / 1000000 ))
    if [ "$ms" -gt "$slowest" ]; then slowest=$ms; slowest_file=$f; fi
    if grep -q -E "ERROR: AddressSanitizer|runtime error:|LeakSanitizer" "$tmp/stderr"; then
        echo "SANITIZER $f"; cat "$tmp/stderr"; failed=$((failed + 1)); continue
    fi
    case $rc in
        0) converted=$((converted + 1))
           if [ $have_xmllint = 1 ] && ! xmllint --noout "$tmp/out.svg" 2>/dev/null; then
               malformed=$((malformed + 1)); echo "not well-formed: ${f#$corpus/}"
           fi ;;
        1) refused=$((refused + 1)); echo "refused: ${f#$corpus/}: $(tail -n 1 "$tmp/stderr" | sed 's/.*status/status/')" ;;
        124) echo "TIMEOUT (> ${limit}s) $f"; failed=$((failed + 1)) ;;
        *) echo "CRASH (exit $rc) $f"; tail -n 20 "$tmp/stderr"; failed=$((failed + 1)) ;;
    esac
done < <(find "$corpus" -type f \( -iname '*.emf' -o -iname '*.wmf' \) -print0 | sort -z)
echo "corpus sweep: $files files, $converted converted, $refused refused with a status," \
     "$malformed not well-formed, $failed failed; slowest ${slowest} ms (${slowest_file#$corpus/})"
[ "$failed" -eq 0 ]
