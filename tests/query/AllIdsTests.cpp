// The ids of all records of the current user.
#include <gmock/gmock.h>

#include "tests/query/QueryFixture.h"
#include "tests/support/LockWaits.h"
#include "tests/support/MutexHolder.h"

namespace tsl::test {

namespace {

using ::testing::IsEmpty;

// An object that is no parameter container.
class PlainUnknown final : public IUnknown {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID asked, void** result) override {
        *result = asked == IID_IUnknown ? this : nullptr;
        if (*result) AddRef();
        return *result ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }

    ULONG references = 1;
};

// Gives another user the number 64, so that the current one is 65.
void NumberUsersFrom65() {
    const std::filesystem::path folder = StoreFolder().parent_path() / L"UID";
    std::filesystem::create_directories(folder);
    WriteBytes(folder / L"UserIdList.dat", Utf16FileBytes(L"0x00000040\tS-1-5-21-1-2-3-4\t\r\n"));
}

} // namespace

class AllIds : public QueryTest {};

TEST_F(AllIds, AreThoseOfUserOne) {
    StoreTaken({{.id = 10, .user = 1}, {.id = 11, .user = 2}, {.id = 12, .user = 1}});
    ExpectIds({10, 12}, kAskForAllIds, ContainerBuilder());
}

TEST_F(AllIds, AreThoseOfUserOneUnderEveryLogKindButTwo) {
    NumberUsersFrom65();
    StoreTaken({{.id = 10, .user = 1, .logKind = 2}, {.id = 11, .user = 65}});
    for (const UINT32 logKind : {0u, 1u, 3u, 8u, 16u, 0xFFFFFFFFu}) {
        ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(logKind));
        ExpectIds({10}, kAskForAllIds, ContainerBuilder());
    }
}

TEST_F(AllIds, AreThoseOfTheCurrentUserUnderLogKindTwo) {
    NumberUsersFrom65();
    StoreTaken({{.id = 10, .user = 1}, {.id = 11, .user = 65}, {.id = 12, .user = 64}});
    ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(2));
    ExpectIds({11}, kAskForAllIds, ContainerBuilder());
}

TEST_F(AllIds, AreNotThoseOfTheUserInTheContainer) {
    StoreTaken({{.id = 10, .user = 1}, {.id = 11, .user = 2}});
    ExpectIds({10}, kAskForAllIds, ContainerBuilder().Ui4(0x0200002100000013, 2));
}

TEST_F(AllIds, AreNotThoseOfTheActionLog) {
    StoreLog({{.id = 20, .user = 1}});
    StoreTaken({{.id = 10, .user = 1}});
    ExpectIds({10}, kAskForAllIds, ContainerBuilder());
}

TEST_F(AllIds, RunFromOneToTheHighestId) {
    StoreTaken({{.id = -1, .user = 1},
                {.id = 0, .user = 1},
                {.id = 1, .user = 1},
                {.id = 0xFFFFFFFF, .user = 1},
                {.id = 0x100000000, .user = 1}});
    ExpectIds({1, 0xFFFFFFFF}, kAskForAllIds, ContainerBuilder());
}

TEST_F(AllIds, NeedNothingOfTheContainer) {
    StoreTaken({{.id = 10, .user = 1}});
    PlainUnknown noContainer;
    ExpectIds({10}, kAskForAllIds, &noContainer);
    EXPECT_EQ(1u, noContainer.references);
    ScriptedContainer unread(ContainerBuilder().Get());
    ExpectIds({10}, kAskForAllIds, &unread);
    EXPECT_TRUE(unread.keysRead.empty());
}

TEST_F(AllIds, OfAUserWithoutRecordsAreAnInvalidArgument) {
    ExpectNoAnswer(E_INVALIDARG, kAskForAllIds, ContainerBuilder());
    StoreTaken({{.id = 11, .user = 2}});
    ExpectNoAnswer(E_INVALIDARG, kAskForAllIds, ContainerBuilder());
}

TEST_F(AllIds, AreAnsweredAtOnceWhileAnotherProcessHoldsTheDatabaseLock) {
    StoreTaken({{.id = 10, .user = 1}});
    const MutexHolder holder(kSqliteAccessLock);
    const LockWaits waits(HeldLocks::AreGivenUpAtOnce, kComponentLibrary);
    ExpectIds({10}, kAskForAllIds, ContainerBuilder());
    EXPECT_THAT(waits.TimeOuts(kSqliteAccessLock), IsEmpty());
}

} // namespace tsl::test
