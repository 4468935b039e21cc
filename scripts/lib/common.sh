# Sourced by every script: where things are, and how a script ends with one clear line.
# shellcheck shell=bash disable=SC2034  # what stands here is used by the others

set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
build=$root/build
# Without this, ccache keeps nothing that has a precompiled header.
export CCACHE_SLOPPINESS=pch_defines,time_macros

die() {
  printf '%s: %s\n' "$(basename "$0")" "$1" >&2
  exit 1
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
