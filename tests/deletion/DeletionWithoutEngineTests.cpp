// A component without its engine cannot delete.
#include "query/Deletions.h"
#include "tests/deletion/DeletionFixture.h"
#include "tests/support/ComSession.h"
#include "tests/support/ComponentCopy.h"

namespace tsl::test {

class DeletionWithoutEngine : public StoreTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(StoreTest::SetUp());
        ASSERT_EQ(nullptr, GetModuleHandleW(L"SQLite3.dll"));
    }

    static constexpr auto kForms = {OneRecord, +[](UINT64) { return IdRange(); },
                                    +[](UINT64) { return TimeRange(); }};
};

TEST_F(DeletionWithoutEngine, IsABadPointerForEachForm) {
    const ComSession session;
    const ComponentCopy copy;
    const CPluginLibrary library([&] {
        wchar_t path[MAX_PATH * 4];
        GetModuleFileNameW(copy.Module(), path, std::size(path));
        return std::wstring(path);
    }());
    {
        const CComPtr<ITslPluginDb2> plugin = library.CreatePlugin();
        ASSERT_EQ(nullptr, GetModuleHandleW(L"SQLite3.dll"));
        EXPECT_EQ(S_OK, plugin->SetRecordingEnabled(1));
        for (const auto form : kForms)
            EXPECT_EQ(E_POINTER, plugin->Delete(kCommandDeleteRecords, form(2)));
        ExpectLocksAreFree();
    }
    EXPECT_TRUE(library.CanUnload());
    EXPECT_FALSE(std::filesystem::exists(ActionLogPath()));
}

TEST_F(DeletionWithoutEngine, ReadsNothingButTheForm) {
    const ComponentCopy copy;
    const CActionLogStore store(copy.Module());
    ASSERT_EQ(nullptr, store.Engine());
    for (const auto form : kForms) {
        ScriptedContainer container(form(2).Get());
        EXPECT_EQ(E_POINTER, DeleteRecords(store, Target{}, &container));
        EXPECT_EQ(std::vector<UINT64>{kKeyRecordToTake}, container.keysRead);
    }
    EXPECT_EQ(E_INVALIDARG, DeleteRecords(store, Target{}, nullptr));
    EXPECT_FALSE(std::filesystem::exists(UserIdListPath()));
}

} // namespace tsl::test
