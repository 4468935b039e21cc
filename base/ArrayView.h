// Reads the values of a VARIANT in place, whatever a host put into it: never beyond an array, and
// never as another type than the array's own.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <span>
#include <utility>

namespace tsl {

// The VARIANT type of an element type, and the member that holds a single one.
template <class T>
struct VariantTraits;
template <>
struct VariantTraits<ULONGLONG> {
    static constexpr VARTYPE kType = VT_UI8;
    static constexpr auto kMember = &VARIANT::ullVal;
};
template <>
struct VariantTraits<USHORT> {
    static constexpr VARTYPE kType = VT_UI2;
    static constexpr auto kMember = &VARIANT::uiVal;
};
template <>
struct VariantTraits<LONG> {
    static constexpr VARTYPE kType = VT_I4;
    static constexpr auto kMember = &VARIANT::lVal;
};
template <>
struct VariantTraits<VARIANT_BOOL> {
    static constexpr VARTYPE kType = VT_BOOL;
    static constexpr auto kMember = &VARIANT::boolVal;
};
template <>
struct VariantTraits<BSTR> {
    static constexpr VARTYPE kType = VT_BSTR;
    static constexpr auto kMember = &VARIANT::bstrVal;
};
template <>
struct VariantTraits<IUnknown*> {
    static constexpr VARTYPE kType = VT_UNKNOWN;
    static constexpr auto kMember = &VARIANT::punkVal;
};
template <>
struct VariantTraits<ULONG> {
    static constexpr VARTYPE kType = VT_UI4;
    static constexpr auto kMember = &VARIANT::ulVal;
};
template <>
struct VariantTraits<FLOAT> {
    static constexpr VARTYPE kType = VT_R4;
    static constexpr auto kMember = &VARIANT::fltVal;
};

// Gives access to the data of an array while it lives; the VARIANT must live longer.
class CArrayAccess {
public:
    CArrayAccess() noexcept = default;
    CArrayAccess(CArrayAccess&& other) noexcept
        : m_array(std::exchange(other.m_array, nullptr)), m_data(other.m_data) {}
    CArrayAccess& operator=(CArrayAccess&& other) noexcept {
        CArrayAccess taken(std::move(other));
        std::swap(m_array, taken.m_array);
        std::swap(m_data, taken.m_data);
        return *this;
    }
    ~CArrayAccess() {
        if (m_array) SafeArrayUnaccessData(m_array);
    }

    // REQUIRES: nothing is open.
    HRESULT Open(SAFEARRAY* array) noexcept {
        const HRESULT result = SafeArrayAccessData(array, &m_data);
        if (SUCCEEDED(result)) m_array = array;
        return result;
    }
    void* Data() const noexcept { return m_data; }

private:
    SAFEARRAY* m_array = nullptr;
    void* m_data = nullptr;
};

// True when the array is one-dimensional, its elements have the size of the type, and its flags do
// not say that they are something else. An array that was made without flags says nothing.
inline bool ArrayHolds(SAFEARRAY* array, VARTYPE type, size_t elementSize) noexcept {
    if (SafeArrayGetDim(array) != 1 || SafeArrayGetElemsize(array) != elementSize) return false;
    const bool pointers = type == VT_BSTR || type == VT_UNKNOWN || type == VT_DISPATCH;
    const USHORT pointerFeatures = FADF_BSTR | FADF_UNKNOWN | FADF_DISPATCH | FADF_VARIANT;
    const USHORT declared = array->fFeatures & pointerFeatures;
    // One that declares its type declares pointers, too.
    if (declared == 0) return !pointers || (array->fFeatures & FADF_HAVEVARTYPE) == 0;
    return pointers && (declared & (type == VT_BSTR ? FADF_BSTR : FADF_UNKNOWN)) != 0;
}

// The values of an array of T; E_INVALIDARG for any other array. An array that is null has none.
// The access must live as long as the values are read.
template <class T>
HRESULT OpenArray(SAFEARRAY* array, VARTYPE type, CArrayAccess& access,
                  std::span<const T>& values) noexcept {
    values = {};
    if (!array) return S_OK;
    // An array of pointers holds pointers.
    const size_t elementSize = sizeof(T); // NOLINT(bugprone-sizeof-expression)
    if (!ArrayHolds(array, type, elementSize)) return E_INVALIDARG;
    const HRESULT opened = access.Open(array);
    if (FAILED(opened)) return opened;
    const ULONG count = array->rgsabound[0].cElements;
    if (count > 0 && !access.Data()) return E_INVALIDARG;
    values = std::span(static_cast<const T*>(access.Data()), count);
    return S_OK;
}

// The values of a one-dimensional array of T, or of a single T, in place.
template <class T>
class CValueView {
public:
    // S_OK; an empty VARIANT and an array that is null are no values. E_INVALIDARG for any other
    // type. The VARIANT must stay as it is while the view lives.
    HRESULT Open(VARIANT& value) noexcept {
        constexpr VARTYPE type = VariantTraits<T>::kType;
        m_values = {};
        m_access = CArrayAccess();
        if (value.vt == VT_EMPTY) return S_OK;
        if (value.vt == type) {
            m_values = std::span<const T>(&(value.*VariantTraits<T>::kMember), 1);
            return S_OK;
        }
        if (value.vt != (VT_ARRAY | type)) return E_INVALIDARG;
        return OpenArray(value.parray, type, m_access, m_values);
    }

    std::span<const T> Values() const noexcept { return m_values; }

private:
    CArrayAccess m_access;
    std::span<const T> m_values;
};

} // namespace tsl
