#include "tests/engine_faults/FaultFixture.h"

#include <algorithm>
#include <sstream>

#include "tests/content_move/Properties.h"
#include "tests/dispatch/Tables.h"
#include "tests/query/QueryFixture.h"

namespace tsl::test {

namespace fs = std::filesystem;

namespace {

std::string ValueText(const VARIANT& value) {
    std::ostringstream text;
    switch (value.vt) {
    case VT_I4:
        text << value.lVal;
        break;
    case VT_UI4:
        text << value.ulVal;
        break;
    case VT_UI8:
        text << value.ullVal;
        break;
    case VT_BOOL:
        text << (value.boolVal ? "true" : "false");
        break;
    case VT_DATE:
        text << value.date;
        break;
    case VT_BSTR:
        text << '\'' << fs::path(BstrView(value.bstrVal)).string() << '\'';
        break;
    default:
        text << "type " << value.vt;
    }
    return text.str();
}

Answer AnswerText(const VARIANT& answer) {
    if (answer.vt == VT_UI4 && answer.ulVal == 42) return kNoAnswer;
    if (answer.vt == VT_EMPTY) return {"empty"};
    Answer lines;
    size_t number = 0;
    for (const auto& container : Unpack(answer)) {
        ++number;
        for (const UINT64 key : KeysOf(*container)) {
            std::ostringstream line;
            line << number << ' ' << std::hex << (key >> 32) << ": "
                 << ValueText(ValueOf(*container, key).Get());
            lines.push_back(line.str());
        }
    }
    return lines;
}

// Each line begins with the number of its container.
size_t CountContainers(const Answer& answer) {
    return answer == kNoAnswer ? 0 : std::stoul(answer.back());
}

} // namespace

void EngineFaultTest::SetUp() {
    ASSERT_NO_FATAL_FAILURE(StoreTest::SetUp());
    UseEngineWithout(EngineEntry::None);
}

void EngineFaultTest::TearDown() {
    ReleasePlugin();
    EXPECT_EQ(0u, m_contentStore.Held());
    if (m_engine) {
        EXPECT_TRUE(m_engine->Component().CanUnload())
            << "something of the component is still in use";
    }
    m_engine.reset();
    StoreTest::TearDown();
}

void EngineFaultTest::UseEngineWithout(EngineEntry leftOut) {
    ReleasePlugin();
    m_engine.reset();
    m_engine.emplace(leftOut);
    m_plugin = m_engine->Component().CreatePlugin();
}

void EngineFaultTest::Learn(const Operation& operation) {
    fs::remove_all(StoreFolder());
    MakeCounterFile(L"00000020");
    if (!operation.makesTables) MakeFilledStore();
    if (operation.prepare) operation.prepare();
    m_learned = {};
    m_learned.before.Take();
    ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(operation.logKind));

    const Performed performed = Perform(operation);
    const StandInState& seen = Engine().State();
    ASSERT_EQ(S_OK, performed.result);
    m_learned.answer = performed.answer;
    m_learned.calls.assign(std::begin(seen.calls), std::end(seen.calls));
    m_learned.after = m_learned.before.ContentsNow();
    EXPECT_EQ(operation.answers, CountContainers(performed.answer));
    EXPECT_EQ(static_cast<int>(operation.stages.size()), seen.connections);
    for (const EngineEntry entry : kUnusedEntries)
        EXPECT_EQ(0, m_learned.calls[static_cast<size_t>(entry)]) << NameOf(entry);
    ExpectNothingIsLeft();

    const std::vector<bool> allDone(operation.stages.size(), true);
    EXPECT_EQ(After(operation, m_learned.before.Contents(), allDone), m_learned.after);
    const bool changes = std::ranges::any_of(operation.stages, IsChange);
    EXPECT_EQ(changes, m_learned.before.Contents() != m_learned.after);
}

Performed EngineFaultTest::Perform(const Operation& operation, const EngineFault& fault) {
    m_contentStore.calls.clear();
    m_contentStore.items.clear();
    m_contentStore.Hold(7, {Property(L"old one", L"old two", 1)});
    Engine().Arm(fault);
    CVariant answer = CVariant::FromUi4(42);
    Performed performed;
    performed.result = operation.run(Plugin(), answer.Address());
    performed.answer = AnswerText(answer.Get());
    EXPECT_EQ(operation.contentCalls, m_contentStore.calls.size());
    m_contentStore.items.clear();
    return performed;
}

StoreContents EngineFaultTest::After(const Operation& operation, StoreContents contents,
                                     const std::vector<bool>& done) const {
    for (size_t index = 0; index < operation.stages.size(); ++index) {
        const Stage& stage = operation.stages[index];
        if (!done[index] || !IsChange(stage)) continue;
        std::vector<RecordRow>& rows = contents[stage.table];
        const auto isMeant = [&](const RecordRow& row) {
            return std::ranges::find(stage.ids, row.id) != stage.ids.end();
        };
        std::erase_if(rows, isMeant);
        if (stage.kind == StageKind::Delete) continue;
        std::ranges::copy_if(m_learned.after.at(stage.table), std::back_inserter(rows), isMeant);
        std::ranges::sort(rows, {}, &RecordRow::id);
    }
    return contents;
}

void EngineFaultTest::ExpectNothingIsLeft() {
    EXPECT_EQ(0, Engine().State().openConnections);
    EXPECT_EQ(0, Engine().State().openStatements);
    EXPECT_EQ(0, m_containers.live);
    EXPECT_EQ(0u, m_sink.Held());
    ExpectLocksAreFree();
}

} // namespace tsl::test
