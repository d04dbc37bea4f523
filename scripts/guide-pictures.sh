#!/usr/bin/env bash
# Makes the pictures of the user guide anew, with the program of the dev build, and puts them into docs/pictures.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

configure dev >/dev/null
build dev docs.GuidePicturesTest
ctest --test-dir "$root/build/dev" -R '^docs.GuidePictures$' >/dev/null || true # it fails while the old ones differ
cp "$root/build/dev/tests/docs/GuidePicturesTest/pictures/"*.png "$root/docs/pictures/"
say "docs/pictures: $(find "$root/docs/pictures" -name '*.png' | wc -l) pictures"
