# Sourced by what runs the benchmarks. Needs common.sh, and for its functions a Wine prefix that is set
# and warm. Each program leaves one file of figures in the folder.
# shellcheck shell=bash disable=SC2154,SC2034  # root and build are set in common.sh; others use the lists

bench_programs=(operations_bench text_bench call_counts hosts_bench memory_bench)
bench_bin=$build/release/bin
export TSL_TEST_STORE_MAY_BE_WIPED=1

# On one core a program and the server that stands for the system's kernel take turns faster than across
# two: pin_to_one_core PID, whose later children stay there too.
pin_to_one_core() {
  local core
  core=$(taskset -cp "$1" | sed 's/.*[ ,-]//')
  taskset -cp "$core" "$1" >/dev/null
}

# time_operations FOLDER PATTERN REPETITIONS: those whose names match, each so often, in random order.
time_operations() {
  local windows=Z:${1//\//\\} program
  for program in operations text; do
    "$root/scripts/wine" "$bench_bin/${program}_bench.exe" --benchmark_filter="$2" \
      --benchmark_repetitions="$3" --benchmark_enable_random_interleaving=true \
      --benchmark_out="$windows\\$program.json" --benchmark_out_format=json
  done
}

count_calls_and_memory() {
  "$root/scripts/wine" "$bench_bin/call_counts.exe" >"$1/calls.json"
  "$root/scripts/wine" "$bench_bin/memory_bench.exe" >"$1/memory.json"
}

# run_hosts FOLDER ACTIONS: so many actions of each host process.
run_hosts() {
  "$root/scripts/wine" "$bench_bin/hosts_bench.exe" "$2" >"$1/hosts.json"
}
