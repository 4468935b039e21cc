// Packing answers: containers, texts, and lists of ids as the operations call it.
#include "query/IdListAnswer.h"
#include "query/ResultArray.h"
#include "tests/query/QueryFixture.h"

namespace tsl::test {

class Packing : public QueryTest {
protected:
    static ContainerList TwoContainers() {
        ContainerList containers;
        for (const UINT32 id : {1u, 2u}) {
            const CComPtr<CTslParamContainer> made = ContainerBuilder().Ui4(1, id).Get();
            made->AddRef();
            containers.push_back(CComPtr<ITslParamContainer>::FromOwned(made.Get()));
        }
        return containers;
    }
};

TEST_F(Packing, KeepsTheOrderAndReplacesTheResult) {
    CVariant answer = CVariant::FromText(L"replaced");
    ASSERT_EQ(S_OK, PackContainers(TwoContainers(), answer.Address()));
    const AnswerContainers containers = Unpack(answer.Get());
    ASSERT_EQ(2u, containers.size());
    EXPECT_EQ(1u, ValueOf(*containers[0], 1).Get().ulVal);
    EXPECT_EQ(2u, ValueOf(*containers[1], 1).Get().ulVal);
}

TEST_F(Packing, HoldsOneReferenceToEachContainer) {
    ScriptedContainer container(ContainerBuilder().Get());
    {
        CVariant answer;
        ContainerList list;
        container.AddRef();
        list.push_back(CComPtr<ITslParamContainer>::FromOwned(&container));
        ASSERT_EQ(S_OK, PackContainers(std::move(list), answer.Address()));
        EXPECT_EQ(2u, container.References());
    }
    EXPECT_EQ(1u, container.References());
}

TEST_F(Packing, NothingLeavesTheResult) {
    CVariant answer = CVariant::FromUi4(42);
    EXPECT_EQ(S_FALSE, PackContainers({}, answer.Address()));
    EXPECT_EQ(S_FALSE, PackTexts({}, answer.Address()));
    EXPECT_EQ(VT_UI4, answer.Type());
}

TEST_F(Packing, NeedsAResult) {
    EXPECT_EQ(E_POINTER, PackContainers(TwoContainers(), nullptr));
    EXPECT_EQ(E_POINTER, PackTexts(std::vector<std::wstring>{L"a"}, nullptr));
    EXPECT_EQ(E_POINTER, PackContainers({}, nullptr)) << "also for nothing";
}

// What the old content becomes when it cannot be cleared is the platform's business.
TEST_F(Packing, IsNotPutInPlaceOfAnArrayInUse) {
    SAFEARRAY* const array = SafeArrayCreateVector(VT_I4, 0, 1);
    CVariant answer = CVariant::FromOwnedArray(array, VT_I4);
    ASSERT_EQ(S_OK, SafeArrayLock(array));
    ScriptedContainer container(ContainerBuilder().Get());
    ContainerList list;
    container.AddRef();
    list.push_back(CComPtr<ITslParamContainer>::FromOwned(&container));
    EXPECT_EQ(DISP_E_ARRAYISLOCKED, PackContainers(std::move(list), answer.Address()));
    EXPECT_NE(VT_ARRAY | VT_UNKNOWN, answer.Type());
    EXPECT_EQ(1u, container.References()) << "what was packed is given back";
    EXPECT_EQ(S_OK, SafeArrayUnlock(array));
    if (answer.Type() == VT_EMPTY) SafeArrayDestroy(array);
}

TEST_F(Packing, OfTextsIsAnArrayOfCopies) {
    CVariant answer = CVariant::FromText(L"replaced");
    const std::vector<std::wstring> texts = {L"a", L"", std::wstring(L"x\0y", 3)};
    ASSERT_EQ(S_OK, PackTexts(texts, answer.Address()));
    EXPECT_EQ(0x2008, answer.Type());
    ASSERT_EQ(1u, SafeArrayGetDim(answer.Get().parray));
    EXPECT_EQ(0, answer.Get().parray->rgsabound[0].lLbound);
    CValueView<BSTR> view;
    ASSERT_EQ(S_OK, view.Open(*answer.Address()));
    std::vector<std::wstring> found;
    for (const BSTR text : view.Values())
        found.emplace_back(text, SysStringLen(text));
    EXPECT_EQ(texts, found);
}

TEST_F(Packing, OfAllIdsLeavesOutZero) {
    CVariant answer;
    const std::vector<UINT64> ids = {0, 5, 0, 0x100000000, 0};
    ASSERT_EQ(S_OK, AnswerAllIds(ids, answer.Address()));
    Ids found;
    for (const auto& container : Unpack(answer.Get()))
        found.push_back(ValueOf(*container, 0x0200001000000015).Get().ullVal);
    EXPECT_EQ((Ids{5, 0x100000000}), found);
}

TEST_F(Packing, OfIdsKeepsZeroAndDuplicates) {
    CVariant answer;
    const std::vector<UINT32> ids = {7, 0, 7};
    ASSERT_EQ(S_OK, AnswerIds(ids, answer.Address()));
    Ids found;
    for (const auto& container : Unpack(answer.Get()))
        found.push_back(ValueOf(*container, 0x0200002200000013).Get().ulVal);
    EXPECT_EQ((Ids{7, 0, 7}), found);
}

TEST_F(Packing, OfNoIdsIsAnInvalidArgumentAndLeavesTheResult) {
    CVariant answer = CVariant::FromUi4(42);
    EXPECT_EQ(E_INVALIDARG, AnswerIds({}, answer.Address()));
    EXPECT_EQ(E_INVALIDARG, AnswerAllIds({}, answer.Address()));
    EXPECT_EQ(VT_UI4, answer.Type());
    EXPECT_EQ(E_POINTER, AnswerIds({}, nullptr));
    EXPECT_EQ(E_POINTER, AnswerAllIds({}, nullptr));
    EXPECT_EQ(0, Containers().created);
}

} // namespace tsl::test
