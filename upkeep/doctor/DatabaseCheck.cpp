#include "upkeep/doctor/DatabaseCheck.h"

#include <sqlite3.h>

#include <algorithm>

#include "console/Text.h"
#include "files/Paths.h"
#include "store/Schema.h"
#include "upkeep/CheckedFiles.h"
#include "upkeep/StorePaths.h"
#include "upkeep/doctor/DatabaseHeader.h"
#include "upkeep/doctor/ExaminedDatabase.h"
#include "upkeep/doctor/SchemaCheck.h"
#include "upkeep/doctor/TableCheck.h"

namespace tsl {

namespace {

constexpr const wchar_t* kActionLogTables[] = {kActionLogTable, kContentDeleteTable};
constexpr const wchar_t* kReplayTables[] = {kReplayTable};

constexpr INT64 kPageSize = 2048;

// Tells one database; a step throws CSqliteError where the engine refuses it.
class CDatabaseTeller {
public:
    CDatabaseTeller(const std::wstring& path, const DatabaseKind& kind, KnownIds& ids,
                    Findings& findings)
        : m_path(path), m_kind(kind), m_ids(ids), m_findings(findings) {}

    void Tell(std::optional<CStoreLock>& lock);

private:
    bool TellFile(const FileLook& file);
    void TellJournal(bool wasInterrupted, bool isWriteAhead);
    bool TellIntegrity(const CConnection& connection, UINT64 size);
    void TellPages(const CConnection& connection);
    void TellRecords(const CConnection& connection);
    void TellMark(UINT32 mark, UINT32 highest, INT64 rows);
    void TellRefusal(const CSqliteError& error);

    std::string Subject(const char* part = "") const { return m_kind.name + std::string(part); }
    void Add(Finding finding) { m_findings.push_back(std::move(finding)); }

    const std::wstring& m_path;
    const DatabaseKind& m_kind;
    KnownIds& m_ids;
    Findings& m_findings;
};

void CDatabaseTeller::Tell(std::optional<CStoreLock>& lock) {
    const FileLook file = LookAtFile(m_path, kDatabaseHeaderSize);
    if (!TellFile(file)) return;
    for (const wchar_t* const suffix : kCompanionSuffixes) {
        if (!IsLink(m_path + suffix)) continue;
        m_ids.complete = false;
        Add(TellLink(Subject(" journal"), m_path + suffix));
        return;
    }
    try {
        const bool writeAhead = JournalModeOf(file) == JournalMode::WriteAhead;
        const CExaminedDatabase database(m_path, writeAhead);
        if (database.IsCopy()) lock.reset();
        TellJournal(database.WasInterrupted(), writeAhead);
        const CConnection& connection = database.Connection();
        if (!TellIntegrity(connection, file.size)) m_ids.complete = false;
        TellPages(connection);
        TellRecords(connection);
    } catch (const CSqliteError& error) {
        m_ids.complete = false;
        TellRefusal(error);
    }
}

// Whether there is a database to be opened.
bool CDatabaseTeller::TellFile(const FileLook& file) {
    if (auto barred = WhatBars(file, Subject(), m_path)) Add(std::move(*barred));
    if (file.presence == Presence::Missing) {
        Add(MadeButNotMoved(m_path).empty()
                ? Odd(Subject(), "not there: no host has recorded yet, or it was removed")
                : Damaged(Subject(),
                          "not there: the program that was to replace it was ended right between "
                          "the old file and the new one",
                          "tslhost restore again; after a recovery, end all hosts, give the latest "
                          "damaged file its old name again, and tslhost recover"));
        return false;
    }
    if (file.presence != Presence::There) {
        m_ids.complete = false;
        return false;
    }
    if (file.size == 0) {
        Add(Odd(Subject(), "empty: made, but nothing was ever written, or all of it was lost"));
        return false;
    }
    if (!IsDatabaseHeader(file)) {
        m_ids.complete = false;
        Add(Damaged(Subject(), "is no SQLite database", kRecover));
        return false;
    }
    if (JournalModeOf(file) == JournalMode::Unknown) {
        Add(Damaged(Subject(), "its header names a format that cannot be written", kRecover));
    }
    return true;
}

void CDatabaseTeller::TellJournal(bool wasInterrupted, bool isWriteAhead) {
    const std::string subject = Subject(" journal");
    if (isWriteAhead) {
        Add(Odd(subject, "another program has switched it to a write-ahead log; examined in a copy",
                "end all hosts; sqlite3 " + Subject() + " \"PRAGMA journal_mode=DELETE\""));
    } else if (wasInterrupted) {
        Add(Odd(subject, "left by a change that was interrupted; examined in a copy, in which it "
                         "was rolled back; the next host does that"));
    } else if (FileExists(JournalOf(m_path))) {
        Add(Odd(subject, "there, but not needed: a change is under way, or was ended in time"));
    }
}

bool CDatabaseTeller::TellIntegrity(const CConnection& connection, UINT64 size) {
    CQuery check(connection, "PRAGMA integrity_check(100)");
    std::string first;
    int messages = 0;
    for (; check.Step(); ++messages) {
        if (messages == 0) first = check.Text(0).value_or("");
    }
    if (messages == 1 && first == "ok") {
        Add(Fine(Subject(), "whole, " + std::to_string(size) + " bytes"));
        return true;
    }
    Add(Damaged(Subject(),
                "damaged in " + std::string(messages == 100 ? "at least " : "") +
                    std::to_string(messages) + (messages == 1 ? " place: " : " places: ") + first,
                kRecover));
    return false;
}

void CDatabaseTeller::TellPages(const CConnection& connection) {
    const INT64 size = connection.Number("PRAGMA page_size");
    const std::string text = std::to_string(connection.Number("PRAGMA page_count")) + " of " +
                             std::to_string(size) + " bytes, " +
                             std::to_string(connection.Number("PRAGMA freelist_count")) + " free";
    Add(size == kPageSize ? Fine(Subject(" pages"), text)
                          : Odd(Subject(" pages"), text + "; the component makes pages of " +
                                                       std::to_string(kPageSize)));
}

void CDatabaseTeller::TellRecords(const CConnection& connection) {
    const auto mark = static_cast<UINT32>(connection.Number("PRAGMA user_version"));
    m_ids.highestEver = std::max(m_ids.highestEver, mark);
    const FoundTables found =
        CheckSchema(connection, m_kind.tables, Subject(" schema"), m_findings);
    m_ids.ofOlderForm = m_ids.ofOlderForm || found.ofOlderForm;
    const std::string main = ToUtf8(TableName(kTablePrefix, m_kind.tables.front()));
    for (const std::string& table : found.usable) {
        const TableIds ids = CheckTable(connection, table, Subject(" rows"), m_findings);
        m_ids.highestInUse = std::max(m_ids.highestInUse, ids.highest);
        if (table == main) TellMark(mark, ids.highest, ids.rows);
    }
}

void CDatabaseTeller::TellMark(UINT32 mark, UINT32 highest, INT64 rows) {
    const std::string subject = Subject(" mark");
    const std::string number = std::to_string(mark);
    if (mark == 0) {
        if (rows > 0) m_ids.headersTell = false;
        Add(Fine(subject, "highest id not noted yet: the next write looks for it"));
    } else if (mark < highest) {
        Add(Damaged(subject,
                    "the header says that no id is above " + number + ", but " +
                        std::to_string(highest) + " is there: records can get there twice",
                    kRecover));
    } else {
        Add(Fine(subject, "highest id ever recorded is " + number));
    }
}

void CDatabaseTeller::TellRefusal(const CSqliteError& error) {
    const std::string words = error.what();
    switch (error.Result()) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        Add(Odd(Subject(), "in use by another program, cannot be examined: " + words,
                "tslhost doctor again"));
        break;
    case SQLITE_CANTOPEN:
    case SQLITE_PERM:
        Add(Barred(Subject(), "cannot be opened: " + words, "give Everyone full access to it"));
        break;
    default:
        Add(Damaged(Subject(), "cannot be read: " + words, kRecover));
    }
}

} // namespace

const DatabaseKind kActionLogDatabase{"ualog.db", kActionLogTables};
const DatabaseKind kReplayDatabase{"uareplay.db", kReplayTables};

void CheckDatabase(const std::wstring& path, const DatabaseKind& kind,
                   std::optional<CStoreLock>& lock, KnownIds& ids, Findings& findings) {
    CDatabaseTeller(path, kind, ids, findings).Tell(lock);
}

} // namespace tsl
