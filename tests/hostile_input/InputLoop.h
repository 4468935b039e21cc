// Tries a number of random inputs, one after the other, and watches what the process has in use
// meanwhile. Each input has a chance of its own, which depends on nothing but the seed and the
// input's number, so that one input can be repeated: the environment variable TSL_TEST_SEED is the
// seed, TSL_TEST_INPUT the one input to try. Both are printed with every failure, and when the
// process ends for a fault.
#pragma once

#include <functional>
#include <string>

#include "tests/hostile_input/Chance.h"

namespace tsl::test {

UINT64 TestSeed();

// The first tenth of the inputs warms the process up. Afterwards it is tried again and again, until
// it leaves nothing behind. Stops at the first failure.
void TryInputs(const std::string& name, size_t count,
               const std::function<void(Chance& chance, size_t input)>& tryInput);

} // namespace tsl::test
