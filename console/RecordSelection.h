// Which records a command is about, as the command line says it, and the ids of those records.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "console/Failure.h"
#include "console/HostSession.h"
#include "console/StoredRecord.h"

namespace tsl {

struct RecordSelection {
    std::vector<UINT32> users = {1};
    std::string since;
    std::string until;
    std::optional<UINT32> first;
    std::optional<UINT32> last;
    std::optional<UINT32> kind;

    bool HasTimes() const { return !since.empty() || !until.empty(); }
    bool HasIds() const { return first || last; }
};

// What the component does not filter by.
struct RecordFilter {
    std::string name;
    std::optional<INT32> app;

    bool Matches(const StoredRecord& record) const;
};

// Arguments of the component's range commands for one user and the time or the record-id bounds.
CComPtr<CTslParamContainer> TimeRangeArguments(const RecordSelection& selection, UINT32 user);
CComPtr<CTslParamContainer> IdRangeArguments(const RecordSelection& selection, UINT32 user);

// The ids of the selected records of all selected users in ascending order.
std::vector<UINT32> SelectIds(CHostSession& session, const RecordSelection& selection);

} // namespace tsl
