# Shared by the scripts of this folder; sourced, never run. Written for bash 3.2, which is what macOS
# ships, and for the tools that macOS and Debian have in common.
# shellcheck shell=bash

set -euo pipefail

# The project's folder: every script works from any current directory.
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd -P)

say() { printf '%s\n' "$*"; }

note() { printf '%s\n' "$*" >&2; }

die() {
    note "$(basename "$0"): $*"
    exit 1
}

have() { command -v "$1" >/dev/null 2>&1; }

is_macos() { [ "$(uname -s)" = Darwin ]; }

cpu_count() {
    if have nproc; then
        nproc
    elif have sysctl; then
        sysctl -n hw.ncpu
    else
        say 2
    fi
}

# Homebrew keeps LLVM's tools out of the search path, because Xcode brings some of the same names.
use_homebrew_llvm() {
    if is_macos && have brew; then
        local prefix
        prefix=$(brew --prefix llvm 2>/dev/null || true)
        if [ -n "$prefix" ] && [ -d "$prefix/bin" ]; then
            PATH="$PATH:$prefix/bin"
            export PATH
        fi
    fi
}

# use_clang_with_fuzzer: lets clang++ be one that has libFuzzer. On a Mac that is Homebrew's: Apple's comes
# without. Fails where there is none.
use_clang_with_fuzzer() {
    if is_macos; then
        local folder
        folder=$(brew --prefix llvm 2>/dev/null || true)/bin
        [ -x "$folder/clang++" ] || return 1
        PATH="$folder:$PATH"
        export PATH
    fi
    have clang++
}

# python_of_tests: prints a Python that has the packages of the tests: the one that scripts/setup has put
# into the build folder, the caller's, or the system's.
python_of_tests() {
    local each
    for each in "$root/build/python/bin/python3" python3 /usr/bin/python3; do
        if "$each" -c 'import jsonschema, pytest, xdist' 2>/dev/null; then
            say "$each"
            return
        fi
    done
    die "there is no Python with pytest, its xdist and jsonschema; run scripts/setup"
}

# use_build_tools: what makes builds fast, in variables that CMake takes over when it configures one. The
# compiler's cache lies in the build folder, not in the user's home, unless the caller has chosen a place.
use_build_tools() {
    if have ccache; then
        export CCACHE_DIR="${CCACHE_DIR:-$root/build/ccache}"
        export CCACHE_BASEDIR="${CCACHE_BASEDIR:-$root}"
        export CCACHE_NOHASHDIR="${CCACHE_NOHASHDIR:-1}"
        export CCACHE_SLOPPINESS="${CCACHE_SLOPPINESS:-pch_defines,time_macros}"
        export CMAKE_C_COMPILER_LAUNCHER=ccache CMAKE_CXX_COMPILER_LAUNCHER=ccache
    fi
    # This one links in a fraction of the time of the system's linker.
    if ! is_macos && have ld.lld; then export LDFLAGS="${LDFLAGS:--fuse-ld=lld}"; fi
    export CMAKE_BUILD_PARALLEL_LEVEL="${CMAKE_BUILD_PARALLEL_LEVEL:-$(cpu_count)}"
}

# build PRESET [OPTION...]: configures and builds, with these options of the building.
build() {
    use_build_tools
    (cd "$root" && cmake --preset "$1" && cmake --build --preset "$@")
}

# new_folder NAME: makes a new private folder and prints its path.
new_folder() {
    local made
    made=$(mktemp -d "${TMPDIR:-/tmp}/$1.XXXXXX")
    (cd "$made" && pwd -P)
}

# with_private_home COMMAND...: runs a command with the home and TMPDIR in folders of its own, which are
# removed afterwards, so that nothing it does can reach the real home. macOS asks the variable of its own
# for the home, then the user database, and HOME last.
with_private_home() {
    local folder status=0
    folder=$(new_folder browsersweep-home)
    mkdir "$folder/home" "$folder/tmp"
    env -u XDG_CONFIG_HOME -u XDG_CACHE_HOME -u XDG_DATA_HOME -u XDG_STATE_HOME \
        HOME="$folder/home" CFFIXED_USER_HOME="$folder/home" TMPDIR="$folder/tmp" "$@" || status=$?
    # A folder that a test has made read-only must not survive it.
    chmod -R u+rwX "$folder" 2>/dev/null || true
    rm -rf "$folder"
    return "$status"
}

# tracked PATTERN...: the files under version control, or without it those on disk, one a line.
tracked() {
    if git -C "$root" rev-parse --is-inside-work-tree >/dev/null 2>&1; then
        git -C "$root" ls-files --cached --others --exclude-standard -- "$@" | sort -u |
            while IFS= read -r file; do
                if [ -f "$root/$file" ]; then say "$file"; fi
            done
    else
        local pattern
        for pattern in "$@"; do
            (cd "$root" && find . -path ./build -prune -o -type f -path "./${pattern#/}" -print)
        done | sed 's|^\./||' | sort -u
    fi
}

# The C++ and Objective-C++ files of the project, one a line.
cxx_files() { tracked '*.h' '*.cpp' '*.mm'; }

# scripts_of NAME SUFFIX: the scripts of an interpreter, one a line: found by their first line too, so
# that a new one cannot be forgotten.
scripts_of() {
    local file first
    tracked 'scripts/*' 'tests/*' '.ci/*' 'fuzz/*' 'benchmarks/*' 'examples/*' |
        while IFS= read -r file; do
            IFS= read -r first <"$root/$file" || true
            case $file:$first in
            *."$2":* | *:'#!'*"$1") say "$file" ;;
            esac
        done
}

shell_files() { scripts_of sh sh; }

python_files() { scripts_of python3 py; }
