// Every operation with every call of the engine failing, once or from there on: what the host is
// told, what the store holds, that nothing is left locked or open, and that the operation works the
// next time.
#include <sstream>

#include "tests/engine_faults/FaultFixture.h"
#include "tests/engine_faults/FaultSweep.h"
#include "tests/support/FullForm.h"
#include "tests/support/ProcessMeasures.h"

namespace tsl::test {

namespace {

std::string Described(const EngineFault& fault) {
    constexpr const char* kMoments[] = {"instead of being done", "after being done",
                                        "with the transaction rolled back"};
    std::ostringstream text;
    text << NameOf(fault.entry) << ", call " << fault.call << (fault.lasting ? " and later" : "")
         << ": code " << fault.code << ' ' << kMoments[static_cast<int>(fault.moment)];
    return text.str();
}

} // namespace

class EngineFaultOf : public EngineFaultTest, public ::testing::WithParamInterface<OperationGroup> {
protected:
    // Tries all faults of each operation.
    void TryAll() {
        // Whatever a process makes once is made before handles are counted.
        for (const Operation& operation : GetParam().operations)
            ASSERT_NO_FATAL_FAILURE(Learn(operation));
        const int handles = CountHandles();
        for (const Operation& operation : GetParam().operations) {
            SCOPED_TRACE(operation.name);
            m_operation = &operation;
            m_tally = {};
            ASSERT_NO_FATAL_FAILURE(Learn(operation));
            const CallCount calls = [this](EngineEntry entry) {
                return WhatWasLearned().calls[static_cast<size_t>(entry)];
            };
            const TryFault tryFault = [this](const EngineFault& fault) { return Try(fault); };
            TryEachCall(calls, tryFault, operation.briefStride);
            TryEachCallAndThoseAfter(calls, tryFault, 2 * operation.briefStride);
            ReportTally();
        }
        EXPECT_EQ(handles, CountHandles());
    }

private:
    struct Tally {
        int faults = 0;
        int changesDone = 0;
        int changesUndone = 0;
        int answersWhole = 0;
        int answersMissing = 0;
    };

    // Whether a call failed.
    bool Try(const EngineFault& fault) {
        SCOPED_TRACE(Described(fault));
        WhatWasLearned().before.PutBack();
        const Performed performed = Perform(TheOperation(), fault);
        const StandInState seen = Engine().State();
        Engine().Disarm();
        EXPECT_LE(seen.hitCount, StandInState::kMostHits);
        const Expectation expected = ExpectationOf(TheOperation(), seen);
        EXPECT_EQ(expected.result, performed.result);
        EXPECT_EQ(ExpectedAnswer(expected, seen), performed.answer);
        ExpectNothingIsLeft();
        const StoreContents contents = WhatWasLearned().before.ContentsNow();
        EXPECT_EQ(After(TheOperation(), WhatWasLearned().before.Contents(), expected.done),
                  contents);
        EXPECT_TRUE(WhatWasLearned().before.CounterIsAsThen());
        const bool hit = seen.hitCount > 0;
        if (hit) {
            Count(expected);
            ExpectItWorksNow(contents, expected);
        }
        return hit && !HasFailure();
    }

    // A text that could not be read is empty.
    Answer ExpectedAnswer(const Expectation& expected, const StandInState& seen) {
        if (!expected.answered) return kNoAnswer;
        Answer answer = WhatWasLearned().answer;
        if (seen.hitCount == 0 || seen.hits[0].entry != EngineEntry::ColumnText16) return answer;
        int text = 0;
        for (std::string& line : answer) {
            if (!line.ends_with('\'')) continue;
            ++text;
            if (text == seen.fault.call || (seen.fault.lasting && text > seen.fault.call)) {
                line.resize(line.find('\''));
                line += "''";
            }
        }
        return answer;
    }

    void ExpectItWorksNow(const StoreContents& contents, const Expectation& fault) {
        const Performed again = Perform(TheOperation());
        EXPECT_EQ(S_OK, again.result);
        const std::vector<bool> allDone(TheOperation().stages.size(), true);
        EXPECT_EQ(After(TheOperation(), contents, allDone), WhatWasLearned().before.ContentsNow());
        const bool taken = TheOperation().stages[0].kind == StageKind::Fetch && fault.done[1];
        EXPECT_EQ(taken ? kNoAnswer : WhatWasLearned().answer, again.answer);
        EXPECT_EQ(0, Engine().State().openConnections);
    }

    void Count(const Expectation& expected) {
        ++m_tally.faults;
        for (size_t index = 0; index < expected.done.size(); ++index) {
            if (!IsChange(TheOperation().stages[index])) continue;
            ++(expected.done[index] ? m_tally.changesDone : m_tally.changesUndone);
        }
        if (TheOperation().answers == 0) return;
        ++(expected.answered ? m_tally.answersWhole : m_tally.answersMissing);
    }

    void ReportTally() const {
        std::ostringstream figure;
        figure << "engine faults of " << TheOperation().name << ": " << m_tally.faults
               << " injected, " << m_tally.changesDone << " changes made whole and "
               << m_tally.changesUndone << " not at all, " << m_tally.answersWhole
               << " answers given whole and " << m_tally.answersMissing << " not at all";
        Measured(figure.str());
    }

    const Operation& TheOperation() const { return *m_operation; }

    const Operation* m_operation = nullptr;
    Tally m_tally;
};

INSTANTIATE_TEST_SUITE_P(Each, EngineFaultOf, ::testing::ValuesIn(OperationGroups()),
                         [](const auto& group) { return group.param.name; });

TEST_P(EngineFaultOf, IsReportedAndLeavesNothingHalfDone) {
    TryAll();
}

} // namespace tsl::test
