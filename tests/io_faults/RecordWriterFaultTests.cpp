// A record that is written straight into one table while the disk fails. Here success tells of
// just that row, also in the action log, whose writes the interface does not report.
#include <optional>

#include "recording/RecordWriter.h"
#include "tests/io_faults/IoFaultFixture.h"

namespace tsl::test {

class RecordWriterFaults : public IoFaultTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(IoFaultTest::SetUp());
        m_store.emplace(GetModuleHandleW(nullptr));
        ASSERT_NE(nullptr, m_store->Engine());
    }
    void TearDown() override {
        m_store.reset();
        IoFaultTest::TearDown();
    }

    Operation Writing(Table table, UINT32 id) {
        const wchar_t* const name = table == Table::Taken ? kContentDeleteTable : kActionLogTable;
        const Target target{kActionLogFileName, name, /*logKind=*/1};
        return {"writing a row",
                [&store = *m_store, target, id] {
                    return WriteActionRecord(
                        store, target, Action(id, L"writtenItem").Date(kKeyActionTime, 45000.5));
                },
                {Acknowledged(Put(table, id))}};
    }

private:
    std::optional<const CActionLogStore> m_store;
};

TEST_F(RecordWriterFaults, LoseNoRowWhenOneIsNew) {
    RunWithFaults(Writing(Table::Log, kNewId));
}

TEST_F(RecordWriterFaults, LeaveTheOlderRowOrTheNewOne) {
    RunWithFaults(Writing(Table::Log, kLatestId));
}

TEST_F(RecordWriterFaults, LeaveTheOlderRowToBeTakenOrTheNewOne) {
    RunWithFaults(Writing(Table::Taken, kIdToTake));
}

class RecordWriterPowerCuts : public RecordWriterFaults {};

TEST_F(RecordWriterPowerCuts, LoseNoRowWhenOneIsNew) {
    RunWithPowerCuts(Writing(Table::Log, kNewId));
}

TEST_F(RecordWriterPowerCuts, LeaveTheOlderRowOrTheNewOne) {
    RunWithPowerCuts(Writing(Table::Log, kLatestId));
}

TEST_F(RecordWriterPowerCuts, LeaveTheOlderRowToBeTakenOrTheNewOne) {
    RunWithPowerCuts(Writing(Table::Taken, kIdToTake));
}

} // namespace tsl::test
