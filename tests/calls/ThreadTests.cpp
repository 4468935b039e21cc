// Several threads on one object, each with commands of all kinds: no crash, no damaged answer, no
// lock left behind, and every action that was acknowledged is stored.
#include <algorithm>
#include <atomic>
#include <random>
#include <set>
#include <thread>

#include "base/ArrayView.h"
#include "component/host/CommandCodes.h"
#include "tests/support/ComSession.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/FullForm.h"
#include "tests/support/PluginFixture.h"
#include "tests/support/StoreChecks.h"

namespace tsl::test {

namespace {

constexpr UINT32 kFirstOwnId = 1000;

// What one thread did and was told.
struct Caller {
    UINT32 number = 0;
    UINT32 recorded = 0; // ids from its own first one on
    std::vector<UINT32> ids;
    std::vector<std::string> wrong;
    int calls = 0;

    UINT32 OwnId(UINT32 count) const { return kFirstOwnId + number * 1'000'000 + count; }

    void Work(ITslPluginDb2& plugin, const std::atomic<bool>& isOver) {
        const CComInitialization com;
        std::mt19937 chance(number + 1);
        for (; !isOver; ++calls) {
            switch (chance() % 8) {
            case 0:
            case 1:
                Record(plugin);
                break;
            case 2:
                AskForId(plugin);
                break;
            case 3:
                ExpectAnswers("ids by time", recorded, plugin, kCommandQueryIds, OfUser());
                break;
            case 4:
                ExpectAnswers("ids by id", recorded, plugin, kCommandQueryIds,
                              OfUser().Ui4(kKeyFirstRecordId, 1).Ui4(kKeyLastRecordId, 0xFFFFFFFF));
                break;
            case 5:
                ExpectAnswers("records", std::min(recorded, 2u), plugin, kCommandQueryRecords,
                              ContainerBuilder().Array<ULONG>(kKeyRecordIds, {OwnId(0), OwnId(1)}));
                break;
            case 6:
                Expect(
                    "take", S_OK, S_OK,
                    Ask(plugin, kCommandTakeRecord, ContainerBuilder().Ui8(kKeyRecordToTake, 5)));
                Expect("delete", S_OK, S_OK,
                       plugin.Delete(kCommandDeleteRecords, ContainerBuilder()
                                                                .Ui4(kKeyUserId, 4711)
                                                                .Ui4(kKeyFirstRecordId, 1)
                                                                .Ui4(kKeyLastRecordId, 9)));
                break;
            default:
                // As it came to light: nothing but the target is chosen.
                Expect("no parameters", E_POINTER, E_POINTER,
                       Ask(plugin, kCommandQueryIds, nullptr));
                Expect("no parameters", E_POINTER, E_POINTER,
                       Ask(plugin, kCommandTakeRecord, nullptr));
                plugin.SetHost(nullptr);
            }
        }
    }

private:
    ContainerBuilder OfUser() const { return ContainerBuilder().Ui4(kKeyUserId, 100 + number); }

    void Expect(const char* what, HRESULT one, HRESULT other, HRESULT result) {
        if (result != one && result != other) {
            wrong.push_back(std::string(what) + " " + std::to_string(result));
        }
    }
    static HRESULT Ask(ITslPluginDb2& plugin, UINT64 code, ITslParamContainer* parameters) {
        CVariant answer;
        return plugin.Request(code, parameters, nullptr, answer.Address());
    }
    // So many containers, each with another id of this thread's, whatever the others do meanwhile.
    void ExpectAnswers(const char* what, UINT32 count, ITslPluginDb2& plugin, UINT64 code,
                       ITslParamContainer* parameters) {
        CVariant answer;
        const HRESULT result = plugin.Request(code, parameters, nullptr, answer.Address());
        const bool isForIds = code == kCommandQueryIds;
        const HRESULT expected = count == 0 && isForIds ? E_INVALIDARG : S_OK;
        Expect(what, expected, expected, result);
        std::set<UINT32> answered;
        CValueView<IUnknown*> containers;
        if (FAILED(containers.Open(*answer.Address()))) wrong.emplace_back("no array of objects");
        for (IUnknown* const unknown : containers.Values()) {
            CVariant id;
            const auto container = QueryFor<ITslParamContainer>(unknown, IID_ITslParamContainer);
            container->GetValue(kKeyRecordId, id.Address());
            const UINT32 ownId = id.Type() == VT_UI4 ? id.Get().ulVal : 0;
            if (ownId >= OwnId(0) && ownId < OwnId(recorded)) answered.insert(ownId);
        }
        if (answered.size() != count || containers.Values().size() != count) {
            wrong.push_back(std::string(what) + " answered " +
                            std::to_string(containers.Values().size()) + " of " +
                            std::to_string(count));
        }
    }
    void Record(ITslPluginDb2& plugin) {
        ContainerBuilder action = Action(OwnId(recorded), L"playItem");
        action.Ui4(kKeyUserId, 100 + number);
        const HRESULT result = plugin.Notify(kCommandRecordAction, action);
        Expect("record", S_OK, S_OK, result);
        if (result == S_OK) ++recorded;
    }
    void AskForId(ITslPluginDb2& plugin) {
        CVariant answer;
        const HRESULT result =
            plugin.Request(kCommandNextRecordId, ContainerBuilder(), nullptr, answer.Address());
        Expect("next id", S_OK, S_OK, result);
        if (answer.Type() != VT_UNKNOWN) {
            wrong.emplace_back("next id without an answer");
            return;
        }
        CVariant id;
        const auto container =
            QueryFor<ITslParamContainer>(answer.Get().punkVal, IID_ITslParamContainer);
        container->GetValue(kKeyRecordId, id.Address());
        ids.push_back(id.Get().ulVal);
    }
};

} // namespace

class ThreadsOnOneObject : public PluginTest, public ::testing::WithParamInterface<UINT32> {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(PluginTest::SetUp());
        MakeCounterFile();
        ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
    }
};

TEST_P(ThreadsOnOneObject, LoseNothingAndLeaveNothing) {
    std::vector<Caller> callers(GetParam());
    std::atomic<bool> isOver = false;
    std::vector<std::thread> threads;
    for (UINT32 number = 0; number < GetParam(); ++number) {
        callers[number].number = number;
        threads.emplace_back([&, number] { callers[number].Work(Plugin(), isOver); });
    }
    Sleep(InForm(3000, 60'000));
    isOver = true;
    for (std::thread& thread : threads)
        thread.join();

    int calls = 0;
    std::vector<UINT32> ids;
    for (const Caller& caller : callers) {
        EXPECT_EQ(std::vector<std::string>(), caller.wrong);
        calls += caller.calls;
        ids.insert(ids.end(), caller.ids.begin(), caller.ids.end());
        const std::string ofCaller = " WHERE UserId = " + std::to_string(100 + caller.number);
        for (const auto& [file, table] :
             {std::pair(ActionLogPath(), kActionLogRows), std::pair(ReplayPath(), kReplayRows)}) {
            // At the thousandth the replay log is trimmed.
            if (caller.recorded == 0 || (caller.recorded > 999 && file == ReplayPath())) continue;
            EXPECT_EQ(std::to_string(caller.recorded),
                      FileDatabase(file).Value("SELECT COUNT(DISTINCT ActionLogId) FROM " +
                                               std::string(table) + ofCaller))
                << table;
        }
    }
    EXPECT_EQ(ids.size(), std::set<UINT32>(ids.begin(), ids.end()).size()) << "an id came twice";
    EXPECT_GT(calls, 0);
    EXPECT_TRUE(MutexIsFree(kSqliteAccessLock));
    EXPECT_TRUE(MutexIsFree(kLogIdLock));
    Measured(std::to_string(GetParam()) + " threads on one object: " + std::to_string(calls) +
             " calls");
}

class SwitchOnAnotherThread : public PluginTest {};

TEST_F(SwitchOnAnotherThread, GivesNoActionAKindThatNobodyChose) {
    MakeCounterFile();
    ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
    std::atomic<bool> isOver = false;
    std::thread switcher([&] {
        const CComInitialization com;
        for (UINT32 turn = 0; !isOver; ++turn)
            Plugin().SetRecordingEnabled(turn % 2);
    });
    int recorded = 0;
    const ULONGLONG end = GetTickCount64() + InForm(1500, 20'000);
    while (GetTickCount64() < end) {
        const UINT32 id = 1 + static_cast<UINT32>(recorded) % 90;
        const HRESULT result = Plugin().Notify(kCommandRecordAction, Action(id, L"playItem"));
        EXPECT_TRUE(result == S_OK || result == E_NOTIMPL) << result;
        if (result == S_OK) ++recorded;
    }
    isOver = true;
    switcher.join();
    EXPECT_GT(recorded, 0);
    const std::string kinds = "SELECT group_concat(DISTINCT LogKind) FROM ";
    EXPECT_EQ("1", FileDatabase(ActionLogPath()).Value(kinds + kActionLogRows));
    EXPECT_EQ("1", FileDatabase(ReplayPath()).Value(kinds + kReplayRows));
}

INSTANTIATE_TEST_SUITE_P(Of, ThreadsOnOneObject, ::testing::Values(2u, 8u));

} // namespace tsl::test
