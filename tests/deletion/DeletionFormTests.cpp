// Which of the three deletions a container chooses.
#include "query/Deletions.h"

#include <functional>

#include "tests/deletion/DeletionFixture.h"

namespace tsl::test {

class DeletionForm : public DeletionTest {
protected:
    // What is left of the records below after the deletion. Each form removes other ones.
    std::string LeftAfter(IUnknown* container) {
        Prepare({{1, 1, 1, 40001}, {2, 1, 1, 40002}, {3, 1, 1, 40003}, {4, 7, 1, 40004}});
        EXPECT_EQ(S_OK, Delete(container));
        return Left();
    }

    static constexpr char kOneRecordGone[] = "1 3 4";
    static constexpr char kIdRangeGone[] = "1 2 4";
    static constexpr char kTimeRangeGone[] = "2 3 4";

    // Has the keys of all three forms: record 2, ids from 3, times to 40001.
    static ContainerBuilder AllKeys() { return AllKeysButRecord().Ui8(kKeyRecordToTake, 2); }
    static ContainerBuilder AllKeysButRecord() {
        return TimeRangeKeys().Ui4(kKeyFirstRecordId, 3).Ui4(kKeyLastRecordId, 9);
    }
    static ContainerBuilder TimeRangeKeys() {
        return ContainerBuilder()
            .Ui4(kKeyUserId, 1)
            .Date(kKeyStartTime, 40001)
            .Date(kKeyEndTime, 40001);
    }
};

TEST_F(DeletionForm, SingleIdComesBeforeTheRanges) {
    EXPECT_EQ(kOneRecordGone, LeftAfter(AllKeys()));
}

TEST_F(DeletionForm, IdRangeComesBeforeTheTimeRange) {
    EXPECT_EQ(kIdRangeGone, LeftAfter(AllKeysButRecord()));
}

TEST_F(DeletionForm, OneBoundMakesAnIdRange) {
    EXPECT_EQ(kIdRangeGone, LeftAfter(TimeRangeKeys().Ui4(kKeyFirstRecordId, 3)));
    EXPECT_EQ("4", LeftAfter(TimeRangeKeys().Ui4(kKeyLastRecordId, 3)));
}

TEST_F(DeletionForm, TimeRangeIsWhatIsLeft) {
    EXPECT_EQ(kTimeRangeGone, LeftAfter(TimeRangeKeys()));
    EXPECT_EQ("4", LeftAfter(TimeRange()));
}

TEST_F(DeletionForm, ArrayUnderTheKeyOfASingleIdIsNoSingleId) {
    const std::initializer_list<ULONGLONG> ids = {2};
    EXPECT_EQ(kIdRangeGone, LeftAfter(AllKeysButRecord().Array(kKeyRecordToTake, ids)));
    EXPECT_EQ(kTimeRangeGone, LeftAfter(TimeRangeKeys().Array(kKeyRecordToTake, ids)));
}

TEST_F(DeletionForm, OtherTypesUnderTheKeyOfASingleIdAreNoSingleId) {
    const std::function<void(ContainerBuilder&)> setters[] = {
        [](ContainerBuilder& to) { to.Ui4(kKeyRecordToTake, 2); },
        [](ContainerBuilder& to) { to.I4(kKeyRecordToTake, 2); },
        [](ContainerBuilder& to) { to.Date(kKeyRecordToTake, 2); },
        [](ContainerBuilder& to) { to.Text(kKeyRecordToTake, L"2"); },
        [](ContainerBuilder& to) { to.Set(kKeyRecordToTake, CVariant()); },
        [](ContainerBuilder& to) {
            CVariant number;
            number.Address()->vt = VT_I8;
            number.Address()->llVal = 2;
            to.Set(kKeyRecordToTake, std::move(number));
        },
    };
    for (const auto& set : setters) {
        ContainerBuilder withIdRange = AllKeysButRecord();
        set(withIdRange);
        EXPECT_EQ(kIdRangeGone, LeftAfter(withIdRange));
        ContainerBuilder withTimeRange = TimeRangeKeys();
        set(withTimeRange);
        EXPECT_EQ(kTimeRangeGone, LeftAfter(withTimeRange));
    }
}

TEST_F(DeletionForm, SingleIdThatCannotBeReadIsNoSingleId) {
    for (const HRESULT result : {HRESULT{E_FAIL}, HRESULT{S_FALSE}}) {
        ScriptedContainer container(AllKeys().Get());
        container.getResults[kKeyRecordToTake] = result;
        EXPECT_EQ(kIdRangeGone, LeftAfter(&container));
        EXPECT_EQ(1u, container.References());
    }
}

TEST_F(DeletionForm, KeyOfABoundCountsWhateverItsValue) {
    EXPECT_EQ("4", LeftAfter(TimeRangeKeys().Text(kKeyFirstRecordId, L"3")));
    EXPECT_EQ("4", LeftAfter(TimeRangeKeys().Set(kKeyLastRecordId, CVariant())));
}

TEST_F(DeletionForm, KeysThatAreNotListedMakeNoIdRange) {
    for (const HRESULT result : {HRESULT{E_FAIL}, HRESULT{E_NOTIMPL}}) {
        ScriptedContainer container(AllKeysButRecord().Get());
        container.getKeysResult = result;
        EXPECT_EQ(kTimeRangeGone, LeftAfter(&container));
    }
}

TEST_F(DeletionForm, FailingKeyListDoesNotMatterToASingleId) {
    ScriptedContainer container(AllKeys().Get());
    container.getKeysResult = E_FAIL;
    EXPECT_EQ(kOneRecordGone, LeftAfter(&container));
}

TEST_F(DeletionForm, NumbersOfKeysOfOtherTypesMakeNoIdRange) {
    const UINT64 likeABound = MakeParamKey(kKindOrdinary, 0x18, VT_I4);
    EXPECT_EQ(kTimeRangeGone, LeftAfter(TimeRangeKeys().I4(likeABound, 3)));
}

TEST_F(DeletionForm, MissingContainerIsAnInvalidArgument) {
    const CActionLogStore store(GetModuleHandleW(nullptr));
    EXPECT_EQ(E_INVALIDARG, DeleteRecords(store, Target{}, nullptr));
    EXPECT_FALSE(std::filesystem::exists(ActionLogPath()));
}

TEST_F(DeletionForm, NothingToCallIsRefusedByTheInterface) {
    EXPECT_EQ(E_POINTER, Delete(nullptr));
    EXPECT_EQ(E_INVALIDARG, Delete(&Plugin())) << "an object that is no container";
    EXPECT_EQ(E_NOTIMPL, Plugin().Delete(kCommandQueryIds, OneRecord()));
    EXPECT_FALSE(std::filesystem::exists(ActionLogPath()));
}

TEST_F(DeletionForm, TableOfTheTargetIsTheOneThatLosesTheRecord) {
    Prepare(kFourDays);
    FileDatabase(ActionLogPath())
        .Query("CREATE TABLE TslIf_ContentDeleteProperty AS SELECT * FROM TslIf_DbActionLog");
    const CActionLogStore store(GetModuleHandleW(nullptr));
    const Target target{kActionLogFileName, kContentDeleteTable, /*logKind=*/1};
    EXPECT_EQ(S_OK, DeleteRecords(store, target, OneRecord()));
    EXPECT_EQ("1 2 3 4", Left());
    EXPECT_EQ("1,3,4", FileDatabase(ActionLogPath())
                           .Value("SELECT group_concat(ActionLogId) "
                                  "FROM TslIf_ContentDeleteProperty"));
}

TEST_F(DeletionForm, FileOfTheTargetIsTheOneThatLosesTheRecord) {
    Prepare(kFourDays);
    std::filesystem::copy_file(ActionLogPath(), ReplayPath());
    const CActionLogStore store(GetModuleHandleW(nullptr));
    const Target target{kReplayFileName, kActionLogTable, /*logKind=*/1};
    EXPECT_EQ(S_OK, DeleteRecords(store, target, OneRecord()));
    EXPECT_EQ("1 2 3 4", Left());
    EXPECT_EQ(3, CountRows(ReplayPath(), kActionLogRows));
}

} // namespace tsl::test
