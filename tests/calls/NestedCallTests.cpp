// A host that calls back in the middle of a call: each host method, each command outside, each
// command inside, on the same object or another. Both calls answer, and leave the store, as if one
// had been made after the other.
#include <algorithm>
#include <map>

#include "tests/calls/CallsFixture.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/FullForm.h"

namespace tsl::test {

namespace {

// What two calls told and left.
struct Effect {
    std::string outer;
    std::string inner;
    std::string store;
    std::string sunk;

    bool operator==(const Effect&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Effect& effect) {
    return out << "\n  outer " << effect.outer << "\n  inner " << effect.inner << "\n  store "
               << effect.store << "\n  sink " << effect.sunk;
}

// Whose method the inner call is.
enum class By { TheSameObject, AnotherObject };

// All rows but for the time of their recording, in an order of their own.
std::string RowsOf(const std::filesystem::path& file, const std::string& table) {
    if (CountRows(file, table) == 0) return table + ": none\n";
    return table + ": " +
           FileDatabase(file).Value(
               "SELECT group_concat(line, ' | ') FROM (SELECT ActionLogId || ' ' || UserId || ' ' "
               "|| ActionName || ' ' || ActionParameters || ' ' || LogKind AS line FROM " +
               table + " ORDER BY line)") +
           "\n";
}

std::string StoreText() {
    const Bytes counter = ReadBytes(CounterPath());
    return RowsOf(ActionLogPath(), kActionLogRows) + RowsOf(ActionLogPath(), kTakenRows) +
           RowsOf(ReplayPath(), kReplayRows) +
           "counter: " + std::string(counter.begin() + 2, counter.end());
}

} // namespace

class NestedCalls : public CallsTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(CallsTest::SetUp());
        for (const auto& path : {ActionLogPath(), ReplayPath(), CounterPath()})
            m_base[path] = ReadBytes(path);
        m_other = AnotherPlugin();
    }
    void TearDown() override {
        m_other.Reset();
        CallsTest::TearDown();
    }

    // Each method that the outer command calls, at its first call and at its last, with the inner
    // command inside it.
    void TryInside(const HostCommand& outer) {
        const std::map<HostMethod, int> entries = EntriesOf(outer);
        for (const HostCommand& inner : HostCommands()) {
            const std::vector<Effect> allowed = OneAfterTheOther(outer, inner);
            for (const auto& [method, count] : entries) {
                for (const int entry : {1, count}) {
                    TryAt(outer, inner, method, entry, allowed, By::TheSameObject);
                    if (IsFullForm())
                        TryAt(outer, inner, method, entry, allowed, By::AnotherObject);
                    if (count == 1 || HasFatalFailure()) break;
                }
            }
            // The other object needs no more than one look at each pair in the short form.
            const auto first = entries.begin();
            TryAt(outer, inner, first->first, first->second, allowed, By::AnotherObject);
        }
    }
    void PutBaseStoreBack() {
        Host().onCall = nullptr;
        Host().sunk.clear();
        RenewPlugin(); // the content store that an object keeps is not created again
        for (const auto& [path, bytes] : m_base)
            WriteBytes(path, bytes);
    }

private:
    std::map<HostMethod, int> EntriesOf(const HostCommand& outer) {
        PutBaseStoreBack();
        std::map<HostMethod, int> entries;
        Host().onCall = [&](HostMethod method) { ++entries[method]; };
        CallByHost(outer, Plugin(), Turn::First);
        Host().onCall = nullptr;
        return entries;
    }

    std::vector<Effect> OneAfterTheOther(const HostCommand& outer, const HostCommand& inner) {
        std::vector<Effect> allowed(2);
        for (const bool innerFirst : {false, true}) {
            PutBaseStoreBack();
            Effect& effect = allowed[innerFirst ? 1 : 0];
            if (innerFirst) effect.inner = CallPlainly(inner, Plugin(), Turn::Second);
            effect.outer = CallPlainly(outer, Plugin(), Turn::First);
            if (!innerFirst) effect.inner = CallPlainly(inner, Plugin(), Turn::Second);
            effect.store = StoreText();
            effect.sunk = Sorted(Host().sunk);
        }
        return allowed;
    }

    void TryAt(const HostCommand& outer, const HostCommand& inner, HostMethod method, int entry,
               const std::vector<Effect>& allowed, By by) {
        PutBaseStoreBack();
        ITslPluginDb2& object = by == By::TheSameObject ? Plugin() : *m_other;
        Effect effect;
        int entries = 0;
        Host().onCall = [&](HostMethod entered) {
            if (entered != method || ++entries != entry) return;
            effect.inner = CallPlainly(inner, object, Turn::Second);
        };
        effect.outer = CallByHost(outer, Plugin(), Turn::First);
        Host().onCall = nullptr;
        effect.store = StoreText();
        effect.sunk = Sorted(Host().sunk);
        ASSERT_TRUE(std::ranges::find(allowed, effect) != allowed.end())
            << inner.name << " inside call " << entry << " of " << NameOf(method) << " of "
            << outer.name << (by == By::TheSameObject ? "" : ", by another object") << effect
            << "\nor, inner after outer:" << allowed[0] << "\nor, before:" << allowed[1];
    }

    static std::string Sorted(std::string text) {
        std::ranges::sort(text);
        return text;
    }

    std::map<std::filesystem::path, Bytes> m_base;
    CComPtr<ITslPluginDb2> m_other;
};

class NestedCallsOf : public NestedCalls, public ::testing::WithParamInterface<size_t> {};

TEST_P(NestedCallsOf, AreAsCallsOneAfterTheOther) {
    TryInside(HostCommands()[GetParam()]);
}

INSTANTIATE_TEST_SUITE_P(Each, NestedCallsOf, ::testing::Range(size_t{0}, HostCommands().size()),
                         [](const auto& tested) {
                             std::string name = HostCommands()[tested.param].name;
                             std::ranges::replace(name, ' ', '_');
                             return name;
                         });

TEST_F(NestedCalls, AreTriedInsideEachMethodOfTheHost) {
    std::map<HostMethod, int> seen;
    Host().onCall = [&](HostMethod method) { ++seen[method]; };
    for (const HostCommand& command : HostCommands())
        CallByHost(command, Plugin(), Turn::First);
    for (const HostMethod method : kHostMethods) {
        if (method != HostMethod::ReleaseHost) {
            EXPECT_GT(seen[method], 0) << NameOf(method);
        }
    }
}

TEST_F(NestedCalls, InsideTheLastReleaseOfTheHostObjectWork) {
    for (const HostCommand& inner : HostCommands()) {
        SCOPED_TRACE(inner.name);
        ASSERT_EQ(S_OK, Plugin().SetHost(Host().HostObject().Get()));
        std::string told;
        Host().onCall = [&](HostMethod method) {
            if (method == HostMethod::ReleaseHost) {
                told = CallPlainly(inner, Plugin(), Turn::Second);
            }
        };
        EXPECT_EQ(S_FALSE, Plugin().SetHost(nullptr));
        Host().onCall = nullptr;
        EXPECT_TRUE(told.starts_with("0x00000000 ")) << told;
        const std::string after = StoreText();
        PutBaseStoreBack();
        EXPECT_EQ(told, CallPlainly(inner, Plugin(), Turn::Second));
        EXPECT_EQ(StoreText(), after) << "as without the host object";
        PutBaseStoreBack();
    }
}

TEST_F(NestedCalls, OfSetRecordingEnabledChangeTheKindOfLaterCallsOnly) {
    Host().onCall = [&](HostMethod method) {
        if (method == HostMethod::GetValue) {
            EXPECT_EQ(S_OK, Plugin().SetRecordingEnabled(8));
        }
    };
    EXPECT_EQ("0x00000000 nothing", CallByHost(HostCommands()[0], Plugin(), Turn::First));
    Host().onCall = nullptr;
    const std::string kind = "SELECT LogKind FROM ";
    const std::string ofIt = " WHERE ActionLogId = 21";
    EXPECT_EQ("1", FileDatabase(ActionLogPath()).Value(kind + kActionLogRows + ofIt));
    EXPECT_EQ("1", FileDatabase(ReplayPath()).Value(kind + kReplayRows + ofIt));
}

} // namespace tsl::test
