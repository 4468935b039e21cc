// Makes the host's parameter containers that answers and forwarded requests travel in. Needs COM
// initialised on the calling thread, which a host has done.
#pragma once

#include "base/ComPtr.h"
#include "component/host/ITslParamContainer.h"

namespace tsl {

// Creates an empty container stamped with the command code. Failures of the creation and of the
// stamping are returned unchanged; the container is null then.
HRESULT CreateContainer(UINT64 commandCode, CComPtr<ITslParamContainer>& container);

// Sets one 32-bit number in the container. Returns what the container returns.
HRESULT SetUi4(ITslParamContainer& container, UINT64 key, UINT32 number);

// Hands a container to the caller of the interface, as VT_UNKNOWN with a reference of its own.
// Replaces what the result holds. REQUIRES: the result is not null.
HRESULT PutContainer(ITslParamContainer& container, VARIANT* result);

} // namespace tsl
