// How stored records are fetched and printed.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "console/HostSession.h"
#include "console/StoredRecord.h"

namespace tsl {

// The records of the ids that are there, in the order of the ids.
std::vector<StoredRecord> FetchRecords(CHostSession& session, std::span<const UINT32> ids);

// A table that fits the terminal, or one JSON object a line.
void PrintRecords(std::span<const StoredRecord> records, bool json);

// The same table for records that come one by one: the line of the titles, and that of a record,
// both in columns of fixed widths.
std::string RecordTitles();
std::string RecordLine(const StoredRecord& record);

// "1 record", "2 records".
std::string CountOfRecords(size_t count);

// How many records a command removed, or would remove.
void PrintRemoval(size_t count, bool removed, bool json);

// One id a line.
void PrintIds(std::span<const UINT64> ids, bool json);

} // namespace tsl
