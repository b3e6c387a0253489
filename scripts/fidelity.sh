#!/usr/bin/env bash
# Picture fidelity of metafile2svg (faithful and contract modes) and of the peers against
# LibreOffice's picture of each metafile; docs/fidelity.md says more.
#   scripts/fidelity.sh [--build DIR] [--out DIR] [--jobs N] [--no-peers] [FILE|FOLDER...]
#   scripts/fidelity.sh --gate MIN [--list FILE]    faithful mean of a small list; exit 1 below MIN
# Default inputs: emf/ mixed/ wmf/ of the corpus (../shared/corpus, or $CORPUS); default output
# out/fidelity/ (fidelity.tsv, index.html, the SVGs and PNGs). Prints a markdown summary per folder.
# Environment: FAITHFUL_ARGS, CONTRACT_ARGS (metafile2svg options of each mode, default --faithful
# and --contract; empty for the CLI's default mode), FIDELITY_SCORE (the scorer, default
# ../shared/fidelity/score.py), WMF_FONTDIR (the URW base-35 Type 1 fonts wmf2svg needs).
# Needs libreoffice-draw-nogui python3-uno python3-numpy python3-pil librsvg2-bin; peers, when
# installed: emf2svg (emf2svg-conv) and libwmf-bin (wmf2svg).
set -euo pipefail
cd "$(dirname "$0")/.."

missing=()
for p in libreoffice-draw-nogui python3-uno python3-numpy python3-pil librsvg2-bin; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" ||
        missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
    echo "fidelity: missing packages; install them with" >&2
    echo "  apt-get install -y --no-install-recommends ${missing[*]}" >&2
    exit 2
fi

# wmf2svg draws no text, and fails on most files, without the URW base-35 fonts (a package
# libwmf only recommends). Rather than install them system-wide, which would change the fonts
# LibreOffice and rsvg-convert pick for the references and our SVGs, unpack them privately.
if [ -z "${WMF_FONTDIR:-}" ] && command -v wmf2svg >/dev/null &&
    [ ! -e /usr/share/fonts/type1/urw-base35/NimbusSans-Regular.t1 ]; then
    fonts=out/fidelity-fonts
    if [ ! -e "$fonts/usr/share/fonts/type1/urw-base35/NimbusSans-Regular.t1" ]; then
        mkdir -p "$fonts"
        (cd "$fonts" && apt-get download fonts-urw-base35 >/dev/null 2>&1 &&
            dpkg -x fonts-urw-base35_*.deb . && rm -f fonts-urw-base35_*.deb) ||
            echo "fidelity: could not unpack fonts-urw-base35; wmf2svg will fail" >&2
    fi
    export WMF_FONTDIR="$PWD/$fonts/usr/share/fonts/type1/urw-base35"
fi

exec /usr/bin/python3 scripts/fidelity_report.py "$@"
