#include "query/RangeArguments.h"

#include <algorithm>

#include "base/ArrayView.h"
#include "files/UserIdList.h"
#include "query/ContainerValues.h"
#include "store/LogKinds.h"

namespace tsl {

bool HasIdRangeKey(ITslParamContainer& container) {
    CVariant keys;
    CValueView<ULONGLONG> view;
    const HRESULT asked = container.GetKeys(keys.Address());
    // Without its range a request would ask for all of the user's records.
    if (asked == E_OUTOFMEMORY) throw CHresultError(asked);
    if (FAILED(asked)) return false;
    const HRESULT opened = view.Open(*keys.Address());
    if (opened == E_INVALIDARG) return false; // no list of keys
    if (FAILED(opened)) throw CHresultError(opened);
    return std::ranges::any_of(view.Values(), [](ULONGLONG key) {
        return key == kKeyFirstRecordId || key == kKeyLastRecordId;
    });
}

HRESULT ReadBound(ITslParamContainer& container, UINT64 key, DATE& bound) {
    CVariant value;
    const HRESULT result = ReadValue(container, key, value);
    if (value.Type() == VT_DATE) bound = value.Get().date;
    return result;
}

HRESULT ReadBound(ITslParamContainer& container, UINT64 key, UINT32& bound) {
    CVariant value;
    const HRESULT result = ReadValue(container, key, value);
    if (value.Type() == VT_UI4) bound = value.Get().ulVal;
    return result;
}

HRESULT ReadUserId(ITslParamContainer& container, UINT32& userId) {
    CVariant value;
    const HRESULT result = ReadValue(container, kKeyUserId, value);
    if (FAILED(result)) return result;
    if (value.Type() != VT_UI4) return S_FALSE;
    userId = value.Get().ulVal;
    return S_OK;
}

HRESULT ImpliedUserId(UINT32 logKind, UINT32& userId) {
    userId = 1;
    if (logKind != kLogKindOfSystemUsers) return S_OK;
    UINT64 current = 0;
    const HRESULT result = CurrentUserId(current);
    if (FAILED(result)) return result;
    userId = static_cast<UINT32>(current);
    return S_OK;
}

} // namespace tsl
