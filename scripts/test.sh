#!/usr/bin/env bash
# Everything that has to pass. Asks no questions, runs from any folder, needs neither git nor root when the packages are there.
#
#   ./scripts/test.sh              the optimised build, all tests, an installation used by another build: 8 minutes at most
#   ./scripts/test.sh --all        that, then sanitizers, half a minute of each fuzzer, headers alone, clang-tidy on what changed
#   ./scripts/test.sh --nightly    as --all, with clang-tidy on everything
#   ./scripts/test.sh NAME         the tests whose name contains NAME, as in "sqlite", "Viewpoint" or "program.check"
#
# Times are for 2 cores and an empty compiler cache, without the installation of packages.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

wanted=
case ${1:-} in
    '') groups=(program tests) ;;
    --all | --nightly) groups=(program tests all) ;;
    -*)
        sed -n '2,9s/^# \{0,1\}//p' "$0"
        exit 2
        ;;
    *)
        groups=(program tests)
        wanted=$1
        ;;
esac

started=$SECONDS
step() { printf '\n== %s (%d s)\n' "$*" $((SECONDS - started)); }

jobs=$(nproc)
export CTEST_OUTPUT_ON_FAILURE=1
# The tests' precompiled header: without this the compiler cache does not take files that use one.
export CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime

# build PRESET [TARGET]...: configures and builds.
build() {
    local preset=$1 log=build/$1.configure.log
    shift
    mkdir -p build
    cmake --preset "$preset" >"$log" 2>&1 || { cat "$log"; exit 1; }
    cmake --build "build/$preset" --parallel "$jobs" ${1:+--target "$@"}
}
# check PRESET [OPTION]...: runs its tests, those with options that ctest knows.
check() {
    local preset=$1
    shift
    ctest --preset "$preset" --parallel "$jobs" --no-tests=error "$@"
}

step "Packages"
./scripts/install-packages.sh "${groups[@]}"

if [ -n "$wanted" ]; then
    step "Build"
    build dev
    step "Tests that fit $wanted"
    python3 tools/run_matching.py build/dev "$wanted"
    exit
fi

step "Includes and layout"
python3 tools/check_includes.py
tools/check_format.sh

step "Optimised build"
build dev
step "All tests"
check dev --label-exclude slow
if [ "${groups[-1]}" != all ]; then exit; fi

step "Address, leak and undefined-behaviour sanitizers: build"
build asan-ubsan
step "Address, leak and undefined-behaviour sanitizers: tests, and half a minute of each fuzzer"
check asan-ubsan

# Kernels that scatter a program widely in memory leave the thread sanitizer no space for its own.
fixed=(setarch "$(uname -m)" -R)
if ! "${fixed[@]}" true 2>/dev/null; then fixed=(); fi
step "Thread sanitizer: build"
build tsan tessera_thread_tests
step "Thread sanitizer: tests"
"${fixed[@]}" ctest --preset tsan --parallel "$jobs" --no-tests=error --label-regex unit

step "Headers alone, and clang-tidy"
if [ "$1" = --nightly ]; then export TESSERA_TIDY=everything; fi
check dev --label-regex slow
step "Done"
