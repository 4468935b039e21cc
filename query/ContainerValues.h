// Reads single values from the host's parameter containers.
#pragma once

#include "base/Variant.h"
#include "component/host/ITslParamContainer.h"
#include "component/host/ParamKeys.h"

namespace tsl {

// Reads the value of a key. It is left empty when it is absent, which is everything but S_OK, and
// when it has another type than the key says. Returns what the container returned.
inline HRESULT ReadValue(ITslParamContainer& container, UINT64 key, CVariant& value) {
    CVariant read;
    const HRESULT result = container.GetValue(key, read.Address());
    const bool present = result == S_OK && read.Type() == ParamKeyType(key);
    value = present ? std::move(read) : CVariant();
    return result;
}

} // namespace tsl
