# shellcheck shell=bash
# What the scripts share; to be sourced. They say what they do on stderr, so that stdout stays the program's own.

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"

say()
{
    printf '%s\n' "$*" >&2
}

fail()
{
    say "${0##*/}: $*"
    exit 1
}

# quietly LOG COMMAND...: runs the command with its output in the log, which is shown only when it fails.
quietly()
{
    local log="$1"
    shift
    mkdir -p "$(dirname "$log")"
    if ! "$@" >"$log" 2>&1; then
        tail -n 200 "$log" >&2
        fail "failed: $*  (whole output: $log)"
    fi
}

# configure PRESET [CMAKE ARGUMENTS...]: warnings are errors where CORVANE_WERROR=ON is in the environment.
configure()
{
    local preset="$1"
    shift
    (cd "$root" && cmake --preset "$preset" "-DCORVANE_WERROR=${CORVANE_WERROR:-OFF}" "$@")
}

# build PRESET [TARGET]: says nothing but warnings and errors.
build()
{
    cmake --build "$root/build/$1" --target "${2:-all}" --parallel "$(nproc)" -- --quiet
}

# run_tests PRESET [CTEST ARGUMENTS...]: ctest's own summary comes last, its exit code is ours.
run_tests()
{
    local preset="$1"
    shift
    ctest --test-dir "$root/build/$preset" --output-on-failure --no-tests=error --parallel "$(nproc)" "$@"
}
