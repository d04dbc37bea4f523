#!/usr/bin/env bash
# Installs the packages of build/packages into a fresh minimal Debian and uses them there as a user would; then removes
# them, and the system. Needs root, debootstrap and a Debian mirror.
#
#   scripts/try-packages.sh
#
# The system comes from CORVANE_DEBIAN_MIRROR, else from the mirror of this machine's apt. It and the packages that ours
# depend on are kept in ~/.cache/corvane for the next time. Ends with 3 where this machine does not let a system be made:
# without root, device nodes or a mirror.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

packages="$root/build/packages"
cache="${XDG_CACHE_HOME:-$HOME/.cache}/corvane"
suite="$(sed -n 's/^VERSION_CODENAME=//p' /etc/os-release)"
architecture="$(dpkg --print-architecture)"
user=nobody

# A mirror that has the suite: the given one, else what apt uses here. No slash at its end.
mirror()
{
    local url="${CORVANE_DEBIAN_MIRROR:-}"
    if [[ -z "$url" ]]; then
        # shellcheck disable=SC2016 # the variable is apt's
        url="$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' 'Label: Debian' "Codename: $suite" |
            sort -u | head -n 1)"
    fi
    printf '%s\n' "${url%/}"
}

# debootstrap and the apt in the system take the way to the mirror that the apt of this machine takes.
if [[ -z "${http_proxy:-}" ]]; then
    eval "$(apt-config shell http_proxy Acquire::http::Proxy)"
    export http_proxy
fi

system=
server=
display=
clean_up()
{
    local process
    for process in $server $display; do
        kill "$process" 2>/dev/null || true
        wait "$process" 2>/dev/null || true
    done
    if [[ -n "$system" ]]; then
        rm -rf --one-file-system "$system"
    fi
}
trap clean_up EXIT

# inside COMMAND...: as root in the system, with nothing of this environment.
inside()
{
    env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive HOME=/root \
        ${http_proxy:+"http_proxy=$http_proxy"} ${https_proxy:+"https_proxy=$https_proxy"} \
        chroot "$system" "$@"
}

make_system()
{
    local source tarball="$cache/$suite-$architecture.tar"
    source="$(mirror)"
    mkdir -p "$cache/archives"
    # A month old, its packages are likely to be gone from the mirror.
    if [[ -z "$(find "$tarball" -mtime -30 2>/dev/null)" ]]; then
        say "try-packages: fetching $suite from $source"
        quietly "$logs/debootstrap.log" debootstrap --variant=minbase "$suite" "$system" "$source"
        tar -C "$system" -cf "$tarball.part" .
        mv "$tarball.part" "$tarball"
    else
        tar -C "$system" -xf "$tarball"
    fi
    cp -L /etc/resolv.conf "$system/etc/resolv.conf"
    cp "$cache/archives/"*.deb "$system/var/cache/apt/archives/" 2>/dev/null || true
    mkdir -p "$system/home/user/run" "$system/home/user/imagery" "$system/packages"
    chmod 700 "$system/home/user/run"
}

make_imagery()
{
    local folder="$system/home/user/imagery"
    quietly "$logs/imagery.log" gdal_create -of GTiff -outsize 600 400 -bands 3 -burn 40 -burn 120 -burn 200 \
        -a_srs EPSG:4326 -a_ullr 10 50 16 46 "$folder/field.tif"
    cp "$root/data/sample/world.tif" "$folder/"
    inside chown -R "$user" /home/user
}

# Recommended packages are left out: what the viewer cannot do without has to stand in its dependencies.
install_packages()
{
    local files
    cp "$packages"/*.deb "$system/packages/"
    # The dependencies of libcorvane-dev are those of building: .ci/run builds with what it holds.
    mapfile -t files < <(cd "$system" && printf '/%s\n' packages/*.deb | grep -v libcorvane-dev)
    quietly "$logs/update.log" inside apt-get -q update
    quietly "$logs/install.log" inside apt-get -q -y --no-install-recommends -o APT::Keep-Downloaded-Packages=true \
        -o APT::Sandbox::User=root -o Dpkg::Options::=--force-unsafe-io install "${files[@]}"
    quietly "$logs/autoclean.log" inside apt-get -q autoclean # what the mirror no longer has
    rm -rf "$cache/archives"
    mkdir "$cache/archives"
    cp "$system/var/cache/apt/archives/"*.deb "$cache/archives/"
}

# expect WHAT TEXT PATTERN
expect()
{
    [[ "$2" =~ $3 ]] || fail "$1: expected \"$3\", there was: $2"
    say "try-packages: $1"
}

# The colour in the middle of a picture of 300 x 200.
pixel()
{
    gdallocationinfo -valonly "$system/home/user/$1" 150 100 | head -n 3 | xargs
}

try_viewer()
{
    expect "the viewer starts" "$("${as_user[@]}" corvane-viewer --version)" '^Corvane Viewer [0-9]'
    local plugins file
    plugins="$("${as_user[@]}" corvane-viewer --list-plugins)"
    for file in "$system"/usr/lib/*/corvane/tvviewerplugins/*.so; do
        expect "the plugin ${file##*/} is found" "$plugins" "/${file##*/}"
    done
    "${as_user[@]}" corvane-viewer --snapshot /home/user/field.png --size 300x200 file:///home/user/imagery/field.tif
    expect "a picture is rendered" "$(gdalinfo "$system/home/user/field.png")" 'Size is 300, 200'
    expect "the picture is that of the image" "$(pixel field.png)" '^40 120 200$'
    expect "a file tells of itself" "$("${as_user[@]}" corvane-viewer --info /home/user/imagery/world.tif)" '"EPSG:4326"|4326'
    local code=0
    "${as_user[@]}" corvane-viewer --info /home/user/imagery/none.tif >/dev/null 2>&1 || code=$?
    expect "a file that is not there gives exit code 2" "$code" '^2$'
}

# wait_for PROCESS COMMAND...: until the command succeeds or the process is gone, five minutes at most.
wait_for()
{
    local process="$1" end=$((SECONDS + 300))
    shift
    while kill -0 "$process" 2>/dev/null && ! "$@" && ((SECONDS < end)); do
        sleep 0.1
    done
}

# The server's picture of an image reaches a viewer, through the plugin for image servers.
try_server()
{
    "${as_user[@]}" corvane-imageserver --port 0 /home/user/imagery >"$logs/server.out" 2>"$logs/server.err" &
    server=$!
    wait_for "$server" grep -qs '^Publishing' "$logs/server.out"
    local line address code=0
    line="$(cat "$logs/server.out" "$logs/server.err")"
    expect "the server starts" "$line" '^Publishing 2 images of /home/user/imagery at http://127'
    address="${line##* }"
    "${as_user[@]}" corvane-viewer --snapshot /home/user/served.png --size 300x200 "${address}field.tif"
    expect "it answers a viewer" "$(pixel served.png)" '^40 120 200$'
    kill -TERM "$server"
    wait "$server" || code=$?
    server=
    expect "SIGTERM ends it with 0" "$code" '^0$'
}

# Whether the maps that the program keeps while it runs hold both images.
shows_images()
{
    local image
    for image in field.tif world.tif; do
        grep -rqs --include='*.cmap' "<datasource value=\"/home/user/imagery/$image\"/>" "$system/home/user/.local" || return
    done
}

# The window on a display of its own, in which there is no other. The display is reached without the system's files.
try_window()
{
    Xvfb -displayfd 3 -screen 0 1280x800x24 -ac -nolisten tcp 3>"$logs/display" 2>"$logs/xvfb.err" &
    display=$!
    wait_for "$display" test -s "$logs/display"
    local number
    number="$(cat "$logs/display")"
    "${as_user[@]}" "DISPLAY=:$number" corvane-viewer /home/user/imagery >"$logs/window.out" 2>&1 &
    server=$!
    wait_for "$server" shows_images
    shows_images || fail "the window did not open the images of the folder: $(cat "$logs/window.out")"
    expect "the window opens, with the images of a folder" "$(xwininfo -display ":$number" -root -tree)" \
        '"Corvane Viewer.*"corvane-viewer"'
    kill "$server"
    wait "$server" || true
    server=
}

# What the triggers of the desktop's packages have made of ours.
try_desktop()
{
    expect "maps are known by their root element" "$(cat "$system/usr/share/mime/XMLnamespaces")" \
        'mapcanvas application/vnd.corvane.map\+xml'
    expect "their suffix is known" "$(cat "$system/usr/share/mime/globs2")" 'vnd.corvane.map\+xml:\*\.cmap'
    local missing
    missing="$(inside ldconfig -p)"
    expect "the library is found by the loader" "$missing" 'libcorvane\.so\.'
}

remove_packages()
{
    local names left
    # shellcheck disable=SC2016 # the variable is dpkg's
    mapfile -t names < <(inside dpkg-query --show --showformat '${Package}\n' '*corvane*')
    quietly "$logs/remove.log" inside apt-get -q -y purge "${names[@]}"
    left="$(find "$system/usr" "$system/etc" "$system/var/lib/dpkg/info" -name '*corvane*' ! -path '*/archives/*')"
    [[ -z "$left" ]] || fail "removing the packages left: $left"
    say "try-packages: removing them leaves nothing"
}

# Why no system can be made here; nothing where one can.
hindrance()
{
    if [[ "$(id -u)" != 0 ]]; then
        echo "chroot needs root"
    elif ! mknod "$system/probe" c 1 3 2>/dev/null; then
        echo "this machine allows no device nodes, which debootstrap makes"
    elif [[ -z "$(mirror)" ]]; then
        echo "no Debian mirror is known; name one in CORVANE_DEBIAN_MIRROR"
    elif ! curl --silent --fail --location --head --max-time 60 --output /dev/null "$(mirror)/dists/$suite/InRelease"; then
        echo "the mirror $(mirror) does not answer for $suite"
    fi
    rm -f "$system/probe"
}

for tool in debootstrap curl gdal_create Xvfb xwininfo; do
    command -v "$tool" >/dev/null || fail "needs $tool: scripts/setup.sh test package"
done
compgen -G "$packages/*.deb" >/dev/null || fail "no packages in $packages: scripts/packages.sh makes them"

system="$(mktemp -d)"
chmod 755 "$system"
reason="$(hindrance)"
if [[ -n "$reason" ]]; then
    say "try-packages: left out: $reason"
    exit 3
fi
logs="$root/build/try-packages"
rm -rf "$logs"
mkdir -p "$logs"
# Runs a command as an ordinary user in the system; variables may come before it. No function: in the background, the
# process is that of the command itself.
as_user=(chroot "--userspec=$user" "$system" env -i PATH=/usr/bin:/bin LC_ALL=C.UTF-8 HOME=/home/user
    XDG_RUNTIME_DIR=/home/user/run)
make_system
make_imagery
install_packages
try_viewer
try_window
try_server
try_desktop
remove_packages
say "try-packages: done"
