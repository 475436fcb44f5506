# Shared by the scripts of this folder: where the tree is, and how they speak. Sourced, never run.
# shellcheck shell=bash
set -euo pipefail

# The same messages, sorting and times on every machine.
export LC_ALL=C.UTF-8 TZ=UTC
# Threads of OpenMP that spin while they wait hold the cores which other tests need.
export OMP_WAIT_POLICY=passive

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# Used by the scripts that source this file.
# shellcheck disable=SC2034
{
  deps=$root/build/deps  # what scripts/setup fetches
  jobs=$(nproc)
  windows_skipped=$deps/no-windows  # exists after scripts/setup --no-windows
}

say() { printf '%s: %s\n' "${0##*/}" "$*"; }
warn() { say "$*" >&2; }
die() {
  warn "$*"
  exit 1
}

# Prints the comment at the head of the script that calls it.
usage() { sed -n '2,/^$/ s/^# \{0,1\}//p' "$0"; }

wrong_usage() {
  usage >&2
  exit 2
}

# Only for a folder that is new: CMake stays with what a folder was begun with.
prepare_cmake() {
  if command -v ninja > /dev/null; then export CMAKE_GENERATOR=${CMAKE_GENERATOR:-Ninja}; fi
  if command -v ccache > /dev/null; then
    export CMAKE_C_COMPILER_LAUNCHER=${CMAKE_C_COMPILER_LAUNCHER-ccache}
    export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER-ccache}
    # What ccache asks for before it keeps anything that uses a precompiled header.
    export CCACHE_SLOPPINESS=${CCACHE_SLOPPINESS-pch_defines,time_macros}
  fi
}

# build_preset PRESET [CMAKE OPTION...] [-- TARGET...]: configures and builds it in build/PRESET.
build_preset() {
  local preset=$1 options=()
  shift
  while (($# > 0)) && [[ $1 != -- ]]; do
    options+=("$1")
    shift
  done
  if (($# > 0)); then shift; fi
  prepare_cmake
  (cd "$root" && cmake --preset "$preset" --log-level=WARNING "${options[@]}" &&
    cmake --build --preset "$preset" --parallel "$jobs" ${1:+--target "$@"})
}
