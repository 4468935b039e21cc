// What the log kind for linked items adds to every action: a count and the moment of the action.
#include <windows.h>

#include <ctime>

#include "tests/recording/LinkedActions.h"
#include "tests/support/Failures.h"

namespace tsl::test {

namespace {

ContainerBuilder WithValues(ContainerBuilder action) {
    action.Array<ULONGLONG>(kKeyUllValues, {5, 6}).Array<LONG>(kKeyIntValues, {1, -2});
    return action;
}

// Expects "ullValues={SECONDS}&intValues={0}" with the seconds of now.
void ExpectMomentIsNow(ITslParamContainer* action) {
    const std::time_t before = std::time(nullptr);
    const BuiltText built = Build(action, kLinkedLogKind);
    const std::time_t after = std::time(nullptr);
    long long seconds = 0;
    ASSERT_EQ(1, swscanf(built.text.c_str(), L"ullValues={%lld}", &seconds));
    EXPECT_EQ(Ok(L"ullValues={" + std::to_wstring(seconds) + L"}&intValues={0}"), built);
    EXPECT_GE(seconds, before - 1);
    EXPECT_LE(seconds, after + 1);
}

} // namespace

TEST(ParameterAdditions, AreTheMomentAndACountOfZeroWithoutALinkedItem) {
    EXPECT_EQ(Ok(L"ullValues={" TSL_TEST_MOMENT L"}&intValues={0}"),
              Build(MomentaryAction(), kLinkedLogKind));
}

TEST(ParameterAdditions, StandBehindTheOwnIdsAndBeforeTheOwnNumbers) {
    EXPECT_EQ(Ok(L"ullValues={5,6," TSL_TEST_MOMENT L"}&intValues={0,1,-2}"),
              Build(WithValues(MomentaryAction()), kLinkedLogKind));
}

TEST(ParameterAdditions, GoWithEveryOtherKind) {
    ContainerBuilder action = MomentaryAction();
    action.Array<USHORT>(kKeyUsValues, {9})
        .Array<VARIANT_BOOL>(kKeyBoolValues, {VARIANT_TRUE})
        .Array<FLOAT>(kKeyFloatValues, {0.5f});
    EXPECT_EQ(Ok(L"ullValues={" TSL_TEST_MOMENT L"}&usValues={9}&intValues={0}&boolValues={1}"
                 L"&floatValues={0.500000}"),
              Build(action, kLinkedLogKind));
}

TEST(ParameterAdditions, AreLeftOutOfAnExternalLog) {
    EXPECT_EQ(Ok(L"ullValues={5,6}&intValues={1,-2}"),
              Build(WithValues(MomentaryAction(L"externalApplicationLog")), kLinkedLogKind));
    EXPECT_EQ(Ok(L""), Build(MomentaryAction(L"externalApplicationLog"), kLinkedLogKind));
}

TEST(ParameterAdditions, AreTheMomentAloneForDeletionsAndLinks) {
    for (const std::wstring_view name :
         {L"deleteItem", L"showExternalLink", L"showExternalLinkForSns",
          L"showExternalLinkForMusic", L"showExternalLinkForTv"}) {
        EXPECT_EQ(Ok(L"ullValues={5,6," TSL_TEST_MOMENT L"}&intValues={1,-2}"),
                  Build(WithValues(MomentaryAction(name)), kLinkedLogKind));
        EXPECT_EQ(Ok(L"ullValues={" TSL_TEST_MOMENT L"}"),
                  Build(MomentaryAction(name), kLinkedLogKind));
    }
}

TEST(ParameterAdditions, AreWholeForNamesInAnotherCase) {
    for (const std::wstring_view name :
         {L"ExternalApplicationLog", L"externalapplicationlog", L"DeleteItem", L"deleteitem",
          L"autoDeleteItem", L"ShowExternalLink", L"showexternallink", L"showExternalLinkForSNS",
          L"showExternalLinkforMusic", L"showExternalLinkForTV", L"deleteItem ", L"userLocation"}) {
        EXPECT_EQ(Ok(L"ullValues={" TSL_TEST_MOMENT L"}&intValues={0}"),
                  Build(MomentaryAction(name), kLinkedLogKind));
    }
}

TEST(ParameterAdditions, BelongToOneLogKindOnly) {
    for (const UINT32 logKind : {0u, 1u, 3u, 4u, 8u, 16u, 0x80000002u, 0xFFFFFFFFu}) {
        EXPECT_EQ(Ok(L"ullValues={5,6}&intValues={1,-2}"),
                  Build(WithValues(MomentaryAction()), logKind))
            << "log kind " << logKind;
        EXPECT_EQ(Ok(L""), Build(MomentaryAction(), logKind));
    }
}

TEST(ParameterAdditions, HoldTheMomentOfNowWithoutATime) {
    ContainerBuilder action;
    ExpectMomentIsNow(action.Text(kKeyActionName, L"playItem"));
}

TEST(ParameterAdditions, HoldTheMomentOfNowWhenTheTimeHasAnotherType) {
    CVariant number;
    number.Address()->vt = VT_R8;
    number.Address()->dblVal = kMoment;
    ContainerBuilder action = MomentaryAction();
    ExpectMomentIsNow(action.Set(kKeyActionTime, std::move(number)));
    ExpectMomentIsNow(action.Text(kKeyActionTime, L"2024-03-05"));
}

TEST(ParameterAdditions, HoldTheMomentOfNowWhenTheTimeCannotBeRead) {
    for (const HRESULT answer : {HRESULT{S_FALSE}, kFailure}) {
        ScriptedContainer action(MomentaryAction().Get());
        action.getResults[kKeyActionTime] = answer;
        ExpectMomentIsNow(&action);
    }
}

TEST(ParameterAdditions, HoldTheMomentInWholeSeconds) {
    const struct {
        DATE date;
        const wchar_t* seconds;
    } cases[] = {
        {25569.0, L"0"},          {25569.0 + 1.0 / 86400.0, L"1"},
        {36526.0, L"946684800"},  {kMoment + 0.25 / 86400.0, TSL_TEST_MOMENT},
        {50424.0, L"2147472000"}, {55153.0, L"2556057600"},
    };
    for (const auto& [date, seconds] : cases) {
        ContainerBuilder action = MomentaryAction();
        action.Date(kKeyActionTime, date);
        EXPECT_EQ(Ok(L"ullValues={" + std::wstring(seconds) + L"}&intValues={0}"),
                  Build(action, kLinkedLogKind));
    }
}

TEST(ParameterAdditions, ReadTheLinkedItemAfterTheNameAndTheTimeWithTheIds) {
    ScriptedContainer action(MomentaryAction().Get());
    Build(&action, kLinkedLogKind);
    const std::vector<UINT64> expected = {
        kKeyActionName, kKeyLinkedItem, kKeyUllValues,    kKeyActionTime,       kKeyUsValues,
        kKeyIntValues,  kKeyBoolValues, kKeyStringValues, kKeyMoreStringValues, kKeyFloatValues};
    EXPECT_EQ(expected, action.keysRead);
}

TEST(ParameterAdditions, DoNotHideAListThatCannotBeRead) {
    ScriptedContainer ids(WithValues(MomentaryAction()).Get());
    ids.getResults[kKeyUllValues] = kFailure;
    EXPECT_EQ((BuiltText{kFailure, L""}), Build(&ids, kLinkedLogKind));

    ScriptedContainer numbers(WithValues(MomentaryAction()).Get());
    numbers.getResults[kKeyIntValues] = kFailure;
    EXPECT_EQ((BuiltText{kFailure, L"ullValues={5,6," TSL_TEST_MOMENT L"}"}),
              Build(&numbers, kLinkedLogKind));
}

TEST(ParameterAdditions, DoNotHideAListOfAnotherType) {
    EXPECT_EQ((BuiltText{E_INVALIDARG, L""}),
              Build(MomentaryAction().I4(kKeyUllValues, 5), kLinkedLogKind));
    EXPECT_EQ((BuiltText{E_INVALIDARG, L"ullValues={" TSL_TEST_MOMENT L"}"}),
              Build(MomentaryAction().Ui8(kKeyIntValues, 5), kLinkedLogKind));
}

} // namespace tsl::test
