// The host is never called while the component holds a lock or has a file of the store open. Seen
// from outside: another process tries the locks and opens the files for itself alone.
#include "component/host/CommandCodes.h"
#include "tests/calls/CallsFixture.h"
#include "tests/support/Containers.h"
#include "tests/support/StartedProgram.h"

namespace tsl::test {

namespace {

// The other process.
class Probe {
public:
    Probe()
        : m_tag(std::to_wstring(GetCurrentProcessId())), m_ask(Event(L"ask")),
          m_free(Event(L"free")), m_held(Event(L"held")),
          m_process(StartProgram(ProgramFolder() / L"calls_probe.exe",
                                 m_tag + L" " + m_tag + L" \"" + StoreFolder().wstring() + L"\"")
                        .process) {}
    Probe(const Probe&) = delete;
    Probe& operator=(const Probe&) = delete;
    ~Probe() { TerminateProcess(m_process.Get(), 0); }

    bool SeesNothingHeld() {
        SetEvent(m_ask.Get());
        const HANDLE answers[] = {m_free.Get(), m_held.Get(), m_process.Get()};
        const DWORD answer = WaitForMultipleObjects(3, answers, FALSE, 30000);
        EXPECT_LE(answer, WAIT_OBJECT_0 + 1) << "the other process does not answer";
        return answer == WAIT_OBJECT_0;
    }

private:
    CHandle Event(const std::wstring& name) const {
        return CHandle(CreateEventW(nullptr, /*manualReset=*/FALSE, /*initialState=*/FALSE,
                                    (L"calls_probe_" + name + L"_" + m_tag).c_str()));
    }

    std::wstring m_tag;
    CHandle m_ask;
    CHandle m_free;
    CHandle m_held;
    CHandle m_process;
};

} // namespace

class HeldWhileCalling : public CallsTest {
protected:
    Probe probe;
};

TEST_F(HeldWhileCalling, NothingIsInAnyMethodOfTheHost) {
    std::map<HostMethod, int> seen;
    const char* current = nullptr;
    Host().onCall = [&](HostMethod method) {
        ++seen[method];
        EXPECT_TRUE(probe.SeesNothingHeld()) << NameOf(method) << " of " << current;
    };
    for (const HostCommand& command : HostCommands()) {
        current = command.name;
        CallByHost(command, Plugin(), Turn::First);
    }
    current = "a hundredth that trims";
    FillReplayLog(1000);
    const ContainerBuilder hundredth = Action(500, L"playItem");
    EXPECT_EQ(S_OK, Plugin().Notify(kCommandRecordAction, Host().Argument(hundredth.Get()).Get()));
    EXPECT_EQ("0", FileDatabase(ReplayPath())
                       .Value("SELECT COUNT(*) FROM TslIf_ActionReplay WHERE ActionLogId > 10000"));
    current = "SetHost";
    EXPECT_EQ(S_OK, Plugin().SetHost(Host().HostObject().Get()));
    EXPECT_EQ(S_FALSE, Plugin().SetHost(nullptr));
    for (const HostMethod method : kHostMethods)
        EXPECT_GT(seen[method], 0) << NameOf(method);
}

TEST_F(HeldWhileCalling, WouldBeSeen) {
    EXPECT_TRUE(probe.SeesNothingHeld());
    {
        const CHandle mutex(CreateMutexW(nullptr, /*initialOwner=*/FALSE, kSqliteAccessLock));
        ASSERT_EQ(WAIT_OBJECT_0, WaitForSingleObject(mutex.Get(), 0));
        EXPECT_FALSE(probe.SeesNothingHeld());
        ReleaseMutex(mutex.Get());
    }
    EXPECT_TRUE(probe.SeesNothingHeld());
    {
        const CHandle file(CreateFileW(ReplayPath().c_str(), GENERIC_READ,
                                       FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                       FILE_ATTRIBUTE_NORMAL, nullptr));
        EXPECT_TRUE(file);
        EXPECT_FALSE(probe.SeesNothingHeld());
    }
    EXPECT_TRUE(probe.SeesNothingHeld());
}

} // namespace tsl::test
