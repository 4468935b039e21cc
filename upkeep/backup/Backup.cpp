#include "upkeep/backup/Backup.h"

#include <sqlite3.h>

#include <map>
#include <memory>
#include <vector>

#include "base/Hresult.h"
#include "console/Failure.h"
#include "console/IsoTime.h"
#include "console/Text.h"
#include "upkeep/CheckedFiles.h"
#include "upkeep/Connection.h"
#include "upkeep/StoreFiles.h"
#include "upkeep/StoreLock.h"
#include "upkeep/WholeDatabase.h"

namespace tsl {

namespace {

namespace fs = std::filesystem;

constexpr char kCannotBackUp[] = "cannot back up";

// The folder of a backup that is being made, and the files in it, held from the first to the last;
// goes with what was put into it unless it is kept.
class CNewBackup {
public:
    // REQUIRES: the folder's path does not end with a backslash.
    explicit CNewBackup(const std::wstring& folder) : m_folder(folder) {
        std::error_code error;
        const bool there = IsThere(folder);
        if (there && !(fs::is_directory(m_folder, error) && fs::is_empty(m_folder, error)))
            throw CFailure(ExitCode::Usage, ToUtf8(folder) + " is no empty folder");
        fs::create_directories(m_folder.parent_path(), error);
        m_made = !there && CreateDirectoryW(folder.c_str(), /*securityAttributes=*/nullptr);
        const HRESULT result = HresultFromLastError();
        // Nobody can put another in its place while it is held.
        m_held = CHandle(CreateFileW(folder.c_str(), FILE_LIST_DIRECTORY,
                                     FILE_SHARE_READ | FILE_SHARE_WRITE,
                                     /*securityAttributes=*/nullptr, OPEN_EXISTING,
                                     FILE_FLAG_BACKUP_SEMANTICS, /*templateFile=*/nullptr));
        if (!m_held || !(there || m_made)) throw CFailure("cannot make", folder, result);
    }
    CNewBackup(const CNewBackup&) = delete;
    CNewBackup& operator=(const CNewBackup&) = delete;
    ~CNewBackup() {
        if (m_kept) return;
        for (const auto& [name, file] : m_files)
            DiscardOpened(file);
        m_files.clear();
        m_held = CHandle();
        if (m_made) RemoveDirectoryW(m_folder.c_str());
    }

    // Makes a file, and nothing where one has been put meanwhile. Throws CFailure.
    const CHandle& Make(const StoreFile& kind) {
        const std::wstring path = (m_folder / kind.name).wstring();
        OpenedFile opened = OpenChecked(path, GENERIC_READ | GENERIC_WRITE, kShareAll, CREATE_NEW);
        if (!opened.file) throw FailureToOpen("cannot make", path, opened);
        return m_files[kind.name] = std::move(opened.file);
    }

    // Null for one that was not made.
    const CHandle* Find(const StoreFile& kind) const {
        const auto found = m_files.find(kind.name);
        return found == m_files.end() ? nullptr : &found->second;
    }

    void Keep() noexcept { m_kept = true; }

private:
    fs::path m_folder;
    CHandle m_held;
    std::map<std::wstring, CHandle> m_files;
    bool m_made = false;
    bool m_kept = false;
};

// A database as it is when this is made, whatever comes into it later. One that was left with a
// journal is first put back to before the interrupted change, as each host does.
class CSnapshot {
public:
    explicit CSnapshot(const std::wstring& path) : m_path(path), m_connection(Open(path)) {}

    void CopyTo(const std::wstring& path, const Progress& progress) const {
        const std::unique_ptr<CConnection> copy = Make(path);
        try {
            CopyPages(*copy, progress);
        } catch (const CSqliteError& error) {
            throw FailureOf(kCannotBackUp, m_path, error);
        }
    }

private:
    static std::unique_ptr<CConnection> Open(const std::wstring& path) {
        try {
            auto connection = std::make_unique<CConnection>(path, Access::ReadWrite);
            // Of effect in a file that is still empty. The query begins the transaction.
            connection->Execute("PRAGMA page_size = 2048; BEGIN; SELECT 1 FROM sqlite_master");
            return connection;
        } catch (const CSqliteError& error) {
            throw FailureOf(kCannotBackUp, path, error);
        }
    }

    static std::unique_ptr<CConnection> Make(const std::wstring& path) {
        try {
            auto copy = std::make_unique<CConnection>(path, Access::ReadWrite);
            // It is brought to the disk when the locks are given back.
            copy->Execute("PRAGMA synchronous = OFF; PRAGMA journal_mode = OFF");
            return copy;
        } catch (const CSqliteError& error) {
            throw FailureOf("cannot make", path, error);
        }
    }

    void CopyPages(const CConnection& copy, const Progress& progress) const {
        sqlite3_backup* const backup =
            sqlite3_backup_init(copy.Get(), "main", m_connection->Get(), "main");
        if (!backup) throw CSqliteError(SQLITE_MISUSE, sqlite3_errmsg(copy.Get()));
        const auto pageSize = static_cast<UINT64>(m_connection->Number("PRAGMA page_size"));
        const std::string what = "copying " + ToUtf8(NameOf(m_path));
        int step = SQLITE_OK;
        while (step == SQLITE_OK) {
            constexpr int kPagesAtOnce = 1000;
            step = sqlite3_backup_step(backup, kPagesAtOnce);
            const auto all = static_cast<UINT64>(sqlite3_backup_pagecount(backup));
            const auto left = static_cast<UINT64>(sqlite3_backup_remaining(backup));
            progress(what, (all - left) * pageSize, all * pageSize);
        }
        sqlite3_backup_finish(backup);
        if (step != SQLITE_DONE) throw CSqliteError(step, sqlite3_errmsg(copy.Get()));
    }

    std::wstring m_path;
    std::unique_ptr<CConnection> m_connection;
};

// Copies a text file, where there is one.
void CopyText(const StoreFile& kind, const std::wstring& path, CNewBackup& backup,
              const Progress& progress) {
    OpenedFile opened = OpenChecked(path, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING);
    if (IsMissing(opened)) return;
    if (!opened.file) throw FailureToOpen(kCannotBackUp, path, opened);
    CopyAndSum(opened.file, path, backup.Make(kind), progress);
}

// Both databases are fixed before the counter is read: no id of theirs is above it, even where a
// host has given up waiting for the locks.
void CopyUnderLocks(const StorePaths& store, const StorePaths& copies, CNewBackup& backup,
                    BackupManifest& manifest, const Progress& progress) {
    const CStoreLocks locks;
    const CUserIdListLock userIdListLock;
    std::vector<std::pair<CSnapshot, const StoreFile*>> snapshots;
    for (const StoreFile& file : kStoreFiles) {
        const std::wstring& path = file.In(store);
        if (!file.isDatabase) {
            CopyText(file, path, backup, progress);
        } else if (IsThere(path)) {
            snapshots.emplace_back(CSnapshot(path), &file);
        }
    }
    UINT32 counter = 0;
    if (SUCCEEDED(ReadCounter(store.counter, counter))) manifest.counter = counter;
    for (const auto& [snapshot, file] : snapshots) {
        backup.Make(*file);
        snapshot.CopyTo(file->In(copies), progress);
    }
}

// The rows of each table that a component has made.
void CountRows(const CConnection& connection, BackupManifest& manifest) {
    for (const wchar_t* const table :
         {kActionLogTable, kContentDeleteTable, kReplayTable, kRecordIdTable}) {
        const std::string name = ToUtf8(TableName(kTablePrefix, table));
        CQuery known(connection, "SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = ?");
        if (known.Bind(name).Step())
            manifest.rows.emplace_back(name, connection.Number("SELECT COUNT(*) FROM " + name));
    }
}

// path is where the database comes from, for the messages.
void CheckCopy(const std::wstring& copy, const std::wstring& path, BackupManifest& manifest) {
    try {
        const CConnection connection(copy, Access::ReadWrite);
        RequireWhole(connection, path);
        CountRows(connection, manifest);
        // A copy with a write-ahead log would not be whole by itself.
        connection.Execute("PRAGMA journal_mode = DELETE");
    } catch (const CSqliteError& error) {
        throw FailureOf(kCannotBackUp, path, error);
    }
}

void Flush(const CHandle& file, const std::wstring& path) {
    if (!FlushFileBuffers(file.Get())) throw CFailure("cannot write", path, HresultFromLastError());
}

std::string Now() {
    SYSTEMTIME now{};
    GetSystemTime(&now);
    now.wMilliseconds = 0;
    DATE time = 0;
    SystemTimeToVariantTime(&now, &time);
    return FormatIsoTime(time);
}

} // namespace

BackupManifest BackUpStore(const StorePaths& store, const std::wstring& folder,
                           const std::string& maker, const Progress& progress) {
    const StorePaths copies = StoreIn(folder);
    CNewBackup backup(FolderOf(copies.actionLog));
    BackupManifest manifest;
    manifest.time = Now();
    manifest.maker = maker;
    CopyUnderLocks(store, copies, backup, manifest, progress);
    for (const StoreFile& file : kStoreFiles) {
        const std::wstring& copy = file.In(copies);
        const std::string name = ToUtf8(file.name);
        const CHandle* const made = backup.Find(file);
        if (!made) {
            manifest.absent.push_back(name);
            continue;
        }
        if (file.isDatabase) CheckCopy(copy, file.In(store), manifest);
        Flush(*made, copy);
        manifest.files.push_back({name, SumOf(*made, copy, progress)});
    }
    if (manifest.files.empty())
        throw CFailure(ExitCode::NothingFound, "there is no store to back up");
    WriteManifest(folder, manifest);
    backup.Keep();
    return manifest;
}

} // namespace tsl
