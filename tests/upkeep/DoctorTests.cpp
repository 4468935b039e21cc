// What an examination says of each part of a store, whole and not, and that it changes nothing.
#include <windows.h>

#include <sddl.h>

#include "base/NamedMutex.h"
#include "console/Failure.h"
#include "files/UserIdList.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/ImportHook.h"
#include "tests/support/LockWaits.h"
#include "tests/support/MutexHolder.h"
#include "tests/support/StoreChecks.h"
#include "tests/upkeep/DoctorFixture.h"
#include "upkeep/doctor/LockCheck.h"

namespace tsl::test {

namespace fs = std::filesystem;

namespace {

using Doctor = DoctorTest;

HANDLE WINAPI DeniedOpening(DWORD, BOOL, const wchar_t*) {
    SetLastError(ERROR_ACCESS_DENIED);
    return nullptr;
}

HANDLE WINAPI DeniedMutex(SECURITY_ATTRIBUTES*, BOOL, const wchar_t*) {
    SetLastError(ERROR_ACCESS_DENIED);
    return nullptr;
}

TEST_F(Doctor, SaysThatAWholeStoreIsWhole) {
    const Findings findings = ExamineUnchanged();
    for (const Finding& finding : findings) {
        // Tests do not register the component.
        if (finding.subject != "registration") {
            EXPECT_OK(finding);
        }
    }
    EXPECT_FALSE(HasDamage(findings));
    EXPECT_EQ("next id is 601", WorstOf(findings, "actionLog.txt").text);
    EXPECT_EQ("3 users, highest id 3", WorstOf(findings, "UserIdList.dat").text);
    EXPECT_EQ("exact, 2 of 2 tables", WorstOf(findings, "ualog.db schema").text);
    EXPECT_EQ("TslIf_DbActionLog: 600 rows, ids 1 to 600", WorstOf(findings, "ualog.db rows").text);
    EXPECT_EQ("highest id ever recorded is 600", WorstOf(findings, "uareplay.db mark").text);
}

TEST_F(Doctor, StoreThatTheComponentMadeIsWhole) {
    for (const auto& file : {Store().actionLog, Store().replayLog, Store().counter})
        fs::remove(file);
    ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
    for (const wchar_t* const name : {L"playItem", L"deleteItem"})
        ASSERT_EQ(S_OK, Plugin().Notify(0x0200000103000000, Action(NextId(), name)));
    const Findings findings = ExamineUnchanged();
    for (const char* const subject : {"ualog.db", "uareplay.db", "actionLog.txt"})
        EXPECT_OK(WorstOf(findings, subject));
}

TEST_F(Doctor, StoreThatWasNeverUsedIsNoDamageAndIsNotMade) {
    fs::remove_all(StoreFolder().parent_path());
    const fs::path company = StoreFolder().parent_path().parent_path();
    const Findings findings = Examine(Store());
    EXPECT_FALSE(HasDamage(findings));
    EXPECT_TRUE(fs::is_empty(company));
    for (const char* const subject : {"ualog.db", "uareplay.db", "actionLog.txt", "UserIdList.dat",
                                      "store folder", "user id folder"})
        EXPECT_WARNING(WorstOf(findings, subject), "not there");
}

TEST_F(Doctor, StoreOfTheOlderFormIsNoDamage) {
    fs::remove(Store().counter);
    FileDatabase(Store().actionLog)
        .Query("CREATE TABLE TslIf_ActionRecordId (CurrentRecordId INTEGER,ActionLogId INTEGER)");
    const Findings findings = ExamineUnchanged();
    EXPECT_WARNING(WorstOf(findings, "ualog.db"), "of the older form");
    EXPECT_WARNING(WorstOf(findings, "actionLog.txt"), "of the older form");
}

TEST_F(Doctor, FolderInThePlaceOfEachFileIsDamage) {
    for (const auto& [path, subject] :
         {std::pair(Store().actionLog, "ualog.db"), std::pair(Store().replayLog, "uareplay.db"),
          std::pair(Store().counter, "actionLog.txt"),
          std::pair(Store().userIds, "UserIdList.dat")}) {
        fs::remove(path);
        fs::create_directory(path);
        EXPECT_DAMAGE(Worst(subject), "a folder lies in its place");
    }
}

TEST_F(Doctor, FileThatCannotBeWrittenIsAnError) {
    for (const auto& [path, subject] :
         {std::pair(Store().actionLog, "ualog.db"), std::pair(Store().counter, "actionLog.txt"),
          std::pair(Store().userIds, "UserIdList.dat")}) {
        SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);
        const Finding finding = Worst(subject);
        SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
        ExpectFinding(finding, Level::Error, /*damage=*/false, "cannot be written by this user");
    }
}

// Takes the entry for Everyone away.
void LeaveToTheOwner(const fs::path& folder) {
    std::wstring sid;
    ASSERT_EQ(S_OK, CurrentUserSid(sid));
    const std::wstring text = L"D:P(A;OICI;FA;;;" + sid + L")";
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    ASSERT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(text.c_str(), SDDL_REVISION_1,
                                                                     &descriptor, nullptr));
    EXPECT_TRUE(SetFileSecurityW(folder.c_str(), DACL_SECURITY_INFORMATION, descriptor));
    LocalFree(descriptor);
}

TEST_F(Doctor, FolderThatIsNotOpenToEveryoneIsAnErrorAndStaysSo) {
    ASSERT_NO_FATAL_FAILURE(LeaveToTheOwner(StoreFolder()));
    for (int attempt = 0; attempt < 2; ++attempt) {
        const Finding finding = Worst("store folder");
        ExpectFinding(finding, Level::Error, /*damage=*/false, "Everyone is not named");
        EXPECT_TRUE(finding.remedy.starts_with("icacls ")) << finding.remedy;
    }
    EXPECT_OK(Worst("user id folder"));
    ASSERT_TRUE(GrantFolderAccess(StoreFolder().wstring()));
    EXPECT_OK(Worst("store folder"));
}

TEST_F(Doctor, FileInThePlaceOfAFolderIsDamage) {
    fs::remove_all(StoreFolder());
    WriteBytes(StoreFolder(), {1});
    EXPECT_DAMAGE(Worst("store folder"), "a file lies in the place of ");
}

TEST_F(Doctor, HeldLockIsAWarningAndTheDatabasesAreExaminedAllTheSame) {
    const MutexHolder host(kSqliteAccessLock);
    const LockWaits waits(HeldLocks::AreGivenUpAtOnce);
    const Findings findings = ExamineUnchanged();
    EXPECT_THAT(waits.TimeOuts(kSqliteAccessLock), testing::ElementsAre(3000))
        << "once in vain is enough";
    EXPECT_WARNING(WorstOf(findings, "SQLiteAccess lock"), "a host is at work");
    EXPECT_OK(WorstOf(findings, "LogId lock"));
    EXPECT_OK(WorstOf(findings, "ualog.db"));
    EXPECT_FALSE(HasDamage(findings));
}

TEST_F(Doctor, AbandonedLockIsGivenBack) {
    const CHandle kept(CreateMutexW(nullptr, FALSE, kLogIdLock));
    MutexHolder(kLogIdLock).Kill();
    EXPECT_WARNING(Worst("LogId lock"), "abandoned");
    EXPECT_OK(Worst("LogId lock"));
}

TEST_F(Doctor, EachLockIsWaitedForNoLongerThanItMay) {
    for (const wchar_t* const name : {kSqliteAccessLock, kLogIdLock, kLoginInfoMutexName}) {
        const MutexHolder host(name);
        const CStoreLock lock(name, /*timeoutMilliseconds=*/200);
        EXPECT_WARNING(TellLock(lock, "lock"), "held by another process for the whole wait of ");
        EXPECT_GE(lock.WaitedMilliseconds(), 150u);
        EXPECT_LT(lock.WaitedMilliseconds(), 2000u);
    }
}

// A mutex whose maker has kept all rights to himself but that to wait for it. The system gives them
// to the user of the tests whatever the mutex says, so the call is made to fail.
TEST_F(Doctor, LockThatWasMadeWithRestrictedRightsIsToldAndTakenAllTheSame) {
    const CHandle mutex = OpenSharedMutex(kSqliteAccessLock);
    ASSERT_TRUE(mutex);
    const ImportHook hook("CreateMutexW", DeniedMutex);
    EXPECT_WARNING(Worst("SQLiteAccess lock"), "made with restricted rights");
    EXPECT_OK(Worst("ualog.db"));
    {
        const CDatabaseLock lock;
        EXPECT_FALSE(MutexIsFree(kSqliteAccessLock));
    }
    EXPECT_TRUE(MutexIsFree(kSqliteAccessLock)) << "not given back";
}

TEST_F(Doctor, LockThatCannotBeOpenedAtAllNamesNoOtherProcess) {
    const ImportHook making("CreateMutexW", DeniedMutex);
    const ImportHook opening("OpenMutexW", DeniedOpening);
    try {
        const CDatabaseLock lock;
        ADD_FAILURE() << "there is none";
    } catch (const CFailure& failure) {
        EXPECT_EQ(ExitCode::Denied, failure.Code());
        EXPECT_EQ(std::string::npos, std::string(failure.what()).find("another process"));
    }
}

TEST_F(Doctor, LocksAreFreeAfterwards) {
    Examine(Store());
    for (const wchar_t* const name : {kSqliteAccessLock, kLogIdLock, kLoginInfoMutexName})
        EXPECT_TRUE(MutexIsFree(name));
}

} // namespace

} // namespace tsl::test
