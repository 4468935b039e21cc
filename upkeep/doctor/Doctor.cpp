#include "upkeep/doctor/Doctor.h"

#include <algorithm>
#include <optional>

#include "base/Hresult.h"
#include "console/Failure.h"
#include "console/Text.h"
#include "files/UserIdList.h"
#include "store/StoreLocks.h"
#include "upkeep/StoreFiles.h"
#include "upkeep/doctor/CounterCheck.h"
#include "upkeep/doctor/DatabaseCheck.h"
#include "upkeep/doctor/FileLook.h"
#include "upkeep/doctor/FolderCheck.h"
#include "upkeep/doctor/InstallationCheck.h"
#include "upkeep/doctor/LockCheck.h"
#include "upkeep/doctor/UserListCheck.h"

namespace tsl {

namespace {

// What a check throws becomes a finding, and whether it threw is told.
template <class Check>
bool Guard(const std::string& subject, Findings& findings, Check check) {
    std::string reason;
    try {
        check();
        return true;
    } catch (const CHresultError& error) {
        reason = DescribeResult(error.Result());
    } catch (const std::exception& error) {
        reason = error.what();
    } catch (...) {
        reason = "for an unknown reason";
    }
    findings.push_back(Barred(subject, "cannot be examined: " + reason));
    return false;
}

void CheckDatabases(const StorePaths& store, KnownIds& ids, Findings& findings) {
    std::optional<CStoreLock> lock;
    lock.emplace(kSqliteAccessMutexName, kSqliteAccessTimeoutMilliseconds);
    findings.push_back(TellLock(*lock, "SQLiteAccess lock"));
    // Who has waited in vain need not wait again.
    const DWORD secondTimeout = lock->IsHeld() ? kSqliteAccessTimeoutMilliseconds : 0;
    const auto check = [&](const std::wstring& path, const DatabaseKind& kind) {
        const bool examined = Guard(kind.name, findings, [&] {
            if (!lock) lock.emplace(kSqliteAccessMutexName, secondTimeout);
            CheckDatabase(path, kind, lock, ids, findings);
        });
        if (!examined) ids.complete = false;
    };
    check(store.actionLog, kActionLogDatabase);
    check(store.replayLog, kReplayDatabase);
}

// Nobody reads what was not moved to its place; it only takes room.
void TellRemains(const StorePaths& store, Findings& findings) {
    for (const StoreFile& file : kStoreFiles) {
        for (const std::wstring& name : MadeButNotMoved(file.In(store))) {
            findings.push_back(Odd(ToUtf8(file.name),
                                   ToUtf8(name) + " lies beside it: made by a program that is at "
                                                  "work, or was ended before it was done",
                                   "end all hosts, and delete it"));
        }
    }
}

} // namespace

Findings Examine(const StorePaths& store, const std::wstring& pluginPath) {
    Findings findings;
    Guard("installation", findings, [&] { CheckInstallation(pluginPath, findings); });
    Guard("store folder", findings,
          [&] { CheckFolder(FolderOf(store.counter), "store folder", findings); });
    Guard("user id folder", findings,
          [&] { CheckFolder(FolderOf(store.userIds), "user id folder", findings); });
    KnownIds ids;
    Guard("databases", findings, [&] { CheckDatabases(store, ids, findings); });
    // After the tables: a host may take an id meanwhile, but none is in use before it is taken.
    Guard("actionLog.txt", findings, [&] {
        const CStoreLock lock(kLogIdMutexName, kLogIdTimeoutMilliseconds);
        findings.push_back(TellLock(lock, "LogId lock"));
        CheckCounter(store.counter, ids, findings);
    });
    Guard("UserIdList.dat", findings, [&] {
        const CStoreLock lock(kLoginInfoMutexName, kUserIdListTimeoutMilliseconds);
        findings.push_back(TellLock(lock, "LoginInfo lock"));
        CheckUserList(store.userIds, findings);
    });
    Guard("store folder", findings, [&] { TellRemains(store, findings); });
    for (Finding& finding : findings)
        finding.text = RepairUtf8(finding.text);
    return findings;
}

bool HasDamage(const Findings& findings) noexcept {
    return std::ranges::any_of(findings, &Finding::damage);
}

} // namespace tsl
