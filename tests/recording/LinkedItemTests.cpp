// A linked item that can be read to its end: its ids, names and details in the action's text.
#include "recording/LinkedItem.h"

#include "tests/recording/LinkedActions.h"
#include "tests/support/RawContainer.h"

namespace tsl::test {

namespace {

using Texts = std::initializer_list<std::wstring>;
using Ids = std::initializer_list<ULONGLONG>;

#define TSL_TEST_NO_ID L"18446744073709551615"

// An item with empty texts of its own.
ContainerBuilder Item(Texts names, Texts details, Ids ids) {
    ContainerBuilder item;
    item.Text(kKeyText44, L"")
        .Text(kKeyText48, L"")
        .Texts(kKeyStringValues, names)
        .Texts(kKeyMoreStringValues, details)
        .Array<ULONGLONG>(kKeyUllValues, ids);
    return item;
}

BuiltText BuildLinked(const ContainerBuilder& item) {
    return Build(LinkedAction(item), kLinkedLogKind);
}

HRESULT Gather(const ContainerBuilder& item) {
    LinkedItemValues gathered;
    return AppendLinkedItemValues(*LinkedAction(item).Get().Get(), gathered);
}

} // namespace

TEST(LinkedItem, GivesItsTextsAndItsPairsInTurn) {
    ContainerBuilder item = Item({L"n1", L"n2"}, {L"d1", L"d2"}, {10, 20});
    item.Text(kKeyText44, L"a").Text(kKeyText48, L"b");
    EXPECT_EQ(Ok(L"ullValues={10,20," TSL_TEST_MOMENT L"}&intValues={2}"
                 L"&stringValues={a,b,n1,d1,n2,d2}"),
              BuildLinked(item));
    EXPECT_EQ(S_OK, Gather(item));
}

TEST(LinkedItem, StandsBetweenTheActionsOwnValues) {
    ContainerBuilder item = Item({L"n"}, {L"d"}, {10});
    item.Text(kKeyText44, L"a");
    ContainerBuilder action = LinkedAction(item);
    action.Array<ULONGLONG>(kKeyUllValues, {1, 2})
        .Array<LONG>(kKeyIntValues, {-7, 8})
        .Texts(kKeyStringValues, {L"own"})
        .Texts(kKeyMoreStringValues, {L"more"});
    EXPECT_EQ(Ok(L"ullValues={1,2,10," TSL_TEST_MOMENT L"}&intValues={1,-7,8}"
                 L"&stringValues={own,a,n,d,more}"),
              Build(action, kLinkedLogKind));
}

TEST(LinkedItem, LeavesOutItsEmptyTexts) {
    ContainerBuilder first = Item({}, {}, {});
    EXPECT_EQ(Ok(L"ullValues={" TSL_TEST_MOMENT L"}&intValues={0}&stringValues={a}"),
              BuildLinked(first.Text(kKeyText44, L"a")));
    ContainerBuilder second = Item({}, {}, {});
    EXPECT_EQ(Ok(L"ullValues={" TSL_TEST_MOMENT L"}&intValues={0}&stringValues={b}"),
              BuildLinked(second.Text(kKeyText48, L"b")));
}

TEST(LinkedItem, PadsMissingIdsToTheNumberOfDetails) {
    EXPECT_EQ(Ok(L"ullValues={9," TSL_TEST_NO_ID L"," TSL_TEST_MOMENT L"}&intValues={2}"
                 L"&stringValues={n1,d1,n2,d2}"),
              BuildLinked(Item({L"n1", L"n2"}, {L"d1", L"d2"}, {9})));
    EXPECT_EQ(Ok(L"ullValues={" TSL_TEST_NO_ID L"," TSL_TEST_MOMENT L"}&intValues={1}"
                 L"&stringValues={n1,d1}"),
              BuildLinked(Item({L"n1"}, {L"d1"}, {})));
}

TEST(LinkedItem, PadsMissingDetailsToTheNumberOfNames) {
    EXPECT_EQ(Ok(L"ullValues={7,8," TSL_TEST_MOMENT L"}&intValues={2}&stringValues={n1,d1,n2,}"),
              BuildLinked(Item({L"n1", L"n2"}, {L"d1"}, {7, 8})));
    EXPECT_EQ(Ok(L"ullValues={7," TSL_TEST_MOMENT L"}&intValues={1}&stringValues={n1,}"),
              BuildLinked(Item({L"n1"}, {}, {7})));
}

TEST(LinkedItem, HasNoPairsWhenIdsAreMissingForPaddedDetails) {
    const ContainerBuilder item = Item({L"n1", L"n2"}, {L"d1"}, {9});
    EXPECT_EQ(Ok(L"ullValues={9," TSL_TEST_MOMENT L"}&intValues={1}"), BuildLinked(item));
    EXPECT_EQ(E_INVALIDARG, Gather(item));
}

TEST(LinkedItem, HasNoPairsWhenThereAreMoreIds) {
    ContainerBuilder item = Item({L"n1"}, {L"d1"}, {1, 2, 3});
    item.Text(kKeyText44, L"a");
    EXPECT_EQ(Ok(L"ullValues={1,2,3," TSL_TEST_MOMENT L"}&intValues={3}&stringValues={a}"),
              BuildLinked(item));
    EXPECT_EQ(E_INVALIDARG, Gather(item));
}

TEST(LinkedItem, HasNoPairsWhenThereAreMoreDetails) {
    const ContainerBuilder item = Item({L"n1"}, {L"d1", L"d2"}, {});
    EXPECT_EQ(Ok(L"ullValues="
                 L"{" TSL_TEST_NO_ID L"," TSL_TEST_NO_ID L"," TSL_TEST_MOMENT L"}&intValues={2}"),
              BuildLinked(item));
    EXPECT_EQ(E_INVALIDARG, Gather(item));
}

TEST(LinkedItem, MayHaveNoEntriesAtAll) {
    EXPECT_EQ(Ok(L"ullValues={" TSL_TEST_MOMENT L"}&intValues={0}"), BuildLinked(Item({}, {}, {})));
    EXPECT_EQ(S_OK, Gather(Item({}, {}, {})));
}

TEST(LinkedItem, MayGiveOneIdInsteadOfAList) {
    ContainerBuilder item = Item({L"n1"}, {L"d1"}, {});
    EXPECT_EQ(Ok(L"ullValues={9," TSL_TEST_MOMENT L"}&intValues={1}&stringValues={n1,d1}"),
              BuildLinked(item.Set(kKeyUllValues, CVariant::FromUi8(9))));
    EXPECT_EQ(S_OK, Gather(item));
}

TEST(LinkedItem, MayGiveAnEmptyValueInsteadOfIds) {
    ContainerBuilder item = Item({L"n1"}, {L"d1"}, {5});
    EXPECT_EQ(Ok(L"ullValues={" TSL_TEST_NO_ID L"," TSL_TEST_MOMENT L"}&intValues={1}"
                 L"&stringValues={n1,d1}"),
              BuildLinked(item.Set(kKeyUllValues, CVariant())));
    EXPECT_EQ(S_OK, Gather(item));
}

TEST(LinkedItem, HasNoIdForAZeroInAChannel) {
    EXPECT_EQ(
        Ok(L"ullValues={" TSL_TEST_NO_ID L",5," TSL_TEST_NO_ID L"," TSL_TEST_MOMENT L"}&intValues={"
           L"3}&"
           L"stringValues="
           L"{VELLORA_"
           L"CHANNEL,d1,"
           L"n2,d2,n3,"
           L"d3}"),
        BuildLinked(Item({L"VELLORA_CHANNEL", L"n2", L"n3"}, {L"d1", L"d2", L"d3"}, {0, 5, 0})));
}

TEST(LinkedItem, HasNoIdForAZeroInAChannelWhoseListsDoNotMatch) {
    EXPECT_EQ(Ok(L"ullValues={" TSL_TEST_NO_ID L",5," TSL_TEST_MOMENT L"}&intValues={2}"),
              BuildLinked(Item({L"VELLORA_CHANNEL"}, {}, {0, 5})));
    EXPECT_EQ(Ok(L"ullValues="
                 L"{" TSL_TEST_NO_ID L"," TSL_TEST_NO_ID L"," TSL_TEST_MOMENT L"}&intValues={2}"),
              BuildLinked(Item({L"VELLORA_CHANNEL"}, {L"d1", L"d2"}, {0})));
}

TEST(LinkedItem, KeepsAZeroOutsideAChannel) {
    const std::wstring notChannels[] = {L"vellora_channel", L"Vellora_Channel", L"VELLORA_CHANNEL2",
                                        L"VELLORA_CHANNE", L"n1"};
    for (const std::wstring& name : notChannels) {
        EXPECT_EQ(
            Ok(L"ullValues={0," TSL_TEST_MOMENT L"}&intValues={1}&stringValues={" + name + L",d1}"),
            BuildLinked(Item({name}, {L"d1"}, {0})));
    }
    EXPECT_EQ(Ok(L"ullValues={0,0," TSL_TEST_MOMENT L"}&intValues={2}"
                 L"&stringValues={n1,d1,VELLORA_CHANNEL,d2}"),
              BuildLinked(Item({L"n1", L"VELLORA_CHANNEL"}, {L"d1", L"d2"}, {0, 0})));
}

TEST(LinkedItem, HasItsTextsEncoded) {
    ContainerBuilder item = Item({L"n,1"}, {L"d{1}"}, {3});
    item.Text(kKeyText44, L"50%").Text(kKeyText48, L"a b");
    EXPECT_EQ(Ok(L"ullValues={3," TSL_TEST_MOMENT L"}&intValues={1}"
                 L"&stringValues={50%25,a%20b,n%2c1,d%7b1%7d}"),
              BuildLinked(item));
}

TEST(LinkedItem, GivesAnAbsentDetailAsAnEmptyText) {
    RawContainer item(Item({L"n1", L"n2"}, {}, {1, 2}).Get());
    item.Make(kKeyMoreStringValues, [](VARIANT& value) {
        value.parray = SafeArrayCreateVector(VT_BSTR, 0, 2); // both entries are null
        value.vt = VT_ARRAY | VT_BSTR;
        return S_OK;
    });
    EXPECT_EQ(Ok(L"ullValues={1,2," TSL_TEST_MOMENT L"}&intValues={2}&stringValues={n1,,n2,}"),
              Build(LinkedAction(&item), kLinkedLogKind));
}

TEST(LinkedItem, IsReadInOrderAndReleased) {
    ScriptedContainer item(Item({L"n1"}, {L"d1"}, {1}).Get());
    {
        const ContainerBuilder action = LinkedAction(&item);
        EXPECT_EQ(S_OK, Build(action, kLinkedLogKind).result);
        EXPECT_EQ(2u, item.References()) << "the action's own reference, and the test's";
    }
    EXPECT_EQ(1u, item.References());
    const std::vector<UINT64> expected = {kKeyText44, kKeyText48, kKeyStringValues,
                                          kKeyMoreStringValues, kKeyUllValues};
    EXPECT_EQ(expected, item.keysRead);
}

TEST(LinkedItem, IsLeftOutOfExternalLogsDeletionsAndLinks) {
    ContainerBuilder item = Item({L"n1"}, {L"d1"}, {1});
    item.Text(kKeyText44, L"a");
    EXPECT_EQ(Ok(L""), Build(LinkedAction(item, L"externalApplicationLog"), kLinkedLogKind));
    for (const std::wstring_view name :
         {L"deleteItem", L"showExternalLink", L"showExternalLinkForSns",
          L"showExternalLinkForMusic", L"showExternalLinkForTv"}) {
        ContainerBuilder action = LinkedAction(item, name);
        action.Texts(kKeyStringValues, {L"own"}).Texts(kKeyMoreStringValues, {L"more"});
        EXPECT_EQ(Ok(L"ullValues={" TSL_TEST_MOMENT L"}&stringValues={own,more}"),
                  Build(action, kLinkedLogKind));
    }
}

TEST(LinkedItem, GoesWithAUserLocation) {
    ContainerBuilder item = Item({L"n1"}, {L"d1"}, {1});
    ContainerBuilder action = LinkedAction(item, L"userLocation");
    EXPECT_EQ(Ok(L"ullValues={1," TSL_TEST_MOMENT L"}&intValues={1}&stringValues={JPN,n1,d1}"),
              Build(action.Texts(kKeyStringValues, {L""}), kLinkedLogKind));
}

TEST(LinkedItem, IsNotReadUnderOtherLogKinds) {
    for (const UINT32 logKind : {0u, 1u, 3u, 8u, 16u}) {
        ScriptedContainer item(Item({L"n1"}, {L"d1"}, {1}).Get());
        EXPECT_EQ(Ok(L""), Build(LinkedAction(&item), logKind));
        EXPECT_TRUE(item.keysRead.empty());
    }
}

} // namespace tsl::test
