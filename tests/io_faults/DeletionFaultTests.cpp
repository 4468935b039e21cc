// Deletions, and takes of a record, while the disk fails.
#include "tests/io_faults/IoFaultFixture.h"

namespace tsl::test {

namespace {

constexpr UINT32 kIdOfImpliedUser = 5;

} // namespace

class DeletionFaults : public IoFaultTest {};

TEST_F(DeletionFaults, DeleteOneRecordOrNone) {
    RunWithFaults(DeletingOne(Plugin(), kIdOfImpliedUser));
}

TEST_F(DeletionFaults, DeleteAllIdsOfARangeOrNone) {
    RunWithFaults(DeletingIds(Plugin(), 3, 7));
}

TEST_F(DeletionFaults, DeleteAllTimesOfARangeOrNone) {
    RunWithFaults(DeletingTimes(Plugin()));
}

TEST_F(DeletionFaults, TakeARecordOrLeaveIt) {
    RunWithFaults(Taking(Plugin(), kIdToTake));
}

class DeletionPowerCuts : public IoFaultTest {};

TEST_F(DeletionPowerCuts, DeleteOneRecordOrNone) {
    RunWithPowerCuts(DeletingOne(Plugin(), kIdOfImpliedUser));
}

TEST_F(DeletionPowerCuts, DeleteAllIdsOfARangeOrNone) {
    RunWithPowerCuts(DeletingIds(Plugin(), 3, 7));
}

TEST_F(DeletionPowerCuts, DeleteAllTimesOfARangeOrNone) {
    RunWithPowerCuts(DeletingTimes(Plugin()));
}

TEST_F(DeletionPowerCuts, TakeARecordOrLeaveIt) {
    RunWithPowerCuts(Taking(Plugin(), kIdToTake));
}

} // namespace tsl::test
