# SPDX-License-Identifier: MIT
# Shared by the scripts: sourced, never run. Leaves the caller in the root of the tree.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

say() { printf '%s: %s\n' "$(basename "$0")" "$*"; }
fail() {
    printf '%s: %s\n' "$(basename "$0")" "$*" >&2
    exit 1
}

# For the scripts that need more than the program; script/run may have left the tests out.
readonly with_tests=(-DTARNWICK_TESTS=ON -DTARNWICK_BENCHMARKS=OFF)
readonly with_benchmarks=(-DTARNWICK_TESTS=ON -DTARNWICK_BENCHMARKS=ON)

# build <preset> [cmake option...] [--target name...]: configures and builds, quietly unless
# something goes wrong; everything, or the targets alone.
build() {
    local preset=$1 options=()
    shift
    while [ $# -gt 0 ] && [ "$1" != --target ]; do
        options+=("$1")
        shift
    done
    cmake --preset "$preset" --log-level=WARNING "${options[@]}" >/dev/null
    cmake --build --preset "$preset" -j "$(nproc)" "$@"
}

# in_private <command...>: in an environment of its own: nothing of the user's session (display,
# bus, toolkit settings, home folder) reaches the command.
in_private() (
    private=$(mktemp -d)
    trap 'rm -rf "$private"' EXIT
    mkdir -m 700 "$private/home" "$private/runtime" "$private/tmp"
    env -i PATH="/usr/local/bin:/usr/bin:/bin" LANG=C.UTF-8 TERM="${TERM:-dumb}" \
        HOME="$private/home" XDG_RUNTIME_DIR="$private/runtime" TMPDIR="$private/tmp" \
        TARNWICK_ALL_HOSTS="${TARNWICK_ALL_HOSTS:-}" "$@"
)

# run_tests <preset> [ctest option...]: every test of the preset; count_tests tells what became of
# them.
run_tests() {
    local preset=$1 launcher=() reports=$PWD/build/$1/test-reports
    shift
    # GCC's thread sanitizer needs the address layout of kernels with fewer random bits.
    if [ "$preset" = tsan ] && setarch -R true 2>/dev/null; then
        launcher=(setarch -R)
    fi
    rm -rf "$reports"
    mkdir -p "$reports"
    # One more than there are processors: those of the desktop wait most of the time.
    in_private "${launcher[@]}" ctest --preset "$preset" -j "$(($(nproc) + 1))" \
        --output-junit "$reports/ctest.xml" "$@"
}

# count_tests <preset>...: the tests that failed when they were run the last time, and on a line of
# its own how many there were. Fails where one failed, or there was none.
count_tests() {
    local folders=("${@/#/build/}")
    /usr/bin/python3 -B script/lib/test_counts.py "${folders[@]/%//test-reports}"
}
