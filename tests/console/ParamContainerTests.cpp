// The parameter container of the console host.
#include "console/ParamContainer.h"

#include <gtest/gtest.h>

#include "component/host/Identities.h"
#include "component/host/ParamKeys.h"
#include "console/Arrays.h"

namespace tsl::test {

namespace {

CComPtr<CTslParamContainer> FilledWith(std::initializer_list<UINT64> keys) {
    CComPtr<CTslParamContainer> container = CTslParamContainer::Create();
    for (const UINT64 key : keys) {
        CVariant value = CVariant::FromUi4(1);
        EXPECT_EQ(S_OK, container->SetValue(key, value.Address()));
    }
    return container;
}

} // namespace

TEST(ParamContainer, AbsentKeyIsFalseAndLeavesTheValue) {
    const auto container = FilledWith({});
    CVariant value = CVariant::FromUi4(42);
    EXPECT_EQ(S_FALSE, container->GetValue(kKeyUserId, value.Address()));
    EXPECT_EQ(VT_UI4, value.Type());
    EXPECT_EQ(42u, value.Get().ulVal);
}

TEST(ParamContainer, ListsKeysInAscendingOrder) {
    const auto container = FilledWith({0x0500000000000000, 3, 0x0200002500000008, 1});
    CVariant keys;
    ASSERT_EQ(S_OK, container->GetKeys(keys.Address()));
    ASSERT_EQ(VT_ARRAY | VT_UI8, keys.Type());
    CValueView<ULONGLONG> view;
    ASSERT_EQ(S_OK, view.Open(*keys.Address()));
    const std::vector<ULONGLONG> listed(view.Values().begin(), view.Values().end());
    EXPECT_EQ((std::vector<ULONGLONG>{1, 3, 0x0200002500000008, 0x0500000000000000}), listed);
    LONG lower = -1;
    EXPECT_EQ(S_OK, SafeArrayGetLBound(keys.Get().parray, 1, &lower));
    EXPECT_EQ(0, lower);
}

TEST(ParamContainer, EmptyContainerHasAnEmptyKeyList) {
    CVariant keys;
    ASSERT_EQ(S_OK, FilledWith({})->GetKeys(keys.Address()));
    CValueView<ULONGLONG> view;
    ASSERT_EQ(S_OK, view.Open(*keys.Address()));
    EXPECT_TRUE(view.Values().empty());
}

TEST(ParamContainer, KeepsDeepCopies) {
    const auto container = FilledWith({});
    CVariant texts = MakeTextArray(std::vector<std::wstring>{L"one", L"two"});
    ASSERT_EQ(S_OK, container->SetValue(kKeyStringValues, texts.Address()));
    CVariant first;
    CVariant second;
    ASSERT_EQ(S_OK, container->GetValue(kKeyStringValues, first.Address()));
    ASSERT_EQ(S_OK, container->GetValue(kKeyStringValues, second.Address()));
    EXPECT_NE(texts.Get().parray, first.Get().parray);
    EXPECT_NE(first.Get().parray, second.Get().parray);
    CValueView<BSTR> view;
    ASSERT_EQ(S_OK, view.Open(*first.Address()));
    EXPECT_EQ(L"two", BstrView(view.Values()[1]));
}

TEST(ParamContainer, FollowsReferences) {
    const auto container = FilledWith({});
    LONG number = 5;
    CVariant reference;
    reference.Address()->vt = VT_BYREF | VT_I4;
    reference.Address()->plVal = &number;
    ASSERT_EQ(S_OK, container->SetValue(kKeyAppId, reference.Address()));
    number = 6;
    CVariant value;
    ASSERT_EQ(S_OK, container->GetValue(kKeyAppId, value.Address()));
    EXPECT_EQ(VT_I4, value.Type());
    EXPECT_EQ(5, value.Get().lVal);
}

TEST(ParamContainer, ReplacesAndRemovesValues) {
    const auto container = FilledWith({kKeyUserId});
    CVariant value = CVariant::FromUi4(2);
    ASSERT_EQ(S_OK, container->SetValue(kKeyUserId, value.Address()));
    CVariant read;
    ASSERT_EQ(S_OK, container->GetValue(kKeyUserId, read.Address()));
    EXPECT_EQ(2u, read.Get().ulVal);
    EXPECT_EQ(S_OK, container->RemoveValue(kKeyUserId));
    EXPECT_EQ(S_FALSE, container->RemoveValue(kKeyUserId));
    EXPECT_EQ(S_FALSE, container->GetValue(kKeyUserId, read.Address()));
}

TEST(ParamContainer, KeepsItsCommandCode) {
    const auto container = FilledWith({});
    UINT64 code = 1;
    EXPECT_EQ(S_OK, container->GetCommandCode(&code));
    EXPECT_EQ(0u, code);
    EXPECT_EQ(S_OK, container->SetCommandCode(0x0200000103000000));
    EXPECT_EQ(S_OK, container->GetCommandCode(&code));
    EXPECT_EQ(0x0200000103000000u, code);
}

TEST(ParamContainer, NullPointersAreRefused) {
    const auto container = FilledWith({});
    EXPECT_EQ(E_POINTER, container->GetCommandCode(nullptr));
    EXPECT_EQ(E_POINTER, container->GetValue(1, nullptr));
    EXPECT_EQ(E_POINTER, container->SetValue(1, nullptr));
    EXPECT_EQ(E_POINTER, container->GetKeys(nullptr));
    EXPECT_EQ(E_POINTER, container->QueryInterface(IID_IUnknown, nullptr));
}

} // namespace tsl::test
