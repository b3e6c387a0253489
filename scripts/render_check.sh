#!/usr/bin/env bash
# Converts the corpus twice in the contract mode, with --exact (the library's bytes) and by
# default (adjusted for SVG clients), and counts the outputs that real clients display without error:
#   xmllint    parses the document (with namespaces);
#   rsvg       rsvg-convert renders it;
#   chromium   headless Chromium shows it as an image on the --gallery page.
#   scripts/render_check.sh [BUILD_DIR] [CORPUS_DIR]
# Installs chromium, librsvg2-bin and libxml2-utils when missing. Run by hand; the outputs and
# pages stay in BUILD_DIR/render-check/ (open index.html there to look them over).
set -euo pipefail
cd "$(dirname "$0")/.."
build="${1:-build}"
corpus="${2:-../shared/corpus}"
bin="$build/metafile2svg"
[ -x "$bin" ] || { echo "no $bin: build first"; exit 1; }
[ -d "$corpus" ] || { echo "no corpus at $corpus"; exit 1; }

scripts/setup.sh chromium librsvg2-bin libxml2-utils

work="$(cd "$build" && pwd)/render-check"
rm -rf "$work"
mkdir -p "$work"
export LIBLOGGING_LEVEL=OFF
printf '%-8s %8s %8s %8s %8s\n' mode outputs xmllint rsvg chromium
for mode in exact default; do
    out="$work/$mode"
    flags=(--contract)
    [ $mode = exact ] && flags+=(--exact)
    "$bin" -O "$out" -r "${flags[@]}" --gallery "$out/index.html" "$corpus" 2>"$work/$mode.log" \
        || true
    total=0 xml=0 rsvg=0
    failures="$work/$mode-failures.txt"
    : >"$failures"
    fail() { echo "$1 $name" >>"$failures"; }
    while IFS= read -r -d '' f; do
        total=$((total + 1))
        name=${f#"$out"/}
        # xmllint reports namespace errors without failing: any message counts.
        if [ -z "$(xmllint --noout "$f" 2>&1)" ]; then xml=$((xml + 1)); else fail xmllint; fi
        if timeout 60 rsvg-convert "$f" >/dev/null 2>&1; then rsvg=$((rsvg + 1)); else fail rsvg; fi
    done < <(find "$out" -name '*.svg' -print0 | sort -z)
    # The gallery marks each card "shown" or "broken" once Chromium has tried to draw it.
    timeout 600 chromium --headless --disable-gpu --no-sandbox --allow-file-access-from-files \
        --virtual-time-budget=300000 --dump-dom "file://$out/index.html" \
        >"$work/$mode-dom.html" 2>/dev/null || true
    shown=$(grep -o '<figure class="shown">' "$work/$mode-dom.html" | wc -l)
    { grep -o '<figure class="broken">.\{0,400\}' "$work/$mode-dom.html" || true; } \
        | sed -n 's/.*<b>\([^<]*\)<\/b>.*/chromium \1/p' >>"$failures"
    printf '%-8s %8d %8d %8d %8d\n' $mode "$total" "$xml" "$rsvg" "$shown"
done
echo "failures: $work/exact-failures.txt, $work/default-failures.txt"
