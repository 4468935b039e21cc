// The keys of the parameter container. A key is its kind in bits 63..56, its number in bits 55..32
// and the VARIANT type of its value in bits 31..0. Part of the contract with hosts: not to be
// changed.
#pragma once

#include <windows.h>

#include <wtypes.h>

namespace tsl {

constexpr UINT64 MakeParamKey(UINT64 kind, UINT64 number, UINT64 type) noexcept {
    return kind << 56 | number << 32 | type;
}

constexpr VARTYPE ParamKeyType(UINT64 key) noexcept {
    return static_cast<VARTYPE>(key);
}

inline constexpr UINT64 kKindOrdinary = 0x02;
inline constexpr UINT64 kKindContentProperty = 0x03;
inline constexpr UINT64 kKindItem = 0x04;
inline constexpr UINT64 kKindFlag = 0x05;

// Further containers: one that is only handed on, and that of the linked item.
inline constexpr UINT64 kKeyNestedContainer = MakeParamKey(kKindOrdinary, 0x01, VT_UNKNOWN);
inline constexpr UINT64 kKeyLinkedItem = MakeParamKey(kKindOrdinary, 0x02, VT_UNKNOWN);

// The fields of an action record.
inline constexpr UINT64 kKeyAppId = MakeParamKey(kKindOrdinary, 0x20, VT_I4);
inline constexpr UINT64 kKeyUserId = MakeParamKey(kKindOrdinary, 0x21, VT_UI4);
inline constexpr UINT64 kKeyRecordId = MakeParamKey(kKindOrdinary, 0x22, VT_UI4);
inline constexpr UINT64 kKeyActionTime = MakeParamKey(kKindOrdinary, 0x24, VT_DATE);
inline constexpr UINT64 kKeyActionName = MakeParamKey(kKindOrdinary, 0x25, VT_BSTR);

// The value lists of an action.
inline constexpr UINT64 kKeyUllValues = MakeParamKey(kKindOrdinary, 0x30, VT_ARRAY | VT_UI8);
inline constexpr UINT64 kKeyUsValues = MakeParamKey(kKindOrdinary, 0x31, VT_ARRAY | VT_UI2);
inline constexpr UINT64 kKeyIntValues = MakeParamKey(kKindOrdinary, 0x32, VT_ARRAY | VT_I4);
inline constexpr UINT64 kKeyBoolValues = MakeParamKey(kKindOrdinary, 0x33, VT_ARRAY | VT_BOOL);
inline constexpr UINT64 kKeyStringValues = MakeParamKey(kKindOrdinary, 0x34, VT_ARRAY | VT_BSTR);
inline constexpr UINT64 kKeyFloatValues = MakeParamKey(kKindOrdinary, 0x35, VT_ARRAY | VT_R4);
inline constexpr UINT64 kKeyMoreStringValues =
    MakeParamKey(kKindOrdinary, 0x51, VT_ARRAY | VT_BSTR);

// Arguments of queries and deletions. The value of kKeyRecordToTake is one VT_UI8, although its key
// says an array.
inline constexpr UINT64 kKeyRecordToTake = MakeParamKey(kKindOrdinary, 0x11, VT_ARRAY | VT_UI8);
inline constexpr UINT64 kKeyStartTime = MakeParamKey(kKindOrdinary, 0x16, VT_DATE);
inline constexpr UINT64 kKeyEndTime = MakeParamKey(kKindOrdinary, 0x17, VT_DATE);
inline constexpr UINT64 kKeyFirstRecordId = MakeParamKey(kKindOrdinary, 0x18, VT_UI4);
inline constexpr UINT64 kKeyLastRecordId = MakeParamKey(kKindOrdinary, 0x19, VT_UI4);
inline constexpr UINT64 kKeyRecordIds = MakeParamKey(kKindOrdinary, 0x23, VT_ARRAY | VT_UI4);

// Answers of queries, beside the fields of a record.
inline constexpr UINT64 kKeyItemId = MakeParamKey(kKindOrdinary, 0x10, VT_UI8);
inline constexpr UINT64 kKeyParameterText = MakeParamKey(kKindOrdinary, 0x26, VT_BSTR);
inline constexpr UINT64 kKeyRecordFound = MakeParamKey(kKindFlag, 0x2000, VT_BOOL);

// A taken record: whether its second text went to the property sink, that it was taken, three
// numbers, its second id and its first text.
inline constexpr UINT64 kKeyTextHandedOn = kKeyRecordFound;
inline constexpr UINT64 kKeyTaken = MakeParamKey(kKindFlag, 0x2001, VT_BOOL);
inline constexpr UINT64 kKeyFirstNumber = MakeParamKey(kKindItem, 0x1010, VT_I4);
inline constexpr UINT64 kKeySecondNumber = MakeParamKey(kKindItem, 0x1011, VT_I4);
inline constexpr UINT64 kKeySecondId = MakeParamKey(kKindItem, 0x1012, VT_UI8);
inline constexpr UINT64 kKeyThirdNumber = MakeParamKey(kKindItem, 0x1013, VT_I4);
inline constexpr UINT64 kKeyFirstText = MakeParamKey(kKindFlag, 0x2024, VT_BSTR);

// The number that a content move gives the properties it changes.
inline constexpr UINT64 kKeyNumber = MakeParamKey(kKindOrdinary, 0x42, VT_I4);

// A property of a content item.
inline constexpr UINT64 kKeyPropertyFirstText = MakeParamKey(kKindContentProperty, 0x16, VT_BSTR);
inline constexpr UINT64 kKeyPropertySecondText = MakeParamKey(kKindContentProperty, 0x14, VT_BSTR);
inline constexpr UINT64 kKeyPropertyNumber = MakeParamKey(kKindContentProperty, 0x17, VT_I4);

// The two texts of a linked item.
inline constexpr UINT64 kKeyText44 = MakeParamKey(kKindOrdinary, 0x44, VT_BSTR);
inline constexpr UINT64 kKeyText48 = MakeParamKey(kKindOrdinary, 0x48, VT_BSTR);

} // namespace tsl
