#include "upkeep/backup/Restore.h"

#include <algorithm>
#include <map>

#include "console/Failure.h"
#include "console/Text.h"
#include "files/AccessRights.h"
#include "files/Paths.h"
#include "upkeep/CheckedFiles.h"
#include "upkeep/StoreFiles.h"
#include "upkeep/StoreLock.h"
#include "upkeep/backup/Replacement.h"

namespace tsl {

namespace {

void Require(const FileSum& sum, const BackupFile& file) {
    if (sum == file.sum) return;
    throw CFailure(ExitCode::Damaged,
                   "the backup is damaged: " + file.name + " is not what its manifest says");
}

BackupManifest Verify(const std::wstring& backup, const Progress& progress) {
    if (!FolderExists(backup)) throw CFailure(ExitCode::Usage, ToUtf8(backup) + " is no folder");
    BackupManifest manifest = ReadManifest(backup);
    const StorePaths files = StoreIn(backup);
    for (const StoreFile& kind : kStoreFiles) {
        const BackupFile* const file = manifest.Find(kind.name);
        if (!file) continue;
        if (!FileExists(kind.In(files)))
            throw CFailure(ExitCode::Damaged,
                           "the backup is damaged: " + file->name + " is missing");
        Require(SumOfFile(kind.In(files), progress), *file);
    }
    return manifest;
}

// Makes a folder of the store ready, where it is none of somebody else's. Throws CFailure.
void Prepare(const std::wstring& folder) {
    PrepareFolder(folder);
    const OpenedFile opened = OpenCheckedFolder(folder);
    if (!opened.file) throw FailureToOpen("cannot write into", folder, opened);
}

// The files of a backup, copied to where they only have to be renamed. What is not taken from here
// is removed again.
class CStagedFiles {
public:
    CStagedFiles(const std::wstring& backup, const BackupManifest& manifest,
                 const StorePaths& store, const Progress& progress) {
        Prepare(FolderOf(store.actionLog));
        Prepare(FolderOf(store.userIds));
        const StorePaths files = StoreIn(backup);
        for (const StoreFile& kind : kStoreFiles) {
            const BackupFile* const file = manifest.Find(kind.name);
            if (!file) continue;
            const std::wstring& from = kind.In(files);
            const auto made = m_files.try_emplace(kind.name, kind.In(store)).first;
            const CHandle& copy = made->second.File();
            Require(CopyAndSum(OpenUnchanging(from), from, copy, progress), *file);
            GrantAccess(copy);
        }
    }

    // REQUIRES: it is in the backup.
    CNewFile& Of(const StoreFile& kind) { return m_files.at(kind.name); }

private:
    std::map<std::wstring, CNewFile> m_files;
};

std::optional<UINT32> CounterIn(const std::wstring& path) {
    UINT32 counter = 0;
    if (FAILED(ReadCounter(path, counter))) return std::nullopt;
    return counter;
}

// A store of the older form has its counter in a table, and is converted when no counter file is
// there.
bool IsOfOlderForm(const BackupManifest& manifest) {
    const std::string table = ToUtf8(TableName(kTablePrefix, kRecordIdTable));
    return std::ranges::any_of(manifest.rows,
                               [&](const auto& rows) { return rows.first == table; });
}

class CRestoring {
public:
    CRestoring(const StorePaths& store, CStagedFiles& staged, RestoreReport& report)
        : m_store(store), m_staged(staged), m_report(report),
          m_replacement(FolderOf(store.actionLog)) {}

    // The counter goes first: it is never below the ids of a database, whichever is there.
    void Run() {
        try {
            RestoreCounter();
            for (const StoreFile& kind : kStoreFiles) {
                if (kind.isDatabase) RestoreDatabase(kind);
            }
            RestoreUserIds();
            SetCounterAsideForOlderForm();
        } catch (const CFailure& failure) {
            if (m_replacement.TakeBack()) throw;
            throw CFailure(failure.Code(), std::string(failure.what()) +
                                               "; what was there lies in " +
                                               ToUtf8(m_replacement.KeptFolder()));
        }
        m_report.keptFolder = m_replacement.KeptFolder();
        m_replacement.Finish();
    }

private:
    bool IsInBackup(const StoreFile& kind) const { return m_report.manifest.Find(kind.name); }

    // Ids that were handed out since the backup are not handed out again.
    void RestoreCounter() {
        const std::optional<UINT32> own = CounterIn(m_store.counter);
        m_report.counter = own;
        m_report.counterOfStore = own.has_value();
        if (!IsInBackup(kCounterFile)) return;
        const UINT32 saved = m_report.manifest.counter.value_or(0);
        if (own && *own > saved) return;
        m_replacement.Replace(m_store.counter, m_staged.Of(kCounterFile),
                              CReplacement::Keep::Copied);
        m_report.counter = saved;
        m_report.counterOfStore = false;
    }

    // With a counter beside it such a store would never be converted.
    void SetCounterAsideForOlderForm() {
        if (IsInBackup(kCounterFile) || !IsOfOlderForm(m_report.manifest)) return;
        m_replacement.SetAside(m_store.counter);
        m_report.counter.reset();
        m_report.counterOfStore = false;
    }

    void RestoreDatabase(const StoreFile& kind) {
        const std::wstring& path = kind.In(m_store);
        // They belong to the old database; the engine would play them into the new one.
        for (const wchar_t* const suffix : kCompanionSuffixes)
            m_replacement.SetAside(path + suffix);
        m_replacement.SetAside(path + kLogIndexSuffix);
        if (IsInBackup(kind)) {
            m_replacement.Replace(path, m_staged.Of(kind), CReplacement::Keep::Moved);
        } else {
            m_replacement.SetAside(path);
        }
    }

    void RestoreUserIds() {
        m_report.userIdsOfStore = !IsInBackup(kUserIdFile);
        if (m_report.userIdsOfStore) return;
        m_replacement.Replace(m_store.userIds, m_staged.Of(kUserIdFile),
                              CReplacement::Keep::Copied);
    }

    const StorePaths& m_store;
    CStagedFiles& m_staged;
    RestoreReport& m_report;
    CReplacement m_replacement;
};

} // namespace

RestoreReport RestoreStore(const std::wstring& backup, const StorePaths& store,
                           const Progress& progress) {
    RestoreReport report;
    report.manifest = Verify(backup, progress);
    CStagedFiles staged(backup, report.manifest, store, progress);
    const CStoreLocks locks;
    const CUserIdListLock userIdListLock;
    CRestoring(store, staged, report).Run();
    return report;
}

} // namespace tsl
