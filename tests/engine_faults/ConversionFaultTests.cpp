// The conversion of an older store with every call of the engine failing, and without each of its
// functions: how far it comes, and that the next one completes it.
#include "tests/engine_faults/FaultFixture.h"
#include "tests/engine_faults/FaultSweep.h"
#include "tests/maintenance/OldStore.h"
#include "tests/support/FullForm.h"

namespace tsl::test {

namespace fs = std::filesystem;

namespace {

// How far a conversion comes.
enum class Progress { Nowhere, OneLogKind, LogKinds, Counter, Whole };

Progress ProgressWith(const StandInState& seen) {
    for (int index = 0; index < seen.hitCount; ++index) {
        const FaultHit& hit = seen.hits[index];
        if (hit.entry == EngineEntry::Close) continue;
        if (std::wstring_view(hit.statement).starts_with(L"PRAGMA busy_timeout")) continue;
        const bool carriedOut =
            hit.entry == EngineEntry::Finalize ||
            (hit.entry == EngineEntry::Step && seen.fault.moment == FaultMoment::Afterwards);
        const std::wstring text = hit.statement;
        if (text.starts_with(L"DROP")) return carriedOut ? Progress::Whole : Progress::Counter;
        if (text.starts_with(L"SELECT")) return Progress::LogKinds;
        if (!text.starts_with(L"UPDATE")) return Progress::Nowhere;
        const bool second = text.find(L"LogKind = 4") != std::wstring::npos;
        if (second) return carriedOut ? Progress::LogKinds : Progress::OneLogKind;
        return carriedOut ? Progress::OneLogKind : Progress::Nowhere;
    }
    return Progress::Whole;
}

StoreImage WithOneLogKind(StoreImage image) {
    for (Row& record : image.records)
        record.back() = "1";
    return image;
}

} // namespace

class ConversionFault : public EngineFaultTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(EngineFaultTest::SetUp());
        MakeOldStore("complete.sql");
        m_files.Take();
        m_before = ReadActionLog();
        Convert({});
        m_calls.assign(std::begin(Engine().State().calls), std::end(Engine().State().calls));
        ExpectProgress(Progress::Whole);
    }

    void Convert(const EngineFault& fault) {
        Engine().Arm(fault);
        EXPECT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
    }

    void ExpectProgress(Progress progress) {
        ExpectNothingIsLeft();
        EXPECT_TRUE(NobodyHasOpen(ActionLogPath()));
        EXPECT_EQ(ImageAt(progress), ReadActionLog());
        ASSERT_EQ(progress >= Progress::Counter, fs::exists(CounterPath()));
        if (progress >= Progress::Counter) {
            EXPECT_EQ(CounterBytes(L"00000042"), ReadBytes(CounterPath()));
        }
    }

    bool Try(const EngineFault& fault) {
        SCOPED_TRACE(std::string(NameOf(fault.entry)) + ", call " + std::to_string(fault.call) +
                     ", code " + std::to_string(fault.code));
        PutBack();
        Convert(fault);
        const StandInState seen = Engine().State();
        const Progress progress = ProgressWith(seen);
        ExpectProgress(progress);
        if (seen.hitCount > 0) ++m_progress[progress];
        // A counter keeps the store from being converted again, with the old table or without.
        Convert({});
        ExpectProgress(progress == Progress::Counter ? progress : Progress::Whole);
        return seen.hitCount > 0 && !HasFailure();
    }

    void PutBack() const { m_files.PutBack(); }
    const CallCount m_callCount = [this](EngineEntry entry) {
        return m_calls[static_cast<size_t>(entry)];
    };
    const TryFault m_try = [this](const EngineFault& fault) { return Try(fault); };
    std::map<Progress, int> m_progress;

private:
    StoreImage ImageAt(Progress progress) const {
        if (progress == Progress::Nowhere) return m_before;
        if (progress == Progress::OneLogKind) return WithOneLogKind(m_before);
        return progress == Progress::Whole ? Converted(m_before) : WithLogKinds(m_before);
    }

    StoreSnapshot m_files;
    StoreImage m_before;
    std::vector<int> m_calls;
};

TEST_F(ConversionFault, StopsItWhereItIsAndTheNextOneCompletesIt) {
    TryEachCall(m_callCount, m_try, /*briefStride=*/1);
    TryEachCallAndThoseAfter(m_callCount, m_try, /*briefStride=*/2);
    std::string figure = "engine faults of the conversion:";
    for (const Progress progress : {Progress::Nowhere, Progress::OneLogKind, Progress::LogKinds,
                                    Progress::Counter, Progress::Whole})
        figure += ' ' + std::to_string(m_progress[progress]);
    Measured(figure + " not begun, with one log kind, with log kinds, with the counter, whole");
}

TEST_F(ConversionFault, OfAFunctionThatIsMissingStopsItTheSameWay) {
    for (int index = 0; index < kEntryCount; ++index) {
        SCOPED_TRACE(kEntryNames[index]);
        const auto leftOut = static_cast<EngineEntry>(index);
        UseEngineWithout(leftOut);
        PutBack();
        Convert({});
        ExpectLocksAreFree();
        Engine().ReleaseLeftOpen();
        const bool stops = leftOut == EngineEntry::Open || leftOut == EngineEntry::Prepare16V2 ||
                           leftOut == EngineEntry::Step || leftOut == EngineEntry::Finalize;
        const bool isBlind = leftOut == EngineEntry::ColumnInt64; // for the last id
        ExpectProgress(stops ? Progress::Nowhere : isBlind ? Progress::LogKinds : Progress::Whole);
    }
}

} // namespace tsl::test
