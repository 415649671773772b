# Shared by the scripts: sourced, never run. Leaves the caller in the root of the tree.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

say() { printf '%s: %s\n' "$(basename "$0")" "$*"; }
fail() {
    printf '%s: %s\n' "$(basename "$0")" "$*" >&2
    exit 1
}

# For the scripts that need more than the program; script/run may have left the rest out.
readonly with_tests=(-DTARNWICK_TESTS=ON -DTARNWICK_BENCHMARKS=ON)

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

# run_tests <preset> [ctest option...]: every test of the preset in an environment of its own:
# nothing of the user's session (display, bus, toolkit settings, home folder) reaches a test.
# Leaves what ctest said in build/<preset>/ctest-output.txt.
run_tests() (
    preset=$1
    shift
    private=$(mktemp -d)
    trap 'rm -rf "$private"' EXIT
    mkdir -m 700 "$private/home" "$private/runtime" "$private/tmp"
    launcher=()
    # GCC's thread sanitizer needs the address layout of kernels with fewer random bits.
    if [ "$preset" = tsan ] && setarch -R true 2>/dev/null; then
        launcher=(setarch -R)
    fi
    env -i PATH="/usr/local/bin:/usr/bin:/bin" LANG=C.UTF-8 TERM="${TERM:-dumb}" \
        HOME="$private/home" XDG_RUNTIME_DIR="$private/runtime" TMPDIR="$private/tmp" \
        TARNWICK_ALL_HOSTS="${TARNWICK_ALL_HOSTS:-}" \
        "${launcher[@]}" ctest --preset "$preset" -j "$(nproc)" "$@" 2>&1 |
        tee "build/$preset/ctest-output.txt"
)

# count_line <preset>: ctest's own line with the number of tests, empty when none ran.
count_line() {
    grep -E '^[0-9]+% tests passed, [0-9]+ tests? failed out of [0-9]+' \
        "build/$1/ctest-output.txt" || true
}
