// Owner of a VARIANT. Not shared between threads without a lock of the caller's.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <string_view>
#include <utility>

#include "base/Hresult.h"

namespace tsl {

// A new BSTR with the text, embedded zeros included; the caller owns it. Throws E_OUTOFMEMORY.
inline BSTR AllocateBstr(std::wstring_view text) {
    const BSTR copy = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    if (!copy) throw CHresultError(E_OUTOFMEMORY);
    return copy;
}

// The text of a BSTR, read in place; a null BSTR is an empty text.
inline std::wstring_view BstrView(BSTR text) noexcept {
    return text ? std::wstring_view(text, SysStringLen(text)) : std::wstring_view();
}

// Clears its VARIANT, and with it whatever that holds, when it goes.
class CVariant {
public:
    CVariant() noexcept { VariantInit(&m_value); }
    CVariant(CVariant&& other) noexcept : m_value(std::exchange(other.m_value, VARIANT{})) {}
    CVariant& operator=(CVariant&& other) noexcept {
        CVariant taken(std::move(other));
        std::swap(m_value, taken.m_value);
        return *this;
    }
    ~CVariant() { VariantClear(&m_value); }

    static CVariant FromUi4(UINT32 number) noexcept {
        CVariant made;
        made.m_value.vt = VT_UI4;
        made.m_value.ulVal = number;
        return made;
    }
    static CVariant FromI4(INT32 number) noexcept {
        CVariant made;
        made.m_value.vt = VT_I4;
        made.m_value.lVal = number;
        return made;
    }
    static CVariant FromDate(DATE date) noexcept {
        CVariant made;
        made.m_value.vt = VT_DATE;
        made.m_value.date = date;
        return made;
    }
    // A copy of the text. Throws E_OUTOFMEMORY.
    static CVariant FromText(std::wstring_view text) {
        CVariant made;
        made.m_value.bstrVal = AllocateBstr(text);
        made.m_value.vt = VT_BSTR;
        return made;
    }
    // Takes over the interface pointer; no reference is added.
    static CVariant FromOwnedUnknown(IUnknown* pointer) noexcept {
        CVariant made;
        made.m_value.vt = VT_UNKNOWN;
        made.m_value.punkVal = pointer;
        return made;
    }

    const VARIANT& Get() const noexcept { return m_value; }
    VARTYPE Type() const noexcept { return m_value.vt; }

    // For calls that read or fill a VARIANT. It is not cleared first.
    VARIANT* Address() noexcept { return &m_value; }

private:
    VARIANT m_value;
};

} // namespace tsl
