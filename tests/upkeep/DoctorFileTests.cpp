// What an examination says of the counter file and of the user id list.
#include "tests/support/FileDatabase.h"
#include "tests/upkeep/DoctorFixture.h"

namespace tsl::test {

namespace fs = std::filesystem;

class DoctorOfFiles : public DoctorTest {
protected:
    Finding OfCounter(const Bytes& bytes) const {
        WriteBytes(Store().counter, bytes);
        return Worst("actionLog.txt");
    }
    Finding OfUsers(const Bytes& bytes) const {
        WriteBytes(Store().userIds, bytes);
        return Worst("UserIdList.dat");
    }
};

TEST_F(DoctorOfFiles, CounterAboveAllIdsIsFine) {
    EXPECT_OK(OfCounter(Utf16FileBytes(L"00000600\t\r\n")));
    EXPECT_OK(OfCounter(Utf16FileBytes(L"00000700\t\r\n")));
}

TEST_F(DoctorOfFiles, CounterBehindTheHighestIdOfAnyTableIsDamage) {
    EXPECT_DAMAGE(OfCounter(Utf16FileBytes(L"00000599\t\r\n")),
                  "next id is 600, but ids up to 600");
    FileDatabase(Store().replayLog)
        .Query("UPDATE TslIf_ActionReplay SET ActionLogId = 700 WHERE "
               "ActionLogId = 600");
    EXPECT_DAMAGE(OfCounter(Utf16FileBytes(L"00000600\t\r\n")), "ids up to 700");
    FileDatabase(Store().actionLog)
        .Query("UPDATE TslIf_ContentDeleteProperty SET ActionLogId = 800 WHERE ActionLogId = 40");
    EXPECT_DAMAGE(OfCounter(Utf16FileBytes(L"00000700\t\r\n")), "ids up to 800");
}

TEST_F(DoctorOfFiles, CounterThatIsMissingEmptyOrNoNumberIsDamage) {
    EXPECT_DAMAGE(OfCounter({}), "empty");
    EXPECT_DAMAGE(OfCounter({0xFF, 0xFE}), "empty");
    EXPECT_DAMAGE(OfCounter(Utf16FileBytes(L"\r\n")), "spoiled, and read as 0");
    EXPECT_DAMAGE(OfCounter(Utf16FileBytes(L"abc\t\r\n")), "spoiled, and read as 0");
    EXPECT_DAMAGE(OfCounter({'0', '0', '0', '0', '0', '6', '0', '0', '\r', '\n'}), "spoiled");
    EXPECT_DAMAGE(OfCounter(Utf16FileBytes(L"00000601x\t\r\n")), "spoiled, and read as 601");
    fs::remove(Store().counter);
    EXPECT_DAMAGE(Worst("actionLog.txt"), "not there");
}

TEST_F(DoctorOfFiles, CounterThatAPersonHasWrittenIsAWarning) {
    EXPECT_WARNING(OfCounter(Utf16FileBytes(L"00000600\r\n")), "next id is 601; not as");
    EXPECT_WARNING(OfCounter(Utf16FileBytes(L"600")), "next id is 601; not as");
    EXPECT_WARNING(OfCounter(Utf16Bytes(L"00000600\t\r\n")), "next id is 601; not as");
}

TEST_F(DoctorOfFiles, CounterFarFromAllIdsOrAtItsEndIsAWarning) {
    EXPECT_WARNING(OfCounter(Utf16FileBytes(L"00100600\t\r\n")), "far from the highest");
    EXPECT_WARNING(OfCounter(Utf16FileBytes(L"4294967295\t\r\n")), "at its end");
}

TEST_F(DoctorOfFiles, CounterThatHasBegunAgainIsAWarning) {
    FileDatabase(Store().actionLog)
        .Query("UPDATE TslIf_DbActionLog SET ActionLogId = 4294967295 WHERE ActionLogId = 600; "
               "PRAGMA user_version = -1");
    EXPECT_WARNING(OfCounter(Utf16FileBytes(L"00000007\t\r\n")), "the numbers have begun again");
}

TEST_F(DoctorOfFiles, UsersAreCounted) {
    EXPECT_OK(OfUsers(Utf16FileBytes(L"0x00000007\tS-1-5-18\t\r\n")));
}

TEST_F(DoctorOfFiles, UserIdOrUserThatIsThereTwiceIsDamage) {
    EXPECT_DAMAGE(OfUsers(Utf16FileBytes(L"0x00000001\tS-1-5-18\t\r\n0x00000001\tS-1-5-19\t\r\n")),
                  "id 1 stands for S-1-5-18 and for S-1-5-19");
    EXPECT_DAMAGE(OfUsers(Utf16FileBytes(L"0x00000001\tS-1-5-18\t\r\n0x00000002\tS-1-5-18\t\r\n")),
                  "S-1-5-18 has the ids 1 and 2");
}

TEST_F(DoctorOfFiles, UserLineThatCannotBeReadIsDamage) {
    for (const wchar_t* const line :
         {L"S-1-5-19", L"0x00000002", L"0x00000002\t", L"zwei\tS-1-5-19\t", L"0\tS-1-5-19\t",
          L"0x2 2\tS-1-5-19\t", L"0x123456789\tS-1-5-19\t", L"0x00000002\tS-1-5-\t",
          L"0x00000002\tBA\t", L"0x00000002\tS-1-5-19\tmore"}) {
        const Finding finding =
            OfUsers(Utf16FileBytes(L"0x00000001\tS-1-5-18\t\r\n" + std::wstring(line) + L"\r\n"));
        EXPECT_DAMAGE(finding, "1 of 2 lines cannot be read, the first is line 2");
    }
}

TEST_F(DoctorOfFiles, UserListThatIsEmptyOrNoUtf16IsDamage) {
    EXPECT_DAMAGE(OfUsers({}), "no user in it");
    const std::string narrow = "0x00000001\tS-1-5-18\t\r\n";
    EXPECT_DAMAGE(OfUsers(Bytes(narrow.begin(), narrow.end())), "no UTF-16 text");
}

TEST_F(DoctorOfFiles, UserListThatAPersonHasWrittenIsAWarning) {
    EXPECT_WARNING(OfUsers(Utf16FileBytes(L"1\tS-1-5-18\r\n")), "1 user, highest id 1; not as");
    EXPECT_WARNING(OfUsers(Utf16Bytes(L"0x00000001\tS-1-5-18\t\r\n")), "1 user, highest id 1");
}

} // namespace tsl::test
