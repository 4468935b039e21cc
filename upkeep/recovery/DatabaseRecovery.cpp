#include "upkeep/recovery/DatabaseRecovery.h"

#include <sqlite3.h>

#include <algorithm>
#include <filesystem>

#include "files/AccessRights.h"
#include "files/Paths.h"
#include "upkeep/CheckedFiles.h"
#include "upkeep/WholeDatabase.h"
#include "upkeep/recovery/DatabaseCondition.h"
#include "upkeep/recovery/FileReplacement.h"
#include "upkeep/recovery/OlderLastIds.h"
#include "upkeep/recovery/PageLayouts.h"
#include "upkeep/recovery/SourceFile.h"
#include "upkeep/recovery/SqlRows.h"

namespace tsl {

namespace {

namespace fs = std::filesystem;

// The most that the rows of a file can hold: what says more counts bytes twice. Texts of the other
// encodings may become half as long again.
UINT64 MostBytesOfRows(const CPageFile& file) {
    constexpr UINT32 kUtf8 = 1;
    return file.Header().encoding == kUtf8 ? file.Size() : file.Size() + file.Size() / 2;
}

class CRecovery {
public:
    CRecovery(const std::wstring& path, const DatabaseTables& tables,
              const RecoveryContext& context, DatabaseReport& report)
        : m_path(path), m_tables(tables), m_context(context), m_report(report) {}

    // Saves the rows of the source, if there is any, into the file.
    void Save(const CSourceFile* source, const std::wstring& made) {
        std::optional<CPageFile> opened;
        if (source) opened.emplace(source->Path());
        CFreshDatabase fresh(made, m_tables, opened ? MostBytesOfRows(*opened) : 0);
        UINT32 handedOut = m_context.handedOut;
        PageRowsResult pages;
        if (opened) {
            CPageFile& file = *opened;
            ChooseLayout(file);
            handedOut = std::max(handedOut, file.Header().mark);
            ReadBySql(*source, file, fresh);
            pages = ReadRowsOfPages(file, m_tables, fresh,
                                    [&](UINT64 count) { Show(std::to_string(count) + " pages"); });
            if (!m_context.hasCounter) m_report.isOlderForm = CopyLastIds(file, m_tables, fresh);
        }
        Show("writing the rows");
        fresh.Write(handedOut);
        Fill(fresh, pages);
    }

private:
    void ReadBySql(const CSourceFile& source, const CPageFile& file, CFreshDatabase& fresh) {
        const FileHeader& header = file.Header();
        if (!header.isDatabase || !(header.isRollback || header.isWal)) return;
        std::optional<CConnection> connection;
        try {
            connection.emplace(source.Path(), Access::ReadOnly);
            // A page whose cells do not lie in it is better read cell by cell.
            connection->Execute("PRAGMA cell_size_check = ON");
        } catch (const CSqliteError& error) {
            if (error.Result() == SQLITE_BUSY || error.Result() == SQLITE_LOCKED) throw;
            return;
        }
        UINT64 rows = 0;
        UINT64 bytes = 0;
        const UINT64 mostBytes = MostBytesOfRows(file);
        const auto addTo = [&](CFoundTable& table) {
            return [&](const StoredRow& row) {
                bytes += LeastStoredSize(row);
                if (bytes > mostBytes) return false;
                table.Add(row, RowSource::Sql);
                Show(std::to_string(++rows) + " rows");
                return true;
            };
        };
        ReadRowsBySql(*connection, m_tables.main, addTo(fresh.Main()));
        if (fresh.Kept()) ReadRowsBySql(*connection, m_tables.kept, addTo(*fresh.Kept()));
    }

    void Fill(CFreshDatabase& fresh, const PageRowsResult& pages) {
        m_report.tables.push_back({m_tables.main, fresh.SavedInMain(), pages.main});
        if (fresh.Kept())
            m_report.tables.push_back({m_tables.kept, fresh.SavedInKept(), pages.kept});
        m_report.unread = pages.orphans;
        m_report.orphanPages = pages.orphanPages;
        m_report.skippedPages = pages.skippedPages;
        m_report.highestId = fresh.HighestId();
    }

    void Show(const std::string& what) const {
        if (m_context.options.onProgress)
            m_context.options.onProgress(fs::path(m_path).filename().string() + ": " + what);
    }

    const std::wstring& m_path;
    const DatabaseTables& m_tables;
    const RecoveryContext& m_context;
    DatabaseReport& m_report;
};

void RequireWhole(const std::wstring& made, const DatabaseTables& tables) {
    const std::string damage = ExamineDatabase(made, tables).damage;
    if (!damage.empty())
        throw CFailure(ExitCode::Denied, "the recovered database is not whole: " + damage);
}

SYSTEMTIME UtcNow() {
    SYSTEMTIME now{};
    GetSystemTime(&now);
    return now;
}

DatabaseReport Recover(const std::wstring& path, const DatabaseTables& tables,
                       const RecoveryContext& context) {
    DatabaseReport report;
    report.path = path;
    const bool isFolder = FolderExists(path);
    const OpenedFile there = isFolder ? OpenCheckedFolder(path)
                                      : OpenChecked(path, /*access=*/0, kShareAll, OPEN_EXISTING);
    const bool isBehindALink = IsMissing(there) && IsBehindALink(path);
    if (there.isRefused || isBehindALink)
        throw FailureToOpen("cannot recover", path, {{}, E_ACCESSDENIED, /*isRefused=*/true});
    if (IsMissing(there)) return report;

    std::optional<CSourceFile> source;
    if (isFolder) {
        report.damage = "a folder lies in its place";
    } else {
        source.emplace(path);
        const DatabaseCondition condition = ExamineDatabase(source->Path(), tables);
        report.damage = condition.damage;
        report.highestId = condition.highestId;
        report.isOlderForm = condition.isOlderForm && !context.hasCounter;
    }
    if (report.damage.empty() && !context.options.force) {
        report.outcome = Outcome::Whole;
        return report;
    }
    CRecovery recovery(path, tables, context, report);
    report.outcome = Outcome::Recovered;
    if (context.options.dryRun) {
        const CTemporaryDatabase made;
        recovery.Save(source ? &*source : nullptr, made.Path());
        RequireWhole(made.Path(), tables);
        return report;
    }
    CNewFile made(path);
    recovery.Save(source ? &*source : nullptr, made.Path());
    source.reset();
    RequireWhole(made.Path(), tables);
    GrantAccess(made.File());
    report.keptAs = NameForKeeping(path, UtcNow());
    ReplaceFileKeeping(path, made, report.keptAs);
    return report;
}

} // namespace

DatabaseReport RecoverDatabase(const std::wstring& path, const DatabaseTables& tables,
                               const RecoveryContext& context) {
    try {
        return Recover(path, tables, context);
    } catch (const CSqliteError& error) {
        throw FailureOf("cannot recover", path, error);
    }
}

} // namespace tsl
