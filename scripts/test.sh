#!/usr/bin/env bash
# Runs the whole test suite on a fresh Debian 12 machine, installing what is missing:
#  1. Qt 6 build, unit tests (ctest) with the command line's and the installation's tests;
#  2. the Debian packages, built with CPack and checked with dpkg-deb;
#  3. AddressSanitizer + UndefinedBehaviorSanitizer build, unit tests and a sweep over the
#     corpus;
#  4. ThreadSanitizer build of the library and the thread stress test, and its run;
#  5. Qt 5.15 build and unit tests;
#  6. the libFuzzer target built with clang and run briefly over the corpus and examples.
# scripts/test.sh --quick runs step 1 only.
#
# Every step runs, also after a failure. The last lines are the verdict: "N passed, M failed,
# K skipped", counting each ctest test of every build and each checking step (packages, sweep,
# fuzzer), then a line per reason anything was skipped or failed. The exit status is 0 only
# when nothing failed.
#
# The corpus is $SVGMODULE_CORPUS, else each build's SVGMODULE_CORPUS cache entry (default
# ../shared/corpus). Without it the corpus tests skip ("corpus absent"); with CI=true they count
# as failed. A test that changes a file of the clone (git status) fails the run too.
#
# A step is added with `run_step NAME COMMAND...` (exit status 0 passes, 77 skips with the reason
# the command prints last, anything else fails), `build_step DIR CMAKE_OPTIONS...` (a failed
# build counts as a failed test) and `ctest_step DIR [CTEST_OPTIONS...]`.
set -uo pipefail
cd "$(dirname "$0")/.."
quick=0
[ "${1:-}" = "--quick" ] && quick=1
jobs=$(nproc)
ci=0
[ "${CI:-}" = "true" ] && ci=1
results=$(mktemp)  # one line per test that did not pass: failed|skipped <TAB> reason <TAB> name
passed=0
status_before=$(git status --porcelain 2>/dev/null)

step() { printf '\n=== %s\n' "$*"; }

# record passed|failed|skipped NAME [REASON]
record() {
    case $1 in
        passed) passed=$((passed + 1)) ;;
        *) printf '%s\t%s\t%s\n' "$1" "${3:-}" "$2" >>"$results" ;;
    esac
}

run_step() {
    local name=$1 out rc
    shift
    out=$(mktemp)
    "$@" 2>&1 | tee "$out"
    rc=${PIPESTATUS[0]}
    case $rc in
        0) record passed "$name" ;;
        77) record skipped "$name" "$(tail -n 1 "$out" | sed 's/^[^:]*: //; s/:.*//')" ;;
        *) record failed "$name" ;;
    esac
    rm -f "$out"
    return "$rc"
}

build_step() {
    local dir=$1
    scripts/build.sh "$@" || { record failed "$dir: build"; return 1; }
}

# Counts the tests of a ctest run from its JUnit report: a test that skipped itself
# ("[  SKIPPED ]") is skipped, with "corpus absent" as its reason when its output says so.
ctest_step() {
    local dir=$1 xml rc
    shift
    xml="$(pwd)/$dir/ctest-junit.xml"
    rm -f "$xml"
    (cd "$dir" && ctest --output-on-failure --output-junit "$xml" "$@")
    rc=$?
    if [ ! -f "$xml" ]; then
        record failed "$dir: ctest (exit status $rc, no report)"
        return 1
    fi
    local counts
    counts=$(awk -v dir="$dir" -v out="$results" '
        function attr(name,   m) {
            if (match($0, name "=\"[^\"]*\"")) return substr($0, RSTART + length(name) + 2,
                                                               RLENGTH - length(name) - 3)
            return ""
        }
        /<testcase / { test = dir "/" attr("name"); status = attr("status"); reason = "";
                       if (status == "run") ok++ }
        /<skipped / { skip = status == "disabled" || attr("message") ~ /SKIP|^Skipped$/ }
        /corpus absent/ { reason = "corpus absent" }
        /<\/testcase>/ {
            if (status == "fail" || (status != "run" && !skip)) print "failed\t\t" test >> out
            else if (status != "run") print "skipped\t" reason "\t" test >> out
            skip = 0
        }
        END { print ok + 0 }' "$xml")
    passed=$((passed + counts))
    if [ "$rc" -ne 0 ] && ! grep -q "^failed.*"$'\t'"$dir/" "$results"; then
        record failed "$dir: ctest (exit status $rc)"
    fi
    return "$rc"
}

# Prints the verdict (and why) at the end of the run, however it ends.
verdict() {
    local status_after
    status_after=$(git status --porcelain 2>/dev/null)
    if [ "$status_after" != "$status_before" ]; then
        record failed "the clone is left changed ($(diff <(echo "$status_before") \
            <(echo "$status_after") | sed -n 's/^> ...//p' | tr '\n' ' '))"
    else
        record passed "the clone is left unchanged"
    fi
    if [ $ci = 1 ]; then  # CI needs the corpus: its skipped tests fail
        sed -i 's/^skipped\tcorpus absent/failed\tcorpus absent (CI=true requires it)/' "$results"
    fi
    local failed skipped
    failed=$(grep -c '^failed' "$results")
    skipped=$(grep -c '^skipped' "$results")
    step "Verdict"
    echo "$passed passed, $failed failed, $skipped skipped"
    # One line per outcome and reason: "corpus absent: 3 tests skipped: NAME (DIR, DIR), ..."
    sort -t $'\t' -k1,1 -k2,2 -k3,3 "$results" | awk -F '\t' '
        function flush() {
            if (n == 0) return
            line = (key2 == "" ? "" : key2 ": ") n " test" (n == 1 ? "" : "s") " " key1 ":"
            for (i = 1; i <= m; i++) line = line (i > 1 ? "," : "") " " names[i] \
                (dirs[names[i]] == "" ? "" : " (" dirs[names[i]] ")")
            print line
            n = 0; m = 0; delete dirs; delete names
        }
        {
            if ($1 != key1 || $2 != key2) flush()
            key1 = $1; key2 = $2; n++
            name = $3; dir = ""
            if (match(name, "^[^/: ]+/")) { dir = substr(name, 1, RLENGTH - 1); name = substr(name, RLENGTH + 1) }
            if (!(name in dirs)) { names[++m] = name; dirs[name] = dir }
            else if (dir != "") dirs[name] = dirs[name] ", " dir
        }
        END { flush() }'
    rm -f "$results"
    [ "$failed" -eq 0 ]
}

finish() {
    local rc
    verdict
    rc=$?
    trap - EXIT
    exit "$rc"
}
trap finish EXIT

if [ $quick = 1 ]; then
    scripts/setup.sh || { record failed "setup"; exit 1; }
else
    scripts/setup.sh --full || { record failed "setup"; exit 1; }
fi

step "Qt 6 build and unit tests"
build_step build -DSVGMODULE_FUZZ=OFF && ctest_step build -j"$jobs"
[ $quick = 1 ] && exit

step "Debian packages"
run_step "Debian packages" scripts/package.sh build-deb

step "Sanitizer build, unit tests and corpus sweep"
if build_step build-asan -DSVGMODULE_SANITIZE=ON -DSVGMODULE_FUZZ=OFF -DSVGMODULE_BENCH=OFF; then
    ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1 \
        ctest_step build-asan -j"$jobs"
    run_step "build-asan/corpus sweep" scripts/corpus_sweep.sh build-asan
fi

step "ThreadSanitizer build and thread stress test"
build_step build-tsan -DSVGMODULE_TSAN=ON -DSVGMODULE_FUZZ=OFF -DSVGMODULE_BENCH=OFF \
    --target thread_stress && ctest_step build-tsan -R '^Threads\.'

step "Qt 5.15 build and unit tests"
build_step build-qt5 -DSVGMODULE_QT=5 -DSVGMODULE_FUZZ=OFF -DSVGMODULE_BENCH=OFF &&
    ctest_step build-qt5 -j"$jobs"

step "Fuzzer (clang, libFuzzer), short run"
CC=clang CXX=clang++ build_step build-fuzz -DSVGMODULE_TESTS=OFF -DSVGMODULE_BENCH=OFF \
    -DSVGMODULE_FUZZ=ON && run_step "fuzzer run" scripts/fuzz.sh build-fuzz "${FUZZ_SECONDS:-60}"
