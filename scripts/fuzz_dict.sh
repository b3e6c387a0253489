#!/usr/bin/env bash
# Writes the libFuzzer dictionary fuzz/metafile.dict: scripts/fuzz_dict.sh
# The record types come from the converters' handler tables (emf/EmfHandlerTable.cpp,
# wmf/WmfHandlerTable.cpp), so the dictionary follows the records the library handles; the
# rest are the header fields and object values that steer the record handlers. Run it again
# after changing a handler table and commit the result.
set -euo pipefail
cd "$(dirname "$0")/.."
out=fuzz/metafile.dict

# le32 VALUE / le16 VALUE: the value's little-endian bytes as dictionary escapes.
le32() { printf '\\x%02x\\x%02x\\x%02x\\x%02x' $(($1 & 255)) $(($1 >> 8 & 255)) $(($1 >> 16 & 255)) $(($1 >> 24 & 255)); }
le16() { printf '\\x%02x\\x%02x' $(($1 & 255)) $(($1 >> 8 & 255)); }
entry32() { printf '%s="%s"\n' "$1" "$(le32 "$2")"; }
raw() { printf '%s="%s"\n' "$1" "$2"; }
entry16() { printf '%s="%s"\n' "$1" "$(le16 "$2")"; }
# Entries NAME_VALUE for every value given.
each32() { local n=$1 v; shift; for v in "$@"; do entry32 "${n}_$v" "$v"; done; }
each16() { local n=$1 v; shift; for v in "$@"; do entry16 "${n}_$v" "$v"; done; }

# "TYPE HANDLER" for each line `{TYPE, &Class::Handler, ...}` of a handler table.
handlers() {
    sed -nE 's/^[[:space:]]*\{(0x[0-9A-Fa-f]+|[0-9]+), &[A-Za-z0-9]+::([A-Za-z0-9]+).*/\1 \2/p' "$1"
}

{
    echo "# libFuzzer dictionary for EMF and WMF input; written by scripts/fuzz_dict.sh."
    echo "# EMF record types (32-bit), the header and end-of-file records first."
    entry32 emr_header 1
    entry32 emr_eof 14
    entry32 emr_gdicomment 70
    entry32 emr_savedc 33
    entry32 emr_restoredc 34
    handlers emf/EmfHandlerTable.cpp | while read -r type name; do entry32 "emr_$name" "$type"; done
    echo "# EMF header: signature, versions, header sizes, EMF+ comment marker."
    raw emf_signature ' EMF'
    entry32 emf_version 0x10000
    entry32 emf_version_1 0x10001
    each32 emf_header_size 88 100 108
    raw emfplus_marker 'EMF+'
    echo "# WMF: placeable key, header (type 1/2, 9 words, version 0x0300), end record."
    entry32 placeable_key 0x9AC6CDD7
    entry16 wmf_type_memory 1
    entry16 wmf_type_disk 2
    entry16 wmf_header_words 9
    entry16 wmf_version_300 0x0300
    entry16 wmf_version_100 0x0100
    printf 'wmf_header="%s%s%s"\n' "$(le16 1)" "$(le16 9)" "$(le16 0x0300)"
    printf 'wmf_eof="%s%s"\n' "$(le32 3)" "$(le16 0)"
    echo "# WMF record functions (16-bit), as the function field and as a whole 3-word prefix."
    handlers wmf/WmfHandlerTable.cpp | sort -u | while read -r fn name; do
        entry16 "meta_${name}_$fn" "$fn"
    done
    echo "# Object handles: stock objects 0x80000000 + index; small table slots."
    for i in $(seq 0 19); do entry32 "stock_$i" $((0x80000000 + i)); done
    each32 handle 0 1 2 3
    echo "# Pens: styles, the geometric type, end caps and joins, widths."
    each32 pen_style 0 1 2 3 4 5 6 7 8
    each32 pen_geometric 0x10000 0x10007 0x11200 0x12100
    each32 pen_cap 0x100 0x200
    each32 pen_join 0x1000 0x2000
    each16 pen_style16 0 1 2 3 4 5 6
    echo "# Brushes: styles and hatch styles (32- and 16-bit)."
    each32 brush_style 0 1 2 3 5 6
    each32 hatch 0 1 2 3 4 5
    each16 brush_style16 0 1 2 3 5
    echo "# Bitmaps: header sizes, planes, bit counts, compression, colour usage, raster operations."
    each32 bmi_size 12 40 108 124
    each16 planes 1
    each16 bitcount 1 4 8 16 24 32
    each32 compression 0 1 2 3
    each32 dib_colors 0 1
    each32 rop_srccopy 0x00CC0020
    each32 rop_srcand 0x008800C6
    each32 rop_srcpaint 0x00EE0086
    each32 rop_patcopy 0x00F00021
    each32 rop_blackness 0x00000042
    each32 rop_whiteness 0x00FF0062
    echo "# Modes: map modes, background modes, region combination, world-transform modes,"
    echo "# text alignment, text output options, PolyDraw point types."
    each32 map_mode 1 2 3 4 5 6 7 8
    each16 map_mode16 1 7 8
    each32 bk_mode 1 2
    each32 rgn_mode 1 2 3 4 5
    each32 mwt_mode 1 2 3 4
    each32 text_align 0 2 6 8 10 14 24 26 30 256
    each32 eto_options 0x2 0x4 0x10 0x100 0x200 0x2000
    raw polydraw_types '\x06\x02\x04\x04\x04\x03'
    echo "# Numbers: float 1.0, -1.0 and 0.5; extremes."
    raw float_1 '\x00\x00\x80\x3f'
    raw float_m1 '\x00\x00\x80\xbf'
    raw float_half '\x00\x00\x00\x3f'
    each32 int 0x7FFFFFFF 0x80000000 0xFFFFFFFF
    each16 short 0x7FFF 0x8000 0xFFFF
    echo "# Text: characters the writer escapes, as UTF-16 and as bytes; a surrogate pair."
    raw utf16_lt '<\x00'
    raw utf16_amp '&\x00'
    raw utf16_quote '\"\x00'
    raw utf16_surrogates '\x3d\xd8\x00\xde'
    raw text_escapes '<&>\"'
} >"$out"
echo "wrote $out: $(grep -c '="' "$out") entries"
