// Memory runs out while a record is taken: it is not gone unless the answer says so.
#include "tests/memory_faults/MemoryFaultFixture.h"
#include "tests/memory_faults/StoredRows.h"
#include "tests/query/QueryFixture.h"
#include "tests/query/SinkClass.h"
#include "tests/user_ids/TokenSid.h"

namespace tsl::test {

class TakeFaults : public MemoryFaultTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(MemoryFaultTest::SetUp());
        ContainerBuilder action = Action(5, L"deleteItem");
        action.Ui4(kKeyUserId, 1);
        ASSERT_EQ(S_OK, Plugin().Notify(kCommandRecordAction, action));
        FileDatabase(ActionLogPath())
            .Query("UPDATE TslIf_ContentDeleteProperty SET ActionParameters = "
                   "'ullValues={900,901}&intValues={1,2,3}&stringValues={a,long%20text%2c%20b}'");
        KeepCopy(ActionLogPath(), kTakenRows);
        PrepareUserIdList(Utf16FileBytes(L"0x00000001\t" + TokenSid() + L"\t\r\n"));
    }
    void TearDown() override {
        EXPECT_EQ(0u, m_sink.Held()) << "a reference to the sink was not given back";
        MemoryFaultTest::TearDown();
    }

    void Take(const char* name, UINT32 logKind) {
        ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(logKind));
        const ContainerBuilder request = ContainerBuilder().Ui8(kKeyRecordToTake, 5);
        FailEachAllocation({
            .name = name,
            .prepare =
                [&] {
                    m_sink.texts.clear();
                    PutBackCopy(ActionLogPath(), kTakenRows);
                },
            .run = [&] { return Ask(kCommandTakeRecord, request); },
            .allowed = {},
            .check = [&](const Outcome& outcome) { ExpectTaken(outcome); },
            .countHandles = true,
        });
    }

private:
    void ExpectTaken(const Outcome& outcome) {
        EXPECT_EQ(0u, m_sink.Held());
        const bool isThere = CountRows(ActionLogPath(), kTakenRows) == 1;
        if (FAILED(outcome.result)) {
            EXPECT_TRUE(AnswerIsUntouched());
            EXPECT_TRUE(isThere) << "the record is gone, and nobody has it";
        } else if (outcome.FailedIn("SafeArrayCreateVector")) {
            EXPECT_EQ(VT_EMPTY, Answer().Type());
        } else if (AnswerIsUntouched()) {
            // A container that cannot be made or packed is not told.
            EXPECT_TRUE(outcome.FailedIn("CoCreateInstance") ||
                        outcome.FailedIn("SafeArrayAccessData"));
        } else {
            const AnswerContainers records = Unpack(Answer().Get());
            ASSERT_EQ(1u, records.size());
            EXPECT_EQ(8u, KeysOf(*records[0]).size());
            EXPECT_EQ(L"a", TextOf(*records[0], kKeyFirstText));
        }
        if (outcome.NothingFailed()) {
            EXPECT_FALSE(isThere);
            EXPECT_EQ(L"long text, b", m_sink.texts.at(0).second);
        }
    }

    SinkClass m_sink;
    ClassRegistration m_sinkRegistration{CLSID_TslContentPropertySink, &m_sink};
};

TEST_F(TakeFaults, KeepTheRecordWhenTheTakeFails) {
    Take("take of a record", 1);
}

TEST_F(TakeFaults, KeepTheRecordWhenTheTakeByASystemUserFails) {
    Take("take of a record, log kind 2", 2);
}

} // namespace tsl::test
