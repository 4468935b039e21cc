// Memory runs out while the component is registered or taken off: the next attempt does it.
#include <bit>

#include "tests/memory_faults/MemoryFaultFixture.h"
#include "tests/registration/Registry.h"

namespace tsl::test {

namespace {

const std::vector<AllowedResult> kOfRegistrations = {
    {HRESULT_FROM_WIN32(ERROR_NOT_ENOUGH_MEMORY), "LoadLibraryExW",
     "the system's own error, for the registrar"},
};

} // namespace

class RegistrationFaults : public MemoryFaultTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(MemoryFaultTest::SetUp());
        RemoveRegistration();
    }
    void TearDown() override {
        RemoveRegistration();
        MemoryFaultTest::TearDown();
    }

    static HRESULT Call(const char* function) {
        const HMODULE component = GetModuleHandleW(L"TslIfDbActionLog.dll");
        return std::bit_cast<HRESULT(STDAPICALLTYPE*)()>(GetProcAddress(component, function))();
    }
    static HRESULT Register() { return Call("DllRegisterServer"); }
    static HRESULT Unregister() { return Call("DllUnregisterServer"); }

    static void ExpectRegistered(bool registered) {
        EXPECT_EQ(registered, KeyExists(kClassKey));
        EXPECT_EQ(registered, KeyExists(kServerKey));
        EXPECT_EQ(registered, KeyExists(kAppIdKey));
        EXPECT_EQ(registered, KeyExists(kEntryKey));
    }
};

TEST_F(RegistrationFaults, RegisterAllOrSayThatItFailed) {
    FailEachAllocation({
        .name = "registration",
        .prepare = RemoveRegistration,
        .run = Register,
        .allowed = kOfRegistrations,
        .check =
            [](const Outcome& outcome) {
                if (FAILED(outcome.result)) {
                    EXPECT_EQ(S_OK, Register());
                }
                ExpectRegistered(true);
            },
        .countHandles = true,
    });
}

TEST_F(RegistrationFaults, UnregisterAllOrSayThatItFailed) {
    FailEachAllocation({
        .name = "unregistration",
        .prepare = [] { ASSERT_EQ(S_OK, Register()); },
        .run = Unregister,
        .allowed = kOfRegistrations,
        .check =
            [](const Outcome& outcome) {
                if (FAILED(outcome.result)) {
                    EXPECT_EQ(S_OK, Unregister());
                }
                ExpectRegistered(false);
            },
    });
}

} // namespace tsl::test
