// A host whose methods raise, run out of memory or give nothing: each step of an action stands by
// itself, every failure has an HRESULT, and nothing is left behind.
#include <new>

#include "component/host/CommandCodes.h"
#include "tests/calls/CallsFixture.h"
#include "tests/support/Containers.h"
#include "tests/support/FileDatabase.h"

namespace tsl::test {

class RaisingHost : public CallsTest {
protected:
    // Raises at the numbered calls of the method, counted from 1; 0 for all.
    void RaiseIn(HostMethod method, int number) {
        m_entries = 0;
        Host().onCall = [this, method, number](HostMethod entered) {
            if (entered != method) return;
            if (++m_entries == number || number == 0) throw std::bad_alloc();
        };
    }

    HRESULT Notify(const ContainerBuilder& action) {
        return Plugin().Notify(kCommandRecordAction, Host().Argument(action.Get()).Get());
    }
    static bool IsLogged(UINT32 id) { return HasRow(ActionLogPath(), kActionLogRows, id); }
    static bool IsReplayed(UINT32 id) { return HasRow(ReplayPath(), kReplayRows, id); }

    static std::string ReplayedOfUser() {
        return FileDatabase(ReplayPath())
            .Value("SELECT COUNT(*) FROM TslIf_ActionReplay WHERE UserId = 7");
    }

private:
    static bool HasRow(const std::filesystem::path& file, const char* table, UINT32 id) {
        return FileDatabase(file).Value("SELECT COUNT(*) FROM " + std::string(table) +
                                        " WHERE ActionLogId = " + std::to_string(id)) == "1";
    }

    int m_entries = 0;
};

TEST_F(RaisingHost, InTheKeysOfAResetKeepsNoRecordOut) {
    RaiseIn(HostMethod::GetKeys, 0);
    EXPECT_EQ(S_OK, Notify(Action(31, L"veSettingReset")));
    EXPECT_TRUE(IsLogged(31));
    EXPECT_TRUE(IsReplayed(31));
    EXPECT_TRUE(IsLogged(1)) << "the reset could not be made";
}

TEST_F(RaisingHost, InTheKeysOfTheTrimKeepsNoRecordOut) {
    FillReplayLog(1000);
    RaiseIn(HostMethod::GetKeys, 0);
    EXPECT_EQ(S_OK, Notify(Action(300, L"playItem")));
    EXPECT_TRUE(IsLogged(300));
    EXPECT_TRUE(IsReplayed(300));
    EXPECT_EQ("1001", ReplayedOfUser());
}

TEST_F(RaisingHost, InTheRecordOfTheActionLogKeepsTheReplayRecord) {
    // The first reading is that of the name, the second belongs to the action log.
    RaiseIn(HostMethod::GetValue, 2);
    EXPECT_EQ(S_OK, Notify(Action(31, L"playItem")));
    EXPECT_FALSE(IsLogged(31));
    EXPECT_TRUE(IsReplayed(31));
}

TEST_F(RaisingHost, InTheCopyOfADeletionKeepsTheReplayRecord) {
    RaiseIn(HostMethod::CreateInstance, 0);
    EXPECT_EQ(S_OK, Notify(Action(31, L"deleteItem")));
    EXPECT_FALSE(IsLogged(31));
    EXPECT_TRUE(IsReplayed(31));
}

TEST_F(RaisingHost, InAMoveKeepsTheReplayRecord) {
    for (const HostMethod method : {HostMethod::CreateInstance, HostMethod::FindItems,
                                    HostMethod::GetItemProperties, HostMethod::SetItemProperties}) {
        SCOPED_TRACE(NameOf(method));
        RenewPlugin();
        FileDatabase(ReplayPath()).Query("DELETE FROM TslIf_ActionReplay");
        RaiseIn(method, 0);
        EXPECT_EQ(S_OK, Notify(Action(31, L"viaMoveContent")
                                   .Texts(kKeyStringValues, {L"old one", L"old two"})
                                   .Texts(kKeyMoreStringValues, {L"new one", L"new two"})
                                   .I4(kKeyNumber, 9)));
        EXPECT_TRUE(IsReplayed(31));
    }
}

TEST_F(RaisingHost, InTheReplayRecordIsTold) {
    int entries = 0;
    Host().onCall = [&](HostMethod method) { entries += method == HostMethod::GetValue; };
    EXPECT_EQ(S_OK, Notify(Action(30, L"playItem")));
    RaiseIn(HostMethod::GetValue, entries);
    EXPECT_EQ(E_OUTOFMEMORY, Notify(Action(31, L"playItem")));
    EXPECT_TRUE(IsLogged(31));
    EXPECT_FALSE(IsReplayed(31));
}

TEST_F(RaisingHost, InAnyMethodLeavesTheObjectAtWork) {
    for (const HostCommand& command : HostCommands()) {
        for (const HostMethod method : kHostMethods) {
            SCOPED_TRACE(std::string(NameOf(method)) + " of " + command.name);
            RaiseIn(method, 0);
            CallByHost(command, Plugin(), Turn::First);
            Host().onCall = nullptr;
            EXPECT_TRUE(MutexIsFree(kSqliteAccessLock));
            EXPECT_TRUE(MutexIsFree(kLogIdLock));
        }
    }
    EXPECT_EQ(S_OK, Notify(Action(31, L"playItem")));
    EXPECT_TRUE(IsLogged(31));
}

TEST_F(RaisingHost, ThatGivesNoObjectIsToldSo) {
    Host().givesNoObject = true;
    for (const HostCommand& command : HostCommands()) {
        SCOPED_TRACE(command.name);
        const std::string told = CallByHost(command, Plugin(), Turn::First);
        const std::string name = command.name;
        const bool makesAnswer = name == "next id" || name == "ids by time" ||
                                 name == "ids by id" || name == "all ids" || name == "records";
        EXPECT_EQ(makesAnswer ? "0x80004002 nothing" : "0x00000000 nothing", told);
    }
}

TEST_F(RaisingHost, MakesNoContainerForTheTrimToCount) {
    int created = 0;
    Host().onCall = [&](HostMethod method) { created += method == HostMethod::CreateInstance; };
    FillReplayLog(999);
    EXPECT_EQ(S_OK, Notify(Action(300, L"playItem")));
    EXPECT_EQ(0, created);
    EXPECT_EQ("1000", ReplayedOfUser());
    EXPECT_EQ(S_OK, Notify(Action(400, L"playItem")));
    EXPECT_EQ(1, created) << "the request of the reset";
    EXPECT_EQ("1", ReplayedOfUser());
}

} // namespace tsl::test
