// Actions that are recorded while the disk fails.
#include "tests/io_faults/IoFaultFixture.h"

namespace tsl::test {

class RecordingFaults : public IoFaultTest {
protected:
    // A counter file, and no database.
    void BeginWithoutDatabases() { BeginWith({{CounterPath(), ReadBytes(CounterPath())}}); }
};

TEST_F(RecordingFaults, LoseNothingWhenARecordIsNew) {
    RunWithFaults(Recording(Plugin(), kNewId));
}

TEST_F(RecordingFaults, LoseNothingWhenARecordIsLong) {
    RunWithFaults(Recording(Plugin(), kNewId, kLongText));
}

TEST_F(RecordingFaults, LeaveTheOlderRecordOrTheNewOne) {
    RunWithFaults(Recording(Plugin(), kLatestId, /*extraLetters=*/10));
}

TEST_F(RecordingFaults, LoseNothingWhenTheFilesAreNew) {
    BeginWithoutDatabases();
    RunWithFaults(Recording(Plugin(), kNewId));
}

TEST_F(RecordingFaults, LoseNothingWhenADeleteActionIsRecorded) {
    RunWithFaults(RecordingADeleteAction(Plugin(), kNewId));
}

TEST_F(RecordingFaults, LoseNothingWhenAUserIsReset) {
    RunWithFaults(UserReset(Plugin(), kNewId));
}

// A reader keeps the file: a commit waits for it.
TEST_F(RecordingFaults, BusyLockForAMomentLosesNothing) {
    Operation operation = Recording(Plugin(), kNewId);
    ASSERT_NO_FATAL_FAILURE(Rehearse(operation));
    RunWithEachFault(operation, kBusyLock, /*fromThenOn=*/false);
}

// Each statement waits a second then, so no other operation is tried.
TEST_F(RecordingFaults, BusyLockForGoodLosesNothing) {
    Operation operation = Recording(Plugin(), kNewId);
    ASSERT_NO_FATAL_FAILURE(Rehearse(operation));
    RunWithEachFault(operation, kBusyLock, /*fromThenOn=*/true);
}

class RecordingPowerCuts : public RecordingFaults {};

TEST_F(RecordingPowerCuts, LoseNothingWhenARecordIsNew) {
    RunWithPowerCuts(Recording(Plugin(), kNewId));
}

TEST_F(RecordingPowerCuts, LoseNothingWhenARecordIsLong) {
    RunWithPowerCuts(Recording(Plugin(), kNewId, kLongText));
}

TEST_F(RecordingPowerCuts, LeaveTheOlderRecordOrTheNewOne) {
    RunWithPowerCuts(Recording(Plugin(), kLatestId, /*extraLetters=*/10));
}

TEST_F(RecordingPowerCuts, LoseNothingWhenTheFilesAreNew) {
    BeginWithoutDatabases();
    RunWithPowerCuts(Recording(Plugin(), kNewId));
}

TEST_F(RecordingPowerCuts, LoseNothingWhenADeleteActionIsRecorded) {
    RunWithPowerCuts(RecordingADeleteAction(Plugin(), kNewId));
}

TEST_F(RecordingPowerCuts, LoseNothingWhenAUserIsReset) {
    RunWithPowerCuts(UserReset(Plugin(), kNewId));
}

} // namespace tsl::test
