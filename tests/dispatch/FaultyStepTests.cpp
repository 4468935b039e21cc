// Each step stands by itself: whatever fails or raises in one, the replay record is written, no
// lock is held, and the next action is recorded.
#include "tests/dispatch/FullAction.h"
#include "tests/dispatch/StoreDispatchFixture.h"
#include "tests/integration/Aftermath.h"
#include "tests/support/ForwardingContainer.h"

namespace tsl::test {

namespace {

// What happens at the chosen read.
enum class Fault { Fails, Throws };

// Forwards to another container but for its chosen read, counted from 1.
class FaultyContainer final : public ForwardingContainer {
public:
    FaultyContainer(CComPtr<CTslParamContainer> inner, int faultyRead, Fault fault)
        : ForwardingContainer(std::move(inner)), m_faultyRead(faultyRead), m_fault(fault) {}

    bool FaultHappened() const { return m_reads >= m_faultyRead; }

    HRESULT STDMETHODCALLTYPE GetValue(UINT64 key, VARIANT* value) override {
        const HRESULT read = CountRead();
        return FAILED(read) ? read : ForwardingContainer::GetValue(key, value);
    }
    HRESULT STDMETHODCALLTYPE GetKeys(VARIANT* keys) override {
        const HRESULT read = CountRead();
        return FAILED(read) ? read : ForwardingContainer::GetKeys(keys);
    }

private:
    HRESULT CountRead() {
        if (++m_reads != m_faultyRead) return S_OK;
        if (m_fault == Fault::Throws) throw CHresultError(E_ACCESSDENIED);
        return E_ACCESSDENIED;
    }

    int m_faultyRead;
    Fault m_fault;
    int m_reads = 0;
};

struct Road {
    const wchar_t* name;
    UINT32 id;
    // Reads for the replay record; a copy is read instead of the host's container where there is
    // one.
    int replayReads;
    // Values without which a copy is no record.
    int neededOfCopy;
};

// Every road; the hundredth ids ask for the user's records too.
constexpr Road kRoads[] = {{L"playItem", 5, 13, 0},       {L"showExternalLink", 6, 13, 0},
                           {L"deleteItem", 7, 0, 3},      {L"veSettingReset", 8, 13, 0},
                           {L"viaMoveContent", 9, 13, 0}, {L"playItem", 100, 13, 0},
                           {L"deleteItem", 200, 0, 3}};

// How often the host was told the fault, and how often there was no replay record though it was
// not.
struct Tally {
    int told = 0;
    int untold = 0;

    bool operator==(const Tally&) const = default;
};

} // namespace

class FaultyStep : public StoreDispatchTest {
protected:
    // Reports the action again and again, with the fault at one read after the other until there
    // are no more.
    Tally TryEachRead(const Road& road, Fault fault) {
        Tally tally;
        for (int read = 1;; ++read) {
            SCOPED_TRACE("read " + std::to_string(read));
            FileDatabase(ReplayPath()).Query("DELETE FROM TslIf_ActionReplay");
            FaultyContainer action(FullAction(road.id, road.name).Get(), read, fault);
            const HRESULT result = AtBoundary([&] { return Dispatch(&action); });
            EXPECT_TRUE(MutexIsFree(kSqliteAccessLock));
            EXPECT_TRUE(NobodyHasOpen(ActionLogPath()));
            EXPECT_TRUE(NobodyHasOpen(ReplayPath()));
            const bool isThere = IdsIn(kReplayRows) == std::to_string(road.id);
            if (!action.FaultHappened()) {
                EXPECT_EQ(S_OK, result);
                EXPECT_TRUE(isThere);
                EXPECT_LE(10, read) << "hardly anything was tried";
                return tally;
            }
            EXPECT_TRUE(result == S_OK || result == E_ACCESSDENIED);
            if (result != S_OK) {
                EXPECT_FALSE(isThere);
                ++tally.told;
            } else if (!isThere) {
                ++tally.untold;
            }
        }
    }

    void ExpectNextActionIsRecorded(UINT32 id) {
        EmptyTables();
        EXPECT_EQ(S_OK, Dispatch(Action(id, L"playItem")));
        EXPECT_EQ(std::to_string(id), IdsIn(kActionLogRows));
        EXPECT_EQ(std::to_string(id), IdsIn(kReplayRows));
    }
};

TEST_F(FaultyStep, OfTheReplayLogIsTold) {
    std::filesystem::create_directories(ReplayPath());
    for (const Road& road : kRoads) {
        SCOPED_TRACE(road.name);
        EXPECT_EQ(static_cast<HRESULT>(0x8004160D), Dispatch(Action(road.id, road.name)));
        EXPECT_TRUE(MutexIsFree(kSqliteAccessLock));
    }
}

TEST_F(FaultyStep, OfTheActionLogIsNotTold) {
    std::filesystem::create_directories(ActionLogPath());
    for (const Road& road : kRoads) {
        SCOPED_TRACE(road.name);
        EXPECT_EQ(S_OK, Dispatch(Action(road.id, road.name)));
        EXPECT_TRUE(MutexIsFree(kSqliteAccessLock));
    }
    EXPECT_EQ("5 6 7 8 9 100 200", IdsIn(kReplayRows));
}

// A copy goes without a value that cannot be read.
TEST_F(FaultyStep, IsToldWhenAReadForTheReplayRecordFails) {
    MakeTables();
    for (const Road& road : kRoads) {
        SCOPED_TRACE(road.name);
        EXPECT_EQ((Tally{road.replayReads, road.neededOfCopy}), TryEachRead(road, Fault::Fails));
        ExpectNextActionIsRecorded(road.id);
    }
}

// The first read is that of the name, without which no step can be chosen.
TEST_F(FaultyStep, IsToldWhenAReadOfTheNameOrForTheReplayRecordRaises) {
    MakeTables();
    for (const Road& road : kRoads) {
        SCOPED_TRACE(road.name);
        EXPECT_EQ((Tally{1 + road.replayReads, 0}), TryEachRead(road, Fault::Throws));
        ExpectNextActionIsRecorded(road.id);
    }
}

} // namespace tsl::test
