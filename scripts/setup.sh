#!/usr/bin/env bash
# Installs what is missing for building, testing and measuring, with apt (Debian 12 and its relatives).
#
#   scripts/setup.sh [build] [test] [check] [bench] [package]      no word: all of them
#
# build: compilers and libraries; test: what the tests run; check: Clang and its tools; bench: benchmarks and test data;
# package: what makes, checks and tries Debian packages.
# Where nothing is missing it ends at once, needs no root and asks no server.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

build_packages=(g++ cmake ninja-build ccache pkg-config ca-certificates
    qtbase5-dev libgdal-dev libproj-dev libboost-dev libcurl4-openssl-dev libturbojpeg0-dev librsvg2-bin
    libqtpropertybrowser-dev
    libcpp-httplib-dev qttools5-dev qttools5-dev-tools cmark-gfm
    qttranslations5-l10n)
test_packages=(gdal-bin openssl poppler-utils xvfb xauth)
check_packages=(clang clang-format clang-tidy libclang-rt-dev shellcheck git abigail-tools xz-utils doxygen)
bench_packages=(gdal-bin marble-data libbenchmark-dev python3 nginx-light libnginx-mod-http-echo)
package_packages=(dpkg-dev file gdal-bin lintian desktop-file-utils appstream libxml2-utils shared-mime-info man-db mandoc
    debootstrap curl xvfb x11-utils)

# Debian 12 alone left this package out; the release before it has the version that fits its Qt.
property_browser=libqtpropertybrowser-dev
property_browser_suite=bullseye

temporary=
trap '[[ -z "$temporary" ]] || rm -rf "$temporary"' EXIT

installed()
{
    local status
    status="$(dpkg-query -W -f '${db:Status-Abbrev};' "$1" 2>/dev/null)" && [[ "$status" == *ii* ]]
}

offered()
{
    local policy
    policy="$(apt-cache policy "$1" 2>/dev/null)" && [[ "$policy" == *"Candidate: "* && "$policy" != *"Candidate: (none)"* ]]
}

as_root()
{
    if [[ "$(id -u)" == 0 ]]; then
        env DEBIAN_FRONTEND=noninteractive "$@"
    else
        sudo env DEBIAN_FRONTEND=noninteractive "$@"
    fi
}

# The Debian mirrors that this machine's apt uses, a line each; CORVANE_DEBIAN_MIRROR comes before them.
mirrors()
{
    if [[ -n "${CORVANE_DEBIAN_MIRROR:-}" ]]; then
        printf '%s\n' "$CORVANE_DEBIAN_MIRROR"
    fi
    # shellcheck disable=SC2016 # the variable is apt's
    apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' 'Label: Debian' | sort -u
}

# Fetches the property browser's two packages from the older suite with apt lists of their own in a temporary folder:
# apt verifies the suite's signature and the packages' checksums, and the machine's sources stay as they are.
fetch_property_browser()
{
    local mirror="$1"
    local keyring=/usr/share/keyrings/debian-archive-keyring.gpg
    local private=(-o "Dir::Etc::SourceList=$temporary/sources.list" -o Dir::Etc::SourceParts=/dev/null
        -o Dir::Etc::Preferences=/dev/null -o Dir::Etc::PreferencesParts=/dev/null
        -o "Dir::State::Lists=$temporary/lists" -o "Dir::Cache=$temporary/cache"
        -o Acquire::Languages=none -o Acquire::AllowInsecureRepositories=false -o APT::Get::AllowUnauthenticated=false)

    printf 'deb [signed-by=%s] %s %s main\n' "$keyring" "$mirror" "$property_browser_suite" >"$temporary/sources.list"
    rm -rf "$temporary/lists" "$temporary/cache"
    mkdir -p "$temporary/lists" "$temporary/cache/archives"
    apt-get -q -o APT::Update::Error-Mode=any "${private[@]}" update >&2 &&
        (cd "$temporary" && apt-get -q "${private[@]}" download "$property_browser" libqtpropertybrowser4 >&2)
}

install_property_browser()
{
    if offered "$property_browser"; then
        as_root apt-get install -y --no-install-recommends "$property_browser" >&2
        return
    fi
    temporary="$(mktemp -d)"
    chmod 755 "$temporary"
    if [[ "$(id -u)" == 0 ]]; then
        chown _apt "$temporary" # as root, apt downloads with this user's rights
    fi
    local known mirror
    mapfile -t known < <(mirrors)
    for mirror in "${known[@]}"; do
        say "setup: $property_browser is not in this release; taking it from $property_browser_suite at $mirror"
        if fetch_property_browser "$mirror"; then
            as_root apt-get install -y --no-install-recommends "$temporary"/*.deb >&2
            return
        fi
    done
    fail "no mirror gave $property_browser; set CORVANE_DEBIAN_MIRROR to the URL of a Debian mirror that holds" \
        "$property_browser_suite and run this again"
}

find_missing()
{
    missing=()
    local package
    for package in "${wanted[@]}"; do
        # Before Debian 12 Clang's runtimes came with Clang itself.
        if [[ "$package" == libclang-rt-dev ]] && ! installed "$package" && ! offered "$package"; then
            continue
        fi
        installed "$package" || missing+=("$package")
    done
}

groups=("$@")
((${#groups[@]})) || groups=(build test check bench package)
wanted=()
for group in "${groups[@]}"; do
    case "$group" in
        build) wanted+=("${build_packages[@]}") ;;
        test) wanted+=("${test_packages[@]}") ;;
        check) wanted+=("${check_packages[@]}") ;;
        bench) wanted+=("${bench_packages[@]}") ;;
        package) wanted+=("${package_packages[@]}") ;;
        *) fail "unknown word '$group'; it takes build, test, check, bench and package" ;;
    esac
done

if ! command -v apt-get >/dev/null || ! command -v dpkg-query >/dev/null; then
    say "setup: no apt on this machine; see to it that these, by their Debian names, are there: ${wanted[*]}"
    exit 0
fi

find_missing
if ((${#missing[@]} == 0)); then
    exit 0
fi
say "setup: missing: ${missing[*]}"
if [[ "$(id -u)" != 0 ]] && ! command -v sudo >/dev/null; then
    fail "installing needs root and there is no sudo; as root run: ${BASH_SOURCE[0]} ${groups[*]}"
fi

say "setup: updating the package lists"
as_root apt-get -q update >&2
find_missing # the lists may have been empty before

ordinary=()
for package in "${missing[@]}"; do
    [[ "$package" == "$property_browser" ]] || ordinary+=("$package")
done
if ((${#ordinary[@]})); then
    say "setup: installing ${ordinary[*]}"
    # The benchmark starts an nginx of its own; the package's service shall not take port 80.
    quiet_nginx=
    if [[ " ${ordinary[*]} " == *" nginx-light "* && -d /run/systemd/system ]]; then
        quiet_nginx=yes
        as_root systemctl mask nginx.service >&2
    fi
    as_root apt-get install -y --no-install-recommends "${ordinary[@]}" >&2
    if [[ -n "$quiet_nginx" ]]; then
        as_root systemctl unmask nginx.service >&2
        as_root systemctl disable nginx.service >&2
    fi
fi
if ((${#ordinary[@]} < ${#missing[@]})); then
    install_property_browser
fi

find_missing
if ((${#missing[@]})); then
    fail "still missing: ${missing[*]}"
fi
say "setup: done"
