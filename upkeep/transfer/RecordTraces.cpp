#include "upkeep/transfer/RecordTraces.h"

#include "upkeep/TableReading.h"

namespace tsl {

namespace {

// Of the latest row of the id.
std::optional<std::wstring> ReadParameters(const std::wstring& database, const wchar_t* table,
                                           UINT32 recordId) {
    std::optional<std::wstring> parameters;
    ReadTable(database, table, [&](const CConnection& connection, const std::string& name) {
        CQuery query(connection, "SELECT ActionParameters FROM " + name +
                                     " WHERE ActionLogId = ? ORDER BY rowid DESC");
        if (query.Bind(static_cast<INT64>(recordId)).Step()) parameters = query.WideText(0);
    });
    return parameters;
}

} // namespace

std::optional<std::wstring> ReadKeptParameters(const std::wstring& actionLog, UINT32 recordId) {
    return ReadParameters(actionLog, kContentDeleteTable, recordId);
}

bool IsInReplayLog(const std::wstring& replayLog, UINT32 recordId) {
    return ReadParameters(replayLog, kReplayTable, recordId).has_value();
}

} // namespace tsl
