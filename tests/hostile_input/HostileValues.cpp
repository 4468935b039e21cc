#include "tests/hostile_input/HostileValues.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <span>

#include "base/Variant.h"
#include "tests/hostile_input/Mutation.h"

namespace tsl::test {

namespace {

// All that a VARIANT can be of, and what only its cousin, the PROPVARIANT, can be.
constexpr VARTYPE kTypes[] = {VT_EMPTY,
                              VT_NULL,
                              VT_I2,
                              VT_I4,
                              VT_R4,
                              VT_R8,
                              VT_CY,
                              VT_DATE,
                              VT_BSTR,
                              VT_DISPATCH,
                              VT_ERROR,
                              VT_BOOL,
                              VT_UNKNOWN,
                              VT_DECIMAL,
                              VT_I1,
                              VT_UI1,
                              VT_UI2,
                              VT_UI4,
                              VT_I8,
                              VT_UI8,
                              VT_INT,
                              VT_UINT,
                              VT_VOID,
                              VT_HRESULT,
                              VT_PTR,
                              VT_SAFEARRAY,
                              VT_CARRAY,
                              VT_USERDEFINED,
                              VT_LPSTR,
                              VT_LPWSTR,
                              VT_RECORD,
                              VT_INT_PTR,
                              VT_UINT_PTR,
                              VT_FILETIME,
                              VT_BLOB,
                              VT_STREAM,
                              VT_STORAGE,
                              VT_STREAMED_OBJECT,
                              VT_STORED_OBJECT,
                              VT_BLOB_OBJECT,
                              VT_CF,
                              VT_CLSID};

// What there can be arrays of.
constexpr VARTYPE kElementTypes[] = {
    VT_I2,       VT_I4,    VT_R4,   VT_R8,      VT_CY,      VT_DATE,    VT_BSTR,
    VT_DISPATCH, VT_ERROR, VT_BOOL, VT_VARIANT, VT_UNKNOWN, VT_DECIMAL, VT_I1,
    VT_UI1,      VT_UI2,   VT_UI4,  VT_I8,      VT_UI8,     VT_INT,     VT_UINT};

constexpr UINT64 kExtremeNumbers[] = {0,
                                      1,
                                      99,
                                      100,
                                      0x7FFFFFFF,
                                      0x80000000,
                                      0xFFFFFFFF,
                                      0x100000000,
                                      0x7FFFFFFFFFFFFFFF,
                                      0x8000000000000000,
                                      0xFFFFFFFFFFFFFFFF};

constexpr double kExtremeDates[] = {0.0,
                                    -0.0,
                                    -0.5,
                                    45000.25,
                                    2958465.9999999,
                                    2958466.0,
                                    -657434.0,
                                    -657435.0,
                                    4294967295.0,
                                    1e300,
                                    -1e300,
                                    5e-324,
                                    std::numeric_limits<double>::infinity(),
                                    -std::numeric_limits<double>::infinity(),
                                    std::numeric_limits<double>::quiet_NaN()};

constexpr double kSmallNumbers[] = {0.0,
                                    -0.0,
                                    0.5,
                                    -1e-9,
                                    12345.678,
                                    std::numeric_limits<double>::quiet_NaN(),
                                    std::numeric_limits<double>::infinity()};

// Names that the component knows, and some that look like them.
constexpr const wchar_t* kNames[] = {L"playItem",
                                     L"skipForwardItem",
                                     L"tweet",
                                     L"registerFavoriteTweet",
                                     L"deleteItem",
                                     L"AUTODELETEITEM",
                                     L"viaMoveContent",
                                     L"ViaMoveContent",
                                     L"veSettingReset",
                                     L"userLocation",
                                     L"externalApplicationLog",
                                     L"showExternalLink",
                                     L"showExternalLinkForTv",
                                     L"showExternalLinkForMusic",
                                     L"showExternalLinkForSns",
                                     L"VELLORA_CHANNEL",
                                     L"",
                                     L"%",
                                     L"%2",
                                     L"a,b}&{c",
                                     L"'; DROP TABLE TslIf_DbActionLog; --"};

} // namespace

HRESULT PlainObject::QueryInterface(REFIID asked, void** result) {
    const bool known = asked == IID_IUnknown || asked == IID_IDispatch;
    *result = known ? this : nullptr;
    if (known) AddRef();
    return known ? S_OK : E_NOINTERFACE;
}

HostileValues::HostileValues() {
    m_text = SysAllocString(L"referred to");
    m_array = SafeArrayCreateVector(VT_UI8, 0, 3);
    m_variant.vt = VT_UI4;
    m_variant.ulVal = 7;
    std::copy_n("text", 5, m_bytes);
}

HostileValues::~HostileValues() {
    SysFreeString(m_text);
    SafeArrayDestroy(m_array);
}

void HostileValues::FillFor(VARTYPE wanted, Chance& chance, VARIANT& value) {
    if (chance.OneIn(4)) return FillAny(chance, value);
    if ((wanted & VT_ARRAY) == 0) return FillScalar(wanted, chance, value);
    const auto elementType = static_cast<VARTYPE>(wanted & ~VT_ARRAY);
    if (chance.OneIn(4)) return FillScalar(elementType, chance, value);
    FillArray(elementType, chance, value);
}

void HostileValues::FillAny(Chance& chance, VARIANT& value) {
    switch (chance.Below(6)) {
    case 0:
    case 1:
        return FillArray(chance.Of(kElementTypes), chance, value);
    case 2:
        return FillReference(chance.Of(kElementTypes), chance, value);
    case 3: // a list of values as only a PROPVARIANT has it: how many, and where they are
        value.vt = static_cast<VARTYPE>(VT_VECTOR | chance.Of(kElementTypes));
        value.ulVal = 1;
        value.pRecInfo = reinterpret_cast<IRecordInfo*>(m_bytes);
        return;
    default:
        return FillScalar(chance.Of(kTypes), chance, value);
    }
}

void HostileValues::FillScalar(VARTYPE type, Chance& chance, VARIANT& value) {
    value.ullVal = chance.OneIn(4) ? chance.Bits() : chance.Of(kExtremeNumbers);
    switch (type) {
    case VT_BSTR:
        value.bstrVal = MakeText(chance);
        break;
    case VT_DATE:
    case VT_R8:
        value.dblVal = chance.Of(kExtremeDates);
        break;
    case VT_R4:
        value.fltVal = static_cast<float>(chance.Of(kSmallNumbers));
        break;
    case VT_BOOL:
        value.boolVal = static_cast<VARIANT_BOOL>(chance.Below(3) - 1);
        break;
    case VT_UNKNOWN:
    case VT_DISPATCH:
        value.pdispVal = Reference(chance);
        break;
    case VT_RECORD: // of no kind, and none
        value.pvRecord = nullptr;
        value.pRecInfo = nullptr;
        break;
    case VT_DECIMAL:
        value.decVal.Hi32 = static_cast<ULONG>(chance.Bits());
        value.decVal.scale = static_cast<BYTE>(chance.Below(29));
        value.decVal.sign = chance.OneIn(2) ? DECIMAL_NEG : BYTE{0};
        break;
    case VT_BLOB:
    case VT_BLOB_OBJECT: // how many bytes, and where they are
        value.ulVal = sizeof m_bytes;
        value.pRecInfo = reinterpret_cast<IRecordInfo*>(m_bytes);
        break;
    case VT_LPSTR:
    case VT_LPWSTR:
    case VT_PTR:
    case VT_SAFEARRAY:
    case VT_CARRAY:
    case VT_CF:
    case VT_CLSID:
    case VT_STREAM:
    case VT_STORAGE:
    case VT_STREAMED_OBJECT:
    case VT_STORED_OBJECT:
        value.byref = m_bytes;
        break;
    default:
        break; // a number will do
    }
    value.vt = type;
}

void HostileValues::FillReference(VARTYPE type, Chance& chance, VARIANT& value) {
    if (chance.OneIn(3)) {
        value.vt = static_cast<VARTYPE>(VT_BYREF | VT_ARRAY | type);
        value.pparray = &m_array;
        return;
    }
    value.vt = static_cast<VARTYPE>(VT_BYREF | type);
    if (type == VT_BSTR) {
        value.pbstrVal = &m_text;
    } else if (type == VT_UNKNOWN || type == VT_DISPATCH) {
        value.ppdispVal = &m_interface;
    } else if (type == VT_VARIANT) {
        value.pvarVal = &m_variant;
    } else {
        value.byref = m_bytes;
    }
}

void HostileValues::FillArray(VARTYPE elementType, Chance& chance, VARIANT& value) {
    // Sometimes the VARIANT says that the array is of another type than it is.
    const VARTYPE claimed = chance.OneIn(8) ? chance.Of(kElementTypes) : elementType;
    value.vt = static_cast<VARTYPE>(VT_ARRAY | claimed);
    value.parray = chance.OneIn(8) ? nullptr : MakeSafeArray(elementType, chance);
}

SAFEARRAY* HostileValues::MakeSafeArray(VARTYPE elementType, Chance& chance) {
    constexpr LONG kLowerBounds[] = {0, 0, 0, 1, -5, 0x7FFFFFF0, -0x7FFFFFFF - 1};
    const auto dimensions = static_cast<UINT>(chance.OneIn(6) ? 2 + chance.Below(3) : 1);
    SAFEARRAYBOUND bounds[4];
    for (SAFEARRAYBOUND& bound : bounds)
        bound = {static_cast<ULONG>(chance.Below(5)), chance.Of(kLowerBounds)};
    if (chance.OneIn(16)) { // a description, but nothing that it describes
        SAFEARRAY* described = nullptr;
        SafeArrayAllocDescriptorEx(elementType, 1, &described);
        if (described) described->rgsabound[0] = bounds[0];
        return described;
    }
    SAFEARRAY* const array = SafeArrayCreate(elementType, dimensions, bounds);
    if (array) FillElements(*array, elementType, chance);
    return array;
}

void HostileValues::FillElements(SAFEARRAY& array, VARTYPE elementType, Chance& chance) {
    size_t count = 1;
    for (USHORT dimension = 0; dimension < array.cDims; ++dimension)
        count *= array.rgsabound[dimension].cElements;
    auto* const bytes = static_cast<unsigned char*>(array.pvData);
    const bool hasPointers = elementType == VT_BSTR || elementType == VT_UNKNOWN ||
                             elementType == VT_DISPATCH || elementType == VT_VARIANT;
    for (size_t index = 0; index < count; ++index) {
        unsigned char* const element = bytes + index * array.cbElements;
        VARIANT value{};
        FillScalar(elementType == VT_VARIANT ? VARTYPE{VT_BSTR} : elementType, chance, value);
        if (elementType == VT_VARIANT) {
            std::memcpy(element, &value, sizeof value);
        } else if (hasPointers || array.cbElements <= sizeof value.ullVal) {
            std::memcpy(element, &value.ullVal, array.cbElements);
        }
    }
}

IDispatch* HostileValues::Reference(Chance& chance) {
    if (chance.OneIn(3)) return nullptr;
    m_object.AddRef();
    return &m_object;
}

BSTR HostileValues::MakeText(Chance& chance) {
    switch (chance.Below(8)) {
    case 0:
        return nullptr;
    case 1:
        return SysAllocStringLen(L"", 0);
    case 2:
    case 3: {
        const std::wstring text = AnyText(chance, 30);
        return AllocateBstr(text);
    }
    case 4: // ends in the middle of a unit
        return SysAllocStringByteLen("an odd number of bytes",
                                     static_cast<UINT>(1 + 2 * chance.Below(10)));
    default:
        return AllocateBstr(chance.Of(kNames));
    }
}

} // namespace tsl::test
