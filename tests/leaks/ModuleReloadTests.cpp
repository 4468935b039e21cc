// The module is loaded and unloaded a thousand times, and works each time: no life of it leaves
// anything to the process.
#include "component/host/CommandCodes.h"
#include "tests/memory_faults/AllocationFaults.h"
#include "tests/support/ComSession.h"
#include "tests/support/Containers.h"
#include "tests/support/FullForm.h"
#include "tests/support/PluginFixture.h"
#include "tests/support/StoreChecks.h"
#include "tests/support/UsageOverTime.h"

namespace tsl::test {

namespace {

constexpr wchar_t kComponent[] = L"TslIfDbActionLog.dll";

// What the loader and the heaps keep may grow by a little, but not by a block with each life.
constexpr size_t kToleratedBytesPerLife = 16;

} // namespace

class ModuleReload : public StoreTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(StoreTest::SetUp());
        MakeCounterFile();
    }

    // Records an action; if wanted, memory runs out once, so that an exception is thrown.
    void Live(bool runsOutOfMemory) {
        {
            const CPluginLibrary library((ProgramFolder() / kComponent).wstring());
            {
                const CComPtr<ITslPluginDb2> plugin = library.CreatePlugin();
                ASSERT_EQ(S_OK, plugin->SetRecordingEnabled(1));
                if (runsOutOfMemory) RunOutOfMemory(*plugin);
                ASSERT_EQ(S_OK, plugin->Notify(kCommandRecordAction, Action(++m_recordId, L"a")));
            }
            ASSERT_TRUE(library.CanUnload());
        }
        ASSERT_EQ(nullptr, GetModuleHandleW(kComponent)) << "the module is still loaded";
    }

    void LiveOften(const char* name, bool runsOutOfMemory) {
        constexpr int kWarmUp = 10;
        const int lives = InForm(25, 500);
        const auto live = [&](int count) {
            for (int life = 0; life < count; ++life)
                ASSERT_NO_FATAL_FAILURE(Live(runsOutOfMemory));
        };
        ASSERT_NO_FATAL_FAILURE(live(kWarmUp));
        UsageOverTime usage(
            {.heapBytes = kToleratedBytesPerLife * static_cast<size_t>(lives), .handles = 2});
        usage.Repeat([&] { live(lives); });
        ASSERT_FALSE(HasFatalFailure());
        Measured("rounds of " + std::to_string(lives) + " lives of the module" + name + ": " +
                 usage.ExpectFlat());
        EXPECT_EQ(static_cast<int>(m_recordId), CountRows(ActionLogPath(), kActionLogRows));
    }

private:
    static void RunOutOfMemory(ITslPluginDb2& plugin) {
        AllocationFaults faults(GetModuleHandleW(kComponent));
        faults.Arm(1, Extent::One);
        CVariant answer;
        EXPECT_EQ(E_OUTOFMEMORY, plugin.Request(kCommandNextRecordId, ContainerBuilder(), nullptr,
                                                answer.Address()));
    }

    ComSession m_session;
    UINT32 m_recordId = 0;
};

TEST_F(ModuleReload, LeavesNothingToTheProcess) {
    LiveOften("", /*runsOutOfMemory=*/false);
}

TEST_F(ModuleReload, LeavesNothingToTheProcessWhenItHasThrown) {
    LiveOften(" that throw", /*runsOutOfMemory=*/true);
}

} // namespace tsl::test
