// A component without its engine converts nothing, and switches recording on all the same.
#include "store/Maintenance.h"
#include "tests/maintenance/OldStore.h"
#include "tests/support/ComponentCopy.h"

namespace tsl::test {

namespace fs = std::filesystem;

class MaintenanceWithoutEngine : public StoreTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(StoreTest::SetUp());
        ASSERT_EQ(nullptr, GetModuleHandleW(L"SQLite3.dll"));
    }
    void TearDown() override {
        ExpectLocksAreFree();
        StoreTest::TearDown();
    }
    static std::wstring PathOf(const ComponentCopy& copy) {
        wchar_t path[MAX_PATH * 4];
        GetModuleFileNameW(copy.Module(), path, std::size(path));
        return path;
    }
};

TEST_F(MaintenanceWithoutEngine, IsABadPointer) {
    MakeOldStore("complete.sql");
    const Bytes database = ReadBytes(ActionLogPath());
    const ComponentCopy copy;
    const CActionLogStore store(copy.Module());
    ASSERT_EQ(nullptr, store.Engine());
    EXPECT_EQ(E_POINTER, MaintainStore(store));
    ExpectLocksAreFree();
    EXPECT_EQ(database, ReadBytes(ActionLogPath()));
    EXPECT_FALSE(fs::exists(CounterPath()));
}

TEST_F(MaintenanceWithoutEngine, MakesNoDatabase) {
    const ComponentCopy copy;
    const CActionLogStore store(copy.Module());
    EXPECT_EQ(E_POINTER, MaintainStore(store));
    ASSERT_TRUE(fs::is_directory(StoreFolder())) << "the folder is made before the engine is used";
    EXPECT_TRUE(fs::is_empty(StoreFolder()));
}

TEST_F(MaintenanceWithoutEngine, HandsOutNoFirstIdBesideADatabase) {
    const ComponentCopy copy;
    const CActionLogStore store(copy.Module());
    EXPECT_EQ(S_OK, ConvertBeforeFirstId(store)) << "there is none";
    MakeOldStore("complete.sql");
    EXPECT_EQ(E_POINTER, ConvertBeforeFirstId(store));
    EXPECT_FALSE(fs::exists(CounterPath()));
}

TEST_F(MaintenanceWithoutEngine, IsNotMissedByAConvertedStore) {
    MakeStoreFolder();
    WriteBytes(CounterPath(), CounterBytes(L"00000007"));
    const ComponentCopy copy;
    const CActionLogStore store(copy.Module());
    EXPECT_EQ(E_FAIL, MaintainStore(store));
}

TEST_F(MaintenanceWithoutEngine, IsNoConcernOfTheSwitch) {
    MakeOldStore("complete.sql");
    const Bytes database = ReadBytes(ActionLogPath());
    const ComSession session;
    const ComponentCopy copy;
    const CPluginLibrary library(PathOf(copy));
    {
        const CComPtr<ITslPluginDb2> plugin = library.CreatePlugin();
        EXPECT_EQ(S_OK, plugin->SetRecordingEnabled(1));
        EXPECT_EQ(S_OK, plugin->Notify(kCommandRecordAction, nullptr));
        EXPECT_EQ(S_OK, plugin->SetRecordingEnabled(0));
        EXPECT_EQ(E_NOTIMPL, plugin->Notify(kCommandRecordAction, nullptr));
        ExpectLocksAreFree();
    }
    EXPECT_TRUE(library.CanUnload());
    EXPECT_EQ(database, ReadBytes(ActionLogPath()));
    EXPECT_FALSE(fs::exists(CounterPath()));
}

TEST_F(MaintenanceWithoutEngine, IsMadeUpForOnceThereIsAnEngine) {
    MakeOldStore("complete.sql");
    const StoreImage before = ReadActionLog();
    {
        const ComponentCopy copy;
        const CActionLogStore store(copy.Module());
        ASSERT_EQ(E_POINTER, MaintainStore(store));
    }
    EXPECT_EQ(S_OK, Maintain());
    EXPECT_EQ(Converted(before), ReadActionLog());
    EXPECT_EQ(CounterBytes(L"00000042"), ReadBytes(CounterPath()));
}

} // namespace tsl::test
