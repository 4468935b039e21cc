// What must become of an operation whose calls of the engine fail, by the statement and the
// connection of each failed call.
#pragma once

#include <vector>

#include "tests/engine_faults/Operations.h"
#include "tests/engine_faults/StandInState.h"

namespace tsl::test {

struct Expectation {
    HRESULT result = S_OK;
    bool answered = true;   // what has an answer gives it whole
    std::vector<bool> done; // whether each stage's change is made
};

// What the interface makes of a result of the engine's.
HRESULT MappedResult(int engineResult);

Expectation ExpectationOf(const Operation& operation, const StandInState& seen);

} // namespace tsl::test
