// Whose records a deletion removes: the container's user for ranges, the log kind's for one record.
#include "tests/deletion/DeletionFixture.h"

namespace tsl::test {

class DeletionUser : public DeletionTest {
protected:
    // Records of the id 2 of several users; gives the users that are left.
    std::string UsersLeftAfter(IUnknown* container) {
        Prepare({{2, 1, 1, 1}, {2, 5, 1, 1}, {2, 7, 1, 1}, {3, 1, 1, 1}});
        EXPECT_EQ(S_OK, Delete(container));
        return FileDatabase(ActionLogPath())
            .Value("SELECT group_concat(UserId) FROM TslIf_DbActionLog WHERE ActionLogId = 2");
    }
};

TEST_F(DeletionUser, OfOneRecordIsUserOneWhoeverIsNamed) {
    EXPECT_EQ("5,7", UsersLeftAfter(OneRecord()));
    EXPECT_EQ("5,7", UsersLeftAfter(OneRecord().Ui4(kKeyUserId, 7)));
    EXPECT_EQ("5,7", UsersLeftAfter(OneRecord().Text(kKeyUserId, L"7")));
    EXPECT_FALSE(std::filesystem::exists(UserIdListPath()));
}

TEST_F(DeletionUser, OfOneRecordIsUserOneUnderEachLogKindButTwo) {
    PrepareUserIdList(Utf16FileBytes(L"0x00000005\t" + TokenSid() + L"\t\r\n"));
    for (const UINT32 kind : {0u, 1u, 3u, 4u, 6u}) {
        SCOPED_TRACE(kind);
        SetLogKind(kind);
        EXPECT_EQ("5,7", UsersLeftAfter(OneRecord()));
    }
    SetLogKind(0);
}

TEST_F(DeletionUser, OfOneRecordIsTheCurrentOneUnderLogKindTwo) {
    PrepareUserIdList(Utf16FileBytes(L"0x00000005\t" + TokenSid() + L"\t\r\n"));
    SetLogKind(2);
    EXPECT_EQ("1,7", UsersLeftAfter(OneRecord().Ui4(kKeyUserId, 7)));
}

TEST_F(DeletionUser, UnknownToTheListIsEnteredThere) {
    PrepareUserIdList(Utf16FileBytes(L"0x00000006\tS-other\t\r\n"));
    SetLogKind(2);
    EXPECT_EQ("1,5", UsersLeftAfter(OneRecord()));
    EXPECT_EQ(Utf16FileBytes(L"0x00000006\tS-other\t\r\n0x00000007\t" + TokenSid() + L"\t\r\n"),
              ReadBytes(UserIdListPath()));
}

TEST_F(DeletionUser, BeyondThirtyTwoBitsIsCutOff) {
    PrepareUserIdList(Utf16FileBytes(L"0x100000005\t" + TokenSid() + L"\t\r\n"));
    SetLogKind(2);
    EXPECT_EQ("1,7", UsersLeftAfter(OneRecord()));
}

TEST_F(DeletionUser, OfOneRecordDoesNotDependOnTheLogKindOfTheRecord) {
    Prepare({{2, 1, 1, 1}, {2, 1, 2, 1}, {2, 1, 4, 1}, {3, 1, 1, 1}});
    EXPECT_EQ(S_OK, Delete(OneRecord()));
    EXPECT_EQ("3", Left());
}

TEST_F(DeletionUser, OfOneRecordGetsAllSixtyFourBitsOfTheId) {
    Prepare({{2, 1, 1, 1}, {0x100000002, 1, 1, 1}, {0xFFFFFFFFFFFFFFFF, 1, 1, 1}});
    EXPECT_EQ(S_OK, Delete(OneRecord(0x100000002)));
    EXPECT_EQ("2 -1", Left());
    EXPECT_EQ(S_OK, Delete(OneRecord(0xFFFFFFFFFFFFFFFF)));
    EXPECT_EQ("2", Left());
}

TEST_F(DeletionUser, OfARangeIsTheContainersUnderLogKindTwoToo) {
    PrepareUserIdList(Utf16FileBytes(L"0x00000005\t" + TokenSid() + L"\t\r\n"));
    SetLogKind(2);
    Prepare({{1, 1, 2, 1}, {2, 5, 2, 1}, {3, 7, 2, 1}});
    EXPECT_EQ(S_OK, Delete(IdRange(1, 7)));
    EXPECT_EQ("1 2", Left());
    EXPECT_EQ(S_OK, Delete(TimeRange(1)));
    EXPECT_EQ("2", Left());
}

TEST_F(DeletionUser, MissingFromARangeDeletesNothing) {
    Prepare(kFourDays);
    EXPECT_EQ(S_OK, Delete(ContainerBuilder().Ui4(kKeyFirstRecordId, 1)));
    EXPECT_EQ(S_OK, Delete(ContainerBuilder().Date(kKeyStartTime, 1)));
    EXPECT_EQ(S_OK, Delete(ContainerBuilder()));
    EXPECT_EQ("1 2 3 4", Left());
}

TEST_F(DeletionUser, OfAnotherTypeDeletesNothing) {
    Prepare(kFourDays);
    EXPECT_EQ(S_OK, Delete(IdRange().I4(kKeyUserId, 1)));
    EXPECT_EQ(S_OK, Delete(IdRange().Ui8(kKeyUserId, 1)));
    EXPECT_EQ(S_OK, Delete(TimeRange().I4(kKeyUserId, 1)));
    EXPECT_EQ(S_OK, Delete(TimeRange().Text(kKeyUserId, L"1")));
    EXPECT_EQ(S_OK, Delete(TimeRange().Set(kKeyUserId, CVariant())));
    EXPECT_EQ("1 2 3 4", Left());
}

TEST_F(DeletionUser, ThatCannotBeReadFailsTheRange) {
    Prepare(kFourDays);
    for (const ContainerBuilder& request : {IdRange(), TimeRange()}) {
        ScriptedContainer container(request.Get());
        container.getResults[kKeyUserId] = E_ACCESSDENIED;
        EXPECT_EQ(E_ACCESSDENIED, Delete(&container));
        EXPECT_EQ("1 2 3 4", Left());
        EXPECT_EQ(1u, container.References());
    }
}

} // namespace tsl::test
