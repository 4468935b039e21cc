# Sourced by every script: where things are, and how a script ends with one clear line.

set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
build=$root/build

die() {
  printf '%s: %s\n' "$(basename "$0")" "$1" >&2
  exit 1
}
