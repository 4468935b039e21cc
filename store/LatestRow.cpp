#include "store/LatestRow.h"

#include <algorithm>
#include <string_view>

namespace tsl {

namespace {

// Each file has one table that its mark speaks of.
bool TableHasMark(const Target& target) {
    const std::wstring_view file = target.fileName;
    const std::wstring_view table = target.tableName;
    return (file == kActionLogFileName && table == kActionLogTable) ||
           (file == kReplayFileName && table == kReplayTable);
}

// A file may come from an older version, or from an engine that cannot read integers.
constexpr UINT32 kNoMark = 0;

// The highest id that the table can hold. Without a mark its rows tell.
int HighestId(const CDatabase& database, const std::wstring& table, INT64 mark, INT64& highest) {
    highest = mark;
    if (mark != kNoMark) return kSqliteOk;
    // Without a function: the engine calls none here.
    const std::wstring column(kActionLogIdColumn);
    const int result = ReadNumber(database,
                                  L"SELECT " + column + L" FROM " + table + L" ORDER BY " + column +
                                      L" DESC LIMIT 1",
                                  /*column=*/0, highest);
    return result == kSqliteDone ? kSqliteOk : result; // an empty table
}

int DeleteRows(const CDatabase& database, const std::wstring& table, UINT32 recordId) {
    CStatement statement(database);
    int result =
        statement.Prepare(L"DELETE FROM " + table + L" WHERE " + kActionLogIdColumn + L" = ?");
    if (result == kSqliteOk) result = statement.BindInt64(1, recordId);
    return result == kSqliteOk ? statement.Run() : result;
}

// The header holds 32 bits and reads them as signed.
int WriteMark(const CDatabase& database, UINT32 mark) {
    return ExecuteStatement(database,
                            L"PRAGMA user_version = " + std::to_wstring(static_cast<INT32>(mark)));
}

} // namespace

int RemoveOlderRows(const Target& target, const CDatabase& database, UINT32 recordId) {
    const std::wstring table = target.Table();
    if (!TableHasMark(target)) return DeleteRows(database, table, recordId);

    if (!database.Engine().ReadsIntegers()) {
        const int deleted = DeleteRows(database, table, recordId);
        return deleted == kSqliteOk ? WriteMark(database, kNoMark) : deleted;
    }
    INT64 stored = 0;
    int result = ReadNumber(database, L"PRAGMA user_version", /*column=*/0, stored);
    if (result != kSqliteOk) return result;
    const INT64 mark = static_cast<UINT32>(stored);
    INT64 highest = 0;
    result = HighestId(database, table, mark, highest);
    if (result == kSqliteOk && recordId <= highest) result = DeleteRows(database, table, recordId);
    constexpr INT64 kHighestMark = 0xFFFFFFFF;
    const INT64 raised = std::min(std::max<INT64>(highest, recordId), kHighestMark);
    if (result == kSqliteOk && raised != mark) {
        result = WriteMark(database, static_cast<UINT32>(raised));
    }
    return result;
}

} // namespace tsl
