# Reads the log of a test run. Needs common.sh.

# What the failed tests printed, at the very end, where a long run is read first.
print_failures() {
  awk '/^[0-9]+\/[0-9]+ Testing: /{ block = "" } { block = block $0 "\n" }
    /^Test (Failed|timed out)|^Unable to|^\*\*\*/{ printf "%s", block; block = "" }' \
    "$build/Testing/Temporary/LastTest.log"
}

# Once in many thousand times Wine ends a program before it begins. Every test prints something, so one
# that failed without a word did not run. Whether that is true of all that failed:
failed_ones_were_silent() {
  [ -n "$(print_failures)" ] &&
    ! print_failures | awk '/^-+$/{ getline; if ($0 != "<end of output>" && $0 !~ /^Test /) spoke = 1 }
    /^Test timed out/{ spoke = 1 } END { exit !spoke }'
}
