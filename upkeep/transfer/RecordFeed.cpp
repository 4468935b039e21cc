#include "upkeep/transfer/RecordFeed.h"

#include <algorithm>
#include <set>

#include "base/Hresult.h"
#include "console/Text.h"
#include "store/Schema.h"
#include "upkeep/CheckedFiles.h"
#include "upkeep/StoreLock.h"
#include "upkeep/TableReading.h"
#include "upkeep/WholeDatabase.h"

namespace tsl {

namespace {

// Part of the file format of SQLite.
constexpr LONG kOffsetOfChanges = 24;

// How many rows are looked through for ids that come late.
constexpr size_t kLatest = 256;

// Codes of SQLite after which the next look may go well: busy, a table locked, a change that was
// interrupted and that only a host rolls back, an I/O error, a file that has gone.
constexpr int kPassing[] = {5, 6, 8, 10, 14};

bool IsPassing(HRESULT result) noexcept {
    return result == HresultFromWin32(ERROR_SHARING_VIOLATION) ||
           result == HresultFromWin32(ERROR_LOCK_VIOLATION);
}

std::string TableOfRecords() {
    return ToUtf8(TableName(kTablePrefix, kActionLogTable));
}

constexpr int kIdColumn = 1;

// The row number goes before the columns of the record.
std::string SelectRecords() {
    return "SELECT rowid, ActionLogId, AppLoggedTime, UserId, AppId, LogKind, ActionName, "
           "ActionParameters FROM " +
           TableOfRecords();
}

ExportedRecord ReadRecord(const CQuery& row) {
    ExportedRecord read;
    read.record.id = row.Uint32(kIdColumn);
    read.record.time = row.Double(2);
    read.record.user = row.Uint32(3);
    read.record.app = static_cast<INT32>(row.Int64(4));
    read.kind = row.Uint32(5);
    read.record.name = row.WideText(6);
    read.record.parameters = row.WideText(7);
    return read;
}

std::map<INT64, UINT32> ReadLatest(const CConnection& connection) {
    CQuery rows(connection, "SELECT rowid, ActionLogId FROM " + TableOfRecords() +
                                " ORDER BY rowid DESC LIMIT " + std::to_string(kLatest));
    std::map<INT64, UINT32> latest;
    while (rows.Step())
        latest[rows.Int64(0)] = rows.Uint32(1);
    return latest;
}

// Where there are fewer rows than are remembered, all rows are known.
bool HasAnchor(const std::map<INT64, UINT32>& latest) {
    return latest.size() == kLatest;
}

// Whether rows were only added above the lowest of the latest ones.
bool IsAnchorInPlace(const CConnection& connection, const std::map<INT64, UINT32>& latest) {
    if (!HasAnchor(latest)) return true;
    const auto& [row, id] = *latest.begin();
    CQuery query(connection, "SELECT ActionLogId FROM " + TableOfRecords() + " WHERE rowid = ?");
    return query.Bind(row).Step() && query.Uint32(0) == id;
}

UINT32 HighestThere(const CConnection& connection) {
    return static_cast<UINT32>(
        connection.Number("SELECT MAX(ActionLogId) FROM " + TableOfRecords()));
}

UINT32 HighestOf(const std::vector<ExportedRecord>& records) {
    UINT32 highest = 0;
    for (const ExportedRecord& exported : records)
        highest = std::max(highest, exported.record.id);
    return highest;
}

} // namespace

std::optional<DatabaseMark> ReadDatabaseMark(const std::wstring& database) {
    const OpenedFile opened = OpenChecked(database, GENERIC_READ, kShareAll, OPEN_EXISTING);
    if (IsMissing(opened)) return DatabaseMark();
    if (IsPassing(opened.status)) return std::nullopt;
    if (!opened.file) throw FailureToOpen("cannot read", database, opened);
    const CHandle& file = opened.file;
    BY_HANDLE_FILE_INFORMATION about{};
    if (!GetFileInformationByHandle(file.Get(), &about)) return std::nullopt;
    DatabaseMark mark;
    mark.fileIndex = (UINT64{about.nFileIndexHigh} << 32) | about.nFileIndexLow;
    mark.size = (UINT64{about.nFileSizeHigh} << 32) | about.nFileSizeLow;
    // Big end first. A file that has no header yet has no changes.
    UINT32 changes = 0;
    DWORD bytesRead = 0;
    SetFilePointer(file.Get(), kOffsetOfChanges, nullptr, FILE_BEGIN);
    if (!ReadFile(file.Get(), &changes, sizeof changes, &bytesRead, nullptr)) return std::nullopt;
    mark.changes = _byteswap_ulong(changes);
    return mark;
}

std::vector<ExportedRecord> CRecordFeed::Look() {
    const std::optional<DatabaseMark> mark = ReadDatabaseMark(m_database);
    if (!mark || (mark == m_mark && m_highest)) return {};
    if (m_mark && mark->fileIndex != m_mark->fileIndex) m_latest.reset(); // another file
    try {
        const CDatabaseLock lock;
        if (mark->size > 0) {
            // Who waits for the lock must not wait for those too who are in the file without it.
            return LookInto(
                CConnection(m_database, AccessToRead(m_database), /*busyMilliseconds=*/0));
        }
    } catch (const CSqliteError& error) {
        if (std::ranges::find(kPassing, error.Result()) != std::end(kPassing)) return {};
        throw FailureOf("cannot read", m_database, error);
    } catch (const CFailure& failure) {
        if (failure.Code() == ExitCode::Locked) return {};
        throw;
    }
    Remember(*mark, {}, 0);
    return {};
}

std::vector<ExportedRecord> CRecordFeed::LookInto(const CConnection& connection) {
    connection.Execute("BEGIN");
    const bool hasTable = HasTable(connection, TableOfRecords());
    // Nobody writes until the transaction ends: the mark is that of what is read.
    const std::optional<DatabaseMark> mark = ReadDatabaseMark(m_database);
    if (!mark) return {};
    std::vector<ExportedRecord> records;
    LatestRows latest;
    UINT32 highest = 0;
    if (hasTable) {
        records = ReadNew(connection);
        latest = ReadLatest(connection);
        highest = m_highest ? HighestOf(records) : HighestThere(connection);
    }
    Remember(*mark, std::move(latest), highest);
    return records;
}

void CRecordFeed::Remember(const DatabaseMark& mark, LatestRows latest, UINT32 highest) {
    m_mark = mark;
    m_latest = std::move(latest);
    m_highest = std::max(m_highest.value_or(0), highest);
}

std::vector<ExportedRecord> CRecordFeed::ReadNew(const CConnection& connection) const {
    if (!m_highest) return {};
    const bool byRow = m_latest && IsAnchorInPlace(connection, *m_latest);
    CQuery rows(connection, SelectRecords() + (byRow ? " WHERE rowid > ? ORDER BY rowid"
                                                     : " WHERE ActionLogId > ? "
                                                       "ORDER BY ActionLogId"));
    std::set<UINT32> known;
    if (byRow) {
        rows.Bind(HasAnchor(*m_latest) ? m_latest->begin()->first : 0);
        for (const auto& [row, id] : *m_latest)
            known.insert(id);
    } else {
        rows.Bind(INT64{*m_highest});
    }
    std::vector<ExportedRecord> records;
    while (rows.Step()) {
        if (known.insert(rows.Uint32(kIdColumn)).second) records.push_back(ReadRecord(rows));
    }
    return records;
}

} // namespace tsl
