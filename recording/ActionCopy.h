// The copy of a delete action that goes to the action log.
#pragma once

#include "base/ComPtr.h"
#include "component/host/ITslParamContainer.h"

namespace tsl {

// Makes a new container with the action's fields and value lists, but without its 32-bit values and
// its second list of texts. Absent values stay absent. Failures of making or filling the copy are
// returned; the copy is null then.
HRESULT CopyDeleteAction(ITslParamContainer& action, CComPtr<ITslParamContainer>& copy);

} // namespace tsl
