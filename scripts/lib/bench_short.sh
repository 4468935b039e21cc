#!/usr/bin/env bash
# The short form of the benchmarks, for the tests: bench_short.sh FOLDER leaves its figures in the folder.
# In a Wine prefix of its own.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
source "$root/scripts/lib/wine.sh"
source "$root/scripts/lib/bench.sh"

folder=$1
limited='^(Notify|next id)/1000/|^Notify/500000/|^(records by 10000 ids|ids by time|ids by id range)/100000/'

measure() {
  pin_to_one_core $BASHPID
  wine_start
  time_operations "$folder" "$limited|^text" 5
  count_calls_and_memory "$folder"
  run_hosts "$folder" 20
}

rm -rf "$folder"
mkdir -p "$folder"
wine_fresh_prefix bench-short
trap wine_stop EXIT
logged "$folder/run.log" measure
[ "$logged_status" = 0 ] || die "a benchmark failed: $(tail -n 1 "$folder/run.log")"
