// An action with a value under every key that a delete action's copy takes or leaves out.
#pragma once

#include "tests/support/Containers.h"

namespace tsl::test {

inline constexpr DATE kFullActionTime = 45356.25;

inline ContainerBuilder FullAction(UINT32 recordId, std::wstring_view name) {
    ContainerBuilder action = Action(recordId, name);
    action.Date(kKeyActionTime, kFullActionTime)
        .Unknown(kKeyNestedContainer, ContainerBuilder().Get().Get())
        .I4(kKeyNumber, 9)
        .Array<ULONGLONG>(kKeyUllValues, {1, 2})
        .Array<USHORT>(kKeyUsValues, {3})
        .Array<LONG>(kKeyIntValues, {4, -5})
        .Array<VARIANT_BOOL>(kKeyBoolValues, {VARIANT_TRUE, VARIANT_FALSE})
        .Texts(kKeyStringValues, {L"a,b", L"", L"c"})
        .Array<FLOAT>(kKeyFloatValues, {0.5f})
        .Texts(kKeyMoreStringValues, {L"more"});
    return action;
}

// The parameter text of all its values, and that of a copy, which lacks the 32-bit values and the
// second list of texts.
inline constexpr char kFullText[] =
    "ullValues={1,2}&usValues={3}&intValues={4,-5}&boolValues={1,0}&"
    "stringValues={a%2cb,,c,more}&floatValues={0.500000}";
inline constexpr char kCopiedText[] =
    "ullValues={1,2}&usValues={3}&boolValues={1,0}&stringValues={a%2cb,,c}&floatValues={0.500000}";

} // namespace tsl::test
