#!/usr/bin/env bash
# Builds everything with its tests and runs them.
#
#   ./test.sh [CTEST ARGUMENTS...]      for example: ./test.sh -R map.ViewManager
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/scripts/lib.sh"

"$root/scripts/setup.sh" build test
say "test: configuring"
quietly "$root/build/dev/test-configure.log" configure dev
say "test: building"
quietly "$root/build/dev/test-build.log" build dev
run_tests dev "$@"
