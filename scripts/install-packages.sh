#!/usr/bin/env bash
# install-packages.sh GROUP...: installs the packages of these groups of packages.txt ("program", "tests", "all") that this
# machine lacks; without a group, those of every group. With all of them there it needs neither network nor root.
# TESSERA_SKIP_PACKAGES=1 leaves the machine as it is.
set -euo pipefail

say() { echo "install-packages.sh: $*"; }

if [ "${TESSERA_SKIP_PACKAGES:-0}" = 1 ]; then
    say "skipped, as TESSERA_SKIP_PACKAGES asks"
    exit 0
fi

list=$(dirname "${BASH_SOURCE[0]}")/packages.txt
groups=("$@")
[ ${#groups[@]} -gt 0 ] || groups=(program tests all)
required=()
optional=()
group=
while read -r package _; do
    case $package in
        '' | '#'*) continue ;;
        '['*']')
            group=${package:1:-1}
            continue
            ;;
    esac
    [[ " ${groups[*]} " == *" $group "* ]] || continue
    case $package in
        '?'*) optional+=("${package#\?}") ;;
        *) required+=("$package") ;;
    esac
done <"$list"

if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
    say "this is not a Debian system: there is no apt-get. Install what provides these, then set TESSERA_SKIP_PACKAGES=1:" >&2
    say "${required[*]}" >&2
    exit 1
fi

# Prints those of its arguments that are not installed.
missing() {
    local package
    for package in "$@"; do
        case $(dpkg-query --show --showformat='${db:Status-Abbrev}' "$package" 2>/dev/null) in
            ?i*) ;;
            *) echo "$package" ;;
        esac
    done
}

mapfile -t need < <(missing "${required[@]}")
mapfile -t want < <(missing "${optional[@]}")
if [ ${#need[@]} -eq 0 ] && [ ${#want[@]} -eq 0 ]; then
    say "all ${#required[@]} packages are installed"
    exit 0
fi

root=()
if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null; then
        [ ${#need[@]} -eq 0 ] && exit 0
        say "these are missing and need root to install: ${need[*]}" >&2
        exit 1
    fi
    root=(sudo)
fi

apt() {
    "${root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -o DPkg::Lock::Timeout=120 "$@"
}

install() {
    local try
    for try in 1 2; do
        if apt update && apt install -y --no-install-recommends "$@"; then return 0; fi
        if [ $try = 1 ]; then
            say "failed; once more in 10 seconds" >&2
            sleep 10
        fi
    done
    return 1
}

if [ ${#need[@]} -gt 0 ]; then
    say "installing ${need[*]} ${want[*]}"
    if ! install "${need[@]}"; then
        say "could not install: ${need[*]}" >&2
        exit 1
    fi
fi
if [ ${#want[@]} -gt 0 ]; then
    if [ ${#need[@]} -eq 0 ]; then apt update || true; fi
    apt install -y --no-install-recommends "${want[@]}" || say "continues without ${want[*]}"
fi
