#!/usr/bin/env bash
# Builds the Debian packages into build/packages, and holds them and what a desktop takes from them against its rules.
#
#   scripts/packages.sh
#
# A user installs them with: apt install ./build/packages/*.deb
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

packages="$root/build/packages"
logs="$root/build/package"
unpacked="$logs/unpacked"
desktop_id=org.corvane.Viewer

# Debian 12 has no package of the property browser; there it is carried along.
bundle_property_browser()
{
    [[ -z "$(apt-cache madison libqtpropertybrowser4 2>/dev/null)" ]] && echo ON || echo OFF
}

unpack()
{
    rm -rf "$unpacked"
    mkdir -p "$unpacked"
    local file
    for file in "$packages"/*.deb; do
        dpkg-deb --extract "$file" "$unpacked"
    done
}

files_of()
{
    (cd "$1" && find . ! -type d | sort)
}

# What is installed is packed, and every plugin that is built is installed.
check_nothing_is_left_out()
{
    local installed="$logs/installed"
    rm -rf "$installed"
    quietly "$logs/install.log" env "DESTDIR=$installed" cmake --install "$root/build/package"
    diff <(files_of "$installed") <(files_of "$unpacked") >&2 || fail "the packages hold other files than are installed"
    local libraries
    libraries="$unpacked/usr/lib/$(dpkg-architecture -qDEB_HOST_MULTIARCH)"
    diff <(files_of "$logs/bin/tvviewerplugins") <(files_of "$libraries/corvane/tvviewerplugins") >&2 ||
        fail "the package of the plugins holds other files than are built"
}

# The examples are built with what libcorvane-dev and libcorvane hold, and run.
check_library_packages()
{
    local examples="$logs/examples"
    rm -rf "$examples"
    quietly "$logs/examples.log" cmake -S "$unpacked/usr/share/doc/libcorvane-dev/examples" -B "$examples" -G Ninja \
        "-DCMAKE_PREFIX_PATH=$unpacked/usr" -DCMAKE_BUILD_TYPE=Release
    quietly "$logs/examples.log" cmake --build "$examples"
    quietly "$logs/examples.log" run_tests package/examples
}

# No warning of man or mandoc. The text of an option may be longer than a terminal's line: that is style.
check_man_page()
{
    local page="$1"
    local complaints
    complaints="$(LC_ALL=C.UTF-8 MANROFFSEQ='' man --warnings --local-file "$page" 2>&1 >/dev/null)"
    [[ -z "$complaints" ]] || fail "$page: $complaints"
    zcat "$page" | mandoc -T lint -W warning || fail "$page: see above"
}

# A map without a suffix is known by its root element, and shown with the icon of its type.
check_types()
{
    local data="$logs/types"
    rm -rf "$data"
    mkdir -p "$data"
    cp -r "$unpacked/usr/share/mime" "$data/mime"
    xmllint --noout "$data/mime/packages/$desktop_id.xml"
    quietly "$logs/mime.log" env XDG_DATA_DIRS=/usr/local/share:/usr/share update-mime-database -V "$data/mime"
    if grep -i "error\|warning" "$logs/mime.log" >&2; then
        fail "update-mime-database has complaints about $desktop_id.xml"
    fi
}

"$root/scripts/setup.sh" build package
say "packages: configuring"
quietly "$logs/packages-configure.log" configure package \
    "-DCORVANE_BUNDLE_PROPERTY_BROWSER=$(bundle_property_browser)"
say "packages: building"
quietly "$logs/packages-build.log" build package

say "packages: packing"
rm -rf "$packages"
(umask 022 && cd "$logs" && quietly "$logs/packages-pack.log" cpack -G DEB)
rm -rf "$packages/_CPack_Packages"

say "packages: checking"
quietly "$logs/lintian.log" lintian --fail-on error,warning --tag-display-limit 0 --allow-root "$packages"/*.deb
unpack
check_nothing_is_left_out
check_library_packages
desktop-file-validate "$unpacked/usr/share/applications/$desktop_id.desktop"
quietly "$logs/appstream.log" appstreamcli validate-tree --no-net "$unpacked"
check_types
for page in "$unpacked"/usr/share/man/man*/*.gz; do
    check_man_page "$page"
done

for file in "$packages"/*.deb; do
    say "packages: ${file#"$root/"}"
done
