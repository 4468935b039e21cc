// Memory runs out while an action is recorded: the record is whole or absent in each log, an older
// one of its id is not lost, and the answer tells what became of the replay log.
#include "tests/dispatch/FullAction.h"
#include "tests/memory_faults/MemoryFaultFixture.h"
#include "tests/memory_faults/StoredRows.h"

namespace tsl::test {

using testing::AnyOf;
using testing::ElementsAre;
using testing::IsEmpty;

using Rows = std::vector<Row>;

class RecordFaults : public MemoryFaultTest {
protected:
    static constexpr UINT32 kReferenceId = 1;

    static Rows Logged(UINT32 recordId) {
        return RowsOf(ActionLogPath(), kActionLogRows, recordId);
    }
    static Rows Replayed(UINT32 recordId) { return RowsOf(ReplayPath(), kReplayRows, recordId); }
    static Rows KeptForTaking(UINT32 recordId) {
        return RowsOf(ActionLogPath(), kTakenRows, recordId);
    }

    HRESULT Notify(const ContainerBuilder& action) {
        return Plugin().Notify(kCommandRecordAction, action);
    }

    // An action with values of every kind; of log kind 2 with a linked item.
    static ContainerBuilder MakeAction(UINT32 recordId, UINT32 logKind) {
        ContainerBuilder action = FullAction(recordId, L"playItem");
        if (logKind != 2) return action;
        ContainerBuilder item;
        item.Text(kKeyText44, L"a text").Text(kKeyText48, L"another text");
        item.Texts(kKeyStringValues, {L"VELLORA_CHANNEL", L"name"});
        item.Texts(kKeyMoreStringValues, {L"detail", L"detail, too"});
        item.Array<ULONGLONG>(kKeyUllValues, {0});
        return action.Unknown(kKeyLinkedItem, item.Get().Get());
    }

    // The rows with the parameter text of a whole one.
    static Rows WithTextOf(const Rows& whole, Rows rows) {
        constexpr size_t kText = 5;
        for (Row& row : rows)
            row.at(kText) = whole.at(0).at(kText);
        return rows;
    }

    void RecordNewOnes(const char* name, UINT32 logKind);
    void ReplaceOlderOne(const char* name, UINT32 logKind);
};

void RecordFaults::RecordNewOnes(const char* name, UINT32 logKind) {
    ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(logKind));
    ASSERT_EQ(S_OK, Notify(MakeAction(kReferenceId, logKind)));
    const Rows whole = Replayed(kReferenceId);
    ASSERT_EQ(whole, Logged(kReferenceId));

    // Without its name an action has no way to go.
    constexpr int kAllocationsForTheName = 2;
    int lostInBoth = 0;
    UINT32 recordId = 1000;
    ContainerBuilder action;
    FailEachAllocation({
        .name = name,
        .prepare =
            [&] {
                if (++recordId % 100 == 0) ++recordId;
                action = MakeAction(recordId, logKind);
            },
        .run = [&] { return Notify(action); },
        .allowed = {},
        .check =
            [&](const Outcome& outcome) {
                // Of a linked item, what could be gathered is recorded.
                const bool lacksAdditions = logKind == 2 && outcome.FailedIn("SafeArrayAccessData");
                const Rows logged =
                    lacksAdditions ? WithTextOf(whole, Logged(recordId)) : Logged(recordId);
                const Rows replayed =
                    lacksAdditions ? WithTextOf(whole, Replayed(recordId)) : Replayed(recordId);
                EXPECT_EQ(outcome.result == S_OK ? whole : Rows(), replayed);
                EXPECT_THAT(logged, AnyOf(IsEmpty(), whole));
                if (outcome.NothingFailed()) {
                    EXPECT_EQ(whole, logged);
                }
                // What one step lacks costs its record alone, and only that of the replay log is
                // told.
                const bool lacksBoth = logged.empty() && replayed.empty();
                if (outcome.extent == Extent::One && lacksBoth) ++lostInBoth;
            },
        .countHandles = true,
    });
    EXPECT_LE(lostInBoth, kAllocationsForTheName);
    ASSERT_EQ(S_OK, Notify(MakeAction(++recordId, logKind)));
    EXPECT_EQ(whole, Logged(recordId));
}

void RecordFaults::ReplaceOlderOne(const char* name, UINT32 logKind) {
    constexpr UINT32 kReplacedId = 5;
    ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(logKind));
    ASSERT_EQ(S_OK, Notify(MakeAction(kReferenceId, logKind)));
    const Rows whole = Replayed(kReferenceId);
    const ContainerBuilder olderAction =
        Action(kReplacedId, L"olderAction").Date(kKeyActionTime, kFullActionTime);
    ASSERT_EQ(S_OK, Notify(olderAction));
    const Rows older = Replayed(kReplacedId);

    const ContainerBuilder action = MakeAction(kReplacedId, logKind);
    FailEachAllocation({
        .name = name,
        .prepare = [&] { ASSERT_EQ(S_OK, Notify(olderAction)); },
        .run = [&] { return Notify(action); },
        .allowed = {},
        .check =
            [&](const Outcome& outcome) {
                EXPECT_EQ(outcome.result == S_OK ? whole : older, Replayed(kReplacedId));
                EXPECT_THAT(Logged(kReplacedId), AnyOf(older, whole));
            },
    });
}

TEST_F(RecordFaults, LeaveTheRecordWholeOrAbsentUnderLogKind1) {
    RecordNewOnes("action, log kind 1", 1);
}

TEST_F(RecordFaults, LeaveTheRecordWholeOrAbsentUnderLogKind2) {
    RecordNewOnes("action with a linked item, log kind 2", 2);
}

TEST_F(RecordFaults, LeaveTheRecordWholeOrAbsentUnderLogKind4) {
    RecordNewOnes("action, log kind 4", 4);
}

TEST_F(RecordFaults, LeaveTheOlderRecordOrTheNewOne) {
    ReplaceOlderOne("action of an id that is there", 1);
}

// A copy that cannot be made is not recorded; the replay log then takes the action as it is.
TEST_F(RecordFaults, LeaveADeletionWholeOrAbsentInEachTable) {
    ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(2));
    ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
    ASSERT_EQ(S_OK, Notify(FullAction(kReferenceId, L"deleteItem")));
    const Rows original = KeptForTaking(kReferenceId);
    const Rows copied = Logged(kReferenceId);
    ASSERT_EQ(1u, original.size());
    ASSERT_NE(original, copied);
    ASSERT_EQ(copied, Replayed(kReferenceId));

    UINT32 recordId = 1000;
    ContainerBuilder action;
    FailEachAllocation({
        .name = "deletion of an item, log kind 1",
        .prepare =
            [&] {
                if (++recordId % 100 == 0) ++recordId;
                action = FullAction(recordId, L"deleteItem");
            },
        .run = [&] { return Notify(action); },
        .allowed = {},
        .check =
            [&](const Outcome& outcome) {
                // A name that cannot be read as text is no deletion's.
                const bool isOrdinary = outcome.FailedIn("VariantChangeType");
                const bool isCopied = !isOrdinary && !outcome.FailedIn("CoCreateInstance");
                const Rows& replayed = isCopied ? copied : original;
                EXPECT_EQ(outcome.result == S_OK ? replayed : Rows(), Replayed(recordId));
                EXPECT_THAT(KeptForTaking(recordId), AnyOf(IsEmpty(), original));
                EXPECT_THAT(Logged(recordId), AnyOf(IsEmpty(), isOrdinary ? original : copied));
                if (outcome.NothingFailed()) {
                    EXPECT_EQ(copied, Logged(recordId));
                    EXPECT_EQ(original, KeptForTaking(recordId));
                }
            },
    });
}

} // namespace tsl::test
