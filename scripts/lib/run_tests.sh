# shellcheck shell=bash disable=SC2154  # root and build come from common.sh, the lanes from lanes.sh
# Sourced by scripts/test and scripts/check. Needs common.sh, wine.sh and lanes.sh.

test_results=$build/results
unset TSL_TEST_MATCH # of another run, it would leave tests out

# check_format [FILE...]: all sources unless some are named.
check_format() {
  local files=("$@")
  [ $# -gt 0 ] || mapfile -t files < <(tree_files '*.cpp' '*.h')
  [ ${#files[@]} -gt 0 ] || die "git names no source files to check the format of"
  (cd "$root" && clang-format-19 --dry-run --Werror "${files[@]}") ||
    die "the format differs; scripts/format mends it"
}

# check_scripts [FILE...]: all shell scripts unless some are named.
check_scripts() {
  local files=("$@")
  [ $# -gt 0 ] || mapfile -t files < <(shell_scripts)
  (cd "$root" && shellcheck "${files[@]}") || die "shellcheck has objections"
}

# check_lint FILE...: clang-tidy's opinion of single files; the clang preset must be configured.
check_lint() {
  (cd "$root" && clang-tidy-19 --quiet -p "$build/clang" "$@")
}

shell_scripts() {
  tree_files scripts tests packaging .ci |
    (cd "$root" && xargs grep -lE '^#!.*\bbash|^# (shellcheck shell=|Sourced by)' --)
}

# build_chosen: the targets of the lines that select_tests.py printed. The packages are a target of no build, and
# what runs on the component of clang is built in the release build.
build_chosen() {
  local chosen preset presets targets
  chosen=$(cat)
  if grep -q ' packages$' <<<"$chosen"; then
    "$root/scripts/package"
    chosen=$(grep -v ' packages$' <<<"$chosen" || true)
  fi
  chosen=$(sed -n 's/^clang /release /p' <<<"$chosen" && echo "$chosen")
  mapfile -t presets < <(awk 'NF && !seen[$1]++ { print $1 }' <<<"$chosen")
  for preset in "${presets[@]}"; do
    mapfile -t targets < <(awk -v preset="$preset" '$1 == preset { print $3 }' <<<"$chosen" | sort -u)
    "$root/scripts/build" "$preset" "${targets[@]}"
  done
}

# run_chosen: the entries of the lines that select_tests.py printed.
run_chosen() {
  local chosen builds
  chosen=$(cat)
  mapfile -t builds < <(cut -d ' ' -f 1 <<<"$chosen" | sort -u)
  run_tests "${builds[@]}" -- -R "^($(cut -d ' ' -f 2 <<<"$chosen" | sed 's/[.]/[.]/g' | paste -sd '|'))\$"
}

# run_tests BUILD... [-- argument of ctest...]: in the lanes, which must have been started. All builds in one
# run, so that there is one summary. Ends with the number of tests that were really run.
run_tests() {
  local builds=() status=0
  while [ $# -gt 0 ] && [ "$1" != -- ]; do
    builds+=("$1")
    shift
  done
  shift || true
  write_lanes_file
  printf 'subdirs(%s)\n' "${builds[*]}" >"$build/CTestTestfile.cmake"
  rm -rf "$test_results"
  mkdir -p "$test_results"
  ctest --test-dir "$build" --parallel "$lane_count" --resource-spec-file "$lanes_file" --no-tests=error \
    --no-label-summary --output-on-failure --output-junit "$test_results/ctest.xml" "$@" || status=$?
  [ -e "$test_results/ctest.xml" ] || die "the tests could not be run"
  python3 "$root/scripts/lib/test_summary.py" "$test_results" "$test_results/ctest.xml" || status=$?
  return "$status"
}
