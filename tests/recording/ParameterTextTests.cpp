// The parameter text of an action: which values it holds, in which order, and where it stops.
#include "recording/ParameterText.h"

#include "tests/recording/BuiltText.h"
#include "tests/support/Containers.h"
#include "tests/support/Failures.h"

namespace tsl::test {

namespace {

CVariant Scalar(VARTYPE type, ULONGLONG bits) {
    CVariant value;
    value.Address()->ullVal = bits;
    value.Address()->vt = type;
    return value;
}

ContainerBuilder EveryKind() {
    ContainerBuilder action = NamedAction();
    action.Array<ULONGLONG>(kKeyUllValues, {1})
        .Array<USHORT>(kKeyUsValues, {2})
        .Array<LONG>(kKeyIntValues, {3})
        .Array<VARIANT_BOOL>(kKeyBoolValues, {VARIANT_TRUE})
        .Texts(kKeyStringValues, {L"s"})
        .Texts(kKeyMoreStringValues, {L"t"})
        .Array<FLOAT>(kKeyFloatValues, {4.0f});
    return action;
}

constexpr wchar_t kEveryKindText[] = L"ullValues={1}&usValues={2}&intValues={3}&boolValues={1}"
                                     L"&stringValues={s,t}&floatValues={4.000000}";

} // namespace

TEST(ParameterText, IsEmptyWithoutAnyKind) {
    EXPECT_EQ(Ok(L""), Build(NamedAction()));
}

TEST(ParameterText, HoldsEachKindAlone) {
    EXPECT_EQ(Ok(L"ullValues={5,6}"), Build(NamedAction().Array<ULONGLONG>(kKeyUllValues, {5, 6})));
    EXPECT_EQ(Ok(L"usValues={5,6}"), Build(NamedAction().Array<USHORT>(kKeyUsValues, {5, 6})));
    EXPECT_EQ(Ok(L"intValues={5,-6}"), Build(NamedAction().Array<LONG>(kKeyIntValues, {5, -6})));
    EXPECT_EQ(Ok(L"boolValues={0,1}"), Build(NamedAction().Array<VARIANT_BOOL>(
                                           kKeyBoolValues, {VARIANT_FALSE, VARIANT_TRUE})));
    EXPECT_EQ(Ok(L"stringValues={a,b}"),
              Build(NamedAction().Texts(kKeyStringValues, {L"a", L"b"})));
    EXPECT_EQ(Ok(L"stringValues={c}"), Build(NamedAction().Texts(kKeyMoreStringValues, {L"c"})));
    EXPECT_EQ(Ok(L"floatValues={1.500000,2.000000}"),
              Build(NamedAction().Array<FLOAT>(kKeyFloatValues, {1.5f, 2.0f})));
}

TEST(ParameterText, HoldsAllKindsInTheirOrder) {
    EXPECT_EQ(Ok(kEveryKindText), Build(EveryKind()));
}

TEST(ParameterText, LeavesOutTheKindsThatAreNotThere) {
    ContainerBuilder action = NamedAction();
    action.Array<ULONGLONG>(kKeyUllValues, {1234567890, 7})
        .Array<LONG>(kKeyIntValues, {1, -2})
        .Texts(kKeyStringValues, {L"a,b", L"", L"%x"})
        .Array<FLOAT>(kKeyFloatValues, {0.5f});
    EXPECT_EQ(Ok(L"ullValues={1234567890,7}&intValues={1,-2}&stringValues={a%2cb,,%25x}"
                 L"&floatValues={0.500000}"),
              Build(action));
}

TEST(ParameterText, LeavesOutEmptyLists) {
    ContainerBuilder action = EveryKind();
    action.Array<ULONGLONG>(kKeyUllValues, {})
        .Array<LONG>(kKeyIntValues, {})
        .Texts(kKeyStringValues, {})
        .Texts(kKeyMoreStringValues, {})
        .Set(kKeyBoolValues, CVariant());
    EXPECT_EQ(Ok(L"usValues={2}&floatValues={4.000000}"), Build(action));
}

TEST(ParameterText, TakesASingleValueAsAListOfOne) {
    EXPECT_EQ(Ok(L"ullValues={18446744073709551615}"),
              Build(NamedAction().Set(kKeyUllValues, Scalar(VT_UI8, ~0ull))));
    EXPECT_EQ(Ok(L"usValues={65535}"),
              Build(NamedAction().Set(kKeyUsValues, Scalar(VT_UI2, 65535))));
    EXPECT_EQ(Ok(L"intValues={-17}"), Build(NamedAction().I4(kKeyIntValues, -17)));
    EXPECT_EQ(Ok(L"boolValues={1}"),
              Build(NamedAction().Set(kKeyBoolValues, Scalar(VT_BOOL, 0xFFFF))));
    EXPECT_EQ(Ok(L"stringValues={a%20b}"), Build(NamedAction().Text(kKeyStringValues, L"a b")));
    EXPECT_EQ(Ok(L"stringValues={c}"), Build(NamedAction().Text(kKeyMoreStringValues, L"c")));
    EXPECT_EQ(Ok(L"floatValues={0.500000}"),
              Build(NamedAction().Set(kKeyFloatValues, Scalar(VT_R4, 0x3F000000))));
}

TEST(ParameterText, PutsTheFurtherTextsBehindTheFirstUnderEveryLogKind) {
    ContainerBuilder action = NamedAction(L"externalApplicationLog");
    action.Texts(kKeyMoreStringValues, {L"c"}).Texts(kKeyStringValues, {L"a", L""});
    for (const UINT32 logKind : {0u, 1u, 2u, 3u, 8u, 16u}) {
        EXPECT_EQ(Ok(L"stringValues={a,,c}"), Build(action, logKind)) << "log kind " << logKind;
    }
}

TEST(ParameterText, IsAppendedToWhatTheOutputHolds) {
    std::wstring output = L"before";
    EXPECT_EQ(S_OK,
              BuildActionParameters(NamedAction().I4(kKeyIntValues, 1), output, kPlainLogKind));
    EXPECT_EQ(L"before&intValues={1}", output);
}

TEST(ParameterText, HoldsATextOfTenMillionCharactersWhole) {
    constexpr size_t kLength = 10'000'000;
    const std::wstring plain(kLength, L'x');
    EXPECT_TRUE(Build(NamedAction().Text(kKeyStringValues, plain)) ==
                Ok(L"stringValues={" + plain + L"}"));

    const BuiltText encoded =
        Build(NamedAction().Text(kKeyStringValues, std::wstring(kLength, L',')));
    EXPECT_EQ(S_OK, encoded.result);
    EXPECT_EQ(3 * kLength + std::wstring_view(L"stringValues={}").size(), encoded.text.size());
}

TEST(ParameterText, ReadsTheNameFirstAndTheKindsInTheirOrder) {
    ScriptedContainer action(EveryKind().Get());
    EXPECT_EQ(Ok(kEveryKindText), Build(&action));
    const std::vector<UINT64> expected = {kKeyActionName,       kKeyUllValues,  kKeyUsValues,
                                          kKeyIntValues,        kKeyBoolValues, kKeyStringValues,
                                          kKeyMoreStringValues, kKeyFloatValues};
    EXPECT_EQ(expected, action.keysRead);
    EXPECT_EQ(1u, action.References());
}

TEST(ParameterText, StopsAtTheFirstListThatCannotBeRead) {
    const struct {
        UINT64 key;
        std::wstring textBefore;
    } cases[] = {
        {kKeyUllValues, L""},
        {kKeyUsValues, L"ullValues={1}"},
        {kKeyIntValues, L"ullValues={1}&usValues={2}"},
        {kKeyBoolValues, L"ullValues={1}&usValues={2}&intValues={3}"},
        {kKeyStringValues, L"ullValues={1}&usValues={2}&intValues={3}&boolValues={1}"},
        {kKeyMoreStringValues, L"ullValues={1}&usValues={2}&intValues={3}&boolValues={1}"},
        {kKeyFloatValues, L"ullValues={1}&usValues={2}&intValues={3}&boolValues={1}"
                          L"&stringValues={s,t}"},
    };
    size_t keysBefore = 1;
    for (const auto& [key, textBefore] : cases) {
        ScriptedContainer action(EveryKind().Get());
        action.getResults[key] = kFailure;
        EXPECT_EQ((BuiltText{kFailure, textBefore}), Build(&action));
        ASSERT_EQ(++keysBefore, action.keysRead.size()) << "later lists must not be read";
        EXPECT_EQ(key, action.keysRead.back());
    }
}

TEST(ParameterText, TakesAnySuccessButOkAsAbsent) {
    for (const HRESULT answer : {HRESULT{S_FALSE}, HRESULT{0x00041500}}) {
        ScriptedContainer action(EveryKind().Get());
        for (const UINT64 key : {kKeyUllValues, kKeyUsValues, kKeyIntValues, kKeyBoolValues,
                                 kKeyStringValues, kKeyMoreStringValues}) {
            action.getResults[key] = answer;
        }
        EXPECT_EQ(Ok(L"floatValues={4.000000}"), Build(&action));
    }
}

TEST(ParameterText, NeedsAContainer) {
    EXPECT_EQ((BuiltText{E_POINTER, L""}), Build(nullptr));
    EXPECT_EQ((BuiltText{E_POINTER, L""}), Build(nullptr, /*logKind=*/2));
}

TEST(ParameterText, PassesOnWhatTheContainerAnswersForTheName) {
    for (const HRESULT answer : {HRESULT{S_FALSE}, HRESULT{0x00041500}, kFailure, E_POINTER}) {
        ScriptedContainer action(EveryKind().Get());
        action.getResults[kKeyActionName] = answer;
        EXPECT_EQ((BuiltText{answer, L""}), Build(&action, /*logKind=*/2));
        EXPECT_EQ(std::vector<UINT64>{kKeyActionName}, action.keysRead);
    }
}

TEST(ParameterText, IsEmptyWhenTheNameIsNoText) {
    EXPECT_EQ(Ok(L""), Build(EveryKind().I4(kKeyActionName, 5), /*logKind=*/2));
    EXPECT_EQ(Ok(L""), Build(EveryKind().Texts(kKeyActionName, {L"playItem"}), /*logKind=*/2));
    EXPECT_EQ(Ok(L""), Build(EveryKind().Set(kKeyActionName, CVariant()), /*logKind=*/2));
}

TEST(ParameterText, DoesNotNeedANameThatSaysAnything) {
    EXPECT_EQ(Ok(L"intValues={1}"), Build(NamedAction(L"").I4(kKeyIntValues, 1)));
}

} // namespace tsl::test
