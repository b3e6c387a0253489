#!/usr/bin/env bash
# Proof that a change leaves the converter's output alone, byte for byte, on the shared corpus.
#
#   scripts/corpus_compare.sh save BUILD_DIR DIR [CORPUS_DIR]
#       converts every *.emf / *.wmf under the corpus with BUILD_DIR/metafile2svg into DIR,
#       mirroring the corpus tree: NAME.svg (when the converter wrote one) and NAME.status
#       (exit status and any message, since refused files write no SVG). DIR must be new or empty.
#       The contract mode (--contract) unless MODE names another (MODE=--faithful).
#   scripts/corpus_compare.sh diff DIR_A DIR_B
#       lists the files whose SVG or status differs, prints "N files, M identical, K differ"
#       and exits 1 when any differs.
#
# The corpus is CORPUS_DIR, else $SVGMODULE_CORPUS (or $CORPUS), else BUILD_DIR's SVGMODULE_CORPUS
# cache entry, else shared/corpus next to the repository. Without a corpus, `save` says so and
# exits 0. Diagnostics are off (LIBLOGGING_LEVEL=OFF) so that only
# the converter's output is compared. Typical use:
#
#   scripts/corpus_compare.sh save build-old /tmp/before     # with the old build
#   scripts/corpus_compare.sh save build /tmp/after          # with the new one
#   scripts/corpus_compare.sh diff /tmp/before /tmp/after
set -uo pipefail

usage() {
    sed -n '2,12p' "$0" | sed 's/^# \{0,1\}//' >&2
    exit 2
}

repo=$(cd "$(dirname "$0")/.." && pwd)
jobs=${JOBS:-2}
limit=${TIMEOUT_SECONDS:-60}

save() {
    local build=$1 out=$2
    local corpus=${3:-${SVGMODULE_CORPUS:-${CORPUS:-}}}
    [ -n "$corpus" ] || corpus=$(sed -n 's/^SVGMODULE_CORPUS:PATH=//p' "$build/CMakeCache.txt" 2>/dev/null)
    corpus=${corpus:-$(dirname "$repo")/shared/corpus}
    local bin
    bin=$(cd "$build" 2>/dev/null && pwd)/metafile2svg
    if [ ! -d "$corpus" ]; then
        echo "corpus compare: no corpus at $corpus, skipped"
        exit 0
    fi
    [ -x "$bin" ] || { echo "corpus compare: $bin not found (build first)" >&2; exit 2; }
    if [ -d "$out" ] && [ -n "$(ls -A "$out")" ]; then
        echo "corpus compare: $out is not empty; save into a new folder" >&2
        exit 2
    fi
    mkdir -p "$out"
    corpus=$(cd "$corpus" && pwd)
    out=$(cd "$out" && pwd)
    # The library's own bytes: a command line that adjusts its output for SVG clients by
    # default has --exact to leave them alone.
    local exact=""
    "$bin" --help 2>/dev/null | grep -q -- "--exact" && exact=--exact
    # MODE (--contract or --faithful) chooses the mode: --contract when unset, the command
    # line's default when set empty (MODE= for a build older than --contract).
    export BIN=$bin CORPUS_ROOT=$corpus OUT_ROOT=$out LIMIT=$limit LIBLOGGING_LEVEL=OFF
    export EXACT="$exact ${MODE---contract}"
    # One conversion per input: NAME.svg and NAME.status under OUT_ROOT.
    # shellcheck disable=SC2016
    find "$corpus" -type f \( -iname '*.emf' -o -iname '*.wmf' \) -print0 | sort -z |
        xargs -0 -n 1 -P "$jobs" bash -c '
            rel=${1#"$CORPUS_ROOT"/}
            dest=$OUT_ROOT/$rel
            mkdir -p "$(dirname "$dest")"
            timeout "$LIMIT" "$BIN" $EXACT "$1" -o "$dest.svg" >/dev/null 2>"$dest.stderr"
            rc=$?
            { echo "exit $rc"; sed "s|$CORPUS_ROOT/||g" "$dest.stderr"; } >"$dest.status"
            rm -f "$dest.stderr"
            [ "$rc" -eq 0 ] || rm -f "$dest.svg"
        ' _
    local n
    n=$(find "$out" -name '*.status' | wc -l)
    echo "corpus compare: $n files converted with $bin into $out"
}

diff_dirs() {
    local a=$1 b=$2
    [ -d "$a" ] && [ -d "$b" ] || { echo "corpus compare: both folders must exist" >&2; exit 2; }
    local files=0 same=0 differ=0 rel what
    while IFS= read -r rel; do
        files=$((files + 1))
        what=""
        if [ ! -f "$a/$rel.status" ]; then
            what="only in $b"
        elif [ ! -f "$b/$rel.status" ]; then
            what="only in $a"
        else
            cmp -s "$a/$rel.status" "$b/$rel.status" || what="status"
            if [ -f "$a/$rel.svg" ] || [ -f "$b/$rel.svg" ]; then
                cmp -s "$a/$rel.svg" "$b/$rel.svg" 2>/dev/null || what="${what:+$what, }output"
            fi
        fi
        if [ -z "$what" ]; then
            same=$((same + 1))
        else
            differ=$((differ + 1))
            echo "differs ($what): $rel"
        fi
    done < <({ (cd "$a" && find . -name '*.status'); (cd "$b" && find . -name '*.status'); } |
                 sed 's|^\./||; s|\.status$||' | sort -u)
    echo "$files files, $same identical, $differ differ"
    [ "$differ" -eq 0 ]
}

case "${1:-}" in
    save) [ $# -ge 3 ] && [ $# -le 4 ] || usage; save "$2" "$3" "${4:-}" ;;
    diff) [ $# -eq 3 ] || usage; diff_dirs "$2" "$3" ;;
    *) usage ;;
esac
