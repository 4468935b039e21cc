// regsvr32, as an administrator calls it.
#include "base/Handle.h"
#include "tests/registration/RegistrationFixture.h"

namespace tsl::test {

namespace {

DWORD RunRegsvr(const std::wstring& arguments) {
    std::wstring command = L"regsvr32.exe " + arguments;
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started{};
    if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, /*inheritHandles=*/FALSE, 0,
                        nullptr, nullptr, &startup, &started)) {
        return GetLastError();
    }
    const CHandle process(started.hProcess);
    const CHandle thread(started.hThread);
    if (WaitForSingleObject(process.Get(), 60000) != WAIT_OBJECT_0) return WAIT_TIMEOUT;
    DWORD exitCode = 99;
    GetExitCodeProcess(process.Get(), &exitCode);
    return exitCode;
}

} // namespace

class Regsvr : public RegistrationTest {
protected:
    static std::wstring Quoted() { return L"\"" + ModulePath().wstring() + L"\""; }
};

TEST_F(Regsvr, RegistersAndTakesOff) {
    EXPECT_EQ(0u, RunRegsvr(L"/s " + Quoted()));
    ExpectEntry();
    EXPECT_EQ(TextValue(ModulePath().wstring()), ReadStored(kServerKey, L""));
    EXPECT_EQ(0u, RunRegsvr(L"/s /u " + Quoted()));
    EXPECT_FALSE(KeyExists(kListKey));
    ExpectNoClass();
}

TEST_F(Regsvr, IsToldOfAFailure) {
    MakeKey(kHostKey, REG_OPTION_VOLATILE);
    EXPECT_NE(0u, RunRegsvr(L"/s " + Quoted()));
    ExpectNoClass();
}

} // namespace tsl::test
