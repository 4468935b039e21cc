// Several host processes that find an older store: one converts it, and one that dies on the way
// does no harm.
#include <memory>
#include <thread>

#include "tests/maintenance/OldStore.h"
#include "tests/support/MutexHolder.h"
#include "tests/support/StartedProgram.h"

namespace tsl::test {

namespace {

// A tslhost that switches recording on, with kind 1, and prints ids to nowhere.
class HostProcess {
public:
    HostProcess() {
        SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
        const CHandle nowhere(CreateFileW(L"NUL", GENERIC_READ | GENERIC_WRITE,
                                          FILE_SHARE_READ | FILE_SHARE_WRITE, &inheritable,
                                          OPEN_EXISTING, 0, nullptr));
        STARTUPINFOW startup{};
        startup.cb = sizeof startup;
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdInput = startup.hStdOutput = startup.hStdError = nowhere.Get();
        m_process =
            StartProgram(ProgramFolder() / L"tslhost.exe", L"ids --kind 1", &startup).process;
    }

    // Its exit code; fails the test when it does not end.
    DWORD Wait() const {
        EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(m_process.Get(), 60000));
        DWORD exitCode = STILL_ACTIVE;
        GetExitCodeProcess(m_process.Get(), &exitCode);
        return exitCode;
    }
    void Kill() const {
        TerminateProcess(m_process.Get(), 9);
        Wait();
    }

private:
    CHandle m_process;
};

} // namespace

class ConversionByProcesses : public OldStoreTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(OldStoreTest::SetUp());
        MakeOldStore("complete.sql");
        before = ReadActionLog();
    }

    StoreImage before;
};

TEST_F(ConversionByProcesses, IsDoneByOneHost) {
    EXPECT_EQ(0u, HostProcess().Wait());
    ExpectCompleteStoreIsConverted(before);
}

TEST_F(ConversionByProcesses, IsDoneOnceByMany) {
    const UINT32 changes = ChangesOfActionLog();
    std::vector<HostProcess> hosts(5);
    for (const HostProcess& host : hosts)
        EXPECT_EQ(0u, host.Wait());
    EXPECT_EQ(changes + kChangesOfAConversion, ChangesOfActionLog());
    ExpectCompleteStoreIsConverted(before);
}

TEST_F(ConversionByProcesses, IsRepeatedWhenOneDiesBeforeTheCounterIsMade) {
    {
        const MutexHolder counter(kLogIdLock);
        const HostProcess host;
        for (int turn = 0; turn < 100 && MutexIsFree(kSqliteAccessLock); ++turn)
            Sleep(50);
        ASSERT_FALSE(MutexIsFree(kSqliteAccessLock));
        Sleep(1000); // to the wait for the counter, which lasts for ten seconds
        host.Kill();
    }
    ExpectOnlyLogKindsAreSet(before);
    // The dead process has left the lock to whoever takes it next.
    std::thread([] { EXPECT_EQ(S_OK, Maintain()); }).join();
    ExpectCompleteStoreIsConverted(before);
    ReleasePlugin(); // the abandoned mutex goes with its last handle
}

TEST_F(ConversionByProcesses, IsRepeatedWhenOneDiesInItsMidst) {
    for (const DWORD moment : {0u, 30u, 60u, 90u, 120u, 150u}) {
        SCOPED_TRACE(moment);
        std::filesystem::remove(ActionLogPath());
        std::filesystem::remove(CounterPath());
        MakeOldStore("complete.sql");
        {
            const HostProcess host;
            Sleep(moment);
            host.Kill();
        }
        const bool wasConverted = std::filesystem::exists(CounterPath());
        HRESULT answer = E_UNEXPECTED;
        std::thread([&answer] { answer = Maintain(); }).join();
        EXPECT_EQ(wasConverted ? E_FAIL : S_OK, answer);
        EXPECT_EQ(WithLogKinds(before).records, ReadActionLog().records);
        EXPECT_EQ(CounterBytes(L"00000042"), ReadBytes(CounterPath()));
    }
    ReleasePlugin();
}

} // namespace tsl::test
