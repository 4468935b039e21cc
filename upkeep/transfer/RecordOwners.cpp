#include "upkeep/transfer/RecordOwners.h"

#include "upkeep/TableReading.h"

namespace tsl {

namespace {

constexpr char kIsReachable[] = "(ActionLogId BETWEEN 1 AND 4294967295 AND UserId BETWEEN 0 AND "
                                "4294967295 AND LogKind BETWEEN 0 AND 4294967295)";

} // namespace

RecordOwners ReadRecordOwners(const std::wstring& actionLog) {
    RecordOwners found;
    ReadTable(
        actionLog, kActionLogTable, [&](const CConnection& connection, const std::string& table) {
            CQuery owners(connection, "SELECT DISTINCT UserId, LogKind FROM " + table + " WHERE " +
                                          kIsReachable + " ORDER BY UserId, LogKind");
            while (owners.Step())
                found.owners.push_back({owners.Uint32(0), owners.Uint32(1)});
            // The row that the other column comes from is the one of the maximum.
            CQuery repeated(connection, "SELECT ActionLogId, LogKind, MAX(rowid) FROM " + table +
                                            " GROUP BY ActionLogId HAVING COUNT(*) > 1");
            while (repeated.Step())
                found.kindsOfRepeatedIds[repeated.Uint32(0)] = repeated.Uint32(1);
            found.unreachable = static_cast<size_t>(connection.Number(
                "SELECT COUNT(*) FROM " + table + " WHERE " + kIsReachable + " IS NOT TRUE"));
        });
    return found;
}

} // namespace tsl
