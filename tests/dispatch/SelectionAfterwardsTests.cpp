// Whatever becomes of an action: the action log's database is selected again, no lock is held, and
// the next action is recorded.
#include "tests/dispatch/FullAction.h"
#include "tests/dispatch/StoreDispatchFixture.h"
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
};

// Every road; the hundredth ids ask for the user's records too.
constexpr Road kRoads[] = {{L"playItem", 5},       {L"showExternalLink", 6}, {L"deleteItem", 7},
                           {L"veSettingReset", 8}, {L"viaMoveContent", 9},   {L"playItem", 100},
                           {L"deleteItem", 200}};

} // namespace

class SelectionAfterwards : public StoreDispatchTest {
protected:
    void ExpectActionLogDatabase() {
        EXPECT_EQ(L"ualog.db", Store().DatabaseName());
        EXPECT_FALSE(Store().SqliteAccessLock().IsHeld());
    }
    // Reports the action again and again, with the fault at one read after the other until there
    // are no more, and returns how many there were.
    int TryEachRead(const Road& road, Fault fault) {
        for (int read = 1;; ++read) {
            FaultyContainer action(FullAction(road.id, road.name).Get(), read, fault);
            bool thrown = false;
            try {
                Dispatch(&action);
                EXPECT_EQ(L"TslIf_ActionReplay", Store().SelectedTable()) << "read " << read;
            } catch (const CHresultError& error) {
                thrown = true;
                EXPECT_EQ(E_ACCESSDENIED, error.Result());
            }
            EXPECT_EQ(fault == Fault::Throws && action.FaultHappened(), thrown) << "read " << read;
            ExpectActionLogDatabase();
            if (!action.FaultHappened()) return read - 1;
        }
    }
    void TryEachRoad(Fault fault) {
        for (const Road& road : kRoads) {
            SCOPED_TRACE(road.name);
            EXPECT_LE(10, TryEachRead(road, fault));
            EmptyTables();
            EXPECT_EQ(S_OK, Dispatch(Action(road.id, L"playItem")));
            EXPECT_EQ(std::to_string(road.id), IdsIn(kActionLogRows));
            EXPECT_EQ(std::to_string(road.id), IdsIn(kReplayRows));
        }
    }
};

TEST_F(SelectionAfterwards, IsTheActionLogWithTheReplayTable) {
    for (const Road& road : kRoads) {
        SCOPED_TRACE(road.name);
        EXPECT_EQ(S_OK, Dispatch(Action(road.id, road.name)));
        EXPECT_EQ(L"TslIf_ActionReplay", Store().SelectedTable());
        ExpectActionLogDatabase();
    }
}

TEST_F(SelectionAfterwards, IsTheSameWhenTheReplayLogCannotBeOpened) {
    std::filesystem::create_directories(ReplayPath());
    for (const Road& road : kRoads) {
        SCOPED_TRACE(road.name);
        EXPECT_EQ(static_cast<HRESULT>(0x8004160D), Dispatch(Action(road.id, road.name)));
        EXPECT_EQ(L"TslIf_ActionReplay", Store().SelectedTable());
        ExpectActionLogDatabase();
    }
}

TEST_F(SelectionAfterwards, IsTheSameWhenTheActionLogCannotBeOpened) {
    std::filesystem::create_directories(ActionLogPath());
    for (const Road& road : kRoads) {
        SCOPED_TRACE(road.name);
        EXPECT_EQ(S_OK, Dispatch(Action(road.id, road.name)));
        EXPECT_EQ(L"TslIf_ActionReplay", Store().SelectedTable());
        ExpectActionLogDatabase();
    }
}

TEST_F(SelectionAfterwards, IsTheSameWhicheverReadFails) {
    MakeTables();
    TryEachRoad(Fault::Fails);
}

// The boundary of the interface turns what a host's container throws into a result; on the way
// there the selection is put right.
TEST_F(SelectionAfterwards, IsTheActionLogWhicheverReadThrows) {
    MakeTables();
    TryEachRoad(Fault::Throws);
}

} // namespace tsl::test
