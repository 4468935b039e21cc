// Actions whose name is not held as text: nothing is recorded anywhere, and nothing is deleted.
#include "tests/dispatch/DispatchFixture.h"
#include "tests/support/RawContainer.h"

namespace tsl::test {

namespace {

// Gives a name that is only referred to, not held.
class ReferredName {
public:
    explicit ReferredName(const wchar_t* name)
        : m_text(AllocateBstr(name)), m_action(tsl::test::Action(20, L"").Get()) {
        m_action.Make(kKeyActionName, [this](VARIANT& value) {
            value.vt = VT_BYREF | VT_BSTR;
            value.pbstrVal = &m_text;
            return S_OK;
        });
    }
    ReferredName(const ReferredName&) = delete;
    ReferredName& operator=(const ReferredName&) = delete;
    ~ReferredName() { SysFreeString(m_text); }

    ITslParamContainer* Action() { return &m_action; }

private:
    BSTR m_text;
    RawContainer m_action;
};

} // namespace

class UnreadableName : public DispatchTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(DispatchTest::SetUp());
        MakeTables();
        for (const char* const table : {kActionLogRows, kTakenRows, kReplayRows}) {
            Fill(table, {.firstId = 11, .count = 3});
        }
    }
    static void ExpectNothingDone() {
        EXPECT_EQ("11 12 13", IdsIn(kActionLogRows));
        EXPECT_EQ("11 12 13", IdsIn(kTakenRows));
        EXPECT_EQ("11 12 13", IdsIn(kReplayRows));
    }
};

TEST_F(UnreadableName, OfAnotherTypeIsPassedOverUnderEveryKind) {
    UINT32 id = 20;
    for (const UINT32 kind : {1u, 0u, 2u, 8u, 16u}) {
        SetLogKind(kind);
        ContainerBuilder action = Action(++id, L"");
        EXPECT_EQ(S_OK, Report(action.I4(kKeyActionName, 5)));
        EXPECT_EQ(S_OK, Report(action.Date(kKeyActionName, 5.5)));
        EXPECT_EQ(S_OK, Report(action.Texts(kKeyActionName, {L"veSettingReset"})));
        EXPECT_EQ(S_OK, Report(action.Unknown(kKeyActionName, ContainerBuilder().Get().Get())));
        EXPECT_EQ(S_OK, Report(action.Unknown(kKeyActionName, nullptr)));
    }
    ExpectNothingDone();
}

TEST_F(UnreadableName, ThatIsAbsentIsPassedOver) {
    const ContainerBuilder action = Action(20, L"");
    action.Get()->RemoveValue(kKeyActionName);
    EXPECT_EQ(S_OK, Report(action));
    ExpectNothingDone();
}

TEST_F(UnreadableName, ThatTheContainerFailsToGiveIsReported) {
    for (const wchar_t* const name : {L"veSettingReset", L"deleteItem", L"viaMoveContent"}) {
        ScriptedContainer action(Action(20, name).Get());
        action.getResults[kKeyActionName] = E_ACCESSDENIED;
        EXPECT_EQ(E_ACCESSDENIED, Report(&action));
        EXPECT_EQ(1u, action.References());
    }
    ExpectNothingDone();
}

TEST_F(UnreadableName, ThatIsOnlyLeftBehindIsNotThere) {
    for (const wchar_t* const name : {L"veSettingReset", L"deleteItem", L"viaMoveContent"}) {
        RawContainer action(Action(20, L"").Get());
        action.Make(kKeyActionName, [name](VARIANT& value) {
            value.vt = VT_BSTR;
            value.bstrVal = AllocateBstr(name);
            return E_ACCESSDENIED;
        });
        EXPECT_EQ(E_ACCESSDENIED, Report(&action));
    }
    ExpectNothingDone();
}

// The name is changed into text before it is compared with that of the reset; a record takes it
// only as the type that its key says.
TEST_F(UnreadableName, ThatRefersToTextResetsButIsNotRecorded) {
    ReferredName reset(L"veSettingReset");
    EXPECT_EQ(S_OK, Report(reset.Action()));
    EXPECT_EQ("", IdsIn(kActionLogRows));
    EXPECT_EQ("11 12 13", IdsIn(kTakenRows));
    EXPECT_EQ("11 12 13", IdsIn(kReplayRows));
}

TEST_F(UnreadableName, ThatRefersToTextIsNoDeleteAction) {
    ReferredName deletion(L"deleteItem");
    EXPECT_EQ(S_OK, Report(deletion.Action()));
    ExpectNothingDone();
}

TEST_F(UnreadableName, ThatIsEmptyIsRecordedLikeAnyOther) {
    EXPECT_EQ(S_OK, Report(Action(20, L"")));
    EXPECT_EQ("11 12 13 20", IdsIn(kActionLogRows));
    EXPECT_EQ("11 12 13", IdsIn(kTakenRows));
    EXPECT_EQ("11 12 13 20", IdsIn(kReplayRows));
}

} // namespace tsl::test
