// What a host may hand in by mistake, through the interface: the answer, and that it does no harm.
#include <limits>

#include "tests/integration/Aftermath.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/PluginFixture.h"

namespace tsl::test {

namespace {

constexpr UINT64 kValueLists[] = {kKeyUllValues,  kKeyUsValues,     kKeyIntValues,
                                  kKeyBoolValues, kKeyStringValues, kKeyMoreStringValues,
                                  kKeyFloatValues};

void Remove(ContainerBuilder& action, UINT64 key) {
    action.Get()->RemoveValue(key);
}

// A VARIANT of the type that the key says whose array is null.
CVariant NullArray(UINT64 key) {
    CVariant value;
    value.Address()->vt = ParamKeyType(key);
    value.Address()->parray = nullptr;
    return value;
}

// Two rows of two elements.
CVariant TwoDimensions(VARTYPE type) {
    SAFEARRAYBOUND bounds[] = {{2, 0}, {2, 0}};
    CVariant value;
    value.Address()->parray = SafeArrayCreate(type, 2, bounds);
    value.Address()->vt = static_cast<VARTYPE>(VT_ARRAY | type);
    return value;
}

struct BadAction {
    const char* name;
    void (*spoil)(ContainerBuilder& action);
    HRESULT expected;
    int rows; // in each database
};

constexpr BadAction kBadActions[] = {
    {"NothingAtAll", [](auto& a) { a = ContainerBuilder(); }, S_OK, 0},
    {"NoRecordId", [](auto& a) { Remove(a, kKeyRecordId); }, S_OK, 0},
    {"RecordIdZero", [](auto& a) { a.Ui4(kKeyRecordId, 0); }, S_OK, 0},
    {"RecordIdOfAnotherInteger", [](auto& a) { a.I4(kKeyRecordId, 1); }, S_OK, 0},
    {"RecordIdOfText", [](auto& a) { a.Text(kKeyRecordId, L"1"); }, S_OK, 0},
    {"NoName", [](auto& a) { Remove(a, kKeyActionName); }, S_OK, 0},
    {"NameOfNumber", [](auto& a) { a.Ui4(kKeyActionName, 1); }, S_OK, 0},
    {"EmptyName", [](auto& a) { a.Text(kKeyActionName, L""); }, S_OK, 1},
    {"NoUserId", [](auto& a) { Remove(a, kKeyUserId); }, S_OK, 0},
    {"UserIdOfAnotherInteger", [](auto& a) { a.I4(kKeyUserId, 7); }, S_OK, 0},
    {"NoAppId", [](auto& a) { Remove(a, kKeyAppId); }, S_OK, 1},
    {"AppIdOfAnotherInteger", [](auto& a) { a.Ui4(kKeyAppId, 3); }, S_OK, 1},
    {"TimeOfNumber", [](auto& a) { a.Ui8(kKeyActionTime, 1); }, S_OK, 1},
    {"TimeThatIsNoNumber",
     [](auto& a) { a.Date(kKeyActionTime, std::numeric_limits<double>::quiet_NaN()); }, S_OK, 1},
    {"UllValuesOfText", [](auto& a) { a.Text(kKeyUllValues, L"1"); }, E_INVALIDARG, 0},
    {"UllValuesOfSmallerNumbers", [](auto& a) { a.template Array<LONG>(kKeyUllValues, {1, 2, 3}); },
     E_INVALIDARG, 0},
    {"UsValuesOfLargerNumbers",
     [](auto& a) { a.template Array<ULONGLONG>(kKeyUsValues, {1, 2, 3}); }, E_INVALIDARG, 0},
    {"IntValuesOfFloats", [](auto& a) { a.template Array<FLOAT>(kKeyIntValues, {1.5f}); },
     E_INVALIDARG, 0},
    {"BoolValuesOfShorts", [](auto& a) { a.template Array<USHORT>(kKeyBoolValues, {1}); },
     E_INVALIDARG, 0},
    {"StringValuesOfNumbers",
     [](auto& a) { a.template Array<ULONGLONG>(kKeyStringValues, {0x4141414141414141}); },
     E_INVALIDARG, 0},
    {"MoreStringValuesOfNumbers",
     [](auto& a) { a.template Array<ULONGLONG>(kKeyMoreStringValues, {1}); }, E_INVALIDARG, 0},
    {"FloatValuesOfTexts", [](auto& a) { a.Texts(kKeyFloatValues, {L"1.5"}); }, E_INVALIDARG, 0},
    {"UllValuesOfTwoDimensions", [](auto& a) { a.Set(kKeyUllValues, TwoDimensions(VT_UI8)); },
     E_INVALIDARG, 0},
    {"StringValuesOfTwoDimensions",
     [](auto& a) { a.Set(kKeyStringValues, TwoDimensions(VT_BSTR)); }, E_INVALIDARG, 0},
    {"NullArrays",
     [](auto& a) {
         for (const UINT64 key : kValueLists)
             a.Set(key, NullArray(key));
     },
     S_OK, 1},
    {"EmptyArrays",
     [](auto& a) {
         a.template Array<ULONGLONG>(kKeyUllValues, {}).Texts(kKeyStringValues, {});
         a.template Array<FLOAT>(kKeyFloatValues, {});
     },
     S_OK, 1},
    {"NullText",
     [](auto& a) {
         CVariant text;
         text.Address()->vt = VT_BSTR;
         a.Set(kKeyStringValues, std::move(text));
     },
     S_OK, 1},
    {"LoneSurrogates",
     [](auto& a) {
         a.Text(kKeyActionName, L"a\xD800");
         a.Texts(kKeyStringValues, {L"\xDC00", L"\xD800\xD800", L"x\xDBFFy"});
     },
     S_OK, 1},
    {"TextWithAZeroInside", [](auto& a) { a.Text(kKeyActionName, std::wstring_view(L"a\0b", 3)); },
     S_OK, 1},
};

} // namespace

class BadInput : public PluginTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(PluginTest::SetUp());
        ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
    }
    void TearDown() override {
        if (!HasFatalFailure()) ExpectAGoodActionIsRecorded(Plugin());
        PluginTest::TearDown();
    }
    static void ExpectRows(int rows) {
        EXPECT_EQ(rows, CountRows(ActionLogPath(), kActionLogRows));
        EXPECT_EQ(rows, CountRows(ReplayPath(), kReplayRows));
    }
};

class BadActionInput : public BadInput, public ::testing::WithParamInterface<BadAction> {};

INSTANTIATE_TEST_SUITE_P(, BadActionInput, ::testing::ValuesIn(kBadActions),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_P(BadActionInput, IsAnsweredAndDoesNoHarm) {
    ContainerBuilder action = Action(1, L"playItem");
    GetParam().spoil(action);
    EXPECT_EQ(GetParam().expected, Plugin().Notify(kCommandRecordAction, action));
    ExpectRows(GetParam().rows);
    ExpectLocksAreFree();
}

TEST_F(BadInput, WrongTypeOfAFieldCountsAsAbsent) {
    ContainerBuilder action = Action(1, L"playItem");
    action.Ui4(kKeyAppId, 3).Text(kKeyActionTime, L"today");
    EXPECT_EQ(S_OK, Plugin().Notify(kCommandRecordAction, action));
    const FileDatabase database(ReplayPath());
    EXPECT_EQ("0", database.Value("SELECT AppId FROM TslIf_ActionReplay"));
    EXPECT_EQ("1", database.Value("SELECT AppLoggedTime = PluginLoggedTime "
                                  "FROM TslIf_ActionReplay"));
}

TEST_F(BadInput, NullAndEmptyArraysLeaveNoGroupBehind) {
    ContainerBuilder action = Action(1, L"playItem");
    action.Set(kKeyUllValues, NullArray(kKeyUllValues));
    action.Array<USHORT>(kKeyUsValues, {}).Array<LONG>(kKeyIntValues, {5});
    EXPECT_EQ(S_OK, Plugin().Notify(kCommandRecordAction, action));
    EXPECT_EQ("intValues={5}",
              FileDatabase(ReplayPath()).Value("SELECT ActionParameters FROM TslIf_ActionReplay"));
}

TEST_F(BadInput, FailedReadOfAnyKeyIsReturnedAndNothingIsRecorded) {
    constexpr UINT64 kFields[] = {kKeyRecordId, kKeyActionName, kKeyActionTime, kKeyAppId,
                                  kKeyUserId};
    ScriptedContainer action(Action(1, L"playItem").Get());
    const auto expectFailure = [&](UINT64 key) {
        SCOPED_TRACE(key);
        action.getResults = {{key, E_ACCESSDENIED}};
        EXPECT_EQ(E_ACCESSDENIED, Plugin().Notify(kCommandRecordAction, &action));
        EXPECT_EQ(1u, action.References());
        ExpectLocksAreFree();
    };
    for (const UINT64 key : kFields)
        expectFailure(key);
    for (const UINT64 key : kValueLists)
        expectFailure(key);
    ExpectRows(0);
}

TEST_F(BadInput, OnlyOkIsAPresentValue) {
    ScriptedContainer action(Action(1, L"playItem").Get());
    for (const UINT64 key : {kKeyRecordId, kKeyActionName, kKeyUserId}) {
        action.getResults = {{key, HRESULT{2}}};
        EXPECT_EQ(S_OK, Plugin().Notify(kCommandRecordAction, &action));
    }
    ExpectRows(0);
    action.getResults = {{kKeyAppId, S_FALSE}, {kKeyActionTime, S_FALSE}};
    EXPECT_EQ(S_OK, Plugin().Notify(kCommandRecordAction, &action));
    ExpectRows(1);
    EXPECT_EQ("0", FileDatabase(ReplayPath()).Value("SELECT AppId FROM TslIf_ActionReplay"));
}

TEST_F(BadInput, MissingContainerAndResultAreAnswered) {
    EXPECT_EQ(S_OK, Plugin().Notify(kCommandRecordAction, nullptr));
    EXPECT_EQ(E_POINTER, Plugin().Request(kCommandNextRecordId, nullptr, nullptr, nullptr));
    EXPECT_EQ(E_POINTER, Plugin().Delete(kCommandDeleteRecords, nullptr));
    EXPECT_EQ(E_POINTER,
              Plugin().Request(kCommandNextRecordId, ContainerBuilder(), nullptr, nullptr));
    ExpectLocksAreFree();
    ExpectRows(0);
}

TEST_F(BadInput, TextsOfTenMegabytesAreRecordedWhole) {
    constexpr size_t kLength = 5'000'000;
    ContainerBuilder action = Action(1, std::wstring(kLength, L'n'));
    action.Texts(kKeyStringValues, {std::wstring(kLength, L'v'), std::wstring(kLength, L'%')});
    EXPECT_EQ(S_OK, Plugin().Notify(kCommandRecordAction, action));
    const std::vector<Row> expected = {
        {std::to_string(kLength),
         std::to_string(std::string("stringValues={,}").size() + kLength + 3 * kLength)}};
    EXPECT_EQ(expected, FileDatabase(ActionLogPath())
                            .Query("SELECT length(ActionName), length(ActionParameters) "
                                   "FROM TslIf_DbActionLog"));
    ExpectRows(1);
}

TEST_F(BadInput, TextsThatLookLikeStatementsAreOnlyText) {
    const std::wstring name = L"'); DROP TABLE TslIf_DbActionLog; --";
    EXPECT_EQ(S_OK, Plugin().Notify(kCommandRecordAction, Action(1, name)));
    EXPECT_EQ("'); DROP TABLE TslIf_DbActionLog; --",
              FileDatabase(ActionLogPath()).Value("SELECT ActionName FROM TslIf_DbActionLog"));
}

} // namespace tsl::test
