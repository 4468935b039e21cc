// That the faulty file system is under the component, and that what it breaks is seen.
#include "base/Handle.h"
#include "component/host/CommandCodes.h"
#include "tests/io_faults/IoFaultFixture.h"
#include "tests/support/Failures.h"
#include "tests/support/StoreChecks.h"

#include <tlhelp32.h>

#include <set>

namespace tsl::test {

namespace {

int CountModules(const std::wstring& name) {
    const CHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPMODULE, /*process: this*/ 0));
    MODULEENTRY32W module{};
    module.dwSize = sizeof module;
    int count = 0;
    for (BOOL found = Module32FirstW(snapshot.Get(), &module); found;
         found = Module32NextW(snapshot.Get(), &module)) {
        if (_wcsicmp(module.szModule, name.c_str()) == 0) ++count;
    }
    return count;
}

} // namespace

class FaultRig : public IoFaultTest {};

TEST_F(FaultRig, ComponentLoadsTheEngineThatHasTheFileSystem) {
    EXPECT_EQ(1, CountModules(L"SQLite3.dll"));
    EXPECT_NE(nullptr, GetModuleHandleW(EnginePath().c_str()));
    const int opened = Disk().filesOpened;
    EXPECT_EQ(S_OK, Record(Plugin(), kNewId, L"playItem", kOtherUser));
    EXPECT_EQ(opened + 4, Disk().filesOpened) << "two databases and their journals";
}

TEST_F(FaultRig, FaultIsReported) {
    Schedule().FailAt(kFaultKinds[0], 1, /*fromThenOn=*/true);
    EXPECT_EQ(kEngineIoError, Record(Plugin(), kNewId, L"playItem", kOtherUser));
    Schedule().FailAt({"full disk", IoCall::Write, SQLITE_FULL}, 1, /*fromThenOn=*/true);
    EXPECT_EQ(kEngineFull, Record(Plugin(), kNewId, L"playItem", kOtherUser));
}

// The power goes right after a record was acknowledged. What is written but not synced is lost.
TEST_F(FaultRig, PowerCutShowsWhetherTheDiskWasSynced) {
    for (const bool lie : {false, true}) {
        SCOPED_TRACE(lie);
        Disk().liesAboutSyncs = lie;
        ASSERT_NO_FATAL_FAILURE(Begin());
        const DiskImage folder = ReadStoreFolder();
        EXPECT_EQ(folder, Disk().log.AfterCut(folder, Survival::All, /*seed=*/0));
        WriteStoreFolder(Disk().log.AfterCut(folder, Survival::None, /*seed=*/0));
        EXPECT_EQ(!lie, IsHandedOut(Plugin(), kLatestId));
    }
}

// What is not synced may survive in part: then the file is damaged.
TEST_F(FaultRig, PowerCutOnADiskThatLiesDamagesFiles) {
    Disk().liesAboutSyncs = true;
    ASSERT_NO_FATAL_FAILURE(Begin());
    ASSERT_EQ(S_OK, UserReset(Plugin(), kNewId).run());
    const DiskImage folder = ReadStoreFolder();
    int damaged = 0;
    for (unsigned seed = 0; seed < 20; ++seed) {
        WriteStoreFolder(Disk().log.AfterCut(folder, Survival::SomeSectors, seed));
        if (!IsHandedOut(Plugin(), 1)) ++damaged;
    }
    EXPECT_LT(0, damaged);
}

TEST(FileLog, KeepsOnlyWhatWasSynced) {
    std::mt19937 random;
    FileLog log(Bytes{1, 2, 3});
    log.Write(1, "ab", 2);
    EXPECT_EQ((Bytes{1, 2, 3}), log.AfterCut(Survival::None, random));
    EXPECT_EQ((Bytes{1, 'a', 'b'}), log.AfterCut(Survival::All, random));
    log.Sync();
    EXPECT_EQ((Bytes{1, 'a', 'b'}), log.AfterCut(Survival::None, random));
    log.Truncate(1);
    EXPECT_EQ((Bytes{1}), log.AfterCut(Survival::All, random));
}

TEST(FileLog, MayKeepOneSectorOfAWriteWithoutTheOther) {
    constexpr size_t kSector = 512;
    const Bytes written(kSector, 1);
    FileLog log(Bytes(2 * kSector, 0));
    log.Write(kSector / 2, written.data(), written.size());
    std::mt19937 random;
    std::set<std::pair<int, int>> seen;
    for (int tries = 0; tries < 100; ++tries) {
        const Bytes file = log.AfterCut(Survival::SomeSectors, random);
        seen.emplace(file[kSector - 1], file[kSector]);
    }
    EXPECT_EQ(4u, seen.size());
    EXPECT_EQ(Bytes(2 * kSector, 0).size(), log.AfterCut(Survival::All, random).size());
}

} // namespace tsl::test
