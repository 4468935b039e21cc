// An action as a person or a file describes it, and the container that the component is handed.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "console/ParamContainer.h"

namespace tsl {

// The typed value lists. A list that is empty and one that is absent are not the same.
struct ActionValues {
    std::optional<std::vector<ULONGLONG>> ullValues;
    std::optional<std::vector<USHORT>> usValues;
    std::optional<std::vector<LONG>> intValues;
    std::optional<std::vector<VARIANT_BOOL>> boolValues;
    std::optional<std::vector<std::wstring>> stringValues;
    std::optional<std::vector<std::wstring>> moreStringValues;
    std::optional<std::vector<FLOAT>> floatValues;
};

struct LinkedItem {
    ActionValues values;
    std::optional<std::wstring> text44;
    std::optional<std::wstring> text48;
};

struct HostAction {
    std::wstring name;
    INT32 app = 0;
    UINT32 user = 0;
    std::optional<DATE> time;
    UINT32 kind = 1; // the log kind that it is recorded under
    std::optional<INT32> number;
    ActionValues values;
    std::optional<LinkedItem> linked;

    // What an export tells of the record that the action has become. Not reported.
    std::optional<UINT32> id;
    std::optional<std::wstring> parameters;
};

// The container of an action that has been given its record id. Throws CHresultError.
CComPtr<CTslParamContainer> MakeContainer(const HostAction& action, UINT32 recordId);

} // namespace tsl
