#include "query/ResultArray.h"

#include "base/ArrayView.h"
#include "base/Variant.h"

namespace tsl {

namespace {

// fill is given the elements, all null, and replaces each by what the array owns from then on.
template <class Element, class Fill>
HRESULT Pack(VARTYPE type, size_t count, VARIANT* result, Fill fill) {
    if (!result) return E_POINTER;
    if (count == 0) return S_FALSE;
    SAFEARRAY* const array =
        SafeArrayCreateVector(type, /*lowerBound=*/0, static_cast<ULONG>(count));
    if (!array) return S_FALSE;
    CVariant packed = CVariant::FromOwnedArray(array, type);
    {
        CArrayAccess access;
        const HRESULT opened = access.Open(array);
        if (FAILED(opened)) return opened;
        fill(std::span(static_cast<Element*>(access.Data()), count));
    }
    return packed.MoveTo(result);
}

} // namespace

HRESULT PackContainers(ContainerList containers, VARIANT* result) {
    return Pack<IUnknown*>(VT_UNKNOWN, containers.size(), result, [&](std::span<IUnknown*> made) {
        for (size_t index = 0; index < made.size(); ++index) {
            made[index] = containers[index].Detach();
        }
    });
}

HRESULT PackTexts(std::span<const std::wstring> texts, VARIANT* result) {
    return Pack<BSTR>(VT_BSTR, texts.size(), result, [&](std::span<BSTR> made) {
        for (size_t index = 0; index < made.size(); ++index) {
            made[index] = AllocateBstr(texts[index]);
        }
    });
}

} // namespace tsl
