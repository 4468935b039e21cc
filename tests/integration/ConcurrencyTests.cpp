// Threads of one process, each with a plug-in object of its own, on the one store.
#include <algorithm>
#include <atomic>
#include <thread>

#include "tests/integration/Aftermath.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/PluginFixture.h"

namespace tsl::test {

namespace {

constexpr UINT32 kThreads = 4;
constexpr UINT32 kActionsOfEach = 50;
constexpr UINT32 kActions = kThreads * kActionsOfEach;

// What one thread saw.
struct Worker {
    CComPtr<ITslPluginDb2> plugin;
    std::vector<HRESULT> failures;
    std::vector<UINT32> ids;

    void Work() {
        const CComInitialization com;
        for (UINT32 turn = 0; turn < kActionsOfEach; ++turn) {
            const UINT32 id = AskForId();
            Check(plugin->Notify(kCommandRecordAction, Action(id, L"playItem")));
        }
    }

private:
    UINT32 AskForId() {
        CVariant answer;
        Check(plugin->Request(kCommandNextRecordId, ContainerBuilder(), nullptr, answer.Address()));
        if (answer.Type() != VT_UNKNOWN) return 0;
        CVariant id;
        auto* const container = static_cast<ITslParamContainer*>(answer.Get().punkVal);
        Check(container->GetValue(kKeyRecordId, id.Address()));
        ids.push_back(id.Get().ulVal);
        return ids.back();
    }
    void Check(HRESULT result) {
        if (result != S_OK) failures.push_back(result);
    }
};

} // namespace

class Concurrency : public PluginTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(PluginTest::SetUp());
        ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
    }
    static void Run(std::vector<Worker>& workers) {
        std::vector<std::thread> threads;
        for (Worker& worker : workers)
            threads.emplace_back([&worker] { worker.Work(); });
        for (std::thread& thread : threads)
            thread.join();
    }
};

TEST_F(Concurrency, GivesEachActionOneIdAndOneRowInEachDatabase) {
    std::vector<Worker> workers(kThreads);
    for (Worker& worker : workers)
        worker.plugin = Library().CreatePlugin();
    Run(workers);

    std::vector<UINT32> ids;
    for (const Worker& worker : workers) {
        EXPECT_EQ(std::vector<HRESULT>(), worker.failures);
        EXPECT_TRUE(std::ranges::is_sorted(worker.ids));
        ids.insert(ids.end(), worker.ids.begin(), worker.ids.end());
    }
    std::ranges::sort(ids);
    std::vector<UINT32> everyId;
    std::vector<Row> everyRow;
    for (UINT32 id = 1; id <= kActions; ++id) {
        everyId.push_back(id);
        everyRow.push_back({std::to_string(id)});
    }
    EXPECT_EQ(everyId, ids);
    const std::string rows = "SELECT ActionLogId FROM ";
    const std::string inOrder = " ORDER BY ActionLogId";
    EXPECT_EQ(everyRow, FileDatabase(ActionLogPath()).Query(rows + kActionLogRows + inOrder));
    EXPECT_EQ(everyRow, FileDatabase(ReplayPath()).Query(rows + kReplayRows + inOrder));
    EXPECT_EQ(Utf16FileBytes(L"00000200\t\r\n"), ReadBytes(CounterPath()));
    ExpectLocksAreFree();
}

TEST_F(Concurrency, LetsObjectsComeAndGoOnAllThreads) {
    std::vector<std::thread> threads;
    std::atomic<int> created = 0;
    for (UINT32 thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&] {
            const CComInitialization com;
            for (int turn = 0; turn < 25; ++turn) {
                const CComPtr<ITslPluginDb2> plugin = Library().CreatePlugin();
                if (plugin->Reserved1() == S_OK) ++created;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(100, created);
    ReleasePlugin();
    EXPECT_TRUE(Library().CanUnload());
}

} // namespace tsl::test
