// The entry in the engine's list of plug-ins, and failures of the registry at each step.
#include "component/registration/PluginList.h"

#include "component/host/Identities.h"
#include "tests/registration/RegistrationFixture.h"
#include "tests/support/ImportHook.h"

namespace tsl::test {

namespace {

constexpr wchar_t kEngineListKey[] = L"Software\\Corvane Corporation\\Tessaly\\Engine Plugins";

int g_callsThatWork = 0;

LSTATUS WINAPI FailingSetValue(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data,
                               DWORD size) {
    if (g_callsThatWork-- == 0) return ERROR_DISK_FULL;
    static const auto original =
        reinterpret_cast<decltype(&RegSetValueExW)>(reinterpret_cast<void*>(
            GetProcAddress(GetModuleHandleW(L"advapi32.dll"), "RegSetValueExW")));
    return original(key, name, reserved, type, data, size);
}

LSTATUS WINAPI FailingQuery(HKEY, LPWSTR, LPDWORD, LPDWORD, LPDWORD, LPDWORD, LPDWORD, LPDWORD,
                            LPDWORD, LPDWORD, LPDWORD, PFILETIME) {
    return ERROR_ACCESS_DENIED;
}

} // namespace

class PluginList : public RegistrationTest {};

TEST_F(PluginList, IsChosenByTheTypesThirdByte) {
    EXPECT_EQ(S_OK, AddToPluginList(CLSID_PluginDb, 0x0002001F, L"x"));
    EXPECT_EQ(std::vector<std::wstring>{L"Engine Plugins"}, KeysBelow(kHostKey));
    EXPECT_EQ(S_OK, AddToPluginList(CLSID_PluginDb, 0xFF01FFFF, L"x"));
    EXPECT_EQ(2u, KeysBelow(kHostKey).size());
    EXPECT_EQ(NumberValue(0xFF01FFFF), ReadStored(kEntryKey, L"Type"));
    EXPECT_EQ(S_OK, RemoveFromPluginList(CLSID_PluginDb, 0x00020000));
    EXPECT_FALSE(KeyExists(kEngineListKey));
    EXPECT_TRUE(KeyExists(kEntryKey));
}

TEST_F(PluginList, RefusesTypesOfNoList) {
    for (const DWORD type : {0x00000000u, 0x0000FFFFu, 0x00030000u, 0x01000000u, 0xFFFFFFFFu}) {
        SCOPED_TRACE(type);
        EXPECT_EQ(E_INVALIDARG, AddToPluginList(CLSID_PluginDb, type, L"x"));
        EXPECT_EQ(E_INVALIDARG, RemoveFromPluginList(CLSID_PluginDb, type));
    }
    EXPECT_FALSE(KeyExists(kHostKey));
}

TEST_F(PluginList, WantsAModuleId) {
    EXPECT_EQ(HRESULT_FROM_WIN32(ERROR_INVALID_DATA),
              AddToPluginList(CLSID_PluginDb, kPluginTypeToRegister, nullptr));
    EXPECT_TRUE(ValuesOf(kEntryKey).empty()) << "the first value stops the rest";
}

TEST_F(PluginList, KeepsAnEmptyModuleId) {
    EXPECT_EQ(S_OK, AddToPluginList(CLSID_PluginDb, kPluginTypeToRegister, L""));
    EXPECT_EQ(TextValue(L""), ReadStored(kEntryKey, L"Module ID"));
}

TEST_F(PluginList, WritesItsValuesInOrderAndStopsAtTheFirstFailure) {
    const std::vector<std::wstring> order = {L"Module ID", L"Enable", L"Order", L"Type"};
    for (size_t working = 0; working < order.size(); ++working) {
        SCOPED_TRACE(working);
        RemoveRegistration();
        const ImportHook hook("RegSetValueExW", &FailingSetValue);
        g_callsThatWork = static_cast<int>(working);
        EXPECT_EQ(HRESULT_FROM_WIN32(ERROR_DISK_FULL),
                  AddToPluginList(CLSID_PluginDb, kPluginTypeToRegister, L"x"));
        EXPECT_EQ(-1, g_callsThatWork) << "nothing was tried after the failure";
        for (size_t value = 0; value < order.size(); ++value) {
            const bool written = ReadStored(kEntryKey, order[value]).type != REG_NONE;
            EXPECT_EQ(value < working, written);
        }
    }
}

TEST_F(PluginList, CannotBeRemovedFromWithoutTheHostsKey) {
    EXPECT_EQ(HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND),
              RemoveFromPluginList(CLSID_PluginDb, kPluginTypeToUnregister));
    EXPECT_FALSE(KeyExists(kHostKey));
}

TEST_F(PluginList, TellsThatItCannotSeeWhatIsLeft) {
    ASSERT_EQ(S_OK, AddToPluginList(CLSID_PluginDb, kPluginTypeToRegister, L"x"));
    const ImportHook hook("RegQueryInfoKeyW", &FailingQuery);
    EXPECT_EQ(HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED),
              RemoveFromPluginList(CLSID_PluginDb, kPluginTypeToUnregister));
    EXPECT_FALSE(KeyExists(kEntryKey));
    EXPECT_TRUE(KeyExists(kListKey));
}

TEST_F(PluginList, ThatIsEmptyIsMadeAndRemovedAgain) {
    MakeKey(kHostKey);
    EXPECT_EQ(S_OK, RemoveFromPluginList(CLSID_PluginDb, kPluginTypeToUnregister));
    EXPECT_TRUE(KeyExists(kHostKey));
    EXPECT_FALSE(KeyExists(kListKey));
}

} // namespace tsl::test
