#!/usr/bin/env bash
# Usage: run.sh BUILD_DIR [LIBDIR]
#
# Installs the build into a temporary prefix, moves that prefix, and builds and runs app/ against it twice: with find_package
# and with pkg-config. LIBDIR is the prefix's library folder; the default is "lib".
set -euo pipefail

build=$(cd "$1" && pwd)
libdir=${2:-lib}
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cmake=${CMAKE:-cmake}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The installation must work after it was moved, and without variables of the caller's environment.
"$cmake" --install "$build" --prefix "$work/first" >"$work/install.log" || { cat "$work/install.log"; exit 1; }
mv "$work/first" "$work/prefix"
unset LD_LIBRARY_PATH CPATH LIBRARY_PATH CMAKE_PREFIX_PATH

fail() {
    echo "consumer: $*" >&2
    exit 1
}
[ -x "$work/prefix/bin/tessera" ] || fail "the program is not installed"
[ ! -e "$work/prefix/include/tessera/core/check.h" ] || fail "core/check.h is private to the library and must not be installed"
"$work/prefix/bin/tessera" --version >/dev/null || fail "the installed program does not start"

echo "== find_package"
"$cmake" -S "$here/app" -B "$work/by_cmake" -DCMAKE_PREFIX_PATH="$work/prefix" -DCMAKE_BUILD_TYPE=Release >"$work/cmake.log" \
    || { cat "$work/cmake.log"; fail "find_package failed"; }
"$cmake" --build "$work/by_cmake"
"$work/by_cmake/consumer"

echo "== pkg-config"
export PKG_CONFIG_PATH="$work/prefix/$libdir/pkgconfig${PKG_CONFIG_PATH:+:$PKG_CONFIG_PATH}"
make -f "$here/app/Makefile" OUTPUT="$work/by_pkg_config"
"$work/by_pkg_config"

# The programs must use the installed libraries, not another copy.
for program in "$work/by_cmake/consumer" "$work/by_pkg_config"; do
    loaded=$(ldd "$program")
    [[ $loaded =~ libtessera\.so[^[:space:]]*\ =\>\ "$work/prefix/" ]] || fail "$program does not load the installed library: $loaded"
done
