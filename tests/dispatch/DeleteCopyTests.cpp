// The copy of a delete action: what it carries, and what happens when it cannot be made.
#include "recording/ActionCopy.h"

#include "component/host/CommandCodes.h"
#include "tests/dispatch/FullAction.h"
#include "tests/dispatch/StoreDispatchFixture.h"

namespace tsl::test {

namespace {

// In the order of copying.
const std::vector<UINT64> kCopiedKeys = {kKeyNestedContainer, kKeyUllValues,  kKeyUsValues,
                                         kKeyNumber,          kKeyBoolValues, kKeyStringValues,
                                         kKeyFloatValues,     kKeyActionName, kKeyRecordId,
                                         kKeyActionTime,      kKeyAppId,      kKeyUserId};

// A creation, a stamping and one step for each key.
constexpr int kSteps = 14;

} // namespace

class DeleteCopy : public StoreDispatchTest {
protected:
    static CVariant ValueOf(ITslParamContainer& container, UINT64 key) {
        CVariant value;
        EXPECT_EQ(S_OK, container.GetValue(key, value.Address()));
        return value;
    }
    void ExpectOnlyTheHostsContainerIsRecorded(UINT32 id) {
        EXPECT_EQ(S_OK, Dispatch(FullAction(id, L"deleteItem")));
        EXPECT_EQ("", IdsIn(kActionLogRows));
        EXPECT_EQ(kFullText, ParametersOf(kTakenRows, id));
        EXPECT_EQ(kFullText, ParametersOf(kReplayRows, id));
    }
};

TEST_F(DeleteCopy, IsStampedThenGivenItsValuesInTheirOrder) {
    CComPtr<ITslParamContainer> copy;
    ASSERT_EQ(S_OK, CopyDeleteAction(*FullAction(5, L"deleteItem").Get().Get(), copy));
    ASSERT_TRUE(copy);
    std::vector<UINT64> expected = kCopiedKeys;
    expected.insert(expected.begin(), 0);
    EXPECT_EQ(expected, Containers().calls);
    EXPECT_EQ(1, Containers().created);
    EXPECT_EQ(IID_ITslParamContainer, Containers().iid);
    EXPECT_EQ(nullptr, Containers().outer);
    UINT64 code = 0;
    EXPECT_EQ(S_OK, copy->GetCommandCode(&code));
    EXPECT_EQ(0x0200000103000000u, code);
}

TEST_F(DeleteCopy, CarriesTheValuesUnchanged) {
    CComPtr<ITslParamContainer> copy;
    ASSERT_EQ(S_OK, CopyDeleteAction(*FullAction(5, L"DeleteItem").Get().Get(), copy));
    EXPECT_EQ(std::wstring(L"DeleteItem"), ValueOf(*copy.Get(), kKeyActionName).Get().bstrVal);
    EXPECT_EQ(5u, ValueOf(*copy.Get(), kKeyRecordId).Get().ulVal);
    EXPECT_EQ(7u, ValueOf(*copy.Get(), kKeyUserId).Get().ulVal);
    EXPECT_EQ(3, ValueOf(*copy.Get(), kKeyAppId).Get().lVal);
    EXPECT_EQ(9, ValueOf(*copy.Get(), kKeyNumber).Get().lVal);
    EXPECT_EQ(kFullActionTime, ValueOf(*copy.Get(), kKeyActionTime).Get().date);
    CVariant texts = ValueOf(*copy.Get(), kKeyStringValues);
    CValueView<BSTR> view;
    ASSERT_EQ(S_OK, view.Open(*texts.Address()));
    ASSERT_EQ(3u, view.Values().size());
    EXPECT_EQ(L"a,b", BstrView(view.Values()[0]));
    EXPECT_EQ(L"", BstrView(view.Values()[1]));
    EXPECT_EQ(L"c", BstrView(view.Values()[2]));
}

TEST_F(DeleteCopy, LeavesAbsentKeysOut) {
    ScriptedContainer action(FullAction(5, L"deleteItem").Get());
    for (const UINT64 key : kCopiedKeys) {
        action.getResults = {{key, S_FALSE}};
        Containers().Restart();
        CComPtr<ITslParamContainer> copy;
        ASSERT_EQ(S_OK, CopyDeleteAction(action, copy));
        std::vector<UINT64> expected = kCopiedKeys;
        std::erase(expected, key);
        expected.insert(expected.begin(), 0);
        EXPECT_EQ(expected, Containers().calls);
    }
    EXPECT_EQ(1u, action.References());
}

TEST_F(DeleteCopy, OfAnEmptyContainerIsEmpty) {
    CComPtr<ITslParamContainer> copy;
    ASSERT_EQ(S_OK, CopyDeleteAction(*ContainerBuilder().Get().Get(), copy));
    ASSERT_TRUE(copy);
    EXPECT_EQ(std::vector<UINT64>{0}, Containers().calls);
}

TEST_F(DeleteCopy, SharesTheNestedContainerAndLetsItGo) {
    ScriptedContainer nested(ContainerBuilder().Get());
    {
        const ContainerBuilder action =
            Action(5, L"deleteItem").Unknown(kKeyNestedContainer, &nested);
        CComPtr<ITslParamContainer> copy;
        ASSERT_EQ(S_OK, CopyDeleteAction(*action.Get().Get(), copy));
        EXPECT_EQ(&nested, ValueOf(*copy.Get(), kKeyNestedContainer).Get().punkVal);
        copy.Reset();
        EXPECT_EQ(2u, nested.References());
        EXPECT_EQ(S_OK, Dispatch(action));
        EXPECT_EQ(2u, nested.References());
    }
    EXPECT_EQ(1u, nested.References());
}

TEST_F(DeleteCopy, ThatFailsAtAnyStepIsNone) {
    for (int step = 1; step <= kSteps; ++step) {
        SCOPED_TRACE(step);
        Containers().Restart({{step, E_ACCESSDENIED}});
        CComPtr<ITslParamContainer> copy;
        EXPECT_EQ(E_ACCESSDENIED,
                  CopyDeleteAction(*FullAction(5, L"deleteItem").Get().Get(), copy));
        EXPECT_FALSE(copy);
        EXPECT_EQ(0, Containers().live);
    }
}

TEST_F(DeleteCopy, IsMadeOnceForBothLogs) {
    EXPECT_EQ(S_OK, Dispatch(FullAction(5, L"deleteItem")));
    EXPECT_EQ(1, Containers().created);
    EXPECT_EQ(kSteps, Containers().steps);
}

TEST_F(DeleteCopy, IsNotMadeOfOtherActionsOrUnderOtherKinds) {
    EXPECT_EQ(S_OK, Dispatch(FullAction(5, L"playItem")));
    m_target.logKind = 4;
    EXPECT_EQ(S_OK, Dispatch(FullAction(6, L"deleteItem")));
    EXPECT_EQ(0, Containers().steps);
}

TEST_F(DeleteCopy, WithoutItsClassLeavesTheHostsContainerToTheReplayLog) {
    RevokeContainerClass();
    ExpectOnlyTheHostsContainerIsRecorded(5);
}

TEST_F(DeleteCopy, ThatFailsAtAnyStepLeavesTheHostsContainerToTheReplayLog) {
    for (int step = 1; step <= kSteps; ++step) {
        SCOPED_TRACE(step);
        Containers().Restart({{step, E_OUTOFMEMORY}});
        ExpectOnlyTheHostsContainerIsRecorded(static_cast<UINT32>(10 + step));
        EXPECT_EQ(0, Containers().live);
    }
}

} // namespace tsl::test
