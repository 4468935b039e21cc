#!/usr/bin/env bash
# Recovers damaged databases with tslhost's own code and with the sqlite3 shell's .recover, and
# compares what both save: recover_compare.sh FOLDER [COUNT]. Fails when the shell saves a record more
# from any file. In a Wine prefix of its own.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
source "$root/scripts/lib/wine.sh"
source "$root/scripts/lib/recover_shell.sh"

folder=$1
count=${2:-200}

make_damaged() {
  wine_start
  "$root/scripts/wine" "$build/release/bin/recover_damaged.exe" "Z:${folder//\//\\}" "$count"
}

"$root/scripts/build" release recover_damaged
make_recover_shell
rm -rf "$folder"
mkdir -p "$folder"
folder=$(cd "$folder" && pwd)
wine_fresh_prefix recover-compare
trap wine_stop EXIT
logged "$folder/run.log" make_damaged
[ "$logged_status" = 0 ] || die "recovering failed: $(tail -n 1 "$folder/run.log")"
python3 "$root/scripts/lib/recover_compare.py" "$folder" "$recover_shell"
