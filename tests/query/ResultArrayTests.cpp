// Packing containers and texts into the VARIANT of the caller.
#include "query/ResultArray.h"

#include <gtest/gtest.h>

#include "tests/support/Containers.h"

namespace tsl::test {

namespace {

// A container with its own count of references, which the list shares.
std::vector<ScriptedContainer> MakeContainers(size_t count) {
    std::vector<ScriptedContainer> made;
    made.reserve(count);
    for (size_t index = 0; index < count; ++index)
        made.emplace_back(CTslParamContainer::Create());
    return made;
}

ContainerList ListOf(std::vector<ScriptedContainer>& containers) {
    ContainerList list;
    for (ScriptedContainer& container : containers) {
        container.AddRef();
        list.push_back(CComPtr<ITslParamContainer>::FromOwned(&container));
    }
    return list;
}

void ExpectVector(const VARIANT& value, VARTYPE element, ULONG count) {
    ASSERT_EQ(VT_ARRAY | element, value.vt);
    VARTYPE held = VT_EMPTY;
    EXPECT_EQ(S_OK, SafeArrayGetVartype(value.parray, &held));
    EXPECT_EQ(element, held);
    ASSERT_EQ(1u, SafeArrayGetDim(value.parray));
    LONG lower = -1;
    LONG upper = -1;
    EXPECT_EQ(S_OK, SafeArrayGetLBound(value.parray, 1, &lower));
    EXPECT_EQ(S_OK, SafeArrayGetUBound(value.parray, 1, &upper));
    EXPECT_EQ(0, lower);
    EXPECT_EQ(static_cast<LONG>(count), upper + 1);
}

} // namespace

TEST(Packing, KeepsTheOrderOfContainers) {
    auto containers = MakeContainers(20);
    CVariant result;
    EXPECT_EQ(S_OK, PackContainers(ListOf(containers), result.Address()));
    ASSERT_NO_FATAL_FAILURE(ExpectVector(result.Get(), VT_UNKNOWN, 20));
    for (LONG index = 0; index < 20; ++index) {
        CComPtr<IUnknown> element;
        ASSERT_EQ(S_OK, SafeArrayGetElement(result.Get().parray, &index, element.Put()));
        EXPECT_EQ(&containers[static_cast<size_t>(index)], element.Get());
    }
}

TEST(Packing, GivesTheArrayOneReferenceToEachContainer) {
    auto containers = MakeContainers(3);
    {
        CVariant result;
        EXPECT_EQ(S_OK, PackContainers(ListOf(containers), result.Address()));
        for (const ScriptedContainer& container : containers)
            EXPECT_EQ(2u, container.References()) << "the test's and the array's";
    }
    for (const ScriptedContainer& container : containers)
        EXPECT_EQ(1u, container.References());
}

TEST(Packing, OfNothingIsFalseAndLeavesTheResult) {
    CVariant result = CVariant::FromUi4(42);
    EXPECT_EQ(S_FALSE, PackContainers({}, result.Address()));
    EXPECT_EQ(VT_UI4, result.Type());
    EXPECT_EQ(42u, result.Get().ulVal);
    EXPECT_EQ(S_FALSE, PackTexts({}, result.Address()));
    EXPECT_EQ(VT_UI4, result.Type());
    EXPECT_EQ(42u, result.Get().ulVal);
}

TEST(Packing, WithoutAResultIsABadPointer) {
    auto containers = MakeContainers(2);
    EXPECT_EQ(E_POINTER, PackContainers(ListOf(containers), nullptr));
    for (const ScriptedContainer& container : containers)
        EXPECT_EQ(1u, container.References());
    EXPECT_EQ(E_POINTER, PackContainers({}, nullptr));
    const std::wstring texts[] = {L"a"};
    EXPECT_EQ(E_POINTER, PackTexts(texts, nullptr));
    EXPECT_EQ(E_POINTER, PackTexts({}, nullptr));
}

TEST(Packing, ReleasesWhatTheResultHeld) {
    ScriptedContainer old(CTslParamContainer::Create());
    old.AddRef();
    CVariant result = CVariant::FromOwnedUnknown(&old);
    auto containers = MakeContainers(1);
    EXPECT_EQ(S_OK, PackContainers(ListOf(containers), result.Address()));
    EXPECT_EQ(1u, old.References());
    const std::wstring texts[] = {L"a"};
    EXPECT_EQ(S_OK, PackTexts(texts, result.Address()));
    EXPECT_EQ(1u, containers[0].References());
    ExpectVector(result.Get(), VT_BSTR, 1);
}

// Whether the result still has its locked array then is the system's doing and differs.
TEST(Packing, ThatCannotReplaceTheResultFailsAndKeepsNoContainer) {
    const std::wstring texts[] = {L"a"};
    CVariant result;
    ASSERT_EQ(S_OK, PackTexts(texts, result.Address()));
    SAFEARRAY* const before = result.Get().parray;
    auto containers = MakeContainers(2);
    ASSERT_EQ(S_OK, SafeArrayLock(before));
    EXPECT_EQ(DISP_E_ARRAYISLOCKED, PackContainers(ListOf(containers), result.Address()));
    EXPECT_NE(VT_ARRAY | VT_UNKNOWN, result.Type());
    for (const ScriptedContainer& container : containers)
        EXPECT_EQ(1u, container.References());
    ASSERT_EQ(S_OK, SafeArrayUnlock(before));
    if (result.Type() == VT_EMPTY) {
        EXPECT_EQ(S_OK, SafeArrayDestroy(before));
    }
}

TEST(Packing, CopiesTextsInTheirOrder) {
    const std::vector<std::wstring> texts = {L"b", L"", L"a \u00e4\u6f22",
                                             std::wstring(L"x\0y", 3)};
    CVariant result;
    EXPECT_EQ(S_OK, PackTexts(texts, result.Address()));
    ASSERT_NO_FATAL_FAILURE(ExpectVector(result.Get(), VT_BSTR, 4));
    CValueView<BSTR> view;
    ASSERT_EQ(S_OK, view.Open(*result.Address()));
    for (size_t index = 0; index < texts.size(); ++index) {
        const BSTR packed = view.Values()[index];
        ASSERT_NE(nullptr, packed) << "an empty text is a text";
        EXPECT_EQ(texts[index], std::wstring(packed, SysStringLen(packed)));
    }
}

TEST(Packing, TakesALongList) {
    auto containers = MakeContainers(10000);
    CVariant result;
    EXPECT_EQ(S_OK, PackContainers(ListOf(containers), result.Address()));
    ExpectVector(result.Get(), VT_UNKNOWN, 10000);
}

} // namespace tsl::test
