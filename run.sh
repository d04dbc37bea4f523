#!/usr/bin/env bash
# Builds the viewer and starts it with the given files and options, or with the bundled sample.
#
#   ./run.sh [VIEWER ARGUMENTS...]
#
# On a machine without a display it renders the files to corvane-snapshot.png in the current folder instead.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/scripts/lib.sh"

"$root/scripts/setup.sh" build
if [[ ! -f "$root/build/release/build.ninja" || "$root/CMakePresets.json" -nt "$root/build/release/build.ninja" ]]; then
    say "run: configuring"
    quietly "$root/build/release/run-configure.log" configure release
fi
say "run: building"
quietly "$root/build/release/run-build.log" build release

has_display()
{
    [[ -n "${DISPLAY:-}" || -n "${WAYLAND_DISPLAY:-}" || "$(uname)" == Darwin ]]
}

# What the arguments ask for: files to open, a run without a window, or a text that needs no file either.
files=no
windowless=no
text=no
value_follows=no
for argument in "$@"; do
    if [[ "$value_follows" == yes ]]; then
        value_follows=no
        continue
    fi
    case "$argument" in
        --snapshot) windowless=yes value_follows=yes ;;
        --snapshot=* | --info) windowless=yes ;;
        --list-plugins | --help | --help-all | -h | --version | -v) windowless=yes text=yes ;;
        --size | --extent | --timeout) value_follows=yes ;;
        -platform | --platform | -style | --style | -stylesheet | -geometry | -display) value_follows=yes ;;
        -*) ;;
        *) files=yes ;;
    esac
done

arguments=("$@")
if [[ "$files" == no && "$text" == no ]]; then
    arguments+=("$root/data/sample/world.tif")
fi
viewer="$root/build/release/bin/corvane-viewer"
if has_display || [[ -n "${QT_QPA_PLATFORM:-}" ]]; then
    exec "$viewer" "${arguments[@]}"
fi
export QT_QPA_PLATFORM=offscreen
if [[ "$windowless" == yes ]]; then
    exec "$viewer" "${arguments[@]}"
fi
picture="$PWD/corvane-snapshot.png"
if [[ ! -w "$PWD" ]]; then
    picture="$(mktemp -d)/corvane-snapshot.png"
fi
say "run: no display here; rendering to $picture"
"$viewer" --snapshot "$picture" "${arguments[@]}"
say "run: rendered $picture"
