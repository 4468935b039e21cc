// Owner of a VARIANT. Not shared between threads without a lock of the caller's.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <optional>
#include <string>
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

// The text of a BSTR up to its first zero, where it would end in the store too, read in place; a
// null BSTR is an empty text.
inline std::wstring_view BstrView(BSTR text) noexcept {
    return text ? std::wstring_view(text) : std::wstring_view();
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
    static CVariant FromUi8(UINT64 number) noexcept {
        CVariant made;
        made.m_value.vt = VT_UI8;
        made.m_value.ullVal = number;
        return made;
    }
    static CVariant FromBool(bool flag) noexcept {
        CVariant made;
        made.m_value.vt = VT_BOOL;
        made.m_value.boolVal = flag ? VARIANT_TRUE : VARIANT_FALSE;
        return made;
    }
    static CVariant FromDate(DATE date) noexcept {
        CVariant made;
        made.m_value.vt = VT_DATE;
        made.m_value.date = date;
        return made;
    }
    // A copy of the text; a null pointer is an empty text. Throws E_OUTOFMEMORY.
    static CVariant FromText(const wchar_t* text) {
        return FromText(text ? std::wstring_view(text) : std::wstring_view());
    }
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

    // Takes over the array of elements of the type.
    static CVariant FromOwnedArray(SAFEARRAY* array, VARTYPE elementType) noexcept {
        CVariant made;
        made.m_value.vt = static_cast<VARTYPE>(VT_ARRAY | elementType);
        made.m_value.parray = array;
        return made;
    }

    // Replaces what the target holds by this value, which is empty afterwards. Returns the failure
    // of clearing the target; this value stays as it was then.
    HRESULT MoveTo(VARIANT* target) noexcept {
        const HRESULT cleared = VariantClear(target);
        if (SUCCEEDED(cleared)) *target = std::exchange(m_value, VARIANT{});
        return cleared;
    }

    const VARIANT& Get() const noexcept { return m_value; }
    VARTYPE Type() const noexcept { return m_value.vt; }

    // For calls that read or fill a VARIANT. It is not cleared first.
    VARIANT* Address() noexcept { return &m_value; }

private:
    VARIANT m_value;
};

// The value turned into text, as Automation does it; nothing when it cannot be.
inline std::optional<std::wstring> TextOf(const VARIANT& value) {
    CVariant text;
    // The source is only read, though it is declared otherwise.
    if (FAILED(VariantChangeType(text.Address(), const_cast<VARIANT*>(&value), /*flags=*/0,
                                 VT_BSTR))) {
        return std::nullopt;
    }
    return std::wstring(BstrView(text.Get().bstrVal));
}

} // namespace tsl
