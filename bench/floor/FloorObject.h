// The least that the creation and the release of a plug-in object can cost: the two locks, and the
// engine found through the component's manifest and bound name by name. Used by one thread.
#pragma once

namespace tsl::bench {

// REQUIRES: the component is loaded. Throws CHresultError.
void CreateAndReleaseObject();

} // namespace tsl::bench
