#include "console/RecordOutput.h"

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>

#include "component/host/CommandCodes.h"
#include "component/host/ParamKeys.h"
#include "console/Arrays.h"
#include "console/IsoTime.h"
#include "console/JsonOutput.h"
#include "console/Output.h"
#include "console/Table.h"
#include "console/Text.h"

namespace tsl {

namespace {

constexpr size_t kWidestNumber = 11; // a sign and ten digits

CTable RecordTable() {
    return CTable({{"id", true},
                   {"time"},
                   {"user", true},
                   {"app", true},
                   {"action", false, 24},
                   {"parameters"}});
}

// Wide enough for what is usual; a longer cell moves those behind it.
CTable FixedRecordTable() {
    return CTable({{"id", true, kWidestNumber, 7},
                   {"time", false, 24, 24},
                   {"user", true, kWidestNumber, 4},
                   {"app", true, kWidestNumber, 4},
                   {"action", false, 24, 16},
                   {"parameters"}});
}

void AddRow(CTable& table, const StoredRecord& record) {
    table.Add({std::to_string(record.id), FormatIsoTime(record.time), std::to_string(record.user),
               std::to_string(record.app), ToUtf8(record.name), ToUtf8(record.parameters)});
}

} // namespace

std::vector<StoredRecord> FetchRecords(CHostSession& session, std::span<const UINT32> ids) {
    if (ids.empty()) return {};
    const CComPtr<CTslParamContainer> arguments = CTslParamContainer::Create();
    const std::vector<ULONG> wanted(ids.begin(), ids.end());
    SetValue(*arguments, kKeyRecordIds, MakeArray<ULONG>(wanted));
    std::map<UINT32, StoredRecord> found;
    for (const auto& container : session.Query(kCommandQueryRecords, *arguments)) {
        StoredRecord record = ReadStoredRecord(*container);
        found[record.id] = std::move(record);
    }
    std::vector<StoredRecord> records;
    for (const UINT32 id : ids) {
        const auto record = found.find(id);
        if (record != found.end()) records.push_back(record->second);
    }
    return records;
}

void PrintRecords(std::span<const StoredRecord> records, bool json) {
    if (json) {
        for (const StoredRecord& record : records)
            PrintLine(ToJsonLine(ToJson(record)));
        return;
    }
    CTable table = RecordTable();
    for (const StoredRecord& record : records)
        AddRow(table, record);
    for (const std::string& line : table.Lines(OutputWidth()))
        PrintLine(line);
}

std::string RecordTitles() {
    return FixedRecordTable().Lines(OutputWidth())[0];
}

std::string RecordLine(const StoredRecord& record) {
    CTable table = FixedRecordTable();
    AddRow(table, record);
    return table.Lines(OutputWidth())[1];
}

std::string CountOfRecords(size_t count) {
    return count == 1 ? "1 record" : std::to_string(count) + " records";
}

void PrintRemoval(size_t count, bool removed, bool json) {
    if (json) {
        PrintLine(ToJsonLine({{"records", count}, {"removed", removed}}));
    } else {
        PrintLine(CountOfRecords(count) + (removed ? " removed" : " would be removed"));
    }
}

void PrintIds(std::span<const UINT64> ids, bool json) {
    for (const UINT64 id : ids) {
        const std::string number = std::to_string(id);
        PrintLine(json ? "{\"id\":" + number + "}" : number);
    }
}

} // namespace tsl
