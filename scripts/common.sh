# Sourced by the other scripts, never run: where the project lives, and an environment that works without a home folder,
# without a terminal and with a closed standard input. Everything that a script leaves behind goes below out/.
# shellcheck shell=bash

set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)
out="$root/out"
cd "$root"
exec </dev/null

if [ -z "${HOME:-}" ] || [ ! -w "$HOME" ]; then
    export HOME="$out/home"
    mkdir -p "$HOME"
fi
export LC_ALL=C.UTF-8

say()
{
    printf '%s  %s\n' "$(date +%H:%M:%S)" "$*"
}

fail()
{
    printf 'error: %s\n' "$*" >&2
    exit 1
}

jobs_count()
{
    nproc 2>/dev/null || echo 2
}

# The compiler cache makes the second build of everything short; without it the same commands simply take longer.
use_compiler_cache()
{
    if command -v ccache >/dev/null; then
        export CMAKE_C_COMPILER_LAUNCHER=ccache CMAKE_CXX_COMPILER_LAUNCHER=ccache
        export CCACHE_DIR="${CCACHE_DIR:-$HOME/.cache/ccache}"
        mkdir -p "$CCACHE_DIR" 2>/dev/null || export CCACHE_DIR="$out/ccache"
    fi
}

# configure_and_build PRESET [TARGET...]
configure_and_build()
{
    local preset=$1 target
    shift
    local targets=()
    for target in "$@"; do targets+=(--target "$target"); done
    cmake --preset "$preset" >"$out/$preset-configure.log" 2>&1 || {
        cat "$out/$preset-configure.log" >&2
        return 1
    }
    cmake --build --preset "$preset" -j "$(jobs_count)" "${targets[@]}"
}

# The C and C++ files that formatter and linter look after, one a line.
source_files()
{
    find . -name out -prune -o -name 'out-*' -prune -o -name .git -prune -o -path ./lang -prune -o \
        -type f \( -name '*.h' -o -name '*.cpp' -o -name '*.c' \) ! -name resource.h -print | sort
}
