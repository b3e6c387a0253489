#!/usr/bin/env bash
# Installs the Debian 12 packages the build, tests and tools need, when they are missing.
#   scripts/setup.sh          what building and the unit tests need (Qt 6)
#   scripts/setup.sh --full   also Qt 5, clang's sanitizer and fuzzer runtimes, xmllint, and
#                             what CPack needs for the Debian packages (dpkg-dev, file)
#   scripts/setup.sh [--full] PACKAGE...   also the named packages
set -euo pipefail
packages=(cmake ninja-build g++ pkg-config qt6-base-dev libgtest-dev)
if [ "${1:-}" = "--full" ]; then
    packages+=(qtbase5-dev clang libclang-rt-14-dev libbenchmark-dev libxml2-utils
               dpkg-dev file)
    shift
fi
packages+=("$@")
missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
    echo "Installing: ${missing[*]}"
    SUDO=""
    [ "$(id -u)" -ne 0 ] && SUDO="sudo"
    $SUDO apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq "${missing[@]}" >/dev/null
fi
