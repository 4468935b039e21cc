// Packs answers into the VARIANT of the caller of the interface: a one-dimensional SAFEARRAY with
// lower bound 0.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "base/ComPtr.h"
#include "component/host/ITslParamContainer.h"

namespace tsl {

using ContainerList = std::vector<CComPtr<ITslParamContainer>>;

// VT_ARRAY of VT_UNKNOWN, in the order of the list; the references go over to the array. Replaces
// what the result holds. S_OK; E_POINTER without a result; S_FALSE, with the result untouched, when
// there is nothing to pack or the array cannot be made; else the failure, with nothing packed.
HRESULT PackContainers(ContainerList containers, VARIANT* result);

// VT_ARRAY of VT_BSTR with copies of the texts; the rest is the same. Throws E_OUTOFMEMORY.
HRESULT PackTexts(std::span<const std::wstring> texts, VARIANT* result);

} // namespace tsl
