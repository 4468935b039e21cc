// A linked item that ends early: what was gathered until then is used, and the action is written.
#include "recording/LinkedItem.h"

#include "tests/recording/LinkedActions.h"
#include "tests/support/Failures.h"
#include "tests/support/RawContainer.h"

namespace tsl::test {

namespace {

constexpr wchar_t kNothing[] = L"ullValues={" TSL_TEST_MOMENT L"}&intValues={0}";
constexpr wchar_t kFirstText[] = L"ullValues={" TSL_TEST_MOMENT L"}&intValues={0}&stringValues={a}";
constexpr wchar_t kBothTexts[] =
    L"ullValues={" TSL_TEST_MOMENT L"}&intValues={0}&stringValues={a,b}";

ContainerBuilder WholeItem() {
    ContainerBuilder item;
    item.Text(kKeyText44, L"a")
        .Text(kKeyText48, L"b")
        .Texts(kKeyStringValues, {L"n1"})
        .Texts(kKeyMoreStringValues, {L"d1"})
        .Array<ULONGLONG>(kKeyUllValues, {1});
    return item;
}

// Each key of an item, with the action's text when the item ends there.
const struct {
    UINT64 key;
    const wchar_t* text;
} kEnds[] = {
    {kKeyText44, kNothing},         {kKeyText48, kFirstText},
    {kKeyStringValues, kBothTexts}, {kKeyMoreStringValues, kBothTexts},
    {kKeyUllValues, kBothTexts},
};

HRESULT Gather(ITslParamContainer* item, LinkedItemValues& gathered) {
    return AppendLinkedItemValues(*LinkedAction(item).Get().Get(), gathered);
}

// An object that is no container.
class OtherObject final : public IUnknown {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        const bool known = iid == IID_IUnknown;
        *result = known ? this : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
};

} // namespace

TEST(LinkedItemEnd, ComesWithTheFirstValueThatIsMissing) {
    for (const auto& [key, text] : kEnds) {
        for (const HRESULT answer : {HRESULT{S_FALSE}, HRESULT{0x00041500}, kFailure}) {
            ScriptedContainer item(WholeItem().Get());
            item.getResults[key] = answer;
            EXPECT_EQ(Ok(text), Build(LinkedAction(&item), kLinkedLogKind));
            EXPECT_EQ(key, item.keysRead.back()) << "nothing is read behind the end";
            EXPECT_EQ(1u, item.References());
        }
    }
}

TEST(LinkedItemEnd, ComesWithTheFirstValueOfAnotherType) {
    for (const auto& [key, text] : kEnds) {
        for (const UINT64 number : {0ull, 77ull}) {
            ContainerBuilder item = WholeItem();
            item.I4(key, static_cast<INT32>(number));
            EXPECT_EQ(Ok(text), Build(LinkedAction(item), kLinkedLogKind));
        }
        if (key == kKeyUllValues) continue; // an empty value is an empty list there
        ContainerBuilder emptied = WholeItem();
        emptied.Set(key, CVariant());
        EXPECT_EQ(Ok(text), Build(LinkedAction(emptied), kLinkedLogKind));
    }
}

TEST(LinkedItemEnd, ComesWithAnArrayThatHoldsOtherElements) {
    for (const auto& [key, text] : kEnds) {
        if ((key & VT_ARRAY) == 0) continue;
        RawContainer item(WholeItem().Get());
        item.Make(key, [type = static_cast<VARTYPE>(key)](VARIANT& value) {
            value.parray = SafeArrayCreateVector(VT_UI2, 0, 3);
            value.vt = type;
            return S_OK;
        });
        EXPECT_EQ(Ok(text), Build(LinkedAction(&item), kLinkedLogKind));
    }
}

TEST(LinkedItemEnd, ComesWithAnEmptyName) {
    const std::initializer_list<std::wstring> lists[] = {{L""}, {L"n1", L""}, {L"", L"n2"}};
    for (const auto& names : lists) {
        ContainerBuilder item = WholeItem();
        item.Texts(kKeyStringValues, names);
        EXPECT_EQ(Ok(kBothTexts), Build(LinkedAction(item), kLinkedLogKind));
        LinkedItemValues gathered;
        EXPECT_EQ(E_INVALIDARG, Gather(item, gathered));
        EXPECT_EQ((std::vector<std::wstring_view>{L"a", L"b"}), gathered.texts);
        EXPECT_TRUE(gathered.ids.empty());
    }
}

TEST(LinkedItemEnd, ComesWithANullName) {
    RawContainer item(WholeItem().Get());
    item.Make(kKeyStringValues, [](VARIANT& value) {
        value.parray = SafeArrayCreateVector(VT_BSTR, 0, 1);
        value.vt = VT_ARRAY | VT_BSTR;
        return S_OK;
    });
    EXPECT_EQ(Ok(kBothTexts), Build(LinkedAction(&item), kLinkedLogKind));
}

TEST(LinkedItemEnd, KeepsTheIdsOfListsThatDoNotMatch) {
    ContainerBuilder item = WholeItem();
    item.Array<ULONGLONG>(kKeyUllValues, {1, 2});
    LinkedItemValues gathered;
    EXPECT_EQ(E_INVALIDARG, Gather(item, gathered));
    EXPECT_EQ((std::vector<ULONGLONG>{1, 2}), gathered.ids);
    EXPECT_EQ((std::vector<std::wstring_view>{L"a", L"b"}), gathered.texts);
}

TEST(LinkedItemEnd, IsThereFromTheStartWithoutAnItem) {
    EXPECT_EQ(Ok(kNothing), Build(MomentaryAction(), kLinkedLogKind));
    EXPECT_EQ(Ok(kNothing), Build(LinkedAction(nullptr), kLinkedLogKind));
    EXPECT_EQ(Ok(kNothing), Build(MomentaryAction().I4(kKeyLinkedItem, 1), kLinkedLogKind));
    EXPECT_EQ(Ok(kNothing), Build(LinkedAction(ContainerBuilder()), kLinkedLogKind));
}

TEST(LinkedItemEnd, IsThereFromTheStartForAnObjectThatIsNoContainer) {
    OtherObject object;
    ContainerBuilder action = MomentaryAction();
    action.Unknown(kKeyLinkedItem, &object);
    EXPECT_EQ(Ok(kNothing), Build(action, kLinkedLogKind));
}

TEST(LinkedItemEnd, IsThereFromTheStartWhenTheItemCannotBeRead) {
    for (const HRESULT answer : {HRESULT{S_FALSE}, kFailure}) {
        const ContainerBuilder item = WholeItem();
        ScriptedContainer action(LinkedAction(item).Get());
        action.getResults[kKeyLinkedItem] = answer;
        EXPECT_EQ(Ok(kNothing), Build(&action, kLinkedLogKind));
    }
}

} // namespace tsl::test
