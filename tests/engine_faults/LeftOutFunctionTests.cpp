// Every operation with an engine that lacks one of its functions. Where the function would report a
// result, all is as if each call of it failed with the engine's plain error.
#include "component/host/CommandCodes.h"
#include "tests/engine_faults/FaultFixture.h"
#include "tests/engine_faults/FaultSweep.h"
#include "tests/support/Containers.h"
#include "tests/support/FullForm.h"

namespace tsl::test {

namespace {

constexpr int kPlainError = 1;

constexpr EngineEntry kReportingEntries[] = {EngineEntry::Prepare16V2, EngineEntry::BindInt64,
                                             EngineEntry::BindText16,  EngineEntry::BindDouble,
                                             EngineEntry::Step,        EngineEntry::Finalize,
                                             EngineEntry::Open,        EngineEntry::Close};

// What is expected of an operation without one function.
struct Expected {
    HRESULT result = S_OK;
    Answer answer;
    StoreContents after;
};

// The answer with another value under the keys, which are hexadecimal.
Answer WithValue(Answer answer, std::initializer_list<const char*> keys, const std::string& value) {
    for (std::string& line : answer) {
        for (const std::string key : keys) {
            const size_t found = line.find(' ' + key + ": ");
            if (found != std::string::npos) line = line.substr(0, found) + ' ' + key + ": " + value;
        }
    }
    return answer;
}

} // namespace

class LeftOutFunction : public EngineFaultTest {
protected:
    // Performs the operations without each of the functions, every nth of them.
    void TryWithout(const std::vector<EngineEntry>& functions, int stride) {
        std::vector<Lesson> lessons;
        int number = 0;
        for (const OperationGroup& group : OperationGroups()) {
            for (const Operation& operation : group.operations) {
                SCOPED_TRACE(operation.name);
                if (number++ % stride == 0) lessons.push_back(LearnFrom(operation, functions));
                ASSERT_FALSE(HasFailure());
            }
        }
        for (const EngineEntry function : functions) {
            SCOPED_TRACE(NameOf(function));
            UseEngineWithout(function);
            for (const Lesson& lesson : lessons)
                ExpectOutcome(lesson, function);
            ExpectTheNextId();
        }
        Measured(std::to_string(functions.size()) + " functions left out, each in " +
                 std::to_string(lessons.size()) + " operations");
    }

private:
    // An operation, and what to expect without each of the functions.
    struct Lesson {
        const Operation* operation;
        Learned learned;
        std::map<EngineEntry, Expected> without;
    };

    Lesson LearnFrom(const Operation& operation, const std::vector<EngineEntry>& functions) {
        Learn(operation);
        Lesson lesson{.operation = &operation, .learned = WhatWasLearned(), .without = {}};
        for (const EngineEntry function : functions)
            lesson.without[function] = ExpectedWithout(function, operation);
        return lesson;
    }

    Expected ExpectedWithout(EngineEntry function, const Operation& operation) {
        switch (function) {
        case EngineEntry::ColumnInt64:
            return ExpectedWithoutIntegers(operation);
        case EngineEntry::ColumnText16:
            return ExpectedWithoutTexts(operation);
        case EngineEntry::ColumnDouble:
            return ExpectedWithoutTimes(operation);
        default:
            return ExpectedIfAllFail(operation, function);
        }
    }

    void ExpectOutcome(const Lesson& lesson, EngineEntry leftOut) {
        SCOPED_TRACE(lesson.operation->name);
        const Expected& expected = lesson.without.at(leftOut);
        Recall(lesson.learned);
        lesson.learned.before.PutBack();
        ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(lesson.operation->logKind));
        const Performed performed = Perform(*lesson.operation);
        EXPECT_EQ(expected.result, performed.result);
        EXPECT_EQ(expected.answer, performed.answer);
        ExpectLocksAreFree();
        // Without these nobody can end what was begun.
        if (leftOut == EngineEntry::Finalize || leftOut == EngineEntry::Close) {
            EXPECT_GT(Engine().State().openConnections, 0);
            Engine().ReleaseLeftOpen();
        }
        ExpectNothingIsLeft();
        EXPECT_EQ(expected.after, lesson.learned.before.ContentsNow());
    }

    void ExpectTheNextId() {
        CVariant answer;
        EXPECT_EQ(S_OK, Plugin().Request(kCommandNextRecordId, ContainerBuilder(), nullptr,
                                         answer.Address()));
        EXPECT_EQ(VT_UNKNOWN, answer.Type());
    }

    // Nothing fails for lack of a function that is never called.
    Expected ExpectedIfAllFail(const Operation& operation, EngineEntry entry) {
        WhatWasLearned().before.PutBack();
        Perform(operation, {.entry = entry, .call = 1, .code = kPlainError, .lasting = true});
        const Expectation expected = ExpectationOf(operation, Engine().State());
        return {expected.result, expected.answered ? WhatWasLearned().answer : kNoAnswer,
                After(operation, WhatWasLearned().before.Contents(), expected.done)};
    }

    // Every id, user and application is 1; what the engine does itself, it does right.
    Expected ExpectedWithoutIntegers(const Operation& operation) const {
        const bool fromText = operation.stages[0].kind == StageKind::Fetch;
        const Answer& answer = WhatWasLearned().answer;
        return {S_OK,
                fromText ? answer
                         : WithValue(answer, {"2000022", "2000021", "2000020", "2000010"}, "1"),
                WhatWasLearned().after};
    }

    // A record that is taken has its values in a text.
    Expected ExpectedWithoutTexts(const Operation& operation) const {
        const bool fromText = operation.stages[0].kind == StageKind::Fetch;
        return {S_OK,
                fromText ? kNoAnswer
                         : WithValue(WhatWasLearned().answer, {"2000025", "2000026"}, "''"),
                WhatWasLearned().after};
    }

    // Every time is 1, at which there is no record.
    Expected ExpectedWithoutTimes(const Operation& operation) const {
        const bool wrapped = std::string(operation.name) == "IdsOfWrappedRange";
        return {wrapped ? E_INVALIDARG : S_OK,
                wrapped ? kNoAnswer : WithValue(WhatWasLearned().answer, {"2000024"}, "1"),
                WhatWasLearned().after};
    }
};

TEST_F(LeftOutFunction, ThatReportsResultsFailsAndLeavesNothingHalfDone) {
    TryWithout({std::begin(kReportingEntries), std::end(kReportingEntries)}, BriefStride(1));
}

TEST_F(LeftOutFunction, ThatIsNotCalledIsNotMissed) {
    TryWithout({std::begin(kUnusedEntries), std::end(kUnusedEntries)}, BriefStride(6));
}

TEST_F(LeftOutFunction, ThatReadsTextsOrTimesLeavesThemEmpty) {
    TryWithout({EngineEntry::ColumnText16, EngineEntry::ColumnDouble}, /*stride=*/1);
}

TEST_F(LeftOutFunction, ThatReadsIntegersMakesThemOneAndKeepsOneRowPerRecord) {
    TryWithout({EngineEntry::ColumnInt64}, /*stride=*/1);
}

} // namespace tsl::test
