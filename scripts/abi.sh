#!/usr/bin/env bash
# Holds the library against the binary interface that programs and plugins were built with.
#
#   scripts/abi.sh            ends with an error where something of the interface is gone or has changed
#   scripts/abi.sh --renew    takes the present interface as the one to hold
#
# What is added breaks nobody. Before a release that may break its users, and after each one, renew the description in
# packaging/abi and say in CHANGELOG.md what plugins have to be built anew for.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

folder="$root/build/abi" # a build of its own: the others carry no debug information of types, or sanitizers
held="$root/packaging/abi/libcorvane.abi.xz"
renew=no

case "$*" in
    '') ;;
    --renew) renew=yes ;;
    *) fail "it takes nothing or --renew" ;;
esac

configure_library()
{
    cmake -S "$root" -B "$folder" -G Ninja -DCMAKE_CXX_COMPILER=g++ -DCMAKE_BUILD_TYPE=Release \
        "-DCMAKE_CXX_FLAGS_RELEASE=-O1 -g -DNDEBUG" -DCORVANE_BUILD_VIEWER=OFF -DCORVANE_BUILD_PLUGINS=OFF \
        -DCORVANE_BUILD_SERVER=OFF -DCORVANE_BUILD_PLUGIN_CHECK=OFF -DCORVANE_BUILD_TESTS=OFF
}

# What is public is what stands in the installed headers; nothing of this machine gets into the description.
describe()
{
    local headers="$folder/headers"
    rm -rf "$headers"
    cmake --install "$folder" --component dev --prefix "$headers"
    abidw --no-corpus-path --no-comp-dir-path --no-show-locs --no-elf-needed --drop-undefined-syms \
        --exported-interfaces-only --drop-private-types \
        --headers-dir "$headers/include/corvane" --out-file "$folder/libcorvane.abi" "$folder/lib/libcorvane.so"
}

for tool in abidw abidiff xz; do
    command -v "$tool" >/dev/null || fail "needs $tool: scripts/setup.sh check"
done
say "abi: building"
quietly "$folder/abi-configure.log" configure_library
quietly "$folder/abi-build.log" build abi corvane
say "abi: describing"
quietly "$folder/abi-describe.log" describe

if [[ "$renew" == yes ]]; then
    mkdir -p "$(dirname "$held")"
    xz -9 --stdout "$folder/libcorvane.abi" >"$held"
    say "abi: renewed ${held#"$root"/}"
    exit 0
fi

xz --decompress --stdout "$held" >"$folder/held.abi"
say "abi: comparing"
if ! abidiff --no-added-syms "$folder/held.abi" "$folder/libcorvane.abi"; then
    fail "the binary interface has lost or changed what programs and plugins use; where that is meant:" \
        "scripts/abi.sh --renew, and a line in CHANGELOG.md"
fi
say "abi: as held"
