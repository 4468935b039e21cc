// Base of the tests that make the engine's files fail under the component: a store of acknowledged
// records, an operation that meets a fault or a power cut, and a look at what is left.
#pragma once

#include <array>
#include <functional>

#include "tests/io_faults/FaultFileSystem.h"
#include "tests/io_faults/Operation.h"
#include "tests/io_faults/Tally.h"
#include "tests/support/PluginFixture.h"

namespace tsl::test {

// A record that is written right before each fault. It counts as acknowledged because its status
// was S_OK and it was handed out by its id; so do all records of the store that the operations
// begin with.
inline constexpr UINT32 kLatestId = 30;
inline constexpr UINT32 kNewId = 31;
// Of the store: records of both users in turn, then one to be taken of each.
inline constexpr UINT32 kRecords = 8;
inline constexpr UINT32 kIdToTake = kRecords + 1;

class IoFaultTest : public PluginTest {
protected:
    // Makes the store, with recording on and log kind 1.
    void SetUp() override;
    void TearDown() override;

    FaultSchedule& Schedule() { return m_files.Disk().schedule; }
    FaultDisk& Disk() { return m_files.Disk(); }

    // What the operations begin with, instead of the store that SetUp made, and without the latest
    // record.
    void BeginWith(DiskImage files);
    // Looked at besides the rows, whenever those are.
    void AlsoCheck(std::function<void()> check) { m_alsoCheck = std::move(check); }
    // Lets the operation meet faults of each kind, once and from then on. The short form takes one
    // of each second kind, and another for each operation.
    void RunWithFaults(Operation operation);
    // Cuts the power after each change that the operation makes to a file, and when it is through.
    // The short form takes few of them.
    void RunWithPowerCuts(Operation operation);
    // Lets the operation meet a fault in its first such call, then in its second, until it passes
    // without one. The short form takes every second. REQUIRES: Rehearse was called.
    void RunWithEachFault(Operation& operation, const FaultKind& kind, bool fromThenOn);

    // Does the operation without a fault: what the others compare with.
    void Rehearse(Operation& operation);
    // Makes the store that the operation begins with.
    void Begin();

private:
    void RunWithOneFault(Operation& operation, size_t kindIndex);
    void ExpectOneOf(const States& permitted);
    void ExpectNothingInUse();
    void ExpectItWorksNow(Operation& operation);
    bool MeetFault(Operation& operation, const FaultKind& kind, int nth, bool fromThenOn);
    bool MeetPowerCut(Operation& operation, int nth);
    void LookAtDisksAfterCut(Operation& operation, const States& permitted, unsigned firstSeed);
    void LookAtUndoneDeletions(const DiskImage& folder, const DiskLog& log,
                               const States& permitted);

    FaultFileSystem m_files;
    DiskImage m_store;
    bool m_withLatest = true;
    std::function<void()> m_alsoCheck;
    // Of the operation that was rehearsed: its calls, the states in which it may leave the store
    // after a failure and after a success, with a fault and with a power cut, and the last of them.
    FaultSchedule m_rehearsal;
    std::array<States, 2> m_afterFault;
    std::array<States, 2> m_afterCut;
    States m_complete;
    Tally m_tally;
};

} // namespace tsl::test
