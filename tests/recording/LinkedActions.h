// Actions of the log kind that adds linked items and the moment of the action.
#pragma once

#include "tests/recording/BuiltText.h"
#include "tests/support/Containers.h"

namespace tsl::test {

inline constexpr UINT32 kLinkedLogKind = 2;

// 2024-03-05 06:07:08, as a date and in seconds since 1970.
inline constexpr DATE kMoment = 25569.0 + 1709618828.0 / 86400.0;
#define TSL_TEST_MOMENT L"1709618828"

// An action at that moment.
inline ContainerBuilder MomentaryAction(std::wstring_view name = L"playItem") {
    ContainerBuilder action;
    action.Text(kKeyActionName, name).Date(kKeyActionTime, kMoment);
    return action;
}

// An action at that moment, linked to the item.
inline ContainerBuilder LinkedAction(ITslParamContainer* item,
                                     std::wstring_view name = L"playItem") {
    ContainerBuilder action = MomentaryAction(name);
    action.Unknown(kKeyLinkedItem, item);
    return action;
}

} // namespace tsl::test
