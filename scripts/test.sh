#!/usr/bin/env bash
# Runs the whole test suite on a fresh Debian 12 machine, installing what is missing:
#  1. Qt 6 build, unit tests (ctest) with the command line's and the installation's tests;
#  2. the Debian packages, built with CPack and checked with dpkg-deb;
#  3. AddressSanitizer + UndefinedBehaviorSanitizer build, unit tests and a sweep over
#     ../shared/corpus (when present);
#  4. ThreadSanitizer build of the library and the thread stress test, and its run;
#  5. Qt 5.15 build and unit tests;
#  6. the libFuzzer target built with clang and run briefly over the corpus and examples.
# scripts/test.sh --quick runs step 1 only.
set -euo pipefail
cd "$(dirname "$0")/.."
quick=0
[ "${1:-}" = "--quick" ] && quick=1
if [ $quick = 1 ]; then scripts/setup.sh; else scripts/setup.sh --full; fi
jobs=$(nproc)

step() { printf '\n=== %s\n' "$*"; }

step "Qt 6 build and unit tests"
scripts/build.sh build -DSVGMODULE_FUZZ=OFF
(cd build && ctest --output-on-failure -j"$jobs")
[ $quick = 1 ] && exit 0

step "Debian packages"
scripts/package.sh build-deb

step "Sanitizer build, unit tests and corpus sweep"
scripts/build.sh build-asan -DSVGMODULE_SANITIZE=ON -DSVGMODULE_FUZZ=OFF -DSVGMODULE_BENCH=OFF
(cd build-asan && ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1 \
    ctest --output-on-failure -j"$jobs")
scripts/corpus_sweep.sh build-asan

step "ThreadSanitizer build and thread stress test"
scripts/build.sh build-tsan -DSVGMODULE_TSAN=ON -DSVGMODULE_FUZZ=OFF -DSVGMODULE_BENCH=OFF \
    --target thread_stress
(cd build-tsan && ctest --output-on-failure -R '^Threads\.')

step "Qt 5.15 build and unit tests"
scripts/build.sh build-qt5 -DSVGMODULE_QT=5 -DSVGMODULE_FUZZ=OFF -DSVGMODULE_BENCH=OFF
(cd build-qt5 && ctest --output-on-failure -j"$jobs")

step "Fuzzer (clang, libFuzzer), short run"
CC=clang CXX=clang++ scripts/build.sh build-fuzz -DSVGMODULE_TESTS=OFF -DSVGMODULE_BENCH=OFF \
    -DSVGMODULE_FUZZ=ON
scripts/fuzz.sh build-fuzz "${FUZZ_SECONDS:-60}"
