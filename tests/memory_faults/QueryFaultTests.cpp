// Memory runs out during a query: an incomplete answer is not taken for a whole one, and a result
// that is not answered stays as it was.
#include <algorithm>

#include "tests/memory_faults/CounterFile.h"
#include "tests/memory_faults/MemoryFaultFixture.h"
#include "tests/memory_faults/StoredRows.h"
#include "tests/query/QueryFixture.h"
#include "tests/user_ids/TokenSid.h"

namespace tsl::test {

namespace {

// The one list that other answers are told apart from.
const std::vector<AllowedResult> kOfIdLists = {
    {S_FALSE, "SafeArrayCreateVector", "an array that cannot be made is no answer"},
};

} // namespace

class QueryFaults : public MemoryFaultTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(MemoryFaultTest::SetUp());
        for (UINT32 id = 1; id <= 4; ++id)
            ASSERT_EQ(S_OK, Plugin().Notify(kCommandRecordAction, Action(id, L"playItem")));
        for (UINT32 id = 11; id <= 13; ++id) {
            ContainerBuilder action = Action(id, L"deleteItem");
            ASSERT_EQ(S_OK, Plugin().Notify(kCommandRecordAction, action.Ui4(kKeyUserId, 1)));
        }
        // Each record is older than the one before.
        FileDatabase(ActionLogPath())
            .Query("UPDATE TslIf_DbActionLog SET PluginLoggedTime = 1000 - ActionLogId");
    }

    Ids AnsweredIds(UINT64 key) {
        Ids ids;
        for (const auto& container : Unpack(Answer().Get())) {
            const CVariant id = ValueOf(*container, key);
            ids.push_back(id.Type() == VT_UI8 ? id.Get().ullVal : id.Get().ulVal);
        }
        return ids;
    }

    // An id whose container cannot be made is left out, unless it is the last.
    void ExpectIds(const Outcome& outcome, UINT64 key, const Ids& expected) {
        if (outcome.result != S_OK) {
            EXPECT_TRUE(AnswerIsUntouched());
            return;
        }
        const Ids answered = AnsweredIds(key);
        if (outcome.FailedIn("CoCreateInstance")) {
            EXPECT_TRUE(std::ranges::includes(expected, answered));
            EXPECT_EQ(expected.size() - 1, answered.size());
        } else {
            EXPECT_EQ(expected, answered);
        }
    }

    void AskForIds(const char* name, const ContainerBuilder& request, const Ids& expected) {
        FailEachAllocation({
            .name = name,
            .prepare = {},
            .run = [&] { return Ask(kCommandQueryIds, request); },
            .allowed = kOfIdLists,
            .check =
                [&](const Outcome& outcome) {
                    ExpectIds(outcome, kKeyRecordId, expected);
                    EXPECT_EQ(std::optional<UINT32>(0), StoredCounter());
                },
        });
    }
};

TEST_F(QueryFaults, LeaveATimeRangeWholeOrUnanswered) {
    AskForIds("ids in a time range", ContainerBuilder().Ui4(kKeyUserId, 7), {1, 2, 3, 4});
}

TEST_F(QueryFaults, LeaveAnIdRangeWholeOrUnanswered) {
    AskForIds(
        "ids in an id range",
        ContainerBuilder().Ui4(kKeyUserId, 7).Ui4(kKeyFirstRecordId, 1).Ui4(kKeyLastRecordId, 3),
        {1, 2, 3});
}

TEST_F(QueryFaults, LeaveAWrappedRangeWholeOrUnanswered) {
    MakeCounterFile(L"00000004");
    const ContainerBuilder request =
        ContainerBuilder().Ui4(kKeyUserId, 7).Ui4(kKeyFirstRecordId, 4).Ui4(kKeyLastRecordId, 2);
    FailEachAllocation({
        .name = "ids in a wrapped id range",
        .prepare = {},
        .run = [&] { return Ask(kCommandQueryIds, request); },
        .allowed = kOfIdLists,
        .check =
            [&](const Outcome& outcome) {
                ExpectIds(outcome, kKeyRecordId, {2, 3, 4});
                EXPECT_EQ(std::optional<UINT32>(4), StoredCounter());
            },
    });
}

TEST_F(QueryFaults, RaiseTheCounterOrLeaveIt) {
    const ContainerBuilder request =
        ContainerBuilder().Ui4(kKeyUserId, 7).Ui4(kKeyFirstRecordId, 900);
    FailEachAllocation({
        .name = "id range above the counter",
        .prepare = [] { MakeCounterFile(L"00000041"); },
        .run = [&] { return Ask(kCommandQueryIds, request); },
        .expected = E_INVALIDARG, // no such record
        .allowed = {},
        .check =
            [&](const Outcome& outcome) {
                EXPECT_TRUE(AnswerIsUntouched());
                const std::optional<UINT32> counter = StoredCounter();
                ASSERT_TRUE(counter) << "no counter is left in the file";
                EXPECT_THAT(*counter, testing::AnyOf(41u, 899u));
                if (outcome.NothingFailed()) {
                    EXPECT_EQ(899u, *counter);
                }
            },
    });
}

TEST_F(QueryFaults, LeaveAllIdsWholeOrUnanswered) {
    FailEachAllocation({
        .name = "all ids",
        .prepare = {},
        .run = [&] { return Ask(kCommandQueryAllIds, ContainerBuilder()); },
        .allowed = kOfIdLists,
        .check = [&](const Outcome& outcome) { ExpectIds(outcome, kKeyItemId, {11, 12, 13}); },
    });
}

// The records belong to the first user; this one is the second.
TEST_F(QueryFaults, LeaveTheUserIdListWhole) {
    ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(2));
    const Bytes before = Utf16FileBytes(L"0x00000001\tS-1-5-21-1-2-3-1001\t\r\n");
    const Bytes after = Utf16FileBytes(L"0x00000001\tS-1-5-21-1-2-3-1001\t\r\n0x00000002\t" +
                                       TokenSid() + L"\t\r\n");
    FailEachAllocation({
        .name = "all ids of a user who is new",
        .prepare = [&] { PrepareUserIdList(before); },
        .run = [&] { return Ask(kCommandQueryAllIds, ContainerBuilder()); },
        .expected = E_INVALIDARG, // no record
        .allowed = {{S_OK, "GetNamedSecurityInfoW",
                     "a folder without its access rights counts as a list without entries"},
                    {S_OK, "AllocateAndInitializeSid", "the same"}},
        .check =
            [&](const Outcome& outcome) {
                // In such a list the user is the first one, and it is written so.
                if (outcome.FailedIn("GetNamedSecurityInfoW") ||
                    outcome.FailedIn("AllocateAndInitializeSid")) {
                    return;
                }
                EXPECT_TRUE(AnswerIsUntouched());
                EXPECT_THAT(ReadBytes(UserIdListPath()), testing::AnyOf(before, after));
                if (outcome.NothingFailed()) {
                    EXPECT_EQ(after, ReadBytes(UserIdListPath()));
                }
            },
        .briefRuns = 16,
    });
}

TEST_F(QueryFaults, LeaveRecordsWholeOrUnanswered) {
    CVariant ids = MakeArray<LONG>(std::vector<LONG>{1, 2, 3});
    ids.Address()->vt = VT_ARRAY | VT_UI4;
    ContainerBuilder request;
    request.Set(kKeyRecordIds, std::move(ids));
    FailEachAllocation({
        .name = "records of three ids",
        .prepare = {},
        .run = [&] { return Ask(kCommandQueryRecords, request); },
        .allowed = {},
        .check =
            [&](const Outcome& outcome) {
                if (outcome.result != S_OK) {
                    EXPECT_TRUE(AnswerIsUntouched());
                } else if (outcome.FailedIn("SafeArrayCreateVector")) {
                    EXPECT_EQ(VT_EMPTY, Answer().Type());
                } else {
                    const AnswerContainers records = Unpack(Answer().Get());
                    ASSERT_EQ(3u, records.size());
                    for (const auto& record : records) {
                        EXPECT_EQ(7u, KeysOf(*record).size());
                        EXPECT_EQ(L"playItem", TextOf(*record, kKeyActionName));
                    }
                }
            },
    });
}

} // namespace tsl::test
