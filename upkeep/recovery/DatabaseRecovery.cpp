#include "upkeep/recovery/DatabaseRecovery.h"

#include <algorithm>
#include <filesystem>

#include "console/Failure.h"
#include "files/AccessRights.h"
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

// The database while it is made; deleted when it goes, unless it was moved into place.
class CMadeFile {
public:
    explicit CMadeFile(std::wstring path) : m_path(std::move(path)) { Remove(); }
    CMadeFile(const CMadeFile&) = delete;
    CMadeFile& operator=(const CMadeFile&) = delete;
    ~CMadeFile() { Remove(); }

    const std::wstring& Path() const noexcept { return m_path; }

private:
    void Remove() const {
        DeleteFileW(m_path.c_str());
        DeleteFileW(JournalOf(m_path).c_str());
    }

    std::wstring m_path;
};

class CRecovery {
public:
    CRecovery(const std::wstring& path, const DatabaseTables& tables,
              const RecoveryContext& context, DatabaseReport& report)
        : m_path(path), m_tables(tables), m_context(context), m_report(report) {}

    // Saves the rows of the source, if there is any, into the file.
    void Save(const CSourceFile* source, const std::wstring& made) {
        CFreshDatabase fresh(made, m_tables);
        UINT32 handedOut = m_context.handedOut;
        PageRowsResult pages;
        if (source) {
            CPageFile file(source->Path());
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
        } catch (const CSqliteError&) {
            return;
        }
        UINT64 rows = 0;
        const auto addTo = [&](CFoundTable& table) {
            return [&](const StoredRow& row) {
                table.Add(row, RowSource::Sql);
                Show(std::to_string(++rows) + " rows");
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
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (!fs::exists(status)) return report;

    std::optional<CSourceFile> source;
    if (fs::is_directory(status)) {
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
    const CMadeFile made(context.options.dryRun ? TemporaryPath(L"recovered.db")
                                                : NameWhileMade(path));
    CRecovery(path, tables, context, report).Save(source ? &*source : nullptr, made.Path());
    source.reset();
    RequireWhole(made.Path(), tables);
    report.outcome = Outcome::Recovered;
    if (context.options.dryRun) return report;
    GrantFileAccess(made.Path());
    report.keptAs = NameForKeeping(path, UtcNow());
    ReplaceFileKeeping(path, made.Path(), report.keptAs);
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
