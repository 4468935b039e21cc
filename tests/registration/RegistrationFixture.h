// Base of the tests that register: nothing of the component or its host is registered before and
// after. Tests need the permission that StoreTest needs, as they take a machine's registration
// away.
#pragma once

#include <optional>

#include "base/LoadedLibrary.h"
#include "tests/registration/Registry.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

class RegistrationTest : public StoreTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(StoreTest::SetUp());
        RemoveRegistration();
    }
    void TearDown() override {
        RemoveRegistration();
        StoreTest::TearDown();
    }

    static std::filesystem::path ModulePath() { return ProgramFolder() / L"TslIfDbActionLog.dll"; }

    static HRESULT Register(const std::filesystem::path& module = ModulePath()) {
        return Call(module, "DllRegisterServer");
    }
    static HRESULT Unregister() { return Call(ModulePath(), "DllUnregisterServer"); }

    static void ExpectEntry() {
        EXPECT_EQ(TextValue(L"TslIfDbActionLog"), ReadStored(kEntryKey, L"Module ID"));
        EXPECT_EQ(NumberValue(0xFFFFFFFF), ReadStored(kEntryKey, L"Enable"));
        EXPECT_EQ(NumberValue(0x00008000), ReadStored(kEntryKey, L"Order"));
        EXPECT_EQ(NumberValue(0x0001001F), ReadStored(kEntryKey, L"Type"));
        EXPECT_EQ(4u, ValuesOf(kEntryKey).size());
    }
    static void ExpectNoClass() {
        EXPECT_FALSE(KeyExists(kClassKey));
        EXPECT_FALSE(KeyExists(kAppIdKey));
        EXPECT_FALSE(KeyExists(kAppIdFileKey));
    }

private:
    static HRESULT Call(const std::filesystem::path& module, const char* function) {
        const CLoadedLibrary library(module.wstring(), LOAD_WITH_ALTERED_SEARCH_PATH);
        if (!library) return HRESULT_FROM_WIN32(GetLastError());
        return library.Find<HRESULT(STDAPICALLTYPE*)()>(function)();
    }
};

} // namespace tsl::test
