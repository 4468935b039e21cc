// Whose records there are: what the component can only be asked about by someone who knows it.
#pragma once

#include <windows.h>

#include <map>
#include <string>
#include <vector>

namespace tsl {

// A user who has records of a log kind.
struct RecordOwner {
    UINT32 user = 0;
    UINT32 kind = 0;

    auto operator<=>(const RecordOwner&) const = default;
};

struct RecordOwners {
    std::vector<RecordOwner> owners; // in ascending order
    // Older versions could leave several rows of one id; the component hands out the latest. Such
    // ids, with the log kind of that row.
    std::map<UINT32, UINT32> kindsOfRepeatedIds;
    // Rows whose id, user or log kind is none that the component can be asked for.
    size_t unreachable = 0;
};

// Of the action log in the database; none when there is no such file, or no table in it. Takes the
// lock of the databases. Throws CFailure.
RecordOwners ReadRecordOwners(const std::wstring& actionLog);

} // namespace tsl
