// The values of one key of a container, read in place.
#pragma once

#include <utility>

#include "base/ArrayView.h"
#include "query/ContainerValues.h"

namespace tsl {

// Owns what its values are read from. Used by one thread.
template <class T>
class CValueList {
public:
    // Reads an array or a single value; an absent key is an empty list. Returns the failure of the
    // container, or E_INVALIDARG for a value of another type.
    HRESULT Read(ITslParamContainer& container, UINT64 key) {
        CVariant value;
        const HRESULT result = container.GetValue(key, value.Address());
        if (FAILED(result)) return result;
        if (result == S_OK) m_value = std::move(value);
        return m_view.Open(*m_value.Address());
    }

    // Reads a list that must be there, as above: an array, a single value or an empty one. False
    // when it is not.
    bool ReadPresent(ITslParamContainer& container, UINT64 key) {
        return container.GetValue(key, m_value.Address()) == S_OK &&
               SUCCEEDED(m_view.Open(*m_value.Address()));
    }

    // Reads an array that must be there; false when it is not.
    bool ReadRequired(ITslParamContainer& container, UINT64 key) {
        return ReadValue(container, key, m_value) == S_OK && m_value.Type() != VT_EMPTY &&
               SUCCEEDED(m_view.Open(*m_value.Address()));
    }

    std::span<const T> Values() const noexcept { return m_view.Values(); }

private:
    CVariant m_value;
    CValueView<T> m_view;
};

} // namespace tsl
