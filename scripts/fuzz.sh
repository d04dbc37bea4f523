#!/usr/bin/env bash
# Feeds mutations of the seeds in fuzz/corpus to the readers of what strangers send, under AddressSanitizer and
# UndefinedBehaviorSanitizer.
#
#   scripts/fuzz.sh [SECONDS] [NAME...]     each of them, or those named, for so many seconds, 60 unless told
#   scripts/fuzz.sh --check                 a fixed number of the same mutations each time, for .ci/run
#
# What is found lies in build/fuzz/findings, what has been learnt in build/fuzz/corpus. A finding is mended with a test
# beside the reader's others, and its input becomes a seed where it teaches something.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

folder="$root/build/fuzz"
findings="$folder/findings"
seconds=60
checks=no

if [[ "${1:-}" == --check ]]; then
    checks=yes
    shift
elif [[ "${1:-}" =~ ^[0-9]+$ ]]; then
    seconds="$1"
    shift
fi
names=("$@")
if ((${#names[@]} == 0)); then
    for source in "$root"/fuzz/*Fuzz.cpp; do
        source="${source##*/}"
        names+=("${source%Fuzz.cpp}")
    done
fi

# Leaks are left to the tests: Qt's own reader of JSON leaks a little where a name comes twice.
export ASAN_OPTIONS=detect_leaks=0

# A mutation that takes half a minute hangs, however slow the machine.
common=(-detect_leaks=0 -timeout=30 -rss_limit_mb=2048 -max_len=20000 -print_final_stats=0 -verbosity=0 "-artifact_prefix=$findings/")

run_fuzzer()
{
    local name="$1"
    local seeds="$root/fuzz/corpus/$name"
    local learnt="$folder/corpus/$name"
    [[ -x "$folder/fuzz/bin/$name" ]] || fail "there is no $name"
    mkdir -p "$learnt"
    if [[ "$checks" == yes ]]; then
        # into an empty folder, so that it is the same each time; what is learnt never goes to the seeds
        rm -rf "$folder/check"
        mkdir -p "$folder/check"
        "$folder/fuzz/bin/$name" "${common[@]}" -seed=1 -runs=20000 "$folder/check" "$seeds"
    else
        "$folder/fuzz/bin/$name" "${common[@]}" "-max_total_time=$seconds" "$learnt" "$seeds"
    fi
}

say "fuzz: building"
quietly "$folder/fuzz-configure.log" configure fuzz
quietly "$folder/fuzz-build.log" build fuzz fuzzers
mkdir -p "$findings"
for name in "${names[@]}"; do
    say "fuzz: $name"
    log="$folder/$name.log"
    if ! run_fuzzer "$name" >"$log" 2>&1; then
        tail -n 60 "$log" >&2
        fail "$name has found something: see $findings"
    fi
done
say "fuzz: nothing found"
