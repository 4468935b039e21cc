# shellcheck shell=bash disable=SC2154  # root and build come from common.sh, wine_base from wine.sh
# Sourced by the scripts that run tests. Needs common.sh and wine.sh.
#
# A lane is a Wine prefix with a server of its own, so that the machine-wide folders and the named mutexes
# of two lanes never meet. ctest hands a lane to each test that asks for one.

lane_count=${TSL_TEST_LANES:-$((2 * $(nproc)))}
[[ $lane_count =~ ^[1-9][0-9]*$ ]] || die "TSL_TEST_LANES is no number of lanes: $lane_count"
lanes_file=$build/lanes.json

lane_prefixes() { seq -f "$build/wine/lane-%.0f" 0 $((lane_count - 1)); }

# Keeps all lanes for the script that calls it, until it ends.
own_lanes() {
  exec 8>"$build/wine/lanes.lock"
  flock -n 8 && return
  echo "another run of the tests is under way; waiting" >&2
  flock 8
}

# lock_lane PREFIX: keeps one lane until the script or the subshell ends.
lock_lane() {
  exec 9>"$1.lock"
  flock -n 9 && return
  echo "$(basename "$1") is in use; waiting" >&2
  flock 9
}

# start_lanes fresh|warm: with new prefixes, or with those that are there and come from the base prefix as it
# is. The servers of warm ones may still run, and stay for a quarter of an hour.
start_lanes() {
  local prefix pid pids=() seconds=
  [ "$1" = fresh ] || seconds=900
  for prefix in $(lane_prefixes); do
    (
      lock_lane "$prefix"
      wine_environment "$prefix"
      if [ "$1" = fresh ] || ! cmp -s "$wine_base/.ready" "$prefix/.base"; then
        [ ! -e "$prefix" ] || wine_stop
        wine_fresh_prefix "$(basename "$prefix")"
      fi
      wine_start $seconds
    ) &
    pids+=($!)
  done
  for pid in "${pids[@]}"; do
    wait "$pid" || die "a lane could not be started"
  done
}

# Has ctest know of the lanes.
write_lanes_file() {
  printf '{"version":{"major":1,"minor":0},"local":[{"lanes":[%s]}]}\n' \
    "$(seq -f '{"id":"%.0f"}' -s, 0 $((lane_count - 1)))" >"$lanes_file"
}

stop_lanes() {
  local prefix
  for prefix in "$build"/wine/lane-*; do
    [ ! -d "$prefix" ] || (wine_environment "$prefix" && wine_stop)
  done
}
