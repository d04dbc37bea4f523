#!/usr/bin/env bash
# Builds the benchmarks, runs them on the test data and prints a table; the numbers go to build/release/bench/results.json.
#
#   ./bench.sh [PATTERN]      only the programs whose line in bench-list.txt matches the extended regular expression
#
# CORVANE_TEST_DATA: folder of the test data, by default that of scripts/make-test-data.sh.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/scripts/lib.sh"

pattern="${1:-}"
data="${CORVANE_TEST_DATA:-${XDG_CACHE_HOME:-$HOME/.cache}/corvane/test-data}"
folder="$root/build/release/bench"

"$root/scripts/setup.sh" build bench
say "bench: configuring"
quietly "$root/build/release/bench-configure.log" configure release -DCORVANE_BUILD_BENCHMARKS=ON
say "bench: building"
quietly "$root/build/release/bench-build.log" build release
say "bench: test data in $data"
"$root/scripts/make-test-data.sh" "$data" >&2
data="$(cd "$data" && pwd)"

[[ -s "$folder/bench-list.txt" ]] || fail "$folder/bench-list.txt lists no program"
export QT_QPA_PLATFORM="${QT_QPA_PLATFORM:-offscreen}"
lines="$folder/results.jsonl"
: >"$lines"
failed=0
while IFS= read -r line <&3; do
    if [[ -z "$line" || "$line" == \#* ]] || ! grep -qE -e "$pattern" <<<"$line"; then
        continue
    fi
    read -ra command <<<"$line"
    command=("${command[@]//@DATA@/$data}")
    if [[ "${command[0]}" != /* ]]; then
        command[0]="$folder/${command[0]}"
    fi
    say "bench: $line"
    # Result lines are JSON objects; whatever else a program prints is passed on.
    if ! "${command[@]}" | tee >(grep -v '^{' >&2) | grep '^{' >>"$lines"; then
        say "bench: failed, or gave no result: $line"
        failed=1
    fi
done 3<"$folder/bench-list.txt"

"$root/scripts/bench_table.py" "$lines" "$folder/results.json"
exit "$failed"
