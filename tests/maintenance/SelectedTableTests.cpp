// The table that is selected after maintenance: the old one once it came to be read, else the
// action log.
#include "store/Maintenance.h"
#include "tests/maintenance/OldStore.h"

namespace tsl::test {

class SelectedTable : public OldStoreTest {
protected:
    // Maintains by way of a store that had another table selected.
    static std::wstring After(HRESULT answer) {
        CActionLogStore store(GetModuleHandleW(nullptr));
        store.SelectTable(L"Other", L"Table");
        EXPECT_EQ(answer, MaintainStore(store));
        EXPECT_EQ(L"ualog.db", store.DatabaseName());
        EXPECT_FALSE(store.SqliteAccessLock().IsHeld());
        EXPECT_FALSE(store.LogIdLock().IsHeld());
        return store.SelectedTable();
    }
    static constexpr wchar_t kActionLog[] = L"TslIf_DbActionLog";
    static constexpr wchar_t kOldTable[] = L"TslIf_ActionRecordId";
};

TEST_F(SelectedTable, OfAConvertedStoreIsTheActionLog) {
    MakeStoreFolder();
    WriteBytes(CounterPath(), CounterBytes(L"00000007"));
    EXPECT_EQ(kActionLog, After(E_FAIL));
}

TEST_F(SelectedTable, OfADatabaseThatCannotBeOpenedIsTheActionLog) {
    std::filesystem::create_directories(ActionLogPath());
    EXPECT_EQ(kActionLog, After(kEngineCannotOpen));
}

TEST_F(SelectedTable, AfterAConversionIsTheOldOne) {
    MakeOldStore("complete.sql");
    EXPECT_EQ(kOldTable, After(S_OK));
}

TEST_F(SelectedTable, OfAFreshInstallIsTheOldOne) {
    EXPECT_EQ(kOldTable, After(kEngineError));
}

TEST_F(SelectedTable, OfAStoreWithoutALastIdIsTheOldOne) {
    MakeOldStore("no-last-id.sql");
    EXPECT_EQ(kOldTable, After(kEngineNoRow));
}

TEST_F(SelectedTable, DoesNotMatterToTheCommandsThatFollow) {
    MakeOldStore("complete.sql");
    ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
    ExpectAGoodActionIsRecorded(Plugin());
    EXPECT_EQ(40, CountRows(ActionLogPath(), kActionLogRows));
    EXPECT_EQ(0, CountRows(ActionLogPath(), kIdTable));
}

} // namespace tsl::test
