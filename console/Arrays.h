// Makes VARIANTs that hold arrays: one-dimensional, lower bound 0. Throws E_OUTOFMEMORY.
#pragma once

#include <algorithm>
#include <span>
#include <string>

#include "base/ArrayView.h"
#include "base/Hresult.h"
#include "base/Variant.h"

namespace tsl {

// An array of count zeroed elements; fill is given them as a span.
template <class T, class Fill>
CVariant MakeFilledArray(size_t count, Fill fill) {
    constexpr VARTYPE type = VariantTraits<T>::kType;
    SAFEARRAY* const array =
        SafeArrayCreateVector(type, /*lowerBound=*/0, static_cast<ULONG>(count));
    if (!array) throw CHresultError(E_OUTOFMEMORY);
    CVariant made;
    made.Address()->vt = static_cast<VARTYPE>(VT_ARRAY | type);
    made.Address()->parray = array;
    CArrayAccess access;
    const HRESULT opened = access.Open(array);
    if (FAILED(opened)) throw CHresultError(opened);
    fill(std::span(static_cast<T*>(access.Data()), count));
    return made;
}

// An array of numbers.
template <class T>
CVariant MakeArray(std::span<const T> values) {
    return MakeFilledArray<T>(values.size(),
                              [&](std::span<T> made) { std::ranges::copy(values, made.begin()); });
}

// An array of texts.
inline CVariant MakeTextArray(std::span<const std::wstring> texts) {
    return MakeFilledArray<BSTR>(texts.size(), [&](std::span<BSTR> made) {
        std::ranges::transform(texts, made.begin(), AllocateBstr);
    });
}

} // namespace tsl
