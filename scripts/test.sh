#!/usr/bin/env bash
# Everything that is checked before a change goes in: layout and includes of the sources, the tests under the sanitizers, then
# the optimised build with all tests, clang-tidy and an installation. No questions asked, from any folder.
#
#   TESSERA_QUICK=1 ./scripts/test.sh      leaves the sanitizer builds out
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

started=$SECONDS
step() { printf '\n== %s (%d s)\n' "$*" $((SECONDS - started)); }

step "Packages"
./scripts/install-packages.sh

step "Includes and layout"
python3 tools/check_includes.py
tools/check_format.sh

jobs=$(nproc)
export CTEST_OUTPUT_ON_FAILURE=1

# build PRESET, then check PRESET; what follows the preset goes in front of the commands that run what was built.
build() {
    local preset=$1
    shift
    cmake --preset "$preset" >"build/$preset.configure.log" 2>&1 || { cat "build/$preset.configure.log"; exit 1; }
    "$@" cmake --build --preset "$preset" --parallel "$jobs"
}
check() {
    local preset=$1
    shift
    "$@" ctest --preset "$preset" --parallel "$jobs" --no-tests=error
}
mkdir -p build

if [ "${TESSERA_QUICK:-0}" = 1 ]; then
    step "Sanitizers: left out, as TESSERA_QUICK asks"
else
    step "Address, leak and undefined-behaviour sanitizers"
    build asan-ubsan
    check asan-ubsan

    step "Thread sanitizer"
    # Kernels that scatter a program widely in memory leave the sanitizer no room for its own. The build runs test programs
    # too, to ask them for their tests.
    fixed=(setarch "$(uname -m)" -R)
    if ! "${fixed[@]}" true 2>/dev/null; then fixed=(); fi
    build tsan "${fixed[@]}"
    check tsan "${fixed[@]}"
fi

if [ "${TESSERA_QUICK:-0}" != 1 ]; then
    step "Fuzzing documents for a minute"
    build fuzz
    mkdir -p build/fuzz/corpus
    build/fuzz/bin/tessera_fuzz_document -max_total_time=60 -timeout=20 -print_final_stats=1 -dict=fuzz/document.dict \
        build/fuzz/corpus examples tests/cases 2>build/fuzz/fuzz.log || { tail -60 build/fuzz/fuzz.log; exit 1; }
    tail -8 build/fuzz/fuzz.log
fi

step "Optimised build, all tests"
build dev
check dev
