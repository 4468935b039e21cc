#include "tests/io_faults/IoFaultFixture.h"

#include <algorithm>
#include <set>

#include "tests/integration/Aftermath.h"
#include "tests/support/ProcessMeasures.h"

namespace tsl::test {

namespace {

// No operation makes as many calls of one kind.
constexpr int kMostCalls = 10000;

// After how many of the disks that one power cut may leave the operation is done again.
constexpr size_t kDisksUsedAgain = 4;

unsigned Seeds() {
    return InForm(3u, 22u);
}

// The first seeds stand for nothing and all of what was not synced, the others for a part of it.
Survival SurvivalOf(unsigned seed) {
    if (seed == 0) return Survival::None;
    if (seed == 1) return Survival::All;
    return seed % 2 == 0 ? Survival::SomeSectors : Survival::SomeWrites;
}

// Which faults the short form takes differs from operation to operation, and is always the same.
unsigned TurnOf(const Operation& operation, size_t kind) {
    std::seed_seq seed(operation.name.begin(), operation.name.end());
    std::mt19937 random(seed);
    random.discard(kind);
    return random() / 16;
}

std::string Describe(const Operation& operation, const FaultKind& kind, int nth, bool fromThenOn) {
    return operation.name + ", " + kind.name + " " + std::to_string(nth) +
           (fromThenOn ? " and all after it" : "");
}

// Whether every state has the record in the action log.
bool AllHave(const States& states, UINT32 id) {
    return std::ranges::all_of(states, [id](const StoreState& state) {
        return std::ranges::find(state.In(Table::Log), id, &TableRow::id) !=
               state.In(Table::Log).end();
    });
}

// Counting the handles takes as long as several faults: the short form does it with one operation.
bool CountsHandles(const Operation& operation) {
    return IsFullForm() || operation.name == "recording a delete action";
}

// The run is made again when it left handles: locks of the language's library that threads of the
// tests meet at make one when they are first waited for, but what leaks does so in every run.
void ExpectNoHandleIsLeftBy(const std::function<void()>& run) {
    constexpr int kTries = 3;
    for (int tries = 0; tries < kTries; ++tries) {
        const int before = CountHandles();
        run();
        if (CountHandles() <= before || ::testing::Test::HasFailure()) return;
    }
    ADD_FAILURE() << "each run leaves a handle";
}

void RunWatched(const Operation& operation, const std::function<void()>& run) {
    if (CountsHandles(operation)) {
        ExpectNoHandleIsLeftBy(run);
    } else {
        run();
    }
}

} // namespace

void IoFaultTest::SetUp() {
    ASSERT_NO_FATAL_FAILURE(PluginTest::SetUp());
    MakeCounterFile(L"00000050");
    ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
    for (UINT32 id = 1; id <= kRecords + 2; ++id) {
        const wchar_t* const name = id <= kRecords ? L"playItem" : L"deleteItem";
        const UINT32 user = id % 2 == 0 ? kOtherUser : kImpliedUser;
        ASSERT_EQ(S_OK, Record(Plugin(), id, name, user));
        ASSERT_TRUE(IsHandedOut(Plugin(), id)) << id;
    }
    m_store = ReadStoreFolder();
}

void IoFaultTest::TearDown() {
    Schedule().Clear();
    const auto& test = *::testing::UnitTest::GetInstance()->current_test_info();
    m_tally.Print(std::string(test.test_suite_name()) + "." + test.name());
    EXPECT_EQ(0, m_tally.recordsLost);
    PluginTest::TearDown();
}

void IoFaultTest::BeginWith(DiskImage files) {
    m_store = std::move(files);
    m_withLatest = false;
}

void IoFaultTest::Begin() {
    WriteStoreFolder(m_store);
    Disk().log.Forget();
    if (!m_withLatest) return;
    ASSERT_EQ(S_OK, Record(Plugin(), kLatestId, L"playItem", kOtherUser));
    ASSERT_TRUE(IsHandedOut(Plugin(), kLatestId));
}

void IoFaultTest::Rehearse(Operation& operation) {
    ASSERT_NO_FATAL_FAILURE(Begin());
    const StoreState before = ReadStore();
    Schedule().Clear();
    ASSERT_EQ(S_OK, operation.run());
    m_rehearsal = Schedule();
    const StoreState complete = ReadStore();
    for (const bool succeeded : {false, true}) {
        m_afterFault[succeeded] = AnyOf(operation.steps, before, complete, succeeded);
        m_afterCut[succeeded] = BeginningsOf(operation.steps, before, complete, succeeded);
    }
    m_complete = {complete};
    ASSERT_EQ(m_afterCut[true].back(), complete);
}

void IoFaultTest::ExpectOneOf(const States& permitted) {
    const StoreState actual = ReadStore();
    EXPECT_TRUE(std::ranges::find(permitted, actual) != permitted.end())
        << "found:" << ::testing::PrintToString(actual)
        << "\npermitted:" << ::testing::PrintToString(permitted);
    const Kept kept = CountKept(permitted, actual);
    m_tally.recordsChecked += kept.records;
    m_tally.recordsLost += kept.lost;
    if (m_alsoCheck) m_alsoCheck();
}

void IoFaultTest::ExpectNothingInUse() {
    EXPECT_EQ(0, Disk().openFiles);
    ExpectLocksAreFree();
    for (const std::filesystem::path& file : {ActionLogPath(), ReplayPath()}) {
        EXPECT_TRUE(!std::filesystem::is_regular_file(file) || NobodyHasOpen(file)) << file;
    }
}

void IoFaultTest::ExpectItWorksNow(Operation& operation) {
    EXPECT_EQ(S_OK, operation.run());
    ExpectOneOf(m_complete);
}

bool IoFaultTest::MeetFault(Operation& operation, const FaultKind& kind, int nth, bool fromThenOn) {
    Begin();
    Schedule().FailAt(kind, nth, fromThenOn);
    const HRESULT result = operation.run();
    const bool isMet = Schedule().Failed() > 0;
    Schedule().Clear();
    ExpectNothingInUse();
    ExpectOneOf(m_afterFault[result == S_OK]);
    if (!isMet) {
        EXPECT_EQ(S_OK, result);
        return false;
    }
    ++m_tally.faults[kind.name];
    ExpectItWorksNow(operation);
    return true;
}

void IoFaultTest::RunWithEachFault(Operation& operation, const FaultKind& kind, bool fromThenOn) {
    for (int nth = 1; nth < kMostCalls; nth += InForm(2, 1)) {
        SCOPED_TRACE(Describe(operation, kind, nth, fromThenOn));
        if (HasFailure() || !MeetFault(operation, kind, nth, fromThenOn)) return;
    }
    FAIL() << operation.name << " is never through";
}

void IoFaultTest::RunWithOneFault(Operation& operation, size_t kindIndex) {
    const FaultKind& kind = kFaultKinds[kindIndex];
    const int calls = m_rehearsal.Calls(kind.call);
    const unsigned turn = TurnOf(operation, kindIndex);
    const bool isLeftOut = turn % 2 == 0;
    if (isLeftOut || calls == 0) return;
    const int nth = 1 + static_cast<int>(turn / 4) % calls;
    const bool fromThenOn = turn / 2 % 2 == 0;
    SCOPED_TRACE(Describe(operation, kind, nth, fromThenOn));
    EXPECT_TRUE(MeetFault(operation, kind, nth, fromThenOn)) << "the call is not made again";
}

void IoFaultTest::RunWithFaults(Operation operation) {
    ASSERT_NO_FATAL_FAILURE(Rehearse(operation));
    RunWatched(operation, [&] {
        for (size_t kind = 0; kind < std::size(kFaultKinds); ++kind) {
            if (!IsFullForm()) {
                RunWithOneFault(operation, kind);
                continue;
            }
            for (const bool fromThenOn : {false, true})
                RunWithEachFault(operation, kFaultKinds[kind], fromThenOn);
        }
    });
}

// What the host was told after the power went does not count as told, but must be true as well.
bool IoFaultTest::MeetPowerCut(Operation& operation, int nth) {
    Begin();
    Schedule().CutPowerAfterChange(nth);
    const HRESULT result = operation.run();
    const bool isMet = Schedule().PowerIsOff();
    if (!isMet) {
        EXPECT_EQ(S_OK, result);
    }
    Schedule().Clear();
    ExpectNothingInUse();
    LookAtDisksAfterCut(operation, m_afterCut[result == S_OK], static_cast<unsigned>(nth) * 1000);
    return isMet;
}

void IoFaultTest::LookAtDisksAfterCut(Operation& operation, const States& permitted,
                                      unsigned firstSeed) {
    const DiskImage folder = ReadStoreFolder();
    const DiskLog log = Disk().log;
    std::set<DiskImage> seen;
    for (unsigned seed = 0; seed < Seeds() && !HasFailure(); ++seed) {
        SCOPED_TRACE("disk " + std::to_string(seed));
        ++m_tally.powerCuts;
        DiskImage left = log.AfterCut(folder, SurvivalOf(seed), firstSeed + seed);
        WriteStoreFolder(left);
        if (!seen.insert(std::move(left)).second) continue;
        ++m_tally.disksChecked;
        // Whoever comes first finishes what the cut left half done: the tests' engine or the
        // component.
        if (seed % 2 == 1) {
            const bool mustBeThere = m_withLatest && AllHave(permitted, kLatestId);
            EXPECT_TRUE(IsHandedOut(Plugin(), kLatestId) || !mustBeThere);
        }
        ExpectOneOf(permitted);
        if (seen.size() <= kDisksUsedAgain) ExpectItWorksNow(operation);
    }
    if (log.UnsettledDeletions() > 0) LookAtUndoneDeletions(folder, log, permitted);
}

// Whether the deletion of a journal is on the disk once it is done is up to the system; the engine
// does not sync folders on Windows. Where it is not, the last change is taken back. That is only
// counted, but no file may be damaged by it.
void IoFaultTest::LookAtUndoneDeletions(const DiskImage& folder, const DiskLog& log,
                                        const States& permitted) {
    ++m_tally.deletionsUndone;
    WriteStoreFolder(log.AfterCut(folder, Survival::None, /*seed=*/0, /*undoDeletions=*/true));
    m_tally.recordsLostByUndoneDeletions += CountKept(permitted, ReadStore()).lost;
}

void IoFaultTest::RunWithPowerCuts(Operation operation) {
    ASSERT_NO_FATAL_FAILURE(Rehearse(operation));
    RunWatched(operation, [&] {
        for (int nth = 1;; nth += InForm(1 + m_rehearsal.Changes() / 2, 1)) {
            ASSERT_LT(nth, kMostCalls) << operation.name << " is never through";
            SCOPED_TRACE(operation.name + ", power cut after change " + std::to_string(nth));
            if (!MeetPowerCut(operation, nth) || HasFailure()) return;
        }
    });
}

} // namespace tsl::test
