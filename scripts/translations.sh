#!/usr/bin/env bash
# Brings translations/*.ts up to date with the texts in the sources. What is new in them is unfinished then, what the
# sources no longer say is gone.
#
#   scripts/translations.sh [FOLDER]      the folder of the files, translations/ of this tree unless given
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

folder="${1:-$root/translations}"

# update NAME FOLDER...: the sources of these folders into NAME_de.ts, and what has plurals into NAME_en.ts.
update()
{
    local name="$1"
    shift
    lupdate -silent -I "$root" -no-obsolete -locations none -target-language de "$@" -ts "$folder/${name}_de.ts"
    lupdate -silent -I "$root" -no-obsolete -locations none -pluralonly -target-language en "$@" -ts "$folder/${name}_en.ts"
}

cd "$root"
update corvane corvane compat
update corvane-viewer viewer
update corvane-plugins plugins
