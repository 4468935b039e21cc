// Actions that are skipped, and actions whose container cannot be read: no row in either case.
#include "recording/RecordWriter.h"

#include "tests/recording/RecordStore.h"
#include "tests/support/Failures.h"
#include "tests/support/RawContainer.h"

namespace tsl::test {

namespace {

CVariant Real(double number) {
    CVariant value;
    value.Address()->vt = VT_R8;
    value.Address()->dblVal = number;
    return value;
}

} // namespace

class RecordReading : public RecordStoreTest {
protected:
    // Writes the action and expects the result, no row, and that the lock was given back.
    void ExpectNoRow(HRESULT result, ITslParamContainer* action) {
        EXPECT_EQ(result, WriteActionRecord(Store(), m_target, action));
        EXPECT_EQ("0", RowCount());
        EXPECT_TRUE(MutexIsFree(kSqliteAccessMutexName));
    }
    void ExpectSkipped(ITslParamContainer* action) { ExpectNoRow(S_OK, action); }
};

TEST_F(RecordReading, FollowsTheOrderOfTheFields) {
    ScriptedContainer action(Action(5, L"playItem").Get());
    EXPECT_EQ(S_OK, WriteActionRecord(Store(), m_target, &action));
    const std::vector<UINT64> expected = {
        kKeyRecordId,     kKeyActionName,       kKeyActionTime, kKeyAppId,     kKeyUserId,
        kKeyActionName,   kKeyUllValues,        kKeyUsValues,   kKeyIntValues, kKeyBoolValues,
        kKeyStringValues, kKeyMoreStringValues, kKeyFloatValues};
    EXPECT_EQ(expected, action.keysRead);
    EXPECT_EQ(1u, action.References());
}

TEST_F(RecordReading, SkipsWithoutAContainer) {
    ExpectSkipped(nullptr);
}

TEST_F(RecordReading, SkipsTheIdZero) {
    ExpectSkipped(Action(0, L"playItem"));
}

TEST_F(RecordReading, SkipsWithoutAnId) {
    ScriptedContainer action(Action(5, L"playItem").Get());
    action.getResults[kKeyRecordId] = S_FALSE;
    ExpectSkipped(&action);
}

TEST_F(RecordReading, SkipsAnIdOfAnotherType) {
    ExpectSkipped(Action(5, L"playItem").I4(kKeyRecordId, 5));
    ExpectSkipped(Action(5, L"playItem").Ui8(kKeyRecordId, 5));
    ExpectSkipped(Action(5, L"playItem").Array<ULONGLONG>(kKeyRecordId, {5}));
}

TEST_F(RecordReading, SkipsWithoutAName) {
    for (const HRESULT answer : {HRESULT{S_FALSE}, HRESULT{0x00041500}}) {
        ScriptedContainer action(Action(5, L"playItem").Get());
        action.getResults[kKeyActionName] = answer;
        ExpectSkipped(&action);
    }
}

TEST_F(RecordReading, SkipsANameThatIsNoText) {
    ExpectSkipped(Action(5, L"playItem").I4(kKeyActionName, 5));
    ExpectSkipped(Action(5, L"playItem").Texts(kKeyActionName, {L"playItem"}));
    ExpectSkipped(Action(5, L"playItem").Set(kKeyActionName, CVariant()));
}

TEST_F(RecordReading, SkipsWithoutAUser) {
    for (const HRESULT answer : {HRESULT{S_FALSE}, HRESULT{0x00041500}, HRESULT{2}}) {
        ScriptedContainer action(Action(5, L"playItem").Get());
        action.getResults[kKeyUserId] = answer;
        ExpectSkipped(&action);
        EXPECT_EQ(kKeyUserId, action.keysRead.back()) << "no value list is read then";
    }
}

TEST_F(RecordReading, SkipsAUserOfAnotherType) {
    ExpectSkipped(Action(5, L"playItem").I4(kKeyUserId, 7));
    ExpectSkipped(Action(5, L"playItem").Ui8(kKeyUserId, 7));
}

TEST_F(RecordReading, TakesTheUserZero) {
    EXPECT_EQ(S_OK,
              WriteActionRecord(Store(), m_target, Action(5, L"playItem").Ui4(kKeyUserId, 0)));
    EXPECT_EQ("0", Logged("SELECT UserId FROM TslIf_DbActionLog"));
}

TEST_F(RecordReading, TakesAMissingApplicationAsZero) {
    ScriptedContainer absent(Action(5, L"playItem").Get());
    absent.getResults[kKeyAppId] = S_FALSE;
    EXPECT_EQ(S_OK, WriteActionRecord(Store(), m_target, &absent));
    EXPECT_EQ("0", Logged("SELECT AppId FROM TslIf_DbActionLog"));
}

TEST_F(RecordReading, TakesAnApplicationOfAnotherTypeAsZero) {
    EXPECT_EQ(S_OK, WriteActionRecord(Store(), m_target, Action(5, L"playItem").Ui4(kKeyAppId, 3)));
    EXPECT_EQ("0", Logged("SELECT AppId FROM TslIf_DbActionLog"));
}

TEST_F(RecordReading, TakesATimeOfAnotherTypeAsAbsent) {
    EXPECT_EQ(S_OK, WriteActionRecord(Store(), m_target,
                                      Action(5, L"playItem").Set(kKeyActionTime, Real(45000))));
    EXPECT_EQ("1", Logged("SELECT AppLoggedTime = PluginLoggedTime FROM TslIf_DbActionLog"));
}

TEST_F(RecordReading, TakesATimeThatComesWithoutOkAsAbsent) {
    RawContainer action(Action(5, L"playItem").Get());
    action.Make(kKeyActionTime, [](VARIANT& value) {
        value.vt = VT_DATE;
        value.date = 45000;
        return S_FALSE;
    });
    EXPECT_EQ(S_OK, WriteActionRecord(Store(), m_target, &action));
    EXPECT_EQ("1", Logged("SELECT AppLoggedTime = PluginLoggedTime FROM TslIf_DbActionLog"));
}

TEST_F(RecordReading, PassesOnTheFailureOfEachField) {
    for (const UINT64 key : {kKeyRecordId, kKeyActionName, kKeyActionTime, kKeyAppId, kKeyUserId}) {
        ScriptedContainer action(Action(5, L"playItem").Get());
        action.getResults[key] = kFailure;
        ExpectNoRow(kFailure, &action);
        EXPECT_EQ(key, action.keysRead.back()) << "later fields must not be read";
    }
}

TEST_F(RecordReading, PassesOnTheFailureOfEachValueList) {
    for (const UINT64 key : {kKeyUllValues, kKeyUsValues, kKeyIntValues, kKeyBoolValues,
                             kKeyStringValues, kKeyMoreStringValues, kKeyFloatValues}) {
        ScriptedContainer action(Action(5, L"playItem").Get());
        action.getResults[key] = kFailure;
        ExpectNoRow(kFailure, &action);
    }
}

TEST_F(RecordReading, WritesNothingWhenAValueListHasAnotherType) {
    ContainerBuilder action = Action(5, L"playItem");
    action.Array<ULONGLONG>(kKeyUllValues, {1}).I4(kKeyUsValues, 2);
    ExpectNoRow(E_INVALIDARG, action);
}

TEST_F(RecordReading, KeepsTheOlderRowWhenTheContainerCannotBeRead) {
    EXPECT_EQ(S_OK, WriteActionRecord(Store(), m_target, Action(5, L"first")));
    for (const UINT64 key : {kKeyRecordId, kKeyUserId, kKeyFloatValues}) {
        ScriptedContainer action(Action(5, L"second").Get());
        action.getResults[key] = kFailure;
        EXPECT_EQ(kFailure, WriteActionRecord(Store(), m_target, &action));
    }
    EXPECT_EQ("first", Logged("SELECT ActionName FROM TslIf_DbActionLog"));
}

} // namespace tsl::test
