# Sourced by every script: where things are, and how a script ends with one clear line.
# shellcheck shell=bash disable=SC2034  # what stands here is used by the others

set -euo pipefail

die() {
  printf '%s: %s\n' "$(basename "$0")" "$1" >&2
  exit 1
}

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
build=$root/build
# ctest and CMake's lists take one for the end of a word.
[[ $root != *[[:space:]]* ]] || die "the path of the tree has a blank, clone it elsewhere: $root"
# Without this, ccache keeps nothing that has a precompiled header.
export CCACHE_SLOPPINESS=pch_defines,time_macros

# tree_files PATTERN...: the files of the tree, those that git does not know yet too.
tree_files() {
  (cd "$root" && comm -23 <(git ls-files --cached --others --exclude-standard -- "$@" | sort -u) \
    <(git ls-files --deleted | sort))
}

# logged LOG COMMAND...: runs the command with its output in the file, and leaves its status in
# logged_status. A step that fails ends the command, also when it is a function.
logged() {
  local log=$1
  shift
  set +e
  (
    set -e
    "$@"
  ) >"$log" 2>&1
  logged_status=$?
  set -e
}
