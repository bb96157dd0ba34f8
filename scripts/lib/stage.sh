# What every stage of scripts/test shares; sourced by the files of scripts/stages/, never run.
#
# A stage does its checks one after the other and counts each: passed, failed or skipped. The counts
# go to the file that $STAGE_COUNTS names, one line "passed failed skipped" for each call of count,
# where scripts/test adds them up.
# shellcheck shell=bash

# shellcheck source=common.sh
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
use_homebrew_llvm

# The exit status of a test program that says: nothing here could be run.
skip_status=77

# count PASSED FAILED SKIPPED: adds to the stage's counts.
count() { say "$1 $2 $3" >>"${STAGE_COUNTS:-/dev/null}"; }

# check NAME COMMAND...: one check, passed if the command succeeds. What it prints is shown only
# when it fails.
check() {
    local name=$1 output status=0
    shift
    output=$("$@" 2>&1) || status=$?
    if [ "$status" = 0 ]; then
        say "passed: $name"
        count 1 0 0
    elif [ "$status" = "$skip_status" ]; then
        skip "$name" "${output:-it cannot be run here}"
    else
        say "FAILED: $name"
        say "$output" | tail -n 200 | sed 's/^/    /'
        count 0 1 0
    fi
}

# skip NAME REASON: one check that cannot be made here.
skip() {
    say "skipped: $1 ($2)"
    count 0 0 1
}

# check_with TOOL NAME COMMAND...: as check, but skipped where the tool is missing.
check_with() {
    local tool=$1 name=$2
    shift 2
    if have "$tool"; then check "$name" "$@"; else skip "$name" "$tool is not installed"; fi
}

# run_counting COMMAND...: runs a program of many tests that ends with the line
# "N passed, N failed, N skipped", shows what it prints and counts what it counted. A program that
# fails without counting a failure, or ends without that line, is one failure.
run_counting() {
    local log status=0 counts
    log=$(mktemp "${TMPDIR:-/tmp}/browsersweep-log.XXXXXX")
    "$@" >"$log" 2>&1 </dev/null || status=$?
    cat "$log"
    counts=$(sed -nE 's/^([0-9]+) passed, ([0-9]+) failed, ([0-9]+) skipped$/\1 \2 \3/p' "$log" |
        tail -n 1)
    rm -f "$log"
    if [ -z "$counts" ]; then
        say "FAILED: $1 ended with status $status and without its counts"
        count 0 1 0
        return
    fi
    # Three words on purpose.
    # shellcheck disable=SC2086
    set -- $counts
    if [ "$status" != 0 ] && [ "$2" = 0 ]; then
        say "FAILED: the program ended with status $status"
        count "$1" 1 "$3"
    else
        count "$1" "$2" "$3"
    fi
}

# Some tests are long: many shards take turns on the processors.
in_turns=(--shards $((8 * $(cpu_count))) --at-once $((2 * $(cpu_count))))

# run_tests PRESET [FILTER]: runs the test programs that build/PRESET holds: those of GoogleTest
# directly and in random order, and those registered with the label "program" through ctest.
run_tests() {
    local folder=$root/build/$1 filter=${2:-*} seed=${BROWSERSWEEP_SEED:-$((RANDOM + 1))}
    local program found=no
    say "-- ${TZ:-the zone of this machine}, $(id -un), order $seed"
    while IFS= read -r program; do
        # No program at all is one empty line.
        [ -n "$program" ] || continue
        found=yes
        run_counting python3 "$root/scripts/lib/run-gtest" "${in_turns[@]}" --seed "$seed" \
            --filter="$filter" "$program"
    done <<EOF_PROGRAMS
$(find "$folder" -type f -name '*_tests' -perm -u+x | sort)
EOF_PROGRAMS
    if [ "$found" = no ]; then
        say "FAILED: build/$1 holds no test program"
        count 0 1 0
    fi
    run_counting python3 "$root/scripts/lib/run-ctest" --label program "$folder"
}

# build_only PRESET [TARGET...]: configures and builds one preset, as one check; fails if the build does.
# Stages that run side by side use what an earlier stage has built: only one may build in a folder at a
# time.
build_only() {
    if [ "${STAGES_SIDE_BY_SIDE:-no}" = yes ]; then return; fi
    local preset=$1 log=$root/build/$1.log
    mkdir -p "$root/build"
    if { configure "$preset" && build "$@"; } >"$log" 2>&1; then
        say "passed: the build of $preset"
        count 1 0 0
    else
        say "FAILED: the build of $preset; all it said is in build/$preset.log"
        grep -E -A 8 'error|FAILED|CMake Error' "$log" | head -n 120
        count 0 1 0
        return 1
    fi
}

# build_and_test PRESET [FILTER]: builds and tests one preset. Where the build fails there is nothing
# to run.
build_and_test() {
    if build_only "$1"; then run_tests "$@"; fi
}

# The tests that repeat the calls of others thousands of times: a short run leaves them out. In a
# complete one they run under the sanitizers and on the backend of macOS.
# shellcheck disable=SC2034
all_but_repetitions="-Races.aFolderThatBecomesALink*:*FileFaultsOfOperation*:*everyCorruptionOfOneByte*"
