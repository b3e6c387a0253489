#!/usr/bin/env bash
# The shared library exports exactly the API functions and g_Logger, and has its soname.
set -euo pipefail
lib="$1"
actual=$(nm -D --defined-only "$lib" | awk '{print $NF}' | grep -v -E '^(__bss_start|_edata|_end|_init|_fini)$' | sort)
expected=$(printf '%s\n' ConvertMetaFileToSVG WMFToSVG g_Logger svgmodule_convert svgmodule_free \
    _Z15ConvertEMFToSVGPKcR10QByteArraym _Z15ConvertWMFToSVGPKcR10QByteArray \
    _Z13EnableLoggingb7QString _Z17svgmodule_convertRK10QByteArrayRS_PK17svgmodule_options | sort)
if [ "$actual" != "$expected" ]; then
    echo "exported symbols differ:"; diff <(echo "$expected") <(echo "$actual") || true
    exit 1
fi
soname=$(objdump -p "$lib" | awk '/SONAME/ {print $2}')
[ "$soname" = "libsvgmodule.so.1" ] || { echo "soname is $soname"; exit 1; }
echo "exports ok"
