// The faults that are tried, one after the other: every function that reports a code, at every
// call, with mapped codes, one that is not known and an extended one; and a column's text, which is
// null instead. The short form tries fewer codes and, of many calls, not all.
#pragma once

#include <functional>

#include "tests/engine_faults/StandInState.h"

namespace tsl::test {

// Every how many the short form tries: twice as many in the checked build, which is slower; 1 in
// the full form.
int BriefStride(int stride);

// Runs an operation with the fault. Whether a call was made to fail: there are no more otherwise.
using TryFault = std::function<bool(const EngineFault&)>;

// How often a function is called when nothing fails.
using CallCount = std::function<int(EngineEntry)>;

// One call fails. Of more than a hundred calls, most of which are for row after row of one query,
// those at the beginning and at the end are tried, but with one code of the full form all. Of more
// than a few, the short form tries every nth.
void TryEachCall(const CallCount& calls, const TryFault& tryFault, int briefStride);

// One call and all later ones fail. No code is "busy", which keeps every commit waiting for
// seconds. The short form tries every nth.
void TryEachCallAndThoseAfter(const CallCount& calls, const TryFault& tryFault, int briefStride);

} // namespace tsl::test
