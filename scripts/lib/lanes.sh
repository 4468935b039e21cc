# shellcheck shell=bash disable=SC2154  # root and build come from common.sh
# Sourced by the scripts that run tests. Needs common.sh and wine.sh.
#
# A lane is a Wine prefix with a server of its own, so that the machine-wide folders and the named mutexes
# of two lanes never meet. ctest hands a lane to each test that asks for one.

lane_count=${TSL_TEST_LANES:-$((2 * $(nproc)))}
lanes_file=$build/lanes.json

lane_prefixes() { seq -f "$build/wine/lane-%.0f" 0 $((lane_count - 1)); }

# start_lanes fresh|warm: with new prefixes, or with those that are there. The servers of warm ones may still
# run, and stay for a quarter of an hour.
start_lanes() {
  local prefix seconds=
  [ "$1" = fresh ] || seconds=900
  [[ $lane_count =~ ^[1-9][0-9]*$ ]] || die "TSL_TEST_LANES is no number of lanes: $lane_count"
  for prefix in $(lane_prefixes); do
    (
      if [ "$1" = fresh ] || [ ! -e "$prefix/system.reg" ]; then
        wine_environment "$prefix"
        [ ! -e "$prefix" ] || wine_stop
        wine_fresh_prefix "$(basename "$prefix")"
      fi
      wine_environment "$prefix"
      wine_start $seconds
    ) &
  done
  wait
  printf '{"version":{"major":1,"minor":0},"local":[{"lanes":[%s]}]}\n' \
    "$(seq -f '{"id":"%.0f"}' -s, 0 $((lane_count - 1)))" >"$lanes_file"
}

stop_lanes() {
  local prefix
  for prefix in "$build"/wine/lane-*; do
    [ ! -e "$prefix" ] || (wine_environment "$prefix" && wine_stop)
  done
}
