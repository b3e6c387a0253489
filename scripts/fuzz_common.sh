# shellcheck shell=bash
# Settings and steps shared by scripts/fuzz.sh and scripts/fuzz_campaign.sh; sourced from the
# repository's top folder, not run.
#
# Inputs are cut to FUZZ_MAX_LEN bytes (default 4096): every record type fits, bitmaps of a few
# thousand pixels too, and a conversion stays short enough for thousands of executions a second
# under the sanitizers; longer inputs cost time in proportion to their records.
FUZZ_MAX_LEN=${FUZZ_MAX_LEN:-4096}
FUZZ_OUT=${FUZZ_OUT:-out/fuzz}
# A 16 MB quarantine of freed memory (256 MB by default) still outlasts any one conversion of
# such an input, and saves the page faults of always fresh memory: a quarter of the time of
# inputs with bitmaps, whose PNG encoder allocates and clears a few hundred KB per image.
export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1:quarantine_size_mb=16}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}
# Findings: a crash or sanitizer report, a leak, an input that takes more than 10 s, or one
# that needs more than 512 MB (in all, or in one allocation).
FUZZ_FLAGS=(-max_len="$FUZZ_MAX_LEN" -dict=fuzz/metafile.dict -timeout=10 -rss_limit_mb=512
    -malloc_limit_mb=512 -artifact_prefix="$FUZZ_OUT/artifacts/")

# fuzz_seeds BINARY: prints the seed folder. The bundled examples, the generated seeds and the
# shared corpus (when present) are merged once into $FUZZ_OUT/seeds-$FUZZ_MAX_LEN: each cut to FUZZ_MAX_LEN bytes,
# only those that add coverage kept. Delete that folder to merge again.
fuzz_seeds() {
    local bin=$1 seeds=$FUZZ_OUT/seeds-$FUZZ_MAX_LEN raw=$FUZZ_OUT/seeds-all f
    mkdir -p "$FUZZ_OUT/artifacts"
    if [ ! -d "$seeds" ]; then
        rm -rf "$raw" "$seeds.tmp"
        mkdir -p "$raw" "$seeds.tmp"
        cp examples/*.emf examples/*.wmf "$raw/"
        # Whole bitmap and region records (fuzz/make_fuzz_seeds.cpp, built with the target).
        local generator
        generator=$(dirname "$bin")/make_fuzz_seeds
        if [ -x "$generator" ]; then
            "$generator" "$raw"
        else
            echo "fuzz seeds: $generator not built; its seeds are left out" >&2
        fi
        local corpus=${SVGMODULE_CORPUS:-${CORPUS:-../shared/corpus}}
        if [ -d "$corpus" ]; then
            # Named after their path: the corpus folders repeat some file names.
            find "$corpus" -type f \( -iname '*.emf' -o -iname '*.wmf' \) -print0 |
                while IFS= read -r -d '' f; do
                    cp "$f" "$raw/$(echo "${f#"$corpus"/}" | tr / _)"
                done
        fi
        "$bin" -merge=1 "${FUZZ_FLAGS[@]}" "$seeds.tmp" "$raw" >"$FUZZ_OUT/merge.log" 2>&1 ||
            { tail -n 20 "$FUZZ_OUT/merge.log" >&2; return 1; }
        mv "$seeds.tmp" "$seeds"
        rm -rf "$raw"
    fi
    echo "$seeds"
}

# fuzz_reproducers: the harness converts an EMF with its header's byte count set to the
# input's length; for each EMF artifact this writes ARTIFACT.emf with that count set, which
# converts the same way with metafile2svg. WMF artifacts reproduce as they stand.
fuzz_reproducers() {
    local f n
    for f in "$FUZZ_OUT"/artifacts/*; do
        case $f in *.emf | *'*') continue ;; esac
        [ "$(dd if="$f" bs=1 skip=40 count=4 2>/dev/null)" = " EMF" ] || continue
        [ -e "$f.emf" ] && continue
        n=$(stat -c %s "$f")
        cp "$f" "$f.emf"
        printf '%b' "$(printf '\\x%02x\\x%02x\\x%02x\\x%02x' $((n & 255)) $((n >> 8 & 255)) \
            $((n >> 16 & 255)) $((n >> 24 & 255)))" |
            dd of="$f.emf" bs=1 seek=48 conv=notrunc 2>/dev/null
    done
}
